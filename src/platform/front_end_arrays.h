// Between a front end's arrays and the matrices of a run. The module never allocates or resizes a front-end array.
#pragma once

#include <string>
#include <string_view>

#include "common/matrix.h"
#include "quorva/automation.h"

namespace quorva {

/// rows x columns strings from a caller's array of automation strings in column-major order.
matrix<std::u16string> readHostStrings(const HostString* strings, int rows, int columns);

/// Writes a string matrix back into a caller's array: an entry is freed and made anew only when its text differs.
void writeBackHostStrings(const matrix<std::u16string>& strings, HostString* target);

/// A count x 1 string matrix from the first `count` entries of a host string array with any lower bound; entries that
/// the array lacks are empty.
matrix<std::u16string> fromHostStringArray(HostStringArray* strings, int count);

/// A newly created one-dimensional host string array, lower bound 0, holding the matrix's elements in storage order.
HostStringArray* toHostStringArray(const matrix<std::u16string>& strings);

/// Copies all elements of a matrix to a caller's array, column by column.
template <class T>
void copyToFrontEnd(const matrix<T>& table, T* target) {
    std::copy_n(table.data(), table.size(), target);
}

/// The text of an automation string; null is the empty text.
std::u16string_view textOf(HostString text);

}  // namespace quorva

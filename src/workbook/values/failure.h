// What ends the reading or the calculation of a book.
#pragma once

#include <stdexcept>
#include <string>

namespace quorva::workbook {

/// One sentence for the user. Unreadable and Unsupported: the file or what it uses; Model: the model is wrong (a
/// circular reference, an unsupported function where the simulation needs it).
struct Failure : std::runtime_error {
    enum class Kind { Unreadable, Unsupported, Model };
    Failure(Kind what, const std::string& sentence) : std::runtime_error(sentence), kind(what) {}
    Kind kind;
};

}  // namespace quorva::workbook

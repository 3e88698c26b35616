// The error of a run as a front end reads it.
#pragma once

#include <string>
#include <vector>

#include "platform/front_end_arrays.h"

namespace quorva::testing {

struct ReportedError {
    int code = 0;
    int line = 0;
    int column = 0;
    std::vector<std::u16string> texts;
};

/// The texts of an array that the caller gets, which is destroyed; none for no array.
inline std::vector<std::u16string> takeTexts(HostStringArray* array) {
    std::vector<std::u16string> texts;
    if (array) {
        const matrix<std::u16string> read = fromHostStringArray(array, static_cast<int>(array->rgsabound[0].cElements));
        texts.assign(read.data(), read.data() + read.size());
        SafeArrayDestroy(array);
    }
    return texts;
}

}  // namespace quorva::testing

#include "workbook/formula/words.h"

#include "common/cell_names.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

namespace {

ReferencePart part(std::string_view text, int (*read)(std::string_view)) {
    const bool absolute = text.starts_with('$');
    return {read(text.substr(absolute ? 1 : 0)), absolute};
}

}  // namespace

std::string_view withoutPrefix(std::string_view name) {
    for (bool again = true; again;) {
        again = false;
        for (const std::string_view prefix : {"_xlfn.", "_xlws.", "_xll.", "_xludf.", "_xlpm.", "_xlop."}) {
            if (name.size() > prefix.size() && toLower(name.substr(0, prefix.size())) == prefix) {
                name.remove_prefix(prefix.size());
                again = true;
            }
        }
    }
    return name;
}

ReferencePart columnPart(std::string_view text) { return part(text, columnFromLetters); }
ReferencePart rowPart(std::string_view text) { return part(text, rowFromDigits); }

CellParts cellParts(std::string_view word) {
    std::size_t split = word.starts_with('$') ? 1 : 0;
    while (split < word.size() && isLetter(word[split])) {
        ++split;
    }
    return {columnPart(word.substr(0, split)), rowPart(word.substr(split))};
}

int shifted(ReferencePart part, int shift, int limit) {
    return part.absolute ? part.position : ((part.position + shift) % limit + limit) % limit;
}

}  // namespace quorva::workbook

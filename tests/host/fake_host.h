// The smallest host that model functions can be called in: one calling cell at a time, nothing else.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "quorva/host_value.h"

namespace quorva::testing {

struct Address {
    int row = 0;
    int column = 0;
    std::string sheet = "[Book]Sheet1";
};

struct FakeHost {
    bool calledFromCell = true;
    Address caller;
    int blockRows = 1;  ///< size of the block that the calling formula fills, from the caller on
    int blockColumns = 1;
    bool exhausted = false;                         ///< asked for the caller, runs out of memory
    std::map<std::string, std::uint64_t> sheetIds;  ///< a sheet that is not set gets the next free identifier
    std::vector<int> requests;                      ///< function numbers in the order asked
    int outstanding = 0;                            ///< results not released yet
    int badRequests = 0;                            ///< requests whose arguments are not what the host expects

    std::uint64_t idOf(const std::string& sheet) {
        return sheetIds.try_emplace(sheet, 100 + sheetIds.size()).first->second;
    }
};

extern FakeHost fakeHost;

/// A reference on the caller's own sheet.
XLOPER ownSheetReference(int row, int column);

}  // namespace quorva::testing

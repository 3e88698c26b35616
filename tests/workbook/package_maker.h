// Workbook files made in memory from their parts.
#pragma once

#include <map>
#include <string>

namespace quorva::workbook {

/// Content of each part by its name in the archive.
using Parts = std::map<std::string, std::string>;

/// The bytes of an archive of the parts; empty when it cannot be made (a name that is too long).
std::string zipped(const Parts& parts);

}  // namespace quorva::workbook

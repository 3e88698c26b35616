// The program's outermost layer: parsing, messages and exit statuses.
#pragma once

#include <string>
#include <vector>

namespace quorva::frontend {

/// Runs the program with the arguments behind its name and returns its exit status.
int runProgram(const std::vector<std::string>& arguments);

}  // namespace quorva::frontend

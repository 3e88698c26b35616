// Options from a configuration file.
#pragma once

#include <string>
#include <vector>

#include <CLI/App.hpp>

namespace quorva::frontend {

/// Arguments that a configuration file adds: its keys that the command line does not give. Throws CommandFailure
/// (Usage).
std::vector<std::string> configurationArguments(const std::string& file, const CLI::App& runCommand);

}  // namespace quorva::frontend

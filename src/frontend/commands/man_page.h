// The manual page.
#pragma once

#include <string>

#include <CLI/App.hpp>

namespace quorva::frontend {

/// From the same texts as --help.
std::string manPage(const CLI::App& app);

}  // namespace quorva::frontend

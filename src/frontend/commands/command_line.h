// The program's commands and options.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <CLI/App.hpp>

#include "frontend/commands/options.h"

namespace quorva::frontend {

/// The whole command line; options are written to `options` while parsing.
std::unique_ptr<CLI::App> commandLine(CommandOptions& options);
/// The library's help with its lines broken at `width` columns, descriptions under descriptions.
std::string wrappedHelp(const std::string& help, std::size_t width);

}  // namespace quorva::frontend

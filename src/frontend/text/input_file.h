// Files that a command reads.
#pragma once

#include <string>

namespace quorva::frontend {

bool isFile(const std::string& path);

/// The file's bytes. Throws CommandFailure (Usage) when it cannot be read.
std::string fileContents(const std::string& path);

/// The name without its folders.
std::string fileName(const std::string& path);

}  // namespace quorva::frontend

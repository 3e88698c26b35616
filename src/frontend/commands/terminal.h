// The terminal that the program may write to.
#pragma once

#include <optional>

namespace quorva::frontend {

/// Columns of the terminal behind a file descriptor; nothing when there is none or it does not tell.
std::optional<int> terminalColumns(int descriptor);

}  // namespace quorva::frontend

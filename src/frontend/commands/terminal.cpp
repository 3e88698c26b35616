#include "frontend/commands/terminal.h"

#include <sys/ioctl.h>

namespace quorva::frontend {

std::optional<int> terminalColumns(int descriptor) {
    winsize size{};
    return ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? std::optional<int>(size.ws_col)
                                                                        : std::nullopt;
}

}  // namespace quorva::frontend

// Files that are part of the HTML report, carried inside the program.
#pragma once

#include <string_view>

namespace quorva::frontend {

std::string_view reportStyle();
std::string_view reportScript();
/// Chart.js (MIT licence; its banner names it).
std::string_view chartLibrary();

}  // namespace quorva::frontend

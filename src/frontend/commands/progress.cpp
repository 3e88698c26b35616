#include "frontend/commands/progress.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iostream>

#include "frontend/commands/terminal.h"
#include "frontend/text/number_text.h"

namespace quorva::frontend {

std::string progressLine(int done, int planned, double seconds, int columns) {
    constexpr int bars = 24;
    const double share = static_cast<double>(done) / planned;
    const double rate = seconds > 0 ? done / seconds : 0;
    const int filled = static_cast<int>(share * bars);
    std::array<char, 16> percent;
    std::snprintf(percent.data(), percent.size(), "%3d %% ", static_cast<int>(share * 100));
    const std::string bar = "[" + std::string(filled, '#') + std::string(bars - filled, '.') + "] ";
    const std::string counts = groupedNumber(done) + " of " + groupedNumber(planned);
    const std::string speed = rate > 0 ? ", " + groupedNumber(rate) + "/s" : "";
    const std::string left = rate > 0 ? ", " + groupedNumber(std::ceil((planned - done) / rate)) + " s left" : "";
    // The last column stays free: a full line wraps on many terminals.
    const auto room = static_cast<std::size_t>(std::max(columns - 1, 0));
    for (const std::string& line : {percent.data() + bar + counts + speed + left,
                                    percent.data() + counts + speed + left, percent.data() + counts + left}) {
        if (line.size() <= room) {
            return line;
        }
    }
    return std::string(percent.data()).substr(0, room);
}

ProgressBar::ProgressBar(bool shown) : shown_(shown && isatty(STDERR_FILENO)), start_(Clock::now()), next_(start_) {
    next_ += std::chrono::milliseconds(300);
}

void ProgressBar::update(int done, int planned) {
    if (!shown_ || done % 16 != 0) {
        return;
    }
    const auto now = Clock::now();
    if (now < next_) {
        return;
    }
    next_ = now + std::chrono::milliseconds(100);
    drawn_ = true;
    std::cerr << "\r\033[K"
              << progressLine(done, planned, std::chrono::duration<double>(now - start_).count(),
                              terminalColumns(STDERR_FILENO).value_or(100))
              << std::flush;
}

void ProgressBar::clear() {
    if (drawn_) {
        std::cerr << "\r\033[K" << std::flush;
        drawn_ = false;
    }
}

}  // namespace quorva::frontend

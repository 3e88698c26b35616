#include "frontend/progress.h"

#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <iostream>

namespace quorva::frontend {

namespace {
std::string grouped(double value) {
    std::string digits = std::to_string(static_cast<long long>(std::llround(value)));
    for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3) {
        digits.insert(static_cast<std::size_t>(at), ",");
    }
    return digits;
}
}  // namespace

std::string progressLine(int done, int planned, double seconds) {
    constexpr int bars = 24;
    const double share = static_cast<double>(done) / planned;
    const double rate = seconds > 0 ? done / seconds : 0;
    const int filled = static_cast<int>(share * bars);
    std::array<char, 16> percent;
    std::snprintf(percent.data(), percent.size(), "%3d %% ", static_cast<int>(share * 100));
    std::string line = percent.data();
    line += "[" + std::string(filled, '#') + std::string(bars - filled, '.') + "] ";
    line += grouped(done) + " of " + grouped(planned);
    if (rate > 0) {
        line += ", " + grouped(rate) + "/s, " + grouped(std::ceil((planned - done) / rate)) + " s left";
    }
    return line;
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
    std::cerr << "\r\033[K" << progressLine(done, planned, std::chrono::duration<double>(now - start_).count())
              << std::flush;
}

void ProgressBar::clear() {
    if (drawn_) {
        std::cerr << "\r\033[K" << std::flush;
        drawn_ = false;
    }
}

}  // namespace quorva::frontend

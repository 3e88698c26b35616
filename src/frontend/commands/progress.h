// The progress bar of a run, on a terminal only.
#pragma once

#include <chrono>
#include <string>

namespace quorva::frontend {

/// One line of a progress bar: share, bar, counts, rate, time left. On a narrow terminal (`columns`) the bar goes
/// first, then the rate: a line that wraps could not be written over.
std::string progressLine(int done, int planned, double seconds, int columns = 100);

class ProgressBar {
public:
    explicit ProgressBar(bool shown);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar() { clear(); }
    void update(int done, int planned);
    void clear();

private:
    using Clock = std::chrono::steady_clock;
    bool shown_;
    bool drawn_ = false;
    Clock::time_point start_;
    Clock::time_point next_;
};

}  // namespace quorva::frontend

#include "frontend/commands/interruption.h"

#include <csignal>

namespace quorva::frontend {

namespace {
volatile std::sig_atomic_t requested = 0;
}

void watchForInterruption() {
    struct sigaction action {};
    action.sa_handler = [](int) { requested = 1; };
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool interruptionRequested() { return requested != 0; }

}  // namespace quorva::frontend

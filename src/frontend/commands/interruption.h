// Ctrl-C ends a run after the current iteration; a second one ends the program at once.
#pragma once

namespace quorva::frontend {

void watchForInterruption();
bool interruptionRequested();

}  // namespace quorva::frontend

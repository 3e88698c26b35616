// The host's library: its one entry, answered by the process's scripted host.
#include "scripted_host.h"

namespace {
quorva::testing::ScriptedHost processHost;
}

extern "C" {

quorva::testing::ScriptedHost* scriptedHost() { return &processHost; }

int Excel4v(int function, quorva::XLOPER* result, int count, quorva::XLOPER** arguments) {
    return processHost.answer(function, result, count, arguments);
}
}

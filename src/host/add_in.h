// The add-in's life cycle: what the host calls at load, at unload and from its add-in manager.
#pragma once

#include "quorva/front_end.h"
#include "quorva/host_value.h"

extern "C" {
/// The add-in's name for action 1, otherwise #VALUE!. The value belongs to the add-in and lives until the next call.
quorva::XLOPER* xlAddInManagerInfo(quorva::XLOPER* action);
}

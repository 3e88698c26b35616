// What a host calls in an add-in besides its life cycle (quorva/front_end.h).
#pragma once

#include "quorva/host_value.h"

extern "C" {

/// The add-in's name for action 1, otherwise #VALUE!. The value belongs to the add-in and lives until the next call.
quorva::XLOPER* xlAddInManagerInfo(quorva::XLOPER* action);

/// Stores the host process's own export "MdCallBack12", or `entryPoint` where the process has none. Does nothing once
/// an address is stored.
void SetExcel12EntryPt(void* entryPoint);
}

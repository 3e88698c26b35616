// The call-back address that hosts hand to add-ins at load, set by SetExcel12EntryPt.
#pragma once

#include "quorva/add_in.h"

namespace quorva {
/// The stored address, null at first. Nothing uses it: every request goes through callHost.
void* hostEntryPoint();
}  // namespace quorva

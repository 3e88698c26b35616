// The call-back address that hosts hand to add-ins at load.
#pragma once

extern "C" {
/// Stores the host process's own export "MdCallBack12", or `entryPoint` where the process has none. Does nothing once
/// an address is stored.
void SetExcel12EntryPt(void* entryPoint);
}

namespace quorva {
/// The stored address, null at first. Kept for hosts that set it; every request goes through callHost.
void* hostEntryPoint();
}  // namespace quorva

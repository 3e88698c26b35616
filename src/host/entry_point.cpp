#include "host/entry_point.h"

#include "platform/platform.h"

namespace quorva {
namespace {
void* storedEntryPoint = nullptr;
}
void* hostEntryPoint() { return storedEntryPoint; }
}  // namespace quorva

extern "C" void SetExcel12EntryPt(void* entryPoint) {
    if (quorva::storedEntryPoint) {
        return;
    }
    void* ownExport = quorva::hostProcessSymbol("MdCallBack12");
    quorva::storedEntryPoint = ownExport ? ownExport : entryPoint;
}

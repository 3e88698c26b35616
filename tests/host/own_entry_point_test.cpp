// The call-back address, in a process that exports one.
#include <gtest/gtest.h>

#include "host/entry_point.h"

#ifdef _WIN32
#define EXPORTED __declspec(dllexport)
#else
#define EXPORTED __attribute__((visibility("default")))
#endif

extern "C" EXPORTED int MdCallBack12() { return 0; }

namespace {

TEST(EntryPoint, TheProcessesOwnExportComesBeforeTheAddressGiven) {
    int given = 0;
    SetExcel12EntryPt(&given);
    EXPECT_EQ(quorva::hostEntryPoint(), reinterpret_cast<void*>(&MdCallBack12));
    SetExcel12EntryPt(&given);
    EXPECT_EQ(quorva::hostEntryPoint(), reinterpret_cast<void*>(&MdCallBack12));
}

}  // namespace

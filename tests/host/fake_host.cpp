#include "fake_host.h"

#include <cstring>
#include <new>

namespace quorva::testing {

FakeHost fakeHost;

XLOPER ownSheetReference(int row, int column) {
    XLOPER value{};
    value.type = hosttype::localReference;
    value.value.localReference.count = 1;
    value.value.localReference.range = {static_cast<std::uint16_t>(row), static_cast<std::uint16_t>(row),
                                        static_cast<std::uint8_t>(column), static_cast<std::uint8_t>(column)};
    return value;
}

namespace {

void answerCaller(XLOPER& result) {
    if (fakeHost.exhausted) {
        throw std::bad_alloc();
    }
    if (fakeHost.calledFromCell) {
        result = ownSheetReference(fakeHost.caller.row, fakeHost.caller.column);
        HostRange& range = result.value.localReference.range;
        range.lastRow = static_cast<std::uint16_t>(range.firstRow + fakeHost.blockRows - 1);
        range.lastColumn = static_cast<std::uint8_t>(range.firstColumn + fakeHost.blockColumns - 1);
    } else {
        result.type = hosttype::error;
        result.value.error = hosterror::ref;
    }
    ++fakeHost.outstanding;
}

void answerSheetName(XLOPER& result, const XLOPER& reference) {
    static char text[256];
    fakeHost.badRequests += reference.type != hosttype::localReference;
    text[0] = static_cast<char>(fakeHost.caller.sheet.size());
    std::memcpy(text + 1, fakeHost.caller.sheet.data(), fakeHost.caller.sheet.size());
    result.type = hosttype::text;
    result.value.text = text;
    ++fakeHost.outstanding;
}

void answerSheetId(XLOPER& result, const XLOPER& name) {
    fakeHost.badRequests += name.type != hosttype::text;
    const std::string sheet(name.value.text + 1, static_cast<unsigned char>(*name.value.text));
    result.type = hosttype::reference;
    result.value.reference.list = nullptr;
    result.value.reference.sheetId = fakeHost.idOf(sheet);
    ++fakeHost.outstanding;
}

}  // namespace
}  // namespace quorva::testing

using namespace quorva;
using namespace quorva::testing;

extern "C" int Excel4v(int function, XLOPER* result, int count, XLOPER** arguments) {
    fakeHost.requests.push_back(function);
    switch (function) {
        case hostfunction::caller:
            answerCaller(*result);
            break;
        case hostfunction::sheetName:
            answerSheetName(*result, *arguments[0]);
            break;
        case hostfunction::sheetId:
            answerSheetId(*result, *arguments[0]);
            break;
        case hostfunction::free:
            fakeHost.outstanding -= count;
            break;
        default:  // registration: an identifier, which nobody releases
            if (result) {
                result->type = hosttype::number;
                result->value.number = 1.0;
            }
    }
    return 0;
}

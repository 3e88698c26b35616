#include "host/host_call.h"

#include "host/scratch.h"
#include "platform/platform.h"

namespace quorva {

namespace {

/// Keeps the temporaries of a host call while it lasts, and gives them back.
class CallInProgress {
public:
    CallInProgress() : scratch_(ScratchPools::instance().forThread(currentThreadId())), around_(scratch_.beginCall()) {}
    ~CallInProgress() { scratch_.endCall(around_); }
    CallInProgress(const CallInProgress&) = delete;
    CallInProgress& operator=(const CallInProgress&) = delete;

private:
    ThreadScratch& scratch_;
    ThreadScratch::Kept around_;
};

}  // namespace

int callHostWith(int function, XLOPER* result, std::span<XLOPER*> arguments) {
    const CallInProgress call;
    return Excel4v(function, result, static_cast<int>(arguments.size()), arguments.data());
}

XLOPER* scratchAlloc() { return ScratchPools::instance().forThread(currentThreadId()).allocate(); }

XLOPER* tempText(std::string_view text) {
    ThreadScratch& scratch = ScratchPools::instance().forThread(currentThreadId());
    XLOPER* value = scratch.allocate();
    if (value) {
        value->type = hosttype::text;
        value->value.text = scratch.keepText(text);
    }
    return value;
}

XLOPER* tempInteger(std::int16_t number) {
    XLOPER* value = scratchAlloc();
    if (value) {
        value->type = hosttype::integer;
        value->value.integer = number;
    }
    return value;
}

XLOPER* tempMissing() {
    XLOPER* value = scratchAlloc();
    if (value) {
        value->type = hosttype::missing;
    }
    return value;
}

std::u16string wideFromHostText(const char* text, HostBool counted) {
    if (!text) {
        return {};
    }
    if (isTrue(counted)) {
        return wideFromBytes({text + 1, static_cast<unsigned char>(*text)});
    }
    return wideFromBytes(text);
}

}  // namespace quorva

// The bridge through which every request to the host goes, and the temporary values that requests are built from.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "quorva/automation.h"
#include "quorva/host_value.h"

namespace quorva {

/// Longest text that a counted byte string can hold.
constexpr int longestHostText = 255;

/// Asks the host for `function`. `result` may be null, and so may any argument, which the host then receives as absent.
/// Temporaries of the calling thread are gone afterwards, but for those of a call around this one: the host may call
/// back. Returns the host's code, 0 on success; callers look at the
/// type word of the result instead.
int callHostWith(int function, XLOPER* result, std::span<XLOPER*> arguments);

/// The same with the arguments written out: callHost(hostfunction::coerce, &result, &value, tempInteger(2048)).
template <class... Arguments>
int callHost(int function, XLOPER* result, Arguments*... arguments) {
    std::array<XLOPER*, sizeof...(Arguments)> list{arguments...};
    return callHostWith(function, result, list);
}

/// Room for one temporary host value of the calling thread, valid until the end of its next host call; null when the
/// thread has used up its scratch block.
XLOPER* scratchAlloc();

/// A temporary text. The first character of `text` is a placeholder for the length; what follows it is the text, of at
/// most 255 characters. Null when there is no scratch space left.
XLOPER* tempText(std::string_view text);

/// A temporary 16-bit integer; null when there is no scratch space left.
XLOPER* tempInteger(std::int16_t value);

/// A temporary missing value; null when there is no scratch space left.
XLOPER* tempMissing();

/// Wide text from a byte text in the thread's code page. `counted` -1: a host text, whose first byte holds the length;
/// otherwise a zero-terminated text, such as a name given to a worksheet function. Null gives the empty text.
std::u16string wideFromHostText(const char* text, HostBool counted);

}  // namespace quorva

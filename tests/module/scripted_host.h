// A host for tests: answers the module's requests from a script and remembers every one of them. On Linux it lives in
// the test program, which the module takes its call-back from; on Windows in an XLCall32.dll beside the test program.
// Either way the test reaches it through host().
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quorva/host_value.h"

namespace quorva::testing {

/// A copy of an argument, taken while the host was being called.
struct ArgumentCopy {
    bool absent = false;  ///< a null address in place of a value
    std::uint16_t type = 0;
    double number = 0.0;
    std::string text;
    int integer = 0;  ///< of an integer, Boolean or error value
    std::uint64_t sheetId = 0;
    std::vector<HostRange> ranges;
};

/// One request to the host.
struct HostCall {
    int function = 0;
    bool wantsResult = false;
    std::vector<ArgumentCopy> arguments;
};

/// A cell; row and column count from 0.
struct HostCell {
    std::string sheet = "[Book1]Sheet1";
    int row = 0;
    int column = 0;
};

/// What is registered under an identifier.
struct Registration {
    std::string procedure;
    std::string typeText;
    std::string functionText;
    int macroType = 1;
};

class ScriptedHost {
public:
    // --- script ---

    /// Forgets everything: script, log, registrations and counts.
    void reset();

    /// The cell whose formula is being calculated; none: the module is not called from a cell, and the request for the
    /// caller is answered with #REF!.
    std::optional<HostCell> caller = HostCell{};

    /// The path that the add-in is told as its own.
    std::string modulePath = "C:\\AddIns\\QUORVAMC4R.xll";

    /// Identifier of a sheet by its name; sheets get 1001, 1002, ... when first named, unless set here.
    std::uint64_t sheetId(const std::string& sheet);
    void setSheetId(const std::string& sheet, std::uint64_t identifier) { sheetIds_[sheet] = identifier; }

    /// Answers a request instead of the script when set and when it returns a code. The request is logged before.
    std::function<std::optional<int>(int function, XLOPER* result, int count, XLOPER** arguments)> override;

    // --- values to pass to worksheet functions ---

    /// A reference argument as the host passes it to the calling cell: on the caller's own sheet a local reference, on
    /// another sheet a reference with its sheet's identifier. Valid until reset().
    XLOPER* referenceTo(const HostCell& cell);
    /// A number in place of a reference. Valid until reset().
    XLOPER* plainNumber(double number);

    // --- what happened ---

    bool recordCalls = true;
    std::vector<HostCall> calls;
    std::vector<HostCall> callsOf(int function) const;
    /// Identifier to registration, as it stands now.
    std::map<double, Registration> registrations;
    /// The registration that a worksheet name stands for now: the last one made for it; null when there is none.
    const Registration* registered(const std::string& functionText) const;

    /// Host memory handed out with results and not released yet.
    std::size_t outstanding() const { return handedOut_.size(); }
    /// Requests to release memory that is not (or no longer) the host's.
    int foreignFrees = 0;

    /// The host's entry.
    int answer(int function, XLOPER* result, int count, XLOPER** arguments);

private:
    int answerFromScript(int function, XLOPER& result, int count, XLOPER** arguments);
    int answerCaller(XLOPER& result) const;
    int answerSheetName(XLOPER& result, const XLOPER* reference);
    int answerSheetId(XLOPER& result, const XLOPER* name);
    int answerRegister(XLOPER& result, int count, XLOPER** arguments);
    int answerUnregister(XLOPER& result, const XLOPER* identifier);
    int coerce(XLOPER& result, const XLOPER* value, const XLOPER* type) const;
    int release(int count, XLOPER** arguments);
    void handOutText(XLOPER& result, const std::string& text);

    std::map<std::string, std::uint64_t> sheetIds_;
    std::map<const void*, std::unique_ptr<char[]>> handedOut_;
    std::vector<std::unique_ptr<XLOPER>> values_;
    std::vector<std::unique_ptr<HostRangeList>> rangeLists_;
    double lastIdentifier_ = 0.0;
};

/// Text of a counted byte string.
std::string textOf(const XLOPER& value);

}  // namespace quorva::testing

extern "C" quorva::testing::ScriptedHost* scriptedHost();

namespace quorva::testing {
inline ScriptedHost& host() { return *scriptedHost(); }
}  // namespace quorva::testing

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/guarded.h"
#include "host/host_call.h"
#include "host/worksheet_functions.h"
#include "quorva/add_in.h"
#include "quorva/front_end.h"

namespace quorva {
namespace {

struct AddIn {
    XLOPER pathFromHost{};  ///< memory of the host, until a closing
    XLOPER modulePath{};    ///< the same in memory of its own
    std::array<char, longestHostText + 1> pathText{};
    std::array<XLOPER, modelFunctionCount> identifiers{};
    bool modelIsVolatile = false;
};

AddIn addIn;

/// A user may cancel the closing of the host after xlAutoClose, and go on with the add-in: the path must outlive what
/// the host is given back.
void askForPath() {
    callHost(hostfunction::getName, &addIn.pathFromHost);
    addIn.modulePath = addIn.pathFromHost;
    if (addIn.modulePath.type == hosttype::text && addIn.modulePath.value.text) {
        const char* text = addIn.pathFromHost.value.text;
        std::copy_n(text, static_cast<unsigned char>(*text) + std::size_t{1}, addIn.pathText.begin());
        addIn.modulePath.value.text = addIn.pathText.data();
    }
}

constexpr int international(int function) { return function + hostfunction::internationalFlag; }

XLOPER registerTexts(int function, const std::vector<std::string>& texts) {
    std::vector<XLOPER*> arguments{&addIn.modulePath};
    std::transform(texts.begin(), texts.end(), std::back_inserter(arguments),
                   [](const std::string& text) { return tempText(text); });
    XLOPER identifier{};
    callHostWith(function, &identifier, arguments);
    return identifier;
}

void registerModelFunctions(const std::vector<WorksheetFunction>& functions, Recalculation recalculation) {
    for (std::size_t i = 0; i < functions.size(); ++i) {
        addIn.identifiers[i] = registerTexts(international(hostfunction::registerFunction),
                                             registrationTexts(functions[i], recalculation, modelHelpPlaces));
    }
}

void registerStatisticFunctions() {
    for (const WorksheetFunction& function : statisticFunctions()) {
        registerTexts(hostfunction::registerFunction,
                      registrationTexts(function, Recalculation::Always, statisticHelpPlaces));
    }
}

/// The host keeps a worksheet name bound to the type text it was first given; registering the name as a hidden command
/// frees it.
void detachName(std::string_view name) {
    XLOPER identifier{};
    callHost(hostfunction::registerFunction, &identifier, &addIn.modulePath, tempText(" xlAutoClose"), tempText(" J"),
             tempText(" " + std::string(name)), tempMissing(), tempInteger(0));
}

/// Registers the model functions anew. Going volatile and going back unregister through different forms of the host's
/// function; intended.
void reregisterModelFunctions(int unregisterForm, Recalculation recalculation) {
    const std::vector<WorksheetFunction> functions = modelFunctions();
    for (XLOPER& identifier : addIn.identifiers) {
        XLOPER answer{};
        callHost(unregisterForm, &answer, &identifier);
    }
    for (const WorksheetFunction& function : functions) {
        detachName(function.name);
    }
    registerModelFunctions(functions, recalculation);
    addIn.modelIsVolatile = recalculation == Recalculation::Always;
}

/// What the add-in manager was answered last.
struct ManagerAnswer {
    XLOPER value{};
    std::unique_ptr<char[]> text;
};

ManagerAnswer managerAnswer;

/// The add-in manager's answer. The first byte of the text is a blank where the host expects the length; intended, it
/// has always answered so.
void answerManager(XLOPER* action) {
    static constexpr std::string_view name{" QUORVAMC4R", 12};
    XLOPER& answer = managerAnswer.value;
    answer.value.error = hosterror::value;
    answer.type = hosttype::error;

    XLOPER number{};
    callHost(hostfunction::coerce, &number, action, tempInteger(hosttype::integer));
    if (number.type == hosttype::integer && number.value.integer == 1) {
        managerAnswer.text = std::make_unique<char[]>(name.size() + 1);
        std::copy(name.begin(), name.end(), managerAnswer.text.get());
        answer.value.text = managerAnswer.text.get();
        answer.type = hosttype::text;
    }
}

}  // namespace
}  // namespace quorva

using namespace quorva;

extern "C" {

int xlAutoOpen() {
    guarded([] {
        askForPath();
        registerModelFunctions(modelFunctions(), Recalculation::WhenNeeded);
        registerStatisticFunctions();
        addIn.modelIsVolatile = false;
    });
    return 1;
}

int xlAutoClose() {
    guarded([] {
        callHost(hostfunction::free, nullptr, &addIn.pathFromHost);
        addIn.pathFromHost = {};
    });
    return 1;
}

XLOPER* xlAddInManagerInfo(XLOPER* action) {
    guarded([&] { answerManager(action); });
    return &managerAnswer.value;
}

void Cpp_SimVolatile() {
    guarded([] {
        if (!addIn.modelIsVolatile) {
            reregisterModelFunctions(hostfunction::unregisterFunction, Recalculation::Always);
        }
    });
}

void Cpp_SimNotVolatile() {
    guarded([] {
        if (addIn.modelIsVolatile) {
            reregisterModelFunctions(international(hostfunction::unregisterFunction), Recalculation::WhenNeeded);
        }
    });
}
}

#include "scripted_host.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace quorva::testing {
namespace {

constexpr int success = 0;
constexpr int failed = 32;

int fail(XLOPER& result, std::uint16_t error) {
    result.type = hosttype::error;
    result.value.error = error;
    return failed;
}

int answerNumber(XLOPER& result, double number) {
    result.type = hosttype::number;
    result.value.number = number;
    return success;
}

HostRange rangeOf(const HostCell& cell) {
    return {static_cast<std::uint16_t>(cell.row), static_cast<std::uint16_t>(cell.row),
            static_cast<std::uint8_t>(cell.column), static_cast<std::uint8_t>(cell.column)};
}

ArgumentCopy copyOf(const XLOPER* value) {
    ArgumentCopy copy;
    if (!value) {
        copy.absent = true;
        return copy;
    }
    copy.type = value->type;
    switch (value->type) {
        case hosttype::number:
            copy.number = value->value.number;
            break;
        case hosttype::text:
            copy.text = textOf(*value);
            break;
        case hosttype::boolean:
            copy.integer = value->value.boolean;
            break;
        case hosttype::error:
            copy.integer = value->value.error;
            break;
        case hosttype::integer:
            copy.integer = value->value.integer;
            break;
        case hosttype::localReference:
            copy.ranges.push_back(value->value.localReference.range);
            break;
        case hosttype::reference:
            copy.sheetId = value->value.reference.sheetId;
            if (const HostRangeList* list = value->value.reference.list) {
                copy.ranges.assign(list->ranges, list->ranges + list->count);
            }
            break;
        default:
            break;
    }
    return copy;
}

const XLOPER* argument(int count, XLOPER** arguments, int position) {
    return position < count ? arguments[position] : nullptr;
}

std::string textArgument(int count, XLOPER** arguments, int position) {
    const XLOPER* value = argument(count, arguments, position);
    return value && value->type == hosttype::text ? textOf(*value) : std::string();
}

}  // namespace

std::string textOf(const XLOPER& value) {
    return {value.value.text + 1, static_cast<std::size_t>(static_cast<unsigned char>(*value.value.text))};
}

void ScriptedHost::reset() { *this = ScriptedHost(); }

std::uint64_t ScriptedHost::sheetId(const std::string& sheet) {
    return sheetIds_.try_emplace(sheet, 1001 + sheetIds_.size()).first->second;
}

XLOPER* ScriptedHost::referenceTo(const HostCell& cell) {
    XLOPER& value = *values_.emplace_back(std::make_unique<XLOPER>());
    if (caller && caller->sheet == cell.sheet) {
        value.type = hosttype::localReference;
        value.value.localReference = {1, rangeOf(cell)};
    } else {
        HostRangeList& list = *rangeLists_.emplace_back(std::make_unique<HostRangeList>());
        list = {1, {rangeOf(cell)}};
        value.type = hosttype::reference;
        value.value.reference = {&list, sheetId(cell.sheet)};
    }
    return &value;
}

XLOPER* ScriptedHost::plainNumber(double number) {
    XLOPER& value = *values_.emplace_back(std::make_unique<XLOPER>());
    answerNumber(value, number);
    return &value;
}

std::vector<HostCall> ScriptedHost::callsOf(int function) const {
    std::vector<HostCall> found;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(found),
                 [=](const HostCall& call) { return call.function == function; });
    return found;
}

const Registration* ScriptedHost::registered(const std::string& functionText) const {
    const auto found = std::find_if(registrations.rbegin(), registrations.rend(),
                                    [&](const auto& entry) { return entry.second.functionText == functionText; });
    return found == registrations.rend() ? nullptr : &found->second;
}

int ScriptedHost::answer(int function, XLOPER* result, int count, XLOPER** arguments) {
    if (recordCalls) {
        HostCall call{function, result != nullptr, {}};
        std::transform(arguments, arguments + count, std::back_inserter(call.arguments), copyOf);
        calls.push_back(std::move(call));
    }
    if (override) {
        if (const std::optional<int> code = override(function, result, count, arguments)) {
            return *code;
        }
    }
    XLOPER unwanted{};
    return answerFromScript(function, result ? *result : unwanted, count, arguments);
}

int ScriptedHost::answerFromScript(int function, XLOPER& result, int count, XLOPER** arguments) {
    switch (function & ~hostfunction::internationalFlag) {
        case hostfunction::caller:
            return answerCaller(result);
        case hostfunction::registerFunction:
            return answerRegister(result, count, arguments);
        case hostfunction::unregisterFunction:
            return answerUnregister(result, argument(count, arguments, 0));
        case hostfunction::free:
            return release(count, arguments);
        case hostfunction::coerce:
            return coerce(result, argument(count, arguments, 0), argument(count, arguments, 1));
        case hostfunction::sheetId:
            return answerSheetId(result, argument(count, arguments, 0));
        case hostfunction::sheetName:
            return answerSheetName(result, argument(count, arguments, 0));
        case hostfunction::getName:
            handOutText(result, modulePath);
            return success;
        default:
            return fail(result, hosterror::value);
    }
}

int ScriptedHost::answerCaller(XLOPER& result) const {
    if (!caller) {
        fail(result, hosterror::ref);
        return success;
    }
    result.type = hosttype::localReference;
    result.value.localReference = {1, rangeOf(*caller)};
    return success;
}

int ScriptedHost::answerSheetName(XLOPER& result, const XLOPER* reference) {
    if (!reference) {
        return fail(result, hosterror::value);
    }
    if (reference->type == hosttype::localReference && caller) {
        handOutText(result, caller->sheet);
        return success;
    }
    if (reference->type == hosttype::reference) {
        for (const auto& [name, identifier] : sheetIds_) {
            if (identifier == reference->value.reference.sheetId) {
                handOutText(result, name);
                return success;
            }
        }
    }
    return fail(result, hosterror::value);
}

int ScriptedHost::answerSheetId(XLOPER& result, const XLOPER* name) {
    std::string sheet;
    if (name && name->type == hosttype::text) {
        sheet = textOf(*name);
    } else if (caller) {
        sheet = caller->sheet;
    } else {
        return fail(result, hosterror::value);
    }
    result.type = hosttype::reference;
    result.value.reference = {nullptr, sheetId(sheet)};
    return success;
}

int ScriptedHost::answerRegister(XLOPER& result, int count, XLOPER** arguments) {
    Registration registration{textArgument(count, arguments, 1), textArgument(count, arguments, 2),
                              textArgument(count, arguments, 3), 1};
    if (const XLOPER* macroType = argument(count, arguments, 5)) {
        registration.macroType =
            macroType->type == hosttype::text ? std::atoi(textOf(*macroType).c_str()) : macroType->value.integer;
    }
    lastIdentifier_ += 1.0;
    registrations[lastIdentifier_] = registration;
    return answerNumber(result, lastIdentifier_);
}

int ScriptedHost::answerUnregister(XLOPER& result, const XLOPER* identifier) {
    if (!identifier || identifier->type != hosttype::number || registrations.erase(identifier->value.number) == 0) {
        return fail(result, hosterror::value);
    }
    result.type = hosttype::boolean;
    result.value.boolean = 1;
    return success;
}

int ScriptedHost::coerce(XLOPER& result, const XLOPER* value, const XLOPER* type) const {
    if (!value || !type || type->type != hosttype::integer || type->value.integer != hosttype::integer) {
        return fail(result, hosterror::value);
    }
    double number = 0.0;
    if (value->type == hosttype::number) {
        number = value->value.number;
    } else if (value->type == hosttype::integer) {
        number = value->value.integer;
    } else if (value->type == hosttype::boolean) {
        number = value->value.boolean;
    } else if (value->type == hosttype::text) {
        const std::string text = textOf(*value);
        char* end = nullptr;
        number = std::strtod(text.c_str(), &end);
        if (text.empty() || *end != '\0') {
            return fail(result, hosterror::value);
        }
    } else {
        return fail(result, hosterror::value);
    }
    if (!(std::abs(number) < 32768.0)) {
        return fail(result, hosterror::num);
    }
    result.type = hosttype::integer;
    result.value.integer = static_cast<std::int16_t>(number);
    return success;
}

int ScriptedHost::release(int count, XLOPER** arguments) {
    for (int i = 0; i < count; ++i) {
        const XLOPER* value = arguments[i];
        if (!value) {
            continue;
        }
        const void* memory = nullptr;
        if (value->type == hosttype::text) {
            memory = value->value.text;
        } else if (value->type == hosttype::reference) {
            memory = value->value.reference.list;
        }
        if (memory && handedOut_.erase(memory) == 0) {
            ++foreignFrees;
        }
    }
    return success;
}

void ScriptedHost::handOutText(XLOPER& result, const std::string& text) {
    const std::size_t size = std::min<std::size_t>(text.size(), 255);
    // No zero behind the characters: a reader that needs one is wrong.
    auto memory = std::make_unique<char[]>(size + 1);
    memory[0] = static_cast<char>(static_cast<unsigned char>(size));
    std::copy_n(text.begin(), size, memory.get() + 1);
    result.type = hosttype::text;
    result.value.text = memory.get();
    handedOut_[memory.get()] = std::move(memory);
}

}  // namespace quorva::testing

// What a value is: IS functions, types, and the logical functions that need no special evaluation.
#include <cmath>

#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

Value isBlank(Call&, Arguments arguments) { return arguments[0].value.isBlank(); }
Value isNumber(Call&, Arguments arguments) { return arguments[0].value.isNumber(); }
Value isText(Call&, Arguments arguments) { return arguments[0].value.isText(); }
Value isNonText(Call&, Arguments arguments) { return !arguments[0].value.isText(); }
Value isLogical(Call&, Arguments arguments) { return arguments[0].value.isBoolean(); }
Value isError(Call&, Arguments arguments) { return arguments[0].value.isError(); }
Value isNotAvailable(Call&, Arguments arguments) {
    return arguments[0].value.isError() && arguments[0].value.error() == ErrorCode::NA;
}
Value isOtherError(Call&, Arguments arguments) {
    return arguments[0].value.isError() && arguments[0].value.error() != ErrorCode::NA;
}

/// ISEVEN and ISODD take numbers and texts that read as numbers; a Boolean is #VALUE!.
Value parity(const Call& call, Arguments arguments, double wanted) {
    if (arguments[0].value.isBoolean()) {
        return ErrorCode::Value;
    }
    const auto number = toNumber(arguments[0].value, call.date1904);
    return number ? Value(std::fmod(std::trunc(std::fabs(*number)), 2) == wanted) : Value(number.error());
}
Value isEven(Call& call, Arguments arguments) { return parity(call, arguments, 0); }
Value isOdd(Call& call, Arguments arguments) { return parity(call, arguments, 1); }

Value asNumber(Call&, Arguments arguments) {
    const Value& value = arguments[0].value;
    if (value.isNumber()) {
        return value;
    }
    return value.isBoolean() ? value.number() : 0.0;
}

Value notAvailable(Call&, Arguments) { return ErrorCode::NA; }

Value errorType(Call&, Arguments arguments) {
    return arguments[0].value.isError() ? Value(static_cast<int>(arguments[0].value.error()) + 1)
                                        : Value(ErrorCode::NA);
}

Value type(Call& call, Arguments arguments) {
    if (arguments[0].value.isArray()) {
        return 64;
    }
    if (arguments[0].value.isReference() && arguments[0].grid(call).size() > 1) {
        return 64;
    }
    switch (arguments[0].scalar(call).type()) {
        case Value::Type::Text:
            return 2;
        case Value::Type::Boolean:
            return 4;
        case Value::Type::Error:
            return 16;
        case Value::Type::Lambda:
            return 128;
        default:
            return 1;
    }
}

/// The answers of INFO that mean something without a window: those of Excel for Windows.
Value info(Call& call, Arguments arguments) {
    const std::string kind = toLower(arguments[0].text());
    if (kind == "recalc") {
        return "Automatic";
    }
    if (kind == "system") {
        return "pcdos";
    }
    if (kind == "release") {
        return "16.0";
    }
    if (kind == "osversion") {
        return "Windows (64-bit) NT 10.00";
    }
    if (kind == "origin") {
        return "$A:$A$1";
    }
    if (kind == "numfile") {
        return call.cells.sheetCount();
    }
    return ErrorCode::Value;
}

// ---- logic ----

/// Calls visit(bool) for every truth value of the arguments: in ranges and arrays Booleans and numbers, typed ones also
/// texts that read TRUE or FALSE. Typed texts that are empty or read as numbers are left out, as texts in ranges are;
/// other typed texts are #VALUE!, and so are arguments without any truth value.
template <class Visit>
std::optional<ErrorCode> forEachTruth(const Call& call, Arguments arguments, Visit&& visit) {
    std::optional<ErrorCode> error;
    bool any = false;
    const auto take = [&](const Value& value) -> bool {
        if (value.isError()) {
            error = value.error();
        } else if (value.isBoolean() || value.isNumber()) {
            visit(value.number() != 0);
            any = true;
        }
        return !error;
    };
    for (const Argument& argument : arguments) {
        if (argument.value.isReference()) {
            for (const Area& area : argument.value.areas()) {
                Grid(call.cells, area).forEach([&](const Value& value, int, int) -> bool { return take(value); });
            }
        } else if (argument.value.isArray()) {
            argument.grid(call).forEach([&](const Value& value, int, int) -> bool { return take(value); });
        } else if (!argument.value.isText() ||
                   !(argument.text().empty() || parseNumber(argument.text(), call.date1904))) {
            const auto truth = toBoolean(argument.value);
            take(truth ? Value(*truth) : Value(truth.error()));
        }
        if (error) {
            return error;
        }
    }
    return any ? error : std::optional(ErrorCode::Value);
}

Value conjunction(Call& call, Arguments arguments) {
    bool result = true;
    const auto error = forEachTruth(call, arguments, [&](bool truth) { result = result && truth; });
    return error ? Value(*error) : Value(result);
}
Value disjunction(Call& call, Arguments arguments) {
    bool result = false;
    const auto error = forEachTruth(call, arguments, [&](bool truth) { result = result || truth; });
    return error ? Value(*error) : Value(result);
}
Value exclusiveOr(Call& call, Arguments arguments) {
    bool result = false;
    const auto error = forEachTruth(call, arguments, [&](bool truth) { result = result != truth; });
    return error ? Value(*error) : Value(result);
}
Value negation(Call&, Arguments arguments) { return !arguments[0].boolean(); }
Value always(Call&, Arguments) { return true; }
Value never(Call&, Arguments) { return false; }

constexpr FunctionRow logic(std::string_view name, int minArgs, int maxArgs, std::string_view kinds,
                            Function function) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = kinds,
            .category = Category::Logic,
            .function = function};
}

constexpr FunctionRow row(std::string_view name, std::string_view kinds, Function function, int args = 1) {
    return {.name = name,
            .minArgs = args,
            .maxArgs = args,
            .kinds = kinds,
            .category = Category::Information,
            .function = function};
}

constexpr FunctionRow parityRow(std::string_view name, Function function) {
    FunctionRow one = row(name, "S", function);
    one.refusesRanges = true;
    return one;
}

constexpr FunctionRow table[] = {
    logic("AND", 1, anyCount, "R", conjunction),
    logic("FALSE", 0, 0, "", never),
    logic("NOT", 1, 1, "B", negation),
    logic("OR", 1, anyCount, "R", disjunction),
    logic("TRUE", 0, 0, "", always),
    logic("XOR", 1, anyCount, "R", exclusiveOr),
    row("ERROR.TYPE", "E", errorType),
    row("INFO", "T", info),
    row("ISBLANK", "E", isBlank),
    row("ISERR", "E", isOtherError),
    row("ISERROR", "E", isError),
    parityRow("ISEVEN", isEven),
    row("ISLOGICAL", "E", isLogical),
    row("ISNA", "E", isNotAvailable),
    row("ISNONTEXT", "E", isNonText),
    row("ISNUMBER", "E", isNumber),
    parityRow("ISODD", isOdd),
    row("ISTEXT", "E", isText),
    row("N", "C", asNumber),
    row("NA", "", notAvailable, 0),
    row("TYPE", "R", type),
};

}  // namespace

std::span<const FunctionRow> informationFunctions() { return table; }

}  // namespace quorva::workbook

#include "workbook/recalculation/module_link.h"

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <deque>
#include <tuple>
#include <utility>

#include "workbook/recalculation/recalculation.h"

namespace quorva::workbook {

namespace {

constexpr std::size_t longestHostText = 255;

template <std::size_t Size>
struct Types {
    constexpr Types(const char (&text)[Size]) { std::copy_n(text, Size, letters); }
    char letters[Size];
};

/// What a type letter passes to the function.
template <char Letter>
auto pass(HostArgument& argument) {
    if constexpr (Letter == 'B') {
        return std::tuple<double>(argument.number);
    } else if constexpr (Letter == 'F') {
        return std::tuple<const char*>(argument.text);
    } else if constexpr (Letter == 'J') {
        return std::tuple<int>(argument.integer);
    } else if constexpr (Letter == 'A') {
        return std::tuple<short>(argument.boolean);
    } else if constexpr (Letter == 'R') {
        return std::tuple<XLOPER*>(argument.value);
    } else {
        static_assert(Letter == 'O');
        return std::tuple<std::uint16_t*, std::uint16_t*, double*>(&argument.rows, &argument.columns, argument.cells);
    }
}

template <class... Parameters>
double callWith(void (*address)(), std::tuple<Parameters...> arguments) {
    return std::apply(reinterpret_cast<double (*)(Parameters...)>(address), arguments);
}

template <Types Text>
double invoke(void (*address)(), HostArguments& arguments) {
    constexpr std::size_t count = sizeof(Text.letters) - 2;  // the result's letter comes first, a zero last
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
        return callWith(address, std::tuple_cat(pass<Text.letters[I + 1]>(arguments[I])...));
    }
    (std::make_index_sequence<count>());
}

struct Convention {
    std::string_view types;
    double (*invoke)(void (*)(), HostArguments&);
};

constexpr Convention conventions[] = {
    {"BFJBBBBBJBBJ", invoke<"BFJBBBBBJBBJ">},
    {"BFBBJJABJ", invoke<"BFBBJJABJ">},
    {"BFBBAJ", invoke<"BFBBAJ">},
    {"BFRJJ", invoke<"BFRJJ">},
    {"BFRJ", invoke<"BFRJ">},
    {"BFJBBABJ", invoke<"BFJBBABJ">},
    {"BFBJBBABJ", invoke<"BFBJBBABJ">},
    {"BFBBJBBABJ", invoke<"BFBBJBBABJ">},
    {"BFBBBJBBABJ", invoke<"BFBBBJBBABJ">},
    {"BFBBBBJBBABJ", invoke<"BFBBBBJBBABJ">},
    {"BFBBBBBJBBABJ", invoke<"BFBBBBBJBBABJ">},
    {"BFOABJ", invoke<"BFOABJ">},
};

ModuleLink* attached = nullptr;

std::string counted(std::string_view text) {
    text = text.substr(0, longestHostText);
    return static_cast<char>(text.size()) + std::string(text);
}

std::string uncounted(const XLOPER* value) {
    if (!value || value->type != hosttype::text || !value->value.text) {
        return {};
    }
    return {value->value.text + 1, static_cast<unsigned char>(*value->value.text)};
}

std::uint16_t hostError(ErrorCode code) {
    switch (code) {
        case ErrorCode::Null:
            return hosterror::null;
        case ErrorCode::Div0:
            return hosterror::div0;
        case ErrorCode::Ref:
            return hosterror::ref;
        case ErrorCode::Name:
            return hosterror::name;
        case ErrorCode::Num:
            return hosterror::num;
        case ErrorCode::NA:
            return hosterror::na;
        default:
            return hosterror::value;
    }
}

/// Host values that one call passes, with their texts and lists. They end with the call: the module copies what it
/// keeps.
struct HostValues {
    std::deque<XLOPER> values;
    std::deque<std::string> texts;
    std::deque<std::vector<std::uint64_t>> lists;
    std::deque<std::vector<XLOPER>> arrays;
    std::deque<std::vector<double>> matrices;
};

void fillScalar(XLOPER& target, const Value& value, HostValues& values) {
    switch (value.type()) {
        case Value::Type::Number:
            target.type = hosttype::number;
            target.value.number = value.number();
            break;
        case Value::Type::Boolean:
            target.type = hosttype::boolean;
            target.value.boolean = value.boolean() ? 1 : 0;
            break;
        case Value::Type::Text:
            target.type = hosttype::text;
            target.value.text = values.texts.emplace_back(counted(value.text())).data();
            break;
        case Value::Type::Error:
            target.type = hosttype::error;
            target.value.error = hostError(value.error());
            break;
        default:
            target.type = hosttype::nil;
    }
}

bool fits(const Area& area) { return area.lastRow <= 0xFFFF && area.lastColumn <= 0xFF; }

HostRange hostRange(const Area& area) {
    return {static_cast<std::uint16_t>(area.firstRow), static_cast<std::uint16_t>(area.lastRow),
            static_cast<std::uint8_t>(area.firstColumn), static_cast<std::uint8_t>(area.lastColumn)};
}

/// A reference on the caller's own sheet as type 1024, any other as type 8.
void fillReference(XLOPER& target, const Value& value, int ownSheet, HostValues& values) {
    const std::vector<Area>& areas = value.areas();
    if (!std::all_of(areas.begin(), areas.end(), fits)) {
        target.type = hosttype::error;
        target.value.error = hosterror::ref;
        return;
    }
    if (areas.size() == 1 && areas[0].sheet == ownSheet) {
        target.type = hosttype::localReference;
        target.value.localReference = {1, hostRange(areas[0])};
        return;
    }
    const std::size_t bytes = sizeof(HostRangeList) + areas.size() * sizeof(HostRange);
    auto& storage = values.lists.emplace_back(bytes / sizeof(std::uint64_t) + 1);
    auto* list = new (storage.data()) HostRangeList;
    list->count = static_cast<std::uint16_t>(areas.size());
    auto* bytesOfRanges = reinterpret_cast<unsigned char*>(storage.data()) + offsetof(HostRangeList, ranges);
    for (std::size_t i = 0; i < areas.size(); ++i) {
        const HostRange range = hostRange(areas[i]);
        std::memcpy(bytesOfRanges + i * sizeof(HostRange), &range, sizeof range);
    }
    target.type = hosttype::reference;
    target.value.reference = {list, static_cast<std::uint64_t>(areas[0].sheet) + 1};
}

XLOPER* hostValue(const Value& value, int ownSheet, HostValues& values) {
    XLOPER& target = values.values.emplace_back();
    if (value.isReference()) {
        fillReference(target, value, ownSheet, values);
    } else if (value.isArray()) {
        auto& cells = values.arrays.emplace_back(value.arrayCells().size());
        for (std::size_t i = 0; i < cells.size(); ++i) {
            fillScalar(cells[i], value.arrayCells()[i], values);
        }
        target.type = hosttype::array;
        target.value.array = {cells.data(), static_cast<std::uint16_t>(value.arrayRows()),
                              static_cast<std::uint16_t>(value.arrayColumns())};
    } else {
        fillScalar(target, value, values);
    }
    return &target;
}

/// A range or an array of numbers, row by row; false when something in it is no number.
bool fillMatrix(Evaluator& evaluator, const Value& value, HostArgument& argument, HostValues& values) {
    const Value read = value.isReference() ? readReference(evaluator.call, value) : value;
    auto& cells = values.matrices.emplace_back();
    const int rows = read.isArray() ? read.arrayRows() : 1;
    const int columns = read.isArray() ? read.arrayColumns() : 1;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const auto number = toNumber(combinedElement(read, row, column), evaluator.call.date1904);
            if (!number || rows > 0xFFFF) {
                return false;
            }
            cells.push_back(*number);
        }
    }
    argument.rows = static_cast<std::uint16_t>(rows);
    argument.columns = static_cast<std::uint16_t>(columns);
    argument.cells = cells.data();
    return true;
}

}  // namespace

bool convertArgument(char letter, const Value& value, bool date1904, HostArgument& argument, std::string& text) {
    if (letter == 'F') {
        const auto converted = toText(value);
        if (!converted || converted->size() > longestHostText) {
            return false;
        }
        text = *converted;
        argument.text = text.c_str();
        return true;
    }
    if (letter == 'A') {
        const auto boolean = toBoolean(value);
        argument.boolean = boolean && *boolean ? 1 : 0;
        return static_cast<bool>(boolean);
    }
    const auto number = toNumber(value, date1904);
    if (!number) {
        return false;
    }
    argument.number = *number;
    if (letter == 'J') {
        if (!(std::fabs(*number) < 2147483648.0)) {
            return false;
        }
        argument.integer = static_cast<int>(*number);
    }
    return true;
}

ModuleLink::ModuleLink(Recalculation& owner) : recalculation(&owner) {
    for (int i = 0; i < owner.raw->ownSheets; ++i) {
        sheetNames.push_back(
            counted("[" + owner.raw->fileName + "]" + owner.raw->sheets[static_cast<std::size_t>(i)].name));
    }
}

ModuleLink::~ModuleLink() {
    if (attached == this) {
        attached = nullptr;
    }
}

void ModuleLink::open() {
    void* entry = dlsym(RTLD_DEFAULT, "xlAutoOpen");
    if (!entry) {
        throw Failure(Failure::Kind::Unsupported, "The simulation module is not part of this process.");
    }
    Dl_info info;
    modulePath = counted(dladdr(entry, &info) != 0 && info.dli_fname ? info.dli_fname : "");
    attached = this;
    reinterpret_cast<int (*)()>(entry)();
    for (const Registered& function : registrations) {
        if (!function.invoke) {
            throw Failure(Failure::Kind::Unsupported, "The module registers " + function.name + " with the type text " +
                                                          function.types + ", which this host cannot call.");
        }
    }
}

Registered* ModuleLink::function(int number) {
    const auto at = static_cast<std::size_t>(number);
    if (at >= numbers.size()) {
        numbers.resize(at + 1, -1);
    }
    if (numbers[at] < 0) {
        const auto found = byName.find(recalculation->symbols->modelFunctions()[at]);
        if (found == byName.end()) {
            return nullptr;
        }
        numbers[at] = static_cast<int>(found->second);
    }
    return &registrations[static_cast<std::size_t>(numbers[at])];
}

double ModuleLink::call(Registered& function, HostArguments& arguments, int sheet, int row, int column) {
    callerSheet = sheet;
    callerRow = row;
    callerColumn = column;
    const double result = function.invoke(function.address, arguments);
    callerSheet = -1;
    return result;
}

Value callModel(ModuleLink& link, Evaluator& evaluator, const Node& node) {
    for (const auto& [called, result] : link.replay) {
        if (called == &node) {
            return result;
        }
    }
    const std::string& name = link.recalculation->symbols->modelFunctions()[static_cast<std::size_t>(node.index)];
    Registered* function = link.function(node.index);
    if (!function || !function->address) {
        throw Unsupported{"the function " + name + ", unknown to the module"};
    }
    if (evaluator.call.row > 0xFFFF || evaluator.call.column > 0xFF) {
        throw Unsupported{"the function " + name + " beyond row 65536 or column 256, which the module cannot address"};
    }
    const std::size_t count = function->types.size() - 1;
    if (node.children.size() > count) {
        throw Unsupported{"the function " + name + " with more than " + std::to_string(count) + " arguments"};
    }
    HostArguments arguments;
    HostValues values;
    for (std::size_t i = 0; i < count; ++i) {
        const char letter = function->types[i + 1];
        const bool there = i < node.children.size();
        if (letter == 'R') {
            const bool missing = !there || node.children[i].kind == Node::Kind::Missing;
            const Value value = missing ? Value() : evaluator.evaluate(node.children[i]);
            refuseReferenceArray(value);
            arguments[i].value = hostValue(value, evaluator.call.sheet, values);
            if (missing) {
                arguments[i].value->type = hosttype::missing;
            }
        } else if (letter == 'O') {
            const Value value = there ? evaluator.evaluate(node.children[i]) : Value();
            refuseReferenceArray(value);
            if (!fillMatrix(evaluator, value, arguments[i], values)) {
                return ErrorCode::Value;
            }
        } else {
            const Value value = there ? evaluator.evaluateScalar(node.children[i]) : Value();
            if (!convertArgument(letter, value, evaluator.call.date1904, arguments[i], values.texts.emplace_back())) {
                return ErrorCode::Value;
            }
        }
    }
    return Value(link.call(*function, arguments, evaluator.call.sheet, evaluator.call.row, evaluator.call.column));
}

namespace {

constexpr int unavailable = 32;  // the host's return code for a request that fails

void answerError(XLOPER* result, std::uint16_t error) {
    result->type = hosttype::error;
    result->value.error = error;
}

int answerCaller(XLOPER* result) {
    if (attached->callerSheet < 0) {
        answerError(result, hosterror::ref);
        return 0;
    }
    const auto row = static_cast<std::uint16_t>(attached->callerRow);
    const auto column = static_cast<std::uint8_t>(attached->callerColumn);
    result->type = hosttype::localReference;
    result->value.localReference = {1, {row, row, column, column}};
    return 0;
}

int answerSheetId(XLOPER* result, const XLOPER* name) {
    int sheet = std::max(attached->callerSheet, 0);
    // Asked for every model cell: the name is nearly always the calling sheet's, as this host gave it.
    const auto asGiven = [&](const std::string& own) {
        return std::memcmp(own.data(), name->value.text, static_cast<unsigned char>(*name->value.text) + 1u) == 0;
    };
    if (name && name->type == hosttype::text && name->value.text &&
        !(static_cast<std::size_t>(sheet) < attached->sheetNames.size() &&
          attached->sheetNames[static_cast<std::size_t>(sheet)][0] == *name->value.text &&
          asGiven(attached->sheetNames[static_cast<std::size_t>(sheet)]))) {
        std::string text = uncounted(name);
        const auto bracket = text.rfind(']');
        if (text.starts_with('[') && bracket != std::string::npos) {
            text = text.substr(bracket + 1);
        }
        sheet = attached->recalculation->symbols->sheet(text);
    }
    if (sheet < 0 || static_cast<std::size_t>(sheet) >= attached->sheetNames.size()) {
        answerError(result, hosterror::value);
        return 0;
    }
    result->type = hosttype::reference;
    result->value.reference = {nullptr, static_cast<std::uint64_t>(sheet) + 1};
    return 0;
}

int answerSheetName(XLOPER* result, const XLOPER* reference) {
    int sheet = std::max(attached->callerSheet, 0);
    if (reference && reference->type == hosttype::reference && reference->value.reference.sheetId > 0) {
        sheet = static_cast<int>(reference->value.reference.sheetId) - 1;
    }
    if (static_cast<std::size_t>(sheet) >= attached->sheetNames.size()) {
        answerError(result, hosterror::value);
        return 0;
    }
    // The name belongs to the link and outlives the answer: xlFree has nothing to release.
    result->type = hosttype::text;
    result->value.text = attached->sheetNames[static_cast<std::size_t>(sheet)].data();
    return 0;
}

Value scalarOf(const XLOPER* value) {
    switch (value->type) {
        case hosttype::number:
            return value->value.number;
        case hosttype::integer:
            return static_cast<int>(value->value.integer);
        case hosttype::boolean:
            return Value(value->value.boolean != 0);
        case hosttype::text:
            return Value(uncounted(value));
        case hosttype::localReference: {
            const HostRange& range = value->value.localReference.range;
            return attached->recalculation->cells.get(std::max(attached->callerSheet, 0), range.firstRow,
                                                      range.firstColumn);
        }
        case hosttype::reference: {
            const auto sheet = static_cast<std::size_t>(value->value.reference.sheetId) - 1;
            if (!value->value.reference.list || sheet >= attached->sheetNames.size()) {
                return ErrorCode::Value;
            }
            const HostRange& range = value->value.reference.list->ranges[0];
            return attached->recalculation->cells.get(static_cast<int>(sheet), range.firstRow, range.firstColumn);
        }
        case hosttype::error:
            return ErrorCode::Value;
        default:
            return {};
    }
}

int answerCoerce(XLOPER* result, const XLOPER* value, const XLOPER* wanted) {
    const Value scalar = value ? scalarOf(value) : Value(ErrorCode::Value);
    const int types = wanted && wanted->type == hosttype::integer ? wanted->value.integer : hosttype::number;
    const auto number = toNumber(scalar);
    if ((types & hosttype::number) && scalar.isNumber()) {
        result->type = hosttype::number;
        result->value.number = scalar.number();
    } else if ((types & hosttype::boolean) && !(types & (hosttype::integer | hosttype::number)) && toBoolean(scalar)) {
        result->type = hosttype::boolean;
        result->value.boolean = *toBoolean(scalar) ? 1 : 0;
    } else if ((types & hosttype::integer) && number && std::fabs(*number) <= 32767) {
        result->type = hosttype::integer;
        result->value.integer = static_cast<std::int16_t>(std::lround(*number));
    } else if ((types & hosttype::number) && number) {
        result->type = hosttype::number;
        result->value.number = *number;
    } else {
        answerError(result, hosterror::value);
        return unavailable;
    }
    return 0;
}

int answerRegister(XLOPER* result, int count, XLOPER** arguments) {
    const auto text = [&](int i) { return i < count ? uncounted(arguments[i]) : std::string(); };
    Registered function;
    function.procedure = text(1);
    function.types = text(2);
    function.name = toUpper(text(3));
    const bool hidden = count > 5 && arguments[5] && arguments[5]->type == hosttype::integer;
    std::erase_if(function.types, [](char c) { return c == '!' || c == '#' || c == '$'; });
    for (const Convention& convention : conventions) {
        if (convention.types == function.types) {
            function.invoke = convention.invoke;
        }
    }
    function.address = reinterpret_cast<void (*)()>(dlsym(RTLD_DEFAULT, function.procedure.c_str()));
    const auto [found, added] = attached->byName.emplace(function.name, attached->registrations.size());
    if (hidden && !added) {
        attached->registrations[found->second].detached = true;  // until it is registered as a function again
    } else if (added) {
        attached->registrations.push_back(std::move(function));
    } else {
        attached->registrations[found->second] = std::move(function);
    }
    result->type = hosttype::number;
    result->value.number = static_cast<double>(found->second) + 1;
    return 0;
}

int answer(int function, XLOPER* result, int count, XLOPER** arguments) {
    const auto argument = [&](int i) { return i < count ? arguments[i] : nullptr; };
    switch (function & ~hostfunction::internationalFlag) {
        case hostfunction::caller:
            return answerCaller(result);
        case hostfunction::registerFunction:
            return answerRegister(result, count, arguments);
        case hostfunction::unregisterFunction:
            result->type = hosttype::boolean;
            result->value.boolean = 1;
            return 0;
        default:
            break;
    }
    switch (function) {
        case hostfunction::free:
            return 0;
        case hostfunction::coerce:
            return answerCoerce(result, argument(0), argument(1));
        case hostfunction::sheetId:
            return answerSheetId(result, argument(0));
        case hostfunction::sheetName:
            return answerSheetName(result, argument(0));
        case hostfunction::getName:
            result->type = hosttype::text;
            result->value.text = attached->modulePath.data();
            return 0;
        default:
            answerError(result, hosterror::value);
            return unavailable;
    }
}

}  // namespace

}  // namespace quorva::workbook

/// Answers the module from the evaluation in progress.
extern "C" __attribute__((visibility("default"))) int Excel4v(int function, quorva::XLOPER* result, int count,
                                                              quorva::XLOPER** arguments) {
    quorva::XLOPER ignored{};
    if (!quorva::workbook::attached) {
        return quorva::workbook::unavailable;
    }
    try {
        return quorva::workbook::answer(function, result ? result : &ignored, count, arguments);
    } catch (...) {
        return quorva::workbook::unavailable;
    }
}

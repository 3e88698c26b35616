// The module's functions as this host knows and calls them: registrations, arguments by type text, and the answers to
// the module's questions.
#pragma once

#include <array>
#include <string>
#include <unordered_map>
#include <vector>

#include "quorva/host_value.h"
#include "workbook/evaluation/evaluator.h"

namespace quorva::workbook {

class Recalculation;

/// One argument in the form that its type letter asks for.
struct HostArgument {
    double number = 0;
    int integer = 0;
    short boolean = 0;
    const char* text = "";
    XLOPER* value = nullptr;
    std::uint16_t rows = 0;
    std::uint16_t columns = 0;
    double* cells = nullptr;
};
constexpr std::size_t mostHostArguments = 16;
using HostArguments = std::array<HostArgument, mostHostArguments>;

/// A function that the module registered.
struct Registered {
    std::string name;
    std::string procedure;
    std::string types;  ///< result letter and argument letters, without "!"
    void (*address)() = nullptr;
    double (*invoke)(void (*address)(), HostArguments& arguments) = nullptr;
    bool detached = false;  ///< the name was freed and not registered anew
};

/// The module as seen by one book; at most one book is attached at a time.
struct ModuleLink {
    explicit ModuleLink(Recalculation& owner);
    ~ModuleLink();
    ModuleLink(const ModuleLink&) = delete;
    ModuleLink& operator=(const ModuleLink&) = delete;

    /// Runs the module's xlAutoOpen; throws Failure when the process has no module.
    void open();
    /// The registration of a model function by its number in the book's symbols; null when there is none.
    Registered* function(int number);
    /// Calls a function from the cell named.
    double call(Registered& function, HostArguments& arguments, int sheet, int row, int column);

    Recalculation* recalculation;
    std::vector<Registered> registrations;
    std::unordered_map<std::string, std::size_t> byName;
    std::vector<int> numbers;             ///< registration of each model function of the book, -1 unknown
    std::vector<std::string> sheetNames;  ///< "[Book]Sheet" as counted byte texts
    std::string modulePath;
    int callerSheet = -1;
    int callerRow = 0;
    int callerColumn = 0;
    /// Calls whose results a compiled cell had when it gave up; its evaluation must not call again.
    std::vector<std::pair<const Node*, double>> replay;
};

/// Evaluates the node's arguments, converts them and calls the function.
Value callModel(ModuleLink& link, Evaluator& evaluator, const Node& node);
/// Converts one value for a type letter B, J, A or F; false when it has no such form.
bool convertArgument(char letter, const Value& value, bool date1904, HostArgument& argument, std::string& text);

}  // namespace quorva::workbook

// The worksheet functions as the host knows them: names, arguments, helps, and the texts that register them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "quorva/catalogue.h"

namespace quorva {

/// An argument of a worksheet function.
struct WorksheetArgument {
    std::string_view name;
    /// The host's letter for its type: B number, F zero-terminated byte text, J 32-bit integer, A Boolean, R value or
    /// unresolved reference, O matrix of numbers.
    char type;
    std::string help;
};

/// A worksheet function; all return a number.
struct WorksheetFunction {
    std::string_view name;  ///< exported symbol and name in worksheets
    std::string_view help;
    std::vector<WorksheetArgument> arguments;
};

constexpr int modelFunctionCount = 5 + static_cast<int>(lawTable.size());
constexpr int statisticFunctionCount = static_cast<int>(statisticTable.size());

/// The functions that define a model, in the order of registration: distribution, scenario variable, result, statistic,
/// one for each law, list of values.
std::vector<WorksheetFunction> modelFunctions();

/// The functions that report one statistic of a field, in the order of registration.
std::vector<WorksheetFunction> statisticFunctions();

/// Whether the host recalculates a function whenever it recalculates anything.
enum class Recalculation { WhenNeeded, Always };

/// The host's type text: result, arguments, and "!" for a function that is always recalculated.
std::string typeText(const WorksheetFunction& function, Recalculation recalculation);

/// The names of the arguments as the host shows them.
std::string argumentText(const WorksheetFunction& function);

/// What registration passes after the module's path: procedure, type text, name, arguments, macro type, category,
/// shortcut, help topic, help, then `helpPlaces` argument helps, of which unused ones are blank and an unused last one
/// is a full stop. Each text has a placeholder in front for its length.
std::vector<std::string> registrationTexts(const WorksheetFunction& function, Recalculation recalculation,
                                           int helpPlaces);

constexpr int modelHelpPlaces = 12;
constexpr int statisticHelpPlaces = 4;

}  // namespace quorva

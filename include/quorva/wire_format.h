// What front ends and the module share besides the functions (quorva/front_end.h): statuses, codes, limits, and the
// columns of the tables that go from one to the other.
//
// Tables are flat arrays of doubles in column-major order. Rows and columns count from 1, as do field numbers; rows and
// columns of cells count from 0, as the host counts them.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace quorva {

/// "No value" in statistics and tables; as the default of a distribution field, "use the theoretical mean". Compared by
/// exact equality. The literal has 15 digits, so it is not the lowest double.
constexpr double MissingValue = -1.79769313486231E+308;
/// The positive twin of MissingValue, at which running minima start.
constexpr double MissingValueTwin = 1.79769313486231E+308;
static_assert(std::bit_cast<std::uint64_t>(MissingValue) == 0xFFEFFFFFFFFFFFE2);
static_assert(std::bit_cast<std::uint64_t>(MissingValueTwin) == 0x7FEFFFFFFFFFFFE2);

/// Element of a table of `rows` rows, counted from 0, that row and column, counted from 1, stand for.
constexpr std::size_t tableElement(std::size_t row, int column, std::size_t rows) {
    return (row - 1) + static_cast<std::size_t>(column - 1) * rows;
}

/// What Cpp_SimGetStatus returns.
enum class RunStatus : int { Idle = 0, Initialised = 1, Prepared = 2, Running = 3, Analysing = 4 };

/// What a field is, as the tables and Cpp_GetSimMatGrp number it.
enum class FieldKind : int { Distribution = 1, ScenarioVariable = 2, Result = 3, Statistic = 4 };

/// What a scenario variable may be in its interval.
enum class ScenarioMode : int { Quantitative = 1, Qualitative = 2 };

/// The bounds that Cpp_SimConv compares.
enum class ConvergenceCriterion : int { Mean = 1, StandardDeviation = 2, Percentile = 3 };

/// Where the inputs of a tornado stand that do not move; any other number counts as Default.
enum class TornadoBase : int { Median = 0, Default = 1 };
/// How the moving input moves: across its central interval or, for any other number, in a band round the base.
enum class TornadoSpread : int { Interval = 0, Band = 1 };

/// What calls return. A call that finds an error recorded, or records one, returns its code (runerror) instead.
namespace callcode {
constexpr int success = 0;
constexpr int matrixRepaired = 2;      ///< Cpp_SimInit2: the caller's correlation matrix was replaced by a possible one
constexpr int converged = 1;           ///< Cpp_SimConv
constexpr int errorRecorded = -1;      ///< Cpp_SimNext: Cpp_SimError tells which
constexpr int labelUnknown = -1;       ///< Cpp_SimBegin: a correlation label matches no distribution field
constexpr int modelIncomplete = -2;    ///< Cpp_SimBegin: no distribution, no result or no field at all
constexpr int matrixUnusable = -2;     ///< Cpp_SimInit2: correlation matrix not symmetric, or beyond repair
constexpr int nothingRegistered = -3;  ///< Cpp_SimInit2: no distribution or no result met in the recalculation before
constexpr int tooManyCells = -12;      ///< Cpp_SimBegin: iterations x fields above limit::sampleCells
}  // namespace callcode

/// Errors that are recorded with the cell they happened in, for Cpp_SimError.
namespace runerror {
constexpr int none = 0;
constexpr int cellTaken = -10;       ///< two fields in one cell
constexpr int notDescribed = -11;    ///< a field's cell that the description pass did not meet
constexpr int noStream = -12;        ///< a draw from a random stream numbered 0
constexpr int tooManyFields = -13;   ///< more than limit::fields
constexpr int noDrawInBounds = -14;  ///< limit::redraws of a truncated draw
constexpr int cellBeyondGrid = -15;  ///< row or column beyond limit::gridRows, limit::gridColumns
constexpr int outOfMemory = -15;    ///< the same number: a grid or a table cannot be allocated; recorded without a cell
constexpr int tooManySheets = -16;  ///< more sheets than limit::sheets, or a sheet that is not listed
constexpr int duplicateName = -17;  ///< two fields share a name; the only error with a second cell
}  // namespace runerror

/// Cpp_SimError: an entry of *oEline that asks for the second cell.
constexpr int askForSecondCell = -1;

/// Limits of a model and of a run.
namespace limit {
constexpr int gridRows = 65'000;  ///< rows 0 to 64,999 of a sheet can hold fields
constexpr int gridColumns = 256;  ///< columns 0 to 255
constexpr int sheets = 10;
constexpr int fields = 10'000;
constexpr int sampleCells = 64'000'000;    ///< iterations x fields
constexpr int redraws = 10'000;            ///< of one draw, before it counts as impossible
constexpr int spiderLabelCharacters = 19;  ///< of a text of Cpp_PrepareTor
}  // namespace limit

/// The general table of Cpp_SimEnd: a row per field. Columns 7 to 10 mean something else for each kind of field; a
/// column that a kind does not have holds 0.
namespace generalcolumn {
constexpr int kind = 1;       ///< FieldKind
constexpr int law = 2;        ///< distribution: law identifier
constexpr int statistic = 2;  ///< statistic: identifier of the statistic
constexpr int row = 3;        ///< of the field's cell
constexpr int column = 4;
constexpr int visible = 5;      ///< as given to the worksheet function
constexpr int convergence = 6;  ///< result: marked for monitoring when greater than 0
constexpr int param1 = 7;       ///< distribution: first of four parameters
constexpr int param2 = 8;
constexpr int param3 = 9;
constexpr int param4 = 10;
constexpr int lowerBound = 7;  ///< scenario variable
constexpr int upperBound = 8;
constexpr int stepMode = 9;      ///< scenario variable: ScenarioMode
constexpr int step = 10;         ///< scenario variable
constexpr int referenceRow = 7;  ///< statistic: the cell of the field that it describes
constexpr int referenceColumn = 8;
constexpr int referenceSheet = 9;  ///< place of the sheet among the model's, from 1; 0: none, or a model of one sheet
constexpr int defaultValue = 11;   ///< distribution, scenario variable: shown outside a run
constexpr int lowerProbability = 13;  ///< distribution: bounds of its draws
constexpr int upperProbability = 14;
constexpr int columns = 14;
}  // namespace generalcolumn

/// The names of Cpp_SimEnd: a row per field.
namespace namecolumn {
constexpr int field = 1;
constexpr int sheet = 2;  ///< as the host writes it: "[Book]Sheet"
constexpr int columns = 2;
}  // namespace namecolumn

/// The interval table of Cpp_SimEnd, which Cpp_PrepareTor takes: a row per field, quantiles of its values. MissingValue
/// throughout for a field without values; in column `upper` it keeps the field out of the tornado.
namespace intervalcolumn {
constexpr int lower = 1;  ///< of the central interval
constexpr int median = 2;
constexpr int upper = 3;
constexpr int minimum = 4;
constexpr int maximum = 5;
constexpr int columns = 5;
}  // namespace intervalcolumn

/// The convergence table of Cpp_SimEnd: two columns, lower and upper bound, per result; the monitored ones come first,
/// in field-number order, and the columns of the others hold 0.
namespace convergencerow {
constexpr int bound = 1;     ///< confidence bound at the last check
constexpr int movement = 2;  ///< since the check before, as a share of the bound; 0 at the first check
constexpr int rows = 2;
}  // namespace convergencerow
namespace convergencecolumn {
/// Columns of the k-th monitored result, k from 1.
constexpr int lower(int k) { return 2 * k - 1; }
constexpr int upper(int k) { return 2 * k; }
constexpr int columns(int results) { return 2 * results; }
}  // namespace convergencecolumn

/// Specification limits, a row per label: what Cpp_SimInit2 takes as one list per column, behind the field's number.
namespace capabilitycolumn {
constexpr int field = 1;  ///< 0 for a label that is no field's name
constexpr int lowerLimit = 2;
constexpr int upperLimit = 3;
constexpr int target = 4;
constexpr int columns = 4;
}  // namespace capabilitycolumn

/// The tornado table of Cpp_GetTornadoItem: a row per input, widest swing first.
namespace tornadocolumn {
constexpr int field = 1;
constexpr int minimum = 2;  ///< of the result over the input's points
constexpr int maximum = 3;
constexpr int swing = 4;
constexpr int columns = 4;
}  // namespace tornadocolumn

/// The table of Cpp_GetSensitivity: a row per distribution.
namespace sensitivitycolumn {
constexpr int field = 1;
constexpr int association = 2;
constexpr int contribution = 3;  ///< association x |association| as a share of all squares
constexpr int size = 4;          ///< of the contribution
constexpr int columns = 4;
}  // namespace sensitivitycolumn

}  // namespace quorva

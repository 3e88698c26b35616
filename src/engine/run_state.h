// The one record of a run: plain process-wide data that the field functions, the front end's entry points and the
// statistics all read and write on the host's calculation thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/matrix.h"
#include "engine/random_permutation.h"
#include "quorva/automation.h"
#include "quorva/wire_format.h"

namespace quorva {

/// Columns of FieldTable, one row per field: those that a front end receives, then the module's own.
namespace fieldcolumn {
using namespace generalcolumn;
constexpr int correlationGroup = 15;
constexpr int correlationPosition = 16;
constexpr int stream = 17;
constexpr int capability = 18;
constexpr int done = 19;  ///< drawn, recorded or computed in this iteration
constexpr int sheetSlot = 20;
constexpr int correlatedDraw = 21;
constexpr int groupOpening = 22;
constexpr int columns = 22;
}  // namespace fieldcolumn

/// Columns of FieldFlags, one row per field: the running moments.
namespace momentcolumn {
constexpr int collect = 1;
constexpr int weight = 2;
constexpr int count = 3;
constexpr int m2 = 4;
constexpr int m3 = 5;
constexpr int m4 = 6;
constexpr int mean = 7;
constexpr int minimum = 8;
constexpr int maximum = 9;
constexpr int columns = 9;
}  // namespace momentcolumn

/// Rows of the convergence table: those that a front end receives, then the module's own.
namespace convergencetable {
using namespace convergencerow;
constexpr int field = 3;  ///< number of the monitored field
constexpr int rows = 3;
}  // namespace convergencetable

/// Columns of CorrGroups, one row per correlation label.
namespace groupcolumn {
constexpr int group = 1;
constexpr int drawn = 2;
constexpr int field = 3;
constexpr int stream = 4;
constexpr int opening = 5;
constexpr int count = 5;
}  // namespace groupcolumn

/// Cell to field number for one sheet: 65,000 rows of 255 entries, 0 where no field is. The stride is 255 while
/// columns up to 255 are accepted, so column 255 shares its entry with column 0 of the next row; this is intended. The
/// last row has no next one: its column 255 has an entry of its own.
class FieldGrid {
public:
    static constexpr std::size_t stride = 255;
    static constexpr std::size_t entries = static_cast<std::size_t>(limit::gridRows) * stride + 1;

    bool allocated() const { return cells_ != nullptr; }
    /// Makes all entries 0, allocating on first use. False when there is no memory for it.
    bool clear();
    void release() { cells_.reset(); }
    /// The entry of a cell; 0 for a cell outside the grid and for a grid that does not exist.
    std::uint32_t at(int row, int column) const { return inside(row, column) ? cells_[position(row, column)] : 0; }
    /// Sets the entry of a cell; nothing outside the grid.
    void set(int row, int column, std::uint32_t field) {
        if (inside(row, column)) {
            cells_[position(row, column)] = field;
        }
    }

private:
    static std::size_t position(int row, int column) {
        return static_cast<std::size_t>(row) * stride + static_cast<std::size_t>(column);
    }
    bool inside(int row, int column) const {
        return cells_ && row >= 0 && row < limit::gridRows && column >= 0 && column < limit::gridColumns;
    }
    struct Release {
        void operator()(std::uint32_t* cells) const;
    };
    std::unique_ptr<std::uint32_t[], Release> cells_;
};

struct StatusFlags {
    HostBool initialised = hostFalse;
    HostBool prepared = hostFalse;
    HostBool running = hostFalse;
    HostBool analysing = hostFalse;

    bool any() const { return isTrue(initialised) || isTrue(prepared) || isTrue(running) || isTrue(analysing); }
    void clear() { *this = {}; }
    /// The first status whose flag is set.
    RunStatus current() const {
        return isTrue(initialised) ? RunStatus::Initialised
               : isTrue(prepared)  ? RunStatus::Prepared
               : isTrue(running)   ? RunStatus::Running
               : isTrue(analysing) ? RunStatus::Analysing
                                   : RunStatus::Idle;
    }
    void become(RunStatus status) {
        clear();
        initialised = toHostBool(status == RunStatus::Initialised);
        prepared = toHostBool(status == RunStatus::Prepared);
        running = toHostBool(status == RunStatus::Running);
        analysing = toHostBool(status == RunStatus::Analysing);
    }
};

struct CellLocation {
    int line = 0;
    int column = 0;
    std::u16string sheet;
};

/// The last error of a run; cleared by Cpp_SimReset alone.
struct ErrorRecord {
    HostBool flag = hostFalse;
    int code = 0;
    CellLocation first;
    CellLocation second;       ///< second cell of a two-cell error
    std::u16string extraText;  ///< the duplicated name
};

struct SheetList {
    HostBool workbookModel = hostFalse;
    int inUse = 0;
    std::array<std::uint32_t, limit::sheets> identifiers{};  ///< slot k is element k - 1
    std::array<FieldGrid, limit::sheets> grids;              ///< slot 1 serves single-sheet models too
};

struct FieldTables {
    int registered = 0;  ///< counted in the registration pass
    int nFields = 0;     ///< numbered in the description pass
    int nDist = 0;
    int nSVar = 0;
    int nRes = 0;
    int nStat = 0;
    int current = 0;                    ///< field number of the field evaluated last
    matrix<double> FieldTable;          ///< registered x 22, see fieldcolumn
    matrix<double> FieldFlags;          ///< registered x 9, see momentcolumn
    matrix<std::u16string> FieldNames;  ///< registered x 2, see namecolumn
    matrix<double> FieldOrder;          ///< nFields x 1: place of an old field number in name order
};

/// State of the uniform generator, handed to every drawing function.
struct SeedState {
    int seed = 0;
    HostBool initialise = hostFalse;
    int updated = 0;
    int inUse = 0;  ///< the seed that the run started from
};

/// A column of SampleStore whose order the statistics keep up with the iterations.
struct OrderedColumn {
    std::vector<double> seen;     ///< the values taken in, by iteration
    std::vector<double> ordered;  ///< the same in ascending order
};

struct SamplingState {
    int nSim = 0;
    int inbuckets = 0;       ///< Latin hypercube strata per distribution; 0: plain random sampling
    int iteration = 0;       ///< number of the iteration being calculated
    double lastValue = 0.0;  ///< of an input field: drawn or held
    SeedState seed;
    matrix<double> SampleStore;            ///< nSim x nFields
    matrix<double> LhsTable;               ///< (inbuckets + 1) x nDist
    std::map<int, OrderedColumn> ordered;  ///< by field number
    RandomPermutation permutation;         ///< makes the permutations of LhsTable
};

/// How the correlation factor was made.
enum class FactorMethod : int { None = 0, Triangular = 1, SquareRoot = 2 };

struct CorrelationState {
    HostBool UseCorr = hostFalse;
    int nCorr = 0;
    int groups = 0;
    FactorMethod method = FactorMethod::None;
    matrix<double> CorrFactor;
    matrix<std::u16string> CorrLabels;
    matrix<double> CorrGroups;  ///< nCorr x 5, see groupcolumn
    matrix<double> CorrNormals;
    matrix<double> CorrUniforms;
};

struct CapabilityState {
    HostBool iUseSpc = hostFalse;
    int inSpc = 0;
    double iSpcConf = 0.0;
    matrix<std::u16string> SpcLabels;
    matrix<double> SpcTable;  ///< inSpc x 4, see capabilitycolumn
};

struct ConvergenceState {
    HostBool iCheckConv = hostFalse;
    double iconvPerc = 0.0;
    double iconf = 0.0;
    HostBool iallRes = hostFalse;
    int inCrit = 0;
    double ipercentile = 0.0;
    HostBool firstCheck = hostFalse;
    matrix<double> table;  ///< 3 x max(1, 2 nRes), see convergencetable and convergencecolumn
};

struct TornadoState {
    int iDefCase = 0;
    int iIntMeth = 0;
    double ialpha = 0.0;
    int inbrPts = 0;
    int point = 0;             ///< current point, from 1
    int position = 0;          ///< current input position, from 1
    int nextResult = 0;        ///< next result order number, from 1
    int clockField = 0;        ///< the field whose evaluations advance the plan; 0: none yet
    matrix<double> intervals;  ///< p x 5, see intervalcolumn
    matrix<double> points;     ///< inbrPts x 2p: points, then clamp marks
    matrix<double> store;      ///< (nRes inbrPts) x max(1, nFields)
    matrix<int> resultOrder;   ///< nFields x 1
};

struct RunState {
    StatusFlags status;
    ErrorRecord error;
    SheetList sheets;
    FieldTables fields;
    SamplingState sampling;
    CorrelationState correlation;
    CapabilityState capability;
    ConvergenceState convergence;
    TornadoState tornado;
};

/// The run of this process.
extern RunState run;

/// Whether a field of the run is of that kind.
inline bool isKind(int field, FieldKind kind) {
    return std::as_const(run.fields.FieldTable)(field, fieldcolumn::kind) == static_cast<double>(kind);
}

/// Sets flag, code and first location.
void recordError(int code, int line, int column, const std::u16string& sheet);

/// Sets the error of a table that there is no memory for, in a place where nothing may throw any more.
void recordOutOfMemory() noexcept;

/// Row of SampleStore that the model fields write in the iteration being calculated; 0, which is no row, without
/// iterations.
inline int sampleRow() { return run.sampling.nSim > 0 ? (run.sampling.iteration - 1) % run.sampling.nSim + 1 : 0; }

}  // namespace quorva

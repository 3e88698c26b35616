#include "engine/latin_hypercube.h"

#include <algorithm>

#include "common/guarded.h"
#include "common/whole_number.h"
#include "engine/run_state.h"
#include "numerics/uniforms.h"

namespace quorva {
namespace {

/// The caller's generator state: one draw moves it on.
struct Generator {
    int* seed;
    HostBool initialise;
    int* updated;

    double draw() const {
        const double uniform = GenerateRandom01(seed, initialise, updated);
        *seed = *updated;
        return uniform;
    }
    void fill(matrix<double>& table, int n, int column) const {
        M_GenerateRandom01(table, n, column, seed, initialise, updated);
        *seed = *updated;
    }
};

void reportNoDraw(int stream) {
    const FieldTables& fields = run.fields;
    int field = 1;
    // The last field is never compared, only arrived at; intended.
    while (field < fields.nFields && fields.FieldTable(field, fieldcolumn::stream) != stream) {
        ++field;
    }
    // Column 20 of the names does not exist: the sheet is what such a read gives; intended.
    recordError(runerror::noDrawInBounds, wholeNumber(fields.FieldTable(field, fieldcolumn::row)),
                wholeNumber(fields.FieldTable(field, fieldcolumn::column)), fields.FieldNames(field, 20));
}

/// Counts redraws; true when the draw is final.
class Bounds {
public:
    Bounds(int stream, double lower, double upper) : stream_(stream), lower_(lower), upper_(upper) {}

    bool settles(double uniform) {
        if (tries_ > limit::redraws) {
            reportNoDraw(stream_);
            return true;
        }
        ++tries_;
        return !(uniform < lower_ || uniform > upper_);
    }

private:
    int stream_;
    double lower_;
    double upper_;
    int tries_ = 0;
};

double plainUniform(const Generator& generator, Bounds bounds) {
    double uniform = generator.draw();
    while (!bounds.settles(uniform)) {
        uniform = generator.draw();
    }
    return uniform;
}

/// Strata that there is a table for: none when the run that asked for them could not begin.
int strataInUse() { return run.sampling.inbuckets > 0 ? std::max(run.sampling.LhsTable.rows() - 1, 0) : 0; }

/// A random permutation of the strata: their numbers ordered by uniforms.
void permuteStrata(const Generator& generator, int strata, int stream) {
    matrix<double>& table = run.sampling.LhsTable;
    generator.fill(table, strata, stream);
    if (table.contains(strata, stream)) {
        run.sampling.permutation.order(table.column(stream), strata);
    }
    table(strata + 1, stream) = strata;
}

double stratifiedUniform(const Generator& generator, int strata, int stream, Bounds bounds) {
    matrix<double>& table = run.sampling.LhsTable;
    double& left = table(strata + 1, stream);
    // Without a column for the stream, what its strata are read from is what their number is read from.
    const double* const column = table.contains(strata, stream) ? table.column(stream) : nullptr;
    for (;;) {
        if (left == 0.0) {
            permuteStrata(generator, strata, stream);
        }
        const double uniform = generator.draw();
        if (stream == 0) {
            recordError(runerror::noStream, 0, 0, {});
            return uniform;
        }
        const double stratum = column ? column[static_cast<int>(left) - 1] : left;
        const double result = uniformInStratum(uniform, stratum, strata);
        left -= 1.0;
        if (bounds.settles(result)) {
            return result;
        }
    }
}

}  // namespace
}  // namespace quorva

using namespace quorva;

double getLHSRandom01(int /*ignored*/, int stream, double lower, double upper, int* seed, short seedInit,
                      int* seedUpdate) {
    const Generator generator{seed, seedInit, seedUpdate};
    const Bounds bounds(stream, lower, upper);
    double uniform = lower;
    try {
        const int strata = strataInUse();
        uniform = strata > 0 ? stratifiedUniform(generator, strata, stream, bounds) : plainUniform(generator, bounds);
    } catch (...) {
        recordOutOfMemory();
    }
    return uniform;
}

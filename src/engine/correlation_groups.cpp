#include "engine/correlation_groups.h"

#include "common/guarded.h"
#include "engine/run_state.h"
#include "quorva/wire_format.h"

using namespace quorva;

void FindSubGroups(matrix<double>* factor, int n, matrix<double>* groups, int* nGroups) {
    *nGroups = 0;
    if (n > limit::fields) {
        return;  // more labels than a model can have fields: nothing to look at, and no room for it
    }
    guarded([&] { groups->zeroResize(n, 4); });  // a wider table keeps its further columns
    matrix<double>& group = *groups;
    for (int i = 1; i <= n; ++i) {
        for (int k = i + 1; k <= n; ++k) {
            const double link = (*factor)(k, i);
            if (link == 0.0 || link == MissingValue) {
                continue;
            }
            double& mine = group(i, groupcolumn::group);
            double& other = group(k, groupcolumn::group);
            if (mine == 0.0 && other == 0.0) {
                mine = other = ++*nGroups;
                group(i, groupcolumn::opening) = *nGroups;
            }
            // Two labels in different groups stay in them: groups are not merged; intended.
            if (mine > 0.0 && other == 0.0) {
                other = mine;
            }
            if (other > 0.0 && mine == 0.0) {
                mine = other;
            }
        }
    }
}

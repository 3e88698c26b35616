// Which correlation labels hang together.
#pragma once

#include "common/matrix.h"

extern "C" {

/// Numbers the groups of labels that a factor (n x n) links, from 1 in the order they are met; *nGroups becomes their
/// number. `groups` gets n rows (columns groupcolumn): the group of each label, 0 for a label without a link, and the
/// group's number once more at the label that opened it. Exported.
void FindSubGroups(quorva::matrix<double>* factor, int n, quorva::matrix<double>* groups, int* nGroups);
}

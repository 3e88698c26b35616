// The routines that the module exports besides the functions of quorva/*.h, as their folders declare them.
#pragma once

#include "control/checks.h"
#include "engine/correlated_draw.h"
#include "engine/correlation_groups.h"
#include "engine/field_registry.h"
#include "engine/latin_hypercube.h"
#include "numerics/law_table.h"
#include "results/matrices.h"
#include "results/sensitivity.h"
#include "results/summary.h"
#include "results/tornado.h"
#include "stats/descriptive.h"
#include "stats/running_moments.h"

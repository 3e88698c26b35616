// The routines that the module exports besides the functions of quorva/*.h, as their folders declare them.
#pragma once

#include "engine/inner_calls.h"
#include "numerics/law_table.h"

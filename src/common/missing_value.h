// The marker for "no value" and the host's booleans, which front ends share.
#pragma once

#include "quorva/automation.h"
#include "quorva/wire_format.h"

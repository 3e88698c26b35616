// A run on several processors: blocks of iterations, each a run of its own in a process of its own, because the state
// of the module belongs to its process. The blocks depend on the number of iterations and on the seed alone, so that
// the results are the same for any number of processes working on them.
#pragma once

#include <vector>

#include "frontend/run/driver.h"

namespace quorva::frontend {

/// One block of a run.
struct Block {
    int iterations;
    int seed;
};

/// The blocks of a run of so many iterations: about 25,000 iterations each, at least 4 blocks and at most 64, and no
/// empty one. Their seeds follow from the run's.
std::vector<Block> blocksOf(int iterations, int seed);

/// As runModel, by at most `jobs` processes at a time. Throws CommandFailure (Usage) for what needs all iterations in
/// one process: statistic fields, whose values depend on the iterations before, and stopping at convergence. A process
/// that dies is reported and its block run once more, unless the run has been interrupted; a block that is not run
/// again or lost twice is missing from the results.
RunResults runModelInBlocks(const RunSettings& settings, const std::vector<Field>& fields, const Host& host,
                            const Observer& observer, int jobs);

}  // namespace quorva::frontend

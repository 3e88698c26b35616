#include "frontend/run/block_run.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

#include "frontend/run/block_worker.h"
#include "frontend/run/statistics.h"

namespace quorva::frontend {

namespace {

/// The finaliser of splitmix64 (Steele, Lea, Flood, 2014), so that neighbouring blocks have unrelated seeds.
int blockSeed(int seed, int number) {
    std::uint64_t z =
        static_cast<std::uint64_t>(seed) * 0x9E3779B97F4A7C15 + static_cast<std::uint64_t>(number) * 0xD1B54A32D192ED03;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return static_cast<int>((z ^ (z >> 31)) % 2147483647) + 1;
}

/// Refuses what needs all iterations in one process.
void refuse(const RunSettings& settings, const std::vector<Field>& fields) {
    if (settings.convergence) {
        throw CommandFailure(
            ExitStatus::Usage,
            "--jobs cannot stop at convergence, which needs the iterations one after another; leave out --jobs "
            "or --converge");
    }
    for (const Field& field : fields) {
        if (field.kind == FieldKind::Statistic) {
            throw CommandFailure(ExitStatus::Usage,
                                 "--jobs cannot run this model: the values of the statistic field '" + field.name +
                                     "' depend on the iterations before; leave out --jobs");
        }
    }
}

/// A block at work: its memory, its process while it runs, how often it was started, and whether it will be no more.
struct Work {
    Block block;
    BlockMemory memory;
    pid_t process = 0;
    int starts = 0;
    bool over = false;
};

/// Blocks at work, at most `jobs` at a time. Whatever ends the run, no process outlives it.
class Crew {
public:
    Crew(const RunSettings& settings, const std::vector<Field>& fields, const Host& host, const Observer& observer)
        : settings_(settings), fields_(fields), host_(host), observer_(observer) {
        for (const Block& block : blocksOf(settings.iterations, settings.seed)) {
            work_.push_back({block, BlockMemory(block.iterations, fields.size())});
        }
    }
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;
    ~Crew() {
        for (Work& work : work_) {
            if (work.process != 0) {
                kill(work.process, SIGKILL);
                waitpid(work.process, nullptr, 0);
            }
        }
    }

    void run(int jobs) {
        bool told = false;
        while (!std::all_of(work_.begin(), work_.end(), [](const Work& work) { return work.over; })) {
            const bool interrupted = observer_.interrupted();
            if (interrupted && !told) {
                tellToStop();
                told = true;
            }
            int running = 0;
            for (Work& work : work_) {
                collect(work, interrupted);
                running += work.process != 0;
            }
            for (Work& work : work_) {
                if (running < jobs && !work.over && work.process == 0) {
                    start(work);
                    ++running;
                }
            }
            observer_.progress(done(), settings_.iterations);
            usleep(1000);
        }
        interrupted_ = told;
    }

    /// Everything the blocks drew, in block order. Frees each block's memory on the way.
    void gather(RunRecord& record) {
        record.interrupted = interrupted_;
        for (const Work& work : work_) {
            work.memory.rethrow();
        }
        for (Work& work : work_) {
            const BlockMemory memory = std::move(work.memory);
            if (memory.finished()) {
                memory.appendTo(record.samples);
                record.interrupted = record.interrupted || memory.interrupted();
            } else {
                record.incomplete = !interrupted_;
            }
        }
        work_.clear();
        record.iterations = record.samples.iterations;
        record.incidents = incidents_;
    }

private:
    void start(Work& work) {
        ++work.starts;
        work.process = startWorker(work.block, settings_, fields_, host_, observer_, work.memory);
    }

    /// Once interrupted, a block that has no process gets none.
    void collect(Work& work, bool interrupted) {
        int state = 0;
        if (work.process == 0) {
            work.over = work.over || interrupted;
            return;
        }
        if (waitpid(work.process, &state, WNOHANG) == 0) {
            return;
        }
        work.process = 0;
        const bool ended = WIFEXITED(state) && WEXITSTATUS(state) == 0;
        work.over = ended || work.starts > 1 || interrupted;
        if (!ended) {
            const auto number = std::to_string(&work - work_.data() + 1) + " of " + std::to_string(work_.size());
            const std::string cause = WIFSIGNALED(state) ? "signal " + std::to_string(WTERMSIG(state))
                                                         : "status " + std::to_string(WEXITSTATUS(state));
            incidents_.push_back("the process of block " + number + " died (" + cause + "); " +
                                 (work.over ? "its " + std::to_string(work.block.iterations) + " iterations are missing"
                                            : "the block was run again"));
            work.memory.reportProgress(0);
        }
    }

    void tellToStop() const {
        for (const Work& work : work_) {
            if (work.process != 0) {
                kill(work.process, SIGINT);
            }
        }
    }

    int done() const {
        int sum = 0;
        for (const Work& work : work_) {
            sum += work.memory.done();
        }
        return sum;
    }

    const RunSettings& settings_;
    const std::vector<Field>& fields_;
    const Host& host_;
    const Observer& observer_;
    std::vector<Work> work_;
    std::vector<std::string> incidents_;
    bool interrupted_ = false;
};

/// The run's settings as each block has them, but for iterations and seed: strata of its own.
RunSettings settingsOfBlocks(const RunSettings& settings) {
    RunSettings own = settings;
    if (!own.strata) {
        int largest = 0;
        for (const Block& block : blocksOf(settings.iterations, settings.seed)) {
            largest = std::max(largest, block.iterations);
        }
        own.strata = std::min(largest, largestStrata);
    }
    return own;
}

}  // namespace

std::vector<Block> blocksOf(int iterations, int seed) {
    constexpr int usualSize = 25'000;
    const int count = std::min(std::clamp(iterations / usualSize, 4, 64), iterations);
    std::vector<Block> blocks;
    std::int64_t begin = 0;
    for (int number = 1; number <= count; ++number) {
        const std::int64_t end = std::int64_t{iterations} * number / count;
        blocks.push_back({static_cast<int>(end - begin), blockSeed(seed, number)});
        begin = end;
    }
    return blocks;
}

RunResults runModelInBlocks(const RunSettings& settings, const std::vector<Field>& fields, const Host& host,
                            const Observer& observer, int jobs) {
    refuse(settings, fields);
    checkSize(settings, fields.size());
    const RunSettings shared = settingsOfBlocks(settings);
    const IdleAfterwards idle;
    Crew crew(shared, fields, host, observer);
    crew.run(jobs);

    // A run of one iteration in this process gives what follows the module's tables; the samples are the blocks'.
    RunSettings one = shared;
    one.iterations = 1;
    one.strata = 0;
    RunRecord record = drawRun(one, fields, host, {});
    record.samples = {};
    crew.gather(record);
    if (record.iterations == 0) {
        throw record.interrupted ? interruptedTooEarly()
                                 : CommandFailure(ExitStatus::Internal, "every block of the run was lost");
    }
    if (shared.tornado) {
        takeIntervals(shared, fields, record, true);
    }
    return concludeRun(shared, fields, host, observer, record);
}

}  // namespace quorva::frontend

// A process that runs one block, and the memory through which it hands over what it drew.
#pragma once

#include <sys/types.h>

#include <string>

#include "frontend/run/block_run.h"
#include "frontend/text/command_failure.h"

namespace quorva::frontend {

/// Memory shared with a worker: its progress, how it ended, and the samples column by column.
class BlockMemory {
public:
    /// Throws CommandFailure (Internal) when the system has no memory to share.
    BlockMemory(int iterations, std::size_t fields);
    BlockMemory(BlockMemory&& other) noexcept;
    BlockMemory& operator=(BlockMemory&&) = delete;
    ~BlockMemory();

    /// Called by the worker.
    void reportProgress(int done);
    void store(const RunRecord& record);
    void fail(ExitStatus status, const std::string& sentence);

    int done() const;
    bool finished() const;
    bool interrupted() const;
    /// Throws what the worker stopped with, if it did.
    void rethrow() const;
    /// Appends the block's samples to the run's.
    void appendTo(SampleTable& samples) const;

private:
    struct Header;
    double* column(std::size_t field) const;

    Header* header_ = nullptr;
    std::size_t bytes_;
    int iterations_;
    std::size_t fields_;
};

/// Starts a worker for a block; returns its process. Throws CommandFailure (Internal) when there can be no more
/// processes.
pid_t startWorker(const Block& block, const RunSettings& settings, const std::vector<Field>& fields, const Host& host,
                  const Observer& observer, BlockMemory& memory);

}  // namespace quorva::frontend

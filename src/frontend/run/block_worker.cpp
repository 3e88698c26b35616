#include "frontend/run/block_worker.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <exception>
#include <new>
#include <utility>

namespace quorva::frontend {

struct BlockMemory::Header {
    std::atomic<int> done{0};
    bool finished = false;
    bool interrupted = false;
    bool failed = false;
    ExitStatus status = ExitStatus::Internal;
    char sentence[2000] = {};
};

namespace {
constexpr std::size_t headerRoom = 4096;
}

BlockMemory::BlockMemory(int iterations, std::size_t fields)
    : bytes_(headerRoom + static_cast<std::size_t>(iterations) * fields * sizeof(double)),
      iterations_(iterations),
      fields_(fields) {
    static_assert(sizeof(Header) <= headerRoom);
    void* shared = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) {
        throw CommandFailure(ExitStatus::Internal,
                             "no memory for the samples of a block; try fewer iterations or --jobs 1");
    }
    header_ = new (shared) Header;
}

BlockMemory::BlockMemory(BlockMemory&& other) noexcept
    : header_(std::exchange(other.header_, nullptr)),
      bytes_(other.bytes_),
      iterations_(other.iterations_),
      fields_(other.fields_) {}

BlockMemory::~BlockMemory() {
    if (header_ != nullptr) {
        munmap(header_, bytes_);
    }
}

double* BlockMemory::column(std::size_t field) const {
    auto* samples = reinterpret_cast<double*>(reinterpret_cast<char*>(header_) + headerRoom);
    return samples + field * static_cast<std::size_t>(iterations_);
}

void BlockMemory::reportProgress(int done) { header_->done.store(done, std::memory_order_relaxed); }

void BlockMemory::store(const RunRecord& record) {
    for (std::size_t i = 0; i < fields_; ++i) {
        std::copy(record.samples.columns[i].begin(), record.samples.columns[i].end(), column(i));
    }
    header_->done.store(record.iterations);
    header_->interrupted = record.interrupted;
    header_->finished = true;
}

void BlockMemory::fail(ExitStatus status, const std::string& sentence) {
    const std::size_t length = std::min(sentence.size(), sizeof header_->sentence - 1);
    std::memcpy(header_->sentence, sentence.data(), length);
    header_->status = status;
    header_->failed = true;
}

int BlockMemory::done() const { return header_->done.load(std::memory_order_relaxed); }
bool BlockMemory::finished() const { return header_->finished; }
bool BlockMemory::interrupted() const { return header_->interrupted; }

void BlockMemory::rethrow() const {
    if (header_->failed) {
        throw CommandFailure(header_->status, header_->sentence);
    }
}

void BlockMemory::appendTo(SampleTable& samples) const {
    samples.columns.resize(fields_);
    for (std::size_t i = 0; i < fields_; ++i) {
        samples.columns[i].insert(samples.columns[i].end(), column(i), column(i) + done());
    }
    samples.iterations += done();
}

pid_t startWorker(const Block& block, const RunSettings& settings, const std::vector<Field>& fields, const Host& host,
                  const Observer& observer, BlockMemory& memory) {
    const pid_t process = fork();
    if (process < 0) {
        throw CommandFailure(ExitStatus::Internal, "no further process can be started; try fewer --jobs");
    }
    if (process > 0) {
        return process;
    }
    // The worker: nothing of the parent's output may be written a second time, so it leaves without clean-up.
    try {
        RunSettings own = settings;
        own.iterations = block.iterations;
        own.seed = block.seed;
        memory.store(drawRun(own, fields, host,
                             {observer.interrupted, [&memory](int done, int) { memory.reportProgress(done); }}));
    } catch (const CommandFailure& failure) {
        if (failure.status == ExitStatus::Interrupted) {
            RunRecord nothing;
            nothing.interrupted = true;
            nothing.samples.columns.resize(fields.size());
            memory.store(nothing);
        } else {
            memory.fail(failure.status, failure.what());
        }
    } catch (const std::exception& error) {
        memory.fail(ExitStatus::Internal, error.what());
    }
    _exit(0);
}

}  // namespace quorva::frontend

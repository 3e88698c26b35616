// Outputs that are written whole or not at all.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::frontend {

/// Where a writer puts its bytes; buffered. Throws CommandFailure (Internal) when the system refuses them.
class Sink {
public:
    Sink(int descriptor, std::string name) : descriptor_(descriptor), name_(std::move(name)) {}
    void write(std::string_view bytes) {
        if (buffer_.size() + bytes.size() > limit) {
            flush();
        }
        buffer_.append(bytes);
    }
    void flush();

private:
    static constexpr std::size_t limit = std::size_t{1} << 18;
    int descriptor_;
    std::string name_;
    std::string buffer_;
};

/// One output of a command: a file, a device, or "-" for standard output.
struct Output {
    std::filesystem::path path;
    std::function<void(Sink&)> write;
};

/// The outputs of a command and the rules that protect files: each is tested before the run, written to a temporary
/// file beside its target and renamed when all are written; devices are written to, never replaced; an input is never
/// an output.
class Outputs {
public:
    /// `inputs` are the files that the command reads.
    explicit Outputs(std::vector<std::filesystem::path> inputs) : inputs_(std::move(inputs)) {}

    /// Throws CommandFailure (Usage) when the path cannot be written.
    void reserve(const std::filesystem::path& path);

    /// Writes the temporary files, then the devices; only then are the files renamed, in their order. When writing one
    /// fails, every file is as it was; what a device took before cannot be taken back. When a renaming fails, the files
    /// renamed before it are the new ones and the others as they were. Throws CommandFailure (Internal).
    static void commit(const std::vector<Output>& outputs);

private:
    std::vector<std::filesystem::path> inputs_;
    std::vector<std::filesystem::path> reserved_;
};

/// Text to standard output. Throws CommandFailure (Internal) when it cannot be written.
void printOut(std::string_view text);

}  // namespace quorva::frontend

#include "frontend/text/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "frontend/text/command_failure.h"

namespace quorva::frontend {

namespace fs = std::filesystem;

namespace {
bool isStandardOutput(const fs::path& path) { return path == "-"; }

/// A link leads to the file that is meant; a file that is not there yet is itself.
fs::path target(const fs::path& path) {
    std::error_code error;
    const fs::path resolved = fs::weakly_canonical(path, error);
    return error ? path : resolved;
}

bool isDevice(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return !error && fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

std::string cause(int error) { return std::strerror(error); }

/// An open temporary file beside a target, removed unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& path) : target_(target(path)) {
        name_ = (target_.parent_path() / ("." + target_.filename().string().substr(0, 200) + ".XXXXXX")).string();
        descriptor_ = mkostemp(name_.data(), O_CLOEXEC);
        error_ = descriptor_ < 0 ? errno : 0;
    }
    TemporaryFile(TemporaryFile&& other) noexcept
        : target_(std::move(other.target_)),
          name_(std::move(other.name_)),
          descriptor_(other.descriptor_),
          error_(other.error_) {
        other.descriptor_ = -1;
        other.name_.clear();
    }
    TemporaryFile& operator=(TemporaryFile&&) = delete;
    ~TemporaryFile() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
        if (!name_.empty() && error_ == 0) {
            unlink(name_.c_str());
        }
    }

    int descriptor() const { return descriptor_; }
    int error() const { return error_; }

    /// Bytes on the medium and the permissions that the target has or a new file would have.
    void finish() {
        struct stat existing;
        const mode_t mask = umask(0);
        umask(mask);
        const mode_t mode = stat(target_.c_str(), &existing) == 0 ? existing.st_mode & 07777 : 0666 & ~mask;
        if (fchmod(descriptor_, mode) != 0 || fsync(descriptor_) != 0 || close(std::exchange(descriptor_, -1)) != 0) {
            fail(errno);
        }
    }
    void rename() {
        if (::rename(name_.c_str(), target_.c_str()) != 0) {
            fail(errno);
        }
        name_.clear();
    }

private:
    [[noreturn]] void fail(int error) const {
        throw CommandFailure(ExitStatus::Internal, "'" + target_.string() + "' could not be written: " + cause(error));
    }

    fs::path target_;
    std::string name_;
    int descriptor_ = -1;
    int error_ = 0;
};

int openDevice(const fs::path& path) {
    return isStandardOutput(path) ? dup(STDOUT_FILENO) : open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
}

void writeTo(int descriptor, const Output& output) {
    Sink sink(descriptor, isStandardOutput(output.path) ? "standard output" : "'" + output.path.string() + "'");
    output.write(sink);
    sink.flush();
}

void writeDevice(const Output& output) {
    const int descriptor = openDevice(output.path);
    if (descriptor < 0) {
        throw CommandFailure(ExitStatus::Internal,
                             "'" + output.path.string() + "' could not be opened: " + cause(errno));
    }
    try {
        writeTo(descriptor, output);
    } catch (...) {
        close(descriptor);
        throw;
    }
    close(descriptor);
}

[[noreturn]] void unwritable(const fs::path& path, const std::string& why) {
    throw CommandFailure(ExitStatus::Usage, "the output '" + path.string() + "' cannot be written: " + why);
}
}  // namespace

void Sink::flush() {
    std::size_t done = 0;
    while (done < buffer_.size()) {
        const ssize_t count = ::write(descriptor_, buffer_.data() + done, buffer_.size() - done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw CommandFailure(ExitStatus::Internal, name_ + " could not be written: " + cause(errno));
        }
        done += static_cast<std::size_t>(count);
    }
    buffer_.clear();
}

void Outputs::reserve(const fs::path& path) {
    if (isStandardOutput(path)) {
        if (std::find(reserved_.begin(), reserved_.end(), path) != reserved_.end()) {
            unwritable(path, "standard output is asked for twice");
        }
        reserved_.push_back(path);
        return;
    }
    if (path.empty() || !path.has_filename()) {
        unwritable(path, "that is not the name of a file");
    }
    std::error_code error;
    if (fs::is_directory(path, error)) {
        unwritable(path, "it is a folder");
    }
    for (const fs::path& input : inputs_) {
        if (target(input) == target(path) || fs::equivalent(input, path, error)) {
            unwritable(path, "it is an input of this command, which is never written to");
        }
    }
    if (isDevice(path)) {
        if (access(path.c_str(), W_OK) != 0) {
            unwritable(path, cause(errno));
        }
        return;
    }
    for (const fs::path& other : reserved_) {
        if (target(other) == target(path)) {
            unwritable(path, "it is asked for twice");
        }
    }
    if (fs::exists(path, error) && access(path.c_str(), W_OK) != 0) {
        unwritable(path, cause(errno));
    }
    // Only trying shows whether the folder takes a new file.
    if (const TemporaryFile probe(path); probe.error() != 0) {
        unwritable(path, cause(probe.error()));
    }
    reserved_.push_back(path);
}

void Outputs::commit(const std::vector<Output>& outputs) {
    std::vector<TemporaryFile> files;
    for (const Output& output : outputs) {
        if (isStandardOutput(output.path) || isDevice(output.path)) {
            continue;
        }
        TemporaryFile file(output.path);
        if (file.error() != 0) {
            throw CommandFailure(ExitStatus::Internal,
                                 "'" + output.path.string() + "' could not be written: " + cause(file.error()));
        }
        writeTo(file.descriptor(), output);
        file.finish();
        files.push_back(std::move(file));
    }
    for (const Output& output : outputs) {
        if (isStandardOutput(output.path) || isDevice(output.path)) {
            writeDevice(output);
        }
    }
    for (TemporaryFile& file : files) {
        file.rename();
    }
}

void printOut(std::string_view text) {
    Sink sink(STDOUT_FILENO, "standard output");
    sink.write(text);
    sink.flush();
}

}  // namespace quorva::frontend

// Why a command stops, with the exit status that says so.
#pragma once

#include <stdexcept>
#include <string>

namespace quorva::frontend {

/// The program's exit statuses.
enum class ExitStatus {
    Done = 0,
    RequirementFailed = 1,  ///< a requirement or a verification failed
    Usage = 2,              ///< wrong usage, an output that cannot be written, a run too large
    Workbook = 3,           ///< the workbook cannot be read or uses something unsupported
    Model = 4,              ///< the model is wrong
    Internal = 5,           ///< internal, or an output that failed while being written
    Interrupted = 130,
};

struct CommandFailure : std::runtime_error {
    CommandFailure(ExitStatus exitStatus, const std::string& sentence)
        : std::runtime_error(sentence), status(exitStatus) {}
    ExitStatus status;
};

}  // namespace quorva::frontend

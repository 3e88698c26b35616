#include "frontend/text/input_file.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "frontend/text/command_failure.h"

namespace quorva::frontend {

bool isFile(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

std::string fileContents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    if (!in) {
        throw CommandFailure(ExitStatus::Usage, "'" + path + "' cannot be read");
    }
    return std::move(bytes).str();
}

std::string fileName(const std::string& path) { return std::filesystem::path(path).filename().string(); }

}  // namespace quorva::frontend

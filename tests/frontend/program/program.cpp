#include "program.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xlsxwriter.h>

#include <chrono>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <thread>

namespace quorva::frontend {

namespace fs = std::filesystem;

namespace {
std::string contents(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

pid_t start(const std::vector<std::string>& words, const fs::path& folder) {
    const pid_t child = fork();
    if (child == 0) {
        std::vector<char*> arguments;
        for (const std::string& word : words) {
            arguments.push_back(const_cast<char*>(word.c_str()));
        }
        arguments.push_back(nullptr);
        const int out = open((folder / ".out").c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0600);
        const int err = open((folder / ".err").c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0600);
        if (chdir(folder.c_str()) == 0 && dup2(out, 1) == 1 && dup2(err, 2) == 2) {
            execvp(arguments[0], arguments.data());
        }
        _exit(127);
    }
    return child;
}

Outcome wait(pid_t child, const fs::path& folder) {
    int status = 0;
    waitpid(child, &status, 0);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
    Outcome outcome{code, contents(folder / ".out"), contents(folder / ".err")};
    fs::remove(folder / ".out");
    fs::remove(folder / ".err");
    return outcome;
}

/// Processor time that a process has used; more than any other once it has ended.
long cpuMilliseconds(pid_t process) {
    std::ifstream in("/proc/" + std::to_string(process) + "/stat");
    std::string text;
    std::getline(in, text);
    std::istringstream fields(text.substr(std::min(text.rfind(')') + 1, text.size())));
    std::string word;
    long ticks = 0;
    for (int field = 3; fields >> word && field <= 15; ++field) {
        if (field == 3 && word == "Z") {
            return std::numeric_limits<long>::max();
        }
        ticks += field >= 14 ? std::stol(word) : 0;
    }
    return ticks * 1000 / sysconf(_SC_CLK_TCK);
}

std::vector<std::string> programWords(const std::vector<std::string>& arguments) {
    std::vector<std::string> words{QUORVA_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}
}  // namespace

void ProgramTest::SetUp() {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    folder_ = fs::temp_directory_path() / ("quorva-test-" + std::to_string(getpid()) + "-" + test->name());
    fs::create_directories(folder_);
}

Outcome ProgramTest::run(const std::vector<std::string>& arguments) const { return command(programWords(arguments)); }

Outcome ProgramTest::command(const std::vector<std::string>& words) const {
    return wait(start(words, folder_), folder_);
}

Outcome ProgramTest::interrupted(const std::vector<std::string>& arguments, int milliseconds) const {
    const pid_t child = start(programWords(arguments), folder_);
    while (cpuMilliseconds(child) < milliseconds) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    kill(child, SIGINT);
    return wait(child, folder_);
}

nlohmann::json ProgramTest::results(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "run");
    arguments.insert(arguments.end(), {"--quiet", "--json", "-"});
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome.status == 0 ? nlohmann::json::parse(outcome.out) : nlohmann::json{};
}

std::string ProgramTest::book(const std::string& name, const Cells& cells, const Cells& names) const {
    lxw_workbook* book = workbook_new((folder_ / name).c_str());
    std::map<std::string, lxw_worksheet*> sheets;
    sheets["Sheet1"] = workbook_add_worksheet(book, "Sheet1");
    for (const auto& [address, content] : cells) {
        const auto mark = address.find('!');
        const std::string sheet = mark == std::string::npos ? "Sheet1" : address.substr(0, mark);
        const std::string cell = mark == std::string::npos ? address : address.substr(mark + 1);
        if (!sheets.contains(sheet)) {
            sheets[sheet] = workbook_add_worksheet(book, sheet.c_str());
        }
        const lxw_row_t row = lxw_name_to_row(cell.c_str());
        const lxw_col_t column = lxw_name_to_col(cell.c_str());
        char* end = nullptr;
        const double number = std::strtod(content.c_str(), &end);
        if (content.starts_with('\'')) {
            worksheet_write_string(sheets[sheet], row, column, content.c_str() + 1, nullptr);
        } else if (content.starts_with('=')) {
            worksheet_write_formula(sheets[sheet], row, column, content.c_str(), nullptr);
        } else if (!content.empty() && *end == 0) {
            worksheet_write_number(sheets[sheet], row, column, number, nullptr);
        } else {
            worksheet_write_string(sheets[sheet], row, column, content.c_str(), nullptr);
        }
    }
    for (const auto& [defined, target] : names) {
        workbook_define_name(book, defined.c_str(), target.c_str());
    }
    EXPECT_EQ(workbook_close(book), LXW_NO_ERROR);
    return name;
}

std::string ProgramTest::example(const std::string& name) const {
    return std::string(QUORVA_SOURCE_DIR "/examples/") + name + ".xlsx";
}

std::string ProgramTest::put(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name, std::ios::binary) << text;
    return name;
}

std::string ProgramTest::read(const std::string& name) const { return contents(folder_ / name); }

std::vector<std::string> ProgramTest::files() const {
    std::vector<std::string> names;
    for (const auto& file : fs::directory_iterator(folder_)) {
        names.push_back(file.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

const nlohmann::json& entry(const nlohmann::json& list, const std::string& name, const std::string& key) {
    for (const auto& item : list) {
        if (item.at(key) == name) {
            return item;
        }
    }
    throw std::out_of_range("no entry " + name);
}

Cells sumModel() {
    return {{"A1", "=QUORVA_SimNormal(\"a\",10,3,0,0,0,FALSE,0,1)"},
            {"A2", "=QUORVA_SimNormal(\"b\",20,4,0,0,0,FALSE,0,1)"},
            {"A3", "=QUORVA_SimRes(\"sum\",A1+A2,0,FALSE,1)"}};
}

}  // namespace quorva::frontend

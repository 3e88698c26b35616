#include "frontend/commands/program.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <iostream>
#include <map>
#include <new>

#include <CLI/CLI.hpp>

#include "frontend/commands/cli_lists.h"
#include "frontend/commands/cli_run.h"
#include "frontend/commands/cli_workbook.h"
#include "frontend/commands/command_line.h"
#include "frontend/commands/configuration.h"
#include "frontend/commands/man_page.h"
#include "frontend/commands/terminal.h"
#include "frontend/text/command_failure.h"
#include "frontend/text/output_file.h"
#include "frontend/text/text.h"
#include "workbook/recalculation/book.h"

namespace quorva::frontend {

namespace {
void complain(const std::string& sentence) { std::cerr << "quorva: " << printable(sentence) << std::endl; }

/// The command that was given, or the program itself.
const CLI::App& chosenCommand(const CLI::App& app) {
    const auto commands = app.get_subcommands();
    return commands.empty() ? app : *commands.front();
}

/// The nearest command or option to a word that is neither.
std::string hintFor(const CLI::App& app, const std::string& word) {
    std::vector<std::string> known;
    const CLI::App& command = chosenCommand(app);
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            known.push_back("--" + name);
        }
    }
    for (const CLI::App* sub : command.get_subcommands([](const CLI::App*) { return true; })) {
        known.push_back(sub->get_name());
    }
    return nearestHint(word.substr(0, word.find('=')), known);
}

int usageError(const CLI::App& app, const CLI::ParseError& error) {
    std::string message = error.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&error)) {
        const auto remaining = app.remaining(true);
        if (!remaining.empty()) {
            const bool option = remaining.front().starts_with("-");
            message = std::string(option ? "there is no option '" : "there is no use for '") + remaining.front() + "'" +
                      hintFor(app, remaining.front());
        }
    }
    const CLI::App& command = chosenCommand(app);
    complain(message);
    std::cerr << "see 'quorva" << (&command == &app ? "" : " " + command.get_name()) << " --help'" << std::endl;
    return static_cast<int>(ExitStatus::Usage);
}

/// The arguments in the order in which the parser wants them: reversed.
void parse(CLI::App& app, std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());
    app.parse(std::move(arguments));
}

/// At most 100 columns, and no more than the terminal has unless it is very narrow.
std::size_t helpWidth() {
    constexpr int widest = 100;
    return static_cast<std::size_t>(std::clamp(terminalColumns(STDOUT_FILENO).value_or(widest), 60, widest));
}

int dispatch(const CLI::App& app, const CommandOptions& options) {
    if (options.man) {
        printOut(manPage(app));
        return 0;
    }
    const CLI::App& command = chosenCommand(app);
    const std::string name = &command == &app ? "" : command.get_name();
    const std::map<std::string, std::function<int()>> commands{
        {"run", [&] { return runCommand(options.run); }},
        {"inspect", [&] { return inspectCommand(options.inspect); }},
        {"verify", [&] { return verifyCommand(options.verify); }},
        {"values", [&] { return valuesCommand(options.values); }},
        {"laws", [&] { return lawsCommand(options.laws); }},
        {"functions", [&] { return functionsCommand(options.functions); }},
        {"statistics", [&] { return statisticsCommand(options.statistics); }},
    };
    if (const auto found = commands.find(name); found != commands.end()) {
        return found->second();
    }
    std::cerr << wrappedHelp(app.help(), helpWidth()) << std::flush;
    return static_cast<int>(ExitStatus::Usage);
}

int parseAndDispatch(const std::vector<std::string>& arguments) {
    auto options = std::make_unique<CommandOptions>();
    auto app = commandLine(*options);
    try {
        parse(*app, arguments);
        if (!options->run.config.empty()) {
            const std::string file = options->run.config;
            std::vector<std::string> all = arguments;
            for (std::string& more : configurationArguments(file, chosenCommand(*app))) {
                all.push_back(std::move(more));
            }
            auto again = std::make_unique<CommandOptions>();
            auto whole = commandLine(*again);
            options.swap(again);
            app.swap(whole);
            parse(*app, all);
        }
    } catch (const CLI::CallForHelp&) {
        printOut(wrappedHelp(chosenCommand(*app).help(&chosenCommand(*app) == app.get() ? "" : "quorva"), helpWidth()));
        return 0;
    } catch (const CLI::CallForVersion& version) {
        printOut(std::string(version.what()) + "\n");
        return 0;
    } catch (const CLI::ParseError& error) {
        return usageError(*app, error);
    }
    return dispatch(*app, *options);
}

ExitStatus statusOf(workbook::Failure::Kind kind) {
    return kind == workbook::Failure::Kind::Model ? ExitStatus::Model : ExitStatus::Workbook;
}
}  // namespace

int runProgram(const std::vector<std::string>& arguments) {
    // A reader that goes away is a write that fails, with a message and a status of its own.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return parseAndDispatch(arguments);
    } catch (const CommandFailure& failure) {
        complain(failure.what());
        return static_cast<int>(failure.status);
    } catch (const workbook::Failure& failure) {
        complain(failure.what());
        return static_cast<int>(statusOf(failure.kind));
    } catch (const std::bad_alloc&) {
        complain("there is not enough memory for this run");
    } catch (const std::exception& error) {
        complain(std::string("internal error: ") + error.what());
    }
    return static_cast<int>(ExitStatus::Internal);
}

}  // namespace quorva::frontend

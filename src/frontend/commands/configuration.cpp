#include "frontend/commands/configuration.h"

#include <toml++/toml.h>
#include <CLI/CLI.hpp>

#include "frontend/text/command_failure.h"
#include "frontend/text/number_text.h"
#include "frontend/text/text.h"

namespace quorva::frontend {

namespace {
[[noreturn]] void refuse(const std::string& file, const toml::source_region& place, const std::string& why) {
    throw CommandFailure(ExitStatus::Usage,
                         "configuration file '" + file + "', line " + std::to_string(place.begin.line) + ": " + why);
}

std::string valueText(const std::string& file, const std::string& key, const toml::node& node) {
    if (const auto* text = node.as_string()) {
        return text->get();
    }
    if (const auto* whole = node.as_integer()) {
        return std::to_string(whole->get());
    }
    if (const auto* number = node.as_floating_point()) {
        return exactNumber(number->get());
    }
    refuse(file, node.source(), "'" + key + "' needs a text or a number");
}

void addArguments(const std::string& file, const std::string& key, const toml::node& node, const CLI::Option& option,
                  std::vector<std::string>& arguments) {
    if (option.get_expected_max() == 0) {
        const auto* flag = node.as_boolean();
        if (!flag) {
            refuse(file, node.source(), "'" + key + "' is true or false");
        }
        if (flag->get()) {
            arguments.push_back("--" + key);
        }
        return;
    }
    if (const auto* list = node.as_array()) {
        if (option.get_multi_option_policy() != CLI::MultiOptionPolicy::TakeAll) {
            refuse(file, node.source(), "'" + key + "' takes one value");
        }
        for (const toml::node& item : *list) {
            arguments.push_back("--" + key + "=" + valueText(file, key, item));
        }
        return;
    }
    arguments.push_back("--" + key + "=" + valueText(file, key, node));
}
}  // namespace

std::vector<std::string> configurationArguments(const std::string& file, const CLI::App& runCommand) {
    toml::table table;
    try {
        table = toml::parse_file(file);
    } catch (const toml::parse_error& error) {
        if (error.source().begin.line == 0) {
            throw CommandFailure(ExitStatus::Usage, "the configuration file '" + file + "' cannot be read");
        }
        refuse(file, error.source(), std::string(error.description()));
    }
    std::vector<std::string> names;
    for (const CLI::Option* option : runCommand.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back(name);
        }
    }
    std::vector<std::string> arguments;
    for (const auto& [tomlKey, node] : table) {
        const std::string key(tomlKey.str());
        const CLI::Option* option = runCommand.get_option_no_throw("--" + key);
        if (!option || key == "config" || key == "help") {
            refuse(file, node.source(), "there is no option '" + key + "'" + nearestHint(key, names));
        }
        if (option->count() == 0) {
            addArguments(file, key, node, *option, arguments);
        }
    }
    return arguments;
}

}  // namespace quorva::frontend

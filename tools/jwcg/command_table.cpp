// SPDX-License-Identifier: MIT
#include "command_table.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>
#include <utility>

#include "commands.h"

namespace jws::cli {
namespace {

/// Reads the whole of `text` as a decimal number, whatever the locale.
template <class Number>
bool parse(const std::string& text, Number& value) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end;
}

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> members;
    std::istringstream list(text);
    for (std::string member; std::getline(list, member, ',');) members.push_back(member);
    if (text.empty() || text.back() == ',') members.emplace_back();
    return members;
}

}  // namespace

const std::vector<Command>& commandTable() {
    static const std::vector<Command> table = {
        intersectCommand(), unionCommand(),         mergeCommand(),     eraseCommand(),
        identityCommand(),  symdiffCommand(),       updateCommand(),    spatialJoinCommand(),
        selfUnionCommand(), selfIntersectCommand(), dissolveCommand(),  clipCommand(),
        bufferCommand(),    hullCommand(),          minCircleCommand(), minRectCommand(),
        envelopeCommand(),  simplifyCommand(),      smoothCommand(),    transformCommand(),
        toLinesCommand(),   toPointsCommand(),      nearestCommand(),   relateCommand(),
        infoCommand(),
    };
    return table;
}

void addInteger(CLI::App& app, const std::string& names, int& target, int lowest, int highest,
                const std::string& help) {
    const auto read = [=, &target](const std::string& text) {
        int value = 0;
        if (!parse(text, value) || value < lowest || value > highest) {
            throw CLI::ValidationError(names, "'" + text + "' is not an integer from " +
                                                  std::to_string(lowest) + " to " +
                                                  std::to_string(highest));
        }
        target = value;
    };
    app.add_option_function<std::string>(names, read, help)
        ->type_name("N")
        ->default_str(std::to_string(target));
}

void addNonNegative(CLI::App& app, const std::string& names, double& target,
                    const std::string& help) {
    const auto read = [=, &target](const std::string& text) {
        double value = 0;
        if (!parse(text, value) || !std::isfinite(value) || value < 0) {
            throw CLI::ValidationError(names,
                                       "'" + text + "' is not a finite number of at least 0");
        }
        target = value;
    };
    CLI::Option* option = app.add_option_function<std::string>(names, read, help);
    option->type_name("NUMBER");
    if (std::isfinite(target)) option->default_str("0");
}

void addRectangle(CLI::App& app, const std::string& names, std::vector<double>& target,
                  const std::string& help) {
    addNumbers(app, names, {4}, "X1,Y1,X2,Y2", help, [&target](std::vector<double> numbers) {
        if (numbers[0] > numbers[2]) std::swap(numbers[0], numbers[2]);
        if (numbers[1] > numbers[3]) std::swap(numbers[1], numbers[3]);
        target = std::move(numbers);
    });
}

void addNumbers(CLI::App& app, const std::string& names, const std::vector<std::size_t>& counts,
                const std::string& type, const std::string& help,
                const std::function<void(const std::vector<double>&)>& take) {
    const auto read = [=](const std::string& text) {
        std::vector<double> numbers;
        bool good = true;
        for (const std::string& member : split(text)) {
            numbers.push_back(0);
            good = good && parse(member, numbers.back()) && std::isfinite(numbers.back());
        }
        if (!good || std::find(counts.begin(), counts.end(), numbers.size()) == counts.end()) {
            const bool isOne = counts == std::vector<std::size_t>{1};
            const std::string wanted = isOne ? "a finite number" : "of the form " + type;
            throw CLI::ValidationError(names, "'" + text + "' is not " + wanted);
        }
        take(numbers);
    };
    app.add_option_function<std::string>(names, read, help)->type_name(type)->trigger_on_parse();
}

void addList(CLI::App& app, const std::string& names, std::vector<std::string>& target,
             const std::string& type, const std::string& help) {
    const auto read = [=, &target](const std::vector<std::string>& texts) {
        target.clear();
        for (const std::string& text : texts) {
            for (const std::string& member : split(text)) {
                if (member.empty()) {
                    throw CLI::ValidationError(names, "'" + text + "' has an empty member");
                }
                target.push_back(member);
            }
        }
    };
    app.add_option_function<std::vector<std::string>>(names, read, help)
        ->type_name(type)
        ->allow_extra_args(false);
}

void addChoice(CLI::App& app, const std::string& names, std::string& target,
               const std::vector<std::string>& choices, const std::string& help) {
    std::string list;
    for (const std::string& choice : choices) list += (list.empty() ? "" : "|") + choice;
    const auto read = [=, &target](const std::string& text) {
        if (std::find(choices.begin(), choices.end(), text) == choices.end()) {
            throw CLI::ValidationError(names, "'" + text + "' is not one of " + list);
        }
        target = text;
    };
    app.add_option_function<std::string>(names, read, help)->type_name(list)->default_str(target);
}

void addFile(CLI::App& app, const std::string& name, std::string& target, const std::string& help) {
    app.add_option(name, target, help)->type_name("")->required();
}

void addOptionalFile(CLI::App& app, const std::string& name, std::string& target,
                     const std::string& help) {
    app.add_option(name, target, help)->type_name("");
}

void addText(CLI::App& app, const std::string& names, std::string& target, const std::string& type,
             const std::string& help) {
    const auto read = [=, &target](const std::string& text) {
        if (text.empty()) throw CLI::ValidationError(names, "must not be empty");
        target = text;
    };
    app.add_option_function<std::string>(names, read, help)->type_name(type);
}

}  // namespace jws::cli

// SPDX-License-Identifier: MIT
//
// The table of commands. A command is one row: its name, what help, manual and completion say about
// it, how its options are declared and what it does. Everything else is derived from the rows.
#ifndef JWCG_COMMAND_TABLE_H
#define JWCG_COMMAND_TABLE_H

#include <functional>
#include <string>
#include <vector>

#include "settings.h"

namespace CLI {
class App;
}

namespace jws::cli {

/// One command.
struct Command {
    const char* name;
    const char* summary;      ///< one line, lower case, no full stop
    const char* description;  ///< paragraphs
    const char* example;      ///< one call
    void (*setup)(CLI::App& app, Settings& settings);
    /// Does it and returns the exit status; throws CommandFailure.
    int (*run)(const Settings& settings);
};

/// All commands in the order of help.
const std::vector<Command>& commandTable();

/// Declares an option that takes a decimal integer from `lowest` to `highest`.
void addInteger(CLI::App& app, const std::string& names, int& target, int lowest, int highest,
                const std::string& help);
/// Declares an option that takes a finite number of at least 0; infinity stands for none given.
void addNonNegative(CLI::App& app, const std::string& names, double& target,
                    const std::string& help);
/// Declares an option that takes a rectangle, four numbers with commas between them; two opposite
/// corners will do.
void addRectangle(CLI::App& app, const std::string& names, std::vector<double>& target,
                  const std::string& help);
/// Declares an option that takes as many finite numbers as one of `counts` says, with commas
/// between them. `take` gets each occurrence in the order of the command line.
void addNumbers(CLI::App& app, const std::string& names, const std::vector<std::size_t>& counts,
                const std::string& type, const std::string& help,
                const std::function<void(const std::vector<double>&)>& take);
/// Declares an option that takes a list with commas between its members, and may be repeated.
void addList(CLI::App& app, const std::string& names, std::vector<std::string>& target,
             const std::string& type, const std::string& help);
/// Declares an option that takes one of these words.
void addChoice(CLI::App& app, const std::string& names, std::string& target,
               const std::vector<std::string>& choices, const std::string& help);
/// Declares a positional argument that must be there.
void addFile(CLI::App& app, const std::string& name, std::string& target, const std::string& help);
/// Declares a positional argument that may be missing.
void addOptionalFile(CLI::App& app, const std::string& name, std::string& target,
                     const std::string& help);
/// Declares an option that takes a text of at least one character.
void addText(CLI::App& app, const std::string& names, std::string& target, const std::string& type,
             const std::string& help);

}  // namespace jws::cli

#endif  // JWCG_COMMAND_TABLE_H

// SPDX-License-Identifier: MIT
//
// What is derived from the command table beside the program's own help: the manual page and shell
// completion.
#ifndef JWCG_HELP_PAGES_H
#define JWCG_HELP_PAGES_H

#include <string>

namespace CLI {
class App;
}

namespace jws::cli {

/// The manual page in troff's man macros.
std::string manualPage(const CLI::App& app);
/// Completion for a shell; only bash is known. Throws CommandFailure (usage) for another one.
std::string completionScript(const CLI::App& app, const std::string& shell);
/// The list of exit statuses, one a line.
std::string exitStatusText();

}  // namespace jws::cli

#endif  // JWCG_HELP_PAGES_H

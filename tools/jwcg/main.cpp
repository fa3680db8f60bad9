// SPDX-License-Identifier: MIT
//
// The jwcg program: reads the command line by the command table, runs the command, and turns
// whatever happened into an exit status and at most one line on standard error.
#include <cpl_conv.h>
#include <cpl_error.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "command_table.h"
#include "exit_codes.h"
#include "help_pages.h"
#include "run_summary.h"
#include "signals.h"

namespace jws::cli {
namespace {

/// Options of the program itself.
struct ProgramOptions {
    std::string completion;
    bool manual = false;
};

/// GDAL says on its own what it meets; the library has what matters in its last error.
void showGdalMessage(CPLErr level, CPLErrorNum, const char* text) {
    if (level >= CE_Warning) std::fprintf(stderr, "gdal: %s\n", text);
}

void configureGdal(bool verbose) {
    CPLSetErrorHandler(verbose ? showGdalMessage : CPLQuietErrorHandler);
    // Databases are written in a hidden directory and synced before they are moved into place;
    // syncing them transaction by transaction would gain nothing.
    CPLSetConfigOption("OGR_SQLITE_SYNCHRONOUS", "OFF");
}

std::string oneLine(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '.')) text.pop_back();
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    }
    return text;
}

ExitCode fail(const Settings& settings, const char* command, ExitCode code, const char* what) {
    const std::string text = oneLine(what);
    std::fprintf(stderr, "jwcg: %s\n", text.c_str());
    if (settings.json) printJson(failureAsJson(command, code, text));
    return code;
}

int runCommand(const Command& command, const Settings& settings) {
    try {
        configureGdal(settings.verbose);
        return command.run(settings);
    } catch (const CommandFailure& failure) {
        return fail(settings, command.name, failure.code(), failure.what());
    } catch (const std::bad_alloc&) {
        return fail(settings, command.name, ExitOutOfSpace, "out of memory");
    } catch (const std::exception& error) {
        return fail(settings, command.name, ExitInternal, error.what());
    }
}

void setupCommand(CLI::App& app, const Command& command, Settings& settings) {
    CLI::App& sub = *app.add_subcommand(command.name, command.summary);
    sub.group("Commands");
    command.setup(sub, settings);
    sub.add_flag("--json", settings.json, "Print one JSON object on standard output");
    sub.add_flag("-q,--quiet", settings.quiet,
                 "Say nothing but errors (and the result, with --json)");
    sub.add_flag("-v,--verbose", settings.verbose, "Show the library's messages on standard error");
    sub.set_help_flag("-h,--help", "Print this help");
    sub.footer(std::string(command.description) + "\n\nExample:\n  " + command.example + "\n");
}

void setupProgram(CLI::App& app, ProgramOptions& options, Settings& settings) {
    app.set_version_flag("--version", std::string("jwcg ") + version(), "Print the version");
    app.set_help_flag("-h,--help", "Print help; each command has its own");
    app.add_option("--completion", options.completion, "Print completion for a shell (bash)")
        ->type_name("SHELL");
    app.add_flag("--man", options.manual, "Print the manual page")->group("");
    app.require_subcommand(0, 1);
    app.get_formatter()->label("REQUIRED", "");
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    for (const Command& command : commandTable()) setupCommand(app, command, settings);
    app.footer("Exit status:\n" + exitStatusText() + "\nExample:\n  " +
               commandTable().front().example + "\n");
}

int usageError(const CLI::App& app, const std::string& text) {
    std::string help = "jwcg";
    for (const CLI::App* sub : app.get_subcommands()) help += " " + sub->get_name();
    std::fprintf(stderr, "jwcg: %s; see '%s --help'\n", oneLine(text).c_str(), help.c_str());
    return ExitUsage;
}

/// The least number of characters to put in, leave out or exchange that makes `b` of `a`.
std::size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t exchanged = diagonal + (a[i] != b[j] ? 1 : 0);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

/// What to say of a first word that is no command; empty for one that is.
std::string unknownCommand(const std::string& word) {
    std::string nearest;
    std::size_t least = 3;  // more differences are no slip of the finger
    for (const Command& command : commandTable()) {
        const std::size_t distance = editDistance(word, command.name);
        if (distance == 0) return {};
        if (distance >= least) continue;
        least = distance;
        nearest = command.name;
    }
    const std::string text = "there is no command '" + word + "'";
    return nearest.empty() ? text : text + "; did you mean '" + nearest + "'?";
}

int runProgram(CLI::App& app, const ProgramOptions& options, const Settings& settings) {
    if (settings.quiet && settings.verbose) return usageError(app, "-q and -v exclude each other");
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    for (const Command& command : commandTable()) {
        if (!chosen.empty() && chosen.front()->get_name() == command.name) {
            return runCommand(command, settings);
        }
    }
    if (options.manual) {
        std::fputs(manualPage(app).c_str(), stdout);
    } else if (!options.completion.empty()) {
        std::fputs(completionScript(app, options.completion).c_str(), stdout);
    } else {
        return usageError(app, "no command given");
    }
    return ExitComplete;
}

/// Results that did not reach their reader are a failure like any other.
int flushed(int status) {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    std::fprintf(stderr, "jwcg: standard output: %s\n", std::strerror(errno));
    return status == ExitComplete || status == ExitFeaturesRejected ? ExitOutOfSpace : status;
}

int runMain(int argc, char** argv) {
    installSignalHandlers();
    ProgramOptions options;
    Settings settings;
    CLI::App app("computational geometry and vector spatial analysis", "jwcg");
    try {
        setupProgram(app, options, settings);
        const std::string unknown =
            argc > 1 && argv[1][0] != '-' ? unknownCommand(argv[1]) : std::string();
        if (!unknown.empty()) return usageError(app, unknown);
        app.parse(argc, argv);
        return flushed(runProgram(app, options, settings));
    } catch (const CLI::Success& success) {  // help or version
        return flushed(app.exit(success));
    } catch (const CLI::ParseError& error) {
        return usageError(app, error.what());
    } catch (const CommandFailure& failure) {
        std::fprintf(stderr, "jwcg: %s\n", oneLine(failure.what()).c_str());
        return failure.code();
    } catch (const std::bad_alloc&) {
        std::fputs("jwcg: out of memory\n", stderr);
        return ExitOutOfSpace;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "jwcg: %s\n", oneLine(error.what()).c_str());
        return ExitInternal;
    }
}

}  // namespace
}  // namespace jws::cli

int main(int argc, char** argv) { return jws::cli::runMain(argc, argv); }

// SPDX-License-Identifier: MIT
#include "help_pages.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "command_table.h"
#include "exit_codes.h"
#include "output_format.h"
#include "run_summary.h"

namespace jws::cli {
namespace {

std::string escaped(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '\\') {
            out += "\\e";
        } else if (c == '-') {
            out += "\\-";
        } else {
            if ((c == '.' || c == '\'') && out.empty()) out += "\\&";
            out += c;
        }
    }
    return out;
}

bool isShown(const CLI::Option* option) { return !option->get_group().empty(); }

/// The words that an option admits, if it says so.
std::vector<std::string> choicesOf(const CLI::Option& option) {
    if (option.check_lname("output-format")) return writableFormats();
    const std::string type = option.get_type_name();
    std::vector<std::string> words;
    if (type.find('|') == std::string::npos) return words;
    std::istringstream list(type);
    for (std::string word; std::getline(list, word, '|');) words.push_back(word);
    return words;
}

std::vector<std::string> namesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
    return names;
}

bool takesValue(const CLI::Option& option) { return option.get_items_expected_min() > 0; }

std::string manualOption(const CLI::Option& option) {
    std::string head;
    for (const std::string& name : namesOf(option)) {
        head += (head.empty() ? "\\fB" : ", \\fB") + escaped(name) + "\\fR";
    }
    if (!option.nonpositional()) head = "\\fI" + escaped(option.get_name(true)) + "\\fR";
    if (option.nonpositional() && takesValue(option)) {
        head += " \\fI" + escaped(option.get_type_name()) + "\\fR";
    }
    std::string text = ".TP\n" + head + "\n" + escaped(option.get_description());
    const std::string standard = option.get_default_str();
    if (option.nonpositional() && takesValue(option) && !standard.empty()) {
        text += " (default " + escaped(standard) + ")";
    }
    return text + ".\n";
}

std::string manualCommand(const Command& command, const CLI::App& sub) {
    std::string synopsis = "\\fBjwcg " + std::string(command.name) + "\\fR";
    std::string options;
    for (const CLI::Option* option : sub.get_options(isShown)) {
        if (!option->nonpositional()) synopsis += " \\fI" + option->get_name(true) + "\\fR";
        options += manualOption(*option);
    }
    return ".SS " + synopsis + " [\\fIoptions\\fR]\n" + escaped(command.description) + "\n" +
           options + ".PP\nExample:\n.PP\n.EX\n" + escaped(command.example) + "\n.EE\n";
}

/// `case` arms of the words that follow an option with a fixed choice, and the list of options that
/// take any other word.
struct CompletionCases {
    std::string choices;
    std::string values;
};

CompletionCases completionCases(const CLI::App& sub) {
    CompletionCases cases;
    for (const CLI::Option* option : sub.get_options(isShown)) {
        if (!option->nonpositional() || !takesValue(*option)) continue;
        std::string pattern;
        for (const std::string& name : namesOf(*option)) {
            pattern += (pattern.empty() ? "" : "|") + name;
        }
        std::string words;
        for (const std::string& choice : choicesOf(*option)) words += choice + "\\n";
        if (words.empty()) {
            cases.values += (cases.values.empty() ? "" : "|") + pattern;
        } else {
            cases.choices += "        " + pattern + ")\n            words=$'" + words + "' ;;\n";
        }
    }
    return cases;
}

std::string completionFunction(const CLI::App& sub) {
    const CompletionCases cases = completionCases(sub);
    std::string options;
    for (const CLI::Option* option : sub.get_options(isShown)) {
        for (const std::string& name : namesOf(*option)) options += name + "\\n";
    }
    return "_jwcg_" + sub.get_name() + "() {\n    case \"$2\" in\n" + cases.choices +
           (cases.values.empty() ? "" : "        " + cases.values + ") return ;;\n") +
           "        *)\n            if [[ \"$1\" == -* ]]; then words=$'" + options +
           "'; else files=1; fi ;;\n    esac\n}\n\n";
}

}  // namespace

std::string exitStatusText() {
    std::string text;
    for (const ExitCodeText& row : exitCodeTexts) {
        std::string code = std::to_string(row.code);
        code.resize(5, ' ');
        text += "  " + code + row.text + "\n";
    }
    return text;
}

std::string manualPage(const CLI::App& app) {
    std::string page = std::string(".TH JWCG 1 \"\" \"jwcg ") + version() +
                       "\" \"User Commands\"\n.SH NAME\njwcg \\- " +
                       escaped(app.get_description()) +
                       "\n.SH SYNOPSIS\n.B jwcg\n\\fIcommand\\fR \\fIinputs\\fR [\\fIoutput\\fR] "
                       "[\\fIoptions\\fR]\n.br\n.B jwcg \\-\\-help\n.br\n.B jwcg \\-\\-version\n";
    page +=
        ".SH DESCRIPTION\nInputs come first, the output last. Any vector format that GDAL reads "
        "can "
        "be an input; the format of the output follows from its ending or from "
        "\\fB\\-\\-output\\-format\\fR, GeoPackage without either.\n.PP\n"
        "The output is written in a hidden directory beside its final place and moved there when "
        "it "
        "is complete. A run that fails or is interrupted leaves nothing, and an output that "
        "existed "
        "before stays as it was. Standard output carries results only; messages and progress go to "
        "standard error.\n.SH COMMANDS\n";
    for (const Command& command : commandTable()) {
        page += manualCommand(command, *app.get_subcommand(command.name));
    }
    page += ".SH EXIT STATUS\n";
    for (const ExitCodeText& row : exitCodeTexts) {
        page += ".TP\n.B " + std::to_string(row.code) + "\n" + escaped(row.text) + "\n";
    }
    page +=
        ".SH FILES\n.TP\n.I .jwcg\\-<process>\\-<number>\nThe hidden directory beside an output "
        "in the making. It may be removed when no jwcg is running.\n";
    return page;
}

std::string completionScript(const CLI::App& app, const std::string& shell) {
    if (shell != "bash") {
        throw CommandFailure(ExitUsage,
                             "completion for shell '" + shell + "' is not known; bash is");
    }
    std::string script = "# bash completion for jwcg\n\n";
    std::string names;
    for (const Command& command : commandTable()) {
        script += completionFunction(*app.get_subcommand(command.name));
        names += std::string(command.name) + "\\n";
    }
    script +=
        "_jwcg() {\n"
        "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
        "    local words='' files=''\n"
        "    COMPREPLY=()\n"
        "    if ((COMP_CWORD == 1)); then\n"
        "        words=$'" +
        names +
        "--help\\n--version\\n'\n"
        "    elif declare -F \"_jwcg_${COMP_WORDS[1]}\" >/dev/null; then\n"
        "        \"_jwcg_${COMP_WORDS[1]}\" \"$current\" \"$previous\"\n"
        "    fi\n"
        "    local IFS=$'\\n' word\n"
        "    if [[ -n $files ]]; then\n"
        "        compopt -o filenames 2>/dev/null\n"
        "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
        "        return\n"
        "    fi\n"
        "    for word in $words; do\n"
        "        if [[ $word == \"$current\"* ]]; then\n"
        "            COMPREPLY+=(\"$(printf '%q' \"$word\")\")\n"
        "        fi\n"
        "    done\n"
        "}\n"
        "complete -F _jwcg jwcg\n";
    return script;
}

}  // namespace jws::cli

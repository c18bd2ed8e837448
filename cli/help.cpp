// SPDX-License-Identifier: Apache-2.0
#include "cli/help.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/rules.hpp"
#include "cli/spelling.hpp"

namespace cli {

namespace {

// What an option takes and whether it must be given; that some exclude each other is told where it happens.
struct HelpLayout : CLI::Formatter {
    std::string make_option_opts(const CLI::Option* option) const override {
        std::string type = option->get_type_size() == 0 ? "" : option->get_type_name();
        if (type.starts_with(':')) type.erase(0, 1);  // "" and what a check says of its values
        return fmt::format("{}{}{}{}", type.empty() ? "" : " ", type,
                           option->get_expected_max() > 1 ? "..." : "",
                           option->get_required() ? " (required)" : "");
    }
};

}  // namespace

std::shared_ptr<CLI::FormatterBase> help_layout() { return std::make_shared<HelpLayout>(); }

// ---- help -------------------------------------------------------------------------------------------------

static std::string rules_help() {
    std::string text = "Encoding rules, as --from and --to name them:\n";
    for (const Rules& rules : all_rules()) text += fmt::format("  {:<6}{}\n", rules.name, rules.about);
    return text +
           "\nBinary messages are read and written as they are, or as hexadecimal digits or base64 (--hex, "
           "--base64):\n"
           "one per file, one per line (--lines), or each after its length (--framing). Text is UTF-8.\n";
}

std::string unknown_rules(std::string_view name) {
    const std::string wanted = folded(name);
    std::vector<std::string_view> all, described, close;
    for (const Rules& rules : all_rules()) {
        all.push_back(rules.name);
        if (wanted.size() >= 3 && folded(rules.about).find(wanted) != std::string::npos)
            described.push_back(rules.name);
        if (edit_distance(wanted, rules.name) <= 1) close.push_back(rules.name);
    }
    const std::vector<std::string_view>& nearest = described.empty() ? close : described;
    if (nearest.empty() || nearest.size() > 3)
        return fmt::format("no rules are named {}; there are {}", name, fmt::join(all, ", "));
    return fmt::format("no rules are named {}; the nearest: {}", name, fmt::join(nearest, ", "));
}

std::string help_text(const CLI::App& app, const std::string& topic) {
    // app.help() would be that of the command which was given, so of help itself.
    if (topic.empty())
        return app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
    if (topic == "rules") return rules_help();
    for (const CLI::App* command : app.get_subcommands({}))
        if (command->get_name() == topic) return command->help("orlenta");
    return {};
}

// ---- completion -------------------------------------------------------------------------------------------

static std::vector<std::string> command_names(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
    return names;
}

static std::vector<std::string> long_options(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

static std::vector<std::string> rule_names() {
    std::vector<std::string> names;
    for (const Rules& rules : all_rules()) names.push_back(rules.name);
    return names;
}

// The names of types come from the command itself, when they are asked for.
static constexpr char kTypeNames[] = "orlenta types 2>/dev/null | cut -d' ' -f1";

static std::string bash_script(const CLI::App& app) {
    std::string cases;
    for (const CLI::App* command : app.get_subcommands({}))
        cases += fmt::format("        {}) words='{}' ;;\n", command->get_name(),
                             fmt::join(long_options(*command), " "));
    return fmt::format(
        "_orlenta() {{\n"
        "    local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD - 1]}} words=\n"
        "    COMPREPLY=()\n"
        "    case $previous in\n"
        "        --from | --to | -f) words='{}' ;;\n"
        "        --type | -t | show) words=$({}) ;;\n"
        "    esac\n"
        "    if [[ -z $words && $COMP_CWORD -eq 1 ]]; then words='{}'; fi\n"
        "    if [[ -z $words && $current == -* ]]; then case ${{COMP_WORDS[1]}} in\n"
        "{}"
        "    esac; fi\n"
        "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
        "}}\n"
        "complete -o default -F _orlenta orlenta\n",
        fmt::join(rule_names(), " "), kTypeNames, fmt::join(command_names(app), " "), cases);
}

static std::string zsh_script(const CLI::App& app) {
    return "#compdef orlenta\nautoload -U +X bashcompinit && bashcompinit\n" + bash_script(app);
}

// A text within single quotes.
static std::string quoted(std::string text) {
    for (size_t at = 0; (at = text.find('\'', at)) != text.npos; at += 2) text.insert(at, "\\");
    return "'" + text + "'";
}

static std::string fish_script(const CLI::App& app) {
    std::string text = "complete -c orlenta -f -n __fish_use_subcommand\n";
    for (const CLI::App* command : app.get_subcommands({})) {
        const std::string& name = command->get_name();
        text += fmt::format("complete -c orlenta -n __fish_use_subcommand -a {} -d {}\n", name,
                            quoted(command->get_description()));
        for (const CLI::Option* option : command->get_options())
            for (const std::string& word : option->get_lnames()) {
                std::string values;
                if (word == "from" || word == "to")
                    values = quoted(fmt::format("{}", fmt::join(rule_names(), " ")));
                if (word == "type") values = quoted(fmt::format("({})", kTypeNames));
                text += fmt::format("complete -c orlenta -n '__fish_seen_subcommand_from {}' -l {} -d {}{}\n",
                                    name, word, quoted(option->get_description()),
                                    values.empty() ? "" : " -x -a " + values);
            }
    }
    return text;
}

std::string completion_script(const CLI::App& app, const std::string& shell) {
    if (shell == "bash") return bash_script(app);
    if (shell == "zsh") return zsh_script(app);
    if (shell == "fish") return fish_script(app);
    return {};
}

}  // namespace cli

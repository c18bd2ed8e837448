// orlenta: converts messages between encoding rules, checks and makes them, and tells about their types.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <climits>
#include <cstdio>
#include <map>

#include "cli/commands.hpp"

namespace {

using namespace cli;

// Options that several commands share, as the user writes them.
struct Layout {
    int indent = 2;
    bool compact = false;
    bool no_empty_tags = false, boolean_text = false, enumerated_text = false;
    bool indefinite = false;
    int segment = 0;
    bool xml_given() const { return no_empty_tags || boolean_text || enumerated_text; }
    bool ber_given() const { return indefinite || segment != 0; }
    bool indent_given() const { return indent_option && indent_option->count() > 0; }
    CLI::Option* indent_option = nullptr;
};

struct Arguments {
    ConvertOptions convert;
    CheckOptions check;
    RandomOptions random;
    TypesOptions types;
    ShowOptions show;
    std::string region;
    std::string convert_from, convert_to, check_from, random_to;
    Layout convert_layout, random_layout;
    bool recursive = false;
};

}  // namespace

static CLI::Validator rule_name() {
    std::vector<std::string> names;
    for (const Rules& rules : all_rules()) names.push_back(rules.name);
    return CLI::IsMember(names).name("RULES");
}

static std::string rules_help() {
    std::string text = "Encoding rules:\n";
    for (const Rules& rules : all_rules()) text += fmt::format("  {:<6}{}\n", rules.name, rules.about);
    return text + "Exit status: 0 done, 1 bad input, 2 bad usage.";
}

static void add_framing(CLI::App* command, Framing* framing) {
    command->add_flag("--hex", framing->hex, "Bytes are hexadecimal text, in the input and in the output");
    command->add_flag("--lines", framing->lines, "One message a line, in the input and in the output");
}

static void add_layout(CLI::App* command, Layout* layout) {
    layout->indent_option =
        command->add_option("--indent", layout->indent, "Spaces for each level of text (2)")
            ->check(CLI::Range(0, 16));
    command->add_flag("--compact", layout->compact, "Text on one line")->excludes("--indent");
    command->add_flag("--no-empty-tags", layout->no_empty_tags, "xer: <x></x> for <x/>");
    command->add_flag("--boolean-text", layout->boolean_text, "xer: BOOLEAN as text, not as <true/>");
    command->add_flag("--enumerated-text", layout->enumerated_text,
                      "xer: ENUMERATED as text, not as <item/>");
    command->add_flag("--indefinite", layout->indefinite, "ber: indefinite lengths");
    command->add_option("--segment", layout->segment, "ber: strings in segments of so many octets")
        ->check(CLI::Range(2, INT_MAX));
}

static CLI::App* add_convert(CLI::App* app, Arguments* arguments) {
    ConvertOptions* options = &arguments->convert;
    CLI::App* command = app->add_subcommand("convert", "Convert messages from one encoding to another");
    command->add_option("--type,-t", options->type, "Type of the messages, as CN.MessageFrame")->required();
    command->add_option("--from,-f", arguments->convert_from, "Rules of the input")
        ->required()
        ->check(rule_name());
    command->add_option("--to", arguments->convert_to, "Rules of the output")->required()->check(rule_name());
    command->add_option("FILE", options->files, "Input files (standard input)");
    command->add_option("--output,-o", options->output, "Output file (standard output)");
    add_framing(command, &options->framing);
    add_layout(command, &arguments->convert_layout);
    command->add_flag("--check", options->check, "Refuse values that do not meet the type's constraints");
    command->add_flag("--keep-going,-k", options->keep_going, "Report a bad message and go on with the next");
    command->add_flag("--allow-trailing", options->allow_trailing, "Ignore bytes behind the message");
    return command;
}

static CLI::App* add_check(CLI::App* app, Arguments* arguments) {
    CheckOptions* options = &arguments->check;
    CLI::App* command =
        app->add_subcommand("check", "Tell which messages do not decode or do not meet constraints");
    command->add_option("--type,-t", options->type, "Type of the messages")->required();
    command->add_option("--from,-f", arguments->check_from, "Rules of the input")
        ->required()
        ->check(rule_name());
    command->add_option("FILE", options->files, "Input files (standard input)");
    add_framing(command, &options->framing);
    command->add_flag("--allow-trailing", options->allow_trailing, "Ignore bytes behind the message");
    return command;
}

static CLI::App* add_random(CLI::App* app, Arguments* arguments) {
    RandomOptions* options = &arguments->random;
    CLI::App* command = app->add_subcommand("random", "Make values from seeds and encode them");
    command->add_option("--type,-t", options->type, "Type of the values")->required();
    command->add_option("--to", arguments->random_to, "Rules of the output")->required()->check(rule_name());
    command->add_option("--seed", options->seed, "First seed (1); each further value has the next one");
    command->add_option("--count,-n", options->count, "How many values (1)");
    command->add_option("--output,-o", options->output, "Output file (standard output)");
    add_framing(command, &options->framing);
    add_layout(command, &arguments->random_layout);
    command->add_flag("--keep-going,-k", options->keep_going,
                      "Report a value that has no encoding and go on");
    return command;
}

static void add_catalogue_commands(CLI::App* app, Arguments* arguments) {
    CLI::App* types = app->add_subcommand("types", "List types: kind, bounds, size of the value record");
    types->add_option("PATTERN", arguments->types.pattern, "Part of the name, or a pattern with * and ?");
    types->add_flag("--all", arguments->types.all, "Anonymous types too");

    CLI::App* show = app->add_subcommand("show", "Print a type in ASN.1 notation, as its table has it");
    show->add_option("TYPE", arguments->show.type, "The type, as CN.BasicSafetyMessage")->required();
    show->add_option("--depth", arguments->show.depth,
                     "Print the types that it names too, so many steps deep");
    show->add_flag("--recursive,-r", arguments->recursive, "Print all types below it")->excludes("--depth");

    CLI::App* roots = app->add_subcommand("roots", "List the types that no other type refers to");
    roots->add_option("REGION", arguments->region, "CN, EU or US")->required();
}

// ---- what the parser cannot tell by itself ----------------------------------------------------------------

static void require(bool condition, const std::string& text) {
    if (!condition) throw CLI::ValidationError(text);
}

// Encodings in bytes have no separator, so that only their hexadecimal form can stand on lines.
static void check_lines(const Framing& framing, const Rules* rules) {
    if (!framing.lines || !rules) return;
    require(rules->is_text() || framing.hex, fmt::format("--lines needs --hex for {}", rules->name));
}

static Style style_of(const Layout& layout, bool lines, const Rules* to) {
    bool on_one_line = layout.compact || layout.indent == 0;
    require(!layout.xml_given() || to == find_rules("xer"),
            "--no-empty-tags, --boolean-text and --enumerated-text are for xer");
    require(!layout.ber_given() || to == find_rules("ber"), "--indefinite and --segment are for ber");
    if (!to->is_text()) {
        require(!layout.indent_given() && !layout.compact,
                fmt::format("--indent and --compact are for text, which {} is not", to->name));
        return {.indefinite = layout.indefinite, .segment = layout.segment};
    }
    require(!lines || on_one_line || !layout.indent_given(), "--lines and --indent exclude each other");
    on_one_line = on_one_line || lines;
    require(!on_one_line || to->fits_one_line(), fmt::format("{} cannot be written on one line", to->name));
    require(on_one_line || layout.indent == 2 || to->shape == Shape::any_indent,
            fmt::format("{} is indented by 2", to->name));
    return {.indent = on_one_line ? 0 : layout.indent,
            .empty_tags = !layout.no_empty_tags,
            .boolean_text = layout.boolean_text,
            .enumerated_text = layout.enumerated_text};
}

static int run_command(const CLI::App& app, Arguments* arguments) {
    require(!app.get_subcommands().empty(), "no command is given");
    if (app.got_subcommand("convert")) {
        ConvertOptions& options = arguments->convert;
        options.from = find_rules(arguments->convert_from);
        options.to = find_rules(arguments->convert_to);
        check_lines(options.framing, options.from);
        check_lines(options.framing, options.to);
        options.style = style_of(arguments->convert_layout, options.framing.lines, options.to);
        return run_convert(options);
    }
    if (app.got_subcommand("check")) {
        arguments->check.from = find_rules(arguments->check_from);
        check_lines(arguments->check.framing, arguments->check.from);
        return run_check(arguments->check);
    }
    if (app.got_subcommand("random")) {
        RandomOptions& options = arguments->random;
        options.to = find_rules(arguments->random_to);
        check_lines(options.framing, options.to);
        require(options.count <= 1 || options.to->is_text() || options.framing.hex,
                fmt::format("--count needs --hex for {}", options.to->name));
        options.style = style_of(arguments->random_layout, options.framing.lines, options.to);
        return run_random(options);
    }
    if (app.got_subcommand("types")) return run_types(arguments->types);
    if (app.got_subcommand("show")) {
        if (arguments->recursive) arguments->show.depth = UINT_MAX;
        return run_show(arguments->show);
    }
    return run_roots(arguments->region);
}

static int refuse_usage(const CLI::App& app, const CLI::ParseError& error) {
    static const std::map<std::string, const char*> usages = {
        {"convert", "convert --type TYPE --from RULES --to RULES [OPTION...] [FILE...]"},
        {"check", "check --type TYPE --from RULES [OPTION...] [FILE...]"},
        {"random", "random --type TYPE --to RULES [OPTION...]"},
        {"types", "types [--all] [PATTERN]"},
        {"show", "show [--depth N | --recursive] TYPE"},
        {"roots", "roots REGION"},
    };
    auto given = app.get_subcommands();
    auto usage = given.empty() ? usages.end() : usages.find(given.front()->get_name());
    report(error.what());
    if (usage == usages.end())
        fmt::print(stderr,
                   "usage: orlenta convert | check | random | types | show | roots ...\n"
                   "see orlenta --help\n");
    else
        fmt::print(stderr, "usage: orlenta {}\nsee orlenta {} --help\n", usage->second, usage->first);
    return kBadUsage;
}

int main(int argc, char** argv) {
    CLI::App app("Converts, checks and makes messages of the vehicle message sets.", "orlenta");
    Arguments arguments;
    app.set_version_flag("--version", "orlenta " ORLENTA_VERSION);
    app.require_subcommand(0, 1);
    app.footer(rules_help());
    for (CLI::App* command :
         {add_convert(&app, &arguments), add_check(&app, &arguments), add_random(&app, &arguments)})
        command->footer(rules_help());
    add_catalogue_commands(&app, &arguments);
    try {
        app.parse(argc, argv);
        int status = run_command(app, &arguments);
        if (fflush(stdout) == 0 && !ferror(stdout)) return status;
        if (status == kDone) report("standard output cannot be written");
        return kBadInput;
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        return refuse_usage(app, error);
    }
}

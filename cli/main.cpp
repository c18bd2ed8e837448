// SPDX-License-Identifier: Apache-2.0
// orlenta: converts messages between encoding rules, checks and makes them, and tells about their types.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <climits>
#include <cstdio>
#include <map>

#include "cli/commands.hpp"
#include "cli/help.hpp"
#include "cli/schema.hpp"

namespace {

using namespace cli;

// Options that several commands share, as the user writes them.
struct TextStyle {
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

struct ByteLayout {
    bool lines = false, hex = false, base64 = false;
    std::string framing;
};

struct Arguments {
    ConvertOptions convert, check;
    ExplainOptions explain;
    RandomOptions random;
    std::string pattern;
    ShowOptions show;
    std::string region, topic, shell;
    std::vector<std::string> schema;
    std::string schema_region;
    std::string convert_from, convert_to, check_from, explain_from, random_to;
    TextStyle convert_style, random_style;
    ByteLayout convert_layout, check_layout, explain_layout, random_layout;
    bool must_pass = false, no_check = false;
    bool recursive = false;
};

}  // namespace

// ---- the options ------------------------------------------------------------------------------------------

static CLI::Validator rule_name() {
    std::vector<std::string> names;
    for (const Rules& rules : all_rules()) names.push_back(rules.name);
    auto problem = [](const std::string& name) { return find_rules(name) ? "" : unknown_rules(name); };
    return CLI::Validator(problem, fmt::format("{}", fmt::join(names, "|")));
}

static void add_text_forms(CLI::App* command, ByteLayout* layout) {
    CLI::Option* hex =
        command->add_flag("--hex", layout->hex, "Bytes are hexadecimal text; padded base64 is read as well");
    command->add_flag("--base64", layout->base64, "Bytes are base64 text")->excludes(hex);
}

static CLI::Option* add_layout(CLI::App* command, ByteLayout* layout) {
    add_text_forms(command, layout);
    return command->add_flag("--lines", layout->lines,
                             "One message per line, in the input and in the output");
}

static void add_schema(CLI::App* command, Arguments* arguments) {
    command
        ->add_option("--schema", arguments->schema,
                     "Take the types from these ASN.1 modules instead of the built-in message sets")
        ->type_name("FILE");
    command->add_option("--region", arguments->schema_region, "First part of their types' names (none)")
        ->type_name("NAME")
        ->needs("--schema");
}

static void add_framing(CLI::App* command, ByteLayout* layout, CLI::Option* lines) {
    command
        ->add_option(
            "--framing", layout->framing,
            "Each binary message follows its length, a big-endian number of 16 or 32 bits; text has one "
            "message per line")
        ->type_name("")
        ->check(CLI::IsMember({"length16", "length32"}).description("length16|length32"))
        ->excludes(lines)
        ->excludes("--hex")
        ->excludes("--base64");
}

static void add_style(CLI::App* command, TextStyle* style) {
    style->indent_option =
        command->add_option("--indent", style->indent, "Spaces per level of indented text (2)")
            ->type_name("N")
            ->check(CLI::Range(0, 16).description(""));
    command->add_flag("--compact", style->compact, "Write text on one line")->excludes("--indent");
    command->add_flag("--no-empty-tags", style->no_empty_tags, "xer: write <x></x> for <x/>");
    command->add_flag("--boolean-text", style->boolean_text, "xer: write BOOLEAN as text, not as <true/>");
    command->add_flag("--enumerated-text", style->enumerated_text,
                      "xer: write ENUMERATED as text, not as <item/>");
    command->add_flag("--indefinite", style->indefinite, "ber: use indefinite lengths");
    command->add_option("--segment", style->segment, "ber: split strings into segments of N octets")
        ->type_name("N")
        ->check(CLI::Range(2, INT_MAX).description(""));
}

static void add_input(CLI::App* command, ConvertOptions* options, std::string* from, ByteLayout* layout) {
    command
        ->add_option("--type,-t", options->type,
                     "Type of the messages, such as CN.MessageFrame; auto or EU.auto detects it")
        ->required()
        ->type_name("NAME");
    command->add_option("--from,-f", *from, "Encoding rules of the input")
        ->required()
        ->type_name("")
        ->check(rule_name());
    command->add_option("FILE", options->files, "Input files (default: standard input)")->type_name("");
    add_framing(command, layout, add_layout(command, layout));
    command->add_option("--errors", options->errors, "Write each error to FILE as a JSON object on a line")
        ->type_name("FILE");
    command->add_option("--jobs,-j", options->jobs, "Number of threads (1); 0 means one per processor")
        ->type_name("N");
    command->add_flag("--allow-trailing", options->allow_trailing, "Ignore bytes after the message");
}

static void add_convert(CLI::App* app, Arguments* arguments) {
    ConvertOptions* options = &arguments->convert;
    CLI::App* command = app->add_subcommand("convert", "Convert messages from one encoding to another");
    add_input(command, options, &arguments->convert_from, &arguments->convert_layout);
    command->add_option("--to", arguments->convert_to, "Encoding rules of the output")
        ->required()
        ->type_name("")
        ->check(rule_name());
    command->add_option("--output,-o", options->output, "Output file (default: standard output)")
        ->type_name("FILE");
    add_style(command, &arguments->convert_style);
    CLI::Option* check =
        command->add_flag("--check", arguments->must_pass,
                          "Refuse values that violate a constraint even if the output is text");
    command->add_flag("--no-check", arguments->no_check, "Do not check constraints")->excludes(check);
    command->add_flag(
        "--keep-going,-k", options->keep_going,
        "Report a bad message, write null, an empty line or an empty record in its place, and continue");
    command->add_flag(
        "--physical", options->physical,
        "jer: write {\"raw\":...,\"physical\":...,\"unit\":...} for numbers that have a unit; not "
        "accepted as input");
    command->add_flag("--envelope", options->envelope, "jer: write {\"type\":...,\"value\":...}");
}

static void add_check(CLI::App* app, Arguments* arguments) {
    CLI::App* command =
        app->add_subcommand("check", "Report messages that do not decode or violate constraints");
    add_input(command, &arguments->check, &arguments->check_from, &arguments->check_layout);
}

static void add_explain(CLI::App* app, Arguments* arguments) {
    ExplainOptions* options = &arguments->explain;
    CLI::App* command = app->add_subcommand("explain", "Show what each bit of a message means");
    command->add_option("--type,-t", options->type, "Type of the message")->required()->type_name("NAME");
    command
        ->add_option("--from,-f", arguments->explain_from, "Encoding rules of the message; binary rules only")
        ->required()
        ->type_name("")
        ->check(rule_name());
    command->add_option("FILE", options->file, "Input file (default: standard input)")->type_name("");
    add_text_forms(command, &arguments->explain_layout);
    command->add_flag("--json", options->json, "Write one JSON object per line");
}

static void add_random(CLI::App* app, Arguments* arguments) {
    RandomOptions* options = &arguments->random;
    CLI::App* command = app->add_subcommand("random", "Generate random values and encode them");
    command->add_option("--type,-t", options->type, "Type of the values")->required()->type_name("NAME");
    command->add_option("--to", arguments->random_to, "Encoding rules of the output")
        ->required()
        ->type_name("")
        ->check(rule_name());
    command
        ->add_option("--seed", options->seed,
                     "Seed of the first value (1); each further value uses the next number")
        ->type_name("N");
    command->add_option("--count,-n", options->count, "Number of values (1)")->type_name("N");
    command->add_flag(
        "--valid", options->valid,
        "Values of moderate size that meet all constraints, with open types that match their keys");
    command->add_option("--output,-o", options->output, "Output file (default: standard output)")
        ->type_name("FILE");
    add_layout(command, &arguments->random_layout);
    add_style(command, &arguments->random_style);
    command->add_flag("--keep-going,-k", options->keep_going,
                      "Report a value that has no encoding and continue");
}

static void add_catalogue_commands(CLI::App* app, Arguments* arguments) {
    CLI::App* types = app->add_subcommand("types", "List types: kind, bounds, size of the value record");
    types->add_option("PATTERN", arguments->pattern, "Part of a name, or a pattern with * and ?")
        ->type_name("");

    CLI::App* show = app->add_subcommand("show", "Print types in ASN.1 notation, with bounds and units");
    show->add_option("TYPE", arguments->show.type,
                     "A type, such as CN.BasicSafetyMessage, or a pattern with * and ?")
        ->type_name("")
        ->required();
    show->add_option("--depth", arguments->show.depth,
                     "Also print the types that it refers to, N levels deep")
        ->type_name("N");
    show->add_flag("--recursive,-r", arguments->recursive,
                   "Also print all types that it refers to, at any level")
        ->excludes("--depth");

    CLI::App* roots = app->add_subcommand("roots", "List the types that no other type refers to");
    roots->add_option("REGION", arguments->region, "CN, EU or US; not needed with --schema")->type_name("");
}

static void add_help(CLI::App* app, Arguments* arguments) {
    CLI::App* help = app->add_subcommand("help", "Explain a command, or list the encoding rules");
    help->add_option("TOPIC", arguments->topic, "A command, or \"rules\"")->type_name("");
    CLI::App* completion = app->add_subcommand("completion", "Print a completion script for a shell");
    completion->add_option("SHELL", arguments->shell, "bash, zsh or fish")
        ->type_name("")
        ->required()
        ->check(CLI::IsMember({"bash", "zsh", "fish"}).description(""));
}

// ---- what the parser cannot tell by itself ----------------------------------------------------------------

static void require(bool condition, const std::string& text) {
    if (!condition) throw CLI::ValidationError(text);
}

static Layout layout_of(const ByteLayout& given) {
    Layout layout;
    layout.lines = given.lines;
    if (given.hex) layout.form = TextForm::hex;
    if (given.base64) layout.form = TextForm::base64;
    if (!given.framing.empty()) layout.length_octets = given.framing == "length16" ? 2 : 4;
    return layout;
}

// Encodings in bytes have no separator, so that only their text can stand on lines.
static void check_lines(const Layout& layout, const Rules* rules) {
    if (!layout.lines || !rules) return;
    require(rules->is_text() || layout.form != TextForm::none,
            fmt::format("--lines needs --hex or --base64 for {}", rules->name));
}

static Style style_of(const TextStyle& given, bool lines, const Rules* to) {
    bool on_one_line = given.compact || given.indent == 0;
    require(!given.xml_given() || to == find_rules("xer"),
            "--no-empty-tags, --boolean-text and --enumerated-text are for xer");
    require(!given.ber_given() || to == find_rules("ber"), "--indefinite and --segment are for ber");
    if (!to->is_text()) {
        require(!given.indent_given() && !given.compact,
                fmt::format("--indent and --compact are for text, which {} is not", to->name));
        return {.indefinite = given.indefinite, .segment = given.segment};
    }
    require(!lines || on_one_line || !given.indent_given(), "--lines and --indent exclude each other");
    on_one_line = on_one_line || lines;
    require(!on_one_line || to->fits_one_line(), fmt::format("{} cannot be written on one line", to->name));
    require(on_one_line || given.indent == 2 || to->shape == Shape::any_indent,
            fmt::format("{} is indented by 2", to->name));
    return {.indent = on_one_line ? 0 : given.indent,
            .empty_tags = !given.no_empty_tags,
            .boolean_text = given.boolean_text,
            .enumerated_text = given.enumerated_text};
}

// ---- the commands -----------------------------------------------------------------------------------------

static int run_convert_command(Arguments* arguments) {
    ConvertOptions& options = arguments->convert;
    options.from = find_rules(arguments->convert_from);
    options.to = find_rules(arguments->convert_to);
    options.layout = layout_of(arguments->convert_layout);
    check_lines(options.layout, options.from);
    check_lines(options.layout, options.to);
    bool lines = options.layout.lines || options.layout.length_octets > 0;
    options.style = style_of(arguments->convert_style, lines, options.to);
    require(!options.envelope || options.to == find_rules("jer"), "--envelope is for jer");
    require(!options.physical || options.to == find_rules("jer"), "--physical is for jer");
    if (arguments->must_pass) options.check = CheckPolicy::refuse;
    if (arguments->no_check) options.check = CheckPolicy::none;
    return run_convert(options);
}

static int run_check_command(Arguments* arguments) {
    ConvertOptions& options = arguments->check;
    options.from = find_rules(arguments->check_from);
    options.layout = layout_of(arguments->check_layout);
    check_lines(options.layout, options.from);
    options.check = CheckPolicy::refuse;
    options.keep_going = true;
    return run_convert(options);
}

static int run_explain_command(Arguments* arguments) {
    ExplainOptions& options = arguments->explain;
    options.from = find_rules(arguments->explain_from);
    require(!options.from->is_text(),
            fmt::format("{} is text; explain takes messages of bits", options.from->name));
    options.form = layout_of(arguments->explain_layout).form;
    return run_explain(options);
}

static int run_random_command(Arguments* arguments) {
    RandomOptions& options = arguments->random;
    options.to = find_rules(arguments->random_to);
    options.layout = layout_of(arguments->random_layout);
    check_lines(options.layout, options.to);
    require(options.count <= 1 || options.to->is_text() || options.layout.form != TextForm::none,
            fmt::format("--count needs --hex or --base64 for {}", options.to->name));
    options.style = style_of(arguments->random_style, options.layout.lines, options.to);
    return run_random(options);
}

static int run_help(const CLI::App& app, const std::string& topic) {
    std::string text = help_text(app, topic);
    require(!text.empty(), fmt::format("there is no help on {}; see orlenta help", topic));
    fmt::print("{}", text);
    return kDone;
}

static int run_command(const CLI::App& app, Arguments* arguments) {
    require(!app.get_subcommands().empty(), "no command is given");
    if (!arguments->schema.empty() && !use_schema(arguments->schema, arguments->schema_region))
        return kBadInput;
    if (app.got_subcommand("convert")) return run_convert_command(arguments);
    if (app.got_subcommand("check")) return run_check_command(arguments);
    if (app.got_subcommand("explain")) return run_explain_command(arguments);
    if (app.got_subcommand("random")) return run_random_command(arguments);
    if (app.got_subcommand("types")) return run_types(arguments->pattern);
    if (app.got_subcommand("help")) return run_help(app, arguments->topic);
    if (app.got_subcommand("roots")) {
        require(!arguments->region.empty() || !arguments->schema.empty(), "REGION is required");
        return run_roots(arguments->schema.empty() ? arguments->region : arguments->schema_region);
    }
    if (app.got_subcommand("completion")) {
        fmt::print("{}", completion_script(app, arguments->shell));
        return kDone;
    }
    if (arguments->recursive) arguments->show.depth = UINT_MAX;
    return run_show(arguments->show);
}

static int refuse_usage(const CLI::App& app, const CLI::ParseError& error) {
    static const std::map<std::string, const char*> usages = {
        {"convert", "convert --type TYPE --from RULES --to RULES [OPTION...] [FILE...]"},
        {"check", "check --type TYPE --from RULES [OPTION...] [FILE...]"},
        {"explain", "explain --type TYPE --from RULES [OPTION...] [FILE]"},
        {"random", "random --type TYPE --to RULES [OPTION...]"},
        {"types", "types [PATTERN]"},
        {"show", "show [--depth N | --recursive] TYPE"},
        {"roots", "roots REGION"},
        {"help", "help [COMMAND | rules]"},
        {"completion", "completion bash | zsh | fish"},
    };
    auto given = app.get_subcommands();
    auto usage = given.empty() ? usages.end() : usages.find(given.front()->get_name());
    report(error.what());
    if (usage == usages.end())
        fmt::print(stderr,
                   "usage: orlenta convert | check | explain | random | types | show | roots | help ...\n"
                   "see orlenta help\n");
    else
        fmt::print(stderr, "usage: orlenta {}\nsee orlenta help {}\n", usage->second, usage->first);
    return kBadUsage;
}

int main(int argc, char** argv) {
    CLI::App app("Converts, checks, explains and generates vehicle (V2X) messages.", "orlenta");
    app.formatter(help_layout());
    Arguments arguments;
    app.set_version_flag("--version", "orlenta " ORLENTA_VERSION);
    app.require_subcommand(0, 1);
    app.footer(
        "Exit status: 0 success, 1 bad input, 2 bad usage. See also: orlenta help COMMAND, orlenta help "
        "rules");
    add_convert(&app, &arguments);
    add_check(&app, &arguments);
    add_explain(&app, &arguments);
    add_random(&app, &arguments);
    add_catalogue_commands(&app, &arguments);
    for (const char* name : {"convert", "check", "explain", "random", "types", "show", "roots"})
        add_schema(app.get_subcommand(name), &arguments);
    add_help(&app, &arguments);
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

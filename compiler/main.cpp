// SPDX-License-Identifier: Apache-2.0
// orlentac: from ASN.1 modules to descriptor tables and a header with value records.
#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "compiler/emit/build_header.hpp"
#include "compiler/emit/catalogue.hpp"
#include "compiler/emit/header.hpp"
#include "compiler/emit/programs.hpp"
#include "compiler/emit/summary.hpp"
#include "compiler/emit/tables.hpp"
#include "compiler/emit/typed_header.hpp"
#include "compiler/frontend.hpp"
#include "compiler/layout/layout.hpp"
#include "compiler/model/diagnostics.hpp"
#include "compiler/programs/coded_types.hpp"

namespace fs = std::filesystem;
using namespace orlentac;

namespace {

constexpr int kSchemaError = 1;
constexpr int kBadUsage = 2;

struct Options {
    SchemaOptions schema;
    LayoutOptions layout;
    std::string tables_dir;
    std::string header;
    std::string include_name;
    std::string list;
    std::string names = "short";
    std::vector<std::string> programs;
    std::string program_list;
    size_t parts = 1;
    bool summary = false;
    std::vector<std::string> modules;
};

constexpr const char* kManual =
    "Compiles ASN.1 modules (X.680 to X.683) to constant tables for liborlenta.\n"
    "All modules of one run form a region, told apart from others by its name. A type Some-Type of the "
    "region CN\n"
    "becomes the descriptor asn1_type_CN_Some_Type and the record asn1_CN_Some_Type; of types that have one "
    "name\n"
    "in several modules each gets its module's name too, asn1_CN_Its_Module_Some_Type. Without --tables-dir "
    "and\n"
    "--header the modules are only checked.\n";

constexpr const char* kExamples =
    "\nExamples:\n"
    "  orlentac --region MY --tables-dir gen --header gen/my.h Sensors.asn1 Common.asn1\n"
    "  orlentac --region MY --summary Sensors.asn1 Common.asn1\n"
    "\nWith CMake, use orlenta_add_schema(target REGION MY FILES Sensors.asn1 Common.asn1).\n"
    "\nExit status: 0 done; 1 the modules have errors, or a file cannot be written; 2 bad usage.\n";

std::string check_region(const std::string& name) {
    bool good = !name.empty() && std::isalpha(static_cast<unsigned char>(name[0]));
    for (char c : name) good = good && (std::isalnum(static_cast<unsigned char>(c)) || c == '_');
    return good ? "" : "a region's name is made of letters, digits and underscores, a letter first";
}

void declare_options(CLI::App& app, Options& options) {
    app.add_option("-r,--region", options.layout.region, "Name of the region, the prefix of all its types")
        ->required()
        ->check(CLI::Validator(check_region, "NAME"));
    app.add_option(
        "-t,--tables-dir", options.tables_dir,
        "Folder for <region>_tables_<i>.cpp and, with --header, <region>_records.cpp, which checks the "
        "header's records against the tables when compiled");
    app.add_option(
        "-H,--header", options.header,
        "C and C++ header to write: records, constants, descriptors; what is in place gets one beside it, "
        "<header>_local.h");
    app.add_option("-i,--include-name", options.include_name,
                   "How the header is included, as orlenta/cn.h; its file name if not given");
    app.add_option(
        "-l,--list", options.list,
        "C++ source to write: the types by name, orlenta_catalogue_<REGION>(), which the header declares");
    app.add_option("-p,--parts", options.parts, "Number of source files to spread the tables over")
        ->capture_default_str()
        ->check(CLI::Range(1, 1000));
    app.add_option(
           "--first-local", options.layout.first_local,
           "First number for tables and constants without a name; to be set apart if several regions shall "
           "have different numbers")
        ->capture_default_str();
    app.add_option(
           "-n,--names", options.names,
           "'short' gives a type its module's name only if other modules have a type of that name; 'module' "
           "always, so that a module added later renames nothing")
        ->check(CLI::IsMember({"short", "module"}))
        ->capture_default_str();
    app.add_option("-P,--programs", options.programs,
                   "Compile types to programs, which the library runs in place of walking the tables: "
                   "'common' makes one "
                   "for all, for programs that use many of them, 'single' one a type, for those that name a "
                   "few. With "
                   "--header, <header>_codecs.h declares them")
        ->allow_extra_args(false)
        ->check(CLI::IsMember({"common", "single"}));
    app.add_option("-L,--program-list", options.program_list,
                   "File of the types that get programs: a type a line, Type.* for its alternatives, 'roots' "
                   "for types "
                   "that no other refers to, 'rows' for those in object sets; without it, roots and rows")
        ->needs("--programs");
    // As the message sets of the library stand; of no use to others.
    app.add_flag("--shipped-forms", options.schema.shipped_forms)->group("");
    app.add_flag("-s,--summary", options.summary, "Print how many tables there are of each sort and kind");
    app.add_option("modules", options.modules, "ASN.1 files")->required();
    app.set_version_flag("--version", "orlentac " ORLENTA_VERSION);
    app.footer(kExamples);
}

// ---- files ------------------------------------------------------------------------------------------------

// Texts are made one at a time: those of a large schema are longer than all else that is known of it.
struct OutputFile {
    std::string path;
    std::function<std::string()> text;
};

std::optional<std::string> read_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file || fs::is_directory(path)) return std::nullopt;
    std::ostringstream text;
    text << file.rdbuf();
    if (text.bad() || (text.fail() && file.peek() != EOF))
        return std::nullopt;  // nothing to copy is no failure
    return std::move(text).str();
}

bool read_sources(const std::vector<std::string>& paths, std::vector<SourceText>& sources,
                  Diagnostics& diags) {
    for (const std::string& path : paths) {
        if (std::optional<std::string> text = read_file(path)) {
            sources.push_back({path, std::move(*text)});
        } else {
            add_error(
                diags, {},
                fmt::format("cannot read '{}'{}", path, fs::is_directory(path) ? ", which is a folder" : ""));
        }
    }
    return diags.errors.empty();
}

bool has_text(const std::string& path, const std::string& text) {
    std::error_code failure;
    return fs::file_size(path, failure) == text.size() && !failure && read_file(path) == text;
}

bool write_whole(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text << std::flush;
    return out.good();
}

// Writes all files whole, making folders as needed. A file that has the text already is left alone, so that nothing
// that depends on it is built anew. False if one cannot be written; `problem` then says which and why, and no file of
// the list has changed unless the very renaming failed.
bool write_files(const std::vector<OutputFile>& files, std::string& problem) {
    struct Pending {
        std::string temporary, path;
    };
    std::vector<Pending> pending;
    std::error_code failure;
    auto give_up = [&](const std::string& path, const std::string& why) {
        for (const Pending& file : pending) fs::remove(file.temporary, failure);
        problem = path + ": " + why;
        return false;
    };

    for (const OutputFile& file : files) {
        const std::string text = file.text();
        if (has_text(file.path, text)) continue;
        if (fs::path folder = fs::path(file.path).parent_path(); !folder.empty()) {
            fs::create_directories(folder, failure);
            if (failure) return give_up(folder.string(), failure.message());
        }
        pending.push_back({file.path + "." + std::to_string(getpid()) + ".tmp", file.path});
        if (!write_whole(pending.back().temporary, text)) return give_up(file.path, "cannot be written");
    }
    for (const Pending& file : pending) {
        fs::rename(file.temporary, file.path, failure);
        if (failure) return give_up(file.path, failure.message());
    }
    return true;
}

// ---- the whole --------------------------------------------------------------------------------------------

std::string lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

bool has_programs(const Options& options, const char* sort) {
    for (const std::string& chosen : options.programs)
        if (chosen == sort) return true;
    return false;
}

void add_program_files(std::vector<OutputFile>& files, const CodedRegion& region, const Options& options,
                       const std::string& stem) {
    if (has_programs(options, "common"))
        files.push_back({stem + "_program.cpp", [&region] { return emit_common_program(region); }});
    if (has_programs(options, "single")) {
        std::vector<std::string> programs = emit_single_programs(region, options.parts);
        for (size_t i = 0; i < programs.size(); i++)
            files.push_back({fmt::format("{}_programs_{}.cpp", stem, i + 1),
                             [text = std::move(programs[i])] { return text; }});
    }
    bool shipped = options.schema.shipped_forms;
    files.push_back({stem + "_index.cpp", [&region, shipped] { return emit_index(region, !shipped); }});
}

// `region` is null if no types get programs.
std::vector<OutputFile> output_files(const Layout& layout, const CodedRegion* region,
                                     const Options& options) {
    std::vector<OutputFile> files;
    std::string include_name = options.include_name;
    if (include_name.empty()) include_name = fs::path(options.header).filename().string();
    if (!options.header.empty()) {
        files.push_back({options.header, [=, &layout] { return emit_header(layout, include_name); }});
        files.push_back({local_header_name(options.header),
                         [=, &layout] { return emit_local_header(layout, include_name); }});
        files.push_back({build_header_name(options.header),
                         [=, &layout] { return emit_build_header(layout, include_name); }});
        files.push_back({typed_header_name(options.header),
                         [=, &layout] { return emit_typed_header(layout, include_name); }});
        if (region)
            files.push_back({codecs_header_name(options.header),
                             [=] { return emit_codecs_header(*region, include_name); }});
    }
    if (!options.list.empty()) files.push_back({options.list, [&layout] { return emit_catalogue(layout); }});
    if (options.tables_dir.empty()) return files;

    std::string stem = options.tables_dir + "/" + lower(layout.region);
    bool needs_own = region && has_programs(options, "common");
    const std::unordered_set<const Table*> own =
        needs_own ? own_tables(*region) : std::unordered_set<const Table*>();
    for (size_t i = 0; i < options.parts; i++)
        files.push_back({fmt::format("{}_tables_{}.cpp", stem, i + 1),
                         [=, &layout, &options] { return emit_tables(layout, options.parts, i, own); }});
    if (!options.header.empty())
        files.push_back({stem + "_records.cpp", [=, &layout] {
                             return emit_record_checks(layout, include_name) +
                                    emit_typed_checks(layout, include_name);
                         }});
    if (region) add_program_files(files, *region, options, stem);
    return files;
}

// The list of the types that get programs, if there is one; `lists` is where it stays.
bool read_list(const Options& options, std::vector<SourceText>& lists, Diagnostics& diags) {
    return options.program_list.empty() || read_sources({options.program_list}, lists, diags);
}

int report_errors(const Diagnostics& diags) {
    std::cerr << errors_text(diags);
    return kSchemaError;
}

int run(const Options& options) {
    Schema schema;
    Diagnostics diags;
    Layout layout;
    std::vector<SourceText> sources;
    if (!read_sources(options.modules, sources, diags) ||
        !load_schema(sources, options.schema, schema, diags) ||
        !make_layout(schema, options.layout, layout, diags))
        return report_errors(diags);
    std::optional<CodedRegion> region;
    std::vector<SourceText> lists;
    if (!options.programs.empty() && read_list(options, lists, diags))
        region.emplace(
            make_coded_region(layout, find_coded_types(layout, lists.empty() ? nullptr : &lists[0], diags)));
    if (!diags.errors.empty()) return report_errors(diags);
    std::cerr << notes_text(diags);
    std::string problem;
    if (!write_files(output_files(layout, region ? &*region : nullptr, options), problem)) {
        std::cerr << "orlentac: " << problem << "\n";
        return kSchemaError;
    }
    if (options.summary) std::cout << summary_text(summarise(layout));
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(kManual, "orlentac");
    Options options;
    declare_options(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kBadUsage;
    }
    options.layout.module_names = options.names == "module";
    return run(options);
}

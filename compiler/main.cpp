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
    "All modules of one run form a region, whose name is the prefix of all C names: the type Some-Type of "
    "the\n"
    "region CN becomes the descriptor asn1_type_CN_Some_Type and the record asn1_CN_Some_Type. Types that "
    "have\n"
    "the same name in several modules also get their module's name: asn1_CN_Its_Module_Some_Type. Without\n"
    "--tables-dir and --header the modules are only checked.\n";

constexpr const char* kExamples =
    "\nExamples:\n"
    "  orlentac --region MY --tables-dir gen --header gen/my.h Sensors.asn1 Common.asn1\n"
    "  orlentac --region MY --summary Sensors.asn1 Common.asn1\n"
    "\nWith CMake, use orlenta_add_schema(target REGION MY FILES Sensors.asn1 Common.asn1).\n"
    "\nExit status: 0 success; 1 the modules have errors, or a file cannot be written; 2 bad usage.\n";

std::string check_region(const std::string& name) {
    bool good = !name.empty() && std::isalpha(static_cast<unsigned char>(name[0]));
    for (char c : name) good = good && (std::isalnum(static_cast<unsigned char>(c)) || c == '_');
    return good ? "" : "a region's name is made of letters, digits and underscores, a letter first";
}

void declare_options(CLI::App& app, Options& options) {
    app.add_option("-r,--region", options.layout.region, "Name of the region, the prefix of all C names")
        ->required()
        ->type_name("NAME")
        ->check(CLI::Validator(check_region, ""));
    app.add_option("-t,--tables-dir", options.tables_dir,
                   "Folder for <region>_tables_<i>.cpp and, with --header, for <region>_records.cpp, which "
                   "checks the records of the header against the tables when it is compiled")
        ->type_name("FOLDER");
    app.add_option("-H,--header", options.header,
                   "C and C++ header to write: records, constants, descriptors. Descriptors of types without "
                   "a name go to a second header, <header>_local.h")
        ->type_name("FILE");
    app.add_option("-i,--include-name", options.include_name,
                   "How sources include the header, such as orlenta/cn.h (default: its file name)")
        ->type_name("NAME");
    app.add_option("-l,--list", options.list,
                   "C++ source to write with the types by name: orlenta_catalogue_<REGION>(), which the "
                   "header declares")
        ->type_name("FILE");
    app.add_option("-p,--parts", options.parts, "Number of source files that the tables are spread over (1)")
        ->type_name("N")
        ->check(CLI::Range(1, 1000).description(""));
    app.add_option("--first-local", options.layout.first_local,
                   "First number of tables and constants without a name (1), to keep the numbers of several "
                   "regions apart")
        ->type_name("N");
    app.add_option("-n,--names", options.names,
                   "short (default): a type gets its module's name only if another module has a type of the "
                   "same name. module: every type gets it, so that adding a module never renames a type")
        ->type_name("short|module")
        ->check(CLI::IsMember({"short", "module"}).description(""));
    app.add_option("-P,--programs", options.programs,
                   "Compile types to programs, which run faster than the walk over the tables. common: one "
                   "program for all types, for applications that use many of them. single: one per type, for "
                   "applications that use a few. With --header, <header>_codecs.h declares them")
        ->type_name("common|single")
        ->allow_extra_args(false)
        ->check(CLI::IsMember({"common", "single"}).description(""));
    app.add_option("-L,--program-list", options.program_list,
                   "File that lists the types to compile to programs, one per line: a name, Type.* for all "
                   "its alternatives, roots for types that no other refers to, rows for those in object sets "
                   "(default: roots and rows)")
        ->type_name("FILE")
        ->needs("--programs");
    // As the message sets of the library stand; of no use to others.
    app.add_flag("--shipped-forms", options.schema.shipped_forms)->group("");
    app.add_flag("-s,--summary", options.summary, "Print the number of tables of each sort and kind");
    app.add_option("modules", options.modules, "ASN.1 modules")->required()->type_name("FILE");
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

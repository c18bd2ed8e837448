// SPDX-License-Identifier: Apache-2.0
// convert, check, random: the commands that run messages through the library.
#include <fmt/format.h>
#include <orlenta/catalogue.h>
#include <orlenta/random.h>

#include <algorithm>
#include <cctype>
#include <thread>

#include "cli/commands.hpp"
#include "cli/diary.hpp"
#include "cli/output.hpp"
#include "cli/pipeline.hpp"
#include "cli/type_names.hpp"

namespace cli {

void report(const std::string& text) { fmt::print(stderr, "orlenta: {}\n", text); }

// ---- what is to be done -----------------------------------------------------------------------------------

static bool choose_type(const std::string& name, CodedType* type) {
    std::string problem;
    const orlenta_type_entry* found = find_type(name, &problem);
    if (!found) {
        report(problem);
        return false;
    }
    *type = coded(found->type, full_name(*found));
    return true;
}

// "auto", or "EU.auto".
static bool choose_types(const std::string& name, Plan* plan) {
    std::string folded = name;
    std::transform(folded.begin(), folded.end(), folded.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (folded != "auto" && !folded.ends_with(".auto")) return choose_type(name, &plan->type);
    std::string region = folded == "auto" ? "" : name.substr(0, name.size() - 5);
    std::transform(region.begin(), region.end(), region.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    plan->detector.emplace(region);
    if (plan->detector->has_candidates()) return true;
    report(fmt::format("no types of {} can be found by themselves", region));
    return false;
}

static bool is_binary(const Rules* rules) { return rules && !rules->is_text(); }

static bool make_plan(const ConvertOptions& options, Plan* plan) {
    plan->from = options.from;
    plan->to = options.to;
    if (is_binary(plan->from)) plan->input_form = options.layout.form;
    if (is_binary(plan->to)) {
        plan->output_form = options.layout.form;
        if (plan->output_form == TextForm::none) plan->length_octets = options.layout.length_octets;
    }
    plan->style = options.style;
    plan->check = options.check;
    plan->allow_trailing = options.allow_trailing;
    plan->keep_going = options.keep_going;
    plan->envelope = options.envelope;
    plan->physical = options.physical;
    return choose_types(options.type, plan);
}

// Records hold bytes as they are; where the input is text, lines take their place.
static InputLayout input_layout(const ConvertOptions& options, const Plan& plan) {
    bool has_records = options.layout.length_octets > 0;
    InputLayout layout;
    layout.skips_comments = plan.input_form != TextForm::none;
    if (has_records && is_binary(plan.from) && plan.input_form == TextForm::none) {
        layout.framing = Framing::records;
        layout.length_octets = options.layout.length_octets;
    } else if (options.layout.lines || has_records) {
        layout.framing = Framing::lines;
    }
    return layout;
}

// ---- what becomes of it -----------------------------------------------------------------------------------

namespace {

// The output, the diary, and what ends a run.
struct Run {
    Output output;
    Diary diary;
    bool is_broken = false;  // the output itself failed: nothing more makes sense
    bool is_stopped = false;

    explicit Run(const std::string& path) : output(path) {}
};

}  // namespace

static bool fail(Run* run, const std::string& problem) {
    report(problem);
    run->is_broken = true;
    return false;
}

static bool take_result(Run* run, const Plan& plan, const Batch& batch, const Result& result) {
    std::string problem;
    bool written =
        run->output.write(result.output, &problem) && (!batch.is_live || run->output.flush(&problem));
    bool is_raw = is_binary(plan.from) && plan.input_form == TextForm::none;
    run->diary.enter(batch, result, is_raw ? TextForm::hex : TextForm::none);
    if (!written) return fail(run, problem);
    run->is_stopped = result.is_stopped;
    return !result.is_stopped;
}

// A file gets what was good; a run that stopped early says so, and leaves the old file if nothing was.
static void finish_output(Run* run, const std::string& path) {
    bool is_file = !path.empty();
    if (run->is_stopped && is_file) {
        uint64_t good = run->diary.good();
        report(good > 0 ? fmt::format("stopped at {}: {} has the {} message{} before it",
                                      run->diary.last_place(), path, good, good == 1 ? "" : "s")
                        : fmt::format("stopped at {}: {} is not written", run->diary.last_place(), path));
        if (good == 0) return;
    }
    std::string problem;
    if (!run->output.commit(&problem)) fail(run, problem);
}

int run_convert(const ConvertOptions& options) {
    Plan plan;
    if (!make_plan(options, &plan)) return kBadUsage;
    Run run(options.output);
    std::string problem;
    if (!run.output.open(&problem) || !run.diary.open_errors(options.errors, &problem)) {
        report(problem);
        return kBadInput;
    }
    InputLayout layout = input_layout(options, plan);
    Source source(options.files, layout);
    unsigned jobs = options.jobs > 0 ? options.jobs : std::max(1u, std::thread::hardware_concurrency());
    run_pipeline(&source, plan, jobs, [&](const Batch& batch, const Result& result) {
        return take_result(&run, plan, batch, result);
    });
    if (!run.is_broken) finish_output(&run, options.output);
    if (!run.diary.finish(&problem)) fail(&run, problem);
    if (options.keep_going && layout.framing != Framing::whole) run.diary.tell_summary();
    return run.diary.bad() > 0 || run.is_broken ? kBadInput : kDone;
}

// ---- random -----------------------------------------------------------------------------------------------

static void* make_random(const RandomOptions& options, const asn1_type_desc* type, uint32_t seed) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    if (facts.kind == ASN1_KIND_OBJECT_CLASS) return nullptr;  // which has no values
    return options.valid ? orlenta_random_valid(type, seed) : asn1_random(type, seed);
}

static bool write_random(const RandomOptions& options, const CodedType& type, uint32_t seed,
                         std::string* output, Problem* problem) {
    Value value(type.type, make_random(options, type.type, seed));
    problem->text = "no value can be made";
    if (!value) return false;
    problem->text.clear();
    std::string encoded;
    if (!encode(*options.to, type, value.get(), options.style, &encoded, problem)) return false;
    bool is_line = is_binary(options.to) && options.layout.form != TextForm::none;
    append_bytes_as(is_line ? options.layout.form : TextForm::none, encoded, output);
    if (is_line) output->push_back('\n');
    return true;
}

int run_random(const RandomOptions& options) {
    CodedType type;
    if (!choose_type(options.type, &type)) return kBadUsage;
    Output output(options.output);
    std::string text;
    if (!output.open(&text)) {
        report(text);
        return kBadInput;
    }
    bool failed = false;
    for (uint32_t i = 0; i < options.count && (!failed || options.keep_going); ++i) {
        Problem problem;
        std::string encoded;
        uint32_t seed = options.seed + i;
        if (!write_random(options, type, seed, &encoded, &problem)) {
            report(fmt::format("seed {}: {}", seed, sentence(problem)));
            failed = true;
        } else if (!output.write(encoded, &text)) {
            report(text);
            return kBadInput;
        }
    }
    if ((!failed || options.keep_going) && !output.commit(&text)) {
        report(text);
        failed = true;
    }
    return failed ? kBadInput : kDone;
}

}  // namespace cli

// convert, check, random: the commands that run messages through the library.
#include <fmt/format.h>
#include <orlenta/random.h>

#include "cli/codec.hpp"
#include "cli/commands.hpp"
#include "cli/output.hpp"
#include "cli/registry.hpp"

namespace cli {

void report(const std::string& text) { fmt::print(stderr, "orlenta: {}\n", text); }

namespace {

// Writes encoded messages and keeps the books on what failed.
struct Sink {
    Output output;
    bool hex;
    bool keep_going;
    bool failed = false;  // some message could not be converted
    bool broken = false;  // the output itself failed: nothing more makes sense

    // True if the next message is wanted.
    bool refuse(const std::string& place, const std::string& problem) {
        report(fmt::format("{}: {}", place, problem));
        failed = true;
        return keep_going;
    }
    bool put(const Rules& rules, const std::string& encoded) {
        std::string problem;
        if (output.write(!rules.is_text() && hex ? to_hex(encoded) + "\n" : encoded, &problem)) return true;
        report(problem);
        broken = true;
        return false;
    }
    int finish() {
        std::string problem;
        if (!broken && (!failed || keep_going) && !output.commit(&problem)) {
            report(problem);
            broken = true;
        }
        return failed || broken ? kBadInput : kDone;
    }
};

}  // namespace

static bool open_sink(Sink* sink) {
    std::string problem;
    if (sink->output.open(&problem)) return true;
    report(problem);
    return false;
}

static const asn1_type_desc* type_named(const std::string& name) {
    std::string problem;
    Type type = find_type(name, &problem);
    if (!type.entry) report(problem);
    return type.entry ? type.entry->type : nullptr;
}

// The line to blame: the message's own, or the one that a text decoder told, if the message is a whole file.
static int blamed_line(const Message& message, int line) { return message.line ? message.line : line; }

static Value read_value(const Message& message, const Rules& rules, const asn1_type_desc* type,
                        bool allow_trailing, int* line, std::string* problem) {
    *line = 0;
    if (message.problem.empty()) return decode(rules, type, message.bytes, allow_trailing, line, problem);
    *problem = message.problem;
    return Value(nullptr, {type});
}

int run_convert(const ConvertOptions& options) {
    const asn1_type_desc* type = type_named(options.type);
    if (!type) return kBadUsage;
    Sink sink{Output(options.output), options.framing.hex, options.keep_going};
    if (!open_sink(&sink)) return kBadInput;
    Framing input_framing = options.framing;
    input_framing.hex = options.framing.hex && !options.from->is_text();

    read_messages(options.files, input_framing, [&](const Message& message) {
        int line;
        std::string problem, encoded;
        Value value = read_value(message, *options.from, type, options.allow_trailing, &line, &problem);
        bool good = value && (!options.check || check(type, value.get(), &problem)) &&
                    encode(*options.to, type, value.get(), options.style, &encoded, &problem);
        return good ? sink.put(*options.to, encoded)
                    : sink.refuse(place_of(message, blamed_line(message, line)), problem);
    });
    return sink.finish();
}

int run_check(const CheckOptions& options) {
    const asn1_type_desc* type = type_named(options.type);
    if (!type) return kBadUsage;
    Framing framing = options.framing;
    framing.hex = options.framing.hex && !options.from->is_text();
    int status = kDone;
    read_messages(options.files, framing, [&](const Message& message) {
        int line;
        std::string problem;
        Value value = read_value(message, *options.from, type, options.allow_trailing, &line, &problem);
        if (!value || !check(type, value.get(), &problem)) {
            report(fmt::format("{}: {}", place_of(message, blamed_line(message, line)), problem));
            status = kBadInput;
        }
        return true;
    });
    return status;
}

int run_random(const RandomOptions& options) {
    const asn1_type_desc* type = type_named(options.type);
    if (!type) return kBadUsage;
    Sink sink{Output(options.output), options.framing.hex, options.keep_going};
    if (!open_sink(&sink)) return kBadInput;
    for (uint32_t i = 0; i < options.count; ++i) {
        uint32_t seed = options.seed + i;
        std::string problem, encoded;
        Value value(asn1_random(type, seed), {type});
        if (!value) problem = "no value can be made";
        bool wanted = value && encode(*options.to, type, value.get(), options.style, &encoded, &problem)
                          ? sink.put(*options.to, encoded)
                          : sink.refuse(fmt::format("seed {}", seed), problem);
        if (!wanted) break;
    }
    return sink.finish();
}

}  // namespace cli

// SPDX-License-Identifier: Apache-2.0
// explain: a message taken apart, a line a run of bits.
#include <fmt/format.h>
#include <orlenta/explain.h>
#include <orlenta/type_info.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>

#include "cli/commands.hpp"
#include "cli/diary.hpp"
#include "cli/type_names.hpp"
#include "cli/units.hpp"

namespace cli {

namespace {

struct Line {
    orlenta_bits bits;
    std::string text, path, value, type;
    std::optional<Reading> reading = {};  // of a number with a unit
};

}  // namespace

static orlenta_rules rules_of(const Rules* rules) {
    if (rules == find_rules("uper")) return ORLENTA_RULES_UPER;
    if (rules == find_rules("aper")) return ORLENTA_RULES_APER;
    return rules == find_rules("oer") ? ORLENTA_RULES_OER : ORLENTA_RULES_BER;
}

static const char* kind_name(orlenta_bits_kind kind) {
    switch (kind) {
        case ORLENTA_BITS_VALUE: return "value";
        case ORLENTA_BITS_EXTENSION: return "extension";
        case ORLENTA_BITS_PRESENCE: return "presence";
        case ORLENTA_BITS_INDEX: return "index";
        case ORLENTA_BITS_TAG: return "tag";
        case ORLENTA_BITS_LENGTH: return "length";
        case ORLENTA_BITS_FRAGMENT: return "fragment";
        case ORLENTA_BITS_PADDING: return "padding";
        case ORLENTA_BITS_END: return "end";
        case ORLENTA_BITS_UNKNOWN: return "unknown";
        case ORLENTA_BITS_TRAILING: return "trailing";
        case ORLENTA_BITS_REFUSED: return "refused";
    }
    return "";
}

static void take_bits(void* user, const orlenta_bits* bits) {
    orlenta_type_facts facts;
    orlenta_type_describe(bits->type, &facts);
    const char* type = asn1_get_type_name(facts.type);
    Line line = {*bits, bits->text, bits->path,
                 bits->value ? std::string(bits->value, bits->value_length) : std::string(),
                 type ? type : ""};
    const orlenta_unit* unit = bits->value ? unit_of(bits->type) : nullptr;
    if (unit) line.reading = read_number(*unit, line.value);
    static_cast<std::vector<Line>*>(user)->push_back(std::move(line));
}

// ---- the bits ---------------------------------------------------------------------------------------------

// As digits of 1 or 4 bits; the last of 4 is filled with zeros.
static std::string digits(const std::string& message, const orlenta_bits& bits, unsigned digit_width) {
    std::string text;
    for (uint64_t at = 0; at < bits.width; at += digit_width) {
        unsigned digit = 0;
        for (uint64_t i = bits.offset + at; i < bits.offset + at + digit_width; ++i) {
            bool is_set = i < bits.offset + bits.width && (message[i / 8] >> (7 - i % 8) & 1) != 0;
            digit = digit << 1 | is_set;
        }
        text += "0123456789abcdef"[digit];
    }
    return text;
}

static constexpr uint64_t kLongestBinary = 32;
static constexpr size_t kLongestValue = 40;

static std::string cut(std::string text, size_t most) {
    if (text.size() <= most) return text;
    size_t end = most - 3;
    while (end > 0 && (text[end] & 0xC0) == 0x80) --end;  // not within a character of UTF-8
    return text.substr(0, end) + "...";
}

static std::string bits_text(const std::string& message, const orlenta_bits& bits) {
    if (bits.width <= kLongestBinary) return digits(message, bits, 1);
    return cut("0x" + digits(message, bits, 4), kLongestBinary);
}

// ---- lines for people -------------------------------------------------------------------------------------

static const char* colour_of(orlenta_bits_kind kind) {
    switch (kind) {
        case ORLENTA_BITS_VALUE: return "";
        case ORLENTA_BITS_PADDING: return "\033[2m";
        case ORLENTA_BITS_UNKNOWN:
        case ORLENTA_BITS_TRAILING: return "\033[33m";
        case ORLENTA_BITS_REFUSED: return "\033[31m";
        default: return "\033[36m";
    }
}

static size_t code_points(const std::string& text) {
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

static std::string value_text(const Line& line) {
    return cut(line.reading ? line.value + " = " + sentence(*line.reading) : line.value, kLongestValue);
}

// A value is told by its type.
static const std::string& about_text(const Line& line) { return line.bits.value ? line.type : line.text; }

// Columns of the terminal that the lines go to; 0 if they do not go to one.
static size_t terminal_width() {
    winsize size = {};
    return isatty(STDOUT_FILENO) && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

// The end of a path, if it is too long.
static std::string path_text(const std::string& path, size_t most) {
    return path.size() <= most ? path : "..." + path.substr(path.size() - (most - 3));
}

static void print_lines(const std::vector<Line>& lines, const std::string& message) {
    constexpr size_t kShortestPath = 24;
    const char* plain = std::getenv("NO_COLOR");
    bool has_colours = isatty(STDOUT_FILENO) != 0 && (!plain || !*plain);
    size_t bits_width = 0, path_width = 0, value_width = 0, about_width = 0;
    for (const Line& line : lines) {
        bits_width = std::max(bits_width, bits_text(message, line.bits).size());
        path_width = std::max(path_width, line.path.size());
        about_width = std::max(about_width, about_text(line).size());
        value_width = std::max(value_width, code_points(value_text(line)));
    }
    if (size_t columns = terminal_width()) {
        size_t others = 6 + 1 + 5 + 2 + bits_width + 2 + 2 + value_width + 2 + about_width;
        size_t room = columns > others ? columns - others : 0;
        path_width = std::min(path_width, std::max(room, kShortestPath));
    }
    for (const Line& line : lines) {
        std::string value = value_text(line);
        const char* colour = has_colours ? colour_of(line.bits.kind) : "";
        fmt::print("{}{:>6} {:>5}  {:<{}}  {:<{}}  {}{:{}}  {}{}\n", colour, line.bits.offset,
                   line.bits.width, bits_text(message, line.bits), bits_width,
                   path_text(line.path, path_width), path_width, value, "", value_width - code_points(value),
                   about_text(line), *colour ? "\033[0m" : "");
    }
}

// ---- and for programs -------------------------------------------------------------------------------------

static void print_json(const std::vector<Line>& lines, const std::string& message) {
    using Json = nlohmann::ordered_json;
    auto dump = [](const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); };
    for (const Line& line : lines) {
        Json object;
        object["offset"] = line.bits.offset;
        object["width"] = line.bits.width;
        bool is_long = line.bits.width > kLongestBinary;
        object[is_long ? "hex" : "bits"] = digits(message, line.bits, is_long ? 4 : 1);
        object["kind"] = kind_name(line.bits.kind);
        object["text"] = line.text;
        object["path"] = line.path;
        object["type"] = line.type;
        std::string text = dump(object);
        if (line.bits.value) {
            // As it is, so that no digit of a number is lost.
            bool is_json = Json::accept(line.value);
            text.insert(text.size() - 1, ",\"value\":" + (is_json ? line.value : dump(Json(line.value))));
        }
        if (line.reading) text.insert(text.size() - 1, "," + json_members(*line.reading));
        fmt::print("{}\n", text);
    }
}

// ---- the command ------------------------------------------------------------------------------------------

static Problem trailing_problem(const Line& last) {
    Problem problem;
    if (last.bits.kind != ORLENTA_BITS_TRAILING) return problem;
    uint64_t octets = last.bits.width / 8;
    problem.text = fmt::format("{} byte{} behind the message", octets, octets == 1 ? "" : "s");
    problem.bit = static_cast<int64_t>(last.bits.offset);
    return problem;
}

static Problem explain(const ExplainOptions& options, const asn1_type_desc* type,
                       const std::string& message) {
    std::vector<Line> lines;
    asn1_error error;
    asn1_error_init(&error);
    int64_t used =
        orlenta_explain(type, rules_of(options.from), reinterpret_cast<const uint8_t*>(message.data()),
                        message.size(), take_bits, &lines, &error);
    (options.json ? print_json : print_lines)(lines, message);
    if (used >= 0) return lines.empty() ? Problem() : trailing_problem(lines.back());
    Problem problem;
    problem.text = error.message[0] ? error.message : "the message cannot be decoded";
    problem.path = error.path;
    problem.bit = error.bit_position;
    return problem;
}

// The message of the input, which is all of it.
static bool read_message(const ExplainOptions& options, std::string* file, std::string* message,
                         Problem* problem) {
    InputLayout layout;
    layout.skips_comments = options.form != TextForm::none;
    Source source({options.file.empty() ? "-" : options.file}, layout);
    Batch batch;
    source.next(&batch);
    *file = batch.file;
    problem->text = batch.problem;
    if (*problem) return false;
    if (options.form == TextForm::none) {
        *message = std::move(batch.text);
        return true;
    }
    TextProblem text;
    if (parse_bytes(batch.text, options.form, message, &text)) return true;
    problem->text = text.text;
    problem->column = text.column;
    return false;
}

int run_explain(const ExplainOptions& options) {
    std::string unknown, file, message;
    const orlenta_type_entry* entry = find_type(options.type, &unknown);
    if (!entry) {
        report(unknown);
        return kBadUsage;
    }
    Problem problem;
    if (read_message(options, &file, &message, &problem)) problem = explain(options, entry->type, message);
    if (!problem) return kDone;
    fflush(stdout);
    report(fmt::format("{}: {}", place_of({file, Framing::whole, 0}, problem), sentence(problem)));
    return kBadInput;
}

}  // namespace cli

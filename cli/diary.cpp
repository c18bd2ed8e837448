// SPDX-License-Identifier: Apache-2.0
#include "cli/diary.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <vector>

#include "cli/commands.hpp"

namespace cli {

using Clock = std::chrono::steady_clock;

std::string place_of(const Place& place, const Problem& problem) {
    std::string text = place.file;
    if (place.framing == Framing::records && place.number > 0)
        text += fmt::format(", record {}", place.number);
    else if (uint64_t line = place.number ? place.number : static_cast<uint64_t>(problem.line))
        text += fmt::format(":{}", line);
    if (problem.column > 0) text += fmt::format("{}:{}", place.number ? "" : ":1", problem.column);
    return text;
}

Diary::Diary() : start_(Clock::now()), shown_(start_), is_watched_(isatty(STDERR_FILENO) != 0) {}

Diary::~Diary() {
    if (errors_) fclose(errors_);
    clear_progress();
}

// ---- errors -----------------------------------------------------------------------------------------------

bool Diary::open_errors(const std::string& path, std::string* problem) {
    errors_path_ = path;
    if (!path.empty()) errors_ = fopen(path.c_str(), "wb");
    if (errors_ || path.empty()) return true;
    *problem = fmt::format("{} cannot be written: {}", path, std::strerror(errno));
    return false;
}

// A text goes in as it is, bytes by their digits.
void Diary::write_error(const Finding& finding, TextForm input_form) {
    nlohmann::ordered_json error;
    const Place& place = finding.place;
    error["file"] = place.file;
    if (place.number > 0) error[place.framing == Framing::records ? "record" : "line"] = place.number;
    if (place.number == 0 && finding.problem.line > 0) error["line"] = finding.problem.line;
    if (finding.problem.column > 0) error["column"] = finding.problem.column;
    if (finding.problem.bit >= 0) error["bit"] = finding.problem.bit;
    if (!finding.problem.path.empty()) error["path"] = finding.problem.path;
    error["message"] = finding.problem.text;
    std::string digits;
    append_bytes_as(input_form, finding.input, &digits);
    error["input"] = digits;
    std::string text = error.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    fwrite(text.data(), 1, text.size(), errors_);
}

void Diary::enter(const Batch& batch, const Result& result, TextForm input_form) {
    good_ += result.good;
    bad_ += result.bad;
    if (!result.findings.empty()) clear_progress();
    for (const Finding& finding : result.findings) {
        std::string place = place_of(finding.place, finding.problem);
        report(
            fmt::format("{}: {}{}", place, finding.is_warning ? "warning: " : "", sentence(finding.problem)));
        if (finding.is_warning) continue;
        last_place_ = place;
        ++texts_[finding.problem.text];
        if (errors_) write_error(finding, input_form);
    }
    if (is_watched_ && batch.size > 0) show_progress(batch);
}

bool Diary::finish(std::string* problem) {
    if (!errors_) return true;
    bool written = !ferror(errors_);
    written = fclose(errors_) == 0 && written;
    errors_ = nullptr;
    if (!written) *problem = fmt::format("{} cannot be written: {}", errors_path_, std::strerror(errno));
    return written;
}

// ---- summary ----------------------------------------------------------------------------------------------

static std::string count_text(uint64_t count, const char* what) {
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

void Diary::tell_summary() const {
    double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    uint64_t count = good_ + bad_;
    std::string text = fmt::format("{}, {} bad", count_text(count, "message"), bad_);
    std::vector<std::pair<std::string, uint64_t>> texts(texts_.begin(), texts_.end());
    std::stable_sort(texts.begin(), texts.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    constexpr size_t kMostTexts = 5;
    for (size_t i = 0; i < std::min(kMostTexts, texts.size()); ++i)
        text += fmt::format("{} {} \"{}\"", i == 0 ? ":" : ",", texts[i].second, texts[i].first);
    if (texts.size() > kMostTexts) text += fmt::format(", and {} other errors", texts.size() - kMostTexts);
    report(fmt::format("{}; {:.2f} s, {:.0f} messages a second", text, seconds,
                       static_cast<double>(count) / std::max(seconds, 1e-6)));
}

// ---- progress ---------------------------------------------------------------------------------------------

void Diary::show_progress(const Batch& batch) {
    auto now = Clock::now();
    if (now - shown_ < std::chrono::milliseconds(100)) return;
    shown_ = now;
    constexpr uint64_t kWidth = 40;
    uint64_t done = std::min(kWidth, batch.octets * kWidth / batch.size);
    fmt::print(stderr, "\r[{:=<{}}{:{}}] {:3} %  {}  {}", "", done, "", kWidth - done,
               batch.octets * 100 / batch.size, count_text(good_ + bad_, "message"), batch.file);
    fflush(stderr);
    has_bar_ = true;
}

void Diary::clear_progress() {
    if (!has_bar_) return;
    fmt::print(stderr, "\r\033[K");
    fflush(stderr);
    has_bar_ = false;
}

}  // namespace cli

// SPDX-License-Identifier: Apache-2.0
#include "cli/input.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace cli {

static constexpr size_t kBlock = 256 * 1024;

// No message is as long; a file of other framing is soon told by its first length.
static constexpr uint64_t kLongestRecord = 16 * 1024 * 1024;

Source::Source(std::vector<std::string> files, const InputLayout& layout)
    : files_(std::move(files)), layout_(layout) {
    if (files_.empty()) files_.push_back("-");
}

Source::~Source() { close_file(); }

void Source::close_file() {
    if (descriptor_ > STDIN_FILENO) close(descriptor_);
    descriptor_ = -1;
}

bool Source::open_next() {
    close_file();
    if (next_file_ == files_.size()) return false;
    const std::string& path = files_[next_file_++];
    bool is_standard = path == "-";
    name_ = is_standard ? "<stdin>" : path;
    descriptor_ = is_standard ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    pending_.clear();
    octets_ = size_ = number_ = 0;
    error_ = descriptor_ < 0 ? errno : 0;
    at_end_ = error_ != 0;
    struct stat about;
    bool is_regular = error_ == 0 && fstat(descriptor_, &about) == 0 && S_ISREG(about.st_mode);
    is_live_ = !is_regular;
    if (is_regular) size_ = static_cast<uint64_t>(about.st_size);
    return true;
}

// Waits for more of the file; false at its end.
bool Source::read_more() {
    if (at_end_) return false;
    size_t before = pending_.size();
    pending_.resize(before + kBlock);
    ssize_t count;
    do count = read(descriptor_, pending_.data() + before, kBlock);
    while (count < 0 && errno == EINTR);
    if (count < 0) error_ = errno;
    pending_.resize(before + static_cast<size_t>(count > 0 ? count : 0));
    octets_ += pending_.size() - before;
    at_end_ = count <= 0;
    return !at_end_;
}

void Source::fail(Batch* batch, std::string problem) {
    batch->problem = std::move(problem);
    batch->problem_number = layout_.framing == Framing::records ? number_ + 1 : 0;
    at_end_ = true;
}

static bool is_blank(std::string_view text) { return text.find_first_not_of(" \t\v\f\r") == text.npos; }

static bool is_comment(std::string_view text) {
    size_t first = text.find_first_not_of(" \t");
    return first != text.npos && text[first] == '#';
}

// Blanks comments out, so that what is left keeps its columns.
static void blank_comments(std::string* text) {
    for (size_t begin = 0; begin < text->size();) {
        size_t end = std::min(text->find('\n', begin), text->size());
        if (is_comment(std::string_view(*text).substr(begin, end - begin)))
            std::memset(text->data() + begin, ' ', end - begin);
        begin = end + 1;
    }
}

void Source::take_all(Batch* batch) {
    while (read_more()) {
    }
    if (error_ != 0) return;
    batch->text = std::move(pending_);
    pending_.clear();
    if (layout_.skips_comments) blank_comments(&batch->text);
    batch->items.push_back({0, batch->text.size(), 0});
}

void Source::take_lines(Batch* batch) {
    size_t end = pending_.rfind('\n');
    while (end == pending_.npos || (!is_live_ && pending_.size() < kBlock)) {
        size_t searched = pending_.size();
        if (!read_more()) break;
        size_t found = std::string_view(pending_).substr(searched).rfind('\n');
        if (found != pending_.npos) end = searched + found;
    }
    if (at_end_) {
        batch->text.swap(pending_);
        pending_.clear();
    } else {
        batch->text.assign(pending_, 0, end + 1);
        pending_.erase(0, end + 1);
    }
    for (size_t begin = 0; begin < batch->text.size();) {
        size_t stop = std::min(batch->text.find('\n', begin), batch->text.size());
        ++number_;
        std::string_view line = std::string_view(batch->text).substr(begin, stop - begin);
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (!is_blank(line) && !(layout_.skips_comments && is_comment(line)))
            batch->items.push_back({begin, line.size(), number_});
        begin = stop + 1;
    }
}

static uint64_t read_length(std::string_view octets) {
    uint64_t length = 0;
    for (char c : octets) length = length << 8 | static_cast<uint8_t>(c);
    return length;
}

void Source::take_records(Batch* batch) {
    size_t head = static_cast<size_t>(layout_.length_octets), at = 0;
    for (;;) {
        size_t left = pending_.size() - at;
        uint64_t length = left >= head ? read_length(std::string_view(pending_).substr(at, head)) : 0;
        if (length > kLongestRecord)
            fail(batch, fmt::format("a record of {} octets; none is longer than {}", length, kLongestRecord));
        if (!batch->problem.empty()) break;
        if (left >= head && left - head >= length) {
            batch->items.push_back({at + head, static_cast<size_t>(length), ++number_});
            at += head + static_cast<size_t>(length);
            continue;
        }
        bool is_enough = !batch->items.empty() && (is_live_ || at >= kBlock);
        if (is_enough || !read_more()) break;
    }
    batch->text.assign(pending_, 0, at);
    pending_.erase(0, at);
    if (batch->problem.empty() && at_end_ && error_ == 0 && !pending_.empty())
        fail(batch, "the last record is cut short");
}

void Batch::clear() {
    text.clear();
    items.clear();
    problem.clear();
    problem_number = 0;
}

bool Source::next(Batch* batch) {
    batch->clear();
    while (batch->items.empty() && batch->problem.empty()) {
        if ((descriptor_ < 0 || at_end_) && !open_next()) return false;
        if (error_ == 0) switch (layout_.framing) {
                case Framing::whole: take_all(batch); break;
                case Framing::lines: take_lines(batch); break;
                case Framing::records: take_records(batch); break;
            }
        if (error_ != 0) fail(batch, fmt::format("cannot be read: {}", std::strerror(error_)));
    }
    batch->file = name_;
    batch->framing = layout_.framing;
    batch->octets = octets_;
    batch->size = size_;
    batch->is_live = is_live_;
    return true;
}

}  // namespace cli

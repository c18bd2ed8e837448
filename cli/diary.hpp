// SPDX-License-Identifier: Apache-2.0
// What a run tells besides its output: reports, a file of errors, a summary, and how far it is.
#pragma once

#include <chrono>
#include <cstdio>
#include <map>

#include "cli/convert.hpp"

namespace cli {

// "capture.hex:3:7"; a text decoder's own line is told if the message is a whole file.
std::string place_of(const Place& place, const Problem& problem);

class Diary {
  public:
    Diary();
    ~Diary();
    Diary(const Diary&) = delete;
    Diary& operator=(const Diary&) = delete;

    // One JSON object an error is written there. False with one line in `problem`.
    bool open_errors(const std::string& path, std::string* problem);
    void enter(const Batch& batch, const Result& result, TextForm input_form);
    // A line on standard error: how many messages, which errors, how fast.
    void tell_summary() const;
    uint64_t good() const { return good_; }
    uint64_t bad() const { return bad_; }
    const std::string& last_place() const { return last_place_; }
    // False with one line in `problem` if the file of errors could not be written.
    bool finish(std::string* problem);

  private:
    void write_error(const Finding& finding, TextForm input_form);
    void show_progress(const Batch& batch);
    void clear_progress();

    std::string errors_path_;
    FILE* errors_ = nullptr;
    uint64_t good_ = 0, bad_ = 0;
    std::map<std::string, uint64_t> texts_;  // bad messages by what is wrong with them
    std::string last_place_;                 // of a bad one
    std::chrono::steady_clock::time_point start_, shown_;
    bool is_watched_;  // standard error is a terminal
    bool has_bar_ = false;
};

}  // namespace cli

// SPDX-License-Identifier: Apache-2.0
// Messages from files and from standard input, in batches of what has arrived.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// How messages lie in a file.
enum class Framing {
    whole,    // one message a file
    lines,    // one a line
    records,  // each behind its length
};

struct InputLayout {
    Framing framing = Framing::whole;
    int length_octets = 0;        // of a record's length, the most significant first
    bool skips_comments = false;  // lines that begin with # are no messages
};

// Where a message stands, for reports.
struct Place {
    std::string file;
    Framing framing = Framing::whole;
    uint64_t number = 0;  // of the line or record, from 1
};

// Messages of one file. Blank lines are none.
struct Batch {
    struct Item {
        size_t begin, length;  // in `text`
        uint64_t number;
    };
    std::string file;
    Framing framing = Framing::whole;
    std::string text;
    std::vector<Item> items;
    std::string problem;  // not empty: what ended the file, behind the items
    uint64_t problem_number = 0;
    uint64_t octets = 0;   // read of the file so far
    uint64_t size = 0;     // of the file; 0 if it is none that has one
    bool is_live = false;  // from a pipe or terminal: the reader waits for the answer

    void clear();
};

class Source {
  public:
    // No files mean standard input, and so does "-".
    Source(std::vector<std::string> files, const InputLayout& layout);
    ~Source();
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    // The next messages; waits for one at the least. False when all files are at their end.
    bool next(Batch* batch);

  private:
    bool open_next();
    void close_file();
    bool read_more();
    void take_all(Batch* batch);
    void take_lines(Batch* batch);
    void take_records(Batch* batch);
    void fail(Batch* batch, std::string problem);

    std::vector<std::string> files_;
    InputLayout layout_;
    size_t next_file_ = 0;
    int descriptor_ = -1;
    std::string name_;
    std::string pending_;  // read and not yet handed over
    bool at_end_ = false;
    int error_ = 0;  // errno of a failed open or read
    bool is_live_ = false;
    uint64_t octets_ = 0, size_ = 0, number_ = 0;
};

}  // namespace cli

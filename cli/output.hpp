// SPDX-License-Identifier: Apache-2.0
// Where results go: standard output, or a file that appears whole or not at all.
#pragma once

#include <cstdio>
#include <string>

namespace cli {

class Output {
  public:
    // An empty path means standard output. A regular file is written under a temporary name beside it.
    explicit Output(std::string path);
    ~Output();  // without commit: the temporary file goes, the old one stays
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // These return false with one line in `problem`.
    bool open(std::string* problem);
    bool write(const std::string& text, std::string* problem);
    bool flush(std::string* problem);
    // Flushes, and gives the file its name.
    bool commit(std::string* problem);

  private:
    bool fail(std::string* problem) const;

    std::string path_;
    std::string temporary_;  // empty: written in place
    FILE* file_ = nullptr;
};

}  // namespace cli

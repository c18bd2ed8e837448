// SPDX-License-Identifier: Apache-2.0
// Which type a message is of, found by trying.
#pragma once

#include <string>
#include <vector>

#include "cli/codec.hpp"

namespace cli {

class Detector {
  public:
    // An empty region means all. No candidates are left if the region is not built.
    explicit Detector(const std::string& region);

    bool has_candidates() const { return !candidates_.empty(); }

    // The only type that takes the whole message and whose constraints the value meets, with the value; or null with
    // `problem` telling what was found instead.
    const CodedType* detect(const Rules& rules, orlenta_arena* arena, std::string_view input, Value* value,
                            Problem* problem) const;

  private:
    struct Candidate {
        CodedType type;
        std::vector<uint32_t> ids;  // of the header's messageID; empty: any message
    };
    void add(const std::string& region, const char* name, std::vector<uint32_t> ids);
    Problem no_type(const Rules& rules, std::string_view input) const;

    std::vector<Candidate> candidates_;
    CodedType header_;  // ItsPduHeader; without a type if EU is not asked for
};

}  // namespace cli

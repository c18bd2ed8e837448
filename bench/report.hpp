// SPDX-License-Identifier: Apache-2.0
// What the benchmark prints: a line for each message and way, with both directions side by side.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

namespace bench {

// Takes benchmarks named "rule/engine/message/decode" and ".../encode", with the counters bytes, leaves and allocs.
class Report : public benchmark::BenchmarkReporter {
  public:
    explicit Report(bool tsv) : tsv_(tsv) {}
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

  private:
    struct Direction {
        double ns = 0;  // of the fastest repetition; 0 if it was not measured
        double allocations = 0;
    };
    void print_direction(const Direction& direction) const;
    void print_row();

    bool tsv_;
    std::string row_;  // "rule/engine/message" of what is kept here
    double bytes_ = 0, leaves_ = 0;
    Direction decode_, encode_;
};

}  // namespace bench

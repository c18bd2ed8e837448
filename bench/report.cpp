// SPDX-License-Identifier: Apache-2.0
#include "bench/report.hpp"

#include <algorithm>

namespace bench {

bool Report::ReportContext(const Context& context) {
    if (tsv_) {
        std::puts("rule\tengine\tmessage\toctets\tleaves\tdecode ns\tallocations\tencode ns\tallocations");
        return true;
    }
    const benchmark::CPUInfo& cpu = context.cpu_info;
    std::fprintf(stderr, "%d processors of %.0f MHz", cpu.num_cpus, cpu.cycles_per_second / 1e6);
    if (!cpu.load_avg.empty() && cpu.load_avg[0] > 0.5 * cpu.num_cpus)
        std::fprintf(stderr, "; the load is %.1f, and the times will be those of a busy machine",
                     cpu.load_avg[0]);
    std::fputs("\n", stderr);
    std::printf("%-5s %-8s %-19s %6s %6s | %-31s | %s\n", "", "", "", "", "", "decode and release", "encode");
    std::printf("%-5s %-8s %-19s %6s %6s | %9s %7s %6s %6s | %9s %7s %6s %6s\n", "rule", "engine", "message",
                "octets", "leaves", "ns", "ns/leaf", "MB/s", "allocs", "ns", "ns/leaf", "MB/s", "allocs");
    return true;
}

void Report::print_direction(const Direction& direction) const {
    if (tsv_ && direction.ns == 0)
        std::printf("\t\t");
    else if (tsv_)
        std::printf("\t%.1f\t%.0f", direction.ns, direction.allocations);
    else if (direction.ns == 0)
        std::printf(" | %9s %7s %6s %6s", "-", "-", "-", "-");
    else
        std::printf(" | %9.0f %7.1f %6.0f %6.0f", direction.ns, direction.ns / leaves_,
                    bytes_ * 1e3 / direction.ns, direction.allocations);
}

void Report::print_row() {
    if (row_.empty()) return;
    size_t engine = row_.find('/') + 1, message = row_.find('/', engine) + 1;
    std::string names[] = {row_.substr(0, engine - 1), row_.substr(engine, message - engine - 1),
                           row_.substr(message)};
    std::printf(tsv_ ? "%s\t%s\t%s\t%.0f\t%.0f" : "%-5s %-8s %-19s %6.0f %6.0f", names[0].c_str(),
                names[1].c_str(), names[2].c_str(), bytes_, leaves_);
    print_direction(decode_);
    print_direction(encode_);
    std::puts("");
    std::fflush(stdout);
    row_.clear();
    decode_ = encode_ = {};
}

void Report::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration) continue;
        const std::string& name = run.run_name.function_name;
        size_t end = name.rfind('/');
        if (row_ != name.substr(0, end)) print_row();
        row_ = name.substr(0, end);
        if (run.error_occurred) {
            std::fprintf(stderr, "%s: %s\n", name.c_str(), run.error_message.c_str());
            continue;
        }
        bytes_ = run.counters.at("bytes");
        leaves_ = run.counters.at("leaves");
        Direction& direction = name.ends_with("/decode") ? decode_ : encode_;
        double ns = run.GetAdjustedCPUTime();
        direction.ns = direction.ns == 0 ? ns : std::min(direction.ns, ns);
        direction.allocations = run.counters.at("allocs");
    }
}

void Report::Finalize() { print_row(); }

}  // namespace bench

// SPDX-License-Identifier: Apache-2.0
// Encoding and decoding of whole messages by each set of rules: time and allocations.
#include <benchmark/benchmark.h>
#include <orlenta/memory.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/engines.hpp"
#include "bench/report.hpp"
#include "bench/subjects.hpp"

// ---- the counting allocator, in place of the library's own ------------------------------------------------

static uint64_t allocations = 0;

extern "C" void* asn1_malloc(size_t size) {
    ++allocations;
    return std::malloc(size ? size : 1);
}
extern "C" void* asn1_realloc(void* ptr, size_t size) {
    ++allocations;
    return std::realloc(ptr, size ? size : 1);
}
extern "C" void asn1_free(void* ptr) { std::free(ptr); }

// ---- measurements -----------------------------------------------------------------------------------------

using bench::Engine;
using bench::Subject;

static void set_counters(benchmark::State& state, const Subject& subject, size_t bytes, uint64_t allocated) {
    double messages = static_cast<double>(state.iterations());
    state.counters["bytes"] = static_cast<double>(bytes);
    state.counters["leaves"] = static_cast<double>(subject.leaves);
    state.counters["allocs"] = static_cast<double>(allocated) / messages;
}

static void decode(benchmark::State& state, const Engine& engine, const Subject& subject) {
    std::string encoded = bench::encode_by(engine, subject.type, subject.value);
    const uint8_t* data = reinterpret_cast<const uint8_t*>(encoded.data());
    uint64_t before = allocations;
    for (auto _ : state) {
        void* value = nullptr;
        if (engine.decode(&value, subject.type, data, encoded.size(), nullptr) < 0)
            return state.SkipWithError("not decodable");
        engine.release(subject.type, value);
    }
    set_counters(state, subject, encoded.size(), allocations - before);
}

static void encode(benchmark::State& state, const Engine& engine, const Subject& subject) {
    uint64_t before = allocations;
    int64_t size = 0;
    for (auto _ : state) {
        uint8_t* data = nullptr;
        size = engine.encode(&data, subject.type, subject.value, {.indent = 0}, nullptr);
        if (size < 0) return state.SkipWithError("not encodable");
        asn1_free(data);
    }
    set_counters(state, subject, static_cast<size_t>(size), allocations - before);
}

static void tell_given_up(const std::vector<Subject>& subjects) {
    for (const Subject& subject : subjects) {
        bench::GivenUp given_up = bench::given_up_by_program(subject.type, subject.value);
        if (given_up.messages + given_up.parts != 0)
            std::fprintf(stderr, "%s: left to the walker: %zu times as a whole, %zu parts\n",
                         subject.message.name.c_str(), given_up.messages, given_up.parts);
    }
}

static void register_all() {
    static const std::vector<Engine> engines = bench::all_engines();
    static const std::vector<Subject> subjects = bench::load_subjects();
    tell_given_up(subjects);
    for (const Engine& engine : engines)
        for (const Subject& subject : subjects) {
            std::string name =
                std::string(engine.rules->name) + "/" + engine.name + "/" + subject.message.name;
            benchmark::RegisterBenchmark((name + "/decode").c_str(), [&engine, &subject](auto& state) {
                decode(state, engine, subject);
            });
            benchmark::RegisterBenchmark((name + "/encode").c_str(), [&engine, &subject](auto& state) {
                encode(state, engine, subject);
            });
        }
}

// --tsv prints a table for programs; an explicit --benchmark_format leaves the printing to Google Benchmark.
int main(int argc, char** argv) {
    char min_time[] = "--benchmark_min_time=0.1";  // before the user's own, so that it can be overridden
    std::vector<char*> arguments = {argv[0], min_time};
    bool tsv = false, own_report = true;
    for (int i = 1; i < argc; ++i) {
        own_report = own_report && !std::strstr(argv[i], "--benchmark_format");
        if (std::strcmp(argv[i], "--tsv") == 0)
            tsv = true;
        else
            arguments.push_back(argv[i]);
    }
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    register_all();
    bench::Report report(tsv);
    if (own_report)
        benchmark::RunSpecifiedBenchmarks(&report);
    else
        benchmark::RunSpecifiedBenchmarks();
}

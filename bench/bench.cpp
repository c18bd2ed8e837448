// Encoding and decoding of whole messages by each set of rules: time, throughput of encoded bytes, and allocations.
#include <benchmark/benchmark.h>
#include <orlenta/cn.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <cstdio>
#include <cstdlib>

#include "bench/messages.hpp"
#include "cli/rules.hpp"

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

namespace {

const asn1_type_desc* const kType = asn1_type_CN_MessageFrame;

struct Subject {
    const cli::Rules* rules;
    void* value;          // kept to the end of the program
    std::string encoded;  // by the rules
};

}  // namespace

static void set_counters(benchmark::State& state, const Subject& subject, uint64_t allocated) {
    double messages = static_cast<double>(state.iterations());
    state.counters["bytes"] = static_cast<double>(subject.encoded.size());
    state.counters["MB"] = benchmark::Counter(static_cast<double>(subject.encoded.size()) * messages / 1e6,
                                              benchmark::Counter::kIsRate);
    state.counters["allocs"] = static_cast<double>(allocated) / messages;
}

static void decode(benchmark::State& state, const Subject& subject) {
    uint64_t before = allocations;
    for (auto _ : state) {
        void* value = nullptr;
        int64_t used =
            subject.rules->decode(&value, kType, reinterpret_cast<const uint8_t*>(subject.encoded.data()),
                                  subject.encoded.size(), nullptr);
        if (used < 0) return state.SkipWithError("not decodable");
        asn1_free_value(kType, value);
    }
    set_counters(state, subject, allocations - before);
}

static void encode(benchmark::State& state, const Subject& subject) {
    uint64_t before = allocations;
    for (auto _ : state) {
        uint8_t* data = nullptr;
        int64_t size = subject.rules->encode(&data, kType, subject.value, {.indent = 0}, nullptr);
        if (size < 0) return state.SkipWithError("not encodable");
        asn1_free(data);
    }
    set_counters(state, subject, allocations - before);
}

static Subject make_subject(const cli::Rules& rules, const bench::Message& message) {
    Subject subject{&rules, nullptr, {}};
    uint8_t* data = nullptr;
    int64_t size = -1;
    if (cli::find_rules("uper")->decode(&subject.value, kType,
                                        reinterpret_cast<const uint8_t*>(message.uper.data()),
                                        message.uper.size(), nullptr) > 0)
        size = rules.encode(&data, kType, subject.value, {.indent = 0}, nullptr);
    if (size < 0) {
        std::fprintf(stderr, "%s: no value for %s\n", message.name.c_str(), rules.name);
        std::exit(1);
    }
    subject.encoded.assign(reinterpret_cast<const char*>(data), static_cast<size_t>(size));
    asn1_free(data);
    return subject;
}

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    std::vector<bench::Message> messages = bench::load_messages(ORLENTA_BENCH_DATA);
    for (const cli::Rules& rules : cli::all_rules())
        for (const bench::Message& message : messages) {
            Subject subject = make_subject(rules, message);
            std::string name = std::string(rules.name) + "/" + message.name;
            benchmark::RegisterBenchmark((name + "/decode").c_str(), decode, subject);
            benchmark::RegisterBenchmark((name + "/encode").c_str(), encode, subject);
        }
    benchmark::RunSpecifiedBenchmarks();
}

// SPDX-License-Identifier: Apache-2.0
// Runs each way of decoding and encoding once, for callgrind to count the instructions of: they are steady where times
// are not. instructions.py runs this program and reads the counts.
#include <orlenta/memory.h>
#include <valgrind/callgrind.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "bench/engines.hpp"
#include "bench/subjects.hpp"

// ---- an allocator that costs the same everywhere --------------------------------------------------------------

// Blocks one behind the other, each behind its size, and never given back: what malloc does differs between systems
// and with what was allocated before. The room is that of the messages as values, of one encoding at a time, and of
// making programs.
alignas(16) static char room[1 << 25];
static size_t used = 0;
static uint64_t allocations = 0;

extern "C" void* asn1_malloc(size_t size) {
    size_t whole = (size + 31) & ~size_t{15};
    if (whole < size || whole > sizeof room - used) return nullptr;
    char* block = room + used;
    std::memcpy(block, &size, sizeof size);
    used += whole;
    ++allocations;
    return block + 16;
}
extern "C" void* asn1_realloc(void* ptr, size_t size) {
    void* block = asn1_malloc(size);
    if (!ptr || !block) return block;
    size_t old;
    std::memcpy(&old, static_cast<char*>(ptr) - 16, sizeof old);
    return std::memcpy(block, ptr, std::min(old, size));
}
extern "C" void asn1_free(void*) {}

// ---- runs -----------------------------------------------------------------------------------------------------

static const char* const kMessages[] = {"cn-bsm",  "cn-spat", "eu-cam-path",
                                        "eu-denm", "us-map",  "rrc-reconfiguration"};

// The second run counts: the first has the loader bind the functions that it calls. A line for each on standard
// output, "name<tab>allocations", and a dump of callgrind under the same name.
template <typename Work>
static void count(const std::string& name, const Work& work) {
    size_t start = used;
    work();
    used = start;
    allocations = 0;
    CALLGRIND_TOGGLE_COLLECT;
    work();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    used = start;
    std::printf("%s\t%llu\n", name.c_str(), static_cast<unsigned long long>(allocations));
}

static void count_both(const bench::Engine& engine, const bench::Subject& subject) {
    std::string encoded = bench::encode_by(engine, subject.type, subject.value);
    std::string name = subject.message.name + " " + engine.name + " ";
    count(name + "decode", [&] {
        void* value = nullptr;
        engine.decode(&value, subject.type, reinterpret_cast<const uint8_t*>(encoded.data()), encoded.size(),
                      nullptr);
        engine.release(subject.type, value);
    });
    count(name + "encode", [&] {
        uint8_t* out = nullptr;
        engine.encode(&out, subject.type, subject.value, {}, nullptr);
        asn1_free(out);
    });
}

// --compiler tells what the counts belong to.
int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--compiler") == 0) return std::puts(BENCH_COMPILER) < 0;
    const std::vector<bench::Subject> subjects = bench::load_subjects();
    for (const bench::Engine& engine : bench::all_engines())
        for (const bench::Subject& subject : subjects)
            if (std::string("uper") == engine.rules->name && std::string("library") != engine.name &&
                std::find(std::begin(kMessages), std::end(kMessages), subject.message.name) !=
                    std::end(kMessages))
                count_both(engine, subject);
}

// SPDX-License-Identifier: Apache-2.0
// Our codecs beside others, in one process: the same messages, the same malloc, and both in turn, so that whatever
// else the machine does meets both.
#include <dlfcn.h>
#include <orlenta/ber.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "bench/engines.hpp"
#include "bench/peers/peer.h"
#include "bench/subjects.hpp"

namespace {

using bench::Engine;
using bench::Subject;

struct Options {
    std::vector<const char*> files = {BENCH_PEER_FILES};
    size_t rounds = 101;
    FILE* tsv = nullptr;
};

// ---- time -------------------------------------------------------------------------------------------------

constexpr double kRound = 1e6;  // nanoseconds
constexpr size_t kFewestRounds = 21;

double thread_time() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e9 + static_cast<double>(t.tv_nsec);
}

template <typename Work>
double time_of(const Work& work, size_t times) {
    double start = thread_time();
    for (size_t i = 0; i < times; ++i) work();
    return (thread_time() - start) / static_cast<double>(times);
}

template <typename Work>
size_t times_in_a_round(const Work& work) {
    size_t times = 1;
    double each;
    while ((each = time_of(work, times)) * static_cast<double>(times) < kRound) times *= 2;
    return std::max<size_t>(1, static_cast<size_t>(kRound / each));
}

struct Times {
    double best, median;  // nanoseconds a message
};

Times summary(std::vector<double>& rounds) {
    std::sort(rounds.begin(), rounds.end());
    return {rounds.front(), rounds[rounds.size() / 2]};
}

struct Pair {
    Times ours, theirs;
    double best_ratio() const { return theirs.best / ours.best; }
    double median_ratio() const { return theirs.median / ours.median; }
};

template <typename Ours, typename Theirs>
Pair take_turns(const Ours& ours, const Theirs& theirs, size_t rounds) {
    size_t our_times = times_in_a_round(ours), their_times = times_in_a_round(theirs);
    std::vector<double> our_rounds, their_rounds;
    for (size_t i = 0; i < rounds; ++i) {
        our_rounds.push_back(time_of(ours, our_times));
        their_rounds.push_back(time_of(theirs, their_times));
    }
    return {summary(our_rounds), summary(their_rounds)};
}

// ---- a peer that does the same ----------------------------------------------------------------------------

struct Block {
    uint8_t* data = nullptr;
    int64_t size = -1;
    ~Block() { std::free(data); }
};

// Values are compared through DER, in which a peer may write components that equal their DEFAULT, and we do not.
bool same_value(const bench_peer& peer, const void* handle, const void* theirs, const Subject& subject) {
    Block der;
    der.size = peer.encode_der(handle, theirs, &der.data);
    void* value = nullptr;
    if (der.size < 0 ||
        asn1_ber_decode(&value, subject.type, der.data, static_cast<uint64_t>(der.size), nullptr) < 0)
        return false;
    bool same = asn1_cmp_value(subject.type, value, subject.value) == 0;
    asn1_free_value(subject.type, value);
    return same;
}

// The peer's value of our bytes; null, and a word about it, if the peer does not do what we do.
void* decode_and_compare(const bench_peer& peer, const void* handle, const Subject& subject,
                         const std::string& encoded) {
    const char* problem = nullptr;
    void* value = peer.decode(handle, reinterpret_cast<const uint8_t*>(encoded.data()), encoded.size());
    Block again;
    if (value) again.size = peer.encode(handle, value, &again.data);
    if (!value)
        problem = "does not decode it";
    else if (again.size != static_cast<int64_t>(encoded.size()) ||
             std::memcmp(again.data, encoded.data(), encoded.size()) != 0)
        problem = "encodes it to other bytes";
    else if (peer.encode_der && !same_value(peer, handle, value, subject))
        problem = "decodes it to another value";
    if (!problem) return value;
    std::fprintf(stderr, "%s: %s %s\n", subject.message.name.c_str(), peer.name, problem);
    if (value) peer.release(handle, value);
    return nullptr;
}

// ---- one message ------------------------------------------------------------------------------------------

struct Comparison {
    Pair decode, encode;
};

Comparison compare(const Engine& engine, const bench_peer& peer, const void* handle, const void* their_value,
                   const Subject& subject, const std::string& encoded, size_t rounds) {
    const uint8_t* data = reinterpret_cast<const uint8_t*>(encoded.data());
    auto our_decode = [&] {
        void* value;
        engine.decode(&value, subject.type, data, encoded.size(), nullptr);
        engine.release(subject.type, value);
    };
    auto their_decode = [&] { peer.release(handle, peer.decode(handle, data, encoded.size())); };
    auto our_encode = [&] {
        uint8_t* out;
        engine.encode(&out, subject.type, subject.value, {}, nullptr);
        asn1_free(out);
    };
    auto their_encode = [&] {
        uint8_t* out = nullptr;
        peer.encode(handle, their_value, &out);
        std::free(out);
    };
    return {take_turns(our_decode, their_decode, rounds), take_turns(our_encode, their_encode, rounds)};
}

void print_head(const bench_peer& peer, const Engine& engine, size_t rounds) {
    std::printf("%s and our %s %s: nanoseconds a message, the best and the median of %zu rounds\n", peer.name,
                engine.rules->name, engine.name, rounds);
    std::printf("%-19s %6s %6s | %-41s | %s\n", "", "", "", "decode and release", "encode and release");
    std::printf("%-19s %6s %6s", "message", "octets", "leaves");
    for (int i = 0; i < 2; ++i)
        std::printf(" | %6s %6s %7s %7s %5s %5s", "ours", "median", "theirs", "median", "ratio", "median");
    std::puts("");
}

void print_pair(const Pair& pair) {
    std::printf(" | %6.0f %6.0f %7.0f %7.0f %5.2f  %5.2f", pair.ours.best, pair.ours.median, pair.theirs.best,
                pair.theirs.median, pair.best_ratio(), pair.median_ratio());
}

void write_tsv(FILE* file, const bench_peer& peer, const Engine& engine, const Subject& subject,
               const Comparison& comparison) {
    std::fprintf(file, "%s\t%s\t%s\t%zu\t%zu", peer.name, engine.name, subject.message.name.c_str(),
                 subject.message.octets, subject.leaves);
    for (const Pair& pair : {comparison.decode, comparison.encode})
        std::fprintf(file, "\t%.1f\t%.1f\t%.1f\t%.1f", pair.ours.best, pair.ours.median, pair.theirs.best,
                     pair.theirs.median);
    std::fputs("\n", file);
}

// ---- all of them ------------------------------------------------------------------------------------------

struct Mean {
    double logarithms = 0;
    size_t count = 0;
    void add(double ratio) { logarithms += std::log(ratio), ++count; }
    double geometric() const { return std::exp(logarithms / static_cast<double>(count)); }
};

// Peers of one name are parts of one: asn1c's sets of messages come as objects of their own.
using Peers = std::map<std::string, std::vector<const bench_peer*>>;

Peers load_peers(const std::vector<const char*>& files) {
    Peers peers;
    for (const char* file : files) {
        void* object = dlopen(file, RTLD_NOW | RTLD_LOCAL);
        auto entry = object ? reinterpret_cast<decltype(&bench_peer_entry)>(dlsym(object, "bench_peer_entry"))
                            : nullptr;
        if (!entry) {
            std::fprintf(stderr, "%s: %s\n", file, dlerror());
            std::exit(2);
        }
        peers[entry()->name].push_back(entry());
    }
    return peers;
}

// Whether the peer did what we do for all messages that it takes.
bool run(const std::vector<const bench_peer*>& parts, const Engine& engine,
         const std::vector<Subject>& subjects, const Options& options) {
    bool sound = true;
    Mean decode_best, decode_median, encode_best, encode_median;
    print_head(*parts[0], engine, options.rounds);
    for (const Subject& subject : subjects)
        for (const bench_peer* peer : parts) {
            const void* handle =
                peer->find_type((subject.message.region + "." + subject.message.type).c_str());
            if (!handle) continue;
            std::string encoded = bench::encode_by(engine, subject.type, subject.value);
            void* their_value = decode_and_compare(*peer, handle, subject, encoded);
            sound = sound && their_value;
            if (!their_value) continue;
            Comparison result = compare(engine, *peer, handle, their_value, subject, encoded, options.rounds);
            peer->release(handle, their_value);
            std::printf("%-19s %6zu %6zu", subject.message.name.c_str(), encoded.size(), subject.leaves);
            print_pair(result.decode);
            print_pair(result.encode);
            std::puts("");
            std::fflush(stdout);
            if (options.tsv) write_tsv(options.tsv, *peer, engine, subject, result);
            decode_best.add(result.decode.best_ratio());
            decode_median.add(result.decode.median_ratio());
            encode_best.add(result.encode.best_ratio());
            encode_median.add(result.encode.median_ratio());
        }
    if (decode_best.count)
        std::printf("%-19s %2zu messages   | %29s %5.2f  %5.2f | %29s %5.2f  %5.2f\n\n", "geometric mean",
                    decode_best.count, "", decode_best.geometric(), decode_median.geometric(), "",
                    encode_best.geometric(), encode_median.geometric());
    return sound && decode_best.count;
}

void parse(Options& options, int argc, char** argv) {
    bool sound = argc % 2 == 1;
    for (int i = 1; i + 1 < argc; i += 2) {
        std::string name = argv[i];
        if (name == "--peer")
            options.files.push_back(argv[i + 1]);
        else if (name == "--rounds")
            options.rounds = std::max<size_t>(kFewestRounds, std::strtoul(argv[i + 1], nullptr, 10));
        else if (name == "--tsv")
            options.tsv = std::fopen(argv[i + 1], "w");
        else
            sound = false;
        sound = sound && (name != "--tsv" || options.tsv);
    }
    if (sound && !options.files.empty()) return;
    std::fprintf(stderr, "usage: %s [--rounds N] [--tsv FILE] [--peer OBJECT]...\n", argv[0]);
    std::exit(2);
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    parse(options, argc, argv);
    std::vector<Subject> subjects = bench::load_subjects();
    if (options.tsv)
        std::fputs(
            "peer\tengine\tmessage\toctets\tleaves\tdecode best\tmedian\ttheir best\tmedian\tencode "
            "best\tmedian\t"
            "their best\tmedian\n",
            options.tsv);
    bool sound = true;
    for (const auto& [name, parts] : load_peers(options.files))
        for (const Engine& engine : bench::all_engines())
            if (std::string("uper") == engine.rules->name && std::string("program") != engine.name)
                sound &= run(parts, engine, subjects, options);
    if (options.tsv) std::fclose(options.tsv);
    return sound ? 0 : 1;
}

#include "bench/engines.hpp"

#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <cstdio>
#include <cstdlib>

namespace bench {

std::vector<Engine> all_engines() {
    std::vector<Engine> engines;
    for (const cli::Rules& rules : cli::all_rules())
        engines.push_back({&rules, "walker", rules.decode, asn1_free_value, rules.encode});
    return engines;
}

std::string encode_by(const Engine& engine, const asn1_type_desc* type, const void* value) {
    uint8_t* data = nullptr;
    asn1_error error = {};
    int64_t size = engine.encode(&data, type, value, {.indent = 0}, &error);
    if (size < 0) {
        std::fprintf(stderr, "%s refuses a value: %s: %s\n", engine.rules->name, error.path, error.message);
        std::exit(1);
    }
    std::string bytes(reinterpret_cast<const char*>(data), static_cast<size_t>(size));
    asn1_free(data);
    return bytes;
}

}  // namespace bench

// SPDX-License-Identifier: Apache-2.0
#include "compiler/model/tags.hpp"

#include <fmt/format.h>
#include <orlenta/type.h>

#include <set>

namespace orlentac {

uint32_t tag_word(TagClass tag_class, uint32_t number) {
    return static_cast<uint32_t>(tag_class) << ASN1_TAG_CLASS_SHIFT | number;
}

uint32_t context_tag(uint32_t number) { return tag_word(TagClass::context, number); }

// X.680 clause 8.6, table 1.
uint32_t universal_tag(const Type& type) {
    static constexpr uint32_t kStringTags[] = {18, 19, 26, 22, 30, 28, 12, 27, 25, 20, 21};
    if (type.universal_tag) return *type.universal_tag;
    switch (type.kind) {
        case Kind::sequence:
        case Kind::sequence_of: return 16;
        case Kind::set:
        case Kind::set_of: return 17;
        case Kind::integer: return 2;
        case Kind::boolean: return 1;
        case Kind::bit_string: return 3;
        case Kind::octet_string: return 4;
        case Kind::enumerated: return 10;
        case Kind::null: return 5;
        case Kind::object_identifier: return 6;
        case Kind::relative_oid: return 13;
        case Kind::real: return 9;
        case Kind::char_string: return kStringTags[static_cast<int>(type.string_kind)];
        case Kind::choice:
        case Kind::open_type:
        case Kind::reference: break;
    }
    return 0;
}

bool has_tag(const Type& type) {
    if (!type.tags.empty()) return true;
    if (type.kind == Kind::reference) return has_tag(*type.target->type);
    return type.kind != Kind::choice && type.kind != Kind::open_type;
}

std::vector<uint32_t> wire_tags(const Type& type) {
    std::vector<uint32_t> tags;
    for (const Tag& tag : type.tags) tags.push_back(tag.word);
    std::vector<uint32_t> inner;
    if (type.kind == Kind::reference) {
        inner = wire_tags(*type.target->type);
    } else if (type.kind != Kind::choice && type.kind != Kind::open_type) {
        inner = {universal_tag(type)};
    }
    bool replaces = !type.tags.empty() && !type.tags.back().is_explicit && !inner.empty();
    tags.insert(tags.end(), inner.begin() + (replaces ? 1 : 0), inner.end());
    return tags;
}

static void add_first_tags(const Type& type, std::vector<uint32_t>& tags, std::set<const Type*>& seen) {
    if (!type.tags.empty()) {
        tags.push_back(type.tags[0].word);
    } else if (!seen.insert(&type).second) {
        return;
    } else if (type.kind == Kind::reference) {
        if (type.target->type) add_first_tags(*type.target->type, tags, seen);
    } else if (type.kind == Kind::choice) {
        for (const Alternative& alternative : type.alternatives)
            add_first_tags(*alternative.type, tags, seen);
    } else if (type.kind != Kind::open_type) {
        tags.push_back(universal_tag(type));
    }
}

std::vector<uint32_t> first_tags(const Type& type) {
    std::vector<uint32_t> tags;
    std::set<const Type*> seen;
    add_first_tags(type, tags, seen);
    return tags;
}

std::string tag_text(uint32_t word) {
    static constexpr const char* kClasses[] = {"UNIVERSAL ", "APPLICATION ", "", "PRIVATE "};
    return fmt::format("[{}{}]", kClasses[word >> ASN1_TAG_CLASS_SHIFT & 3], word & ASN1_TAG_NUMBER_MASK);
}

}  // namespace orlentac

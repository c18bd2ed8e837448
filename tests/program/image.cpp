// SPDX-License-Identifier: Apache-2.0
#include "tests/program/image.hpp"

#include "core/descriptor.hpp"
#include "tests/support/failing_allocator.hpp"

namespace orlenta::test {

static void look_into_record(const asn1_type_desc* type, void* record, Holdings& holdings) {
    for (uint32_t i = 0; i < component_count(type); ++i) {
        const asn1_field* field = components(type) + i;
        if (is_presence_flagged(field)) {
            if (presence_word(field, record) == 0) continue;
            holdings.words.push_back(at_offset(record, presence_offset(field)));
        }
        look_into(field_type(field), field_value(field, record), holdings);
    }
}

static void look_into_choice(const asn1_type_desc* type, void* record, Holdings& holdings) {
    choice_layout choice = choice_of(type);
    uint32_t selector = selector_of(choice, record);
    holdings.selectors.push_back(at_offset(record, choice.selector_offset));
    if (selector >= choice.total) return;
    look_into(alternative_type(choice, selector), at_offset(record, choice.payload_offset), holdings);
}

// Of a string or big integer, both of which begin with the pointer.
static uint64_t bytes_of(const asn1_type_desc* type, const void* value) {
    uint64_t length = static_cast<const asn1_string*>(value)->length;
    switch (kind_of(type)) {
        case ASN1_KIND_INTEGER: return static_cast<const asn1_integer*>(value)->capacity * sizeof(uint32_t);
        case ASN1_KIND_BIT_STRING: return (length + 7) / 8;
        case ASN1_KIND_CHAR_STRING: return length << code_unit_shift(string_type(type));
        default: return length;
    }
}

void look_into(const asn1_type_desc* type, void* value, Holdings& holdings) {
    void** first = static_cast<void**>(value);
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return look_into_record(type, value, holdings);
        case ASN1_KIND_CHOICE: return look_into_choice(type, value, holdings);
        case ASN1_KIND_TAGGED:
            if (!is_indirect(type)) return look_into(tagged_inner(type), value, holdings);
            return holdings.blocks.push_back({first, tagged_inner(type), 1, 0});
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: {
            list_layout list = list_of(type);
            uint64_t count = static_cast<asn1_array*>(value)->count;
            return holdings.blocks.push_back({first, list.element, count, list.stride});
        }
        case ASN1_KIND_ANY: {
            auto* open = static_cast<asn1_open_value*>(value);
            return holdings.blocks.push_back({&open->data, open->type, open->type ? 1 : open->length, 0});
        }
        case ASN1_KIND_NULL:
        case ASN1_KIND_REAL: return;
        default: break;
    }
    if (is_flat(type)) return holdings.words.push_back(value);
    holdings.blocks.push_back({first, nullptr, bytes_of(type, value), 0});
}

static Holdings holdings_of_block(const Block& block) {
    Holdings inside;
    if (!block.inner || !*block.place) return inside;
    for (uint64_t i = 0; i < block.count; ++i) {
        look_into(block.inner, at_offset(*block.place, i * block.stride), inside);
    }
    return inside;
}

Holdings all_holdings(const asn1_type_desc* type, void* value) {
    Holdings all;
    look_into(type, value, all);
    for (size_t i = 0; i < all.blocks.size(); ++i) {
        Holdings inside = holdings_of_block(all.blocks[i]);
        all.blocks.insert(all.blocks.end(), inside.blocks.begin(), inside.blocks.end());
        all.words.insert(all.words.end(), inside.words.begin(), inside.words.end());
        all.selectors.insert(all.selectors.end(), inside.selectors.begin(), inside.selectors.end());
    }
    return all;
}

// Bytes of the block that mean something: one of no bytes has one that does not.
static size_t used_bytes(const Block& block) {
    if (block.count == 0) return 0;
    return block.inner ? size_of_block(*block.place) : block.count;
}

std::vector<uint8_t> image_of(const asn1_type_desc* type, void* value) {
    std::vector<uint8_t> image;
    std::vector<Block> blocks = {{&value, type, 1, 0}};
    for (size_t i = 0; i < blocks.size(); ++i) {
        auto* bytes = static_cast<uint8_t*>(*blocks[i].place);
        image.push_back(bytes != nullptr);
        if (!bytes) continue;
        size_t size = size_of_block(bytes), start = image.size() + sizeof size;
        image.insert(image.end(), reinterpret_cast<uint8_t*>(&size), reinterpret_cast<uint8_t*>(&size + 1));
        image.insert(image.end(), bytes, bytes + used_bytes(blocks[i]));
        for (const Block& inside : holdings_of_block(blocks[i]).blocks) {
            size_t offset = static_cast<size_t>(reinterpret_cast<uint8_t*>(inside.place) - bytes);
            std::fill_n(image.begin() + static_cast<ptrdiff_t>(start + offset), sizeof(void*), 0);
            blocks.push_back(inside);
        }
    }
    return image;
}

}  // namespace orlenta::test

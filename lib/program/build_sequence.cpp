// SPDX-License-Identifier: Apache-2.0
// A SEQUENCE or SET: its leaves gathered in groups, nested records taken apart where nothing in them is optional.
#include "core/extension.hpp"
#include "core/presence.hpp"
#include "program/build.hpp"
#include "program/octets.hpp"

namespace orlenta::program {

namespace {

constexpr uint32_t kMaxOps = 64;
constexpr uint32_t kMaxLeaves = 200;                // of a group
constexpr uint32_t kMaxOffset = UINT32_C(1) << 24;  // of a leaf of a group
constexpr uint32_t kMaxVariantOptions = 2;

// Room that leaves take one behind the other.
struct span {
    uint32_t leaves, width;
    bool aligned;  // begins on an octet boundary
    bool fixed;    // begins where it does
};

// A group that is being filled.
struct open_group {
    growing<leaf> gates, leaves;
    growing<op> ops;
    growing<option> options;
    span room;
};

}  // namespace

// What a SEQUENCE is put together from.
struct sequence_parts {
    builder* b;
    sequence_parts* next;  // among those to spare
    bool in_head;          // the group is the head of a variant
    variant head;
    open_group group;
    growing<op> ops, additions, releases;
    growing<option> options, addition_options;
    growing<uint32_t> option_places;  // of their ops
    growing<extension_unit> units;
    growing<uint8_t> flags;
    growing<variant> variants;
    growing<option> settings;  // of one variant
};

static void free_group(open_group* group) {
    asn1_free(group->gates.items);
    asn1_free(group->leaves.items);
    asn1_free(group->ops.items);
    asn1_free(group->options.items);
}

// Parts without anything in them; null without memory. They come back by give_back().
static sequence_parts* take_parts(builder* b) {
    sequence_parts* parts = b->spare;
    if (parts) {
        b->spare = parts->next;
    } else {
        parts = static_cast<sequence_parts*>(asn1_mallocz(sizeof(sequence_parts)));
        b->failed |= !parts;
    }
    if (parts) parts->b = b;
    return parts;
}

static void give_back(sequence_parts* parts) {
    parts->in_head = false;
    parts->ops.count = parts->additions.count = parts->releases.count = 0;
    parts->options.count = parts->addition_options.count = parts->option_places.count = 0;
    parts->units.count = parts->flags.count = parts->variants.count = 0;
    parts->next = parts->b->spare;
    parts->b->spare = parts;
}

static void free_parts(sequence_parts* parts) {
    free_group(&parts->group);
    asn1_free(parts->ops.items);
    asn1_free(parts->additions.items);
    asn1_free(parts->releases.items);
    asn1_free(parts->options.items);
    asn1_free(parts->addition_options.items);
    asn1_free(parts->option_places.items);
    asn1_free(parts->units.items);
    asn1_free(parts->flags.items);
    asn1_free(parts->variants.items);
    asn1_free(parts->settings.items);
    asn1_free(parts);
}

void free_spare_parts(builder* b) {
    while (sequence_parts* parts = b->spare) {
        b->spare = parts->next;
        free_parts(parts);
    }
}

static bool is_record(const asn1_type_desc* type) {
    return kind_of(type) == ASN1_KIND_SEQUENCE || kind_of(type) == ASN1_KIND_SET;
}

static bool is_root_option(const asn1_field* field) {
    return !is_addition(field) && field_option(field) != ASN1_OPTION_MANDATORY;
}

static uint32_t preamble_width(const asn1_type_desc* type) {
    uint32_t width = is_extensible(type) ? 1 : 0;
    for (uint32_t i = 0; i < component_count(type); ++i) width += is_root_option(&components(type)[i]);
    return width;
}

static option option_of(const asn1_field* field, uint32_t base) {
    if (field_option(field) == ASN1_OPTION_DEFAULT) return {base + field_offset(field), low32(field->extra)};
    return {base + presence_offset(field), 0};
}

static uint32_t presence_of(const asn1_field* field, uint32_t base) {
    return is_presence_flagged(field) ? base + presence_offset(field) : kNone;
}

// In OER the walker takes a block for what is present of so many components.
static bool is_counted(const builder* b, const asn1_type_desc* type) {
    return b->octets && component_count(type) > sizeof(presence_bytes::few);
}

// ---- groups -------------------------------------------------------------------------------------------------

// Adds room for one more leaf; false if there is none, or if where the next octet begins is not known.
static bool extend(const builder* b, span* room, const leaf_form& form) {
    ++room->leaves;
    if (form.aligned) {
        if (room->width == 0 && !room->fixed) room->aligned = true;
        if (!room->aligned) return false;
        room->width = (room->width + 7) & ~UINT32_C(7);
    }
    room->width += form.width;
    return room->width <= (b->octets ? kGroupOctets : kWindowBits) && room->leaves <= kMaxLeaves;
}

constexpr leaf_form kGate = {true, false, false, 0, 0, 1};

static void add_leaf(builder* b, open_group* group, growing<leaf>* to, uint32_t offset,
                     const leaf_form& form) {
    if (b->octets) add(b, to, pack_octet_leaf(form, offset, group->room.width));
    extend(b, &group->room, form);
    if (b->octets) return;
    uint32_t shift = form.width == 0 ? 0 : 64 - group->room.width;
    uint32_t mask = form.width == 0 ? 0 : UINT32_MAX >> (32 - form.width);
    add(b, to, {offset << 8 | shift, form.low, form.range, mask});
}

static uint32_t add_leaves(builder* b, const open_group& group) {
    if (b->octets) return add_octet_leaves(b, group.gates, group.leaves);
    uint32_t first = add_all(b, &b->leaves, group.gates.items, group.gates.count);
    add_all(b, &b->leaves, group.leaves.items, group.leaves.count);
    return first;
}

// The op of a group that is complete.
static op finish_group(builder* b, const open_group* group, uint32_t presence) {
    op made = plain_op(group->room.aligned ? kAlignedGroup : kGroup, 0, presence, 0);
    made.width = static_cast<uint8_t>(group->room.width);
    made.count = static_cast<uint8_t>(group->room.leaves);
    made.gates = static_cast<uint8_t>(group->gates.count);
    made.part = add_leaves(b, *group);
    made.low = static_cast<uint32_t>(b->groups.count);
    add(b, &b->groups,
        {add_all(b, &b->ops, group->ops.items, group->ops.count), static_cast<uint32_t>(group->ops.count),
         add_all(b, &b->options, group->options.items, group->options.count),
         static_cast<uint32_t>(group->options.count)});
    return made;
}

static void finish_head(sequence_parts* parts) {
    const open_group& group = parts->group;
    variant* head = &parts->head;
    head->leaves = add_leaves(parts->b, group);
    head->width = static_cast<uint8_t>(group.room.width);
    head->count = static_cast<uint8_t>(group.room.leaves);
    head->gates = static_cast<uint8_t>(group.gates.count);
    head->options = add_all(parts->b, &parts->b->options, group.options.items, group.options.count);
    head->option_count = static_cast<uint16_t>(group.options.count);
    parts->in_head = false;
}

static void close_group(sequence_parts* parts) {
    open_group* group = &parts->group;
    if (parts->in_head) {
        finish_head(parts);
    } else if (group->ops.count == 1 && group->gates.count == 0) {
        add(parts->b, &parts->ops, group->ops.items[0]);
    } else if (group->ops.count != 0) {
        add(parts->b, &parts->ops, finish_group(parts->b, group, kNone));
    }
    group->gates.count = group->leaves.count = group->ops.count = group->options.count = 0;
    group->room = {};
}

// ---- flat records -------------------------------------------------------------------------------------------

static bool extend_by_record(const builder* b, span* room, const asn1_type_desc* type, uint32_t offset);

static bool extend_by_component(const builder* b, span* room, const asn1_field* field, uint32_t offset) {
    if (is_addition(field)) {
        return field_option(field) != ASN1_OPTION_DEFAULT || !holds_big_integer(field_type(field));
    }
    if (field_option(field) != ASN1_OPTION_MANDATORY) return false;
    const asn1_type_desc* type = behind_tags(field_type(field));
    leaf_form form = form_of(b, type);
    offset += field_offset(field);
    if (!form.is_leaf) return extend_by_record(b, room, type, offset);
    return offset < kMaxOffset && extend(b, room, form);
}

// Adds room for a record of nothing but leaves that are always there, its extension bits included; false if it is none, or
// too large.
static bool extend_by_record(const builder* b, span* room, const asn1_type_desc* type, uint32_t offset) {
    if (!is_record(type) || is_counted(b, type)) return false;
    if (is_extensible(type) && !extend(b, room, kGate)) return false;
    uint32_t before = room->leaves;
    for (uint32_t i = 0; i < component_count(type); ++i) {
        if (!extend_by_component(b, room, &components(type)[i], offset)) return false;
    }
    return room->leaves != before;
}

// Where the first leaf of a flat record goes.
static uint32_t first_leaf(const asn1_type_desc* type, uint32_t offset) {
    const asn1_field* field = components(type);
    const asn1_type_desc* inner = behind_tags(field_type(field));
    offset += field_offset(field);
    return is_record(inner) ? first_leaf(inner, offset) : offset;
}

static void add_flat(builder* b, open_group* group, const asn1_type_desc* type, uint32_t offset) {
    if (is_extensible(type)) {
        add_leaf(b, group, &group->gates, first_leaf(type, offset), kGate);
    }
    for (uint32_t i = 0; i < component_count(type); ++i) {
        const asn1_field* field = &components(type)[i];
        const asn1_type_desc* inner = behind_tags(field_type(field));
        leaf_form form = form_of(b, inner);
        if (is_addition(field)) {
            add(b, &group->options, option_of(field, offset));
        } else if (form.is_leaf) {
            add_leaf(b, group, &group->leaves, offset + field_offset(field), form);
        } else {
            add_flat(b, group, inner, offset + field_offset(field));
        }
    }
}

// The op of the one leaf of a flat record.
static op only_leaf(builder* b, const asn1_type_desc* type, uint32_t offset, uint32_t presence) {
    while (is_record(type)) {
        offset += field_offset(components(type));
        type = behind_tags(field_type(components(type)));
    }
    return make_op(b, type, offset, presence);
}

op make_fused_op(builder* b, const asn1_type_desc* type, uint32_t offset, uint32_t presence) {
    op plain = make_op(b, type, offset, presence);
    type = behind_tags(type);
    span room = {};
    if (b->failed || plain.kind != kSequence || !extend_by_record(b, &room, type, offset)) return plain;
    open_group group = {};
    add_flat(b, &group, type, offset);
    plain.presence = kNone;
    add(b, &group.ops, plain);
    bool is_lone = room.leaves == 1 && first_leaf(type, offset) == offset;
    op made = is_lone ? only_leaf(b, type, offset, presence) : finish_group(b, &group, presence);
    free_group(&group);
    return made;
}

// ---- components ---------------------------------------------------------------------------------------------

// The op of a root component; the key of an open type lies in the record of which it is a component.
static op make_component_op(builder* b, const asn1_type_desc* record, const asn1_field* field, uint32_t base,
                            uint32_t presence) {
    uint32_t offset = base + field_offset(field);
    const asn1_type_desc* type = behind_tags(field_type(field));
    if (kind_of(type) != ASN1_KIND_ANY || is_addition(field)) return make_fused_op(b, type, offset, presence);
    op made = plain_op(kOpenType, offset, presence, type_index(b, type));
    made.part = open_type_part(b, type, record, field_offset(field));
    return made;
}

static bool has_options(const asn1_type_desc* type) {
    for (uint32_t i = 0; i < component_count(type); ++i) {
        const asn1_field* field = &components(type)[i];
        if (field_option(field) != ASN1_OPTION_MANDATORY || is_addition(field)) return true;
    }
    return false;
}

static void add_root(sequence_parts* parts, const asn1_type_desc* type, uint32_t base);

// Whether a record can join the open group, or one that is begun for it.
static bool make_room_for_record(sequence_parts* parts, const asn1_type_desc* type, uint32_t offset) {
    span room = parts->group.room;
    if (extend_by_record(parts->b, &room, type, offset)) return true;
    room = {};
    if (!extend_by_record(parts->b, &room, type, offset)) return false;
    close_group(parts);
    return true;
}

// Leaves and flat records join the open group, records without options are taken apart.
static void add_mandatory(sequence_parts* parts, const asn1_type_desc* record, const asn1_field* field,
                          uint32_t base) {
    builder* b = parts->b;
    const asn1_type_desc* type = behind_tags(field_type(field));
    uint32_t offset = base + field_offset(field);
    leaf_form form = form_of(b, type);
    if (kind_of(type) == ASN1_KIND_NULL) return;
    if (form.is_leaf && offset < kMaxOffset) {
        span room = parts->group.room;
        if (!extend(b, &room, form)) close_group(parts);
        if (!parts->in_head) add(b, &parts->group.ops, leaf_op(b, type, offset, kNone, form));
        add_leaf(b, &parts->group, &parts->group.leaves, offset, form);
    } else if (is_record(type) && !is_extensible(type) && !has_options(type) && !is_counted(b, type) &&
               !facts_of(b, type).needs_frame) {
        add_root(parts, type, offset);
    } else if (make_room_for_record(parts, type, offset)) {
        if (!parts->in_head) add(b, &parts->group.ops, make_op(b, type, offset, kNone));
        add_flat(b, &parts->group, type, offset);
    } else {
        close_group(parts);
        add(b, &parts->ops, make_component_op(b, record, field, base, kNone));
    }
}

static void add_root(sequence_parts* parts, const asn1_type_desc* type, uint32_t base) {
    builder* b = parts->b;
    for (uint32_t i = 0; i < component_count(type) && !b->failed; ++i) {
        const asn1_field* field = &components(type)[i];
        if (is_addition(field)) continue;
        if (field_option(field) == ASN1_OPTION_MANDATORY) {
            add_mandatory(parts, type, field, base);
            continue;
        }
        close_group(parts);
        add(b, &parts->option_places, static_cast<uint32_t>(parts->ops.count));
        add(b, &parts->options, option_of(field, base));
        add(b, &parts->ops, make_component_op(b, type, field, base, presence_of(field, base)));
    }
}

static void add_setting(sequence_parts* parts, uint32_t offset, uint32_t word) {
    if (parts->b->octets) return add(parts->b, &parts->settings, {offset, word});
    add(parts->b, &parts->group.gates, {offset << 8, word, 0, 0});
    ++parts->group.room.leaves;
}

// What a preamble sets: presence words, and DEFAULTs that it leaves out.
static void add_settings(sequence_parts* parts, const asn1_type_desc* type, uint32_t preamble,
                         uint32_t option_count) {
    for (const asn1_field* field = components(type); option_count > 0; ++field) {
        if (!is_root_option(field)) continue;
        bool present = preamble >> --option_count & 1;
        if (present && is_presence_flagged(field)) {
            add_setting(parts, presence_offset(field), 1);
        } else if (!present && field_option(field) == ASN1_OPTION_DEFAULT) {
            add_setting(parts, field_offset(field), low32(field->extra));
        }
    }
}

static void add_variant(sequence_parts* parts, const asn1_type_desc* type, uint32_t preamble,
                        uint32_t option_count) {
    parts->in_head = true;
    parts->head.preamble = option_count == 0 ? 0 : uint64_t{preamble} << (64 - preamble_width(type));
    parts->ops.count = 0;
    uint32_t bits = preamble_width(type);
    parts->group.room.width = parts->b->octets ? (bits + 7) / 8 : bits;
    parts->group.room.fixed = true;
    add_settings(parts, type, preamble, option_count);
    for (uint32_t i = 0; i < component_count(type); ++i) {
        const asn1_field* field = &components(type)[i];
        if (is_addition(field)) continue;
        bool present = !is_root_option(field) || (preamble >> --option_count & 1) != 0;
        if (present) add_mandatory(parts, type, field, 0);
    }
    close_group(parts);
    parts->head.ops = add_all(parts->b, &parts->b->ops, parts->ops.items, parts->ops.count);
    parts->head.op_count = static_cast<uint8_t>(parts->ops.count);
    parts->head.settings =
        add_all(parts->b, &parts->b->options, parts->settings.items, parts->settings.count);
    parts->head.setting_count = static_cast<uint16_t>(parts->settings.count);
    parts->settings.count = 0;
    add(parts->b, &parts->variants, parts->head);
}

// One variant for each preamble, where there are few; elsewhere none.
static uint32_t add_variants(sequence_parts* parts, const asn1_type_desc* type) {
    builder* b = parts->b;
    uint32_t option_count = static_cast<uint32_t>(parts->options.count);
    if (is_counted(b, type)) return kNone;
    span room = {};
    bool is_flat_record = extend_by_record(b, &room, type, 0);
    if (option_count > kMaxVariantOptions || is_flat_record || record_size(type) >= kMaxOffset) return kNone;
    if (facts_of(b, type).needs_frame) return kNone;
    for (uint32_t preamble = 0; preamble < UINT32_C(1) << option_count; ++preamble)
        add_variant(parts, type, preamble, option_count);
    return add_all(b, &b->variants, parts->variants.items, parts->variants.count);
}

static void add_additions(sequence_parts* parts, const asn1_type_desc* type) {
    builder* b = parts->b;
    const asn1_field* end = components(type) + component_count(type);
    for (orlenta::extension_unit unit = next_extension_unit(components(type), end); unit.first;
         unit = following_unit(unit, end)) {
        add(b, &parts->units,
            {static_cast<uint16_t>(parts->additions.count), static_cast<uint16_t>(unit.count),
             unit.is_group});
        for (const asn1_field* field = unit.first; field < unit.first + unit.count; ++field) {
            add(b, &parts->additions, make_component_op(b, type, field, 0, presence_of(field, 0)));
            add(b, &parts->addition_options, option_of(field, 0));
            add(b, &parts->flags, static_cast<uint8_t>(field_option(field) != ASN1_OPTION_MANDATORY));
        }
    }
}

// Whether a value owns one block at the most, the one that its first word points to.
static bool is_single_block(const builder* b, const op& o) {
    return o.kind == kOctets || o.kind == kChars || o.kind == kMappedChars || o.kind == kBits ||
           o.kind == kBigInteger || o.kind == kCountedBigInteger ||
           (o.kind == kList && b->lists.items[o.part].owns == 0);
}

// The components that may own blocks, those of nested records in their place.
static void add_releases(sequence_parts* parts, const asn1_type_desc* type, uint32_t base) {
    builder* b = parts->b;
    for (uint32_t i = 0; i < component_count(type) && !b->failed; ++i) {
        const asn1_field* field = &components(type)[i];
        const asn1_type_desc* inner = behind_tags(field_type(field));
        if (kind_of(inner) != ASN1_KIND_ANY && !facts_of(b, inner).owns) continue;
        if (is_record(inner) && !is_presence_flagged(field)) {
            add_releases(parts, inner, base + field_offset(field));
        } else {
            op made = make_component_op(b, type, field, base, presence_of(field, base));
            if (!b->failed && is_single_block(b, made)) made.kind = kBlock;
            add(b, &parts->releases, made);
        }
    }
}

// ---- the whole ----------------------------------------------------------------------------------------------

// What is left to the walker from the start: a preamble wider than a window, and DEFAULTs that are no words.
static bool is_supported(const asn1_type_desc* type) {
    for (uint32_t i = 0; i < component_count(type); ++i) {
        const asn1_field* field = &components(type)[i];
        uint32_t option = field_option(field);
        if (option > ASN1_OPTION_DEFAULT) return false;
        if (option == ASN1_OPTION_DEFAULT && holds_big_integer(field_type(field))) return false;
    }
    return preamble_width(type) <= kWindowBits && component_count(type) <= UINT16_MAX;
}

static sequence make_walkers_sequence(builder* b, const asn1_type_desc* type) {
    op self = plain_op(kWalker, 0, kNone, type_index(b, type));
    sequence made = {};
    made.type = self.type;
    made.always = UINT64_C(1) << 63;
    made.ops = made.releases = add_all(b, &b->ops, &self, 1);
    made.release_count = 1;
    made.variants = kNone;
    return made;
}

// Which bits of the preamble become which ops, neighbours together.
static void set_preamble(sequence_parts* parts, sequence* made) {
    builder* b = parts->b;
    made->runs = static_cast<uint32_t>(b->preamble_runs.count);
    preamble_run run = {};
    for (uint32_t i = 0; i < parts->options.count; ++i) {
        uint32_t place = parts->option_places.items[i];
        uint64_t bit = UINT64_C(1) << 63 >> i;
        made->always &= ~(UINT64_C(1) << 63 >> place);
        if (parts->ops.items[place].presence == kNone) made->defaults |= bit;
        if (run.mask != 0 && run.shift != place - i) {
            add(b, &b->preamble_runs, run);
            run.mask = 0;
        }
        run = {run.mask | bit, place - i};
    }
    if (run.mask != 0) add(b, &b->preamble_runs, run);
    made->run_count = static_cast<uint8_t>(b->preamble_runs.count - made->runs);
}

// Leaves of OER run several at a time.
static void finish_leaves(growing<op>* ops) {
    uint8_t count = 0;
    for (uint64_t i = ops->count; i-- > 0;) {
        op* one = &ops->items[i];
        count = one->kind == kLeaf ? static_cast<uint8_t>(count + 1) : 0;
        if (count == 0) continue;
        one->count = count;
        if (one->presence == kNone) one->presence = one->offset;  // which is stored over
    }
}

static sequence finish_sequence(sequence_parts* parts, const asn1_type_desc* type) {
    builder* b = parts->b;
    sequence made = {};
    made.type = type_index(b, type);
    made.extensible = is_extensible(type);
    made.held = is_counted(b, type) ? component_count(type) : 0;
    made.needs_frame = facts_of(b, type).needs_frame;
    made.width = static_cast<uint8_t>(preamble_width(type));
    made.option_count = static_cast<uint16_t>(parts->options.count);
    made.unit_count = static_cast<uint16_t>(parts->units.count);
    made.addition_count = static_cast<uint16_t>(parts->additions.count);
    made.release_count = static_cast<uint16_t>(parts->releases.count);
    made.always = parts->ops.count == 0 ? 0 : UINT64_MAX << (kMaxOps - parts->ops.count);
    set_preamble(parts, &made);
    if (b->octets) finish_leaves(&parts->ops);
    made.ops = add_all(b, &b->ops, parts->ops.items, parts->ops.count);
    made.options = add_all(b, &b->options, parts->options.items, parts->options.count);
    made.units = add_all(b, &b->extension_units, parts->units.items, parts->units.count);
    made.additions = add_all(b, &b->ops, parts->additions.items, parts->additions.count);
    made.addition_options = add_all(b, &b->options, parts->addition_options.items, parts->additions.count);
    made.has_preamble_bit = add_all(b, &b->flags, parts->flags.items, parts->flags.count);
    made.releases = add_all(b, &b->ops, parts->releases.items, parts->releases.count);
    made.variants = add_variants(parts, type);
    return made;
}

uint32_t sequence_part(builder* b, uint32_t type_at) {
    if (b->known.items[type_at].part != kNone) return b->known.items[type_at].part;
    const asn1_type_desc* type = b->types.items[type_at];
    uint32_t part = reserve_item(b, &b->sequences);
    b->known.items[type_at].part = part;
    if (b->failed) return 0;
    b->sequences.items[part].variants = kNone;
    bool supported = is_supported(type);
    sequence_parts* parts = take_parts(b);
    if (!parts) return 0;
    if (supported) {
        add_root(parts, type, 0);
        close_group(parts);
        add_additions(parts, type);
        if (!b->aligned && !b->octets)
            add_releases(parts, type, 0);  // values are released by the other program
        supported = parts->ops.count <= kMaxOps;
    }
    if (!b->failed) {
        sequence made = supported ? finish_sequence(parts, type) : make_walkers_sequence(b, type);
        b->sequences.items[part] = made;
    }
    give_back(parts);
    return part;
}

}  // namespace orlenta::program

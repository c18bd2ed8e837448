// SPDX-License-Identifier: Apache-2.0
// The typed layer for C++: what its types can do, and that they are the C records.
#include <gtest/gtest.h>

#include <algorithm>
#include <orlenta/cn.hpp>
#include <orlenta/us.hpp>
#include <sstream>
#include <tricky.hpp>
#include <vector>

namespace cn = orlenta::cn;
namespace us = orlenta::us;
namespace tricky = orlenta::tricky;
using namespace std::string_view_literals;

namespace {

orlenta::value<cn::MessageFrame> safety_frame() {
    orlenta::value<cn::MessageFrame> frame;
    cn::BasicSafetyMessage& bsm = frame->emplace<cn::MessageFrame::bsmFrame>();
    bsm.id = "12345678";
    bsm.pos = {.lat = 1, .lon = 2, .elevation = 3};
    return frame;
}

template <class T, class Rules>
orlenta::value<T> again(Rules rules, const orlenta::value<T>& value) {
    auto bytes = orlenta::encode(rules, value);
    EXPECT_TRUE(bytes.has_value()) << bytes.error();
    auto back = orlenta::decode<T>(rules, *bytes);
    EXPECT_TRUE(back.has_value()) << back.error();
    return std::move(*back);
}

}  // namespace

TEST(Layer, LiesOverTheRecordOfC) {
    auto frame = safety_frame();
    auto* record = reinterpret_cast<asn1_CN_MessageFrame*>(frame.get());
    EXPECT_EQ(record->choice, 0u);
    EXPECT_EQ(record->u.bsmFrame.pos.has_elevation, 1u);
    EXPECT_EQ(record->u.bsmFrame.pos.elevation, 3);
    record->u.bsmFrame.has_angle = 1;
    record->u.bsmFrame.angle = -5;
    EXPECT_EQ(frame->get<cn::MessageFrame::bsmFrame>().angle, -5);
}

TEST(Layer, EveryRuleBringsBackWhatWasEncoded) {
    auto frame = safety_frame();
    auto each = [&](auto... rules) { return ((again(rules, frame) == frame) && ...); };
    EXPECT_TRUE(each(orlenta::uper, orlenta::aper, orlenta::oer, orlenta::ber, orlenta::der, orlenta::jer,
                     orlenta::xer, orlenta::gser));
}

TEST(Layer, OptionalComponents) {
    cn::Position3D here = {.lat = 1, .lon = 2};
    EXPECT_FALSE(here.elevation);
    EXPECT_EQ(here.elevation.value_or(7), 7);
    here.elevation = 0;
    EXPECT_TRUE(here.elevation.has_value());
    EXPECT_EQ(here.elevation, 0);
    EXPECT_EQ(++*here.elevation, 1);
    here.elevation.reset();
    EXPECT_EQ(here.elevation, std::nullopt);
    EXPECT_THROW(here.elevation.value(), std::bad_optional_access);
    here.elevation = 9;
    here.elevation = std::nullopt;
    EXPECT_FALSE(here.elevation);
    here.elevation = 9;
    here.elevation = {};
    EXPECT_FALSE(here.elevation);
    EXPECT_DEATH(*here.elevation = 1, "absent");
    const cn::Position3D there = {.lat = 1, .lon = 2};
    EXPECT_EQ(here.elevation, there.elevation);
    here.elevation = std::optional<int>(4);
    EXPECT_NE(here.elevation, there.elevation);
    here.elevation = std::optional<int>();
    EXPECT_FALSE(here.elevation);
    tricky::Grown unsigned_;
    unsigned_.plain = UINT32_MAX;
    EXPECT_FALSE(unsigned_.plain == -1);
    orlenta::optional<orlenta::integer<uint64_t>> wide = 5;
    EXPECT_EQ(wide, 5);

    us::IntersectionGeometry crossing;
    EXPECT_EQ(crossing.name.value_or("none"), "none"sv);
    EXPECT_EQ(crossing.name.emplace("some").size(), 4u);
    EXPECT_EQ(crossing.name.value_or("none"), "some"sv);
    crossing.name = {};
    EXPECT_FALSE(crossing.name);

    tricky::Reals reals = {.first = 1.5, .flag = true, .last = 2.5};  // numbers alone are copied
    reals.first = reals.last;
    const tricky::Reals copy = reals;
    EXPECT_EQ(copy.first, copy.last);
    EXPECT_EQ(copy, reals);
    EXPECT_DEATH((void)safety_frame()->get<cn::MessageFrame::bsmFrame>().safetyExt->events, "absent");

    orlenta::value<cn::BasicSafetyMessage> bsm;
    bsm->safetyExt.emplace().pathHistory.emplace().crumbData.emplace_back().timeOffset = 4;
    bsm->safetyExt.emplace();  // afresh
    EXPECT_FALSE(bsm->safetyExt->pathHistory);
    bsm->posConfidence = {.pos = cn::PositionConfidence::a2m,
                          .elevation = cn::ElevationConfidence::elev_000_02};
    EXPECT_EQ(bsm->posConfidence->elevation, cn::ElevationConfidence::elev_000_02);
}

TEST(Layer, Choices) {
    auto frame = safety_frame();
    using F = cn::MessageFrame;
    EXPECT_EQ(frame->which(), F::bsmFrame);
    EXPECT_TRUE(frame->holds<F::bsmFrame>());
    EXPECT_EQ(frame->get_if<F::spatFrame>(), nullptr);
    EXPECT_DEATH(frame->get<F::spatFrame>().msgCnt = 1, "alternative");
    auto name = [](const auto& message) -> std::string_view {
        using T = std::remove_cvref_t<decltype(message)>;
        return std::is_same_v<T, cn::SPAT>                 ? "spat"
               : std::is_same_v<T, cn::BasicSafetyMessage> ? "bsm"
                                                           : "other";
    };
    EXPECT_EQ(frame->visit(name), "bsm");
    frame->emplace<F::spatFrame>().msgCnt = 5;
    EXPECT_EQ(frame->visit(name), "spat");
    EXPECT_EQ(frame->get_if<F::spatFrame>()->msgCnt, 5u);

    orlenta::value<cn::MessageFrame> other;
    std::swap(*frame, *other);
    EXPECT_EQ(other->visit(name), "spat");
    cn::VerticalOffset flat;
    flat.emplace<cn::VerticalOffset::offset3>(-7);
    cn::VerticalOffset copy = flat;
    EXPECT_EQ(copy.get<cn::VerticalOffset::offset3>(), -7);

    tricky::Signals signals;  // of NULLs alone
    signals.emplace<tricky::Signals::go>();
    EXPECT_TRUE(signals.holds<tricky::Signals::go>());
}

TEST(Layer, Lists) {
    orlenta::value<cn::RoadSideInformation> rsi;
    cn::ReferencePathList paths;
    for (uint32_t i = 0; i < 40; i++) paths.emplace_back().pathRadius = i;
    EXPECT_EQ(paths.size(), 40u);
    EXPECT_EQ(paths.back().pathRadius, 39u);
    std::span<cn::ReferencePath> span = paths;
    EXPECT_EQ(span[7].pathRadius, 7u);
    auto found = std::find_if(paths.begin(), paths.end(), [](auto& path) { return path.pathRadius == 30; });
    EXPECT_EQ(found - paths.begin(), 30);
    paths.resize(3);
    paths.resize(5);
    EXPECT_EQ(paths[4].pathRadius, 0u);
    cn::ReferencePath path;
    path.pathRadius = 77;
    path.activePath.emplace_back().offsetLL.emplace<cn::PositionOffsetLL::position_LL1>({.lon = 1, .lat = 2});
    paths.push_back(std::move(path));
    EXPECT_TRUE(path.activePath.empty());
    EXPECT_EQ(paths.back().activePath.front().offsetLL.get<cn::PositionOffsetLL::position_LL1>().lat, 2);
    cn::ReferencePathList moved = std::move(paths);
    EXPECT_TRUE(paths.empty());
    EXPECT_EQ(moved.size(), 6u);
    moved.pop_back();
    moved.reserve(100);
    EXPECT_EQ(moved.size(), 5u);
    moved.clear();
    EXPECT_TRUE(moved.empty());
}

// What replaces something may lie in it, and nothing of the old is kept. The sanitizers watch.
TEST(Layer, ReplacedFromWithin) {
    cn::ReferencePathList paths;
    for (uint32_t i = 0; i < 4; i++) paths.emplace_back().pathRadius = i;
    for (int i = 0; i < 4; i++) paths.push_back(std::move(paths[1]));
    EXPECT_EQ(paths[4].pathRadius, 1u);
    cn::PointList points;
    points.emplace_back().posOffset.offsetLL.emplace<cn::PositionOffsetLL::position_LL1>(
        {.lon = 1, .lat = 2});
    for (int i = 0; i < 9; i++) points.push_back(points.front());
    EXPECT_EQ(points.back(), points.front());

    orlenta::value<tricky::Expression> sum;
    sum->emplace<tricky::Expression::sum>().left->emplace<tricky::Expression::constant>(7);
    sum->get<tricky::Expression::sum>().right->emplace<tricky::Expression::list>().emplace_back();
    *sum = std::move(*sum->get<tricky::Expression::sum>().right);
    sum->emplace<tricky::Expression::list>(std::move(sum->get<tricky::Expression::list>()));
    EXPECT_EQ(sum->get<tricky::Expression::list>().size(), 1u);
    *sum = std::move(sum->get<tricky::Expression::list>()[0]);
    EXPECT_TRUE(sum->holds<tricky::Expression::constant>());

    orlenta::value<tricky::Chain> chain;
    (*chain->next.emplace()).value = 1;
    (*chain->next)->next.emplace()->value = 2;
    chain->next = std::move((*chain->next)->next);
    EXPECT_EQ((*chain->next)->value, 2u);
    chain->next = std::move((*chain->next)->next);
    EXPECT_FALSE(chain->next);

    tricky::Shelf shelf;  // whose elements are what it is itself
    shelf.emplace_back().emplace_back();
    shelf.push_back(std::move(shelf[0]));
    EXPECT_EQ(shelf.back().size(), 1u);
    EXPECT_TRUE(shelf[0].empty());
    shelf = std::move(shelf.back());
    EXPECT_EQ(shelf.size(), 1u);

    orlenta::value<cn::MessageFrame> other, frame = safety_frame();
    other = std::move(frame);
    EXPECT_EQ(frame.get(), nullptr);
}

TEST(Layer, StringsAndBits) {
    orlenta::value<cn::BasicSafetyMessage> bsm;
    const std::vector<uint8_t> raw = {1, 2, 3};
    bsm->id = raw;
    EXPECT_EQ(bsm->id.size(), 3u);
    EXPECT_EQ(bsm->id.bytes()[2], std::byte{3});
    bsm->id = {9, 8};
    EXPECT_EQ(bsm->id.view(), "\x09\x08"sv);
    bsm->id = std::string("12");
    EXPECT_EQ(bsm->id.view(), "12");
    const std::vector<char> chars = {'1', '2'};
    orlenta::octets other = chars;
    EXPECT_EQ(bsm->id, other);
    EXPECT_EQ(bsm->id, "12"sv);
    bsm->id = {9, 8};
    EXPECT_NE(bsm->id, other);

    us::IntersectionGeometry crossing;
    crossing.name = "Plymouth Rd"sv;
    EXPECT_EQ(crossing.name, "Plymouth Rd"sv);
    EXPECT_EQ(std::string_view(*crossing.name).size(), 11u);

    us::LaneSharing sharing = {us::LaneSharing_bit::busVehicleTraffic};
    EXPECT_EQ(sharing.size(), 10u);
    EXPECT_TRUE(sharing[us::LaneSharing_bit::busVehicleTraffic]);
    EXPECT_FALSE(sharing.test(us::LaneSharing_bit::pedestriansTraffic));
    EXPECT_NE(sharing, us::LaneSharing{});
    sharing.set(us::LaneSharing_bit::busVehicleTraffic, false);
    EXPECT_EQ(sharing.bytes()[0], std::byte{0});
    cn::AllowedManeuvers numbered;  // whose bits have no names
    numbered.set(11);
    EXPECT_EQ(numbered.size(), 12u);
    numbered.assign("\xF0"sv, 4);
    EXPECT_EQ(numbered.size(), 4u);
    EXPECT_DEATH(numbered.assign("\xF0"sv, 9), "more bits");
}

TEST(Layer, OpenTypesGoWithTheirKeys) {
    orlenta::value<us::MessageFrame> frame;
    frame->set_value<us::SPAT>();
    orlenta::value<us::MapData> map;
    map->msgIssueRevision = 9;
    frame->set_value(std::move(map));
    EXPECT_EQ(frame->messageId, 18u);
    const us::MessageFrame& read = *frame;
    ASSERT_NE(read.get_value<us::MapData>(), nullptr);
    EXPECT_EQ(read.get_value<us::MapData>()->msgIssueRevision, 9u);
    EXPECT_EQ(read.get_value<us::SPAT>(), nullptr);
    auto back = again(orlenta::uper, frame);
    EXPECT_EQ(back, frame);
    EXPECT_EQ(back->get_value<us::MapData>()->msgIssueRevision, 9u);
    frame->set_value_raw(77, "\x01\x02"sv);
    EXPECT_EQ(frame->get_value<us::MapData>(), nullptr);
    EXPECT_EQ(frame->messageId, 77u);
    EXPECT_EQ(frame->value.raw().size(), 2u);

    orlenta::value<tricky::Words> words;
    words->set_bytes<tricky::Stamped>().last = true;
    EXPECT_EQ(words->selector, 2u);
    EXPECT_EQ(words->get_bytes<tricky::Bytes>(), nullptr);
    EXPECT_EQ(again(orlenta::der, words), words);
    orlenta::open nothing;
    nothing.hold(nullptr, nullptr, 5);
    EXPECT_EQ(nothing.raw().size(), 0u);
}

TEST(Layer, Values) {
    auto frame = safety_frame();
    auto copy = frame.clone();
    EXPECT_EQ(copy, frame);
    copy->get<cn::MessageFrame::bsmFrame>().pos.lat = 5;
    EXPECT_NE(copy, frame);
    EXPECT_EQ((copy <=> frame) > 0, !((frame <=> copy) > 0));
    auto moved = std::move(copy);
    EXPECT_EQ(moved->get<cn::MessageFrame::bsmFrame>().pos.lat, 5);
    auto part = orlenta::clone(frame->get<cn::MessageFrame::bsmFrame>());
    EXPECT_EQ(*part, frame->get<cn::MessageFrame::bsmFrame>());

    std::ostringstream shown;
    shown << frame->get<cn::MessageFrame::bsmFrame>().pos << ' ' << part;
    EXPECT_EQ(shown.str().substr(0, 31), R"({"lat":1,"lon":2,"elevation":3})");
    auto text = orlenta::to_json(frame, 2);
    ASSERT_TRUE(text.has_value());
    auto read = orlenta::from_json<cn::MessageFrame>(*text);
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(*read, frame);
}

// What goes wrong is told, with its place.
TEST(Layer, Errors) {
    using Bsm = cn::BasicSafetyMessage;
    struct Row {
        void (*spoil)(Bsm&);
        std::string_view path;
    } rows[] = {
        {[](Bsm& bsm) { bsm.transmission = static_cast<cn::TransmissionState>(99); },
         "bsmFrame.transmission"},
        {[](Bsm& bsm) { bsm.transmission = static_cast<cn::TransmissionState>(8); }, "bsmFrame.transmission"},
        {[](Bsm& bsm) { bsm.speed = 9000; }, "bsmFrame.speed"},
        {[](Bsm& bsm) { bsm.pos.elevation = 70000; }, "bsmFrame.pos.elevation"},
        {[](Bsm& bsm) { bsm.id = "1"; }, "bsmFrame.id"},
        {[](Bsm& bsm) { bsm.safetyExt.emplace().pathHistory.emplace(); },
         "bsmFrame.safetyExt.pathHistory.crumbData"},
    };
    for (const Row& row : rows) {
        auto frame = safety_frame();
        row.spoil(frame->get<cn::MessageFrame::bsmFrame>());
        auto expect = [&](auto rules) {
            auto bytes = orlenta::encode(rules, frame);
            ASSERT_FALSE(bytes.has_value()) << row.path;
            EXPECT_EQ(bytes.error().path(), row.path);
            EXPECT_NE(bytes.error().message(), "");
        };
        expect(orlenta::uper), expect(orlenta::aper), expect(orlenta::oer), expect(orlenta::ber);
        expect(orlenta::der), expect(orlenta::jer), expect(orlenta::xer), expect(orlenta::gser);
        EXPECT_FALSE(orlenta::check(frame).has_value());
    }
    EXPECT_TRUE(orlenta::check(safety_frame()).has_value());

    auto cut = orlenta::decode<cn::MessageFrame>(orlenta::uper, "\x00\x11"sv);
    ASSERT_FALSE(cut);
    EXPECT_EQ(cut.error().message(), "reading after end of stream");
    EXPECT_GT(cut.error().bit_position(), 0);
    EXPECT_EQ(cut.error().path().substr(0, 8), "bsmFrame");
    EXPECT_ANY_THROW(cut.value());
    EXPECT_EQ(orlenta::from_json<cn::MessageFrame>("{\n\n?}").error().line(), 3);
    auto forwarded = [&]() -> orlenta::result<int> { return orlenta::unexpected(cut.error()); };
    EXPECT_EQ(forwarded().error().message(), cut.error().message());

    orlenta::value<tricky::Edges> edges;  // -1 is not the greatest number there is
    edges->wide = -1;
    EXPECT_EQ(orlenta::encode(orlenta::uper, edges).error().path(), "wide");
}

TEST(Layer, UnusualTypes) {
    orlenta::value<tricky::Edges> edges;
    EXPECT_EQ(edges->small_default, -3);
    EXPECT_EQ(edges->big_default.to_int64(), -5000000000);
    edges->wide = UINT64_MAX;
    edges->mixed = int64_t{2147483648};
    EXPECT_TRUE(edges->free.assign("-123456789012345678901234567890"));
    EXPECT_FALSE(edges->free.assign("12a"));
    edges->text_default = "some";
    auto back = again(orlenta::uper, edges);
    EXPECT_EQ(back, edges);
    EXPECT_EQ(static_cast<uint64_t>(back->wide), UINT64_MAX);
    EXPECT_EQ(back->free.to_string(), "-123456789012345678901234567890");
    EXPECT_EQ(back->free.to_int64(), std::nullopt);
    EXPECT_EQ(back->text_default, "some"sv);

    orlenta::value<tricky::Chain> chain;  // through pointers
    (*chain->next.emplace()).value = 2;
    chain->next->operator->()->next.emplace()->value = 3;
    EXPECT_EQ(again(orlenta::uper, chain), chain);
    orlenta::value<tricky::Tree> tree;  // through lists
    tree->branches.emplace_back().branches.emplace_back().label = 4;
    EXPECT_EQ(again(orlenta::oer, tree), tree);

    orlenta::value<tricky::First> first;  // begins as its first alternative does
    const tricky::Defaults& defaults = first->get<tricky::First::defaults>();
    EXPECT_EQ(defaults.top.to_uint64(), UINT64_MAX);
    EXPECT_EQ(defaults.bottom.to_int64(), INT64_MIN);
    EXPECT_EQ(defaults.beyond.to_string(), "123456789012345678901234567890");
    EXPECT_EQ(static_cast<uint32_t>(defaults.wrapped), 3000000000);
    EXPECT_EQ(defaults.level, tricky::Defaults_level_values::high);
    EXPECT_EQ(orlenta::encode(orlenta::uper, first)->size(), 1u);
    orlenta::value<tricky::Stamped> stamped;
    EXPECT_EQ(orlenta::encode(orlenta::der, stamped)->view()[0], '\x63');
    EXPECT_EQ(again(orlenta::der, stamped), stamped);

    orlenta::value<tricky::Grown> grown;
    grown->single = 2.5;
    grown->second.emplace();
    grown->first = {tricky::Grown_first_bit::down};
    grown->third = "\x01"sv;
    EXPECT_EQ(again(orlenta::uper, grown), grown);
    orlenta::value<tricky::Names> names;
    names->int_ = 1;
    names->two_words = tricky::Meeting::point_a;
    names->has_int = true;
    EXPECT_EQ(again(orlenta::uper, names), names);
}

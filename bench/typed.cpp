// SPDX-License-Identifier: Apache-2.0
// The typed layer beside C: one message filled, encoded and released in both ways, and lists built element by element.
#include <benchmark/benchmark.h>
#include <orlenta/cn_build.h>
#include <orlenta/per.h>

#include <cstdlib>
#include <orlenta/cn.hpp>

namespace cn = orlenta::cn;

static asn1_CN_MessageFrame* fill_in_c() {
    auto* frame = static_cast<asn1_CN_MessageFrame*>(asn1_mallocz_value(asn1_type_CN_MessageFrame));
    asn1_CN_BasicSafetyMessage* bsm = orlenta_CN_MessageFrame_set_bsmFrame(frame);
    bsm->msgCnt = 17;
    orlenta_CN_BasicSafetyMessage_set_id(bsm, "45880001", 8);
    bsm->secMark = 32460;
    bsm->pos.lat = 399087153;
    bsm->pos.lon = 1163975126;
    orlenta_CN_Position3D_set_elevation(&bsm->pos, 435);
    orlenta_CN_BasicSafetyMessage_set_transmission(bsm, asn1_CN_TransmissionState_forwardGears);
    bsm->speed = 694;
    bsm->heading = 7184;
    orlenta_CN_BasicSafetyMessage_set_angle(bsm, -3);
    bsm->accelSet.yaw = 120;
    orlenta_CN_BrakeSystemStatus_set_abs(&bsm->brakes, asn1_CN_AntiLockBrakeStatus_off);
    bsm->size.width = 182;
    bsm->size.length = 467;
    orlenta_CN_VehicleSize_set_height(&bsm->size, 29);
    bsm->vehicleClass.classification = 10;
    asn1_CN_VehicleSafetyExtensions* safety = orlenta_CN_BasicSafetyMessage_set_safetyExt(bsm);
    asn1_CN_PathHistory* path = orlenta_CN_VehicleSafetyExtensions_set_pathHistory(safety);
    for (int i = 0; i < 6; i++) {
        asn1_CN_PathHistoryPoint* point = orlenta_CN_PathHistoryPointList_add(&path->crumbData);
        asn1_CN_Position_LL_28B* offset =
            orlenta_CN_PositionOffsetLL_set_position_LL2(&point->llvOffset.offsetLL);
        offset->lon = -218 * i;
        offset->lat = -416 * i;
        point->timeOffset = 60;
    }
    return frame;
}

static orlenta::value<cn::MessageFrame> fill_typed() {
    orlenta::value<cn::MessageFrame> frame;
    cn::BasicSafetyMessage& bsm = frame->emplace<cn::MessageFrame::bsmFrame>();
    bsm.msgCnt = 17;
    bsm.id = "45880001";
    bsm.secMark = 32460;
    bsm.pos = {.lat = 399087153, .lon = 1163975126, .elevation = 435};
    bsm.transmission = cn::TransmissionState::forwardGears;
    bsm.speed = 694;
    bsm.heading = 7184;
    bsm.angle = -3;
    bsm.accelSet.yaw = 120;
    bsm.brakes.abs = cn::AntiLockBrakeStatus::off;
    bsm.size = {.width = 182, .length = 467, .height = 29};
    bsm.vehicleClass = {.classification = 10};
    cn::PathHistory& path = bsm.safetyExt.emplace().pathHistory.emplace();
    for (int i = 0; i < 6; i++) {
        cn::PathHistoryPoint& point = path.crumbData.emplace_back();
        point.llvOffset.offsetLL.emplace<cn::PositionOffsetLL::position_LL2>(
            {.lon = -218 * i, .lat = -416 * i});
        point.timeOffset = 60;
    }
    return frame;
}

static void message_in_c(benchmark::State& state) {
    for (auto _ : state) {
        asn1_CN_MessageFrame* frame = fill_in_c();
        uint8_t* bytes;
        asn1_error error;
        if (asn1_uper_encode2(&bytes, asn1_type_CN_MessageFrame, frame, &error) < 0) std::abort();
        asn1_free(bytes);
        asn1_free_value(asn1_type_CN_MessageFrame, frame);
    }
}
BENCHMARK(message_in_c);

static void message_typed(benchmark::State& state) {
    for (auto _ : state) {
        auto frame = fill_typed();
        if (!orlenta::encode(orlenta::uper, frame)) std::abort();
    }
}
BENCHMARK(message_typed);

// ---- lists ------------------------------------------------------------------------------------------------

static constexpr uint64_t kElements = 6400;

static void list_by_copies(benchmark::State& state) {
    for (auto _ : state) {
        asn1_CN_PathHistoryPointList list = {};
        asn1_CN_PathHistoryPoint point = {};
        while (list.count < kElements)
            if (asn1_seq_add(asn1_type_CN_PathHistoryPoint, &list.count, reinterpret_cast<void**>(&list.data),
                             &point) != 0)
                std::abort();
        asn1_free_value_struct(asn1_type_CN_PathHistoryPointList, &list);
    }
}
BENCHMARK(list_by_copies)->Unit(benchmark::kMicrosecond);

static void list_in_c(benchmark::State& state) {
    for (auto _ : state) {
        asn1_CN_PathHistoryPointList list = {};
        while (list.count < kElements)
            if (orlenta_CN_PathHistoryPointList_add(&list) == nullptr) std::abort();
        asn1_free_value_struct(asn1_type_CN_PathHistoryPointList, &list);
    }
}
BENCHMARK(list_in_c)->Unit(benchmark::kMicrosecond);

static void list_typed(benchmark::State& state) {
    for (auto _ : state) {
        cn::PathHistoryPointList list;
        if (state.range(0)) list.reserve(kElements);
        while (list.size() < kElements) list.emplace_back();
        benchmark::DoNotOptimize(list.data());
    }
}
BENCHMARK(list_typed)->Arg(0)->Arg(1)->ArgName("reserve")->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();

// SPDX-License-Identifier: Apache-2.0
// A basic safety message of China, to bytes and back.
#include <iostream>
#include <orlenta/cn.hpp>

namespace cn = orlenta::cn;

int main() {
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
    bsm.accelSet = {.lon = 42, .lat = 3, .vert = 0, .yaw = 120};
    bsm.brakes.abs = cn::AntiLockBrakeStatus::off;
    bsm.size = {.width = 182, .length = 467, .height = 29};
    bsm.vehicleClass = {.classification = 10, .fuelType = 9};
    cn::PathHistoryPoint& point = bsm.safetyExt.emplace().pathHistory.emplace().crumbData.emplace_back();
    point.llvOffset.offsetLL.emplace<cn::PositionOffsetLL::position_LL2>({.lon = -218, .lat = -416});
    point.timeOffset = 60;

    auto bytes = orlenta::encode(orlenta::uper, frame);
    if (!bytes) return std::cerr << bytes.error() << '\n', 1;
    auto back = orlenta::decode<cn::MessageFrame>(orlenta::uper, *bytes);
    if (!back) return std::cerr << back.error() << '\n', 1;
    std::cout << bytes->size() << " bytes: " << *back << '\n';
}

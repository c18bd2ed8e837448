// SPDX-License-Identifier: Apache-2.0
// The same as static.c through the typed layer.
#include <cstdio>
#include <orlenta/us.hpp>
namespace us = orlenta::us;
int main() {
    orlenta::value<us::BasicSafetyMessage> bsm;
    us::BSMcoreData& core = bsm->coreData;
    core.msgCnt = 17;
    core.id = "1234";
    core.lat = 423047210;
    core.long_ = -836923370;
    core.speed = 700;
    core.transmission = us::TransmissionState::forwardGears;
    core.brakes.wheelBrakes.set(us::BrakeAppliedStatus_bit::unavailable);
    auto bytes = orlenta::encode(orlenta::uper, bsm);
    if (!bytes) return std::printf("%s\n", bytes.error().to_string().c_str()), 1;
    auto back = orlenta::decode<us::BasicSafetyMessage>(orlenta::uper, *bytes);
    if (!back) return 1;
    std::printf("%d bytes, lat %d\n", static_cast<int>(bytes->size()),
                static_cast<int>((*back)->coreData.lat));
}

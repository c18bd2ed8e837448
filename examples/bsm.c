// SPDX-License-Identifier: Apache-2.0
/* A basic safety message of China, to bytes and to JSON. */
#include <orlenta/cn_build.h>
#include <orlenta/jer.h>
#include <orlenta/per.h>
#include <stdio.h>

int main(void) {
    asn1_CN_MessageFrame frame = {0};
    asn1_CN_BasicSafetyMessage* bsm = orlenta_CN_MessageFrame_set_bsmFrame(&frame);
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
    bsm->accelSet = (asn1_CN_AccelerationSet4Way){.lon = 42, .lat = 3, .vert = 0, .yaw = 120};
    orlenta_CN_BrakeSystemStatus_set_abs(&bsm->brakes, asn1_CN_AntiLockBrakeStatus_off);
    bsm->size = (asn1_CN_VehicleSize){.width = 182, .length = 467, .has_height = 1, .height = 29};
    bsm->vehicleClass.classification = 10;
    orlenta_CN_VehicleClassification_set_fuelType(&bsm->vehicleClass, 9);
    asn1_CN_VehicleSafetyExtensions* safety = orlenta_CN_BasicSafetyMessage_set_safetyExt(bsm);
    asn1_CN_PathHistory* path = orlenta_CN_VehicleSafetyExtensions_set_pathHistory(safety);
    asn1_CN_PathHistoryPoint* point = orlenta_CN_PathHistoryPointList_add(&path->crumbData);
    *orlenta_CN_PositionOffsetLL_set_position_LL2(&point->llvOffset.offsetLL) =
        (asn1_CN_Position_LL_28B){.lon = -218, .lat = -416};
    point->timeOffset = 60;

    asn1_error err;
    uint8_t *bytes, *text;
    int64_t size = asn1_uper_encode2(&bytes, asn1_type_CN_MessageFrame, &frame, &err);
    if (size < 0) return fprintf(stderr, "%s at %s\n", err.message, err.path), 1;
    int64_t length = asn1_jer_encode(&text, asn1_type_CN_MessageFrame, &frame);
    printf("%d bytes: %.*s", (int)size, (int)length, (char*)text);
    asn1_free_value_struct(asn1_type_CN_MessageFrame, &frame);
    asn1_free(bytes);
    asn1_free(text);
    return 0;
}

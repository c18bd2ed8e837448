// SPDX-License-Identifier: Apache-2.0
/* A basic safety message of the United States, as small as a program can have it. */
#include <orlenta/per.h>
#include <orlenta/us_build.h>
#include <orlenta/value.h>
#include <stdio.h>
int main(void) {
    asn1_US_BasicSafetyMessage bsm = {0};
    bsm.coreData.msgCnt = 17;
    orlenta_US_BSMcoreData_set_id(&bsm.coreData, "1234", 4);
    bsm.coreData.lat = 423047210;
    bsm.coreData.long_ = -836923370;
    bsm.coreData.speed = 700;
    orlenta_US_BSMcoreData_set_transmission(&bsm.coreData, asn1_US_TransmissionState_forwardGears);
    orlenta_US_BrakeSystemStatus_set_bit_wheelBrakes(&bsm.coreData.brakes,
                                                     asn1_US_BrakeAppliedStatus_unavailable, 1);
    asn1_error err;
    uint8_t* bytes;
    int64_t size = asn1_uper_encode2(&bytes, asn1_type_US_BasicSafetyMessage, &bsm, &err);
    if (size < 0) return printf("%s at %s\n", err.message, err.path), 1;
    void* back;
    if (asn1_uper_decode(&back, asn1_type_US_BasicSafetyMessage, bytes, (uint64_t)size, &err) < 0) return 1;
    printf("%d bytes, lat %d\n", (int)size, (int)((asn1_US_BasicSafetyMessage*)back)->coreData.lat);
    asn1_free_value(asn1_type_US_BasicSafetyMessage, back);
    asn1_free_value_struct(asn1_type_US_BasicSafetyMessage, &bsm);
    asn1_free(bytes);
    return 0;
}

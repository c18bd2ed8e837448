// SPDX-License-Identifier: Apache-2.0
/* A cooperative awareness message of Europe, to bytes and back. */
#include <orlenta/eu_build.h>
#include <orlenta/per.h>
#include <stdio.h>

int main(void) {
    asn1_EU_CAM cam = {.header = {.protocolVersion = 2, .messageID = 2, .stationID = 3141592653U}};
    cam.cam.generationDeltaTime = 38217;
    asn1_EU_BasicContainer* basic = &cam.cam.camParameters.basicContainer;
    basic->stationType = 5;
    basic->referencePosition = (asn1_EU_ReferencePosition){.latitude = 481351254, .longitude = 115819806};
    basic->referencePosition.positionConfidenceEllipse = (asn1_EU_PosConfidenceEllipse){95, 62, 1240};
    basic->referencePosition.altitude.altitudeValue = 51930;
    orlenta_EU_Altitude_set_altitudeConfidence(&basic->referencePosition.altitude,
                                               asn1_EU_AltitudeConfidence_alt_001_00);
    asn1_EU_BasicVehicleContainerHighFrequency* vehicle =
        orlenta_EU_HighFrequencyContainer_set_basicVehicleContainerHighFrequency(
            &cam.cam.camParameters.highFrequencyContainer);
    vehicle->heading = (asn1_EU_Heading){.headingValue = 1237, .headingConfidence = 10};
    vehicle->speed = (asn1_EU_Speed){.speedValue = 1389, .speedConfidence = 5};
    vehicle->driveDirection = asn1_EU_DriveDirection_forward;
    vehicle->vehicleLength.vehicleLengthValue = 46;
    vehicle->vehicleWidth = 18;
    vehicle->longitudinalAcceleration.longitudinalAccelerationValue = -4;
    vehicle->curvature.curvatureValue = 13;
    vehicle->yawRate.yawRateValue = -153;
    orlenta_EU_BasicVehicleContainerHighFrequency_set_bit_accelerationControl(
        vehicle, asn1_EU_AccelerationControl_gasPedalEngaged, 1);

    uint8_t* bytes;
    void* back;
    asn1_error err;
    int64_t size = asn1_uper_encode2(&bytes, asn1_type_EU_CAM, &cam, &err);
    if (size < 0) return fprintf(stderr, "%s at %s\n", err.message, err.path), 1;
    if (asn1_uper_decode(&back, asn1_type_EU_CAM, bytes, (uint64_t)size, &err) != size) return 1;
    int same = asn1_cmp_value(asn1_type_EU_CAM, &cam, back) == 0;
    printf("%d bytes, %s\n", (int)size, same ? "and back" : "but something else came back");
    asn1_free_value_struct(asn1_type_EU_CAM, &cam);
    asn1_free_value(asn1_type_EU_CAM, back);
    asn1_free(bytes);
    return !same;
}

// SPDX-License-Identifier: Apache-2.0
// A cooperative awareness message of Europe, to bytes and back.
#include <iostream>
#include <orlenta/eu.hpp>

namespace eu = orlenta::eu;

int main() {
    orlenta::value<eu::CAM> cam;
    cam->header = {.protocolVersion = 2, .messageID = 2, .stationID = 3141592653};
    cam->cam.generationDeltaTime = 38217;
    auto& [basic, high, low, special] = cam->cam.camParameters;
    basic.stationType = 5;
    basic.referencePosition.latitude = 481351254;
    basic.referencePosition.longitude = 115819806;
    basic.referencePosition.positionConfidenceEllipse = {95, 62, 1240};
    basic.referencePosition.altitude = {51930, eu::AltitudeConfidence::alt_001_00};
    auto& vehicle = high.emplace<eu::HighFrequencyContainer::basicVehicleContainerHighFrequency>();
    vehicle.heading = {.headingValue = 1237, .headingConfidence = 10};
    vehicle.speed = {.speedValue = 1389, .speedConfidence = 5};
    vehicle.driveDirection = eu::DriveDirection::forward;
    vehicle.vehicleLength = {46, eu::VehicleLengthConfidenceIndication::noTrailerPresent};
    vehicle.vehicleWidth = 18;
    vehicle.longitudinalAcceleration = {-4, 2};
    vehicle.curvature = {13, eu::CurvatureConfidence::onePerMeter_0_0005};
    vehicle.curvatureCalculationMode = eu::CurvatureCalculationMode::yawRateUsed;
    vehicle.yawRate = {-153, eu::YawRateConfidence::degSec_000_05};
    vehicle.accelerationControl = {eu::AccelerationControl_bit::gasPedalEngaged};
    auto bytes = orlenta::encode(orlenta::uper, cam);
    if (!bytes) return std::cerr << bytes.error() << '\n', 1;
    auto back = orlenta::decode<eu::CAM>(orlenta::uper, *bytes);
    if (!back) return std::cerr << back.error() << '\n', 1;
    std::cout << bytes->size() << " bytes: " << *back << '\n';
}

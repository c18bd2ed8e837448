// SPDX-License-Identifier: Apache-2.0
// The map of an intersection of the United States, in its message frame, to bytes and back.
#include <iostream>
#include <orlenta/us.hpp>

namespace us = orlenta::us;

int main() {
    orlenta::value<us::MessageFrame> frame;
    us::MapData& map = frame->set_value<us::MapData>();
    map.msgIssueRevision = 9;
    map.layerType = us::LayerType::intersectionData;
    us::IntersectionGeometry& crossing = map.intersections.emplace().emplace_back();
    crossing.name = "Plymouth Rd and Green Rd";
    crossing.id = {.region = 26, .id = 12109};
    crossing.refPoint.lat = 423047210;
    crossing.refPoint.long_ = -836923370;
    crossing.laneWidth = 366;
    us::GenericLane& lane = crossing.laneSet.emplace_back();
    lane.laneID = 1;
    lane.ingressApproach = 1;
    lane.laneAttributes.directionalUse = {us::LaneDirection_bit::ingressPath};
    lane.laneAttributes.sharedWith.set(us::LaneSharing_bit::busVehicleTraffic);
    lane.laneAttributes.laneType.emplace<us::LaneTypeAttributes::vehicle>() = {};
    auto& nodes = lane.nodeList.emplace<us::NodeListXY::nodes>();
    nodes.emplace_back().delta.emplace<us::NodeOffsetPointXY::node_XY4>({.x = -180, .y = 2350});
    nodes.emplace_back().delta.emplace<us::NodeOffsetPointXY::node_XY4>({.x = 8, .y = 2094});

    auto bytes = orlenta::encode(orlenta::uper, frame);
    if (!bytes) return std::cerr << bytes.error() << '\n', 1;
    auto back = orlenta::decode<us::MessageFrame>(orlenta::uper, *bytes);
    if (!back) return std::cerr << back.error() << '\n', 1;
    std::cout << bytes->size() << " bytes: " << *back << '\n';
}

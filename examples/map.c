// SPDX-License-Identifier: Apache-2.0
/* The map of an intersection of the United States, in its message frame, to bytes. */
#include <orlenta/per.h>
#include <orlenta/us_build.h>
#include <stdio.h>

int main(void) {
    asn1_US_MessageFrame frame = {0};
    asn1_US_MapData* map = orlenta_US_MessageFrame_set_value_MapData(&frame);
    map->msgIssueRevision = 9;
    orlenta_US_MapData_set_layerType(map, asn1_US_LayerType_intersectionData);
    asn1_US_IntersectionGeometry* crossing =
        orlenta_US_IntersectionGeometryList_add(orlenta_US_MapData_set_intersections(map));
    orlenta_US_IntersectionGeometry_set_name(crossing, "Plymouth Rd and Green Rd", 24);
    orlenta_US_IntersectionReferenceID_set_region(&crossing->id, 26);
    crossing->id.id = 12109;
    crossing->refPoint.lat = 423047210;
    crossing->refPoint.long_ = -836923370;
    orlenta_US_IntersectionGeometry_set_laneWidth(crossing, 366);
    asn1_US_GenericLane* lane = orlenta_US_LaneList_add(&crossing->laneSet);
    lane->laneID = 1;
    orlenta_US_GenericLane_set_ingressApproach(lane, 1);
    asn1_US_LaneAttributes* attributes = &lane->laneAttributes;
    orlenta_US_LaneAttributes_set_bit_directionalUse(attributes, asn1_US_LaneDirection_ingressPath, 1);
    orlenta_US_LaneAttributes_set_bit_sharedWith(attributes, asn1_US_LaneSharing_busVehicleTraffic, 1);
    orlenta_bit_string_set(orlenta_US_LaneTypeAttributes_set_vehicle(&attributes->laneType), "", 8);
    asn1_US_NodeSetXY* nodes = orlenta_US_NodeListXY_set_nodes(&lane->nodeList);
    *orlenta_US_NodeOffsetPointXY_set_node_XY4(&orlenta_US_NodeSetXY_add(nodes)->delta) =
        (asn1_US_Node_XY_26b){.x = -180, .y = 2350};
    *orlenta_US_NodeOffsetPointXY_set_node_XY4(&orlenta_US_NodeSetXY_add(nodes)->delta) =
        (asn1_US_Node_XY_26b){.x = 8, .y = 2094};

    uint8_t* bytes;
    asn1_error err;
    int64_t size = asn1_uper_encode2(&bytes, asn1_type_US_MessageFrame, &frame, &err);
    if (size < 0) return fprintf(stderr, "%s at %s\n", err.message, err.path), 1;
    printf("%d bytes, messageId %d\n", (int)size, (int)frame.messageId);
    asn1_free_value_struct(asn1_type_US_MessageFrame, &frame);
    asn1_free(bytes);
    return 0;
}

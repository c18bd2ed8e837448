// SPDX-License-Identifier: Apache-2.0
// Lanes of MAP and MAPEM, SAE J2735 and ISO/TS 19091. A lane's first node is the one at the stop line.
import type { Value } from "orlenta";
import type { Connection, Features, Intersection, Lane, LaneKind } from "./features";
import { type LatLon, type Point, fromMetres, place, toMetres } from "./geo";
import { chosen, list, members, number, text, type Members } from "./members";
import { nodeOffset } from "./offsets";

const DEFAULT_WIDTH = 3;

export const KINDS: Record<string, LaneKind> = {
    vehicle: "vehicle",
    crosswalk: "crosswalk",
    bikeLane: "bike",
    sidewalk: "sidewalk",
    trackedVehicle: "rail",
    parking: "parking",
};

export function idOf(reference: Value | undefined): string {
    const { region, id } = members(reference);
    return region === undefined ? text(id) : `${text(region)}/${text(id)}`;
}

/** Each node is relative to the one before it. */
function pointsOf(nodes: Value[], reference: LatLon): Point[] {
    const points: Point[] = [];
    let last = { x: 0, y: 0 };
    for (const node of nodes) {
        const offset = nodeOffset(members(node).delta);
        if (!offset) continue;
        last = "at" in offset ? toMetres(offset.at, reference) : { x: last.x + offset.by.x, y: last.y + offset.by.y };
        points.push(last);
    }
    return points;
}

function computed(lane: Members, from: Point[]): Point[] {
    const centimetres = (offset: Value | undefined) => (number(chosen(offset)[1]) ?? 0) / 100;
    const by = { x: centimetres(lane.offsetXaxis), y: centimetres(lane.offsetYaxis) };
    const turn = ((number(lane.rotateXY) ?? 0) * 0.0125 * Math.PI) / 180; // clockwise
    const scale = (value: Value | undefined) => 1 + (number(value) ?? 0) * 0.0005;
    const [first] = from;
    return from.map((point) => {
        const x = (point.x - first.x) * scale(lane.scaleXaxis);
        const y = (point.y - first.y) * scale(lane.scaleYaxis);
        return {
            x: first.x + by.x + x * Math.cos(turn) + y * Math.sin(turn),
            y: first.y + by.y + y * Math.cos(turn) - x * Math.sin(turn),
        };
    });
}

function connectionsOf(lane: Members): Connection[] {
    return list(lane.connectsTo).map((entry) => {
        const { connectingLane, remoteIntersection, signalGroup } = members(entry);
        return {
            lane: remoteIntersection === undefined ? text(members(connectingLane).lane) : undefined,
            signalGroup: number(signalGroup),
        };
    });
}

function laneOf(lane: Members, points: Point[], reference: LatLon, width: number, path: string): Lane {
    const attributes = members(lane.laneAttributes);
    const use = Number.parseInt(text(attributes.directionalUse) || "0", 16);
    return {
        id: text(lane.laneID),
        kind: KINDS[chosen(attributes.laneType)[0]] ?? "other",
        isIngress: (use & 0x80) !== 0,
        isEgress: (use & 0x40) !== 0,
        points: points.map((point) => fromMetres(point, reference)),
        width,
        connections: connectionsOf(lane),
        path,
    };
}

function intersectionOf(geometry: Members, path: string): Intersection | null {
    const at = place(members(geometry.refPoint).lat, members(geometry.refPoint).long);
    if (!at) return null;
    const width = (number(geometry.laneWidth) ?? DEFAULT_WIDTH * 100) / 100;
    const lanes = list(geometry.laneSet).map(members);
    const drawn = new Map<string, Point[]>();
    for (const lane of lanes) drawn.set(text(lane.laneID), pointsOf(list(members(lane.nodeList).nodes), at));
    for (const lane of lanes) {
        const rule = members(members(lane.nodeList).computed);
        const from = drawn.get(text(rule.referenceLaneId));
        if (from && from.length > 0) drawn.set(text(lane.laneID), computed(rule, from));
    }
    return {
        key: idOf(geometry.id),
        label: text(geometry.name) || idOf(geometry.id),
        at,
        lanes: lanes.map((lane, i) =>
            laneOf(lane, drawn.get(text(lane.laneID)) ?? [], at, width, `${path}.laneSet[${i}]`),
        ),
        path: `${path}.refPoint`,
    };
}

export function mapData(value: Members, path: string, into: Features): void {
    list(value.intersections).forEach((geometry, i) => {
        const intersection = intersectionOf(members(geometry), `${path}intersections[${i}]`);
        if (intersection) into.intersections.push(intersection);
    });
}

// SPDX-License-Identifier: Apache-2.0
// Lanes of CN's MAP: nodes, the links that lead to them, and the lanes of these. Points follow the traffic to the node.
import type { Connection, Features, Lane } from "./features";
import { type LatLon, fromMetres, place, toMetres } from "./geo";
import { KINDS, idOf } from "./lanes";
import { chosen, list, members, number, text, type Members } from "./members";
import { offsetFrom } from "./offsets";

const DEFAULT_WIDTH = 350;

function pointsOf(points: Members["points"], from: LatLon): LatLon[] {
    return list(points)
        .map((point) => offsetFrom(from, members(point).posOffset))
        .filter((point) => point !== null);
}

/** A lane without points of its own lies beside the link's middle: lanes are numbered from the middle of the road. */
function beside(link: LatLon[], origin: LatLon, metres: number): LatLon[] {
    const points = link.map((point) => toMetres(point, origin));
    return points.map((point, i) => {
        const a = points[Math.max(i - 1, 0)];
        const b = points[Math.min(i + 1, points.length - 1)];
        const length = Math.hypot(b.x - a.x, b.y - a.y) || 1;
        const right = { x: (b.y - a.y) / length, y: -(b.x - a.x) / length };
        return fromMetres({ x: point.x + right.x * metres, y: point.y + right.y * metres }, origin);
    });
}

/** Lanes of other links are named by the node they lead to, the node they come from, and their number. */
function laneId(node: string, upstream: string, lane: string): string {
    return `${node} ${upstream} ${lane}`;
}

function connectionsOf(lane: Members, link: Members, node: string): Connection[] {
    const phases = new Map(
        list(link.movements).map((movement) => {
            const { remoteIntersection, phaseId } = members(movement);
            return [idOf(remoteIntersection), number(phaseId)];
        }),
    );
    return list(lane.connectsTo).map((entry) => {
        const { remoteIntersection, connectingLane, phaseId } = members(entry);
        const remote = idOf(remoteIntersection);
        return {
            lane: laneId(remote, node, text(members(connectingLane).lane)),
            signalGroup: number(phaseId) ?? phases.get(remote),
        };
    });
}

function lanesOf(link: Members, node: string, at: LatLon, path: string): Lane[] {
    const upstream = idOf(link.upstreamNodeId);
    const middle = pointsOf(link.points, at);
    const lanes = list(link.lanes).map(members);
    const linkWidth = (number(link.linkWidth) ?? DEFAULT_WIDTH) / 100;
    let outer = -lanes.reduce((sum, lane) => sum + (number(lane.laneWidth) ?? linkWidth * 100) / 100, 0) / 2;
    return lanes.map((lane, i) => {
        const width = (number(lane.laneWidth) ?? linkWidth * 100) / 100;
        const own = pointsOf(lane.points, at);
        const points = own.length > 1 ? own : beside(middle, at, outer + width / 2);
        outer += width;
        return {
            id: laneId(node, upstream, text(lane.laneID)),
            kind: KINDS[chosen(members(lane.laneAttributes).laneType)[0]] ?? "vehicle",
            isIngress: true,
            isEgress: false,
            points: points.reverse(),
            width,
            connections: connectionsOf(lane, link, node),
            path: `${path}.lanes[${i}]`,
        };
    });
}

export function mapDataCn(value: Members, path: string, into: Features): void {
    list(value.nodes).forEach((entry, n) => {
        const node = members(entry);
        const at = place(members(node.refPos).lat, members(node.refPos).lon);
        if (!at) return;
        const key = idOf(node.id);
        const here = `${path}nodes[${n}]`;
        into.intersections.push({
            key,
            label: text(node.name) || key,
            at,
            lanes: list(node.inLinks).flatMap((link, i) => lanesOf(members(link), key, at, `${here}.inLinks[${i}]`)),
            path: `${here}.refPos`,
        });
    });
}

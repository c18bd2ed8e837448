// SPDX-License-Identifier: Apache-2.0
// Intersections: lanes as wide as they are, connections between them, and lights on the stop lines. In metres.
import type { Intersection, Lane, Light } from "./features";
import { type LatLon, type Point, toMetres } from "./geo";
import { type Origin, type Scene, signalOf } from "./scene";
import { curve, direction, pathData, svg } from "./svg";

interface Drawn {
    lane: Lane;
    points: Point[];
    intersection: Intersection;
}

const STOP_LINE = 0.9; // metres across
const NO_LIGHT = "none";

function laneElements({ lane, points }: Drawn, message: number): SVGElement[] {
    const use = lane.isIngress ? "ingress" : lane.isEgress ? "egress" : "";
    const d = pathData(points);
    const data = { "data-message": message, "data-path": lane.path };
    const title = svg("title", {}, `lane ${lane.id.split(" ").pop()}, ${lane.kind} ${use}`);
    return [
        svg("path", { d, class: `lane ${lane.kind} ${use}`, "stroke-width": lane.width * 0.92, ...data }, title),
        svg("path", { d, class: `lane-middle ${lane.kind}` }),
    ];
}

/** One bar across the lane, in as many parts as there are signal groups that its traffic obeys. */
function stopLine(scene: Scene, { lane, points, intersection }: Drawn): SVGElement[] {
    if (!lane.isIngress || points.length < 2 || lane.connections.length === 0) return [];
    const groups = [...new Set(lane.connections.map(({ signalGroup }) => signalGroup))].filter(
        (group) => group !== undefined,
    );
    const [at, next] = points;
    const along = direction(at, next);
    const right = { x: -along.y, y: along.x }; // of traffic that comes to the line
    const part = (lane.width * 0.92) / Math.max(groups.length, 1);
    return (groups.length > 0 ? groups : [undefined]).map((group, i) => {
        const signal = signalOf(scene, intersection.key, group);
        const light: Light | typeof NO_LIGHT = signal?.light ?? NO_LIGHT;
        const from = (lane.width * 0.92) / 2 - part * i;
        const ends = [from, from - part].map((far) => ({ x: at.x - right.x * far, y: at.y - right.y * far }));
        const flashing = signal?.isFlashing ? " flashing" : "";
        const element = svg("path", {
            d: pathData(ends),
            class: `stop ${light}${flashing}`,
            "stroke-width": STOP_LINE,
        });
        if (group !== undefined) element.append(svg("title", {}, `signal group ${group}:${flashing} ${light}`));
        return element;
    });
}

function connectionElements(scene: Scene, from: Drawn, all: Map<string, Drawn>): SVGElement[] {
    return from.lane.connections.flatMap(({ lane, signalGroup }) => {
        const to = all.get(`${from.intersection.key} ${lane}`) ?? all.get(lane ?? "");
        if (!to || from.points.length < 2 || to.points.length < 2) return [];
        // Lanes of other nodes begin at their far end.
        const target = to.intersection === from.intersection ? to.points : [...to.points].reverse();
        const leaving = direction(from.points[1], from.points[0]);
        const arriving = direction(target[1], target[0]);
        const light = signalOf(scene, from.intersection.key, signalGroup)?.light ?? NO_LIGHT;
        return [svg("path", { d: curve(from.points[0], leaving, target[0], arriving), class: `connection ${light}` })];
    });
}

/** In the order in which they are to lie on each other. */
export function drawIntersections(scene: Scene, origin: LatLon): SVGElement[] {
    const drawn = scene.intersections.flatMap((intersection: Intersection & Origin) =>
        intersection.lanes
            .filter(({ points }) => points.length > 0)
            .map((lane) => ({ lane, intersection, points: lane.points.map((point) => toMetres(point, origin)) })),
    );
    const byId = new Map(drawn.map((one) => [`${one.intersection.key} ${one.lane.id}`, one]));
    for (const one of drawn) if (one.lane.id.includes(" ")) byId.set(one.lane.id, one);
    return [
        ...drawn.flatMap((one) => laneElements(one, one.intersection.message)),
        ...drawn.flatMap((one) => connectionElements(scene, one, byId)),
        ...drawn.flatMap((one) => stopLine(scene, one)),
    ];
}

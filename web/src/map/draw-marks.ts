// SPDX-License-Identifier: Apache-2.0
// Stations, happenings and names: marks that keep their size in pixels, and what of them is to scale.
import type { Station } from "./features";
import { type LatLon, type Point, toMetres } from "./geo";
import type { Origin, Scene } from "./scene";
import { pathData, svg } from "./svg";

/** An element whose place on the screen follows the view. */
export interface Mark {
    at: Point;
    element: SVGGElement;
}

const MOST_LABELS = 40;
const KILOMETRES_AN_HOUR = 3.6;

/** A disc, drawn out to the north where the heading is known. */
function disc(radius: number, isHeaded: boolean): SVGElement {
    const [x, y] = [radius * 0.83, -radius * 0.56]; // where the point leaves the disc
    const d = `M0 ${-2.2 * radius}L${x} ${y}A${radius} ${radius} 0 1 1 ${-x} ${y}Z`;
    return isHeaded ? svg("path", { d }) : svg("circle", { r: radius });
}

const SHAPES: Record<Station["kind"], (isHeaded: boolean) => SVGElement> = {
    vehicle: (isHeaded) => (isHeaded ? svg("path", { d: "M0-9L6.5 8 0 4.5-6.5 8Z" }) : disc(6, false)),
    person: (isHeaded) => disc(5.5, isHeaded),
    roadside: () => svg("rect", { x: -5.5, y: -5.5, width: 11, height: 11, rx: 2 }),
    object: (isHeaded) => disc(4.5, isHeaded),
};

function describe({ label, heading, speed }: Station): string {
    const parts = [label];
    if (speed !== undefined) parts.push(`${(speed * KILOMETRES_AN_HOUR).toFixed(1)} km/h`);
    if (heading !== undefined) parts.push(`${heading.toFixed(1)}°`);
    return parts.join(" · ");
}

function stationMark(station: Station & Origin, origin: LatLon, isNamed: boolean): Mark {
    const turn = station.heading === undefined ? undefined : `rotate(${station.heading.toFixed(1)})`;
    const element = svg(
        "g",
        { class: `mark ${station.kind}`, "data-message": station.message, "data-path": station.path },
        svg("title", {}, describe(station)),
        svg("circle", { r: 14, class: "halo" }),
        svg("g", { transform: turn }, SHAPES[station.kind](turn !== undefined)),
    );
    if (isNamed) element.append(svg("text", { x: 12, y: 4 }, station.label));
    return { at: toMetres(station.at, origin), element };
}

export function drawMarks(scene: Scene, origin: LatLon): Mark[] {
    const isNamed = scene.stations.length <= MOST_LABELS;
    const happenings = scene.happenings.map(({ at, label, message, path }) => ({
        at: toMetres(at, origin),
        element: svg(
            "g",
            { class: "mark happening", "data-message": message, "data-path": path },
            svg("title", {}, label),
            svg("circle", { r: 14, class: "halo" }),
            svg("path", { d: "M0-10L10.5 8H-10.5Z" }),
            svg("path", { d: "M0-4V3M0 5.2V5.6", class: "sign" }),
            svg("text", { x: 14, y: 5 }, label),
        ),
    }));
    const names = scene.intersections.map(({ at, label, message, path }) => ({
        at: toMetres(at, origin),
        element: svg(
            "g",
            { class: "mark intersection", "data-message": message, "data-path": path },
            svg("circle", { r: 3 }),
            svg("text", { x: 7, y: -6 }, label),
        ),
    }));
    return [...names, ...happenings, ...scene.stations.map((station) => stationMark(station, origin, isNamed))];
}

/** Where happenings matter. In metres, as all that follows. */
export function drawAreas(scene: Scene, origin: LatLon): SVGElement[] {
    return scene.happenings.flatMap(({ at, radius }) => {
        const { x, y } = toMetres(at, origin);
        return radius ? [svg("circle", { cx: x, cy: -y, r: radius, class: "area" })] : [];
    });
}

/** Ways that were gone, and bodies to scale. */
export function drawTraces(scene: Scene, origin: LatLon): SVGElement[] {
    const line = (places: LatLon[], kind: string) =>
        svg("path", { d: pathData(places.map((place) => toMetres(place, origin))), class: kind });
    const bodies = scene.stations.flatMap(({ at, heading, length, width, kind }) => {
        if (heading === undefined || !length || !width) return [];
        const { x, y } = toMetres(at, origin);
        const transform = `translate(${x.toFixed(2)} ${(-y).toFixed(2)}) rotate(${heading.toFixed(1)})`;
        const box = { x: -width / 2, y: -length / 2, width, height: length, rx: 0.4 };
        return [svg("rect", { ...box, transform, class: `body ${kind}` })];
    });
    return [
        ...scene.trails.map((trail) => line(trail, "trail")),
        ...scene.happenings.flatMap(({ traces }) => traces.map((trace) => line(trace, "trace"))),
        ...scene.stations
            .filter(({ history }) => history.length > 0)
            .map(({ at, history, kind }) => line([at, ...history], `history ${kind}`)),
        ...scene.stations.flatMap(({ history, kind }) =>
            history.map((place) => {
                const { x, y } = toMetres(place, origin);
                return svg("path", { d: `M${x.toFixed(2)} ${(-y).toFixed(2)}h0`, class: `history-point ${kind}` });
            }),
        ),
        ...bodies,
    ];
}

// SPDX-License-Identifier: Apache-2.0
// Elements of SVG, in short.
import type { Point } from "./geo";

type Attributes = Record<string, string | number | undefined>;

export function svg<Name extends keyof SVGElementTagNameMap>(
    name: Name,
    attributes: Attributes = {},
    ...inside: (SVGElement | string)[]
): SVGElementTagNameMap[Name] {
    const element = document.createElementNS("http://www.w3.org/2000/svg", name);
    for (const [key, value] of Object.entries(attributes))
        if (value !== undefined) element.setAttribute(key, String(value));
    element.append(...inside);
    return element;
}

const short = (value: number) => value.toFixed(2);

/** Points in metres; SVG's y goes down. */
export function pathData(points: Point[]): string {
    return points.map(({ x, y }, i) => `${i === 0 ? "M" : "L"}${short(x)} ${short(-y)}`).join("");
}

/** From one point to another, leaving in the direction of `a` and arriving against that of `b`. */
export function curve(from: Point, a: Point, to: Point, b: Point): string {
    const reach = Math.hypot(to.x - from.x, to.y - from.y) * 0.4;
    const c1 = { x: from.x + a.x * reach, y: from.y + a.y * reach };
    const c2 = { x: to.x + b.x * reach, y: to.y + b.y * reach };
    const at = ({ x, y }: Point) => `${short(x)} ${short(-y)}`;
    return `M${at(from)}C${at(c1)} ${at(c2)} ${at(to)}`;
}

/** The unit vector from one point to another. */
export function direction(from: Point, to: Point): Point {
    const length = Math.hypot(to.x - from.x, to.y - from.y) || 1;
    return { x: (to.x - from.x) / length, y: (to.y - from.y) / length };
}

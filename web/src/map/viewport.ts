// SPDX-License-Identifier: Apache-2.0
// The part of the plane that a map shows: north is up.
import { boxAround, type Point } from "./geo";

export interface Viewport {
    /** In metres, what is in the middle. */
    centre: Point;
    /** Pixels for a metre. */
    scale: number;
    /** Pixels. */
    width: number;
    height: number;
}

const CLOSEST = 40;
const FARTHEST = 1e-5;
const MARGIN = 0.08;
/** A single place is shown with so many metres around it. */
const AROUND_ONE = 60;

export function clampScale(scale: number): number {
    return Math.min(CLOSEST, Math.max(FARTHEST, scale));
}

export function toScreen(view: Viewport, { x, y }: Point): Point {
    return {
        x: view.width / 2 + (x - view.centre.x) * view.scale,
        y: view.height / 2 - (y - view.centre.y) * view.scale,
    };
}

export function toPlane(view: Viewport, { x, y }: Point): Point {
    return {
        x: view.centre.x + (x - view.width / 2) / view.scale,
        y: view.centre.y - (y - view.height / 2) / view.scale,
    };
}

export function fit(view: Viewport, points: Point[]): Viewport {
    const box = boxAround(points) ?? { left: 0, right: 0, bottom: 0, top: 0 };
    const across = Math.max(box.right - box.left, AROUND_ONE);
    const up = Math.max(box.top - box.bottom, AROUND_ONE);
    const scale = Math.min(view.width / across, view.height / up) * (1 - 2 * MARGIN);
    return {
        ...view,
        centre: { x: (box.left + box.right) / 2, y: (box.bottom + box.top) / 2 },
        scale: clampScale(scale),
    };
}

/** Closer by `factor`, with the place under `fixed` (pixels) where it is. */
export function zoom(view: Viewport, factor: number, fixed: Point): Viewport {
    const before = toPlane(view, fixed);
    const scale = clampScale(view.scale * factor);
    const after = toPlane({ ...view, scale }, fixed);
    const centre = { x: view.centre.x + before.x - after.x, y: view.centre.y + before.y - after.y };
    return { ...view, scale, centre };
}

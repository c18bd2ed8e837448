// SPDX-License-Identifier: Apache-2.0
// Offsets from a place: those of CN are in units of 10^-7 degrees, those of EU and US in centimetres.
import type { Value } from "orlenta";
import { type LatLon, type Point, place, shifted } from "./geo";
import { chosen, members, number } from "./members";

/** PositionOffsetLLV of CN. */
export function offsetFrom(from: LatLon, offset: Value | undefined): LatLon | null {
    const [form, value] = chosen(members(offset).offsetLL);
    const lat = number(members(value).lat);
    const lon = number(members(value).lon);
    if (lat === undefined || lon === undefined) return null;
    return form === "position-LatLon" ? place(lat, lon) : shifted(from, lat, lon);
}

/** NodeOffsetPointXY of EU and US: metres from the node before, or a place; null for what is neither. */
export function nodeOffset(delta: Value | undefined): { by: Point } | { at: LatLon } | null {
    const [form, value] = chosen(delta);
    if (form === "node-LatLon") {
        const at = place(members(value).lat, members(value).lon);
        return at && { at };
    }
    const x = number(members(value).x);
    const y = number(members(value).y);
    return x === undefined || y === undefined ? null : { by: { x: x / 100, y: y / 100 } };
}

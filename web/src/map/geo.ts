// SPDX-License-Identifier: Apache-2.0
// Places on the earth, and metres east and north of one of them.

/** In degrees. */
export interface LatLon {
    lat: number;
    lon: number;
}

/** In metres: x to the east, y to the north. */
export interface Point {
    x: number;
    y: number;
}

const METRES_PER_DEGREE = 111_320; // of latitude; GRS 80 at 45 degrees within 0.2 %
const TENTH_MICRODEGREES = 1e7;

/** From units of 10^-7 degrees, as all message sets have them; null for what stands for "unavailable" or is no place. */
export function place(latitude: unknown, longitude: unknown): LatLon | null {
    if (typeof latitude !== "number" || typeof longitude !== "number") return null;
    const lat = latitude / TENTH_MICRODEGREES;
    const lon = longitude / TENTH_MICRODEGREES;
    return Math.abs(lat) <= 90 && Math.abs(lon) <= 180 ? { lat, lon } : null;
}

/** Moved by units of 10^-7 degrees. */
export function shifted(from: LatLon, latitude: number, longitude: number): LatLon {
    return { lat: from.lat + latitude / TENTH_MICRODEGREES, lon: from.lon + longitude / TENTH_MICRODEGREES };
}

export function toMetres(place: LatLon, origin: LatLon): Point {
    const east = ((place.lon - origin.lon + 540) % 360) - 180;
    return {
        x: east * METRES_PER_DEGREE * Math.cos((origin.lat * Math.PI) / 180),
        y: (place.lat - origin.lat) * METRES_PER_DEGREE,
    };
}

export function fromMetres(point: Point, origin: LatLon): LatLon {
    const cosine = Math.max(Math.cos((origin.lat * Math.PI) / 180), 1e-6);
    return {
        lat: origin.lat + point.y / METRES_PER_DEGREE,
        lon: origin.lon + point.x / (METRES_PER_DEGREE * cosine),
    };
}

export interface Box {
    left: number;
    right: number;
    bottom: number;
    top: number;
}

export function boxAround(points: Point[]): Box | null {
    if (points.length === 0) return null;
    const box = { left: Infinity, right: -Infinity, bottom: Infinity, top: -Infinity };
    for (const { x, y } of points) {
        box.left = Math.min(box.left, x);
        box.right = Math.max(box.right, x);
        box.bottom = Math.min(box.bottom, y);
        box.top = Math.max(box.top, y);
    }
    return box;
}

/** The greatest of 1, 2 and 5 times a power of ten that is not above `metres`: what a scale bar shows. */
export function roundLength(metres: number): number {
    const power = 10 ** Math.floor(Math.log10(metres));
    return [5, 2, 1].map((factor) => factor * power).find((length) => length <= metres) ?? power;
}

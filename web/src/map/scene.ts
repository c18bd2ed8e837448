// SPDX-License-Identifier: Apache-2.0
// Several messages on one map: of what speaks of the same thing the newest counts.
import type { Features, Happening, Intersection, Signal, Signals, Station } from "./features";
import { fromMetres, type LatLon } from "./geo";

/** What a thing on the map came from. */
export interface Origin {
    message: number;
}

export interface Scene {
    stations: (Station & Origin)[];
    happenings: (Happening & Origin)[];
    intersections: (Intersection & Origin)[];
    /** By intersection. */
    signals: Map<string, Signals & Origin>;
    /** Where stations were, by earlier messages. */
    trails: LatLon[][];
}

/** `items` from the oldest to the newest. */
export function sceneOf(items: { message: number; features: Features }[], trails: LatLon[][] = []): Scene {
    const stations = new Map<string, Station & Origin>();
    const happenings = new Map<string, Happening & Origin>();
    const intersections = new Map<string, Intersection & Origin>();
    const signals = new Map<string, Signals & Origin>();
    for (const { message, features } of items) {
        for (const one of features.stations) stations.set(one.key, { ...one, message });
        for (const one of features.happenings) happenings.set(one.key, { ...one, message });
        for (const one of features.intersections) intersections.set(one.key, { ...one, message });
        for (const one of features.signals) signals.set(one.key, { ...one, message });
    }
    return {
        stations: [...stations.values()],
        happenings: [...happenings.values()],
        intersections: [...intersections.values()],
        signals,
        trails,
    };
}

/** A larger area would leave little to see of what lies in it. Metres. */
const LARGEST_AREA = 200;

function corners({ intersections }: Scene, { at, radius }: Happening): LatLon[] {
    if (!radius || radius > LARGEST_AREA || intersections.length > 0) return [];
    return [-radius, radius].map((metres) => fromMetres({ x: metres, y: metres }, at));
}

/** All places, for a view that shows everything. */
export function placesOf(scene: Scene): LatLon[] {
    return [
        ...scene.stations.flatMap(({ at, history }) => [at, ...history]),
        ...scene.happenings.flatMap((one) => [one.at, ...corners(scene, one), ...one.traces.flat()]),
        ...scene.intersections.flatMap(({ at, lanes }) => [at, ...lanes.flatMap(({ points }) => points)]),
        ...scene.trails.flat(),
    ];
}

export function signalOf(scene: Scene, intersection: string, group: number | undefined): Signal | undefined {
    return group === undefined ? undefined : scene.signals.get(intersection)?.groups.get(group);
}

// SPDX-License-Identifier: Apache-2.0
// What a map shows of a message. Keys tell which messages speak of the same thing; of those the newest counts.
import type { LatLon } from "./geo";

export type StationKind = "vehicle" | "person" | "roadside" | "object";

export interface Station {
    key: string;
    label: string;
    kind: StationKind;
    at: LatLon;
    /** Degrees clockwise from north. */
    heading?: number;
    /** m/s */
    speed?: number;
    /** Metres. */
    length?: number;
    width?: number;
    /** Where it was, the newest place first. */
    history: LatLon[];
    /** In the value. */
    path: string;
}

export interface Happening {
    key: string;
    label: string;
    at: LatLon;
    /** Ways that lead to it. */
    traces: LatLon[][];
    /** Metres. */
    radius?: number;
    path: string;
}

export type LaneKind = "vehicle" | "crosswalk" | "bike" | "sidewalk" | "rail" | "parking" | "other";

export interface Lane {
    id: string;
    kind: LaneKind;
    /** Whether traffic comes to the stop line on it, leaves by it, or both. */
    isIngress: boolean;
    isEgress: boolean;
    /** The first point is the one at the stop line. */
    points: LatLon[];
    /** Metres. */
    width: number;
    connections: Connection[];
    path: string;
}

export interface Connection {
    /** Another lane of the same intersection; absent if it leads elsewhere. */
    lane?: string;
    signalGroup?: number;
}

export interface Intersection {
    key: string;
    label: string;
    at: LatLon;
    lanes: Lane[];
    path: string;
}

export type Light = "red" | "amber" | "green" | "dark";

export interface Signal {
    light: Light;
    isFlashing: boolean;
    /** Green with right of way. */
    isProtected: boolean;
}

/** The lights of an intersection by signal group. */
export interface Signals {
    key: string;
    groups: Map<number, Signal>;
}

export interface Features {
    stations: Station[];
    happenings: Happening[];
    intersections: Intersection[];
    signals: Signals[];
}

export function noFeatures(): Features {
    return { stations: [], happenings: [], intersections: [], signals: [] };
}

/** The place that a message is about in the first instance. */
export function mainPlace({ stations, happenings, intersections }: Features): LatLon | undefined {
    return (stations[0] ?? happenings[0] ?? intersections[0])?.at;
}

export function keysOf({ stations, happenings, intersections, signals }: Features): string[] {
    return [
        ...stations.map(({ key }) => key),
        ...happenings.map(({ key }) => key),
        ...intersections.map(({ key }) => `map ${key}`),
        ...signals.map(({ key }) => `spat ${key}`),
    ];
}

// SPDX-License-Identifier: Apache-2.0
// What is kept of each message of a log; the message itself is read anew when it is looked at.
import type { Value } from "orlenta";
import { featuresOf } from "../map/extract";
import { keysOf, mainPlace } from "../map/features";
import type { LatLon } from "../map/geo";

export interface Summary {
    /** In octets of the log. */
    start: number;
    end: number;
    /** Milliseconds. */
    time?: number;
    type: string;
    error?: string;
    /** Who or what it is about. */
    label?: string;
    /** The things that a map shows of it. */
    keys: string[];
    at?: LatLon;
}

export function aboutValue(value: Value): Pick<Summary, "keys" | "at" | "label"> {
    const features = featuresOf(value);
    const { stations, happenings, intersections, signals } = features;
    const label = stations[0]?.label ?? happenings[0]?.label ?? intersections[0]?.label ?? signals[0]?.key;
    return { keys: keysOf(features), at: mainPlace(features), label };
}

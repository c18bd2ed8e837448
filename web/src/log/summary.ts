// SPDX-License-Identifier: Apache-2.0
// What is kept of each message of a log; the message itself is read anew when it is looked at.
import type { Rules, Value } from "orlenta";
import { featuresOf } from "../map/extract";
import { keysOf, mainPlace } from "../map/features";
import type { LatLon } from "../map/geo";
import { members } from "../map/members";

export interface Summary {
    /** In octets of the log. */
    start: number;
    end: number;
    /** Milliseconds. */
    time?: number;
    /** Empty if it was not found. */
    type: string;
    rules?: Rules;
    error?: string;
    /** What the message is, where the type does not tell. */
    frame?: string;
    /** Who or what it is about. */
    label?: string;
    /** The things that a map shows of it. */
    keys: string[];
    at?: LatLon;
}

// DSRCmsgID of SAE J2735.
const US_MESSAGES: Record<number, string> = {
    18: "MAP",
    19: "SPAT",
    20: "BSM",
    21: "CSR",
    22: "EVA",
    23: "ICA",
    24: "NMEA",
    25: "PDM",
    26: "PVD",
    27: "RSA",
    28: "RTCM",
    29: "SRM",
    30: "SSM",
    31: "TIM",
    32: "PSM",
    41: "SDSM",
};

/** Which message a frame holds. */
function inFrame(value: Value): string | undefined {
    const { messageId, ...rest } = members(value);
    if (typeof messageId === "number") return US_MESSAGES[messageId] ?? `message ${messageId}`;
    const [name, ...others] = Object.keys(rest);
    return name?.endsWith("Frame") && others.length === 0 ? name : undefined;
}

export function aboutValue(value: Value): Pick<Summary, "keys" | "at" | "label" | "frame"> {
    const features = featuresOf(value);
    const { stations, happenings, intersections, signals } = features;
    const label = stations[0]?.label ?? happenings[0]?.label ?? intersections[0]?.label ?? signals[0]?.key;
    return { keys: keysOf(features), at: mainPlace(features), label, frame: inFrame(value) };
}

// SPDX-License-Identifier: Apache-2.0
// The type of a message by its bytes: tries the frames of CN and US, and of EU the messages that the messageID of the
// header allows. A type fits if it takes all octets and the value meets its constraints.
import type { Codec, Region, Value } from "orlenta";
import type { BinaryRules } from "./types";

export interface Found {
    type: string;
    rules: BinaryRules;
}

// By the messageID of TS 102 894-2; VAM and CPM have been 14 both.
const EU_MESSAGES: Record<number, string[]> = {
    1: ["DENM"],
    2: ["CAM"],
    4: ["SPATEM"],
    5: ["MAPEM"],
    6: ["IVIM"],
    9: ["SREM"],
    10: ["SSEM"],
    13: ["RTCMEM"],
    14: ["VAM", "CPM"],
    16: ["VAM"],
};

/** Where the two octets of header.protocolVersion and messageID stand is the same under all rules but BER and DER. */
function euTypes(bytes: Uint8Array, rules: BinaryRules): string[] {
    if (rules === "ber" || rules === "der") return [...new Set(Object.values(EU_MESSAGES).flat())];
    return EU_MESSAGES[bytes[1]] ?? [];
}

const wholeMessages: Record<"CN" | "US" | "EU", (bytes: Uint8Array, rules: BinaryRules) => string[]> = {
    CN: () => ["CN.MessageFrame"],
    US: () => ["US.MessageFrame"],
    EU: (bytes, rules) => euTypes(bytes, rules).map((name) => `EU.${name}`),
};

export type DetectableRegion = keyof typeof wholeMessages;

/** The regions in the order that the first octets make likely, so that mostly the first one is all that is loaded. */
export function likelyRegions(bytes: Uint8Array): DetectableRegion[] {
    const isEu = bytes[0] >= 1 && bytes[0] <= 4 && bytes[1] in EU_MESSAGES;
    const isUs = bytes[0] === 0 && bytes[1] >= 18 && bytes[1] <= 43;
    return isEu ? ["EU", "US", "CN"] : isUs ? ["US", "CN", "EU"] : ["CN", "US", "EU"];
}

/** What the first octets show without a doubt; CN's frames begin with nothing of their own. */
export function likelyType(bytes: Uint8Array): string | null {
    const [region] = likelyRegions(bytes);
    if (region === "EU") return `EU.${EU_MESSAGES[bytes[1]][0]}`;
    return region === "US" ? "US.MessageFrame" : null;
}

function messageId(value: Value): number | undefined {
    const header = (value as { header?: { messageID?: number } } | null)?.header;
    return header?.messageID;
}

function fits(codec: Codec, type: string, bytes: Uint8Array, rules: BinaryRules): boolean {
    try {
        const { bits, error } = codec.explain(type, bytes, rules);
        if (error || bits.some(({ kind }) => kind === "trailing")) return false;
        const value = codec.decode(type, bytes, rules);
        const id = type.startsWith("EU.") ? messageId(value) : undefined;
        if (id !== undefined && !EU_MESSAGES[id]?.includes(type.slice(3))) return false;
        return codec.check(type, value) === null;
    } catch {
        return false;
    }
}

export interface Loader {
    codec: Codec;
    need(region: Region): Promise<void>;
}

/** Loads regions as it needs them. UPER comes first: it is what stations send. */
export async function detect(loader: Loader, bytes: Uint8Array, allowed: BinaryRules[]): Promise<Found | null> {
    if (bytes.length === 0) return null;
    const regions = likelyRegions(bytes);
    for (const rules of allowed)
        for (const region of regions) {
            const types = wholeMessages[region](bytes, rules);
            if (types.length === 0) continue;
            await loader.need(region);
            const type = types.find((name) => fits(loader.codec, name, bytes, rules));
            if (type) return { type, rules };
        }
    return null;
}

/** The same for a value that came as text, for which its outermost names tell. */
const BY_NAME: Record<string, string> = {
    cam: "EU.CAM",
    denm: "EU.DENM",
    cpm: "EU.CPM",
    vam: "EU.VAM",
    ivi: "EU.IVIM",
    map: "EU.MAPEM",
    spat: "EU.SPATEM",
    srm: "EU.SREM",
    ssm: "EU.SSEM",
    rtcmc: "EU.RTCMEM",
    bsmFrame: "CN.MessageFrame",
    mapFrame: "CN.MessageFrame",
    rsmFrame: "CN.MessageFrame",
    spatFrame: "CN.MessageFrame",
    rsiFrame: "CN.MessageFrame",
    messageId: "US.MessageFrame",
    coreData: "US.BasicSafetyMessage",
};

export function typeOfText(text: string): string | null {
    const start = text.slice(0, 4000);
    for (const [, quoted, tag, plain] of start.matchAll(
        /"([\w-]+)"\s*:|<([\w-]+)>|[{,\s]([a-z][\w-]*)\s*(?=[\s:{])/g,
    )) {
        const name = quoted ?? tag ?? plain;
        if (Object.hasOwn(BY_NAME, name)) return BY_NAME[name];
    }
    return null;
}

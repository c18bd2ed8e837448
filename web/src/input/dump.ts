// SPDX-License-Identifier: Apache-2.0
// Dumps as xxd, hexdump -C and Wireshark write them: an offset, octets, and perhaps their characters.

const ROW = /^([0-9a-fA-F]{4,8})(:?)\s+(\S.*)$/;
const OCTETS_IN_ROW = 16;

/** Octets in groups are xxd's, with a colon: without one they are words of the machine, or the message itself. */
function octetsOf(rest: string, isGrouped: boolean): string {
    const octets = isGrouped ? /^([0-9a-fA-F]{2}){1,4}$/ : /^[0-9a-fA-F]{2}$/;
    let digits = "";
    for (const token of rest
        .split(/\||\s{3,}/)[0]
        .trim()
        .split(/\s+/)) {
        if (!octets.test(token) || digits.length + token.length > 2 * OCTETS_IN_ROW) break;
        digits += token;
    }
    return digits;
}

/** The digits alone, or null if this is no dump: each offset is the number of octets before it. */
export function undump(text: string): string | null {
    let digits = "";
    for (const line of text.split("\n")) {
        if (line.trim() === "") continue;
        const row = ROW.exec(line.trim());
        const offset = Number.parseInt(row?.[1] ?? line, 16);
        if (offset !== digits.length / 2) return null;
        if (!row) return digits === "" ? null : digits; // hexdump ends with an offset alone
        const octets = octetsOf(row[3], row[2] !== "");
        if (octets === "") return null;
        digits += octets;
    }
    return digits === "" ? null : digits;
}

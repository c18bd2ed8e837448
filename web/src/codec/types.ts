// SPDX-License-Identifier: Apache-2.0
// What the rest of the page knows of encoding rules and regions.
import type { Region, Rules, TextRules } from "orlenta";

export type BinaryRules = Exclude<Rules, TextRules>;

export const BINARY: BinaryRules[] = ["uper", "aper", "oer", "ber", "der"];
export const TEXT: TextRules[] = ["jer", "xer", "gser"];
export const RULES: Rules[] = [...BINARY, ...TEXT];
export const REGIONS: Region[] = ["CN", "EU", "US", "RRC"];

export const RULE_NAMES: Record<Rules, string> = {
    uper: "UPER",
    aper: "APER",
    oer: "OER",
    ber: "BER",
    der: "DER",
    jer: "JER, JSON",
    xer: "XER, XML",
    gser: "GSER",
};

export function isText(rules: Rules): rules is TextRules {
    return (TEXT as Rules[]).includes(rules);
}

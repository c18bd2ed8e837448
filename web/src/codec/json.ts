// SPDX-License-Identifier: Apache-2.0
// Values as JSON text; a bigint is a number there, of as many digits as it has.
import type { Value } from "orlenta";

export function jsonText(value: Value): string {
    if (typeof value === "bigint") return String(value);
    if (Array.isArray(value)) return `[${value.map(jsonText).join(",")}]`;
    if (value === null || typeof value !== "object") return JSON.stringify(value);
    const members = Object.entries(value).map(([name, member]) => `${JSON.stringify(name)}:${jsonText(member)}`);
    return `{${members.join(",")}}`;
}

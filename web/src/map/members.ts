// SPDX-License-Identifier: Apache-2.0
// Members of values that may be of any shape: messages of other people's schemas are shown as far as names agree.
import type { Value } from "orlenta";

export type Members = { [name: string]: Value };

export function members(value: Value | undefined): Members {
    return value !== null && typeof value === "object" && !Array.isArray(value) ? value : {};
}

export function list(value: Value | undefined): Value[] {
    return Array.isArray(value) ? value : [];
}

export function number(value: Value | undefined): number | undefined {
    return typeof value === "number" ? value : typeof value === "bigint" ? Number(value) : undefined;
}

export function text(value: Value | undefined): string {
    return typeof value === "string" || typeof value === "number" || typeof value === "bigint" ? String(value) : "";
}

/** A quantity in its unit, unless it has the value that stands for "unavailable". */
export function quantity(value: Value | undefined, scale: number, unavailable: number): number | undefined {
    const plain = number(value);
    return plain === undefined || plain === unavailable ? undefined : plain * scale;
}

/** The only member of a CHOICE. */
export function chosen(value: Value | undefined): [string, Value] {
    return Object.entries(members(value))[0] ?? ["", null];
}

// SPDX-License-Identifier: Apache-2.0
// Values without components as text, and what their numbers stand for.
import type { TypeInfo, Value } from "orlenta";
import { reading } from "orlenta/units";

const MOST_BITS = 64;
const LONGEST = 120;

/** A BIT STRING's hexadecimal digits, and how many bits of them count. */
function bitString(value: Value, { lower }: TypeInfo): { value: string; length: number } {
    if (typeof value === "string") return { value, length: Number(lower ?? value.length * 4) };
    return value as { value: string; length: number };
}

export function binaryDigits(bits: Value, type: TypeInfo): string {
    const { value, length } = bitString(bits, type);
    const digits = [...value].map((digit) => Number.parseInt(digit, 16).toString(2).padStart(4, "0"));
    return digits.join("").slice(0, length);
}

function bitsText(bits: Value, type: TypeInfo): string {
    const { value, length } = bitString(bits, type);
    return length > MOST_BITS ? `'${value}'H, ${length} bits` : `'${binaryDigits(bits, type)}'B`;
}

export function isContainer(value: Value | undefined, type: TypeInfo | undefined): boolean {
    return value !== null && typeof value === "object" && type?.kind !== "BIT STRING";
}

export function leafText(value: Value, type: TypeInfo | undefined): string {
    switch (type?.kind) {
        case "NULL":
            return "NULL";
        case "BIT STRING":
            return bitsText(value, type);
        case "OCTET STRING":
            return value === "" ? "empty" : String(value);
        case "string":
            return JSON.stringify(value);
        default:
            return value === null ? "NULL" : String(value);
    }
}

export function shortened(text: string): string {
    return text.length > LONGEST ? `${text.slice(0, LONGEST)}…` : text;
}

const SIGNS: [sign: RegExp, typeset: string][] = [
    [/\bdeg\b/, "°"],
    [/\^2/, "²"],
    [/\^3/, "³"],
];

function typeset(quantity: string, unit: string): string {
    const text = SIGNS.reduce((part, [sign, by]) => part.replace(sign, by), unit);
    return text.startsWith("°") ? quantity + text : `${quantity} ${text}`.trim();
}

/** The quantity that an INTEGER stands for, or what a number of it means. */
export function meaning(value: Value, type: TypeInfo | undefined): string {
    if (!type?.unit || (typeof value !== "number" && typeof value !== "bigint")) return "";
    const { physical, meaning: named = "" } = reading(type.unit, value);
    if (physical === undefined) return named;
    const { unit, scale, offset } = type.unit;
    return `${typeset(scale === 1 && offset === 0 ? "" : physical, unit)} ${named}`.trim();
}

export function boundsText({ kind, lower, upper, isExtensible }: TypeInfo): string {
    if (lower === undefined && upper === undefined) return "";
    const bounds = lower === upper ? `${lower}` : `${lower ?? "MIN"}..${upper ?? "MAX"}`;
    const range = isExtensible ? `${bounds}, ...` : bounds;
    return kind === "INTEGER" ? `(${range})` : `(SIZE ${range})`;
}

export function typeText(type: TypeInfo): string {
    const name = type.name?.slice(type.name.lastIndexOf(".") + 1);
    return name ?? (type.kind === "string" ? (type.stringType ?? "string") : type.kind);
}

// SPDX-License-Identifier: Apache-2.0
// The smallest value of a type, for parts that are added by hand.
import type { Codec, TypeInfo, Value } from "orlenta";

const LONGEST_LIST = 64;

function integer({ lower, upper }: TypeInfo): Value {
    if (lower !== undefined && lower > 0) return lower;
    if (upper !== undefined && upper < 0) return upper;
    return 0;
}

function bitString({ lower = 0, upper, isExtensible }: TypeInfo): Value {
    const value = "00".repeat(Math.ceil(Number(lower) / 8));
    return lower === upper && !isExtensible ? value : { value, length: Number(lower) };
}

/** `nested` are the types on the way here, which a type that holds itself would otherwise repeat without end. */
export function minimalValue(type: TypeInfo, nested: TypeInfo[] = []): Value {
    if (nested.includes(type)) return null;
    const inside = [...nested, type];
    switch (type.kind) {
        case "BOOLEAN":
            return false;
        case "INTEGER":
            return integer(type);
        case "REAL":
            return 0;
        case "ENUMERATED":
            return type.items?.[0]?.name ?? "";
        case "BIT STRING":
            return bitString(type);
        case "OCTET STRING":
            return "00".repeat(Number(type.lower ?? 0));
        case "OBJECT IDENTIFIER":
            return "1.0";
        case "RELATIVE-OID":
            return "0";
        case "string":
            return (type.stringType === "NumericString" ? "0" : "A").repeat(Number(type.lower ?? 0));
        case "SEQUENCE":
        case "SET": {
            const needed = (type.components ?? []).filter(
                ({ presence, isAddition }) => presence === "mandatory" && !isAddition,
            );
            return Object.fromEntries(
                needed.map((component) => [component.name, minimalValue(component.type, inside)]),
            );
        }
        case "SEQUENCE OF":
        case "SET OF": {
            const length = Math.min(Number(type.lower ?? 0), LONGEST_LIST);
            const element = type.element;
            return element ? Array.from({ length }, () => minimalValue(element, inside)) : [];
        }
        case "CHOICE": {
            const first = type.alternatives?.[0];
            return first ? { [first.name]: minimalValue(first.type, inside) } : {};
        }
        case "open type":
            return {}; // fits a SEQUENCE whose components are all optional, as extensions mostly have
        default:
            return null;
    }
}

/** What an open type holds hangs on components beside it, which a smallest value cannot know. */
function holdsOpenType(type: TypeInfo, nested: TypeInfo[] = []): boolean {
    if (type.kind === "open type") return true;
    if (nested.includes(type)) return false;
    const parts = [...(type.components ?? []), ...(type.alternatives ?? [])].map((part) => part.type);
    return [...parts, ...(type.element ? [type.element] : [])].some((part) => holdsOpenType(part, [...nested, type]));
}

const MOST_TRIES = 50;

/** What the library makes of a component, in a value of the type that it is of. */
function sampleOf(codec: Codec, type: string, name: string): Value | undefined {
    for (let seed = 1; seed <= MOST_TRIES; seed++) {
        const part = (codec.random(type, seed) as { [name: string]: Value } | null)?.[name];
        if (part !== undefined) return part;
    }
    return undefined;
}

/** A small value for a part that is added; the library makes it where the smallest one does not do. */
export function freshValue(codec: Codec, type: TypeInfo, holder?: TypeInfo, name = ""): Value {
    const value = minimalValue(type);
    try {
        if (type.name) return codec.check(type.name, value) ? codec.random(type.name) : value;
        if (holder?.name && holdsOpenType(type)) return sampleOf(codec, holder.name, name) ?? value;
    } catch {
        // What it lacks, encoding tells.
    }
    return value;
}

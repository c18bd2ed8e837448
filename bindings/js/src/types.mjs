// SPDX-License-Identifier: Apache-2.0
// Types by name, in one module or several, and what they are made of.
import { UnknownType } from "./errors.mjs";

// By ASN1_KIND_... and ASN1_STRING_... of <orlenta/type.h>.
const KINDS = [
    "SEQUENCE", "SEQUENCE OF", "SET", "SET OF", "CHOICE", "INTEGER", "BOOLEAN", "BIT STRING", "OCTET STRING",
    "ENUMERATED", "NULL", "", "OBJECT IDENTIFIER", "RELATIVE-OID", "REAL", "string", "open type",
];
const STRINGS = [
    "NumericString", "PrintableString", "VisibleString", "IA5String", "BMPString", "UniversalString", "UTF8String",
    "GeneralString", "GraphicString", "TeletexString", "VideotexString",
];

// [Region.][Module.]Type; the module only where the region has several of the name.
export class Names {
    #counts = new Map();

    constructor(entries) {
        for (const { region, name } of entries) {
            const key = `${region}.${name}`;
            this.#counts.set(key, (this.#counts.get(key) ?? 0) + 1);
        }
    }

    of({ region, module, name }) {
        const isOnly = this.#counts.get(`${region}.${name}`) === 1;
        return [region, isOnly ? "" : module, name].filter((part) => part).join(".");
    }
}

function distance(a, b) {
    let row = Array.from({ length: b.length + 1 }, (_, i) => i);
    for (let i = 1; i <= a.length; i++) {
        const next = [i];
        for (let j = 1; j <= b.length; j++)
            next.push(Math.min(row[j] + 1, next[j - 1] + 1, row[j - 1] + (a[i - 1] === b[j - 1] ? 0 : 1)));
        row = next;
    }
    return row[b.length];
}

export function nearestNames(names, name) {
    const wanted = name.toLowerCase();
    const last = (text) => text.slice(text.lastIndexOf(".") + 1);
    return names
        .map((candidate) => {
            const text = candidate.toLowerCase();
            return { candidate, far: Math.min(distance(text, wanted), distance(last(text), last(wanted))) };
        })
        .filter(({ far }) => far <= Math.max(2, last(wanted).length / 3))
        .sort((a, b) => a.far - b.far)
        .slice(0, 3)
        .map(({ candidate }) => candidate);
}

// The module that has the type, and its descriptor.
export function findType(modules, name, names) {
    let hit;
    let found = 0;
    for (const module of modules) {
        const here = module.find(name);
        found += here.found;
        if (here.type !== 0) hit = { module, type: here.type };
    }
    if (hit && found === 1) return hit;
    if (found > 1) throw new UnknownType(`several types are called ${name}`, nearestNames(names, name));
    throw new UnknownType(`no type ${name}`, nearestNames(names, name));
}

// What the type at an address is made of. Types inside are made when they are looked at, and once.
export function typeInfo(module, names, address, known) {
    if (known.has(address)) return known.get(address);
    const { kind, stringType, region, module: from, name, ...info } = module.describe(address);
    const inside = (part) => ({
        ...part,
        get type() {
            return typeInfo(module, names, part.type, known);
        },
    });
    info.kind = KINDS[kind];
    if (info.kind === "string") info.stringType = STRINGS[stringType];
    if (name) info.name = names.of({ region, module: from, name });
    if (info.components) info.components = info.components.map(inside);
    if (info.alternatives) info.alternatives = info.alternatives.map(inside);
    if (info.element !== undefined) {
        const element = info.element;
        Object.defineProperty(info, "element", {
            enumerable: true,
            get: () => typeInfo(module, names, element, known),
        });
    }
    known.set(address, info);
    return info;
}

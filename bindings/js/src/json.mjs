// SPDX-License-Identifier: Apache-2.0
// Values between JSON text and objects. An INTEGER that is wide by its type comes as {"":"123"}, since no component has an
// empty name, and becomes a BigInt; it goes back as plain digits.
import { ofBreakdown } from "./errors.mjs";

const unwrap = (name, value) =>
    value !== null && typeof value === "object" && "" in value ? BigInt(value[""]) : value;

export function parse(text) {
    return text.includes('{"":') ? JSON.parse(text, unwrap) : JSON.parse(text);
}

// A fraction is read as such only before an exponent, and so is an integer of more than 64 bits.
function printNumber(value) {
    if (Number.isNaN(value)) return '"NaN"';
    if (!Number.isFinite(value)) return value > 0 ? '"INF"' : '"-INF"';
    if (Number.isSafeInteger(value)) return String(value);
    return Number.isInteger(value) && Math.abs(value) < 2 ** 63 ? String(BigInt(value)) : value.toExponential();
}

const isComposite = (value) => value !== null && typeof value === "object";

// Names or indices, and what stands there. Elements that an array lacks are undefined.
function partsOf(value) {
    if (Array.isArray(value)) return Array.from(value).entries();
    return Object.entries(value).filter(([, member]) => member !== undefined);
}

// Every part begins a line, and so does what comes behind it: by the line of an error placeOfLine() knows the part.
function put(value) {
    if (typeof value === "number") return printNumber(value);
    if (typeof value === "string") return JSON.stringify(value);
    if (!isComposite(value)) return ["bigint", "boolean", "object"].includes(typeof value) ? String(value) : typeof value;
    const isArray = Array.isArray(value);
    let text = "";
    for (const [name, part] of partsOf(value))
        text += `${text && ","}\n${isArray ? "" : `${JSON.stringify(name)}:`}${put(part)}\n`;
    return isArray ? `[${text}]` : `{${text}}`;
}

// What JSON does not have becomes a word that the library finds to be no value.
export function print(value) {
    try {
        return `${put(value)}\n`;
    } catch (error) {
        throw ofBreakdown(error);
    }
}

const MOST_STEPS = 32; // of a path, as the library has it

const below = (path, name) => (typeof name === "number" ? `${path}[${name}]` : `${path}${path && "."}${name}`);

// The path of what stands at a line of print(object), or right before that.
export function placeOfLine(object, line) {
    let at = 1;
    const search = (value, path) => {
        if (at === line) return path;
        if (!isComposite(value)) return undefined;
        for (const [name, part] of partsOf(value)) {
            at += 1;
            const found = search(part, below(path, name));
            if (found !== undefined) return found;
            at += 1;
            if (at === line) return below(path, name);
        }
        return undefined;
    };
    const steps = (search(object, "") ?? "").split(/(?=[.[])/);
    return steps.length > MOST_STEPS ? `(...)${steps.slice(-MOST_STEPS).join("")}` : steps.join("");
}

// The path of a text beyond ASCII that is another one in `copy`.
export function placeOfLostText(object, copy, path = "") {
    if (typeof object === "string") return object === copy || !/[^\0-\x7f]/.test(object) ? undefined : path;
    if (!isComposite(object)) return undefined;
    for (const [name, part] of partsOf(object)) {
        const found = placeOfLostText(part, copy?.[name], below(path, name));
        if (found !== undefined) return found;
    }
    return undefined;
}

// SPDX-License-Identifier: Apache-2.0
// Values between JSON text and objects. An INTEGER that is wide by its type comes as {"":"123"}, since no component has an
// empty name, and becomes a BigInt; it goes back as plain digits.

const unwrap = (name, value) =>
    value !== null && typeof value === "object" && "" in value ? BigInt(value[""]) : value;

export function parse(text) {
    return text.includes('{"":') ? JSON.parse(text, unwrap) : JSON.parse(text);
}

// A fraction is read as such only before an exponent.
function printNumber(value) {
    if (Number.isNaN(value)) return '"NaN"';
    if (!Number.isFinite(value)) return value > 0 ? '"INF"' : '"-INF"';
    if (Object.is(value, -0)) return '"-0"';
    return Number.isInteger(value) ? String(value) : value.toExponential();
}

export function print(value) {
    switch (typeof value) {
        case "number": return printNumber(value);
        case "bigint": return String(value);
        case "object":
            if (value === null) return "null";
            if (Array.isArray(value)) return `[${value.map(print).join(",")}]`;
            return `{${Object.entries(value)
                .filter(([, member]) => member !== undefined)
                .map(([name, member]) => `${JSON.stringify(name)}:${print(member)}`)
                .join(",")}}`;
        case "undefined":
        case "function":
        case "symbol": throw new TypeError(`no value of ASN.1: ${typeof value}`);
        default: return JSON.stringify(value);
    }
}

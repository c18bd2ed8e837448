// SPDX-License-Identifier: Apache-2.0
// Input of values without components: a choice where there are names to choose from, a line of text elsewhere.
import type { TypeInfo, Value } from "orlenta";
import { h } from "./dom";
import { boundsText } from "./value-text";

const NOT_A_VALUE = Symbol("not a value");

function integerFrom(text: string, { lower, upper }: TypeInfo): Value | typeof NOT_A_VALUE {
    if (!/^[+-]?\d+$/.test(text)) return NOT_A_VALUE;
    const wide = BigInt(text);
    if ((lower !== undefined && wide < BigInt(lower)) || (upper !== undefined && wide > BigInt(upper)))
        return NOT_A_VALUE;
    const number = Number(wide);
    return Number.isSafeInteger(number) ? number : wide;
}

function bitsFrom(text: string, type: TypeInfo): Value | typeof NOT_A_VALUE {
    const bits = text.replace(/[\s'B]/g, "");
    if (!/^[01]*$/.test(bits)) return NOT_A_VALUE;
    const nibbles = bits.padEnd(Math.ceil(bits.length / 8) * 8, "0").match(/.{4}/g) ?? [];
    const value = nibbles.map((nibble) => Number.parseInt(nibble, 2).toString(16)).join("");
    if (type.lower !== type.upper || type.isExtensible) return { value, length: bits.length };
    return bits.length === Number(type.lower) ? value : NOT_A_VALUE;
}

export function valueFrom(text: string, type: TypeInfo): Value | typeof NOT_A_VALUE {
    switch (type.kind) {
        case "INTEGER":
            return integerFrom(text.trim(), type);
        case "REAL": {
            if (/^-?(INF|NaN)$/.test(text)) return text;
            return text.trim() === "" || Number.isNaN(Number(text)) ? NOT_A_VALUE : Number(text);
        }
        case "BIT STRING":
            return bitsFrom(text, type);
        case "OCTET STRING": {
            const digits = text.replace(/\s/g, "");
            return /^([0-9a-fA-F]{2})*$/.test(digits) ? digits : NOT_A_VALUE;
        }
        case "OBJECT IDENTIFIER":
        case "RELATIVE-OID":
            return /^\d+(\.\d+)*$/.test(text.trim()) ? text.trim() : NOT_A_VALUE;
        default:
            return text;
    }
}

function bitsOf(value: Value, type: TypeInfo): string {
    const { value: hex, length } =
        typeof value === "string"
            ? { value, length: Number(type.lower) }
            : (value as { value: string; length: number });
    return [...hex]
        .map((digit) => Number.parseInt(digit, 16).toString(2).padStart(4, "0"))
        .join("")
        .slice(0, length);
}

function choice(names: string[], current: string, commit: (name: string) => void, cancel: () => void): HTMLElement {
    const select = h(
        "select",
        { class: "edit" },
        ...names.map((name) => h("option", { selected: name === current }, name)),
    );
    select.addEventListener("change", () => commit(select.value));
    select.addEventListener("blur", cancel);
    select.addEventListener("keydown", (event) => {
        event.stopPropagation();
        if (event.key === "Escape") cancel();
    });
    return select;
}

/** Null where there is nothing to edit. `commit` gets values that are of the type. */
export function editor(
    type: TypeInfo,
    value: Value,
    commit: (value: Value) => void,
    cancel: () => void,
): HTMLElement | null {
    if (type.kind === "NULL" || type.kind === "open type") return null;
    if (type.kind === "ENUMERATED")
        return choice(
            (type.items ?? []).map(({ name }) => name),
            String(value),
            commit,
            cancel,
        );
    if (type.kind === "BOOLEAN")
        return choice(["false", "true"], String(value), (name) => commit(name === "true"), cancel);

    const before = type.kind === "BIT STRING" ? bitsOf(value, type) : String(value);
    const input = h("input", { class: "edit", spellcheck: "false", title: boundsText(type), value: before });
    if (type.kind === "INTEGER") input.inputMode = type.lower !== undefined && type.lower >= 0 ? "numeric" : "text";
    let isOver = false;
    const finish = () => {
        if (isOver) return;
        const after = valueFrom(input.value, type);
        isOver = true;
        if (input.value === before || typeof after === "symbol") cancel();
        else commit(after as Value);
    };
    input.addEventListener("input", () => {
        const isBad = typeof valueFrom(input.value, type) === "symbol";
        input.setCustomValidity(isBad ? `not of this type ${boundsText(type)}` : "");
        input.reportValidity();
    });
    input.addEventListener("keydown", (event) => {
        event.stopPropagation();
        if (event.key === "Escape") {
            isOver = true;
            cancel();
        }
        if (event.key === "Enter") input.validity.valid ? finish() : input.reportValidity();
        if (type.kind === "INTEGER" && (event.key === "ArrowUp" || event.key === "ArrowDown")) {
            event.preventDefault();
            const next = valueFrom(
                String(BigInt(/^[+-]?\d+$/.test(input.value) ? input.value : 0) + (event.key === "ArrowUp" ? 1n : -1n)),
                type,
            );
            if (typeof next !== "symbol") input.value = String(next);
        }
    });
    input.addEventListener("blur", finish);
    return input;
}

// SPDX-License-Identifier: Apache-2.0
// Input of values without components: a choice where there are names to choose from, a line of text elsewhere.
import type { TypeInfo, Value } from "orlenta";
import { h } from "./dom";
import { binaryDigits, boundsText } from "./value-text";

const NOT_A_VALUE = Symbol("not a value");

function integerFrom(text: string, { lower, upper, isExtensible }: TypeInfo): Value | typeof NOT_A_VALUE {
    if (!/^[+-]?\d+$/.test(text)) return NOT_A_VALUE;
    const wide = BigInt(text);
    const isBeyond = (lower !== undefined && wide < BigInt(lower)) || (upper !== undefined && wide > BigInt(upper));
    if (isBeyond && !isExtensible) return NOT_A_VALUE;
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
            if (/^(-?INF|NaN)$/.test(text)) return text;
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

export interface Outcome {
    /** Gets values that are of the type. */
    commit(value: Value): void;
    /** By a key the focus goes back to where it was; it has gone elsewhere already otherwise. */
    cancel(isByKey: boolean): void;
}

/** A field that is taken away loses the focus, which must not end the edit a second time. */
function onlyOnce({ commit, cancel }: Outcome): Outcome {
    let isOver = false;
    const once = (work: () => void) => {
        if (isOver) return;
        isOver = true;
        work();
    };
    return { commit: (value) => once(() => commit(value)), cancel: (isByKey) => once(() => cancel(isByKey)) };
}

function choice(names: string[], current: string, { commit, cancel }: Outcome): HTMLElement {
    const select = h(
        "select",
        { class: "edit" },
        ...names.map((name) => h("option", { selected: name === current }, name)),
    );
    select.addEventListener("change", () => commit(select.value));
    select.addEventListener("blur", () => cancel(false));
    select.addEventListener("keydown", (event) => {
        event.stopPropagation();
        if (event.key === "Escape") cancel(true);
    });
    return select;
}

function line(type: TypeInfo, value: Value, { commit, cancel }: Outcome): HTMLElement {
    const text = type.kind === "BIT STRING" ? binaryDigits(value, type) : String(value);
    const input = h("input", { class: "edit", spellcheck: "false", title: boundsText(type), value: text });
    const before = input.value; // a line has no line breaks, the text may have
    if (type.kind === "INTEGER") input.inputMode = type.lower !== undefined && type.lower >= 0 ? "numeric" : "text";
    const validate = () => {
        const isBad = typeof valueFrom(input.value, type) === "symbol";
        input.setCustomValidity(isBad ? `not of this type ${boundsText(type)}` : "");
        return input.reportValidity();
    };
    const finish = (isByKey: boolean) => {
        const after = valueFrom(input.value, type);
        if (input.value === before || typeof after === "symbol") cancel(isByKey);
        else commit(after);
    };
    const step = (by: bigint) => {
        const number = /^[+-]?\d+$/.test(input.value) ? BigInt(input.value) : 0n;
        const next = valueFrom(String(number + by), type);
        if (typeof next !== "symbol") input.value = String(next);
        validate();
    };
    input.addEventListener("input", validate);
    input.addEventListener("blur", () => finish(false));
    input.addEventListener("keydown", (event) => {
        event.stopPropagation();
        if (event.key === "Escape") cancel(true);
        if (event.key === "Enter" && validate()) finish(true);
        if (type.kind === "INTEGER" && (event.key === "ArrowUp" || event.key === "ArrowDown")) {
            event.preventDefault();
            step(event.key === "ArrowUp" ? 1n : -1n);
        }
    });
    return input;
}

/** Null where there is nothing to edit. */
export function editor(type: TypeInfo, value: Value, outcome: Outcome): HTMLElement | null {
    const { commit, cancel } = onlyOnce(outcome);
    switch (type.kind) {
        case "NULL":
        case "open type":
            return null;
        case "ENUMERATED": {
            const names = (type.items ?? []).map(({ name }) => name);
            return choice(names, String(value), { commit, cancel });
        }
        case "BOOLEAN":
            return choice(["false", "true"], String(value), { commit: (name) => commit(name === "true"), cancel });
        default:
            return line(type, value, { commit, cancel });
    }
}

// SPDX-License-Identifier: Apache-2.0
// A value under all rules, each with its size.
import type { Codec, Rules } from "orlenta";
import { isText, RULE_NAMES, RULES } from "../codec/types";
import { toHex } from "../input/bytes";
import { h } from "./dom";

export interface Encoded {
    rules: Rules;
    /** Hexadecimal digits or text. */
    text: string;
    octets: number;
    error?: string;
}

const PREVIEW = 600;

export function encodeAll(codec: Codec, type: string, data: Uint8Array | string, from: Rules): Encoded[] {
    return RULES.map((rules) => {
        try {
            const out = codec.convert(type, data, from, rules, isText(rules) ? 2 : 0);
            if (typeof out !== "string") return { rules, text: toHex(out), octets: out.length };
            const compact = codec.convert(type, data, from, rules, 0) as string;
            return { rules, text: out, octets: new TextEncoder().encode(compact).length };
        } catch (error) {
            return { rules, text: "", octets: 0, error: (error as Error).message };
        }
    });
}

export interface EncodingEvents {
    onCopy(text: string): void;
    /** The message is to be shown under these rules. */
    onUse(encoded: Encoded): void;
}

export function showEncodings(host: HTMLElement, all: Encoded[], current: Rules | null, events: EncodingEvents): void {
    const most = Math.max(1, ...all.map(({ octets }) => octets));
    const openBefore = new Set(
        [...host.querySelectorAll<HTMLDetailsElement>("details[open]")].map(({ dataset }) => dataset.rules),
    );
    host.replaceChildren(
        ...all.map((encoded) => {
            const { rules, text, octets, error } = encoded;
            const bar = h("span", { class: "bar" });
            bar.style.setProperty("--part", String(octets / most));
            const head = h(
                "summary",
                {},
                h("span", { class: "rules" }, RULE_NAMES[rules]),
                h("span", { class: "size" }, error ? "–" : `${octets} B`),
                bar,
            );
            const body = error
                ? h("p", { class: "why" }, error)
                : h("pre", {}, text.length > PREVIEW && !isText(rules) ? `${text.slice(0, PREVIEW)}…` : text);
            const buttons = h(
                "div",
                { class: "buttons" },
                h("button", { click: () => events.onCopy(text), disabled: error !== undefined }, "Copy"),
                h(
                    "button",
                    { click: () => events.onUse(encoded), disabled: error !== undefined || rules === current },
                    "Show as message",
                ),
            );
            const isOpen = openBefore.has(rules);
            return h(
                "details",
                { "data-rules": rules, class: rules === current ? "current" : "", open: isOpen },
                head,
                body,
                buttons,
            );
        }),
    );
}

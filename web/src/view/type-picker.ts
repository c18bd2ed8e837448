// SPDX-License-Identifier: Apache-2.0
// Search for a type: a line of text with the types whose names contain it.
import type { TypeEntry } from "orlenta";
import { h, scrollWithin } from "./dom";

export const AUTO = "auto";

export interface PickerEvents {
    /** All types, whole messages first; loads what is not there yet. */
    types(): Promise<TypeEntry[]>;
    onPick(name: string): void;
}

export interface Picker {
    show(name: string, found: string | null): void;
    focus(): void;
}

const MOST_SHOWN = 60;
const AUTO_TEXT = "found by itself";

const lastName = (name: string) => name.slice(name.lastIndexOf(".") + 1);

/** BSM of BasicSafetyMessage: what people call it. */
const initials = (name: string) =>
    lastName(name)
        .replace(/[^A-Z]/g, "")
        .toLowerCase();

/** The place in the list by how well a type fits the pattern; null if it does not. */
function rank({ name, isRoot }: TypeEntry, pattern: string): number | null {
    const last = lastName(name).toLowerCase();
    if (pattern !== "" && [last, name.toLowerCase(), initials(name)].includes(pattern)) return 0;
    if (!name.toLowerCase().includes(pattern)) return null;
    if (/MessageFrame$/.test(name)) return 1;
    const starts = last.startsWith(pattern) ? 0 : 1;
    return (isRoot ? 2 : 4) + starts;
}

export function createPicker(input: HTMLInputElement, list: HTMLElement, events: PickerEvents): Picker {
    let current = AUTO;
    let found: string | null = null;
    let names: string[] = [];
    let active = 0;

    const label = () => (current === AUTO ? (found ?? "") : current);

    function close(): void {
        list.hidden = true;
        input.setAttribute("aria-expanded", "false");
        input.value = label();
    }

    function pick(name: string): void {
        current = name;
        if (name === AUTO) found = null;
        input.blur();
        events.onPick(name);
    }

    function paint(): void {
        [...list.children].forEach((option, i) => {
            option.setAttribute("aria-selected", String(i === active));
            if (i === active) {
                scrollWithin(list, option);
                input.setAttribute("aria-activedescendant", option.id);
            }
        });
    }

    async function open(): Promise<void> {
        list.hidden = false;
        input.setAttribute("aria-expanded", "true");
        const all = await events.types();
        if (list.hidden) return;
        const pattern = input.value === label() ? "" : input.value.trim().toLowerCase();
        const hits = all
            .map((entry) => ({ name: entry.name, at: rank(entry, pattern) }))
            .filter((hit): hit is { name: string; at: number } => hit.at !== null)
            .sort((a, b) => a.at - b.at || a.name.length - b.name.length || (a.name < b.name ? -1 : 1));
        names = [AUTO, ...hits.slice(0, MOST_SHOWN).map(({ name }) => name)];
        active = pattern !== "" && names.length > 1 ? 1 : 0;
        list.replaceChildren(
            ...names.map((name, i) => {
                const [region, rest] = name === AUTO ? ["", AUTO_TEXT] : splitName(name);
                const option = h(
                    "li",
                    { role: "option", id: `type-${i}` },
                    h("span", { class: "region" }, region),
                    rest,
                );
                option.addEventListener("click", () => pick(name));
                return option;
            }),
        );
        if (hits.length > MOST_SHOWN)
            list.append(h("li", { class: "more" }, `… ${hits.length - MOST_SHOWN} more: type to narrow`));
        if (hits.length === 0) list.append(h("li", { class: "more" }, "no type has this in its name"));
        paint();
    }

    input.addEventListener("focus", () => {
        input.select();
        void open();
    });
    input.addEventListener("input", () => void open());
    input.addEventListener("blur", close);
    list.addEventListener("mousedown", (event) => event.preventDefault()); // the field keeps the focus, and the list
    input.addEventListener("keydown", (event) => {
        const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
        if (step !== undefined) {
            event.preventDefault();
            if (list.hidden) void open();
            active = Math.min(Math.max(active + step, 0), names.length - 1);
            paint();
        } else if (event.key === "Enter" && !list.hidden && names[active]) {
            pick(names[active]);
        } else if (event.key === "Escape") input.blur();
    });

    return {
        show(name, detected) {
            current = name;
            found = detected;
            if (document.activeElement !== input) input.value = label();
            input.placeholder = AUTO_TEXT;
            input.classList.toggle("found", name === AUTO && detected !== null);
        },
        focus: () => input.focus(),
    };
}

function splitName(name: string): [string, string] {
    const dot = name.indexOf(".");
    return dot < 0 ? ["", name] : [name.slice(0, dot), name.slice(dot + 1)];
}

// SPDX-License-Identifier: Apache-2.0
// The messages of a log. Only the rows in sight exist.
import type { Summary } from "../log/summary";
import { h } from "./dom";

export interface ListView {
    show(messages: Summary[], current: number): void;
}

const ROW = 26;
const SPARE = 8;

function timeText(time: number | undefined): string {
    if (time === undefined) return "";
    if (time > 1e11) return new Date(time).toISOString().slice(11, 23);
    return (time / 1000).toFixed(3);
}

export function createList(host: HTMLElement, onPick: (index: number) => void): ListView {
    let messages: Summary[] = [];
    let current = 0;
    let drawn = "";
    const inner = h("div", { class: "list-inner" });
    host.replaceChildren(inner);
    host.tabIndex = 0;
    host.setAttribute("role", "listbox");
    host.setAttribute("aria-label", "messages");

    function row(index: number): HTMLElement {
        const { type, frame, label, error, time } = messages[index];
        const element = h(
            "div",
            {
                class: `message${index === current ? " current" : ""}${error ? " bad" : ""}`,
                id: `message-${index}`,
                role: "option",
                "aria-selected": String(index === current),
                title: error,
                click: () => onPick(index),
            },
            h("span", { class: "number" }, `${index + 1}`),
            h("span", { class: "time" }, timeText(time)),
            h("span", { class: "what" }, error ?? frame ?? type.slice(type.indexOf(".") + 1)),
            h("span", { class: "from" }, error ? "" : (label ?? "")),
        );
        element.style.top = `${index * ROW}px`;
        return element;
    }

    function render(): void {
        const first = Math.max(0, Math.floor(host.scrollTop / ROW) - SPARE);
        const last = Math.min(messages.length, Math.ceil((host.scrollTop + host.clientHeight) / ROW) + SPARE);
        inner.style.height = `${messages.length * ROW}px`;
        // Rows stay as they are while a log grows: a click on one that is replaced under the pointer would be lost.
        const next = `${first} ${last} ${current}`;
        if (next === drawn) return;
        drawn = next;
        host.setAttribute("aria-activedescendant", `message-${current}`);
        inner.replaceChildren(...Array.from({ length: Math.max(last - first, 0) }, (_, i) => row(first + i)));
    }

    host.addEventListener("scroll", render);
    new ResizeObserver(render).observe(host);
    host.addEventListener("keydown", (event) => {
        const page = Math.max(1, Math.floor(host.clientHeight / ROW) - 1);
        const to: Record<string, number> = {
            ArrowDown: current + 1,
            ArrowUp: current - 1,
            PageDown: current + page,
            PageUp: current - page,
            Home: 0,
            End: messages.length - 1,
        };
        if (to[event.key] === undefined) return;
        event.preventDefault();
        onPick(Math.min(Math.max(to[event.key], 0), messages.length - 1));
    });

    return {
        show(next, index) {
            const moved = index !== current || next !== messages;
            if (next !== messages) drawn = "";
            messages = next;
            current = index;
            if (moved) {
                const top = index * ROW;
                if (top < host.scrollTop) host.scrollTop = top;
                else if (top + ROW > host.scrollTop + host.clientHeight) host.scrollTop = top + ROW - host.clientHeight;
            }
            render();
        },
    };
}

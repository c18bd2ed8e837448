// SPDX-License-Identifier: Apache-2.0
// A text with numbered lines, of which those of a component light up and one may be wrong.
import { h, scrollWithin } from "./dom";

export interface TextView {
    /** `wrong` is a place in characters, or a line from 1. */
    show(text: string, wrong: { position: number } | { line: number } | null): void;
    /** Characters. */
    light(part: { start: number; end: number } | null): void;
}

const MOST_LINES = 5000;

export function createText(host: HTMLElement): TextView {
    let starts: number[] = [];
    let rows: HTMLElement[] = [];

    const lineOf = (position: number) => {
        let low = 0;
        let high = starts.length - 1;
        while (low < high) {
            const middle = (low + high + 1) >> 1;
            if (starts[middle] <= position) low = middle;
            else high = middle - 1;
        }
        return low;
    };

    return {
        show(text, wrong) {
            starts = [0];
            let end = text.indexOf("\n");
            for (; end >= 0 && starts.length < MOST_LINES; end = text.indexOf("\n", end + 1)) starts.push(end + 1);
            if (end < 0) end = text.length;
            rows = starts.map((start, i) =>
                h("div", { class: "line" }, text.slice(start, starts[i + 1] ?? end).replace(/\n$/, "")),
            );
            host.replaceChildren(...rows);
            if (end < text.length) host.append(h("div", { class: "hint" }, `… ${text.length - end} more characters`));
            if (!wrong) return;
            const line = "line" in wrong ? wrong.line - 1 : lineOf(wrong.position);
            const row = rows[line];
            if (!row) return;
            row.classList.add("wrong");
            if ("position" in wrong) {
                const column = wrong.position - starts[line];
                const content = row.textContent ?? "";
                const bad = h("mark", {}, content.slice(column, column + 1) || " ");
                row.replaceChildren(content.slice(0, column), bad, content.slice(column + 1));
            }
            scrollWithin(host, row);
        },
        light(part) {
            const [first, last] = part ? [lineOf(part.start), lineOf(Math.max(part.end - 1, part.start))] : [1, 0];
            rows.forEach((row, i) => row.classList.toggle("lit", i >= first && i <= last));
            if (part) scrollWithin(host, rows[first]);
        },
    };
}

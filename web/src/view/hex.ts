// SPDX-License-Identifier: Apache-2.0
// The octets of a message. Bits light up by component: each octet's cell is an eighth of its width a bit.
import type { Bits } from "orlenta";
import { isWithin } from "../codec/path";
import { h, scrollWithin } from "./dom";

export interface HexEvents {
    /** A run of bits that is pointed at; null for none. */
    onPoint(run: Bits | null): void;
    onPick(run: Bits): void;
}

export interface HexView {
    show(bytes: Uint8Array, runs: Bits[], errorBit: number | null): void;
    /** Lights up the bits of a component. */
    light(path: string | null): void;
    setBase(base: Base): void;
}

export type Base = "hex" | "bits";

const MOST_OCTETS = 16384;
const STRUCTURE = new Set(["extension", "presence", "index", "tag", "length", "fragment", "padding", "end"]);

function runAt(runs: Bits[], bit: number): Bits | null {
    let low = 0;
    let high = runs.length - 1;
    while (low <= high) {
        const middle = (low + high) >> 1;
        const { offset, width } = runs[middle];
        if (bit < offset) high = middle - 1;
        else if (bit >= offset + width) low = middle + 1;
        else return runs[middle];
    }
    return null;
}

/** Stretches of one kind of look, as stops of a gradient over the octet. */
function gradient(parts: { from: number; to: number; colour: string }[]): string {
    const stops = parts.map(({ from, to, colour }) => `${colour} ${from * 12.5}% ${to * 12.5}%`);
    return `linear-gradient(90deg, ${stops.join(", ")})`;
}

export function createHex(host: HTMLElement, events: HexEvents): HexView {
    let bytes = new Uint8Array();
    let runs: Bits[] = [];
    let cells: HTMLElement[] = [];
    let painted: HTMLElement[] = [];
    let base: Base = "hex";
    let errorBit: number | null = null;
    let current = -1;
    host.tabIndex = 0;
    host.setAttribute("role", "application");
    host.setAttribute("aria-label", "octets: arrows go from one run of bits to the next");

    function look(octet: number): string {
        if (errorBit !== null && octet * 8 + 7 >= errorBit)
            return octet * 8 <= errorBit ? "octet at-error" : "octet unread";
        const kinds = Array.from({ length: 8 }, (_, bit) => runAt(runs, octet * 8 + bit)?.kind ?? "unknown");
        if (kinds[0] === "trailing") return "octet trailing";
        return kinds.every((kind) => STRUCTURE.has(kind)) ? "octet structure" : "octet";
    }

    function text(octet: number): string {
        const byte = bytes[octet];
        return base === "hex" ? byte.toString(16).padStart(2, "0") : byte.toString(2).padStart(8, "0");
    }

    function octetsInRow(): number {
        const isWide = host.clientWidth >= 440;
        return base === "hex" ? (isWide ? 16 : 8) : isWide ? 6 : 4;
    }

    function render(): void {
        const count = Math.min(bytes.length, MOST_OCTETS);
        const aRow = octetsInRow();
        host.className = `octets ${base}`;
        cells = [];
        painted = [];
        const rows: HTMLElement[] = [];
        for (let start = 0; start < count; start += aRow) {
            const row = h(
                "div",
                { class: "octet-row" },
                h("span", { class: "offset" }, start.toString(16).padStart(4, "0")),
            );
            for (let octet = start; octet < Math.min(start + aRow, count); octet++) {
                const cell = h("span", { class: look(octet), "data-octet": octet }, text(octet));
                cells.push(cell);
                row.append(cell);
            }
            rows.push(row);
        }
        if (errorBit !== null && errorBit >= bytes.length * 8 && rows.length > 0)
            rows[rows.length - 1].append(h("span", { class: "octet at-end", title: "more was expected here" }, "▏"));
        if (count < bytes.length) rows.push(h("div", { class: "hint" }, `… ${bytes.length - count} more octets`));
        host.replaceChildren(...rows);
        markError();
    }

    function markError(): void {
        if (errorBit === null) return;
        const cell = cells[Math.floor(errorBit / 8)];
        if (!cell) return;
        const bit = errorBit % 8;
        cell.style.backgroundImage = gradient([
            { from: 0, to: bit, colour: "transparent" },
            { from: bit, to: 8, colour: "var(--error-bits)" },
        ]);
    }

    function paint(lit: Bits[]): void {
        for (const cell of painted) cell.style.backgroundImage = "";
        painted = [];
        markError();
        const parts = new Map<number, { from: number; to: number; colour: string }[]>();
        for (const { offset, width, kind } of lit) {
            const colour = STRUCTURE.has(kind) ? "var(--lit-structure)" : "var(--lit)";
            const end = Math.min(offset + width, cells.length * 8);
            for (let octet = offset >> 3; octet * 8 < end; octet++) {
                const from = Math.max(offset - octet * 8, 0);
                const to = Math.min(end - octet * 8, 8);
                const here = parts.get(octet) ?? [];
                const last = here.length > 0 ? here[here.length - 1].to : 0;
                if (from > last) here.push({ from: last, to: from, colour: "transparent" });
                here.push({ from, to, colour });
                parts.set(octet, here);
            }
        }
        for (const [octet, here] of parts) {
            const { to } = here[here.length - 1];
            if (to < 8) here.push({ from: to, to: 8, colour: "transparent" });
            cells[octet].style.backgroundImage = gradient(here);
            painted.push(cells[octet]);
        }
    }

    function under(event: PointerEvent | MouseEvent): Bits | null {
        const cell = (event.target as HTMLElement).closest<HTMLElement>("[data-octet]");
        if (!cell) return null;
        const box = cell.getBoundingClientRect();
        const bit = Math.min(7, Math.max(0, Math.floor(((event.clientX - box.left) / box.width) * 8)));
        return runAt(runs, Number(cell.dataset.octet) * 8 + bit);
    }

    function go(index: number): void {
        current = Math.min(Math.max(index, 0), runs.length - 1);
        const run = runs[current];
        if (!run) return;
        paint([run]);
        events.onPoint(run);
        scrollWithin(host, cells[run.offset >> 3]);
    }

    let columns = 0;
    new ResizeObserver(() => {
        if (octetsInRow() !== columns && host.clientWidth > 0) render();
        columns = octetsInRow();
    }).observe(host);
    host.addEventListener("pointermove", (event) => {
        const run = under(event);
        if (run) {
            current = runs.indexOf(run);
            paint([run]);
        }
        events.onPoint(run);
    });
    host.addEventListener("pointerleave", () => events.onPoint(null));
    // A finger does not hover, and has left again before the click.
    host.addEventListener("click", (event) => {
        const run = under(event);
        if (!run) return;
        go(runs.indexOf(run));
        events.onPick(run);
    });
    host.addEventListener("keydown", (event) => {
        const keys: Record<string, () => void> = {
            ArrowRight: () => go(current + 1),
            ArrowLeft: () => go(current - 1),
            ArrowDown: () => go(current + 1),
            ArrowUp: () => go(current - 1),
            Home: () => go(0),
            End: () => go(runs.length - 1),
            Enter: () => runs[current] && events.onPick(runs[current]),
        };
        if (!keys[event.key] || event.ctrlKey || event.metaKey || event.altKey) return;
        event.preventDefault();
        keys[event.key]();
    });

    return {
        show(nextBytes, nextRuns, nextError) {
            bytes = new Uint8Array(nextBytes);
            runs = nextRuns;
            errorBit = nextError;
            current = -1;
            render();
        },
        light(path) {
            paint(path === null || path === "" ? [] : runs.filter((run) => isWithin(run.path, path)));
        },
        setBase(next) {
            base = next;
            render();
        },
    };
}

/** What stands in a run of bits. */
export function runText({ offset, width, kind, text, type, value }: Bits): string {
    const last = offset + width - 1;
    const where = width === 1 ? `bit ${offset}` : `bits ${offset}–${last}`;
    const octets = width % 8 === 0 && offset % 8 === 0 && width >= 8 ? `, ${width / 8} octets` : "";
    const what =
        kind === "value" && value !== undefined
            ? String(typeof value === "object" ? JSON.stringify(value) : value)
            : text;
    return [`${where} (${width}${octets})`, what, type.slice(type.lastIndexOf(".") + 1)]
        .filter((part) => part !== "")
        .join("  ·  ");
}

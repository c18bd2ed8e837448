// SPDX-License-Identifier: Apache-2.0
// One message in all its views: octets or text, the tree, the encodings; pointing at one of them lights up the others.
import type { Bits, Codec, TypeInfo, Value } from "orlenta";
import { freshValue } from "../codec/minimal";
import { isWithin, parsePath } from "../codec/path";
import type { Reading } from "../codec/reading";
import { isText } from "../codec/types";
import { find, type Outline, outlineOf } from "../text/outline";
import { byId, h } from "../view/dom";
import { type Encoded, encodeAll, showEncodings } from "../view/encodings";
import { type Base, createHex, runText } from "../view/hex";
import { createText } from "../view/text-lines";
import { createTree } from "../view/tree";

export interface InspectorEvents {
    onEdit(reading: Reading, value: Value): void;
    onPoint(path: string | null): void;
    onCopy(text: string): void;
    onUse(encoded: Encoded): void;
}

export interface Inspector {
    show(reading: Reading): void;
    /** A text that is no message, with the place where it stops to be one. */
    showBroken(text: string, position: number | null): void;
    /** A value that cannot be encoded, in place of the message's. */
    showRefused(value: Value, error: { path: string; message: string }): void;
    /** From the map. */
    reveal(path: string): void;
    clear(): void;
    setBase(base: Base): void;
}

const RUN_HINT = "point at octets or at a component";
const LONGEST_PATH = 68;

/** Types in open types, as the runs of bits tell them. */
function openTypes(codec: Codec, runs: Bits[]): (path: string) => TypeInfo | undefined {
    const names = new Map<string, string>();
    for (const { path, type } of runs) if (type !== "open type" && !names.has(path)) names.set(path, type);
    return (path) => {
        const name = names.get(path);
        try {
            return name === undefined ? undefined : codec.type(name);
        } catch {
            return undefined; // a kind without a name
        }
    };
}

export function createInspector(events: InspectorEvents): Inspector {
    const hexHost = byId("hex");
    const textHost = byId("text");
    const run = byId("run");
    const showRun = (path: string, bits: string) => {
        const start = path.length > LONGEST_PATH ? `…${path.slice(-LONGEST_PATH)}` : path;
        run.replaceChildren(h("b", { title: path }, start), h("span", {}, bits));
    };
    const note = byId("value-note");
    let current: Reading | null = null;
    let outline: Outline | null = null;

    const hex = createHex(hexHost, {
        onPoint(at) {
            showRun(at ? at.path || "message" : RUN_HINT, at ? runText(at) : "");
            tree.light(at?.path ?? null);
            events.onPoint(at?.path ?? null);
            if (!at) hex.light(null);
        },
        onPick: ({ path }) => tree.light(path, true),
    });
    const text = createText(textHost);
    const tree = createTree(byId("tree"), {
        onPoint: (path) => light(path),
        onEdit: (value) => current && events.onEdit(current, value),
    });

    function light(path: string | null): void {
        tree.light(path);
        hex.light(path);
        events.onPoint(path);
        text.light(outline && path ? find(outline, parsePath(path)) : null);
        const own = path ? current?.runs.find((one) => one.path === path && one.value !== undefined) : undefined;
        const inside = path ? current?.runs.filter((one) => isWithin(one.path, path)) : undefined;
        const bits = inside?.reduce((sum, { width }) => sum + width, 0);
        showRun(path || RUN_HINT, own ? runText(own) : bits ? `${bits} bits` : "");
    }

    function showSides(isTextual: boolean): void {
        hexHost.hidden = isTextual;
        textHost.hidden = !isTextual;
        byId("base").hidden = isTextual;
        byId("bits-title").textContent = isTextual ? "Text" : "Octets";
    }

    function showTree(
        reading: Reading,
        value: Value | undefined,
        error?: { path: string; message: string },
        isEditable = true,
    ): void {
        byId("tree").classList.toggle("fixed", !isEditable);
        const shown = value ?? (error && reading.info.components ? {} : undefined);
        if (shown === undefined) return tree.show(null);
        const open = openTypes(reading.codec, reading.runs);
        tree.show({
            typeName: reading.type,
            type: reading.info,
            value: shown,
            open,
            fresh: (type, holder, name) => freshValue(reading.codec, type, holder, name),
            isEditable,
            error,
        });
    }

    function showEncoded(reading: Reading): void {
        const all = encodeAll(reading.codec, reading.type, reading.data, reading.rules);
        showEncodings(byId("encodings"), all, reading.rules, events);
    }

    return {
        show(reading) {
            current = reading;
            const { data, error, rules } = reading;
            const isTextual = typeof data === "string";
            showSides(isTextual);
            outline = isTextual && isText(rules) ? outlineOf(data, rules) : null;
            if (typeof data === "string") text.show(data, error && error.line > 0 ? { line: error.line } : null);
            else hex.show(data, reading.runs, error && error.bit >= 0 ? error.bit : null);
            showRun(RUN_HINT, "");
            note.hidden = !error;
            if (error) {
                const where = error.line > 0 ? `line ${error.line}` : error.bit >= 0 ? `bit ${error.bit}` : "";
                note.replaceChildren(
                    h("b", {}, `Stopped${where && ` at ${where}`}: `),
                    error.message,
                    h("small", {}, error.path),
                );
            }
            showTree(reading, reading.value, error, !error);
            if (error) byId("encodings").replaceChildren();
            else showEncoded(reading);
        },
        showBroken(broken, position) {
            current = null;
            outline = null;
            showSides(true);
            text.show(broken, position === null ? null : { position });
            showRun("", "");
            note.hidden = true;
            tree.show(null);
            byId("encodings").replaceChildren();
        },
        showRefused(value, error) {
            if (!current) return;
            note.hidden = false;
            note.textContent = `Not encoded: ${error.message}${error.path ? ` · ${error.path}` : ""}. The octets are those of before.`;
            showTree(current, value, error);
        },
        reveal: (path) => {
            tree.light(path, true);
            hex.light(path);
        },
        setBase: (base) => hex.setBase(base),
        clear() {
            this.showBroken("", null);
        },
    };
}

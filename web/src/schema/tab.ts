// SPDX-License-Identifier: Apache-2.0
// The tab for a schema of one's own: compiles as one types, and tells what is wrong where.
import type { Problem, Schema, SchemaError } from "orlenta";
import type { Engine } from "../codec/engine";
import { debounced, h } from "../view/dom";
import type { SchemaEditor } from "./editor";

export const FILE = "schema.asn1";

export const FIRST_SCHEMA = `-- A message of your own. It compiles as you type; tick "use the
-- schema" to read messages as its types.
Sensors DEFINITIONS AUTOMATIC TAGS ::= BEGIN

Reading ::= SEQUENCE {
    station   INTEGER (0..65535),
    kind      Kind,
    value     REAL,
    position  Position OPTIONAL,
    ...
}

Kind ::= ENUMERATED { temperature, humidity, visibility, ... }

Position ::= SEQUENCE {
    latitude   INTEGER (-900000000..900000001),
    longitude  INTEGER (-1800000000..1800000001)
}

END
`;

export interface SchemaTab {
    /** Loads editor and compiler, if they are not there yet. */
    open(): Promise<void>;
    text(): string;
    setText(text: string): void;
    /** What the text compiles to; null if it does not. Compiles once for each text. */
    compiled(): Promise<Schema | null>;
}

export interface SchemaEvents {
    onText(text: string): void;
    /** Null while it does not compile. */
    onCompiled(schema: Schema | null): void;
}

const TYPING_MS = 350;

export function createSchemaTab(
    host: HTMLElement,
    problemList: HTMLElement,
    engine: () => Promise<Engine>,
    initial: string,
    events: SchemaEvents,
): SchemaTab {
    let text = initial;
    let editor: SchemaEditor | null = null;
    let opening: Promise<void> | null = null;
    let schema: Schema | null = null;
    let run = 0;
    /** Of the text as it is. */
    let current: Promise<Schema | null> | null = null;

    function tell(problems: Problem[], summary: string): void {
        editor?.mark(problems);
        const entries = problems.map(({ line, column, text: what, isNote }) =>
            h(
                "li",
                { class: isNote ? "note" : "wrong" },
                h(
                    "button",
                    { class: "link", click: () => editor?.goTo(line) },
                    line > 0 ? `${line}:${column}` : "schema",
                ),
                ` ${what}`,
            ),
        );
        problemList.replaceChildren(h("li", { class: "summary" }, summary), ...entries);
    }

    const compiled = () => (current ??= compile());

    async function compile(): Promise<Schema | null> {
        const mine = ++run;
        try {
            const { orlenta } = await engine();
            const next = await orlenta.compile([{ name: FILE, text }]);
            if (mine !== run) {
                next.free();
                return schema;
            }
            schema?.free();
            schema = next;
            const count = next.types().length;
            tell(next.notes, `compiles: ${count} ${count === 1 ? "type" : "types"}`);
        } catch (error) {
            if (mine !== run) return schema;
            const problems = (error as SchemaError).problems;
            tell(problems ?? [], problems ? "does not compile" : (error as Error).message);
            schema = null;
        }
        events.onCompiled(schema);
        return schema;
    }

    const compileSoon = debounced(TYPING_MS, () => void compiled());
    const typed = (next: string) => {
        if (next === text) return;
        text = next;
        current = null;
        events.onText(text);
        compileSoon();
    };

    async function load(): Promise<void> {
        const { createEditor } = await import("./editor");
        host.replaceChildren();
        editor = createEditor(host, text, typed);
        await (current = compile()); // marks the problems
    }

    return {
        text: () => text,
        setText(next) {
            if (editor) editor.setText(next);
            else typed(next);
        },
        compiled,
        async open() {
            try {
                await (opening ??= load());
                editor?.focus();
            } catch (error) {
                opening = null; // to be tried again
                host.replaceChildren(h("p", { class: "hint" }, (error as Error).message));
            }
        },
    };
}

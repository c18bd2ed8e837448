// SPDX-License-Identifier: Apache-2.0
// The editor for ASN.1. It is heavy beside the rest, so the page loads it when the tab is opened first.
import { defaultKeymap, history, historyKeymap, indentWithTab } from "@codemirror/commands";
import { bracketMatching, HighlightStyle, indentUnit, syntaxHighlighting } from "@codemirror/language";
import { type Diagnostic, lintGutter, lintKeymap, setDiagnostics } from "@codemirror/lint";
import { highlightSelectionMatches, searchKeymap } from "@codemirror/search";
import { EditorState } from "@codemirror/state";
import { drawSelection, EditorView, highlightActiveLine, keymap, lineNumbers } from "@codemirror/view";
import { tags } from "@lezer/highlight";
import type { Problem } from "orlenta";
import { asn1 } from "./language";

export interface SchemaEditor {
    text(): string;
    setText(text: string): void;
    mark(problems: Problem[]): void;
    goTo(line: number): void;
    focus(): void;
}

const colours = HighlightStyle.define([
    { tag: tags.keyword, color: "var(--code-keyword)" },
    { tag: tags.typeName, color: "var(--code-type)" },
    { tag: tags.propertyName, color: "var(--text)" },
    { tag: tags.number, color: "var(--code-number)" },
    { tag: tags.string, color: "var(--code-number)" },
    { tag: tags.comment, color: "var(--faint)", fontStyle: "italic" },
]);

/** The columns that the compiler tells are octets of UTF-8. */
function positionOf(state: EditorState, { line, column }: Problem): number {
    const { from, text } = state.doc.line(Math.min(Math.max(line, 1), state.doc.lines));
    const before = new TextDecoder().decode(new TextEncoder().encode(text).subarray(0, Math.max(column - 1, 0)));
    return from + Math.min(before.length, text.length);
}

function diagnosticOf(state: EditorState, problem: Problem): Diagnostic {
    const from = positionOf(state, problem);
    const word = /^[\w-]+|^\S/.exec(state.sliceDoc(from, from + 80))?.[0].length ?? 0;
    return { from, to: from + word, severity: problem.isNote ? "info" : "error", message: problem.text };
}

export function createEditor(host: HTMLElement, text: string, onChange: (text: string) => void): SchemaEditor {
    const extensions = [
        lineNumbers(),
        history(),
        drawSelection(),
        highlightActiveLine(),
        bracketMatching(),
        highlightSelectionMatches(),
        indentUnit.of("    "),
        asn1,
        syntaxHighlighting(colours),
        lintGutter(),
        EditorView.contentAttributes.of({ "aria-label": "ASN.1 modules" }),
        keymap.of([indentWithTab, ...defaultKeymap, ...historyKeymap, ...searchKeymap, ...lintKeymap]),
        EditorView.updateListener.of((update) => update.docChanged && onChange(update.state.doc.toString())),
    ];
    const view = new EditorView({ parent: host, state: EditorState.create({ doc: text, extensions }) });
    return {
        text: () => view.state.doc.toString(),
        setText: (next) => view.dispatch({ changes: { from: 0, to: view.state.doc.length, insert: next } }),
        mark(problems) {
            const placed = problems.filter(({ line }) => line > 0).map((problem) => diagnosticOf(view.state, problem));
            view.dispatch(setDiagnostics(view.state, placed));
        },
        goTo(line) {
            const { from } = view.state.doc.line(Math.min(Math.max(line, 1), view.state.doc.lines));
            view.dispatch({ selection: { anchor: from }, scrollIntoView: true });
            view.focus();
        },
        focus: () => view.focus(),
    };
}

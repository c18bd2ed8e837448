// SPDX-License-Identifier: Apache-2.0
// Which lines of a text a component stands in. JER, XER and GSER are read for their structure alone; what does not
// follow it ends the outline early, with what was seen before.
import type { Rules } from "orlenta";
import type { Step } from "../codec/path";

export interface Outline {
    /** In characters. */
    start: number;
    end: number;
    name?: string;
    inside: Outline[];
}

type Token = { text: string; start: number; end: number };

function tokensOf(text: string, pattern: RegExp): Token[] {
    return [...text.matchAll(pattern)].map((match) => ({
        text: match[0],
        start: match.index,
        end: match.index + match[0].length,
    }));
}

class Tokens {
    private at = 0;

    constructor(
        private readonly tokens: Token[],
        private readonly textEnd: number,
    ) {}

    peek(ahead = 0): string {
        return this.tokens[this.at + ahead]?.text ?? "";
    }
    take(): Token {
        return this.tokens[this.at++] ?? { text: "", start: this.textEnd, end: this.textEnd };
    }
}

function jerValue(tokens: Tokens): Outline {
    const first = tokens.take();
    const outline: Outline = { start: first.start, end: first.end, inside: [] };
    if (first.text !== "{" && first.text !== "[") return outline;
    const close = first.text === "{" ? "}" : "]";
    while (tokens.peek() !== "" && tokens.peek() !== close) {
        if (tokens.peek() === ",") tokens.take();
        else if (close === "]") outline.inside.push(jerValue(tokens));
        else {
            const key = tokens.take();
            if (tokens.peek() === ":") tokens.take();
            const member = jerValue(tokens);
            outline.inside.push({ ...member, start: key.start, name: key.text.slice(1, -1) });
        }
    }
    outline.end = tokens.take().end;
    return outline;
}

function gserValue(tokens: Tokens): Outline {
    const first = tokens.take();
    const outline: Outline = { start: first.start, end: first.end, inside: [] };
    if (tokens.peek() === ":" && first.text !== "{") {
        tokens.take();
        const chosen = gserValue(tokens);
        outline.inside.push({ ...chosen, name: first.text });
        outline.end = chosen.end;
        return outline;
    }
    if (first.text !== "{") return outline;
    while (tokens.peek() !== "" && tokens.peek() !== "}") {
        if (tokens.peek() === ",") tokens.take();
        else if (/^[a-z]/.test(tokens.peek()) && !/^[,:}]?$/.test(tokens.peek(1))) {
            const key = tokens.take();
            outline.inside.push({ ...gserValue(tokens), start: key.start, name: key.text });
        } else outline.inside.push(gserValue(tokens));
    }
    outline.end = tokens.take().end;
    return outline;
}

const TAG_NAME = /^<\/?([^\s/>]+)/;

function xerElement(tokens: Tokens): Outline {
    const open = tokens.take();
    const outline: Outline = { start: open.start, end: open.end, name: TAG_NAME.exec(open.text)?.[1], inside: [] };
    if (open.text.endsWith("/>")) return outline;
    while (tokens.peek() !== "" && !tokens.peek().startsWith("</")) outline.inside.push(xerElement(tokens));
    outline.end = tokens.take().end;
    return outline;
}

export function outlineOf(text: string, rules: Rules): Outline {
    switch (rules) {
        case "jer":
            return jerValue(new Tokens(tokensOf(text, /"(?:[^"\\]|\\.)*"?|[{}[\]:,]|[^\s"{}[\]:,]+/g), text.length));
        case "gser":
            return gserValue(
                new Tokens(tokensOf(text, /"(?:[^"]|"")*"?|'[^']*'[BH]?|[{}:,]|[^\s"'{}:,]+/g), text.length),
            );
        default:
            return xerElement(new Tokens(tokensOf(text, /<[^!?][^>]*>/g), text.length));
    }
}

function partOf(outline: Outline, step: Step): Outline | undefined {
    const { inside, name } = outline;
    if (typeof step === "number") return inside[step];
    const part = inside.find((one) => one.name === step);
    if (part) return part;
    // XER has no tags around a CHOICE in a list, and those of the type around the value of an open type.
    if (name === step) return outline;
    return inside.length === 1 && /^[A-Z]/.test(inside[0].name ?? "") ? partOf(inside[0], step) : undefined;
}

/** The innermost part that could be found on the way. */
export function find(outline: Outline, steps: Step[]): Outline {
    for (const step of steps) {
        const part = partOf(outline, step);
        if (!part) break;
        outline = part;
    }
    return outline;
}

// SPDX-License-Identifier: Apache-2.0
// Logs: one message a line, with a time before it or without. Blank lines are no messages, nor are lines that begin
// with #.

export interface Line {
    /** Where the line stands, in octets of the log. */
    start: number;
    end: number;
}

export interface Entry {
    /** The message alone. */
    message: string;
    /** In milliseconds, of whatever clock the log has; the date is kept if there is one. */
    time?: number;
}

const ISO = /^\[?(\d{4}-\d\d-\d\d[T ]\d\d:\d\d:\d\d(?:[.,]\d+)?)(Z|[+-]\d\d:?\d\d)?\]?[\s,;]+(?=\S)/;
// Seconds or milliseconds since 1970 or since the start; digits alone could be the message, so a fraction is asked for.
const SECONDS = /^\[?(\d+\.\d+)\]?[\s,;]+(?=\S)/;
const MILLISECONDS = /^\[?(\d{13})\]?[\s,;]+(?=\S)/;

const isNote = (line: string) => line.trim() === "" || line.trimStart().startsWith("#");

export function readEntry(line: string): Entry | null {
    if (isNote(line)) return null;
    const text = line.trim();
    const iso = ISO.exec(text);
    if (iso) {
        // Without a zone the clock is the log's own, and is shown as it stands there.
        const time = Date.parse(iso[1].replace(" ", "T").replace(",", ".") + (iso[2] ?? "Z"));
        return { message: text.slice(iso[0].length), ...(Number.isNaN(time) ? {} : { time }) };
    }
    const seconds = SECONDS.exec(text);
    if (seconds) return { message: text.slice(seconds[0].length), time: Number(seconds[1]) * 1000 };
    const milliseconds = MILLISECONDS.exec(text);
    if (milliseconds) return { message: text.slice(milliseconds[0].length), time: Number(milliseconds[1]) };
    return { message: text };
}

export const NEWLINE = 10;

/**
 * The lines of a log that comes in pieces. `rest` is the number of octets at the end that belong to a line which has
 * not ended yet; the next piece is to begin with them.
 */
export function splitLines(piece: Uint8Array, isLast: boolean): { lines: Line[]; rest: number } {
    const lines: Line[] = [];
    let start = 0;
    for (;;) {
        const end = piece.indexOf(NEWLINE, start);
        if (end < 0) break;
        lines.push({ start, end });
        start = end + 1;
    }
    if (isLast && start < piece.length) {
        lines.push({ start, end: piece.length });
        start = piece.length;
    }
    return { lines, rest: piece.length - start };
}

/** The message of a text that is no log: without the notes and the time before it. */
export function onlyMessage(text: string): string {
    const lines = text.split("\n");
    const start = lines.findIndex((line) => !isNote(line));
    if (start < 0) return "";
    const first = readEntry(lines[start])?.message ?? "";
    return [first, ...lines.slice(start + 1)].join("\n");
}

const WHOLE_TEXT = /^(\{.*\}|\[.*\]|<([^\s/>]+).*(<\/\2>|\/>))$/;

/**
 * Whether a text is several messages. Bytes of one message may be wrapped or be a dump of rows: then its lines are of
 * one length but for the last, and short.
 */
export function isLog(text: string): boolean {
    const lines = text
        .split("\n", 1000)
        .filter((line) => !isNote(line))
        .map((line) => line.trim());
    if (lines.length < 2) return false;
    if (/^[<{[]/.test(lines[0])) return WHOLE_TEXT.test(lines[0]) && WHOLE_TEXT.test(lines[1]);
    const body = lines.slice(0, -1).map((line) => line.length);
    const last = lines[lines.length - 1].length;
    const isWrapped =
        body.every((length) => length === body[0]) &&
        last < body[0] &&
        [16, 32, 47, 48, 60, 64, 76, 80].includes(body[0]);
    return !isWrapped;
}

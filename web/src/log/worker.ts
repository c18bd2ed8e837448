// SPDX-License-Identifier: Apache-2.0
// Works through a log beside the page, a piece at a time.
import { startEngine } from "../codec/engine";
import { identify, likeBefore, type Message, type Source, withoutPath } from "../codec/reading";
import { NEWLINE, readEntry, splitLines } from "../input/lines";
import { type Answer, LONGEST_LINE, type Order } from "./messages";
import { aboutValue, type Summary } from "./summary";

const PIECE = LONGEST_LINE;
const PAUSE_MS = 120;

const answer = (message: Answer) => self.postMessage(message);

type Told = Omit<Summary, "start" | "end">;

function decoded({ codec, type, data, rules }: Message): Told {
    return { type, rules, ...aboutValue(codec.decode(type, data, rules)) };
}

/** What decodes may still be the beginning of another message; encoding it again is the quickest way to tell. */
function takesAll({ codec, type, data, rules }: Message): boolean {
    return codec.convert(type, data, rules, rules).length === data.length;
}

/** As the message before, or else by all means; gives what the next one may be like. */
async function read(source: Source, text: string, order: Order, before?: Message): Promise<[Told, Message?]> {
    try {
        const alike = before && likeBefore(before, text, order.choice);
        if (alike && takesAll(alike)) return [decoded(alike), alike];
    } catch {
        // It is something else, or broken.
    }
    let message: Message | undefined;
    try {
        message = await identify(source, text, order.choice);
        return [decoded(message), message];
    } catch (error) {
        const { type = "", rules } = message ?? {};
        return [{ type, rules, error: withoutPath((error as Error).message), keys: [] }, before];
    }
}

async function octets(log: Blob, start: number): Promise<Uint8Array> {
    return new Uint8Array(await log.slice(start, start + PIECE).arrayBuffer());
}

async function findLineEnd(log: Blob, from: number): Promise<number> {
    for (let start = from; start < log.size; start += PIECE) {
        const end = (await octets(log, start)).indexOf(NEWLINE);
        if (end >= 0) return start + end;
    }
    return log.size;
}

async function work(order: Order): Promise<void> {
    const engine = await startEngine();
    const source: Source = { engine, schema: order.schema && (await engine.orlenta.compile(order.schema)) };
    const decoder = new TextDecoder();
    let summaries: Summary[] = [];
    let toldAt = 0;
    let before: Message | undefined;
    for (let start = 0; start < order.log.size; ) {
        const end = Math.min(start + PIECE, order.log.size);
        const piece = await octets(order.log, start);
        const { lines, rest } = splitLines(piece, end === order.log.size);
        if (lines.length === 0 && rest > 0) {
            const lineEnd = await findLineEnd(order.log, end);
            const error = `a line of ${((lineEnd - start) / 1e6).toFixed(1)} MB is no message`;
            summaries.push({ start, end: lineEnd, type: "", error, keys: [] });
            start = lineEnd;
            continue;
        }
        for (const line of lines) {
            const text = decoder.decode(piece.subarray(line.start, line.end));
            const entry = readEntry(text);
            if (!entry) continue;
            const [told, message] = await read(source, entry.message, order, before);
            before = message;
            summaries.push({ start: start + line.start, end: start + line.end, time: entry.time, ...told });
            if (performance.now() - toldAt > PAUSE_MS) {
                answer({ kind: "some", summaries, octets: start + line.end });
                summaries = [];
                toldAt = performance.now();
            }
        }
        start += piece.length - rest;
    }
    answer({ kind: "some", summaries, octets: order.log.size });
    answer({ kind: "done" });
}

self.addEventListener("message", ({ data }: MessageEvent<Order>) => {
    work(data).catch((error: Error) => answer({ kind: "failed", message: error.message }));
});

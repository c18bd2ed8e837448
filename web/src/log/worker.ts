// SPDX-License-Identifier: Apache-2.0
// Works through a log beside the page, a piece at a time.
import { startEngine } from "../codec/engine";
import { identify, type Message, type Source } from "../codec/reading";
import { readEntry, splitLines } from "../input/lines";
import type { Answer, Order } from "./messages";
import { aboutValue, type Summary } from "./summary";

const PIECE = 1 << 20;
const PAUSE_MS = 120;

const answer = (message: Answer) => self.postMessage(message);

async function summarise(source: Source, text: string, order: Order, hint?: Message): Promise<[Omit<Summary, "start" | "end">, Message?]> {
    const entry = readEntry(text);
    if (!entry) throw new Error("no message");
    const { time } = entry;
    try {
        const message = await identify(source, entry.message, order.choice, hint);
        try {
            const value = message.codec.decode(message.type, message.data, message.rules);
            return [{ time, type: message.type, ...aboutValue(value) }, message];
        } catch (error) {
            return [{ time, type: message.type, error: (error as Error).message, keys: [] }, hint];
        }
    } catch (error) {
        return [{ time, type: "", error: (error as Error).message, keys: [] }, hint];
    }
}

async function work(order: Order): Promise<void> {
    const engine = await startEngine();
    const source: Source = { engine, schema: order.schema && (await engine.orlenta.compile(order.schema)) };
    const decoder = new TextDecoder();
    let summaries: Summary[] = [];
    let told = 0;
    let hint: Message | undefined;
    for (let start = 0; start < order.log.size; ) {
        const end = Math.min(start + PIECE, order.log.size);
        let piece = new Uint8Array(await order.log.slice(start, end).arrayBuffer());
        let { lines, rest } = splitLines(piece, end === order.log.size);
        if (lines.length === 0 && rest > 0) {
            // A line longer than a piece: to its end, wherever that is.
            piece = new Uint8Array(await order.log.slice(start).arrayBuffer());
            ({ lines, rest } = splitLines(piece, true));
        }
        for (const line of lines) {
            const text = decoder.decode(piece.subarray(line.start, line.end));
            if (!readEntry(text)) continue;
            const [summary, message] = await summarise(source, text, order, hint);
            hint = message;
            summaries.push({ start: start + line.start, end: start + line.end, ...summary });
            if (performance.now() - told > PAUSE_MS) {
                answer({ kind: "some", summaries, octets: start + line.end });
                summaries = [];
                told = performance.now();
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

// SPDX-License-Identifier: Apache-2.0
// A log in the page: its messages' summaries as the worker sends them, and which of them hold at a moment.
import type { Choice } from "../codec/reading";
import type { LatLon } from "../map/geo";
import { type Answer, LONGEST_LINE, type Order } from "./messages";
import type { Summary } from "./summary";

export const LARGEST_LOG = 200e6;

/** Stations that have been silent so long are gone; milliseconds. */
const SILENCE = 10_000;
const MOST_AT_ONCE = 400;
const TRAIL = 60;

export interface LogEvents {
    onProgress(octets: number): void;
    onDone(error?: string): void;
}

export class Log {
    readonly messages: Summary[] = [];
    private readonly byKey = new Map<string, number[]>();
    private worker: Worker | null = null;

    constructor(readonly blob: Blob) {}

    start(choice: Choice, schema: Order["schema"], events: LogEvents): void {
        this.worker = new Worker(new URL("worker.js", document.baseURI), { type: "module" });
        this.worker.onerror = (event) => this.end(events, event.message || "the worker could not be started");
        this.worker.onmessage = ({ data }: MessageEvent<Answer>) => {
            if (data.kind === "failed") return this.end(events, data.message);
            if (data.kind === "done") return this.end(events);
            for (const summary of data.summaries) this.add(summary);
            events.onProgress(data.octets);
        };
        this.worker.postMessage({ log: this.blob, choice, schema } satisfies Order);
    }

    private end(events: LogEvents, error?: string): void {
        this.stop();
        events.onDone(error);
    }

    stop(): void {
        this.worker?.terminate();
        this.worker = null;
    }

    private add(summary: Summary): void {
        const index = this.messages.push(summary) - 1;
        for (const key of summary.keys) {
            const indices = this.byKey.get(key);
            if (indices) indices.push(index);
            else this.byKey.set(key, [index]);
        }
    }

    async textAt(index: number): Promise<string> {
        const { start, end, error } = this.messages[index];
        if (end - start > LONGEST_LINE) throw new Error(error);
        return this.blob.slice(start, end).text();
    }

    /** The messages that hold when the message of this index has come, from the oldest to the newest. */
    holdingAt(index: number): number[] {
        const now = this.messages[index]?.time;
        const holding = new Set<number>();
        for (const [key, indices] of this.byKey) {
            const last = indices[lastNotAbove(indices, index)];
            if (last === undefined) continue;
            const { time } = this.messages[last];
            const lasts = key.startsWith("map ") || key.includes("event");
            if (!lasts && now !== undefined && time !== undefined && now - time > SILENCE) continue;
            holding.add(last);
        }
        return [...holding].sort((a, b) => a - b).slice(-MOST_AT_ONCE);
    }

    /** Where the stations of these messages were before. */
    trailsAt(index: number, holding: number[]): LatLon[][] {
        return holding.flatMap((message) => {
            const [key] = this.messages[message].keys;
            if (!key || key.startsWith("map ")) return [];
            const indices = this.byKey.get(key) ?? [];
            const end = lastNotAbove(indices, index) + 1;
            const places = indices.slice(Math.max(0, end - TRAIL), end).map((one) => this.messages[one].at);
            const known = places.filter((place) => place !== undefined);
            return known.length > 1 ? [known] : [];
        });
    }
}

/** The position of the last number that is not above `limit`, or -1. */
export function lastNotAbove(sorted: number[], limit: number): number {
    let low = 0;
    let high = sorted.length;
    while (low < high) {
        const middle = (low + high) >> 1;
        if (sorted[middle] <= limit) low = middle + 1;
        else high = middle;
    }
    return low - 1;
}

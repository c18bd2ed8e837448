// SPDX-License-Identifier: Apache-2.0
// What the page and the worker that reads logs tell each other.
import type { Choice } from "../codec/reading";
import type { Summary } from "./summary";

/** Octets. What is longer is no message, though it would take long to find out. */
export const LONGEST_LINE = 1 << 20;

export interface Order {
    log: Blob;
    choice: Choice;
    /** Modules of ASN.1 in place of the message sets. */
    schema?: { name: string; text: string }[];
}

export type Answer =
    | { kind: "some"; summaries: Summary[]; octets: number }
    | { kind: "done" }
    | { kind: "failed"; message: string };

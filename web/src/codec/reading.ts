// SPDX-License-Identifier: Apache-2.0
// A message read: from what was typed to its value, its bits, and what is wrong with it.
import type { Bits, Codec, DecodeError, Rules, TypeInfo, Value } from "orlenta";
import { InputError, readBytes } from "../input/bytes";
import { detect, typeOfText } from "./detect";
import { type Engine, needType } from "./engine";
import { partialValue } from "./partial";
import { BINARY, type BinaryRules, isText } from "./types";

export interface Choice {
    /** A name, or "auto". */
    type: string;
    rules: Rules | "auto";
}

/** A message whose type and rules are known. */
export interface Message {
    codec: Codec;
    data: Uint8Array | string;
    rules: Rules;
    type: string;
}

export interface Reading extends Message {
    info: TypeInfo;
    /** With an error: what had been read before it. */
    value?: Value;
    runs: Bits[];
    error?: { message: string; path: string; bit: number; line: number; column: number };
}

export class UnknownMessage extends Error {}

/** The rules of a text, as far as it shows; undefined for bytes. */
export function textRules(text: string): Rules | undefined {
    const start = text.trimStart().slice(0, 200);
    if (start.startsWith("<")) return "xer";
    if (/^(\{\s*("|\})|\[)/.test(start)) return "jer";
    if (/^\{\s*[a-z]|^[a-z][\w-]*\s*:/.test(start)) return "gser";
    return undefined;
}

/** Where types come from: a compiled schema, or the message sets, loaded as they are needed. */
export interface Source {
    engine: Engine;
    schema?: Codec;
}

/**
 * Finds out the type and the rules. `hint` are those of the message before, tried first.
 * @throws InputError, UnknownMessage, and what loading throws
 */
export async function identify(source: Source, text: string, choice: Choice, hint?: Message): Promise<Message> {
    const rules = choice.rules === "auto" ? textRules(text) : choice.rules;
    const codec = source.schema ?? source.engine.codec;
    if (rules && isText(rules)) {
        const type = choice.type === "auto" ? typeOfText(text) : choice.type;
        if (!type) throw new UnknownMessage("the type does not show in this text: choose one");
        if (!source.schema) await needType(source.engine, type);
        return { codec, data: text, rules, type };
    }
    const data = readBytes(text);
    if (choice.type !== "auto") {
        if (!source.schema) await needType(source.engine, choice.type);
        return { codec, data, rules: rules ?? rulesFor(codec, choice.type, data), type: choice.type };
    }
    if (source.schema) throw new UnknownMessage("choose a type of the schema");
    if (hint && typeof hint.data !== "string" && fitsAgain(hint, data, rules))
        return { codec: hint.codec, rules: hint.rules, type: hint.type, data };
    const allowed = rules ? [rules as BinaryRules] : BINARY;
    const found = await detect({ codec, need: (region) => source.engine.need(region) }, data, allowed);
    if (!found) throw new UnknownMessage("no whole message of CN, EU or US fits: choose a type, and rules");
    return { codec, data, rules: found.rules, type: found.type };
}

function rulesFor(codec: Codec, type: string, data: Uint8Array): BinaryRules {
    const takesAll = (rules: BinaryRules) => {
        const { bits, error } = codec.explain(type, data, rules);
        return !error && bits.every(({ kind }) => kind !== "trailing");
    };
    return BINARY.find(takesAll) ?? "uper";
}

// Frames tell their messages apart by themselves; those of EU have a messageID in the second octet.
function fitsAgain({ codec, type, rules, data }: Message, next: Uint8Array, wanted?: Rules): boolean {
    if (wanted && wanted !== rules) return false;
    if (type.startsWith("EU.") && (rules === "ber" || rules === "der" || data[1] !== next[1])) return false;
    try {
        return codec.check(type, codec.decode(type, next, rules)) === null;
    } catch {
        return false;
    }
}

export function readMessage({ codec, data, rules, type }: Message): Reading {
    const message = { codec, data, rules, type };
    const info = codec.type(type);
    if (typeof data !== "string") {
        const { bits, error } = codec.explain(type, data, rules as BinaryRules);
        if (!error) return { ...message, info, runs: bits, value: codec.decode(type, data, rules) };
        return { ...message, info, runs: bits, value: partialValue(bits), error: plainError(error) };
    }
    try {
        const value = codec.decode(type, data, rules);
        return { ...message, info, runs: [], value };
    } catch (error) {
        return { ...message, info, runs: [], error: plainError(error as DecodeError) };
    }
}

/** The library's errors end with the path, which is shown on its own. */
export function withoutPath(message: string): string {
    return message.replace(/ \(at [^()]*\)$/, "");
}

function plainError({ message, path = "", bitPosition = -1, line = 0, column = 0 }: DecodeError) {
    return { message: withoutPath(message), path, bit: bitPosition, line, column };
}

export { InputError };

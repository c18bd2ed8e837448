// SPDX-License-Identifier: Apache-2.0
// A message read: from what was typed to its value, its bits, and what is wrong with it.
import type { Bits, Codec, DecodeError, Rules, TypeInfo, Value } from "orlenta";
import { InputError, readBytes } from "../input/bytes";
import { textRules } from "../input/rules";
import { detect, likelyType, typeOfText } from "./detect";
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
    error?: { message: string; path: string; bit: number; line: number };
}

export class UnknownMessage extends Error {}

/** Where types come from: a compiled schema, or the message sets, loaded as they are needed. */
export interface Source {
    engine: Engine;
    schema?: Codec;
}

/**
 * Finds out the type and the rules. A cut message has the type that its first octets show.
 * @throws InputError, UnknownMessage, and what loading throws
 */
export async function identify(source: Source, text: string, choice: Choice): Promise<Message> {
    // A text that can be no bytes is read as what it is, whatever was chosen for the message before.
    const isChosen = choice.rules !== "auto" && (isText(choice.rules) || textRules(text) === undefined);
    const rules = isChosen ? (choice.rules as Rules) : textRules(text);
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
    const allowed = rules ? [rules as BinaryRules] : BINARY;
    const found = await detect({ codec, need: (region) => source.engine.need(region) }, data, allowed);
    const type = found?.type ?? likelyType(data);
    if (!type) throw new UnknownMessage("no whole message of CN, EU or US fits: choose a type, and rules");
    await needType(source.engine, type);
    return { codec, data, rules: found?.rules ?? allowed[0], type };
}

function rulesFor(codec: Codec, type: string, data: Uint8Array): BinaryRules {
    const takesAll = (rules: BinaryRules) => {
        const { bits, error } = codec.explain(type, data, rules);
        return !error && bits.every(({ kind }) => kind !== "trailing");
    };
    return BINARY.find(takesAll) ?? "uper";
}

/**
 * The next message of a log as the one before, if the first octets do not speak against it; null if they do. Whether it
 * is, decoding shows, if all octets are taken.
 */
export function likeBefore(before: Message, text: string, choice: Choice): Message | null {
    if (typeof before.data === "string" || textRules(text) || before.rules === "ber" || before.rules === "der")
        return null;
    const data = readBytes(text);
    const isAlike = choice.type !== "auto" || likelyType(data) === likelyType(before.data);
    return isAlike && data.length > 0 ? { ...before, data } : null;
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

function plainError({ message, path = "", bitPosition = -1, line = 0 }: DecodeError) {
    return { message: withoutPath(message), path, bit: bitPosition, line };
}

export { InputError };

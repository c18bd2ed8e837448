// SPDX-License-Identifier: Apache-2.0
/**
 * Vehicle messages (V2X) between bytes and plain objects: ASN.1's PER, OER, BER, DER, JER, XER and GSER.
 *
 * ```js
 * import { load } from "orlenta";
 * const orlenta = await load({ regions: ["EU"] });
 * const cam = orlenta.decode("EU.CAM", bytes);
 * ```
 *
 * All calls but load(), need() and compile() are synchronous. Nothing is asked of the network but the package's own
 * wasm files, and those only by `read` where it is given. Every call that works on values throws an OrlentaError where
 * memory or the stack ends; the next call works again. Arguments of another kind than told here are a TypeError.
 */

export type Rules = "uper" | "aper" | "oer" | "ber" | "der" | "jer" | "xer" | "gser";

/** Rules whose encodings are text; orlenta.convert() gives a string for them and bytes for the others. */
export type TextRules = "jer" | "xer" | "gser";

/** A message set that comes with the package, each a wasm module of its own. RRC is the part of US that
 * 3GPP defines, and IEEE 1609.3, which is made of it. */
export type Region = "CN" | "EU" | "US" | "RRC";

/**
 * A value as JSON has it (X.697): SEQUENCE an object without its absent components, SEQUENCE OF an array, CHOICE an
 * object of one member, ENUMERATED and OBJECT IDENTIFIER a string, OCTET STRING hex, BIT STRING hex where the
 * size is fixed and `{value, length}` elsewhere, REAL a number or "-0", "INF", "-INF", "NaN". An INTEGER whose bounds go
 * beyond 2^53, or that has none, is a bigint, and so is a number beyond 2^53 that a message has against its type's bounds.
 *
 * What a later edition of a schema has added comes as null for an item of an ENUMERATED, and as `{}` for an alternative of a
 * CHOICE; neither can be encoded. Octets of a string that are no characters come as U+FFFD.
 *
 * Taken besides: numbers for a bigint, below 2^63; NaN and infinities as numbers; -0 as 0; undefined for what is absent.
 */
export type Value = null | boolean | number | bigint | string | Value[] | { [name: string]: Value };

export interface LoadOptions {
    /** What to load at once; everything else by need(). By default nothing. */
    regions?: Region[];
    /** Reads a file of the package; by default from beside the module, by the file system or by fetch. */
    read?: (file: string) => Promise<Uint8Array>;
}

export interface TypeEntry {
    /** [Region.][Module.]Type: what names the type everywhere. */
    name: string;
    region: string;
    module: string;
    /** No other type of the set refers to it: a whole message, mostly. */
    isRoot: boolean;
}

export type Kind =
    | "BOOLEAN" | "INTEGER" | "REAL" | "ENUMERATED" | "NULL" | "BIT STRING" | "OCTET STRING" | "OBJECT IDENTIFIER"
    | "RELATIVE-OID" | "string" | "SEQUENCE" | "SET" | "SEQUENCE OF" | "SET OF" | "CHOICE" | "open type";

/** What a type is made of, tags looked through. */
export interface TypeInfo {
    kind: Kind;
    /** The type's name, if it has one; what type() takes. */
    name?: string;
    /** What it is, in a sentence or two, if the schema tells. */
    about?: string;
    /** kind "string": UTF8String, IA5String ... */
    stringType?: string;
    isExtensible: boolean;
    /** Bounds of an INTEGER, or of the size of a list or string (BIT STRING: bits, other strings: characters). */
    lower?: number | bigint;
    upper?: number | bigint;
    /** SEQUENCE and SET: in order. */
    components?: Component[];
    /** CHOICE. */
    alternatives?: { name: string; type: TypeInfo; isAddition: boolean }[];
    /** ENUMERATED. */
    items?: { name: string; number: number; isAddition: boolean }[];
    /** SEQUENCE OF and SET OF. */
    element?: TypeInfo;
    /** Of an INTEGER that stands for a quantity: physical = value * scale + offset, which orlenta/units has to the last
     * decimal; the unit may be "". */
    unit?: { unit: string; scale: number; offset: number; special: Special[] };
}

/** Numbers from `value` to `last` that stand for something else than their size. */
export interface Special {
    value: number;
    last: number;
    meaning: string;
    /** 1 and -1: of the physical value or more, or less. Not there: they have no physical value. */
    limit?: 1 | -1;
}

/** `type` is made when it is first looked at, so that types which hold themselves do no harm. */
export interface Component {
    name: string;
    readonly type: TypeInfo;
    presence: "mandatory" | "optional" | "default";
    isAddition: boolean;
    default?: Value;
}

/** A run of bits of a message. All runs together are all of its bits, each once, in order. */
export interface Bits {
    /** In bits, from the start of the message. */
    offset: number;
    width: number;
    kind: "value" | "extension" | "presence" | "index" | "tag" | "length" | "fragment" | "padding" | "end" | "unknown"
        | "trailing" | "refused";
    /** "optional: 3 of 8 present", "length 12", "value" ... */
    text: string;
    /** As a.b[3].c; empty for the message itself. */
    path: string;
    /** The type's name, or its kind where it has none. */
    type: string;
    /** At the last run of a value without components. */
    value?: Value;
}

export interface Explanation {
    bits: Bits[];
    /** Why decoding stopped; the last run is "refused" then. */
    error?: DecodeError;
}

export class OrlentaError extends Error {
    /** a.b[3].c, which the message ends with too; empty where the value as a whole is at fault. Of what is decoded PER alone
     * tells it. */
    path: string;
}
export class DecodeError extends OrlentaError {
    /** Where reading stopped, in bits (binary rules); -1 if that is not known. */
    bitPosition: number;
    /** Text rules: from 1; else 0. */
    line: number;
}
/** The value is none of its type, or none that the rules can encode. */
export class EncodeError extends OrlentaError {}
/** The value is outside of its type's constraints. */
export class ConstraintError extends OrlentaError {}
export class UnknownType extends OrlentaError {
    /** The names that come nearest, at most three. */
    nearest: string[];
}
export class SchemaError extends Error {
    problems: Problem[];
}

export interface Problem {
    file: string;
    /** From 1, columns in bytes; 0 without a place. */
    line: number;
    column: number;
    text: string;
    /** A note does not keep the schema from compiling. */
    isNote: boolean;
}

/** What works on types; the loaded regions together, or one compiled schema. */
export interface Codec {
    /** All named types, or those whose names contain `pattern` in any case. */
    types(pattern?: string): TypeEntry[];
    /** @throws UnknownType */
    type(name: string): TypeInfo;
    /** What follows the message is not looked at. @throws DecodeError */
    decode(type: string, data: Uint8Array | string, rules?: Rules): Value;
    /** @throws EncodeError, ConstraintError */
    encode(type: string, value: Value, rules?: Exclude<Rules, TextRules>): Uint8Array;
    /** From any rules to any others, without a look at constraints. Text is indented by `indent` blanks (XER: by its own
     * measure), or in one line for 0. @throws DecodeError, EncodeError */
    convert(type: string, data: Uint8Array | string, from: Rules, to: TextRules, indent?: number): string;
    convert(type: string, data: Uint8Array | string, from: Rules, to: Exclude<Rules, TextRules>): Uint8Array;
    convert(type: string, data: Uint8Array | string, from: Rules, to: Rules, indent?: number): Uint8Array | string;
    /** The first constraint that the value violates, open types looked into; null if there is none.
     * @throws EncodeError for what is no value of the type */
    check(type: string, value: Value): ConstraintError | null;
    /** A message taken apart, by the decoder itself: uper, aper, oer, ber, der. */
    explain(type: string, data: Uint8Array, rules?: Exclude<Rules, TextRules>): Explanation;
    /** A value that satisfies all constraints; the same for the same seed, an integer. */
    random(type: string, seed?: number): Value;
}

export interface Schema extends Codec {
    /** What the user should know of a schema that compiles. */
    notes: Problem[];
    /** Releases it; its calls throw from then on. */
    free(): void;
}

export interface Orlenta extends Codec {
    version: string;
    /** Loads message sets, if they are not there yet. Names of a set's types are known only then. */
    need(...regions: Region[]): Promise<void>;
    loaded(): Region[];
    /** Compiles ASN.1 modules; loads the compiler first. @throws SchemaError */
    compile(texts: { name: string; text: string }[], options?: { region?: string }): Promise<Schema>;
}

export function load(options?: LoadOptions): Promise<Orlenta>;

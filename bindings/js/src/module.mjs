// SPDX-License-Identifier: Apache-2.0
// A wasm module: its memory, its functions, and a fresh start where the instance is of no more use.
import { ConstraintError, DecodeError, EncodeError, OrlentaError, ofBreakdown } from "./errors.mjs";
import { parse, placeOfLine, placeOfLostText, print } from "./json.mjs";

export const RULES = ["uper", "aper", "oer", "ber", "der", "jer", "xer", "gser"];
export const isText = (rules) => RULES.indexOf(rules) >= RULES.indexOf("jer");

const JER = RULES.indexOf("jer");
const FOR_JAVASCRIPT = -1; // in place of an indentation
const NO_MEMORY = "not enough memory";
const MAY_BE_LOST = /[^\0-\x7f]|\\ud/; // in JSON: what not every string type has

// Octets that an instance's memory, which never shrinks, may have grown by when it serves another call.
const KEPT = 64 << 20;

// Records of the library, as offsets.
const ERROR = { line: 0, bit: 4, path: 8, message: 264 };

const encoder = new TextEncoder();
const decoder = new TextDecoder();

// What the C library asks of a system. There are no files, no environment, no clock.
function systemFor(module, memory) {
    const NO_FILE = 8;
    const known = {
        emscripten_notify_memory_growth() {},
        environ_sizes_get(count, size) {
            new DataView(memory().buffer).setUint32(count, 0, true);
            new DataView(memory().buffer).setUint32(size, 0, true);
            return 0;
        },
        environ_get: () => 0,
        proc_exit(status) {
            throw new WebAssembly.RuntimeError(`exit ${status}`);
        },
    };
    const imports = {};
    for (const { module: from, name } of WebAssembly.Module.imports(module)) {
        imports[from] ??= {};
        imports[from][name] = known[name] ?? (() => NO_FILE);
    }
    return imports;
}

// Whether the library, or this file, has found something wrong: the instance is as it was.
const isOrderly = (error) => error instanceof OrlentaError;

// Does `work`, then `release`, which is nothing to try in an instance that broke down.
function thenRelease(work, release) {
    let result;
    try {
        result = work();
    } catch (error) {
        if (isOrderly(error)) release();
        throw error;
    }
    release();
    return result;
}

function bytesOf(data, rules) {
    if (typeof data === "string") {
        if (!isText(rules)) throw new TypeError(`${rules} is read from bytes`);
        return encoder.encode(data);
    }
    // An Uint8Array of another realm is no instance of this one's.
    if (Object.prototype.toString.call(data) === "[object Uint8Array]") return data;
    throw new TypeError(`a message is a Uint8Array${isText(rules) ? " or a string" : ""}`);
}

export class Module {
    #module;
    #onStart;
    #wasm; // the instance's functions and memory
    #isSound = false; // else the next call starts an instance
    #mostMemory;

    // `onStart` brings a fresh instance to where it is of use.
    constructor(module, onStart = () => {}) {
        this.#module = module;
        this.#onStart = onStart;
        this.#start();
    }

    #start() {
        let memory;
        const instance = new WebAssembly.Instance(this.#module, systemFor(this.#module, () => memory));
        memory = instance.exports.memory;
        instance.exports._initialize();
        this.#wasm = instance.exports;
        this.#mostMemory = Infinity;
        this.#isSound = true;
        let isReady = false;
        try {
            this.#onStart(this);
            isReady = true;
        } finally {
            this.#isSound &&= isReady;
        }
        this.#mostMemory = memory.buffer.byteLength + KEPT;
    }

    // Does what needs the module.
    #run(work) {
        if (!this.#isSound) this.#start();
        this.#isSound = false; // until the end, which the end of the stack may come before
        try {
            this.#wasm.js_begin();
            const result = work(this.#wasm);
            this.#end(true);
            return result;
        } catch (error) {
            this.#end(isOrderly(error));
            throw isOrderly(error) ? error : ofBreakdown(error);
        }
    }

    #end(isSound) {
        this.#isSound = isSound && this.#wasm.memory.buffer.byteLength <= this.#mostMemory;
        if (!this.#isSound) this.#wasm = undefined;
    }

    // ---- memory ----------------------------------------------------------------------------------------------

    #textAt(address) {
        const bytes = new Uint8Array(this.#wasm.memory.buffer, address);
        return decoder.decode(bytes.subarray(0, bytes.indexOf(0)));
    }

    #result() {
        const view = new DataView(this.#wasm.memory.buffer, this.#wasm.js_result(), 8);
        return new Uint8Array(this.#wasm.memory.buffer, view.getUint32(0, true), view.getUint32(4, true));
    }

    #resultText() {
        return decoder.decode(this.#result());
    }

    #error() {
        const at = this.#wasm.js_error();
        const view = new DataView(this.#wasm.memory.buffer, at);
        return {
            line: view.getInt32(ERROR.line, true),
            bit: view.getInt32(ERROR.bit, true),
            path: this.#textAt(at + ERROR.path),
            message: this.#textAt(at + ERROR.message),
        };
    }

    // Calls `work` with the address of a copy of the bytes, a zero byte behind them.
    #withBytes(bytes, work) {
        const at = bytes.length < 2 ** 31 ? this.#wasm.asn1_malloc(bytes.length + 1) : 0;
        if (at === 0) throw new OrlentaError(NO_MEMORY);
        const copy = new Uint8Array(this.#wasm.memory.buffer, at, bytes.length + 1);
        copy.set(bytes);
        copy[bytes.length] = 0;
        return thenRelease(() => work(at), () => this.#wasm.asn1_free(at));
    }

    // Calls `work` with a value's address.
    #withValue(type, value, work) {
        return thenRelease(() => work(value), () => this.#wasm.js_free_value(type, value));
    }

    // ---- values ----------------------------------------------------------------------------------------------

    #decode(type, data, rules, work) {
        return this.#withBytes(data, (at) => {
            const value = this.#wasm.js_decode(type, RULES.indexOf(rules), at, data.length);
            if (value !== 0) return this.#withValue(type, value, () => work(value));
            const { message, path, bit, line } = this.#error();
            throw new DecodeError(message, path, isText(rules) ? -1 : bit, isText(rules) ? line : 0);
        });
    }

    // From an object, which JSON stands between. What is wrong with it is found by the line.
    #fromObject(type, object, work) {
        const text = print(object);
        return this.#run(() => {
            try {
                return this.#decode(type, encoder.encode(text), "jer", (value) => {
                    if (MAY_BE_LOST.test(text)) this.#needCharacters(type, value, object);
                    return work(value);
                });
            } catch (error) {
                if (!(error instanceof DecodeError)) throw error;
                throw new EncodeError(error.message, placeOfLine(object, error.line));
            }
        });
    }

    // The library cuts characters to the room that a string type has for one.
    #needCharacters(type, value, object) {
        const path = placeOfLostText(object, this.#toObject(type, value));
        if (path !== undefined) throw new EncodeError("a character that its type does not have", path);
    }

    #encode(type, value, rules, indent) {
        if (this.#wasm.js_encode(type, RULES.indexOf(rules), value, indent) === 0) return this.#result().slice();
        const { message, path } = this.#error();
        throw new EncodeError(message, path);
    }

    #toObject(type, value) {
        if (this.#wasm.js_encode(type, JER, value, FOR_JAVASCRIPT) === 0) return parse(this.#resultText());
        const { message, path } = this.#error();
        throw new DecodeError(message, path, -1, 0);
    }

    #violation(type, value) {
        if (this.#wasm.js_check(type, value) === 1) return null;
        const { message, path } = this.#error();
        return new ConstraintError(message, path);
    }

    decode(type, data, rules) {
        const bytes = bytesOf(data, rules);
        return this.#run(() => this.#decode(type, bytes, rules, (value) => this.#toObject(type, value)));
    }

    encode(type, object, rules) {
        return this.#fromObject(type, object, (value) => {
            const violation = this.#violation(type, value);
            if (violation) throw violation;
            return this.#encode(type, value, rules, 0);
        });
    }

    convert(type, data, from, to, indent) {
        const bytes = bytesOf(data, from);
        return this.#run(() =>
            this.#decode(type, bytes, from, (value) => {
                const encoding = this.#encode(type, value, to, indent);
                return isText(to) ? decoder.decode(encoding).trimEnd() : encoding;
            }),
        );
    }

    check(type, object) {
        return this.#fromObject(type, object, (value) => this.#violation(type, value));
    }

    random(type, seed) {
        return this.#run((wasm) => {
            const value = wasm.js_random(type, seed);
            if (value === 0) throw new OrlentaError(this.#error().message);
            return this.#withValue(type, value, () => this.#toObject(type, value));
        });
    }

    explain(type, data, rules) {
        const bytes = bytesOf(data, rules);
        return this.#run((wasm) =>
            this.#withBytes(bytes, (at) => {
                if (wasm.js_explain(type, RULES.indexOf(rules), at, bytes.length) !== 0)
                    throw new OrlentaError(NO_MEMORY);
                const bits = parse(this.#resultText());
                const { message, path, bit } = this.#error();
                return { bits, error: message ? new DecodeError(message, path, bit, 0) : undefined };
            }),
        );
    }

    // ---- types -----------------------------------------------------------------------------------------------

    // The descriptor's address, or 0, and how many types the name could mean.
    find(name) {
        if (name.includes("\0")) return { type: 0, found: 0 };
        return this.#run((wasm) =>
            this.#withBytes(encoder.encode(name), (at) => {
                const type = wasm.js_find(at);
                return { type, found: this.#result().length };
            }),
        );
    }

    types() {
        return this.#run((wasm) => {
            if (wasm.js_types() !== 0) throw new OrlentaError(NO_MEMORY);
            return this.#resultText()
                .trimEnd()
                .split("\n")
                .filter((line) => line)
                .map((line) => {
                    const [region, module, name, isRoot] = line.split("\t");
                    return { region, module, name, isRoot: isRoot === "1" };
                });
        });
    }

    describe(type) {
        return this.#run((wasm) => {
            if (wasm.js_describe(type) !== 0) throw new OrlentaError(NO_MEMORY);
            return parse(this.#resultText());
        });
    }

    // ---- schemas ---------------------------------------------------------------------------------------------

    // Gives the problems, and whether there are types now.
    compile(texts, region) {
        return this.#run((wasm) => {
            // What is copied stays: the module has no other use for its memory.
            const place = (bytes) => {
                const at = wasm.asn1_malloc(bytes.length);
                if (at === 0) throw new OrlentaError(NO_MEMORY);
                new Uint8Array(wasm.memory.buffer, at).set(bytes);
                return at;
            };
            const placeText = (text) => place(encoder.encode(`${text}\0`));
            const words = texts.flatMap(({ name, text }) => {
                const bytes = encoder.encode(text);
                return [placeText(name), place(bytes), bytes.length];
            });
            const sources = place(new Uint8Array(Uint32Array.from(words).buffer));
            const status = wasm.js_compile(sources, texts.length, region ? placeText(region) : 0);
            return { succeeded: status === 0, problems: JSON.parse(this.#resultText() || "[]") };
        });
    }
}

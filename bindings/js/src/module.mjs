// SPDX-License-Identifier: Apache-2.0
// A wasm module: its memory, its functions, and a fresh start after a trap.
import { DecodeError, EncodeError, ConstraintError, OrlentaError } from "./errors.mjs";
import { parse, print } from "./json.mjs";

export const RULES = ["uper", "aper", "oer", "ber", "der", "jer", "xer", "gser"];
export const isText = (rules) => RULES.indexOf(rules) >= RULES.indexOf("jer");

const JER = RULES.indexOf("jer");
const FOR_JAVASCRIPT = -1; // in place of an indentation
const NO_MEMORY = "not enough memory";

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

export class Module {
    #module;
    #onStart;
    #isStarting = false;
    #wasm;

    // `onStart` brings a fresh instance to where it is of use.
    constructor(module, onStart = () => {}) {
        this.#module = module;
        this.#onStart = onStart;
        this.#start();
    }

    #start() {
        const instance = new WebAssembly.Instance(
            this.#module,
            systemFor(this.#module, () => this.#wasm.memory),
        );
        this.#wasm = instance.exports;
        this.#wasm._initialize?.();
        this.#isStarting = true;
        this.#onStart(this);
        this.#isStarting = false;
    }

    // Does what needs the module. One that ran out of memory or stack starts afresh.
    #run(work) {
        try {
            return work(this.#wasm);
        } catch (error) {
            const isTrap = error instanceof WebAssembly.RuntimeError || error instanceof RangeError;
            if (!this.#isStarting && (isTrap || error?.message?.startsWith(NO_MEMORY))) this.#start();
            if (!isTrap) throw error;
            throw new OrlentaError(error instanceof RangeError ? "value nested too deeply" : NO_MEMORY);
        }
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
        const at = this.#wasm.asn1_malloc(bytes.length + 1);
        if (at === 0) throw new OrlentaError(NO_MEMORY);
        const copy = new Uint8Array(this.#wasm.memory.buffer, at, bytes.length + 1);
        copy.set(bytes);
        copy[bytes.length] = 0;
        try {
            return work(at);
        } finally {
            this.#wasm.asn1_free(at);
        }
    }

    // Calls `work` with a value's address.
    #withValue(type, value, work) {
        try {
            return work(value);
        } finally {
            this.#wasm.js_free_value(type, value);
        }
    }

    // ---- values ----------------------------------------------------------------------------------------------

    #decode(type, data, rules, work) {
        if (typeof data === "string") {
            if (!isText(rules)) throw new TypeError(`${rules} is read from bytes`);
            data = encoder.encode(data);
        }
        return this.#withBytes(data, (at) => {
            const value = this.#wasm.js_decode(type, RULES.indexOf(rules), at, data.length);
            if (value !== 0) return this.#withValue(type, value, work);
            const { message, path, bit, line } = this.#error();
            throw new DecodeError(message, path, isText(rules) ? -1 : bit, isText(rules) ? line : 0);
        });
    }

    // From an object, which JSON stands between.
    #fromObject(type, object, work) {
        try {
            return this.#decode(type, print(object), "jer", work);
        } catch (error) {
            if (!(error instanceof DecodeError)) throw error;
            throw new EncodeError(error.message, error.path);
        }
    }

    #encode(type, value, rules, indent) {
        if (this.#wasm.js_encode(type, RULES.indexOf(rules), value, indent) === 0) return this.#result().slice();
        const { message, path } = this.#error();
        throw new EncodeError(message || "the value cannot be encoded", path);
    }

    #toObject(type, value) {
        if (this.#wasm.js_encode(type, JER, value, FOR_JAVASCRIPT) !== 0) throw new OrlentaError(NO_MEMORY);
        return parse(this.#resultText());
    }

    #violation(type, value) {
        if (this.#wasm.js_check(type, value) === 1) return null;
        const { message, path } = this.#error();
        return new ConstraintError(message, path);
    }

    decode(type, data, rules) {
        return this.#run(() => this.#decode(type, data, rules, (value) => this.#toObject(type, value)));
    }

    encode(type, object, rules) {
        return this.#run(() =>
            this.#fromObject(type, object, (value) => {
                const violation = this.#violation(type, value);
                if (violation) throw violation;
                return this.#encode(type, value, rules, 0);
            }),
        );
    }

    convert(type, data, from, to, indent) {
        return this.#run(() =>
            this.#decode(type, data, from, (value) => {
                const bytes = this.#encode(type, value, to, indent);
                return isText(to) ? decoder.decode(bytes).trimEnd() : bytes;
            }),
        );
    }

    check(type, object) {
        return this.#run(() => this.#fromObject(type, object, (value) => this.#violation(type, value)));
    }

    random(type, seed) {
        return this.#run((wasm) => {
            const value = wasm.js_random(type, seed);
            if (value === 0) throw new OrlentaError("no value could be made");
            return this.#withValue(type, value, () => this.#toObject(type, value));
        });
    }

    explain(type, data, rules) {
        return this.#run((wasm) =>
            this.#withBytes(data, (at) => {
                if (wasm.js_explain(type, RULES.indexOf(rules), at, data.length) !== 0)
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
            const bytes = (text) => {
                const encoded = encoder.encode(text);
                const at = wasm.asn1_malloc(encoded.length + 1);
                if (at === 0) throw new OrlentaError(NO_MEMORY);
                new Uint8Array(wasm.memory.buffer, at).set([...encoded, 0]);
                return [at, encoded.length];
            };
            // The texts stay: the module has no other use for its memory.
            const words = texts.flatMap(({ name, text }) => [bytes(name)[0], ...bytes(text)]);
            const sources = wasm.asn1_malloc(4 * words.length + 4);
            if (sources === 0) throw new OrlentaError(NO_MEMORY);
            new Uint32Array(wasm.memory.buffer, sources, words.length).set(words);
            const status = wasm.js_compile(sources, texts.length, region ? bytes(region)[0] : 0);
            return { succeeded: status === 0, problems: JSON.parse(this.#resultText()) };
        });
    }
}

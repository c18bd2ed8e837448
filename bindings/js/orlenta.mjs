// SPDX-License-Identifier: Apache-2.0
// Vehicle messages between bytes and objects; orlenta.d.ts tells what each call does.
import { Codec } from "./src/codec.mjs";
import { OrlentaError, SchemaError } from "./src/errors.mjs";
import { Module } from "./src/module.mjs";
import { VERSION } from "./src/version.mjs";

export {
    ConstraintError, DecodeError, EncodeError, OrlentaError, SchemaError, UnknownType,
} from "./src/errors.mjs";

const REGIONS = ["CN", "EU", "US", "RRC"];
const COMPILER = "schema.wasm";

async function readBeside(file) {
    const url = new URL(`./wasm/${file}`, import.meta.url);
    if (url.protocol === "file:") {
        const { readFile } = await import("node:fs/promises");
        return readFile(url);
    }
    const response = await fetch(url);
    if (!response.ok) throw new OrlentaError(`${url}: ${response.status}`);
    return new Uint8Array(await response.arrayBuffer());
}

class Schema extends Codec {
    constructor(module, notes) {
        super([module]);
        this.notes = notes;
    }

    free() {
        this.release();
        for (const call of ["types", "type", "decode", "encode", "convert", "check", "explain", "random"])
            this[call] = () => {
                throw new OrlentaError("the schema was released");
            };
    }
}

class Orlenta extends Codec {
    #read;
    #compiled = new Map(); // promises of WebAssembly.Module by file
    #loaded = new Map(); // promises by region
    #ready = [];
    version = VERSION;

    constructor(read) {
        super();
        this.#read = read;
    }

    #file(name) {
        if (!this.#compiled.has(name)) {
            const compiled = this.#read(name).then((bytes) => WebAssembly.compile(bytes));
            compiled.catch(() => this.#compiled.delete(name)); // to be tried again
            this.#compiled.set(name, compiled);
        }
        return this.#compiled.get(name);
    }

    async #load(region) {
        const module = new Module(await this.#file(`${region.toLowerCase()}.wasm`));
        this.addModules([module]);
        this.#ready.push(region);
    }

    async need(...regions) {
        for (const region of regions)
            if (!REGIONS.includes(region)) throw new OrlentaError(`no message set ${region}`);
        await Promise.all(
            regions.map((region) => {
                if (!this.#loaded.has(region)) {
                    const loading = this.#load(region);
                    loading.catch(() => this.#loaded.delete(region));
                    this.#loaded.set(region, loading);
                }
                return this.#loaded.get(region);
            }),
        );
    }

    loaded() {
        return [...this.#ready];
    }

    // Each schema has an instance of the compiler of its own, which ends with it.
    async compile(texts, { region } = {}) {
        const sources = texts.map(({ name, text }) => ({ name, text })); // for fresh starts, whatever becomes of these
        let problems;
        const module = new Module(await this.#file(COMPILER), (fresh) => {
            const outcome = fresh.compile(sources, region);
            problems = outcome.problems;
            if (!outcome.succeeded) throw new SchemaError(problems);
        });
        return new Schema(module, problems);
    }
}

export async function load({ regions = [], read = readBeside } = {}) {
    const orlenta = new Orlenta(read);
    await orlenta.need(...regions);
    return orlenta;
}

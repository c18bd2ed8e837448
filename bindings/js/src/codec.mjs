// SPDX-License-Identifier: Apache-2.0
// What works on types: the loaded message sets together, or one schema.
import { RULES, isText } from "./module.mjs";
import { Names, findType, typeInfo } from "./types.mjs";

// By orlenta_bits_kind of <orlenta/explain.h>.
const BITS = [
    "value", "extension", "presence", "index", "tag", "length", "fragment", "padding", "end", "unknown", "trailing",
    "refused",
];

function needRules(rules, mayBeText) {
    if (!RULES.includes(rules) || (isText(rules) && !mayBeText)) throw new TypeError(`no such rules here: ${rules}`);
}

export class Codec {
    #modules = [];
    #entries = [];
    #names = new Names([]);
    #types = new Map(); // by name
    #known = new Map(); // by module, then address

    constructor(modules = []) {
        this.addModules(modules);
    }

    // Lets go of everything.
    release() {
        this.#modules = [];
        this.addModules([]);
    }

    addModules(modules) {
        const all = [...this.#modules, ...modules];
        const entries = all.flatMap((module) => module.types());
        this.#modules = all;
        this.#names = new Names(entries);
        this.#entries = entries.map(({ name, ...entry }) => ({ name: this.#names.of({ name, ...entry }), ...entry }));
        this.#types.clear();
        this.#known.clear(); // names may have grown a module's
    }

    #find(name) {
        let hit = this.#types.get(name);
        if (!hit) {
            hit = findType(this.#modules, name, this.#entries.map((entry) => entry.name));
            this.#types.set(name, hit);
        }
        return hit;
    }

    #info({ module, type }) {
        if (!this.#known.has(module)) this.#known.set(module, new Map());
        return typeInfo(module, this.#names, type, this.#known.get(module));
    }

    types(pattern = "") {
        const wanted = pattern.toLowerCase();
        return this.#entries.filter((entry) => entry.name.toLowerCase().includes(wanted));
    }

    type(name) {
        return this.#info(this.#find(name));
    }

    decode(name, data, rules = "uper") {
        needRules(rules, true);
        const { module, type } = this.#find(name);
        return module.decode(type, data, rules);
    }

    encode(name, value, rules = "uper") {
        needRules(rules, false);
        const { module, type } = this.#find(name);
        return module.encode(type, value, rules);
    }

    convert(name, data, from, to, indent = 0) {
        needRules(from, true);
        needRules(to, true);
        const { module, type } = this.#find(name);
        return module.convert(type, data, from, to, indent);
    }

    check(name, value) {
        const { module, type } = this.#find(name);
        return module.check(type, value);
    }

    random(name, seed = 1) {
        const { module, type } = this.#find(name);
        return module.random(type, seed);
    }

    explain(name, data, rules = "uper") {
        needRules(rules, false);
        const { module, type } = this.#find(name);
        const { bits, error } = module.explain(type, data, rules);
        for (const run of bits) {
            const info = this.#info({ module, type: run.type });
            run.kind = BITS[run.kind];
            run.type = info.name ?? info.kind;
        }
        return error ? { bits, error } : { bits };
    }
}

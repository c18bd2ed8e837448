// SPDX-License-Identifier: Apache-2.0
// The ends of memory and of both stacks: an error of the library, and the next call works.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { readFile } from "node:fs/promises";
import { test } from "node:test";

import { orlenta } from "./package.mjs";

const bsm = readFileSync(new URL("../../../examples/bsm.uper", import.meta.url));
const FRAME = "CN.MessageFrame";
const text = `Lists DEFINITIONS AUTOMATIC TAGS ::= BEGIN
    List ::= SEQUENCE OF Item
    Item ::= CHOICE { list List, text UTF8String, end NULL }
    Records ::= SEQUENCE OF SEQUENCE { a OCTET STRING OPTIONAL, b OCTET STRING OPTIONAL, c INTEGER OPTIONAL }
END`;

// The wasm files, with a memory of at most so many pages of 64 KiB.
const PAGES = 1 << 15;
const readWith = (pages) => async (file) => {
    const bytes = await readFile(`${process.env.ORLENTA_PACKAGE}/wasm/${file}`);
    const limit = (most) => Buffer.from([0x80 | (most & 0x7f), 0x80 | ((most >> 7) & 0x7f), most >> 14]);
    const at = bytes.indexOf(limit(PAGES), 0);
    assert.ok(at > 0 && at < 65536, "the memory's limit is where the sections begin");
    limit(pages).copy(bytes, at);
    return bytes;
};

let starts = 0;
WebAssembly.Instance = class extends WebAssembly.Instance {
    constructor(...of) {
        super(...of);
        starts += 1;
    }
};

const outcome = (work) => {
    try {
        work();
        return "";
    } catch (error) {
        if (!(error instanceof orlenta.OrlentaError)) throw error;
        return error.message;
    }
};

test("memory exhausted", async () => {
    const codec = await orlenta.load({ regions: ["CN"], read: readWith(64) });
    const schema = await codec.compile([{ name: "lists.asn1", text }]);
    const value = codec.decode(FRAME, bsm);
    const list = schema.type("List");
    const records = new Uint8Array(2 + (3 << 16) / 8); // a fragment of 64 K empty records, 3 bits each, and an empty one
    records[0] = 0xc4;
    const rows = {
        "a message": () => codec.decode(FRAME, new Uint8Array(8 << 20)),
        "more than an address tells": () => codec.decode(FRAME, new Uint8Array(2 ** 31)),
        "a text": () => schema.decode("List", `[{"text":"${"x".repeat(5 << 20)}"}]`, "jer"),
        "an object": () => schema.encode("List", [{ text: "x".repeat(5 << 20) }]),
        "a value of a short message": () => schema.decode("Records", records),
        "an encoding": () => schema.convert("List", `[{"text":"${"x".repeat(1200000)}"}]`, "jer", "ber"),
        "an explanation": () => schema.explain("Records", records),
    };
    for (const [name, work] of Object.entries(rows)) {
        assert.equal(outcome(work), "not enough memory", name);
        assert.deepEqual(codec.decode(FRAME, codec.encode(FRAME, value)), value, name);
        assert.deepEqual(schema.decode("List", schema.encode("List", [{ end: null }])), [{ end: null }], name);
    }
    // Types that were found before, and were not looked into.
    assert.deepEqual(list.element.alternatives.map(({ name, type }) => [name, type.kind]),
        [["list", "SEQUENCE OF"], ["text", "string"], ["end", "NULL"]]);
    const seen = new Set();
    for (let size = text.length; size < 3 << 20; size += 1 << 17)
        seen.add(await codec.compile([{ name: "lists.asn1", text: text.padEnd(size) }])
            .then((large) => large.types().length, ({ message }) => message));
    assert.deepEqual([...seen], [3, "not enough memory"]);
});

test("memory that ends at each of a call's allocations", async () => {
    const codec = await orlenta.load({ regions: ["CN"], read: readWith(32) });
    const value = codec.decode(FRAME, bsm);
    const json = JSON.stringify(value);
    const convert = (size, rules) => outcome(() => codec.convert(FRAME, json.padEnd(size), "jer", rules));
    // All memory is in use by texts that leave less and less of it to the value and its encoding.
    let size = 3 << 19;
    for (const step of [4096, 512]) while (convert(size + step, "uper") === "") size += step;
    const seen = new Map();
    for (const end = size + 2048; size < end; size += 64)
        for (const rules of ["uper", "oer", "ber", "der", "jer", "xer", "gser"]) {
            const message = convert(size, rules);
            seen.set(message, (seen.get(message) ?? 0) + 1);
        }
    assert.deepEqual([...seen.keys()].sort(), ["", "not enough memory"]);
    assert.deepEqual(codec.decode(FRAME, codec.encode(FRAME, value)), value);
});

test("after a value that takes much memory the schema is compiled anew, from the same texts", async () => {
    const codec = await orlenta.load();
    const texts = [{ name: "lists.asn1", text }];
    const schema = await codec.compile(texts);
    const list = schema.type("List");
    texts[0].text = "no schema any more";
    starts = 0;
    assert.ok(schema.encode("List", [{ text: "x".repeat(30 << 20) }]).length > 30 << 20);
    assert.equal(list.element.kind, "CHOICE");
    assert.equal(starts, 1);
});

test("stacks exhausted", async () => {
    const codec = await orlenta.load({ regions: ["CN"] });
    const schema = await codec.compile([{ name: "lists.asn1", text }]);
    const value = codec.decode(FRAME, bsm);
    const again = () => {
        assert.deepEqual(codec.decode(FRAME, codec.encode(FRAME, value)), value);
        assert.deepEqual(schema.decode("List", schema.encode("List", [{ end: null }])), [{ end: null }]);
    };
    const nested = (depth) => "[" + '{"list":['.repeat(depth) + "]}".repeat(depth) + "]";
    const object = (depth) => (depth === 0 ? [] : [{ list: object(depth - 1) }]);
    const rows = {
        "a text": () => schema.decode("List", nested(200000), "jer"),
        "an object": () => schema.encode("List", object(2000)),
        "a message": () => schema.decode("List", new Uint8Array(1 << 20).fill(0x01)),
    };
    for (const [name, work] of Object.entries(rows)) {
        assert.match(outcome(work), /^value nested too deeply/, name);
        again();
    }
    // Calls from the last frames of JavaScript's stack, the first of which cannot even begin.
    starts = 0;
    let refused = 0;
    const dive = (work) => {
        try {
            dive(work);
        } catch (error) {
            if (!(error instanceof RangeError)) throw error;
        }
        if (refused < 50 && outcome(work) === "value nested too deeply") refused += 1;
    };
    dive(() => schema.decode("List", nested(300), "jer"));
    assert.deepEqual([refused, starts > 1], [50, true]);
    again();
});

test("a schema that refers too far", async () => {
    const codec = await orlenta.load();
    const chain = Array.from({ length: 5000 }, (_, i) => `v${i} INTEGER ::= v${i + 1}`).join("\n");
    const far = `Far DEFINITIONS ::= BEGIN ${chain} v5000 INTEGER ::= 1 A ::= INTEGER (v0) END`;
    await assert.rejects(codec.compile([{ name: "far.asn1", text: far }]), orlenta.SchemaError);
});

// SPDX-License-Identifier: Apache-2.0
import assert from "node:assert/strict";
import { test } from "node:test";
import type { Bits, Special, TypeInfo, Value } from "orlenta";
import { minimalValue } from "../src/codec/minimal";
import { partialValue } from "../src/codec/partial";
import { isWithin, parsePath, withValueAt } from "../src/codec/path";
import { find, outlineOf } from "../src/text/outline";
import { valueFrom } from "../src/view/edit";
import { meaning } from "../src/view/value-text";

const plain = { isExtensible: false };

test("paths and the values at them", () => {
    assert.deepEqual(parsePath("a.b-c[3][0].d"), ["a", "b-c", 3, 0, "d"]);
    assert.deepEqual(
        ["a", "a.b", "a[0]", "ab"].map((path) => isWithin(path, "a")),
        [true, true, true, false],
    );
    const value: Value = { a: { b: [1, 2, 3] }, c: 4 };
    const rows: [path: string, part: Value | undefined, after: Value][] = [
        ["a.b[1]", 9, { a: { b: [1, 9, 3] }, c: 4 }],
        ["a.b[1]", undefined, { a: { b: [1, 3] }, c: 4 }],
        ["a.b[3]", 7, { a: { b: [1, 2, 3, 7] }, c: 4 }],
        ["c", undefined, { a: { b: [1, 2, 3] } }],
        ["d", { e: null }, { a: { b: [1, 2, 3] }, c: 4, d: { e: null } }],
    ];
    for (const [path, part, after] of rows) assert.deepEqual(withValueAt(value, parsePath(path), part), after, path);
    assert.deepEqual(value, { a: { b: [1, 2, 3] }, c: 4 });
});

test("what had been read before an error", () => {
    const run = (path: string, value?: Value) => ({ path, value }) as Bits;
    const runs = [run("a"), run("a.b[0].c", 1), run("a.b[1].c", 2), run("a.d", "x"), run("a.e")];
    assert.deepEqual(partialValue(runs), { a: { b: [{ c: 1 }, { c: 2 }], d: "x" } });
    assert.equal(partialValue([run("")]), undefined);
    assert.deepEqual(partialValue([run("[0]", 1), run("[1]", 2)]), [1, 2]);
    assert.deepEqual(partialValue([run("a[2]", 1), run("a[4].b[1]", 2)]), { a: [{}, {}, 1, {}, { b: [{}, 2] }] });
});

test("smallest values, and values from what is typed", () => {
    const integer: TypeInfo = { kind: "INTEGER", ...plain, lower: -2, upper: 7 };
    const list: TypeInfo = { kind: "SEQUENCE OF", ...plain, lower: 2, element: { kind: "BOOLEAN", ...plain } };
    const record: TypeInfo = {
        kind: "SEQUENCE",
        isExtensible: true,
        components: [
            { name: "a", type: { ...integer, lower: 3 }, presence: "mandatory", isAddition: false },
            { name: "b", type: integer, presence: "optional", isAddition: false },
            { name: "c", type: list, presence: "mandatory", isAddition: false },
        ],
    };
    assert.deepEqual(minimalValue(record), { a: 3, c: [false, false] });

    const bits = (lower: number, upper: number): TypeInfo => ({ kind: "BIT STRING", ...plain, lower, upper });
    const typed: [text: string, type: TypeInfo, value: Value | undefined][] = [
        ["7", integer, 7],
        ["8", integer, undefined],
        ["8", { ...integer, isExtensible: true }, 8],
        ["1e1", integer, undefined],
        ["9007199254740993", { kind: "INTEGER", ...plain }, 9007199254740993n],
        ["101", bits(3, 3), "a0"],
        ["10", bits(3, 3), undefined],
        ["10", bits(0, 9), { value: "80", length: 2 }],
        ["0a 1b", { kind: "OCTET STRING", ...plain }, "0a1b"],
        ["0a1", { kind: "OCTET STRING", ...plain }, undefined],
        ["-INF", { kind: "REAL", ...plain }, "-INF"],
        ["", { kind: "REAL", ...plain }, undefined],
    ];
    for (const [text, type, value] of typed) {
        const got = valueFrom(text, type);
        assert.deepEqual(typeof got === "symbol" ? undefined : got, value, `${text} ${type.kind}`);
    }
});

test("the lines of a component in the text rules", () => {
    const rows: [rules: "jer" | "xer" | "gser", text: string, path: string, part: string][] = [
        ["jer", '{"a": {"b": [1, {"c": "}"}]}, "d": 2}', "a.b[1].c", '"c": "}"'],
        ["jer", '{"a": {"b": [1, 2]}}', "a.b[1]", "2"],
        ["xer", "<M><a><x>1</x><x>2</x></a><b/></M>", "a[1]", "<x>2</x>"],
        ["xer", '<?xml version="1.0"?><M><b/></M>', "b", "<b/>"],
        ["xer", "<M><a><x><b>1</b></x><y><b>2</b></y></a></M>", "a[1].y.b", "<b>2</b>"],
        ["xer", "<M><open><T><b>1</b></T></open></M>", "open.b", "<b>1</b>"],
        ["gser", '{ a { b 1, c x : "}" }, d { 1, 2 } }', "a.c.x", '"}"'],
        ["gser", "{ a { b 1 }, d { 1, 2 } }", "d[1]", "2"],
    ];
    for (const [rules, text, path, part] of rows) {
        const { start, end } = find(outlineOf(text, rules), parsePath(path));
        assert.equal(text.slice(start, end), part, `${rules} ${path}`);
    }
});

test("what numbers stand for", () => {
    const special: Special[] = [
        { value: 8190, last: 8190, meaning: "orMore", limit: 1 },
        { value: 8191, last: 8191, meaning: "unavailable" },
    ];
    const of = (scale: number, unit: string, offset = 0): TypeInfo => ({
        kind: "INTEGER",
        ...plain,
        unit: { unit, scale, offset, special },
    });
    const rows: [value: Value, type: TypeInfo, text: string][] = [
        [399087153, of(1e-7, "deg"), "39.9087153°"],
        [-3, of(1.5, "deg"), "-4.5°"],
        [7184, of(0.0125, "deg"), "89.8°"],
        [694, of(0.02, "m/s"), "13.88 m/s"],
        [42, of(0.01, "m/s^2"), "0.42 m/s²"],
        [60, of(1, "%", -40), "20 %"],
        [5, of(1, "m"), "m"],
        [8190, of(1, "m"), "m orMore"],
        [8190, of(0.02, "m/s"), "163.8 m/s orMore"],
        [5n, of(100, "m"), "500 m"],
        [8191, of(0.02, "m/s"), "unavailable"],
        [1, { kind: "INTEGER", ...plain }, ""],
    ];
    for (const [value, type, text] of rows) assert.equal(meaning(value, type), text);
});

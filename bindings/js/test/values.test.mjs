// SPDX-License-Identifier: Apache-2.0
// Values on their way between objects and messages: what JavaScript and ASN.1 do not share.
import assert from "node:assert/strict";
import { test } from "node:test";

import { loadBuilt } from "./package.mjs";

const codec = await loadBuilt([]);
const schema = await codec.compile([{ name: "values.asn1", text: `Values DEFINITIONS AUTOMATIC TAGS ::= BEGIN
    Record ::= SEQUENCE { number INTEGER (0..100), list SEQUENCE OF Inner, constructor INTEGER OPTIONAL }
    Inner ::= SEQUENCE { name IA5String, size BIT STRING (SIZE (1..9)) OPTIONAL, item Item OPTIONAL }
    Item ::= ENUMERATED { a, b, ... }
    Choice ::= CHOICE { a NULL, ... }
    Oid ::= OBJECT IDENTIFIER
    Any ::= INTEGER
    Safe ::= INTEGER (-9007199254740991..9007199254740991)
    Above ::= INTEGER (0..9007199254740992)
    Extensible ::= INTEGER (0..1099511627776, ...)
    Real ::= REAL
    Utf8 ::= UTF8String
    Bmp ::= BMPString
    Visible ::= VisibleString
    Nest ::= SEQUENCE OF Nest
END` }]);
const bytes = (hex) => Uint8Array.from(Buffer.from(hex, "hex"));
const thrown = (work) => {
    try {
        return assert.fail(`this was taken, and gave ${work()}`);
    } catch (error) {
        return error;
    }
};

test("what is given comes back, or what stands for it", () => {
    for (const [type, given, back = given] of [
        ["Any", 5, 5n], ["Any", -0, 0n], ["Any", 2 ** 62, 2n ** 62n], ["Any", -(2n ** 200n)],
        ["Safe", 2 ** 53 - 1], ["Safe", 1n - 2n ** 53n, 1 - 2 ** 53], ["Above", 2n ** 53n], ["Above", 0, 0n],
        ["Extensible", 2 ** 40], ["Extensible", 2n ** 70n],
        ["Real", 0.1], ["Real", -1e300], ["Real", 5e-324], ["Real", 2 ** 62], ["Real", 123456789012345680000],
        ["Real", NaN, "NaN"], ["Real", -Infinity, "-INF"], ["Real", -0, 0], ["Real", "-0"],
        ["Utf8", '\0\x7f"\\\u2028\ufeff\u{1F600}'], ["Bmp", "\u00e4\u4e2d"], ["Visible", ""],
        ["Record", { number: -0, list: [], constructor: 7n }, { number: 0, list: [], constructor: 7n }],
        ["Record", { number: 1, list: [{ name: "x", item: undefined }] }, { number: 1, list: [{ name: "x" }] }],
    ])
        for (const rules of ["uper", "der"])
            assert.deepEqual(schema.decode(type, schema.encode(type, given, rules), rules), back, type);
});

test("what is no value is refused, with its path", () => {
    const inner = { name: "x" };
    for (const [type, given, path, message] of [
        ["Record", { number: 0.5, list: [] }, "number", "expecting integer value"],
        ["Record", { number: "1", list: [] }, "number", "expecting integer value"],
        ["Record", { number: 1n << 40n, list: [] }, "number", "integer too large"],
        ["Record", { number: 1, list: [inner, { name: 5 }] }, "list[1].name", "expecting character string"],
        ["Record", { number: 1, list: [inner, , inner] }, "list[1]", "expecting '{'"],
        ["Record", { number: 1, list: [inner, { item: "a" }] }, "list[1]", "component 'name' must be present"],
        ["Record", { number: 1, list: [inner, {}], constructor: 1 }, "list[1]", "component 'name' must be present"],
        ["Record", { number: 1 }, "", "component 'list' must be present"],
        ["Record", { number: 1, list: [{ ...inner, item: "z" }] }, "list[0].item", "enumerated 'z' not found"],
        ["Record", { number: 1, list: [{ ...inner, item: Symbol("a") }] }, "list[0].item", "expecting enumerated string"],
        ["Record", { number: 1, list: [], more: 1 }, "more", "sequence/set component 'more' not found"],
        ["Record", JSON.parse('{"__proto__":{}}'), "__proto__", "sequence/set component '__proto__' not found"],
        ["Record", { number: 1, list: [{ ...inner, size: "ff" }] }, "list[0].size",
            "variable length bit string must be encoded as a JSON object"],
        ["Record", { number: 1, list: [{ name: "\u0141" }] }, "list[0].name", "a character that its type does not have"],
        ["Bmp", "\u{1F600}", "", "a character that its type does not have"],
        ["Utf8", "\ud800", "", "a character that its type does not have"],
        ["Any", undefined, "", "expecting integer value"], ["Any", 2 ** 70, "", "expecting integer value"],
        ["Any", null, "", "expecting integer value"],
    ]) {
        const error = thrown(() => schema.encode(type, given));
        assert.equal(error.name, "EncodeError");
        assert.deepEqual([error.path, error.message], [path, path ? `${message} (at ${path})` : message]);
    }
    const cycle = { number: 1, list: [] };
    cycle.list.push(cycle);
    assert.equal(thrown(() => schema.encode("Record", cycle)).message, "value nested too deeply");
    const far = (depth) => (depth === 0 ? [5] : [far(depth - 1)]);
    const { path } = thrown(() => schema.encode("Nest", far(40)));
    assert.equal(path, `(...)${"[0]".repeat(32)}`);
    const outside = thrown(() => schema.convert("Record", '{"number":101,"list":[]}', "jer", "uper"));
    assert.deepEqual([outside.name, outside.path], ["EncodeError", "number"]);
});

test("what messages have that the types do not know", () => {
    assert.equal(schema.decode("Item", bytes("80")), null);
    assert.deepEqual(schema.decode("Choice", bytes("800101")), {});
    assert.equal(schema.decode("Safe", bytes("020900ffffffffffffffff"), "ber"), 2n ** 64n - 1n);
    const { bits } = schema.explain("Safe", bytes("020900ffffffffffffffff"), "ber");
    assert.equal(bits.at(-1).value, 2n ** 64n - 1n);
    assert.equal(thrown(() => schema.decode("Oid", bytes("0180"))).name, "DecodeError");
    const unknown = thrown(() => schema.convert("Item", bytes("80"), "uper", "jer"));
    assert.deepEqual([unknown.name, unknown.message], ["EncodeError", "invalid enumerated value"]);
});

test("what is no message", () => {
    const octets = bytes("0105");
    for (const data of [octets.buffer, new Uint16Array(octets), [1, 5], "0105", undefined])
        for (const call of ["decode", "explain"]) assert.throws(() => schema[call]("Any", data), TypeError);
    assert.equal(schema.decode("Any", octets), 5n);
    assert.equal(thrown(() => schema.type("Any\0")).name, "UnknownType");
});

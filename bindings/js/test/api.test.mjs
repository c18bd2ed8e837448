// SPDX-License-Identifier: Apache-2.0
// What the calls give and throw.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";

import { loadBuilt, orlenta } from "./package.mjs";

const bsm = readFileSync(new URL("../../../examples/bsm.uper", import.meta.url));
const FRAME = "CN.MessageFrame";

test("a message between bytes, objects and texts", async () => {
    const codec = await loadBuilt(["CN"]);
    assert.deepEqual(codec.loaded(), ["CN"]);
    const value = codec.decode(FRAME, bsm);
    assert.equal(value.bsmFrame.msgCnt, 17);
    assert.deepEqual(Buffer.from(codec.encode(FRAME, value)), bsm);
    for (const rules of ["aper", "oer", "ber", "der", "jer", "xer", "gser"]) {
        const other = codec.convert(FRAME, bsm, "uper", rules);
        assert.equal(typeof other, ["jer", "xer", "gser"].includes(rules) ? "string" : "object");
        assert.deepEqual(codec.decode(FRAME, other, rules), value, rules);
    }
    assert.match(codec.convert(FRAME, bsm, "uper", "jer", 2), /^\{\n  "bsmFrame": \{\n/);
    assert.equal(codec.check(FRAME, value), null);
    assert.deepEqual(codec.decode(FRAME, codec.encode(FRAME, codec.random(FRAME, 7))), codec.random(FRAME, 7));
});

test("errors tell what, where and in which part", async () => {
    const codec = await loadBuilt(["CN"]);
    const value = codec.decode(FRAME, bsm);
    const thrown = (work) => {
        try {
            work();
        } catch (error) {
            return error;
        }
        return assert.fail("nothing was thrown");
    };
    const cut = thrown(() => codec.decode(FRAME, bsm.subarray(0, 20)));
    assert.ok(cut instanceof orlenta.DecodeError);
    assert.match(cut.message, /reading after end of stream/);
    assert.ok(cut.bitPosition > 100 && cut.bitPosition <= 160, `${cut.bitPosition}`);
    assert.match(cut.path, /^bsmFrame\./);

    const text = thrown(() => codec.decode(FRAME, '{\n"bsmFrame": 1}', "jer"));
    assert.deepEqual([text.line, text.bitPosition], [2, -1]);

    const wrong = structuredClone(value);
    wrong.bsmFrame.msgCnt = 128;
    assert.equal(codec.check(FRAME, wrong).path, "bsmFrame.msgCnt");
    assert.ok(thrown(() => codec.encode(FRAME, wrong)) instanceof orlenta.ConstraintError);
    assert.ok(thrown(() => codec.encode(FRAME, { none: 1 })) instanceof orlenta.EncodeError);

    const unknown = thrown(() => codec.type("CN.MesageFrame"));
    assert.ok(unknown instanceof orlenta.UnknownType);
    assert.ok(unknown.nearest.includes(FRAME), `${unknown.nearest}`);
    await assert.rejects(codec.need("XX"), orlenta.OrlentaError);
    assert.throws(() => codec.decode(FRAME, bsm, "none"), TypeError);
});

test("types and what they are made of", async () => {
    const codec = await loadBuilt(["CN", "EU"]);
    assert.ok(codec.types("messageframe").some((type) => type.name === FRAME && type.isRoot));
    const frame = codec.type(FRAME);
    assert.equal(frame.kind, "CHOICE");
    const message = frame.alternatives.find((part) => part.name === "bsmFrame").type;
    assert.equal(message.name, "CN.BasicSafetyMessage");
    const count = message.components.find((part) => part.name === "msgCnt");
    assert.deepEqual(
        [count.presence, count.type.kind, count.type.lower, count.type.upper],
        ["mandatory", "INTEGER", 0, 127],
    );
    assert.equal(codec.type("EU.CAM").kind, "SEQUENCE");
    for (const { name } of codec.types()) assert.equal(typeof codec.type(name).kind, "string", name);
    assert.throws(() => codec.type("EU.REG-EXT-ID-AND-TYPE"), orlenta.UnknownType); // a class
    const { unit, scale, special } = codec.type("CN.Speed").unit;
    assert.deepEqual([unit, scale, special.at(-1)], ["m/s", 0.02, { value: 8191, last: 8191, meaning: "unavailable" }]);
    assert.equal(codec.type("CN.Heading").about, "Direction of travel, clockwise from true north.");
    assert.deepEqual(codec.type("CN.SteeringWheelAngle").unit.special[0], { value: -126, last: -126, meaning: "orLess", limit: -1 });
});

test("each bit of a message, and of one that breaks off", async () => {
    const codec = await loadBuilt(["CN"]);
    for (const [rules, message] of [
        ["uper", "reading after end of stream (at bsmFrame.pos.lon)"],
        ["aper", "reading after end of stream (at bsmFrame.pos.lon)"],
        ["oer", "unexpected end of stream"], ["ber", "the message cannot be decoded"],
    ]) {
        const cut = codec.convert(FRAME, bsm, "uper", rules).subarray(0, 20);
        const { bits, error } = codec.explain(FRAME, cut, rules);
        assert.deepEqual([error.message, bits.at(-1).kind], [message, "refused"]);
        assert.throws(() => codec.decode(FRAME, cut, rules), error);
    }
    for (const data of [bsm, bsm.subarray(0, 20)]) {
        const { bits, error } = codec.explain(FRAME, data);
        let end = 0;
        for (const run of bits) {
            assert.equal(run.offset, end);
            end += run.width;
        }
        assert.equal(end, 8 * data.length);
        assert.equal(bits.find((run) => run.path === "bsmFrame.msgCnt").value, 17);
        assert.equal(bits.at(-1).kind === "refused", error instanceof orlenta.DecodeError);
        assert.equal(Boolean(error), data !== bsm);
    }
});

const text = `Wide DEFINITIONS AUTOMATIC TAGS ::= BEGIN
    Record ::= SEQUENCE { small INTEGER (0..4294967296), wide INTEGER (0..18446744073709551615), any INTEGER,
        real REAL, name UTF8String, nested List }
    List ::= SEQUENCE OF Item
    Item ::= CHOICE { list List, end NULL }
END`;

test("schemas compiled here, and wide numbers", async () => {
    const codec = await loadBuilt([]);
    const schema = await codec.compile([{ name: "wide.asn1", text }], { region: "My" });
    const value = {
        small: 2 ** 32, wide: 2n ** 64n - 1n, any: -(2n ** 100n), real: 0.1, name: 'a "b" \u{1F600}\\',
        nested: [{ list: [{ end: null }] }],
    };
    for (const rules of ["uper", "oer", "der"])
        assert.deepEqual(schema.decode("My.Record", schema.encode("Record", value, rules), rules), value, rules);
    assert.deepEqual(schema.decode("Record", schema.encode("Record", { ...value, any: 5, real: -0 })).any, 5n);
    assert.equal(schema.type("Record").components[1].type.upper, 2n ** 64n - 1n);

    await assert.rejects(codec.compile([{ name: "bad.asn1", text: "Bad DEFINITIONS ::= BEGIN A ::= B END" }]), (error) => {
        assert.ok(error instanceof orlenta.SchemaError);
        assert.deepEqual([error.problems[0].file, error.problems[0].line], ["bad.asn1", 1]);
        return true;
    });
    schema.free();
    assert.throws(() => schema.decode("Record", new Uint8Array()), orlenta.OrlentaError);
});

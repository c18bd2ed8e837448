// SPDX-License-Identifier: Apache-2.0
import assert from "node:assert/strict";
import { test } from "node:test";
import { likelyRegions, likelyType } from "../src/codec/detect";
import { BrokenLink, fromFragment, toFragment } from "../src/page/link";
import { InputError, readBytes, toHex } from "../src/input/bytes";
import { textRules } from "../src/input/rules";
import { undump } from "../src/input/dump";
import { isLog, onlyMessage, readEntry, splitLines } from "../src/input/lines";

test("bytes in all forms that people paste", () => {
    const rows: [text: string, hex: string | { at: number }][] = [
        ["0a1B", "0a1b"],
        ["0x0a 0X1b", "0a1b"],
        ["0a:1b,\n 2c-3d", "0a1b2c3d"],
        ["", ""],
        ["AAEC/w==", "000102ff"],
        ["_-8xzQ==", "ffef31cd"],
        ["abcd", "abcd"], // hexadecimal before base64
        ["0a1g", { at: 3 }],
        ["0a1", { at: 3 }],
    ];
    for (const [text, expected] of rows)
        if (typeof expected === "string") assert.equal(toHex(readBytes(text)), expected, text);
        else
            assert.throws(
                () => readBytes(text),
                (error: InputError) => error.position === expected.at,
                text,
            );
});

test("what a text is, and the lines of a log", () => {
    const texts: [text: string, rules: string | undefined, isLog: boolean][] = [
        ["00\n01020304\n", undefined, true],
        [`${"00".repeat(16)}\n${"00".repeat(16)}\n0011`, undefined, false],
        ['{\n "a": 1\n}', "jer", false],
        ['{"a":1}\n{"a":2}', "jer", true],
        ["{ a 1,\n b 2 }", "gser", false],
        ["<A>\n<b/></A>", "xer", false],
        ["bsmFrame : { }", "gser", false],
    ];
    for (const [text, rules, many] of texts) assert.deepEqual([textRules(text), isLog(text)], [rules, many], text);

    const lines: [line: string, message?: string, time?: number][] = [
        ["  0011 ", "0011"],
        ["# a note"],
        [" "],
        ["12.5 0011", "0011", 12_500],
        ["[2026-03-01 10:00:00,250] 0011", "0011", Date.UTC(2026, 2, 1, 10, 0, 0, 250)],
        ["2026-03-01T11:00:00.250+01:00, 0011", "0011", Date.UTC(2026, 2, 1, 10, 0, 0, 250)],
        ["1700000000123 0011", "0011", 1_700_000_000_123],
        ["1700000000123", "1700000000123"], // nothing but digits is the message
    ];
    for (const [line, message, time] of lines) {
        const entry = readEntry(line);
        assert.deepEqual([entry?.message, entry?.time], [message, time], line);
    }
    assert.equal(onlyMessage("# a note\n\n12.5 <A>\n# text\n</A>"), "<A>\n# text\n</A>");
});

test("dumps", () => {
    const rows: [text: string, hex: string | null][] = [
        [
            "00000000: 0202 0000 03e9 6b6c 405a 997d e22e 3211  ......kl@Z.}..2.\n00000010: 6162                                     ab",
            "02020000 03e96b6c 405a997d e22e3211 6162",
        ],
        [
            "00000000  02 02 00 00 03 e9 6b 6c  40 5a 99 7d e2 2e 32 11  |......kl@Z.}..2.|\n00000010  61 |a|\n00000011\n",
            "02020000 03e96b6c 405a997d e22e3211 61",
        ],
        ["0000   61 62 63   abc", "616263"],
        ["0000 1425 0300", null], // the octets themselves
        ["0000000 0202 0000 03e9\n0000006\n", null], // words, of whichever order
        ["0000 0102\n0001 03", null],
        ["02020000\n03e9", null],
        ["0202", null],
    ];
    for (const [text, hex] of rows) assert.equal(undump(text), hex && hex.replaceAll(" ", ""), text);
});

test("a log in pieces", () => {
    const bytes = new TextEncoder().encode("ab\ncd\nef");
    assert.deepEqual(splitLines(bytes, false), {
        lines: [
            { start: 0, end: 2 },
            { start: 3, end: 5 },
        ],
        rest: 2,
    });
    assert.deepEqual(splitLines(bytes, true).lines[2], { start: 6, end: 8 });
});

test("links carry bytes, text and a schema, and tell what is none from what is broken", async () => {
    const rows = [
        { type: "EU.CAM", rules: "uper" as const, data: Uint8Array.from([0, 251, 255]) },
        { type: "A", rules: "jer" as const, data: '{"ä":1}', schema: "A DEFINITIONS ::= BEGIN END" },
    ];
    for (const row of rows) assert.deepEqual(await fromFragment(await toFragment(row)), row);
    for (const fragment of ["", "#top"]) assert.equal(await fromFragment(fragment), null, fragment);
    for (const fragment of ["#t=A&x=%%%", "#m=*", (await toFragment(rows[1])).slice(0, -8)])
        await assert.rejects(fromFragment(fragment), BrokenLink, fragment);
});

test("what the first octets of a message show", () => {
    const rows: [hex: string, type: string | null, first: string][] = [
        ["0202000003e9", "EU.CAM", "EU"],
        ["0101", "EU.DENM", "EU"],
        ["0203", null, "CN"],
        ["0014251d", "US.MessageFrame", "US"],
        ["01822686a7", null, "CN"],
        ["00", null, "CN"],
    ];
    for (const [hex, type, first] of rows) {
        const bytes = readBytes(hex);
        assert.deepEqual([likelyType(bytes), likelyRegions(bytes)[0]], [type, first], hex);
    }
});

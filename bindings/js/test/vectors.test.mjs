// SPDX-License-Identifier: Apache-2.0
// Every row of tests/data: what an independent tool encoded is decoded alike from all rules, and encoded again.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";

import { loadBuilt } from "./package.mjs";

const tree = new URL("../../../tests/", import.meta.url);
const rowsOf = (file) =>
    readFileSync(new URL(file, tree), "utf8")
        .split("\n")
        .filter((line) => line && !line.startsWith("#"))
        .map((line) => line.split("\t"));

// By file and rules: the lines whose octets are others here.
const excluded = new Map();
for (const [file, rules, lines] of rowsOf("vectors/exclusions.tsv"))
    for (const rule of rules.toLowerCase().split(",")) {
        const key = `${file} ${rule}`;
        excluded.set(key, [...(excluded.get(key) ?? []), ...lines.split(",")]);
    }

// The rows have plain hex for a bit string of one root size that may vary.
function adapt(theirs, ours) {
    if (typeof theirs === "string" && ours?.value === theirs) return ours;
    if (typeof ours === "bigint" && typeof theirs === "number") return BigInt(theirs) === ours ? ours : theirs;
    if (theirs === null || typeof theirs !== "object") return theirs;
    if (Array.isArray(theirs)) return theirs.map((element, i) => adapt(element, ours?.[i]));
    return Object.fromEntries(Object.entries(theirs).map(([name, member]) => [name, adapt(member, ours?.[name])]));
}

// Numbers that JSON.parse would round become strings, which BigInt takes.
const exact = (json) => JSON.parse(json.replace(/([:[,]|^)(-?\d{16,})(?=[,\]}]|$)/g, '$1{"":"$2"}'), (_, value) =>
    value && typeof value === "object" && "" in value ? BigInt(value[""]) : value);

const hex = (bytes) => Buffer.from(bytes).toString("hex");

for (const [file, ...regions] of [["cn.tsv", "CN"], ["eu.tsv", "EU"], ["us.tsv", "US", "RRC"], ["us-rrc.tsv", "RRC"]]) {
    test(file, async () => {
        const orlenta = await loadBuilt(regions);
        const roots = new Set(orlenta.types().filter((type) => type.isRoot).map((type) => type.name));
        let line = 0;
        let compared = 0;
        for (const [region, name, uper, aper, oer, der, json] of rowsOf(`data/${file}`)) {
            line += 1;
            const type = `${region}.${name}`;
            const where = `${file}:${line} ${type}`;
            const isExcluded = (rules) => excluded.get(`${file} ${rules}`)?.includes(String(line));
            let value;
            for (const [rules, octets] of Object.entries({ uper, aper, oer, der })) {
                // Types that others refer to may have another tag than the row.
                if (isExcluded(rules) || (rules === "der" && !roots.has(type))) continue;
                const decoded = orlenta.decode(type, Buffer.from(octets, "hex"), rules);
                value ??= decoded;
                assert.deepEqual(decoded, value, `${where}: ${rules}`);
                // Some contained values end in padding, which check() and so encode() refuse.
                const again = orlenta.check(type, decoded)
                    ? orlenta.convert(type, Buffer.from(octets, "hex"), rules, rules)
                    : orlenta.encode(type, decoded, rules);
                assert.equal(hex(again), octets, `${where}: ${rules}`);
                compared += 1;
            }
            if (value !== undefined) assert.deepEqual(adapt(exact(json), value), value, where);
        }
        assert.ok(compared > 3 * line - 150, `${compared} of ${line} rows`);
    });
}

// SPDX-License-Identifier: Apache-2.0
// Physical values, to the last decimal. They need no wasm.
import assert from "node:assert/strict";
import { test } from "node:test";

import { reading } from "../units.mjs";

const of = (scale, offset = 0, special = []) => ({ unit: "", scale, offset, special });

test("what numbers stand for", () => {
    const limits = [{ value: 0, last: 1, meaning: "unavailable" }, { value: 254, last: 255, meaning: "orMore", limit: 1 }];
    const rows = [
        [of(0.0125), 28799, "359.9875"], [of(0.0125), -1, "-0.0125"], [of(0.0125), 80, "1"], [of(0.0125), 0, "0"],
        [of(0.0125), 2n ** 62n + 1n, "57646075230342348.8125"], [of(1e-7), -1163975126, "-116.3975126"],
        [of(1e-7), 1, "0.0000001"], [of(0.0054932479), 65534, "359.9945078786"], [of(0.196133), 127, "24.908891"],
        [of(200, 57800), 2, "58200"], [of(0.5, -40.25), 80, "-0.25"], [of(0.05, 100), -2048, "-2.4"],
        [of(1e-15), 2n ** 53n + 1n, "9.007199254740993"], [of(1e21), 3, "3000000000000000000000"],
        [of(0.1), 2.5, "0.25"], [of(0.1, 0, limits), 253n, "25.3"],
        [of(0.1, 0, limits), 254n, "25.4", "orMore"], [of(0.1, 0, limits), 1, undefined, "unavailable"],
    ];
    for (const [unit, value, physical, meaning] of rows) {
        const read = reading(unit, value);
        assert.deepEqual([read.physical, read.meaning], [physical, meaning], `${value} * ${unit.scale}`);
    }
});

// SPDX-License-Identifier: Apache-2.0
import type { TypeInfo } from "./orlenta.js";

/** What a number stands for. */
export interface Reading {
    /** The physical value, exact, in decimal digits: "18.34". Not there if the number has none. */
    physical?: string;
    /** Of a special number: "unavailable"; beside a physical value "orMore" or "orLess". */
    meaning?: string;
}

/** As `orlenta convert --physical` tells it. For the `unit` of a TypeInfo; needs no wasm. */
export function reading(unit: NonNullable<TypeInfo["unit"]>, value: number | bigint): Reading;

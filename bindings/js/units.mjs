// SPDX-License-Identifier: Apache-2.0
// What numbers stand for; units.d.ts tells.

// A number as [integer, decimals]: of the decimal that it is the nearest double of, as a schema has it.
function decimal(number) {
    const [, digits, part = "", exponent = "0"] = /^(-?\d+)(?:\.(\d+))?(?:e([+-]\d+))?$/.exec(String(number));
    const decimals = part.length - Number(exponent);
    const whole = BigInt(digits + part);
    return decimals < 0 ? [whole * 10n ** BigInt(-decimals), 0] : [whole, decimals];
}

function text(whole, decimals) {
    const sign = whole < 0n ? "-" : "";
    const digits = String(whole < 0n ? -whole : whole).padStart(decimals + 1, "0");
    const point = digits.length - decimals;
    return sign + `${digits.slice(0, point)}.${digits.slice(point)}`.replace(/\.?0*$/, "");
}

function physical({ scale, offset }, value) {
    if (typeof value === "number" && !Number.isInteger(value))
        return String(Number((value * scale + offset).toPrecision(15)));
    const [step, stepDecimals] = decimal(scale);
    const [start, startDecimals] = decimal(offset);
    const decimals = Math.max(stepDecimals, startDecimals);
    const of = (whole, its) => whole * 10n ** BigInt(decimals - its);
    return text(BigInt(value) * of(step, stepDecimals) + of(start, startDecimals), decimals);
}

export function reading(unit, value) {
    const special = unit.special.find((one) => one.value <= value && value <= one.last);
    if (special && !special.limit) return { meaning: special.meaning };
    return { physical: physical(unit, value), ...(special && { meaning: special.meaning }) };
}

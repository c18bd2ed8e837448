// SPDX-License-Identifier: Apache-2.0
// Paths of components, a.b[3].c, and what stands at them in a value.
import type { Value } from "orlenta";

export type Step = string | number;

export function parsePath(path: string): Step[] {
    return [...path.matchAll(/\[(\d+)\]|[^.[\]]+/g)].map((part) => (part[1] === undefined ? part[0] : Number(part[1])));
}

export function joinPath(path: string, step: Step): string {
    if (typeof step === "number") return `${path}[${step}]`;
    return path === "" ? step : `${path}.${step}`;
}

/** Whether `inner` is `outer` or lies in it. */
export function isWithin(inner: string, outer: string): boolean {
    if (outer === "" || inner === outer) return true;
    return inner.startsWith(outer) && (inner[outer.length] === "." || inner[outer.length] === "[");
}

export function valueAt(value: Value | undefined, steps: Step[]): Value | undefined {
    for (const step of steps) {
        if (value === null || typeof value !== "object") return undefined;
        value = (value as Record<Step, Value>)[step];
    }
    return value;
}

/** A copy of `value` with `part` at `steps`; without what stands there if `part` is undefined. */
export function withValueAt(value: Value, steps: Step[], part: Value | undefined): Value {
    if (steps.length === 0) return part as Value;
    const [step, ...rest] = steps;
    if (Array.isArray(value)) {
        const copy = [...value];
        if (rest.length === 0 && part === undefined) copy.splice(step as number, 1);
        else copy[step as number] = withValueAt(copy[step as number], rest, part);
        return copy;
    }
    const copy = { ...(value as Record<Step, Value>) };
    if (rest.length === 0 && part === undefined) delete copy[step];
    else copy[step] = withValueAt(copy[step] ?? {}, rest, part);
    return copy;
}

// SPDX-License-Identifier: Apache-2.0
// What had been read of a message before its decoder stopped.
import type { Bits, Value } from "orlenta";
import { parsePath, type Step } from "./path";

type Container = Record<Step, Value>;

export function partialValue(runs: Bits[]): Value | undefined {
    let whole: Value | undefined;
    for (const run of runs) {
        if (run.value === undefined) continue;
        const steps = parsePath(run.path);
        const last = steps.pop();
        if (last === undefined) return run.value;
        let at = (whole ??= (typeof (steps[0] ?? last) === "number" ? [] : {}) as Value) as Container;
        steps.forEach((step, i) => {
            at = (at[step] ??= typeof (steps[i + 1] ?? last) === "number" ? [] : {}) as Container;
        });
        at[last] = run.value;
    }
    return whole;
}

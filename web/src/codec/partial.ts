// SPDX-License-Identifier: Apache-2.0
// What had been read of a message before its decoder stopped.
import type { Bits, Value } from "orlenta";
import { parsePath, type Step } from "./path";

/** Elements without values of their own, as empty SEQUENCEs, have no runs; they are there all the same. */
function reach(container: Value, step: Step): Record<Step, Value> {
    if (Array.isArray(container)) while (container.length < Number(step)) container.push({});
    return container as Record<Step, Value>;
}

export function partialValue(runs: Bits[]): Value | undefined {
    let whole: Value | undefined;
    for (const run of runs) {
        if (run.value === undefined) continue;
        const steps = parsePath(run.path);
        const last = steps.pop();
        if (last === undefined) return run.value;
        const containerOf = (step: Step): Value => (typeof step === "number" ? [] : {});
        let at = (whole ??= containerOf(steps[0] ?? last));
        steps.forEach((step, i) => {
            const here = reach(at, step);
            at = here[step] ??= containerOf(steps[i + 1] ?? last);
        });
        reach(at, last)[last] = run.value;
    }
    return whole;
}

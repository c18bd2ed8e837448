// SPDX-License-Identifier: Apache-2.0
// Lights of SPAT and SPATEM (SAE J2735, ISO/TS 19091) and of CN's SPAT. Of a group's states the first one holds now.
import type { Features, Signal } from "./features";
import { idOf } from "./lanes";
import { list, members, number, text, type Members } from "./members";

const signal = (light: Signal["light"], isFlashing = false, isProtected = false): Signal => ({
    light,
    isFlashing,
    isProtected,
});

const EVENT_STATES: Record<string, Signal> = {
    "stop-Then-Proceed": signal("red", true),
    "stop-And-Remain": signal("red"),
    "pre-Movement": signal("amber"),
    "permissive-Movement-Allowed": signal("green"),
    "protected-Movement-Allowed": signal("green", false, true),
    "permissive-clearance": signal("amber"),
    "protected-clearance": signal("amber", false, true),
    "caution-Conflicting-Traffic": signal("amber", true),
};

const LIGHTS_CN: Record<string, Signal> = {
    "flashing-red": signal("red", true),
    red: signal("red"),
    "flashing-green": signal("green", true),
    "permissive-green": signal("green"),
    "protected-green": signal("green", false, true),
    yellow: signal("amber"),
    "flashing-yellow": signal("amber", true),
};

const DARK = signal("dark");

export function spat(value: Members, into: Features): void {
    for (const entry of list(value.intersections)) {
        const { id, states } = members(entry);
        const groups = new Map<number, Signal>();
        for (const state of list(states).map(members)) {
            const now = members(list(state["state-time-speed"])[0]);
            groups.set(number(state.signalGroup) ?? 0, EVENT_STATES[text(now.eventState)] ?? DARK);
        }
        into.signals.push({ key: idOf(id), groups });
    }
}

export function spatCn(value: Members, into: Features): void {
    for (const entry of list(value.intersections)) {
        const { intersectionId, phases } = members(entry);
        const groups = new Map<number, Signal>();
        for (const phase of list(phases).map(members)) {
            const now = members(list(phase.phaseStates)[0]);
            groups.set(number(phase.id) ?? 0, LIGHTS_CN[text(now.light)] ?? DARK);
        }
        into.signals.push({ key: idOf(intersectionId), groups });
    }
}

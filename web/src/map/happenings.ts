// SPDX-License-Identifier: Apache-2.0
// What is the matter where: DENM of EU, RSI of CN, roadside alerts of US.
import type { Value } from "orlenta";
import type { Features } from "./features";
import { type LatLon, place } from "./geo";
import { list, members, number, quantity, text, type Members } from "./members";
import { offsetFrom } from "./offsets";
import { pathHistoryEu } from "./stations";

// CauseCodeType of TS 102 894-2.
const CAUSES: Record<number, string> = {
    1: "traffic condition",
    2: "accident",
    3: "road works",
    5: "impassability",
    6: "slippery road",
    7: "aquaplaning",
    9: "hazardous surface",
    10: "obstacle on the road",
    11: "animal on the road",
    12: "person on the road",
    14: "wrong-way driving",
    15: "rescue work",
    17: "extreme weather",
    18: "low visibility",
    19: "precipitation",
    20: "violence",
    26: "slow vehicle",
    27: "dangerous end of queue",
    91: "vehicle breakdown",
    92: "post crash",
    93: "human problem",
    94: "stationary vehicle",
    95: "emergency vehicle",
    96: "dangerous curve",
    97: "collision risk",
    98: "signal violation",
    99: "dangerous situation",
};

const RELEVANCE: Record<string, number> = {
    lessThan50m: 50,
    lessThan100m: 100,
    lessThan200m: 200,
    lessThan500m: 500,
    lessThan1000m: 1000,
};

export function denm(value: Members, path: string, into: Features): void {
    const { management, situation, location } = members(value.denm);
    const { eventPosition, actionID, relevanceDistance, termination } = members(management);
    const at = place(members(eventPosition).latitude, members(eventPosition).longitude);
    if (!at) return;
    const cause = number(members(members(situation).eventType).causeCode);
    const label = cause === undefined ? "DENM" : (CAUSES[cause] ?? `cause ${cause}`);
    const places = pathHistoryEu(at, members(situation).eventHistory, "eventPosition");
    const { originatingStationID, sequenceNumber } = members(actionID);
    into.happenings.push({
        key: `EU event ${text(originatingStationID)} ${text(sequenceNumber)}`,
        label: termination === undefined ? label : `${label}, over`,
        at,
        traces: [
            ...list(members(location).traces).map((trace) => [at, ...pathHistoryEu(at, trace)]),
            ...(places.length > 0 ? [[at, ...places]] : []),
        ],
        radius: RELEVANCE[text(relevanceDistance)],
        path: `${path}denm.management.eventPosition`,
    });
}

function pathsCn(from: LatLon, paths: Value | undefined): LatLon[][] {
    return list(paths).map((path) =>
        list(members(path).activePath)
            .map((point) => offsetFrom(from, point))
            .filter((point) => point !== null),
    );
}

export function rsi(value: Members, path: string, into: Features): void {
    const from = place(members(value.refPos).lat, members(value.refPos).lon);
    if (!from) return;
    const add = (list: Value[], what: string, member: string, position: string) =>
        list.forEach((entry, i) => {
            const one = members(entry);
            const number = text(one[member === "rtes" ? "eventType" : "signType"]);
            into.happenings.push({
                key: `CN ${text(value.id)} ${member} ${text(one.rteId ?? one.rtsId)}`,
                label: `${what} ${number}`,
                at: offsetFrom(from, one[position]) ?? from,
                traces: pathsCn(from, one.referencePaths),
                radius: quantity(one.eventRadius, 0.1, 0),
                path: `${path}${member}[${i}]`,
            });
        });
    add(list(value.rtes), "event", "rtes", "eventPos");
    add(list(value.rtss), "sign", "rtss", "signPos");
}

/** RSA, and what has an RSA in it. */
export function rsa(value: Members, path: string, into: Features): void {
    const { lat, long } = members(value.position);
    const at = place(lat, long);
    if (!at) return;
    const label = `ITIS ${text(value.typeEvent)}`;
    into.happenings.push({ key: `US alert ${text(value.typeEvent)}`, label, at, traces: [], path: `${path}position` });
}

// SPDX-License-Identifier: Apache-2.0
// Who is where: CAM, VAM and CPM of EU, BSM and PSM of US, BSM and RSM of CN.
import type { Value } from "orlenta";
import type { Features, Station, StationKind } from "./features";
import { type LatLon, fromMetres, place, shifted } from "./geo";
import { list, members, number, quantity, text, type Members } from "./members";
import { offsetFrom } from "./offsets";

const UNAVAILABLE_DELTA = 131072; // DeltaLatitude, DeltaLongitude of TS 102 894-2

/** Of EU each point is relative to the one before it. */
export function pathHistoryEu(from: LatLon, history: Value | undefined, position = "pathPosition"): LatLon[] {
    const points: LatLon[] = [];
    let last = from;
    for (const point of list(history)) {
        const { deltaLatitude, deltaLongitude } = members(members(point)[position]);
        const latitude = number(deltaLatitude);
        const longitude = number(deltaLongitude);
        if (latitude === undefined || longitude === undefined) break;
        if (latitude === UNAVAILABLE_DELTA || longitude === UNAVAILABLE_DELTA) break;
        last = shifted(last, latitude, longitude);
        points.push(last);
    }
    return points;
}

function kindEu(stationType: number | undefined): StationKind {
    if (stationType === 15) return "roadside";
    return stationType === 1 || stationType === 2 ? "person" : "vehicle";
}

function headingEu(heading: Value | undefined): number | undefined {
    return quantity(members(heading).headingValue, 0.1, 3601);
}

function speedEu(speed: Value | undefined): number | undefined {
    return quantity(members(speed).speedValue, 0.01, 16383);
}

/** The beginning that the messages of a station have in common: who it is, and where. */
function stationEu(
    value: Members,
    path: string,
    message: "cam" | "vam" | "cpm",
    container: string,
): { station: Station; parameters: Members } | null {
    const parameters = members(members(value[message])[`${message}Parameters`]);
    const { referencePosition, stationType } = members(parameters[container]);
    const at = place(members(referencePosition).latitude, members(referencePosition).longitude);
    if (!at) return null;
    const id = text(members(value.header).stationID);
    const station: Station = {
        key: `EU ${id}`,
        label: id,
        kind: kindEu(number(stationType)),
        at,
        history: [],
        path: `${path}${message}.${message}Parameters.${container}.referencePosition`,
    };
    return { station, parameters };
}

export function cam(value: Members, path: string, into: Features): void {
    const begun = stationEu(value, path, "cam", "basicContainer");
    if (!begun) return;
    const { station, parameters } = begun;
    const fast = members(members(parameters.highFrequencyContainer).basicVehicleContainerHighFrequency);
    const slow = members(members(parameters.lowFrequencyContainer).basicVehicleContainerLowFrequency);
    into.stations.push({
        ...station,
        heading: headingEu(fast.heading),
        speed: speedEu(fast.speed),
        length: quantity(members(fast.vehicleLength).vehicleLengthValue, 0.1, 1023),
        width: quantity(fast.vehicleWidth, 0.1, 62),
        history: pathHistoryEu(station.at, slow.pathHistory),
    });
}

export function vam(value: Members, path: string, into: Features): void {
    const begun = stationEu(value, path, "vam", "basicContainer");
    if (!begun) return;
    const { station, parameters } = begun;
    const fast = members(parameters.vruHighFrequencyContainer);
    const motion = members(parameters.vruMotionPredictionContainer);
    into.stations.push({
        ...station,
        kind: "person",
        heading: headingEu(fast.heading),
        speed: speedEu(fast.speed),
        history: pathHistoryEu(station.at, motion.pathHistory),
    });
}

const EAST = 90;

/**
 * Perceived objects stand relative to the one who tells of them: a vehicle in its own axes, ahead and to the left; a
 * roadside unit to the east and to the north. Their angles are counted from the first axis to the second.
 */
export function cpm(value: Members, path: string, into: Features): void {
    const begun = stationEu(value, path, "cpm", "managementContainer");
    if (!begun) return;
    const { station: teller, parameters } = begun;
    const own = members(members(parameters.stationDataContainer).containerData);
    teller.heading = headingEu(own.heading);
    teller.speed = speedEu(own.speed);
    into.stations.push(teller);

    const axis = teller.kind === "roadside" ? EAST : (teller.heading ?? EAST);
    const ahead = (axis * Math.PI) / 180;
    list(parameters.perceptionData).forEach((container, c) => {
        const data = members(members(container).containerData);
        list(data.perceivedObjects).forEach((object, i) => {
            const { objectID, xDistance, yDistance, yawAngle } = members(object);
            const x = number(members(xDistance).value);
            const y = number(members(yDistance).value);
            if (x === undefined || y === undefined) return;
            const east = (x * Math.sin(ahead) - y * Math.cos(ahead)) / 100;
            const north = (x * Math.cos(ahead) + y * Math.sin(ahead)) / 100;
            const yaw = quantity(members(yawAngle).value, 0.1, 3601);
            into.stations.push({
                key: `${teller.key} sees ${text(objectID)}`,
                label: text(objectID),
                kind: "object",
                at: fromMetres({ x: east, y: north }, teller.at),
                heading: yaw === undefined ? undefined : (axis - yaw + 360) % 360,
                history: [],
                path: `${path}cpm.cpmParameters.perceptionData[${c}].containerData.perceivedObjects[${i}]`,
            });
        });
    });
}

/** Of US all points are relative to where the station is now. */
function pathHistoryUs(at: LatLon, history: Value | undefined): LatLon[] {
    return list(members(history).crumbData).flatMap((crumb) => {
        const latitude = quantity(members(crumb).latOffset, 1, -131072);
        const longitude = quantity(members(crumb).lonOffset, 1, -131072);
        return latitude === undefined || longitude === undefined ? [] : [shifted(at, latitude, longitude)];
    });
}

/** BSM of US. */
export function coreData(value: Members, path: string, into: Features): void {
    const core = members(value.coreData);
    const at = place(core.lat, core.long);
    if (!at) return;
    const safety = list(value.partII)
        .map((part) => members(members(part)["partII-Value"]))
        .find((part) => part.pathHistory);
    into.stations.push({
        key: `US ${text(core.id)}`,
        label: text(core.id),
        kind: "vehicle",
        at,
        heading: quantity(core.heading, 0.0125, 28800),
        speed: quantity(core.speed, 0.02, 8191),
        length: quantity(members(core.size).length, 0.01, 0),
        width: quantity(members(core.size).width, 0.01, 0),
        history: pathHistoryUs(at, safety?.pathHistory),
        path: `${path}coreData`,
    });
}

export function psm(value: Members, path: string, into: Features): void {
    const { lat, long } = members(value.position);
    const at = place(lat, long);
    if (!at) return;
    into.stations.push({
        key: `US ${text(value.id)}`,
        label: text(value.id),
        kind: "person",
        at,
        heading: quantity(value.heading, 0.0125, 28800),
        speed: quantity(value.speed, 0.02, 8191),
        history: pathHistoryUs(at, value.pathHistory),
        path: `${path}position`,
    });
}

/** BSM of CN, a participant of an RSM too; `from` is what offsets are relative to. */
export function vehicleCn(
    value: Members,
    path: string,
    into: Features,
    from?: LatLon,
    kind: StationKind = "vehicle",
): void {
    const at = from ? offsetFrom(from, value.pos) : place(members(value.pos).lat, members(value.pos).lon);
    if (!at) return;
    const history = list(members(members(value.safetyExt).pathHistory).crumbData)
        .map((crumb) => offsetFrom(at, members(crumb).llvOffset))
        .filter((point) => point !== null);
    const id = text(value.id) || text(value.ptcId);
    into.stations.push({
        key: `CN ${id}`,
        label: id,
        kind,
        at,
        heading: quantity(value.heading, 0.0125, 28800),
        speed: quantity(value.speed, 0.02, 8191),
        length: quantity(members(value.size).length, 0.01, 0),
        width: quantity(members(value.size).width, 0.01, 0),
        history,
        path,
    });
}

export function rsm(value: Members, path: string, into: Features): void {
    const { lat, lon } = members(value.refPos);
    const from = place(lat, lon);
    if (!from) return;
    const id = text(value.id);
    into.stations.push({ key: `CN ${id}`, label: id, kind: "roadside", at: from, history: [], path: `${path}refPos` });
    list(value.participants).forEach((participant, i) => {
        const one = members(participant);
        const kind = one.ptcType === "rsu" ? "roadside" : one.ptcType === "motor" ? "vehicle" : "person";
        vehicleCn(one, `${path}participants[${i}]`, into, from, kind);
    });
}

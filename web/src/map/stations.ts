// SPDX-License-Identifier: Apache-2.0
// Who is where: CAM, VAM and CPM of EU, BSM and PSM of US, BSM and RSM of CN.
import type { Value } from "orlenta";
import type { Features, Station, StationKind } from "./features";
import { type LatLon, fromMetres, place, shifted } from "./geo";
import { list, members, number, quantity, text, type Members } from "./members";
import { offsetFrom } from "./offsets";

const UNAVAILABLE_DELTA = 131072; // DeltaLatitude, DeltaLongitude of TS 102 894-2

/** Of EU each point is relative to the one before it. */
export function pathHistoryEu(from: LatLon, history: Value | undefined): LatLon[] {
    const points: LatLon[] = [];
    let last = from;
    for (const point of list(history)) {
        const { deltaLatitude, deltaLongitude } = members(members(point).pathPosition);
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

function basicEu(header: Members, basic: Members, path: string): Station | null {
    const { latitude, longitude } = members(basic.referencePosition);
    const at = place(latitude, longitude);
    if (!at) return null;
    const id = text(header.stationID);
    return { key: `EU ${id}`, label: id, kind: kindEu(number(basic.stationType)), at, history: [], path };
}

export function cam(value: Members, into: Features): void {
    const parameters = members(members(value.cam).camParameters);
    const path = "cam.camParameters.basicContainer.referencePosition";
    const station = basicEu(members(value.header), members(parameters.basicContainer), path);
    if (!station) return;
    const fast = members(members(parameters.highFrequencyContainer).basicVehicleContainerHighFrequency);
    const slow = members(members(parameters.lowFrequencyContainer).basicVehicleContainerLowFrequency);
    station.heading = headingEu(fast.heading);
    station.speed = speedEu(fast.speed);
    station.length = quantity(members(fast.vehicleLength).vehicleLengthValue, 0.1, 1023);
    station.width = quantity(fast.vehicleWidth, 0.1, 62);
    station.history = pathHistoryEu(station.at, slow.pathHistory);
    into.stations.push(station);
}

export function vam(value: Members, into: Features): void {
    const parameters = members(members(value.vam).vamParameters);
    const path = "vam.vamParameters.basicContainer.referencePosition";
    const station = basicEu(members(value.header), members(parameters.basicContainer), path);
    if (!station) return;
    const fast = members(parameters.vruHighFrequencyContainer);
    into.stations.push({ ...station, kind: "person", heading: headingEu(fast.heading), speed: speedEu(fast.speed) });
}

/** Perceived objects stand relative to the one who tells of them: a vehicle in its own axes, ahead and to the left. */
export function cpm(value: Members, into: Features): void {
    const parameters = members(members(value.cpm).cpmParameters);
    const path = "cpm.cpmParameters.managementContainer.referencePosition";
    const teller = basicEu(members(value.header), members(parameters.managementContainer), path);
    if (!teller) return;
    const own = members(members(parameters.stationDataContainer).containerData);
    teller.heading = headingEu(own.heading);
    teller.speed = speedEu(own.speed);
    into.stations.push(teller);

    const ahead = ((teller.kind === "roadside" ? 90 : (teller.heading ?? 90)) * Math.PI) / 180;
    list(parameters.perceptionData).forEach((container, c) => {
        const data = members(members(container).containerData);
        list(data.perceivedObjects).forEach((object, i) => {
            const { objectID, xDistance, yDistance } = members(object);
            const x = number(members(xDistance).value);
            const y = number(members(yDistance).value);
            if (x === undefined || y === undefined) return;
            const east = (x * Math.sin(ahead) - y * Math.cos(ahead)) / 100;
            const north = (x * Math.cos(ahead) + y * Math.sin(ahead)) / 100;
            into.stations.push({
                key: `${teller.key} sees ${text(objectID)}`,
                label: text(objectID),
                kind: "object",
                at: fromMetres({ x: east, y: north }, teller.at),
                history: [],
                path: `cpm.cpmParameters.perceptionData[${c}].containerData.perceivedObjects[${i}]`,
            });
        });
    });
}

/** BSM of US; all points of its history are relative to the vehicle. */
export function coreData(value: Members, path: string, into: Features): void {
    const core = members(value.coreData);
    const at = place(core.lat, core.long);
    if (!at) return;
    const safety = list(value.partII)
        .map((part) => members(members(part)["partII-Value"]))
        .find((part) => part.pathHistory);
    const history: LatLon[] = [];
    for (const crumb of list(members(safety?.pathHistory).crumbData)) {
        const { latOffset, lonOffset } = members(crumb);
        const latitude = quantity(latOffset, 1, -131072);
        const longitude = quantity(lonOffset, 1, -131072);
        if (latitude !== undefined && longitude !== undefined) history.push(shifted(at, latitude, longitude));
    }
    into.stations.push({
        key: `US ${text(core.id)}`,
        label: text(core.id),
        kind: "vehicle",
        at,
        heading: quantity(core.heading, 0.0125, 28800),
        speed: quantity(core.speed, 0.02, 8191),
        length: quantity(members(core.size).length, 0.01, 0),
        width: quantity(members(core.size).width, 0.01, 0),
        history,
        path: `${path}coreData`,
    });
}

export function psm(value: Members, path: string, into: Features): void {
    const { lat, long } = members(value.position);
    const at = place(lat, long);
    if (!at) return;
    const history: LatLon[] = [];
    for (const crumb of list(members(value.pathHistory).crumbData)) {
        const { latOffset, lonOffset } = members(crumb);
        history.push(shifted(at, number(latOffset) ?? 0, number(lonOffset) ?? 0));
    }
    into.stations.push({
        key: `US ${text(value.id)}`,
        label: text(value.id),
        kind: "person",
        at,
        heading: quantity(value.heading, 0.0125, 28800),
        speed: quantity(value.speed, 0.02, 8191),
        history,
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

// SPDX-License-Identifier: Apache-2.0
// What a map shows of a value of whatever type: known messages by their names, others by the places in them.
import type { Value } from "orlenta";
import { joinPath } from "../codec/path";
import { type Features, noFeatures } from "./features";
import { place } from "./geo";
import { denm, rsa, rsi } from "./happenings";
import { mapData } from "./lanes";
import { mapDataCn } from "./lanes-cn";
import { members, text, type Members } from "./members";
import { spat, spatCn } from "./signals";
import { cam, coreData, cpm, psm, rsm, vam, vehicleCn } from "./stations";

type Reader = (value: Members, path: string, into: Features) => void;

/** By a component that only this message has, in this order. */
const MESSAGES: [component: string, read: Reader][] = [
    ["cam", cam],
    ["denm", denm],
    ["vam", vam],
    ["cpm", cpm],
    ["map", (value, path, into) => mapData(members(value.map), `${path}map.`, into)],
    ["spat", (value, _, into) => spat(members(value.spat), into)],
    ["bsmFrame", (value, path, into) => vehicleCn(members(value.bsmFrame), `${path}bsmFrame`, into)],
    ["mapFrame", (value, path, into) => mapDataCn(members(value.mapFrame), `${path}mapFrame.`, into)],
    ["rsmFrame", (value, path, into) => rsm(members(value.rsmFrame), `${path}rsmFrame.`, into)],
    ["spatFrame", (value, _, into) => spatCn(members(value.spatFrame), into)],
    ["rsiFrame", (value, path, into) => rsi(members(value.rsiFrame), `${path}rsiFrame.`, into)],
    ["messageId", (value, path, into) => read(members(value.value), `${path}value.`, into)],
    ["coreData", coreData],
    ["participants", rsm],
    ["nodes", mapDataCn],
    ["rtes", rsi],
    ["rtss", rsi],
    ["rsaMsg", (value, path, into) => rsa(members(value.rsaMsg), `${path}rsaMsg.`, into)],
    ["typeEvent", rsa],
    ["crossState", psm],
    ["basicType", psm],
];

function readIntersections(value: Members, path: string, into: Features): void {
    const first = members((value.intersections as Value[] | undefined)?.[0]);
    if (first.refPoint) mapData(value, path, into);
    else if (first.phases) spatCn(value, into);
    else spat(value, into);
}

function read(value: Members, path: string, into: Features): void {
    if (Array.isArray(value.intersections)) return readIntersections(value, path, into);
    const message = MESSAGES.find(([component]) => value[component] !== undefined);
    if (message) message[1](value, path, into);
    else if (value.secMark !== undefined && value.pos !== undefined) vehicleCn(value, path.replace(/\.$/, ""), into);
}

const MOST_PLACES = 500;

/** Every pair of latitude and longitude. */
function readPlaces(value: Value, path: string, into: Features): void {
    if (value === null || typeof value !== "object" || into.stations.length >= MOST_PLACES) return;
    if (Array.isArray(value)) return value.forEach((element, i) => readPlaces(element, joinPath(path, i), into));
    const at = place(value.lat ?? value.latitude, value.long ?? value.lon ?? value.longitude);
    if (at && !path.includes("offsetLL.position-LL")) {
        const label = path.slice(path.lastIndexOf(".") + 1);
        into.stations.push({ key: path, label: label || text(value.id), kind: "object", at, history: [], path });
    }
    for (const [name, member] of Object.entries(value)) readPlaces(member, joinPath(path, name), into);
}

export function featuresOf(value: Value | undefined): Features {
    const features = noFeatures();
    if (value === undefined) return features;
    read(members(value), "", features);
    const { stations, happenings, intersections, signals } = features;
    if (stations.length + happenings.length + intersections.length + signals.length === 0)
        readPlaces(value, "", features);
    return features;
}

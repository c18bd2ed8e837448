// SPDX-License-Identifier: Apache-2.0
// Makes src/page/examples.ts: messages of a crossing that does not exist. node examples.mjs, with the package built.
import { writeFile } from "node:fs/promises";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const library = resolve(process.env.ORLENTA_PACKAGE ?? join(here, "../build/wasm32/bindings/js/package"));
const { load } = await import(pathToFileURL(join(library, "orlenta.mjs")).href);
const orlenta = await load({ regions: ["CN", "EU", "US"] });

const hex = (type, value) => Buffer.from(orlenta.encode(type, value)).toString("hex");
const radians = (degrees) => (degrees * Math.PI) / 180;
const units = (degrees) => Math.round(degrees * 1e7);

// ---- the crossing: four arms, each with two lanes that come, one that goes, one for bicycles and a crosswalk ------

const ARMS = [8, 98, 188, 278]; // degrees clockwise from north, from the middle outwards
const [NORTH, EAST, SOUTH, WEST] = [0, 1, 2, 3];

/** Metres along an arm and to its left (as seen from the middle) to metres east and north. */
function onArm(arm, along, left) {
    const bearing = radians(ARMS[arm]);
    return {
        x: along * Math.sin(bearing) - left * Math.cos(bearing),
        y: along * Math.cos(bearing) + left * Math.sin(bearing),
    };
}

const CORNERS = [15, 40, 62, 84];

/** How far an arm has bent to the left. */
const bend = (along) => Math.max(0, (along - 40) * 0.055, 1.21 + (along - 62) * 0.127);

/** A lane of an arm from the stop line outwards. */
const armPoints = (arm, left) => CORNERS.map((along) => onArm(arm, along, left + bend(along)));
const onLane = (arm, along, left) => onArm(arm, along, left + bend(along));

const LEFT_LANE = 1.75; // metres from the middle of the road; traffic that comes keeps to its right
const RIGHT_LANE = 5.25;
const BICYCLES = 8.2;
const EGRESS = -1.75;

const laneId = (arm, lane) => arm * 5 + { left: 1, right: 2, bicycles: 3, egress: 4, crosswalk: 5 }[lane];
const straightGroup = (arm) => (arm % 2 === 0 ? 1 : 3);
const leftGroup = (arm) => (arm % 2 === 0 ? 2 : 4);
const crosswalkGroup = (arm) => (arm % 2 === 0 ? 6 : 5);

function xyNodes(points) {
    let last = { x: 0, y: 0 };
    const nodes = points.map((point) => {
        const x = Math.round((point.x - last.x) * 100);
        const y = Math.round((point.y - last.y) * 100);
        last = { x: last.x + x / 100, y: last.y + y / 100 };
        const far = Math.max(Math.abs(x), Math.abs(y));
        const size = [512, 1024, 2048, 4096, 8192, 32768].findIndex((limit) => far < limit) + 1;
        return { delta: { [`node-XY${size}`]: { x, y } } };
    });
    return { nodes };
}

// No attribute is set.
const LANE_TYPES = { vehicle: { value: "00", length: 8 }, bikeLane: "0000", crosswalk: "0000" };

function lane(arm, name, points, use, type, connectsTo) {
    return {
        laneID: laneId(arm, name),
        laneAttributes: { sharedWith: "0000", directionalUse: use, laneType: { [type]: LANE_TYPES[type] } },
        nodeList: xyNodes(points),
        ...(connectsTo ? { connectsTo } : {}),
    };
}

const to = (arm, signalGroup) => ({ connectingLane: { lane: laneId(arm % 4, "egress") }, signalGroup });

function laneSet() {
    return ARMS.flatMap((_, arm) => [
        lane(arm, "left", armPoints(arm, LEFT_LANE), "80", "vehicle", [
            to(arm + 1, leftGroup(arm)),
            to(arm + 2, straightGroup(arm)),
        ]),
        lane(arm, "right", armPoints(arm, RIGHT_LANE), "80", "vehicle", [
            to(arm + 2, straightGroup(arm)),
            to(arm + 3, straightGroup(arm)),
        ]),
        lane(arm, "bicycles", armPoints(arm, BICYCLES).slice(0, 3), "80", "bikeLane"),
        lane(arm, "egress", armPoints(arm, EGRESS), "40", "vehicle"),
        lane(arm, "crosswalk", [onArm(arm, 12, 10), onArm(arm, 12, -5)], "c0", "crosswalk", [
            { connectingLane: { lane: laneId(arm, "crosswalk") }, signalGroup: crosswalkGroup(arm) },
        ]),
    ]);
}

const mapData = (at, name) => ({
    msgIssueRevision: 1,
    intersections: [
        {
            name,
            id: { region: 49, id: 1205 },
            revision: 1,
            refPoint: { lat: units(at.lat), long: units(at.lon) },
            laneWidth: 340,
            laneSet: laneSet(),
        },
    ],
});

const GREEN = "protected-Movement-Allowed";
const PERMISSIVE = "permissive-Movement-Allowed";
const RED = "stop-And-Remain";
const CLEARANCE = "protected-clearance";

/** The states of the groups 1 to 6 in a step of the programme. */
const PROGRAMME = [
    [GREEN, RED, RED, RED, GREEN, RED],
    [CLEARANCE, GREEN, RED, RED, RED, RED],
    [RED, CLEARANCE, "pre-Movement", RED, RED, GREEN],
    [RED, RED, PERMISSIVE, RED, RED, GREEN],
];

const spatData = (step) => ({
    intersections: [
        {
            id: { region: 49, id: 1205 },
            revision: 1,
            status: "0000",
            moy: 174_000,
            timeStamp: 20_000 + step * 500,
            states: PROGRAMME[Math.floor(step / 6) % PROGRAMME.length].map((eventState, i) => ({
                signalGroup: i + 1,
                "state-time-speed": [
                    { eventState, timing: { minEndTime: 30 * 10 + step * 5, likelyTime: 30 * 10 + step * 5 + 20 } },
                ],
            })),
        },
    ],
});

// ---- who moves on it ---------------------------------------------------------------------------------------------

const CROSSING_EU = { lat: 52.26512, lon: 10.5298 };
const METRES = 111_320;

const place = (crossing, { x, y }) => ({
    lat: crossing.lat + y / METRES,
    lon: crossing.lon + x / (METRES * Math.cos(radians(crossing.lat))),
});

/** From one place to another, in units of 10^-7 degrees. */
const offset = (from, to) => ({ lat: units(to.lat - from.lat), lon: units(to.lon - from.lon) });

function pathPoint(from, to) {
    const { lat, lon } = offset(from, to);
    return { pathPosition: { deltaLatitude: lat, deltaLongitude: lon, deltaAltitude: 0 } };
}

/** Comes along one arm and leaves by another; metres behind the stop line at each half second. */
function journey(from, lane, toArm, distances) {
    const entry = onArm(from, 15, lane);
    const exit = onArm(toArm, 15, EGRESS);
    return distances.map((distance) => {
        if (distance >= 0) return onLane(from, 15 + distance, lane);
        const inside = Math.min(1, -distance / 30);
        if (inside < 1) return { x: entry.x + (exit.x - entry.x) * inside, y: entry.y + (exit.y - entry.y) * inside };
        return onLane(toArm, 15 - distance - 30, EGRESS);
    });
}

const rolling = (start, step, count) => Array.from({ length: count }, (_, i) => start - i * step);
const stopping = (start, step, count) => rolling(start, step, count).map((distance) => Math.max(distance, 1.5));

const STEPS = 24;
const TRAVELLERS = [
    {
        id: 1001,
        type: 5,
        speed: 11.2,
        length: 44,
        width: 18,
        way: journey(NORTH, RIGHT_LANE, SOUTH, rolling(68, 5.6, STEPS)),
    },
    {
        id: 1002,
        type: 5,
        speed: 10,
        length: 41,
        width: 18,
        way: journey(SOUTH, RIGHT_LANE, NORTH, rolling(69, 5.0, STEPS)),
    },
    {
        id: 1003,
        type: 8,
        speed: 7.6,
        length: 120,
        width: 25,
        way: journey(EAST, RIGHT_LANE, WEST, stopping(60, 3.8, STEPS)),
    },
    {
        id: 1004,
        type: 5,
        speed: 8.8,
        length: 46,
        width: 19,
        way: journey(WEST, LEFT_LANE, NORTH, stopping(68, 4.4, STEPS)),
    },
];

function bearing(a, b) {
    const degrees = (Math.atan2(b.x - a.x, b.y - a.y) * 180) / Math.PI;
    return (degrees + 360) % 360;
}

function headingAt(way, i) {
    for (let from = Math.max(i - 1, 0); from >= 0; from--)
        if (Math.hypot(way[from + 1].x - way[from].x, way[from + 1].y - way[from].y) > 0.2)
            return bearing(way[from], way[from + 1]);
    return bearing(way[0], way[1]);
}

const euPosition = ({ lat, lon }) => ({
    latitude: units(lat),
    longitude: units(lon),
    positionConfidenceEllipse: { semiMajorConfidence: 120, semiMinorConfidence: 80, semiMajorOrientation: 100 },
    altitude: { altitudeValue: 7480, altitudeConfidence: "alt-002-00" },
});

function camOf({ id, type, speed, length, width, way }, i, withHistory) {
    const at = place(CROSSING_EU, way[i]);
    const moves = i > 0 && Math.hypot(way[i].x - way[i - 1].x, way[i].y - way[i - 1].y) > 0.1;
    let last = at;
    const history = [];
    for (let back = i - 2; back >= 0 && history.length < 8; back -= 2) {
        const there = place(CROSSING_EU, way[back]);
        history.push({ ...pathPoint(last, there), pathDeltaTime: 100 });
        last = there;
    }
    return {
        header: { protocolVersion: 2, messageID: 2, stationID: id },
        cam: {
            generationDeltaTime: 20_000 + i * 500,
            camParameters: {
                basicContainer: { stationType: type, referencePosition: euPosition(at) },
                highFrequencyContainer: {
                    basicVehicleContainerHighFrequency: {
                        heading: { headingValue: Math.round(headingAt(way, i) * 10) % 3600, headingConfidence: 10 },
                        speed: { speedValue: moves || i === 0 ? Math.round(speed * 100) : 0, speedConfidence: 5 },
                        driveDirection: "forward",
                        vehicleLength: {
                            vehicleLengthValue: length,
                            vehicleLengthConfidenceIndication: "noTrailerPresent",
                        },
                        vehicleWidth: width,
                        longitudinalAcceleration: {
                            longitudinalAccelerationValue: 2,
                            longitudinalAccelerationConfidence: 10,
                        },
                        curvature: { curvatureValue: 0, curvatureConfidence: "onePerMeter-0-002" },
                        curvatureCalculationMode: "yawRateUsed",
                        yawRate: { yawRateValue: 12, yawRateConfidence: "degSec-000-05" },
                    },
                },
                ...(withHistory
                    ? {
                          lowFrequencyContainer: {
                              basicVehicleContainerLowFrequency: {
                                  vehicleRole: "default",
                                  exteriorLights: "20",
                                  pathHistory: history,
                              },
                          },
                      }
                    : {}),
            },
        },
    };
}

const denm = {
    header: { protocolVersion: 2, messageID: 1, stationID: 900 },
    denm: {
        management: {
            actionID: { originatingStationID: 900, sequenceNumber: 7 },
            detectionTime: 688_000_020_000,
            referenceTime: 688_000_020_400,
            eventPosition: euPosition(place(CROSSING_EU, onLane(WEST, 66, EGRESS - 4))),
            relevanceDistance: "lessThan50m",
            validityDuration: 600,
            stationType: 15,
        },
        situation: { informationQuality: 3, eventType: { causeCode: 94, subCauseCode: 2 } },
        location: {
            traces: [
                [44, 26, 8].map((along, i, all) => {
                    const from = place(
                        CROSSING_EU,
                        i === 0 ? onLane(WEST, 66, EGRESS - 4) : onLane(WEST, all[i - 1], EGRESS),
                    );
                    return pathPoint(from, place(CROSSING_EU, onLane(WEST, along, EGRESS)));
                }),
            ],
        },
    },
};

function crossingLog() {
    const lines = [
        "# a crossing in Europe: MAPEM, SPATEM, CAM of four vehicles, and a DENM; seconds before each message",
    ];
    const add = (seconds, type, value) => lines.push(`${seconds.toFixed(3)} ${hex(type, value)}`);
    const header = (messageID) => ({ protocolVersion: 2, messageID, stationID: 900 });
    add(20, "EU.MAPEM", { header: header(5), map: mapData(CROSSING_EU, "Ring and Mill Road") });
    for (let step = 0; step < STEPS; step++) {
        const now = 20 + step / 2;
        add(now + 0.01, "EU.SPATEM", { header: header(4), spat: spatData(step) });
        TRAVELLERS.forEach((traveller, i) =>
            add(now + 0.05 + i * 0.08, "EU.CAM", camOf(traveller, step, step % 4 === 3)),
        );
        if (step === 8) add(now + 0.42, "EU.DENM", denm);
    }
    return lines.join("\n");
}

// ---- US ----------------------------------------------------------------------------------------------------------

const CROSSING_US = { lat: 42.28085, lon: -83.7432 };

function bsmUs() {
    const at = place(CROSSING_US, onArm(NORTH, 30, RIGHT_LANE));
    const crumb = (metres, i) => {
        const { lat, lon } = offset(at, place(CROSSING_US, onArm(NORTH, metres, RIGHT_LANE + i * 0.7)));
        return { latOffset: lat, lonOffset: lon, elevationOffset: 0, timeOffset: 90 * (i + 1) };
    };
    return {
        messageId: 20,
        value: {
            coreData: {
                msgCnt: 42,
                id: "C0FFEE01",
                secMark: 36_500,
                lat: units(at.lat),
                long: units(at.lon),
                elev: 2560,
                accuracy: { semiMajor: 30, semiMinor: 22, orientation: 9000 },
                transmission: "forwardGears",
                speed: 610,
                heading: Math.round(ARMS[SOUTH] / 0.0125),
                angle: 0,
                accelSet: { long: -35, lat: 4, vert: 0, yaw: 60 },
                brakes: {
                    wheelBrakes: "78",
                    traction: "on",
                    abs: "on",
                    scs: "on",
                    brakeBoost: "off",
                    auxBrakes: "off",
                },
                size: { width: 190, length: 480 },
            },
            partII: [
                { "partII-Id": 0, "partII-Value": { pathHistory: { crumbData: [42, 55, 69, 84, 100].map(crumb) } } },
            ],
        },
    };
}

const logUs = () =>
    [
        "# MAP, SPAT and a BSM as SAE J2735 has them",
        hex("US.MessageFrame", { messageId: 18, value: mapData(CROSSING_US, "Main and Third") }),
        hex("US.MessageFrame", { messageId: 19, value: spatData(2) }),
        hex("US.MessageFrame", bsmUs()),
    ].join("\n");

// ---- CN ----------------------------------------------------------------------------------------------------------

const CROSSING_CN = { lat: 39.90872, lon: 116.39751 };

function mapCn() {
    const id = (arm) => ({ region: 11, id: 200 + arm });
    const middle = { region: 11, id: 100 };
    const point = (from, where, form) => ({
        posOffset: { offsetLL: { [form]: offset(from, place(CROSSING_CN, where)) } },
    });
    const inbound = (arm, left) =>
        armPoints(arm, left)
            .reverse()
            .map((where) => point(CROSSING_CN, where, "position-LL4"));
    const link = (arm) => ({
        upstreamNodeId: id(arm),
        linkWidth: 700,
        lanes: [
            {
                laneID: 1,
                laneWidth: 340,
                connectsTo: [
                    { remoteIntersection: id((arm + 1) % 4), connectingLane: { lane: 1 }, phaseId: leftGroup(arm) },
                ],
                points: inbound(arm, LEFT_LANE),
            },
            {
                laneID: 2,
                laneWidth: 340,
                connectsTo: [
                    { remoteIntersection: id((arm + 2) % 4), connectingLane: { lane: 1 }, phaseId: straightGroup(arm) },
                ],
                points: inbound(arm, RIGHT_LANE),
            },
        ],
    });
    const outbound = (arm) => {
        const at = place(CROSSING_CN, onArm(arm, 120, 0));
        const points = armPoints(arm, EGRESS).map((where) => point(at, where, "position-LL6"));
        return {
            name: `arm ${arm + 1}`,
            id: id(arm),
            refPos: { lat: units(at.lat), lon: units(at.lon) },
            inLinks: [
                {
                    upstreamNodeId: middle,
                    linkWidth: 340,
                    lanes: [{ laneID: 1, points }],
                },
            ],
        };
    };
    const nodes = [
        {
            name: "crossing",
            id: middle,
            refPos: { lat: units(CROSSING_CN.lat), lon: units(CROSSING_CN.lon) },
            inLinks: ARMS.map((_, arm) => link(arm)),
        },
        ...ARMS.map((_, arm) => outbound(arm)),
    ];
    return { mapFrame: { msgCnt: 3, nodes } };
}

function logCn() {
    const lights = ["protected-green", "red", "red", "yellow"];
    const spat = {
        msgCnt: 4,
        intersections: [
            {
                intersectionId: { region: 11, id: 100 },
                status: "0000",
                phases: lights.map((light, i) => ({
                    id: i + 1,
                    phaseStates: [{ light, timing: { counting: { startTime: 0, likelyEndTime: 120 + i * 50 } } }],
                })),
            },
        ],
    };
    const at = place(CROSSING_CN, onArm(EAST, 34, RIGHT_LANE));
    const bsm = {
        msgCnt: 17,
        id: "3435383830303031",
        secMark: 32460,
        pos: { lat: units(at.lat), lon: units(at.lon), elevation: 435 },
        posConfidence: { pos: "a2m", elevation: "elev-002-00" },
        transmission: "forwardGears",
        speed: 694,
        heading: Math.round(ARMS[WEST] / 0.0125),
        angle: -3,
        accelSet: { lon: 42, lat: 3, vert: 0, yaw: 120 },
        brakes: { brakePedal: "off", abs: "off", scs: "on" },
        size: { width: 182, length: 467, height: 29 },
        vehicleClass: { classification: 10, fuelType: 9 },
    };
    return [
        "# a crossing in China: MAP, SPAT and a BSM",
        hex("CN.MessageFrame", mapCn()),
        hex("CN.MessageFrame", { spatFrame: spat }),
        hex("CN.MessageFrame", { bsmFrame: bsm }),
    ].join("\n");
}

// ---- all ---------------------------------------------------------------------------------------------------------

const oneCam = hex("EU.CAM", camOf(TRAVELLERS[0], 15, true));
const examples = [
    { name: "CAM, Europe", text: oneCam },
    { name: "Crossing, Europe: MAPEM, SPATEM, CAM, DENM", text: crossingLog() },
    { name: "Crossing, US: MAP, SPAT, BSM", text: logUs() },
    { name: "Crossing, China: MAP, SPAT, BSM", text: logCn() },
    { name: "DENM: a stationary vehicle", text: hex("EU.DENM", denm) },
    { name: "A CAM that was cut short", text: oneCam.slice(0, 64) },
];

const entries = examples.map((example) => `    ${JSON.stringify(example)},\n`).join("");
await writeFile(
    join(here, "src/page/examples.ts"),
    `// SPDX-License-Identifier: Apache-2.0
// Made by examples.mjs: messages to begin with.
export interface Example {
    name: string;
    text: string;
}

export const EXAMPLES: Example[] = [
${entries}];
`,
);
for (const { name, text } of examples) console.log(`${name}: ${text.length} characters`);

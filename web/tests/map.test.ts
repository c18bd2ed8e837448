// SPDX-License-Identifier: Apache-2.0
import assert from "node:assert/strict";
import { test } from "node:test";
import type { Value } from "orlenta";
import { featuresOf } from "../src/map/extract";
import { type LatLon, roundLength, toMetres } from "../src/map/geo";
import { sceneOf, signalOf } from "../src/map/scene";
import { fit, toPlane, toScreen, zoom } from "../src/map/viewport";

const AT = { lat: 520_000_000, lon: 100_000_000 };
const ORIGIN = { lat: 52, lon: 10 };

/** In units of 10^-7 degrees from AT. */
const offsets = (places: LatLon[]) =>
    places.map(({ lat, lon }) => [Math.round(lat * 1e7) - AT.lat, Math.round(lon * 1e7) - AT.lon]);
/** In metres, rounded to centimetres. */
const metres = (places: LatLon[]) =>
    places.map((place) => {
        const { x, y } = toMetres(place, ORIGIN);
        return [Math.round(x * 100) / 100 + 0, Math.round(y * 100) / 100 + 0];
    });

test("histories: EU relative to the point before, US and CN to the vehicle", () => {
    const delta = (lat: number, lon: number) => ({
        pathPosition: { deltaLatitude: lat, deltaLongitude: lon, deltaAltitude: 0 },
    });
    const crumb = (lat: number, lon: number) => ({ latOffset: lat, lonOffset: lon });
    const offset = (lat: number, lon: number) => ({ llvOffset: { offsetLL: { "position-LL1": { lat, lon } } } });
    const eu: Value = {
        header: { stationID: 7 },
        cam: {
            camParameters: {
                basicContainer: { stationType: 5, referencePosition: { latitude: AT.lat, longitude: AT.lon } },
                highFrequencyContainer: {
                    basicVehicleContainerHighFrequency: {
                        heading: { headingValue: 905 },
                        speed: { speedValue: 16383 },
                    },
                },
                lowFrequencyContainer: {
                    basicVehicleContainerLowFrequency: {
                        pathHistory: [delta(10, 20), delta(1, 2), delta(131072, 0), delta(1, 1)],
                    },
                },
            },
        },
    };
    const us: Value = {
        messageId: 20,
        value: {
            coreData: { id: "aa", lat: AT.lat, long: AT.lon, heading: 28800, speed: 50 },
            partII: [
                { "partII-Id": 0, "partII-Value": { pathHistory: { crumbData: [crumb(10, 20), crumb(11, 22)] } } },
            ],
        },
    };
    const cn: Value = {
        bsmFrame: {
            id: "bb",
            secMark: 1,
            pos: AT,
            heading: 7200,
            safetyExt: { pathHistory: { crumbData: [offset(10, 20), offset(11, 22)] } },
        },
    };
    const rows: [value: Value, key: string, heading: number | undefined, speed: number | undefined][] = [
        [eu, "EU 7", 90.5, undefined],
        [us, "US aa", undefined, 1],
        [cn, "CN bb", 90, undefined],
    ];
    for (const [value, key, heading, speed] of rows) {
        const [station] = featuresOf(value).stations;
        assert.deepEqual([station.key, station.heading, station.speed], [key, heading, speed]);
        assert.deepEqual(
            offsets(station.history),
            [
                [10, 20],
                [11, 22],
            ],
            key,
        );
    }
});

test("road users and perceived objects: place, heading and way, where they are known", () => {
    const basic = (stationType: number) => ({
        stationType,
        referencePosition: { latitude: AT.lat, longitude: AT.lon },
    });
    const vam = (rest: object): Value => ({
        header: { stationID: 8 },
        vam: { vamParameters: { basicContainer: basic(1), ...rest } },
    });
    const way = { deltaLatitude: 10, deltaLongitude: 20, deltaAltitude: 0 };
    const walking = vam({
        vruHighFrequencyContainer: { heading: { headingValue: 905 }, speed: { speedValue: 150 } },
        vruMotionPredictionContainer: { pathHistory: [{ pathPosition: way }] },
    });
    const crumb = (latOffset: number) => ({ latOffset, lonOffset: 20 });
    const psm = (heading: number): Value => ({
        basicType: "aPEDESTRIAN",
        id: "cc",
        position: { lat: AT.lat, long: AT.lon },
        speed: 8191,
        heading,
        pathHistory: { crumbData: [crumb(10), crumb(-131072)] },
    });
    const cpm = (stationType: number, heading: number, yaw: number): Value => {
        const seen = { objectID: 4, xDistance: { value: 1000 }, yDistance: { value: 200 }, yawAngle: { value: yaw } };
        const cpmParameters = {
            managementContainer: basic(stationType),
            stationDataContainer: { containerData: { heading: { headingValue: heading } } },
            perceptionData: [{ containerData: { perceivedObjects: [seen] } }],
        };
        return { header: { stationID: 9 }, cpm: { cpmParameters } };
    };
    const atVam = "vam.vamParameters.basicContainer.referencePosition";
    const atCpm = "cpm.cpmParameters.managementContainer.referencePosition";
    const object = "cpm.cpmParameters.perceptionData[0].containerData.perceivedObjects[0]";
    const rows: [
        value: Value,
        path: string,
        kind: string,
        heading: number | undefined,
        at: number[],
        way: number[][],
    ][] = [
        [walking, atVam, "person", 90.5, [0, 0], [[10, 20]]],
        [vam({}), atVam, "person", undefined, [0, 0], []],
        [psm(7200), "position", "person", 90, [0, 0], [[10, 20]]],
        [{ messageId: 32, value: psm(28800) }, "value.position", "person", undefined, [0, 0], [[10, 20]]],
        [cpm(5, 900, 0), atCpm, "vehicle", 90, [0, 0], []],
        [cpm(5, 0, 300), object, "object", 330, [-2, 10], []], // ahead of one that goes north, and to its left
        [cpm(15, 3601, 3601), object, "object", undefined, [10, 2], []],
    ];
    for (const [value, path, kind, heading, at, way] of rows) {
        const station = featuresOf(value).stations.find((one) => one.path === path);
        assert.ok(station, path);
        assert.deepEqual([station.kind, station.heading, metres([station.at])[0]], [kind, heading, at], path);
        assert.deepEqual(offsets(station.history), way, path);
    }
});

test("places of types that nobody knows", () => {
    const value: Value = { a: [{ where: { latitude: AT.lat, longitude: AT.lon } }], b: { lat: 900000001, lon: 0 } };
    assert.deepEqual(
        featuresOf(value).stations.map(({ path }) => path),
        ["a[0].where"],
    );
});

const lane = (id: number, nodeList: Value, rest: Value = {}): Value => ({
    laneID: id,
    laneAttributes: { directionalUse: id === 1 ? "80" : "40", laneType: { vehicle: "00" } },
    nodeList,
    ...(rest as object),
});

test("lanes of MAPEM: nodes one from the other, places, computed lanes; lights by signal group", () => {
    const nodes = (...deltas: Value[]): Value => ({ nodes: deltas.map((delta) => ({ delta })) });
    const map: Value = {
        header: { messageID: 5 },
        map: {
            intersections: [
                {
                    id: { region: 1, id: 2 },
                    refPoint: { lat: AT.lat, long: AT.lon },
                    laneWidth: 300,
                    laneSet: [
                        lane(1, nodes({ "node-XY1": { x: 100, y: 200 } }, { "node-XY6": { x: 0, y: 1000 } }), {
                            connectsTo: [{ connectingLane: { lane: 2 }, signalGroup: 4 }],
                        }),
                        lane(
                            2,
                            nodes(
                                { "node-LatLon": { lat: AT.lat + 1000, lon: AT.lon } },
                                { "node-XY1": { x: 0, y: 100 } },
                            ),
                        ),
                        lane(3, {
                            computed: { referenceLaneId: 1, offsetXaxis: { small: 300 }, offsetYaxis: { large: 0 } },
                        }),
                    ],
                },
            ],
        },
    };
    const spat = (eventState: string): Value => ({
        spat: {
            intersections: [
                { id: { region: 1, id: 2 }, states: [{ signalGroup: 4, "state-time-speed": [{ eventState }] }] },
            ],
        },
    });
    const features = featuresOf(map);
    const [{ lanes }] = features.intersections;
    assert.deepEqual(metres(lanes[0].points), [
        [1, 2],
        [1, 12],
    ]);
    assert.deepEqual(metres(lanes[1].points), [
        [0, 11.13],
        [0, 12.13],
    ]);
    assert.deepEqual(metres(lanes[2].points), [
        [4, 2],
        [4, 12],
    ]);
    assert.deepEqual([lanes[0].isIngress, lanes[0].isEgress, lanes[1].isEgress], [true, false, true]);

    const lights = ["stop-And-Remain", "protected-Movement-Allowed", "pre-Movement", "dark"].map((state, i) => {
        const scene = sceneOf([
            { message: 0, features },
            { message: i + 1, features: featuresOf(spat(state)) },
        ]);
        return signalOf(scene, scene.intersections[0].key, lanes[0].connections[0].signalGroup)?.light;
    });
    assert.deepEqual(lights, ["red", "green", "amber", "dark"]);
});

test("lanes of CN: offsets from the node, phases of the movement, and lanes beside the link", () => {
    const point = (lat: number, lon: number): Value => ({ posOffset: { offsetLL: { "position-LL2": { lat, lon } } } });
    const map: Value = {
        mapFrame: {
            nodes: [
                {
                    id: { region: 1, id: 2 },
                    refPos: AT,
                    inLinks: [
                        {
                            upstreamNodeId: { id: 9 },
                            linkWidth: 400,
                            points: [point(2000, 0), point(1000, 0)],
                            movements: [{ remoteIntersection: { id: 3 }, phaseId: 6 }],
                            lanes: [
                                {
                                    laneID: 1,
                                    points: [point(2000, 10), point(1000, 10)],
                                    connectsTo: [{ remoteIntersection: { id: 3 } }],
                                },
                                { laneID: 2 },
                            ],
                        },
                    ],
                },
            ],
        },
    };
    const [{ lanes }] = featuresOf(map).intersections;
    assert.deepEqual(
        offsets(lanes[0].points),
        [
            [1000, 10],
            [2000, 10],
        ],
        "the stop line comes first",
    );
    assert.equal(lanes[0].connections[0].signalGroup, 6);
    assert.deepEqual(
        metres(lanes[1].points).map(([x]) => x),
        [-2, -2],
        "to the right of traffic that goes south",
    );
});

test("the newest message of each station counts", () => {
    const at = (lat: number): Value => ({ coreData: { id: "aa", lat, long: 0 } });
    const items = [1, 2].map((degrees, message) => ({ message, features: featuresOf(at(degrees * 1e7)) }));
    const { stations } = sceneOf(items);
    assert.deepEqual(
        stations.map(({ message, at: { lat } }) => [message, lat]),
        [[1, 2]],
    );
});

test("a view shows all, and zooms about the pointer", () => {
    const empty = { centre: { x: 0, y: 0 }, scale: 1, width: 400, height: 200 };
    const view = fit(empty, [
        { x: -100, y: 0 },
        { x: 300, y: 50 },
    ]);
    for (const corner of [
        { x: -100, y: 0 },
        { x: 300, y: 50 },
    ]) {
        const { x, y } = toScreen(view, corner);
        assert.ok(x > 0 && x < 400 && y > 0 && y < 200);
    }
    const pointer = { x: 30, y: 40 };
    const closer = zoom(view, 3, pointer);
    assert.ok(Math.abs(toPlane(view, pointer).x - toPlane(closer, pointer).x) < 1e-9);
    assert.deepEqual([0.3, 7, 99, 5e4].map(roundLength), [0.2, 5, 50, 5e4]);
});

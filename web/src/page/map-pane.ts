// SPDX-License-Identifier: Apache-2.0
// The map beside the message: one message, or a log at a moment of it, with a slider through its time.
import type { Value } from "orlenta";
import type { Log } from "../log/log";
import { featuresOf } from "../map/extract";
import type { Features } from "../map/features";
import type { LatLon } from "../map/geo";
import { createMap } from "../map/map";
import { placesOf, type Scene, sceneOf } from "../map/scene";
import { byId } from "../view/dom";

export interface MapPaneEvents {
    /** A message of the log, or 0. */
    onPick(message: number, path: string): void;
    /** Done when the message is shown. */
    onMoment(message: number): Promise<void>;
    /** Reads a message of the log. */
    valueAt(message: number): Promise<Value | undefined>;
}

export interface MapPane {
    showOne(value: Value | undefined, isEdited: boolean): void;
    showLog(log: Log, moment: number, isGrowing: boolean): void;
    /** A message of the log is no longer what it was. */
    changed(message: number): void;
    point(path: string | null): void;
    /** False if there is no log to play. */
    togglePlay(): boolean;
}

const MOST_KEPT = 3000;
const MOST_PLACES = 4000;
/** A log without times is played in so long, in milliseconds. */
const PLAY_ALL = 20_000;
const SHORTEST_STEP = 30;
const LONGEST_STEP = 1500;

export function createMapPane(events: MapPaneEvents): MapPane {
    const map = createMap(byId("map"), { onPick: events.onPick });
    const slider = byId<HTMLInputElement>("moment");
    const play = byId<HTMLButtonElement>("play");
    const empty = byId("map-empty");
    let log: Log | null = null;
    let moment = 0;
    let known = new Map<number, Features>();
    let run = 0;
    let timer = 0;
    let plays = 0;
    let isPlaying = false;
    let isFitDue = false;

    byId("map-in").addEventListener("click", () => map.zoomBy(1.5));
    byId("map-out").addEventListener("click", () => map.zoomBy(1 / 1.5));
    byId("map-all").addEventListener("click", () => map.fitAll());
    slider.addEventListener("input", () => void goTo(Number(slider.value)));
    play.addEventListener("click", () => togglePlay());

    function show(scene: Scene, extent?: LatLon[]): void {
        const count = placesOf(scene).length;
        empty.hidden = count > 0;
        if (count === 0)
            empty.textContent =
                scene.signals.size > 0 ? "lights without a map of the crossing" : "nothing of this message has a place";
        map.show(scene, extent);
    }

    async function featuresAt(message: number): Promise<Features> {
        const here = known; // that of another log may take its place meanwhile
        let features = here.get(message);
        if (!features) {
            features = featuresOf(await events.valueAt(message));
            if (here.size > MOST_KEPT) here.clear();
            here.set(message, features);
        }
        return features;
    }

    function extentOf(from: Log): LatLon[] {
        const step = Math.max(1, Math.floor(from.messages.length / MOST_PLACES));
        const places: LatLon[] = [];
        for (let i = 0; i < from.messages.length; i += step) {
            const { at } = from.messages[i];
            if (at) places.push(at);
        }
        return places;
    }

    async function showMoment(): Promise<void> {
        const mine = ++run;
        const from = log;
        if (!from) return;
        const holding = from.holdingAt(moment);
        const items = await Promise.all(
            holding.map(async (message) => ({ message, features: await featuresAt(message) })),
        );
        if (mine !== run) return;
        const extent = isFitDue ? extentOf(from) : undefined;
        isFitDue = false;
        show(sceneOf(items, from.trailsAt(moment, holding)), extent);
    }

    function showSlider(): void {
        const count = log?.messages.length ?? 0;
        byId("time").hidden = count < 2;
        slider.max = String(Math.max(count - 1, 0));
        slider.value = String(moment);
        const time = log?.messages[moment]?.time;
        const begin = log?.messages[0]?.time;
        const clock = time !== undefined && begin !== undefined ? ` · ${((time - begin) / 1000).toFixed(1)} s` : "";
        byId("moment-text").textContent = `${moment + 1} of ${count}${clock}`;
    }

    function stepTime({ messages }: Log): number {
        const now = messages[moment]?.time;
        const next = messages[moment + 1]?.time;
        const apart = now !== undefined && next !== undefined ? next - now : PLAY_ALL / messages.length;
        return Math.min(LONGEST_STEP, Math.max(SHORTEST_STEP, apart));
    }

    /** The moment is that one from now on, though its message is still to be read. */
    function goTo(next: number): Promise<void> {
        moment = next;
        return events.onMoment(next);
    }

    function stop(): void {
        plays++;
        clearTimeout(timer);
        isPlaying = false;
        play.textContent = "▶";
        play.setAttribute("aria-label", "Play");
    }

    function togglePlay(): boolean {
        if (!log || log.messages.length < 2) return false;
        if (isPlaying) stop();
        else start(log);
        return true;
    }

    function start(from: Log): void {
        isPlaying = true;
        play.textContent = "❚❚";
        play.setAttribute("aria-label", "Pause");
        const mine = ++plays;
        const step = () => {
            if (mine !== plays) return;
            if (moment >= from.messages.length - 1) return stop();
            timer = window.setTimeout(() => void goTo(moment + 1).then(step), stepTime(from));
        };
        if (moment >= from.messages.length - 1) void goTo(0).then(step);
        else step();
    }

    return {
        togglePlay,
        showOne(value, isEdited) {
            run++;
            stop();
            log = null;
            showSlider();
            const scene = sceneOf([{ message: 0, features: featuresOf(value) }]);
            show(scene, isEdited && !map.isUntouched() ? undefined : placesOf(scene));
        },
        showLog(next, index, isGrowing) {
            const isOther = next !== log;
            if (isOther) {
                stop();
                known = new Map();
            }
            log = next;
            moment = index;
            showSlider();
            isFitDue ||= isOther || (isGrowing && map.isUntouched());
            void showMoment();
        },
        changed: (message) => known.delete(message),
        point: (path) => map.point(log ? moment : 0, path),
    };
}

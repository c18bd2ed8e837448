// SPDX-License-Identifier: Apache-2.0
// The map: a plane with north up, a grid, a scale and what a scene holds. It asks nothing of any network.
import { drawIntersections } from "./draw-lanes";
import { drawAreas, drawMarks, drawTraces, type Mark } from "./draw-marks";
import { type LatLon, type Point, fromMetres, roundLength, toMetres } from "./geo";
import { placesOf, type Scene } from "./scene";
import { svg } from "./svg";
import { fit, toPlane, toScreen, type Viewport, zoom } from "./viewport";

export interface MapView {
    /** Shows all places of `extent` if it is given, and else keeps the view. */
    show(scene: Scene, extent?: LatLon[]): void;
    /** The mark of this place in the value. */
    point(message: number, path: string | null): void;
    fitAll(): void;
    zoomBy(factor: number): void;
    /** The user has not moved the map since it showed everything. */
    isUntouched(): boolean;
}

export interface MapEvents {
    onPick(message: number, path: string): void;
}

const GRID_PIXELS = 110;
const SCALE_PIXELS = 140;
const KEY_STEP = 60;
const KEY_ZOOM = 1.4;
const DRAG_PIXELS = 4;

function lengthText(metres: number): string {
    return metres >= 1000 ? `${metres / 1000} km` : `${metres} m`;
}

export function createMap(host: HTMLElement, events: MapEvents): MapView {
    const grid = svg("path", { class: "grid" });
    const plane = svg("g", { class: "plane" });
    const marks = svg("g", { class: "marks" });
    const root = svg("svg", { class: "map", tabindex: 0, role: "application" }, grid, plane, marks);
    root.setAttribute("aria-label", "map: arrows move it, plus and minus zoom, 0 shows all");
    const scaleBar = document.createElement("div");
    scaleBar.className = "scale";
    const where = document.createElement("div");
    where.className = "where";
    host.append(root, scaleBar, where);

    let view: Viewport = { centre: { x: 0, y: 0 }, scale: 1, width: 100, height: 100 };
    let origin: LatLon = { lat: 0, lon: 0 };
    let placed: Mark[] = [];
    let shown: Scene | null = null;
    let isFitted = true;
    let everything: LatLon[] = [];

    function drawGrid(): void {
        const step = roundLength(GRID_PIXELS / view.scale);
        const low = toPlane(view, { x: 0, y: view.height });
        const high = toPlane(view, { x: view.width, y: 0 });
        let d = "";
        for (let x = Math.ceil(low.x / step) * step; x <= high.x; x += step)
            d += `M${toScreen(view, { x, y: 0 }).x.toFixed(1)} 0v${view.height}`;
        for (let y = Math.ceil(low.y / step) * step; y <= high.y; y += step)
            d += `M0 ${toScreen(view, { x: 0, y }).y.toFixed(1)}h${view.width}`;
        grid.setAttribute("d", d);
        const length = roundLength(SCALE_PIXELS / view.scale);
        scaleBar.style.width = `${length * view.scale}px`;
        scaleBar.textContent = lengthText(length);
    }

    function place(): void {
        const { x, y } = toScreen(view, { x: 0, y: 0 });
        plane.setAttribute("transform", `translate(${x} ${y}) scale(${view.scale})`);
        for (const { at, element } of placed) {
            const on = toScreen(view, at);
            element.setAttribute("transform", `translate(${on.x.toFixed(1)} ${on.y.toFixed(1)})`);
        }
        drawGrid();
    }

    function move(next: Viewport): void {
        view = next;
        isFitted = false;
        place();
    }

    function fitAll(): void {
        isFitted = true;
        view = fit(
            view,
            everything.map((one) => toMetres(one, origin)),
        );
        place();
    }

    new ResizeObserver(() => {
        const { width, height } = host.getBoundingClientRect();
        if (width === 0 || height === 0) return;
        view = { ...view, width, height };
        root.setAttribute("viewBox", `0 0 ${width} ${height}`);
        if (isFitted) fitAll();
        else place();
    }).observe(host);

    listen(root, () => view, move, fitAll);
    root.addEventListener("pointermove", (event) => {
        const { lat, lon } = fromMetres(toPlane(view, localPoint(root, event)), origin);
        where.textContent = shown ? `${lat.toFixed(6)}, ${lon.toFixed(6)}` : "";
    });
    root.addEventListener("click", (event) => {
        const hit = (event.target as Element).closest<SVGElement>("[data-message]");
        if (hit) events.onPick(Number(hit.dataset.message), hit.dataset.path ?? "");
    });

    return {
        fitAll,
        zoomBy: (factor) => move(zoom(view, factor, { x: view.width / 2, y: view.height / 2 })),
        isUntouched: () => isFitted,
        show(scene, extent) {
            shown = scene;
            if (extent) {
                everything = [...extent, ...placesOf(scene)];
                origin = everything[0] ?? origin;
            }
            plane.replaceChildren(
                ...drawAreas(scene, origin),
                ...drawIntersections(scene, origin),
                ...drawTraces(scene, origin),
            );
            placed = drawMarks(scene, origin);
            marks.replaceChildren(...placed.map(({ element }) => element));
            if (extent) fitAll();
            else place();
        },
        point(message, path) {
            for (const element of root.querySelectorAll<SVGElement>("[data-message]")) {
                const isSame = path !== null && Number(element.dataset.message) === message;
                element.classList.toggle(
                    "lit",
                    isSame && path !== "" && isNear(element.dataset.path ?? "", path ?? ""),
                );
            }
        },
    };
}

function isNear(mark: string, path: string): boolean {
    return path === mark || path.startsWith(`${mark}.`) || path.startsWith(`${mark}[`);
}

function localPoint(root: SVGElement, event: MouseEvent): Point {
    const box = root.getBoundingClientRect();
    return { x: event.clientX - box.left, y: event.clientY - box.top };
}

/** Dragging, two fingers, the wheel and keys. */
function listen(
    root: SVGSVGElement,
    current: () => Viewport,
    move: (next: Viewport) => void,
    fitAll: () => void,
): void {
    const fingers = new Map<number, Point>();
    let dragged = 0;

    root.addEventListener(
        "wheel",
        (event) => {
            event.preventDefault();
            move(zoom(current(), Math.exp(-event.deltaY * 0.0015), localPoint(root, event)));
        },
        { passive: false },
    );
    root.addEventListener("pointerdown", (event) => {
        fingers.set(event.pointerId, localPoint(root, event));
        dragged = 0;
    });
    root.addEventListener("pointermove", (event) => {
        if (event.buttons === 0) fingers.delete(event.pointerId); // it was let go outside
        const before = fingers.get(event.pointerId);
        if (!before) return;
        const now = localPoint(root, event);
        const others = [...fingers].filter(([id]) => id !== event.pointerId).map(([, point]) => point);
        fingers.set(event.pointerId, now);
        dragged += Math.hypot(now.x - before.x, now.y - before.y);
        if (dragged > DRAG_PIXELS && !root.hasPointerCapture(event.pointerId)) root.setPointerCapture(event.pointerId);
        const view = current();
        if (others.length === 1) {
            const far = (point: Point) => Math.hypot(point.x - others[0].x, point.y - others[0].y) || 1;
            return move(zoom(view, far(now) / far(before), others[0]));
        }
        const centre = {
            x: view.centre.x - (now.x - before.x) / view.scale,
            y: view.centre.y + (now.y - before.y) / view.scale,
        };
        move({ ...view, centre });
    });
    for (const end of ["pointerup", "pointercancel"] as const)
        root.addEventListener(end, (event) => fingers.delete(event.pointerId));
    root.addEventListener("click", (event) => dragged > DRAG_PIXELS && event.stopImmediatePropagation(), {
        capture: true,
    });
    root.addEventListener("dblclick", (event) => move(zoom(current(), 2, localPoint(root, event))));
    root.addEventListener("keydown", (event) => {
        const view = current();
        const middle = { x: view.width / 2, y: view.height / 2 };
        const by = (x: number, y: number) =>
            move({ ...view, centre: { x: view.centre.x + x / view.scale, y: view.centre.y + y / view.scale } });
        const keys: Record<string, () => void> = {
            ArrowLeft: () => by(-KEY_STEP, 0),
            ArrowRight: () => by(KEY_STEP, 0),
            ArrowUp: () => by(0, KEY_STEP),
            ArrowDown: () => by(0, -KEY_STEP),
            "+": () => move(zoom(view, KEY_ZOOM, middle)),
            "=": () => move(zoom(view, KEY_ZOOM, middle)),
            "-": () => move(zoom(view, 1 / KEY_ZOOM, middle)),
            "0": fitAll,
        };
        if (event.ctrlKey || event.metaKey || event.altKey || !keys[event.key]) return;
        event.preventDefault();
        keys[event.key]();
    });
}

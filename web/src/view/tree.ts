// SPDX-License-Identifier: Apache-2.0
// A value as a tree that can be walked by keys, pointed at and edited.
import type { TypeInfo, Value } from "orlenta";
import { isWithin, joinPath, parsePath, type Step, withValueAt } from "../codec/path";
import { h, scrollWithin } from "./dom";
import { editor } from "./edit";
import { absentOf, canGrow, childrenOf, type Node, type OpenTypes, rootNode } from "./tree-nodes";
import { boundsText, leafText, meaning, shortened, typeText } from "./value-text";

// What a component is, for those who point at its name.
function hint(type: TypeInfo): string {
    const text = `${typeText(type)} ${boundsText(type)}`.trim();
    return type.about ? `${text}\n${type.about}` : text;
}

export interface Shown {
    typeName: string;
    type: TypeInfo;
    value: Value;
    open: OpenTypes;
    /** A small value of the type, for parts that are added: for the component of this name of `holder`. */
    fresh(type: TypeInfo, holder?: TypeInfo, name?: string): Value;
    isEditable: boolean;
    /** Where something is wrong, and what. */
    error?: { path: string; message: string };
}

export interface TreeEvents {
    onPoint(path: string | null): void;
    onEdit(value: Value): void;
}

export interface TreeView {
    show(shown: Shown | null): void;
    /** Lights the component up; opens the way to it and scrolls there if `isRevealed`. */
    light(path: string | null, isRevealed?: boolean): void;
}

const OPEN_AT_FIRST = 250;
const MOST_CHILDREN = 200;

export function createTree(host: HTMLElement, events: TreeEvents): TreeView {
    host.setAttribute("role", "tree");
    host.setAttribute("aria-label", "value");
    let shown: Shown | null = null;
    let closed = new Set<string>();
    let opened = new Set<string>();
    /** Lists that are shown beyond MOST_CHILDREN. */
    let whole = new Set<string>();
    let openDepth = Infinity;
    let focus = "";
    let lit: string | null = null;
    const rows = new Map<string, { row: HTMLElement; node: Node }>();

    const isOpen = ({ path, depth }: Node) => (opened.has(path) || depth < openDepth) && !closed.has(path);

    function change(path: string, part: Value | undefined): void {
        if (!shown) return;
        focus = path;
        events.onEdit(withValueAt(shown.value, parsePath(path), part));
    }

    function toggle(node: Node, open: boolean): void {
        (open ? closed : opened).delete(node.path);
        (open ? opened : closed).add(node.path);
        render();
        focusRow(node.path);
    }

    function startEdit(node: Node): void {
        const hit = rows.get(node.path);
        if (!shown?.isEditable || !hit || !node.type) return;
        const cell = hit.row.querySelector(".value");
        if (!cell) return;
        const before = [...cell.childNodes];
        const edited = shown;
        const field = editor(node.type, node.value, {
            // A field that another message takes away loses the focus, too; what it says is not for that one.
            commit: (value) => shown === edited && change(node.path, value),
            cancel(isByKey) {
                cell.replaceChildren(...before);
                if (isByKey) focusRow(node.path);
            },
        });
        if (!field) return;
        cell.replaceChildren(field);
        field.focus();
        if (field instanceof HTMLInputElement) field.select();
        else if (field instanceof HTMLSelectElement) showOptions(field);
    }

    function addControl(node: Node): HTMLElement | null {
        if (canGrow(node)) {
            const element = node.type?.element as TypeInfo;
            const path = joinPath(node.path, (node.value as Value[]).length);
            const grow = () => {
                opened.add(node.path);
                // An element without a name of its type is made by those there are: open types in it fit then.
                const [last] = element.name ? [] : (node.value as Value[]).slice(-1);
                change(path, last ?? shown?.fresh(element));
            };
            return h("button", { class: "act", title: "add an element", tabindex: -1, click: grow }, "+");
        }
        const absent = node.type?.components ? absentOf(node) : [];
        if (absent.length === 0) return null;
        const options = absent.map(({ name }) => h("option", { value: name }, name));
        const select = h(
            "select",
            { class: "act", title: "add a component", tabindex: -1 },
            h("option", { value: "" }, "+"),
            ...options,
        );
        select.addEventListener("change", () => {
            const component = absent.find(({ name }) => name === select.value);
            if (!component) return;
            opened.add(node.path);
            change(
                joinPath(node.path, component.name),
                component.default ?? shown?.fresh(component.type, node.type, component.name),
            );
        });
        return select;
    }

    function alternativeControl(node: Node): HTMLElement {
        const [current] = Object.keys(node.value as object);
        const alternatives = node.type?.alternatives ?? [];
        if (!shown?.isEditable) return h("span", { class: "value choice" }, current ?? "");
        const options = alternatives.map(({ name }) => h("option", { selected: name === current }, name));
        const select = h("select", { class: "value choice", tabindex: -1, title: "alternative" }, ...options);
        select.addEventListener("change", () => {
            const to = alternatives.find(({ name }) => name === select.value);
            if (to) change(node.path, { [to.name]: shown?.fresh(to.type, node.type, to.name) ?? null });
        });
        return select;
    }

    function valueCell(node: Node): HTMLElement {
        if (node.type?.kind === "CHOICE") return alternativeControl(node);
        if (Array.isArray(node.value)) return h("span", { class: "value count" }, `${node.value.length}`);
        if (node.isContainer) return h("span", { class: "value count" });
        const text = leafText(node.value, node.type);
        const kind = (node.type?.kind ?? "").replace(/ /g, "-").toLowerCase();
        const stands = meaning(node.value, node.type);
        const cell = h("span", { class: `value ${kind}`, title: text.length > 60 ? text : undefined }, shortened(text));
        // Clicks in the field that stands in the cell bubble up to it.
        if (shown?.isEditable) cell.addEventListener("click", ({ target }) => target === cell && startEdit(node));
        return stands ? h("span", { class: "value-with" }, cell, h("span", { class: "unit" }, stands)) : cell;
    }

    function rowFor(node: Node): HTMLElement {
        const error = shown?.error;
        const isWrong = error !== undefined && error.path === node.path;
        const row = h(
            "div",
            {
                class: `row${isWrong ? " wrong" : ""}`,
                role: "treeitem",
                tabindex: -1,
                "aria-level": node.depth + 1,
                "aria-expanded": node.isContainer ? isOpen(node) : undefined,
                "data-path": node.path,
            },
            h("span", { class: "twisty" }, node.isContainer ? (isOpen(node) ? "▾" : "▸") : ""),
            h("span", { class: "name", title: node.type && hint(node.type) }, node.name),
            valueCell(node),
        );
        row.style.setProperty("--depth", String(node.depth));
        if (isWrong) row.append(h("span", { class: "why" }, error.message));
        row.append(h("span", { class: "type" }, node.type ? typeText(node.type) : ""));
        if (shown?.isEditable) {
            const add = node.isContainer ? addControl(node) : null;
            if (add) row.append(add);
            if (node.isRemovable) {
                const remove = () => change(node.path, undefined);
                row.append(h("button", { class: "act", title: "take out", tabindex: -1, click: remove }, "×"));
            }
        }
        return row;
    }

    function collect(node: Node, into: HTMLElement[]): void {
        const row = rowFor(node);
        rows.set(node.path, { row, node });
        into.push(row);
        if (!node.isContainer || !isOpen(node) || !shown) return;
        const children = childrenOf(node, shown.open);
        const most = whole.has(node.path) ? Infinity : MOST_CHILDREN;
        for (const child of children.slice(0, most)) collect(child, into);
        if (children.length <= most) return;
        const showAll = () => {
            whole.add(node.path);
            render();
            focusRow(children[most].path);
        };
        const button = h("button", { class: "link", click: showAll }, `${children.length - most} more`);
        const more = h("div", { class: "row" }, h("span", { class: "twisty" }), button);
        more.style.setProperty("--depth", String(node.depth + 1));
        into.push(more);
    }

    /** An error at a component that could not be read has a row of its own, behind what there is of its parent. */
    function addErrorRow(list: HTMLElement[]): void {
        const error = shown?.error;
        if (!error || rows.has(error.path)) return;
        const [parent, hit] = [...rows].filter(([path]) => isWithin(error.path, path)).pop() ?? ["", undefined];
        const name = error.path.slice(parent.length).replace(/^\./, "") || "message";
        const missing = h(
            "div",
            { class: "row wrong missing", "data-path": error.path },
            h("span", { class: "twisty" }, "✕"),
            h("span", { class: "name" }, name),
            h("span", { class: "why" }, error.message),
        );
        missing.style.setProperty("--depth", String((hit?.node.depth ?? 0) + 1));
        const last = list.findLastIndex((row) => isWithin(row.dataset.path ?? "", parent));
        list.splice(last + 1, 0, missing);
    }

    function render(): void {
        rows.clear();
        const list: HTMLElement[] = [];
        if (shown) {
            collect(rootNode(shown.typeName, shown.value, shown.type), list);
            addErrorRow(list);
        }
        host.replaceChildren(...list);
        (rows.get(focus) ?? rows.get(""))?.row.setAttribute("tabindex", "0");
        paint();
    }

    function paint(): void {
        for (const [path, { row }] of rows)
            row.classList.toggle("lit", lit !== null && lit !== "" && path !== "" && path === lit);
    }

    function focusRow(path: string): void {
        rows.get(focus)?.row.setAttribute("tabindex", "-1");
        focus = path;
        const row = rows.get(path)?.row;
        row?.setAttribute("tabindex", "0");
        row?.focus();
    }

    /** What was taken out is gone; what it was in is not. */
    function nearestRow(path: string): string {
        const steps = parsePath(path);
        while (steps.length > 0 && !rows.has(pathOf(steps))) steps.pop();
        return pathOf(steps);
    }

    function onKey(event: KeyboardEvent): void {
        const hit = rows.get((event.target as HTMLElement).dataset.path ?? "\0");
        if (!hit && event.key === "Escape") focusRow(nearestRow(pathUnder(event) ?? ""));
        if (!hit || event.ctrlKey || event.metaKey || event.altKey) return;
        const order = [...rows.keys()];
        const at = order.indexOf(hit.node.path);
        const { node } = hit;
        const to = (i: number) => focusRow(order[Math.min(Math.max(i, 0), order.length - 1)]);
        const parent = () =>
            order
                .slice(0, at)
                .reverse()
                .find((path) => isWithin(node.path, path)) ?? "";
        const keys: Record<string, () => void> = {
            ArrowDown: () => to(at + 1),
            ArrowUp: () => to(at - 1),
            Home: () => to(0),
            End: () => to(order.length - 1),
            ArrowRight: () => (node.isContainer && !isOpen(node) ? toggle(node, true) : to(at + 1)),
            ArrowLeft: () => (node.isContainer && isOpen(node) ? toggle(node, false) : focusRow(parent())),
            Enter() {
                const alternatives = hit.row.querySelector<HTMLSelectElement>("select.choice");
                if (alternatives) alternatives.focus();
                else if (node.isContainer) toggle(node, !isOpen(node));
                else startEdit(node);
            },
            F2: () => startEdit(node),
            "+": () => {
                const add = hit.row.querySelector<HTMLElement>(".act");
                if (add instanceof HTMLSelectElement) add.focus();
                else if (add?.textContent === "+") add.click();
            },
            Delete: () => node.isRemovable && shown?.isEditable && change(node.path, undefined),
        };
        if (!keys[event.key]) return;
        event.preventDefault();
        keys[event.key]();
    }

    host.addEventListener("keydown", onKey);
    const pathUnder = (event: Event) =>
        (event.target as HTMLElement).closest<HTMLElement>("[data-path]")?.dataset.path ?? null;
    host.addEventListener("pointerover", (event) => events.onPoint(pathUnder(event)));
    host.addEventListener("pointerleave", () => events.onPoint(null));
    host.addEventListener("focusin", (event) => events.onPoint(pathUnder(event)));
    host.addEventListener("click", (event) => {
        const target = event.target as HTMLElement;
        const hit = rows.get(pathUnder(event) ?? "\0");
        if (!hit || target.closest("select,input,button")) return;
        if (target.closest(".value") && !hit.node.isContainer) return;
        if (hit.node.isContainer && target.closest(".twisty,.name")) toggle(hit.node, !isOpen(hit.node));
        else focusRow(hit.node.path);
    });

    return {
        show(next) {
            const isOther = next?.typeName !== shown?.typeName;
            shown = next;
            if (isOther) {
                closed = new Set();
                opened = new Set();
                whole = new Set();
                focus = "";
            }
            if (next) openDepth = opened.size + closed.size > 0 && !isOther ? openDepth : depthThatFits(next);
            const hadFocus = host.contains(document.activeElement);
            render();
            if (hadFocus) focusRow(nearestRow(focus));
            else scrollWithin(host, host.querySelector(".row.wrong"));
        },
        light(path, isRevealed = false) {
            lit = path;
            if (path !== null && isRevealed && !rows.has(path)) {
                const steps = parsePath(path);
                steps.forEach((step, i) => {
                    const parent = pathOf(steps.slice(0, i));
                    opened.add(parent);
                    if (typeof step === "number" && step >= MOST_CHILDREN) whole.add(parent);
                });
                closed = new Set([...closed].filter((one) => !isWithin(path, one)));
                render();
            }
            paint();
            if (isRevealed && path) scrollWithin(host, rows.get(path)?.row);
        },
    };
}

const pathOf = (steps: Step[]) => steps.reduce<string>(joinPath, "");

/** So deep that about OPEN_AT_FIRST rows are seen. */
function depthThatFits({ typeName, value, type, open }: Shown): number {
    let level = [rootNode(typeName, value, type)];
    let count = 1;
    for (let depth = 0; level.length > 0; depth++) {
        level = level.flatMap((node) => childrenOf(node, open));
        count += level.length;
        if (count > OPEN_AT_FIRST) return Math.max(depth, 2);
    }
    return Infinity;
}

function showOptions(select: HTMLSelectElement): void {
    try {
        select.showPicker();
    } catch {
        // Not all browsers have it, and it needs a gesture; the list opens by a key or click then.
    }
}

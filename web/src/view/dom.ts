// SPDX-License-Identifier: Apache-2.0
// Elements of HTML, in short.

type Attributes = Record<string, string | number | boolean | undefined | ((event: never) => void)>;

/** Attributes that are functions are listeners, `true` is an attribute without a value, false and undefined are none. */
export function h<Name extends keyof HTMLElementTagNameMap>(
    name: Name,
    attributes: Attributes = {},
    ...inside: (Node | string)[]
): HTMLElementTagNameMap[Name] {
    const element = document.createElement(name);
    for (const [key, value] of Object.entries(attributes)) {
        if (value === undefined || value === false) continue;
        if (typeof value === "function") element.addEventListener(key, value as EventListener);
        else element.setAttribute(key, value === true ? "" : String(value));
    }
    element.append(...inside);
    return element;
}

export function byId<Kind extends HTMLElement = HTMLElement>(id: string): Kind {
    const element = document.getElementById(id);
    if (!element) throw new Error(`no element ${id}`);
    return element as Kind;
}

/** Scrolls within `host` alone: what someone else points at must not carry the page away from under the finger. */
export function scrollWithin(host: HTMLElement, element: Element | null | undefined): void {
    if (!element) return;
    const outside = host.getBoundingClientRect();
    const { top, bottom } = element.getBoundingClientRect();
    if (top < outside.top) host.scrollTop -= outside.top - top;
    else if (bottom > outside.bottom) host.scrollTop += bottom - outside.bottom;
}

export interface Debounced {
    (): void;
    /** Does what waits at once. */
    flush(): void;
}

/** Calls `work` once, when there was no call for `milliseconds`. */
export function debounced(milliseconds: number, work: () => void): Debounced {
    let timer = 0;
    const done = () => {
        timer = 0;
        work();
    };
    const call = () => {
        clearTimeout(timer);
        timer = window.setTimeout(done, milliseconds);
    };
    const flush = () => {
        if (timer === 0) return;
        clearTimeout(timer);
        done();
    };
    return Object.assign(call, { flush });
}

// SPDX-License-Identifier: Apache-2.0
// What was typed, kept by the browser until the next visit.
export interface Saved {
    text: string;
    type: string;
    rules: string;
    schema: string;
    useSchema: boolean;
    theme: "" | "light" | "dark";
    base: "hex" | "bits";
}

const KEY = "orlenta.page";
/** The browser's store is a few megabytes; a longer text would push out the rest. */
const LONGEST = 1_500_000;

export function loadSaved(): Partial<Saved> {
    try {
        return (JSON.parse(localStorage.getItem(KEY) ?? "{}") as Partial<Saved> | null) ?? {};
    } catch {
        return {};
    }
}

/** What is not given stays as it was. False if the text is too long to be kept, or the store is full or forbidden. */
export function save(changed: Partial<Saved>): boolean {
    try {
        const state = { ...loadSaved(), ...changed };
        const isTooLong = (state.text ?? "").length > LONGEST;
        localStorage.setItem(KEY, JSON.stringify(isTooLong ? { ...state, text: "" } : state));
        return !isTooLong;
    } catch {
        return false;
    }
}

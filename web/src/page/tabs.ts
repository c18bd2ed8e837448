// SPDX-License-Identifier: Apache-2.0
// Tabs: arrows go from one to the next, as the ARIA practices have it.
import { byId } from "../view/dom";

export function createTabs(names: string[], onSelect: (name: string) => void): (name: string) => void {
    const tabs = names.map((name) => byId(`tab-${name}`));

    function select(name: string): void {
        names.forEach((one, i) => {
            tabs[i].setAttribute("aria-selected", String(one === name));
            tabs[i].tabIndex = one === name ? 0 : -1;
        });
        onSelect(name);
    }

    tabs.forEach((tab, i) => {
        tab.addEventListener("click", () => select(names[i]));
        tab.addEventListener("keydown", (event) => {
            const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
            if (step === undefined) return;
            const next = (i + step + names.length) % names.length;
            tabs[next].focus();
            select(names[next]);
        });
    });
    return select;
}

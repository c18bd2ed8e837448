// SPDX-License-Identifier: Apache-2.0
// Keys that work wherever nothing is being typed. One whose work gives false is left to the browser.
export function listenToKeys(keys: Record<string, () => unknown>): void {
    document.addEventListener("keydown", (event) => {
        const target = event.target as HTMLElement;
        const isTyping =
            target.matches("input:not([type=range]), textarea, select, [contenteditable], dialog *") ||
            (event.key === " " && target.matches("button, summary, input"));
        if (event.defaultPrevented || event.ctrlKey || event.metaKey || event.altKey || isTyping) return;
        const work = keys[event.key];
        if (work && work() !== false) event.preventDefault();
    });
}

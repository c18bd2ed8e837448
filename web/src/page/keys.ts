// SPDX-License-Identifier: Apache-2.0
// Keys that work wherever nothing is being typed.
export function listenToKeys(keys: Record<string, () => void>): void {
    document.addEventListener("keydown", (event) => {
        const target = event.target as HTMLElement;
        const isTyping =
            target.matches("input:not([type=range]), textarea, select, [contenteditable], dialog *") ||
            (event.key === " " && target.matches("button, summary, input"));
        if (event.defaultPrevented || event.ctrlKey || event.metaKey || event.altKey || isTyping) return;
        const work = keys[event.key];
        if (!work) return;
        event.preventDefault();
        work();
    });
}

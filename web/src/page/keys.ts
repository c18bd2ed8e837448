// SPDX-License-Identifier: Apache-2.0
// Keys that work wherever nothing is being typed.
export function listenToKeys(keys: Record<string, () => void>): void {
    document.addEventListener("keydown", (event) => {
        const target = event.target as HTMLElement;
        const isTyping = target.matches("input, textarea, select, [contenteditable], button, summary, dialog *");
        if (event.defaultPrevented || event.ctrlKey || event.metaKey || event.altKey || isTyping) return;
        const work = keys[event.key];
        if (!work) return;
        event.preventDefault();
        work();
    });
}

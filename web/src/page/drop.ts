// SPDX-License-Identifier: Apache-2.0
// Files: opened, or dropped anywhere on the page.
import { byId } from "../view/dom";

export function acceptFiles(onFile: (file: File) => void): void {
    const chooser = byId<HTMLInputElement>("file");
    const curtain = byId("drop");
    byId("open-file").addEventListener("click", () => chooser.click());
    chooser.addEventListener("change", () => {
        const [file] = chooser.files ?? [];
        if (file) onFile(file);
        chooser.value = "";
    });
    const carriesFiles = (event: DragEvent) => event.dataTransfer?.types.includes("Files") ?? false;
    window.addEventListener("dragover", (event) => {
        if (!carriesFiles(event)) return;
        event.preventDefault();
        curtain.hidden = false;
    });
    window.addEventListener("dragleave", (event) => {
        if (event.relatedTarget === null) curtain.hidden = true;
    });
    window.addEventListener("drop", (event) => {
        curtain.hidden = true;
        const [file] = event.dataTransfer?.files ?? [];
        if (!file) return;
        event.preventDefault();
        onFile(file);
    });
}

const isOfText = (byte: number) => byte === 9 || byte === 10 || byte === 13 || (byte >= 32 && byte !== 127);

/** Whether a file is text, by its beginning. */
export async function looksLikeText(file: Blob): Promise<boolean> {
    const start = new Uint8Array(await file.slice(0, 4096).arrayBuffer());
    try {
        new TextDecoder("utf-8", { fatal: true }).decode(start, { stream: true }); // the last character may be cut
    } catch {
        return false;
    }
    return start.every(isOfText);
}

// SPDX-License-Identifier: Apache-2.0
// Keeps the page for when there is no network, and tells when a newer one has come. The newer one waits to be asked:
// taken over at once, it would mix its files with those of the page that is open.
import { TAKE_OVER } from "../offline-messages";
import { byId } from "../view/dom";

export async function keepPage(): Promise<void> {
    const { serviceWorker } = navigator;
    const registration = await serviceWorker.register("offline.js");
    const offer = () => {
        if (registration.waiting && serviceWorker.controller) byId("newer").hidden = false;
    };
    const watch = () => registration.installing?.addEventListener("statechange", offer);
    offer();
    watch();
    registration.addEventListener("updatefound", watch);

    let isAsked = false;
    let isKept = serviceWorker.controller !== null;
    serviceWorker.addEventListener("controllerchange", () => {
        if (isAsked) location.reload();
        else if (isKept) byId("newer").hidden = false; // asked for in another tab
        isKept = true;
    });
    byId("reload").addEventListener("click", () => {
        isAsked = true;
        if (registration.waiting) registration.waiting.postMessage(TAKE_OVER);
        else location.reload();
    });
}

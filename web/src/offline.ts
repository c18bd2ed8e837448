// SPDX-License-Identifier: Apache-2.0
// Keeps the page's own files, so that it opens without a network. A new build has a new version, and so a new cache.
declare const FILES: string[];
declare const VERSION: string;

interface Worker {
    addEventListener(type: string, listener: (event: Event) => void): void;
    skipWaiting(): Promise<void>;
    clients: { claim(): Promise<void> };
}
interface Lasting extends Event {
    waitUntil(work: Promise<unknown>): void;
}
interface Fetched extends Event {
    request: Request;
    respondWith(response: Promise<Response>): void;
}

const worker = self as unknown as Worker;
const CACHE = `orlenta-${VERSION}`;

async function dropOld(): Promise<void> {
    const names = await caches.keys();
    await Promise.all(
        names.filter((name) => name.startsWith("orlenta-") && name !== CACHE).map((name) => caches.delete(name)),
    );
    await worker.clients.claim();
}

worker.addEventListener("install", (event) => {
    const keep = async () => {
        await (await caches.open(CACHE)).addAll(FILES);
        await worker.skipWaiting();
    };
    (event as Lasting).waitUntil(keep());
});
worker.addEventListener("activate", (event) => (event as Lasting).waitUntil(dropOld()));
worker.addEventListener("fetch", (event) => {
    const { request, respondWith } = event as Fetched;
    const answer = async () => (await caches.match(request, { ignoreSearch: true })) ?? fetch(request);
    if (request.method === "GET") respondWith.call(event, answer());
});

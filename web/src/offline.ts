// SPDX-License-Identifier: Apache-2.0
// Keeps the page's own files, so that it opens without a network. A new build has a new version, and so a new cache.
import { TAKE_OVER } from "./offline-messages";

declare const FILES: string[];
declare const VERSION: string;

interface Worker {
    readonly registration: { scope: string };
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
// Another folder of this server may hold another such page.
const MINE = `orlenta ${worker.registration.scope} `;
const CACHE = MINE + VERSION;

/** Names of files stay while their contents change, so the browser's own store is asked to look for newer ones. */
async function keepFiles(): Promise<void> {
    const cache = await caches.open(CACHE);
    await cache.addAll(FILES.map((file) => new Request(file, { cache: "no-cache" })));
}

async function dropOld(): Promise<void> {
    const names = await caches.keys();
    const old = names.filter((name) => name.startsWith(MINE) && name !== CACHE);
    await Promise.all(old.map((name) => caches.delete(name)));
    await worker.clients.claim();
}

async function answer(request: Request): Promise<Response> {
    const cache = await caches.open(CACHE);
    return (await cache.match(request, { ignoreSearch: true })) ?? fetch(request);
}

worker.addEventListener("install", (event) => (event as Lasting).waitUntil(keepFiles()));
worker.addEventListener("activate", (event) => (event as Lasting).waitUntil(dropOld()));
worker.addEventListener("message", (event) => {
    if ((event as MessageEvent).data === TAKE_OVER) void worker.skipWaiting();
});
worker.addEventListener("fetch", (event) => {
    const { request, respondWith } = event as Fetched;
    if (request.method === "GET") respondWith.call(event, answer(request));
});

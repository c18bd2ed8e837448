// SPDX-License-Identifier: Apache-2.0
import { start } from "./page/app";

void start();

// The page's files for when there is no network; asked for when the first message is on the screen.
if ("serviceWorker" in navigator && location.protocol.startsWith("http"))
    window.addEventListener("load", () => setTimeout(() => void navigator.serviceWorker.register("offline.js"), 1500));

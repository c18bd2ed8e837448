// SPDX-License-Identifier: Apache-2.0
import { start } from "./page/app";
import { keepPage } from "./page/keep";

void start();

// Its files are kept when the first message is on the screen. A browser that forbids it does without.
if ("serviceWorker" in navigator && location.protocol.startsWith("http"))
    window.addEventListener("load", () => setTimeout(() => keepPage().catch(() => undefined), 1500));

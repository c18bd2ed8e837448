// SPDX-License-Identifier: Apache-2.0
// The package in Chromium, on a page and in a web worker.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { existsSync, mkdtempSync, readFileSync, rmSync } from "node:fs";
import { createServer } from "node:http";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { test } from "node:test";

const CHROMIUM = "/usr/bin/chromium";
const KINDS = { mjs: "text/javascript", js: "text/javascript", wasm: "application/wasm", html: "text/html" };

const work = `
import { load } from "/orlenta.mjs";
async function work() {
    const orlenta = await load({ regions: ["CN"] });
    const data = new Uint8Array(await (await fetch("/bsm.uper")).arrayBuffer());
    const value = orlenta.decode("CN.MessageFrame", data);
    const again = orlenta.encode("CN.MessageFrame", value);
    const schema = await orlenta.compile([{ name: "a", text: "A DEFINITIONS ::= BEGIN N ::= INTEGER END" }]);
    const wide = schema.decode("N", schema.encode("N", 2n ** 70n));
    return [value.bsmFrame.msgCnt, String(again) === String(data), wide === 2n ** 70n].join(" ");
}`;
const tell = (place) =>
    `work().catch(String).then((text) => fetch("/told", { method: "POST", body: "${place} " + text }));`;
const pages = {
    "worker.js": `${work}\n${tell("worker")}`,
    "index.html": `<script type="module">${work}
        ${tell("page")}
        new Worker("/worker.js", { type: "module" });
        </script>`,
};

function answer(request, response, told) {
    const file = request.url.slice(1) || "index.html";
    const path = file === "bsm.uper" ? new URL("../../../examples/bsm.uper", import.meta.url)
        : `${process.env.ORLENTA_PACKAGE}/${file}`;
    response.setHeader("Content-Type", KINDS[file.split(".").at(-1)] ?? "application/octet-stream");
    if (request.method === "POST") {
        request.on("data", (text) => told(String(text)));
        request.on("end", () => response.end());
    } else if (pages[file]) response.end(pages[file]);
    else if (existsSync(path)) response.end(readFileSync(path));
    else response.writeHead(404).end();
}

test("in Chromium", { skip: existsSync(CHROMIUM) ? false : "no Chromium here" }, async () => {
    const profile = mkdtempSync(join(tmpdir(), "orlenta-"));
    let server, browser;
    try {
        const told = await new Promise((done, failed) => {
            const texts = [];
            const take = (text) => texts.push(text) === 2 && done(texts.sort());
            server = createServer((request, response) => answer(request, response, take));
            server.listen(0, "127.0.0.1", () => {
                const url = `http://127.0.0.1:${server.address().port}/`;
                const flags = ["--headless", "--no-sandbox", "--disable-gpu", `--user-data-dir=${profile}`];
                browser = spawn(CHROMIUM, [...flags, "--remote-debugging-port=0", url], { stdio: "ignore" });
                browser.on("error", failed);
            });
            setTimeout(() => failed(new Error(`only this after two minutes: ${texts}`)), 120000).unref();
        });
        assert.deepEqual(told, ["page 17 true true", "worker 17 true true"]);
    } finally {
        const closed = new Promise((done) => browser?.once("close", done));
        browser?.kill();
        if (browser) await closed;
        server.close();
        server.closeAllConnections();
        rmSync(profile, { recursive: true, force: true, maxRetries: 5, retryDelay: 200 });
    }
});

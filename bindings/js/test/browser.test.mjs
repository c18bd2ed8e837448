// SPDX-License-Identifier: Apache-2.0
// The package in Chromium, on a page and in a web worker.
import assert from "node:assert/strict";
import { execFile } from "node:child_process";
import { existsSync, readFileSync } from "node:fs";
import { createServer } from "node:http";
import { test } from "node:test";
import { promisify } from "node:util";

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
const pages = {
    "worker.js": `${work}\nwork().catch(String).then(postMessage);`,
    "index.html": `<pre id="page"></pre><pre id="worker"></pre><script type="module">${work}
        work().catch(String).then((text) => { page.textContent = text; });
        new Worker("/worker.js", { type: "module" }).onmessage = ({ data }) => { worker.textContent = data; };
        </script>`,
};

function answer(request, response) {
    const file = request.url.slice(1) || "index.html";
    const path = file === "bsm.uper" ? new URL("../../../examples/bsm.uper", import.meta.url)
        : `${process.env.ORLENTA_PACKAGE}/${file}`;
    response.setHeader("Content-Type", KINDS[file.split(".").at(-1)] ?? "application/octet-stream");
    if (pages[file]) response.end(pages[file]);
    else if (existsSync(path)) response.end(readFileSync(path));
    else response.writeHead(404).end();
}

test("in Chromium", { skip: existsSync(CHROMIUM) ? false : "no Chromium here" }, async () => {
    const server = createServer(answer).listen(0, "127.0.0.1");
    try {
        await new Promise((done) => server.once("listening", done));
        const { stdout } = await promisify(execFile)(
            CHROMIUM,
            ["--headless", "--no-sandbox", "--disable-gpu", "--virtual-time-budget=20000", "--dump-dom",
                `http://127.0.0.1:${server.address().port}/`],
            { timeout: 120000 },
        );
        for (const place of ["page", "worker"])
            assert.match(stdout, new RegExp(`<pre id="${place}">17 true true</pre>`), stdout);
    } finally {
        server.close();
        server.closeAllConnections();
    }
});

// SPDX-License-Identifier: Apache-2.0
// Serves build/web on the loopback, compressed as servers do it: node serve.mjs [PORT]
import { createServer } from "node:http";
import { readFile, stat } from "node:fs/promises";
import { dirname, extname, join, normalize } from "node:path";
import { fileURLToPath } from "node:url";
import { gzipSync } from "node:zlib";

const TYPES = {
    ".html": "text/html; charset=utf-8",
    ".js": "text/javascript",
    ".css": "text/css",
    ".wasm": "application/wasm",
    ".svg": "image/svg+xml",
    ".webmanifest": "application/manifest+json",
};

export async function serve(folder, port = 0) {
    const packed = new Map();
    async function pack(name) {
        const { mtimeMs } = await stat(join(folder, name));
        if (packed.get(name)?.mtimeMs !== mtimeMs)
            packed.set(name, { mtimeMs, body: gzipSync(await readFile(join(folder, name)), { level: 9 }) });
        return packed.get(name).body;
    }
    const server = createServer(async (request, response) => {
        try {
            const path = normalize(decodeURIComponent(new URL(request.url, "http://loopback").pathname));
            const name = path.endsWith("/") ? `${path}index.html` : path;
            const body = await pack(name);
            response.writeHead(200, {
                "content-type": TYPES[extname(name)] ?? "application/octet-stream",
                "content-encoding": "gzip",
            });
            response.end(body);
        } catch {
            response.writeHead(404).end();
        }
    });
    await new Promise((resolve) => server.listen(port, "127.0.0.1", resolve));
    return { url: `http://127.0.0.1:${server.address().port}/`, close: () => server.close() };
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
    const folder = join(dirname(fileURLToPath(import.meta.url)), "../build/web");
    const { url } = await serve(folder, Number(process.argv[2] ?? 8040));
    console.log(`the page is at ${url} until Ctrl+C`);
}

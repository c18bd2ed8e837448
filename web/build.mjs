// SPDX-License-Identifier: Apache-2.0
// Builds the page into build/web, or with --tests the unit tests into build/web-tests. The JavaScript package is
// taken from where the wasm32 build puts it, or from ORLENTA_PACKAGE.
import { createHash } from "node:crypto";
import { cp, mkdir, readdir, readFile, rm, writeFile } from "node:fs/promises";
import { basename, dirname, join, relative, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import { build } from "esbuild";

const here = dirname(fileURLToPath(import.meta.url));
const root = dirname(here);
const library = resolve(process.env.ORLENTA_PACKAGE ?? join(root, "build/wasm32/bindings/js/package"));

const common = {
    bundle: true,
    format: "esm",
    target: "es2022",
    logLevel: "warning",
    alias: { orlenta: join(library, "orlenta.mjs"), "orlenta/units": join(root, "bindings/js/units.mjs") },
    external: ["node:*"],
};

async function filesUnder(folder) {
    const entries = await readdir(folder, { withFileTypes: true, recursive: true });
    return entries.filter((entry) => entry.isFile()).map((entry) => join(entry.parentPath ?? entry.path, entry.name));
}

async function buildPage() {
    const out = join(root, "build/web");
    await rm(out, { recursive: true, force: true });
    await mkdir(out, { recursive: true });
    const { metafile } = await build({
        ...common,
        metafile: true,
        entryPoints: { main: "src/main.ts", worker: "src/log/worker.ts", style: "src/style.css" },
        absWorkingDir: here,
        outdir: out,
        chunkNames: "[name]-[hash]",
        splitting: true,
        minify: true,
        legalComments: "none",
    });
    await cp(join(here, "static"), out, { recursive: true });
    // What main.js imports is asked for along with it.
    const [, { imports }] = Object.entries(metafile.outputs).find(([file]) => file.endsWith("/main.js"));
    const chunks = imports.filter(({ kind }) => kind === "import-statement").map(({ path }) => basename(path));
    const preloads = chunks.map((chunk) => `<link rel="modulepreload" href="${chunk}">`).join("\n");
    const index = await readFile(join(here, "static/index.html"), "utf8");
    await writeFile(join(out, "index.html"), index.replace("<!-- chunks -->", preloads));
    await cp(join(library, "wasm"), join(out, "wasm"), { recursive: true });

    // The worker that serves the page without a network keeps these files; their contents name its cache.
    const files = (await filesUnder(out)).map((file) => relative(out, file)).sort();
    const digest = createHash("sha256");
    for (const file of files) digest.update(file).update(await readFile(join(out, file)));
    await build({
        ...common,
        entryPoints: { offline: "src/offline.ts" },
        absWorkingDir: here,
        outdir: out,
        minify: true,
        define: { FILES: JSON.stringify(["./", ...files]), VERSION: JSON.stringify(digest.digest("hex").slice(0, 16)) },
    });
}

async function buildTests() {
    const out = join(root, "build/web-tests");
    await rm(out, { recursive: true, force: true });
    const tests = (await readdir(join(here, "tests"))).filter((file) => file.endsWith(".test.ts"));
    await build({
        ...common,
        entryPoints: tests.map((file) => join("tests", file)),
        absWorkingDir: here,
        outdir: out,
        outExtension: { ".js": ".mjs" },
        platform: "node",
    });
    await writeFile(join(out, "package.json"), '{ "type": "module" }\n');
}

await (process.argv.includes("--tests") ? buildTests() : buildPage());

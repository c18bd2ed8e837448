// SPDX-License-Identifier: Apache-2.0
// The built page in a real browser. Screenshots lie in build/web-shots for people to look at.
import assert from "node:assert/strict";
import { cp, mkdir, mkdtemp, readFile, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { dirname, join, resolve } from "node:path";
import { after, before, test } from "node:test";
import { fileURLToPath, pathToFileURL } from "node:url";
import puppeteer from "puppeteer-core";
import { serve } from "../serve.mjs";

const root = resolve(dirname(fileURLToPath(import.meta.url)), "../..");
const shots = join(root, "build/web-shots");
const library = resolve(process.env.ORLENTA_PACKAGE ?? join(root, "build/wasm32/bindings/js/package"));
const PATIENCE = { timeout: 60_000 };

let site;
let browser;
let orlenta;
/** Whatever went wrong in any page without a test looking for it. */
const surprises = [];

before(async () => {
    await mkdir(shots, { recursive: true });
    const { load } = await import(pathToFileURL(join(library, "orlenta.mjs")).href);
    orlenta = await load({ regions: ["CN", "EU", "US"] });
    site = await serve(join(root, "build/web"));
    browser = await puppeteer.launch({
        executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
        args: ["--disable-gpu", ...(process.getuid?.() === 0 ? ["--no-sandbox"] : [])],
    });
});
after(async () => {
    await browser?.close();
    site?.close();
    assert.deepEqual(surprises, []);
});

/** A page of a new visitor. */
async function open(fragment = "", size = { width: 1280, height: 820 }, from = site) {
    const context = await browser.createBrowserContext();
    const page = await context.newPage();
    page.on("pageerror", (error) => surprises.push(error.message));
    page.on("request", (request) => {
        if (
            !request.url().startsWith(from.url) &&
            !request.url().startsWith("blob:") &&
            !request.url().startsWith("data:")
        )
            surprises.push(`asked for ${request.url()}`);
    });
    await page.setViewport(size);
    await page.goto(from.url + fragment);
    await page.waitForSelector("#tree .row", PATIENCE);
    return page;
}

const shoot = (page, name) => page.screenshot({ path: join(shots, `${name}.png`) });
const row = (path) => `#tree .row[data-path="${path}"]`;
const textOf = (page, selector) => page.$eval(selector, (element) => element.textContent);

async function type(page, text) {
    await page.$eval(
        "#input",
        (input, value) => {
            input.value = value;
            input.dispatchEvent(new Event("input"));
        },
        text,
    );
}
const settled = (page, note) =>
    page.waitForFunction((part) => document.querySelector("#note").textContent.includes(part), PATIENCE, note);
const example = async (page, name) => {
    const value = await page.$$eval(
        "#examples option",
        (all, part) => all.find(({ textContent }) => textContent.includes(part)).value,
        name,
    );
    await page.select("#examples", value);
};
const hexOf = (page) => page.$$eval("#hex .octet", (cells) => cells.map(({ textContent }) => textContent).join(""));
const litOctets = (page) =>
    page.$$eval("#hex .octet", (cells) =>
        cells.flatMap(({ style }, i) => (style.backgroundImage.includes("--lit") ? [i] : [])),
    );

const CAM = "EU.CAM";
const STATION = "header.stationID";
const SPEED = "cam.camParameters.highFrequencyContainer.basicVehicleContainerHighFrequency.speed.speedValue";

test("the first message: found by itself, light in weight, lit both ways", async () => {
    const page = await open();
    const { duration, weight, names } = await page.evaluate(() => {
        const { loadEventEnd } = performance.getEntriesByType("navigation")[0];
        const entries = performance.getEntriesByType("resource");
        const last = Math.max(loadEventEnd, ...entries.map(({ responseEnd }) => responseEnd));
        const names = entries.map(({ name }) => name.slice(name.lastIndexOf("/") + 1));
        return { duration: last, names, weight: entries.reduce((sum, { transferSize }) => sum + transferSize, 0) };
    });
    const { TaskDuration } = await page.metrics();
    const times = `${Math.round(duration)} ms, of which ${Math.round(TaskDuration * 1000)} ms in the page`;
    console.log(`first message: ${Math.round(weight / 1024)} KB, ${times}`);
    assert.ok(weight < 400 * 1024, `${weight} octets`);
    const sets = names.filter((name) => name.endsWith(".wasm"));
    assert.deepEqual(sets, ["eu.wasm"], "the set of the message alone");
    await settled(page, `${CAM} · UPER`);

    await page.focus("#type");
    await page.keyboard.type("psm");
    await page.waitForFunction(
        () => document.querySelector("#type-list [aria-selected=true]")?.textContent === "USPersonalSafetyMessage",
        PATIENCE,
    );
    await page.keyboard.press("Escape");
    assert.equal(await page.$eval("#type", ({ value }) => value), CAM);

    await page.hover(`${row(STATION)} .name`);
    assert.deepEqual(await litOctets(page), [2, 3, 4, 5]);
    await page.hover("#hex .octet[data-octet='4']");
    await page.waitForSelector(`${row(STATION)}.lit`, PATIENCE);
    assert.match(await textOf(page, "#run"), /header\.stationID.*bits 16–47.*1001/);
    await page.focus(row(""));
    for (const key of ["ArrowDown", "ArrowDown", "ArrowLeft", "ArrowLeft", "ArrowDown"]) await page.keyboard.press(key);
    assert.equal(
        await page.evaluate(() => document.activeElement.dataset.path),
        "cam",
        "the header was closed by keys",
    );
    await page.focus("#hex");
    for (const key of ["Home", "ArrowRight", "ArrowRight"]) await page.keyboard.press(key);
    assert.match(await textOf(page, "#run"), /header\.stationID/);
    await page.keyboard.press("Enter");
    await page.waitForSelector(`${row(STATION)}.lit`, PATIENCE);

    await page.click("#base");
    await page.hover(`${row(SPEED)} .name`);
    await shoot(page, "1-decoded-bits");
    assert.match(await textOf(page, "#hex .octet"), /^[01]{8}$/);
});

test("what is wrong is marked, and the page goes on", async () => {
    const page = await open();
    const good = await hexOf(page);
    await type(page, "02020000zz");
    await settled(page, "no hexadecimal digit");
    assert.equal(await textOf(page, "#text mark"), "z");

    await example(page, "cut short");
    await page.waitForSelector("#hex .octet.at-error", PATIENCE);
    assert.match(await textOf(page, "#value-note"), /reading after end of stream/);
    assert.equal(await textOf(page, `${row(STATION)} .value`), "1001", "what had been read before is there");
    assert.match(await page.$eval("#tree .row.wrong", ({ dataset }) => dataset.path), /vehicleLengthValue$/);
    await shoot(page, "2-error");

    const cam = orlenta.convert(CAM, Buffer.from(good, "hex"), "uper", "jer", 2);
    await type(page, cam.replace(/"speedValue": \d+/, '"speedValue": "fast"'));
    const wrongLine = () =>
        page.waitForFunction(() => /fast/.test(document.querySelector("#text .line.wrong")?.textContent), PATIENCE);
    await wrongLine();
    await type(page, cam.replace(/"speedValue": \d+/, '"speedValue": "faster"'));
    await page.reload(); // at once
    await wrongLine(); // nothing typed is lost
    assert.match(await page.$eval("#input", ({ value }) => value), /faster/);
    await page.evaluate(() => {
        for (let size = 1 << 23; size > 0; size >>= 1)
            try {
                localStorage.setItem(`room${size}`, "x".repeat(size));
            } catch {
                // Half of it, then.
            }
    });
    await type(page, `${good}${"00".repeat(5000)}`);
    await page.waitForSelector("#not-kept:not([hidden])", PATIENCE);
    await settled(page, CAM);
    await page.evaluate(() => localStorage.clear());
    await type(page, good);
    await page.waitForSelector(row(SPEED), PATIENCE);
    await page.waitForSelector("#not-kept[hidden]", PATIENCE);
});

test("edits: numbers, choices, optional parts and lists, and all encodings follow", async () => {
    const page = await open();
    const decoded = async () => orlenta.decode(CAM, Buffer.from(await hexOf(page), "hex"));
    const changed = async (work) => {
        const before = await hexOf(page);
        await work();
        await page.waitForFunction(
            (old) =>
                [...document.querySelectorAll("#hex .octet")].map(({ textContent }) => textContent).join("") !== old,
            PATIENCE,
            before,
        );
        return decoded();
    };
    const edit = async (path, text) => {
        await page.click(`${row(path)} .value`);
        await page.keyboard.type(text);
        await page.keyboard.press("Enter");
    };
    const fast = "cam.camParameters.highFrequencyContainer.basicVehicleContainerHighFrequency";
    const history = "cam.camParameters.lowFrequencyContainer.basicVehicleContainerLowFrequency.pathHistory";
    const fastOf = (value) => value.cam.camParameters.highFrequencyContainer.basicVehicleContainerHighFrequency;

    assert.equal(fastOf(await changed(() => edit(SPEED, "1234"))).speed.speedValue, 1234);
    await page.click(`${row(`${fast}.driveDirection`)} .value`);
    assert.equal(
        fastOf(await changed(() => page.select(`${row(`${fast}.driveDirection`)} select`, "backward"))).driveDirection,
        "backward",
    );
    const grown = await changed(() => page.select(`${row(fast)} select.act`, "steeringWheelAngle"));
    assert.ok(fastOf(grown).steeringWheelAngle);
    const angle = `${row(`${fast}.steeringWheelAngle`)} button[title="take out"]`;
    assert.equal(
        fastOf(await changed(() => page.$eval(angle, (button) => button.click()))).steeringWheelAngle,
        undefined,
    );
    const points = (value) =>
        value.cam.camParameters.lowFrequencyContainer.basicVehicleContainerLowFrequency.pathHistory.length;
    const before = points(await decoded());
    assert.equal(
        points(await changed(() => page.$eval(`${row(history)} button.act`, (button) => button.click()))),
        before + 1,
    );

    // Beyond its bounds a number is not taken; a click in the field is no end of the edit, one elsewhere goes there.
    await page.click(`${row(SPEED)} .value`);
    await page.keyboard.type("99999");
    await page.click("#tree .edit");
    assert.equal(await page.$eval("#tree .edit:invalid", ({ value }) => value), "99999");
    await page.click("#input");
    assert.equal(await page.evaluate(() => document.activeElement.id), "input");
    assert.equal(await textOf(page, `${row(SPEED)} .value`), "1234");
    await page.click(`${row(`${fast}.driveDirection`)} .value`);
    await page.click("#tree select.edit");
    await page.keyboard.press("Escape");
    await page.keyboard.press("Escape");
    assert.equal(await page.evaluate(() => document.activeElement.dataset.path), `${fast}.driveDirection`);

    await page.click("#tab-encodings");
    const shown = await page.$$eval("#encodings details", (all) =>
        all.map((one) => [one.dataset.rules, one.querySelector(".size").textContent]),
    );
    const value = await decoded();
    const expected = ["uper", "aper", "oer", "ber", "der"].map((rules) => [
        rules,
        `${orlenta.encode(CAM, value, rules).length} B`,
    ]);
    assert.deepEqual(shown.slice(0, 5), expected);
    assert.equal(shown.length, 8);
    await page.$eval("#encodings details[data-rules=xer]", (details) => (details.open = true));
    await shoot(page, "3-encodings");
    await page.$eval("#encodings details[data-rules=xer] .buttons button:last-child", (button) => button.click());
    await page.waitForSelector("#text .line", PATIENCE);
    await page.click("#tab-value");
    await page.hover(`${row(STATION)} .name`);
    assert.match(await textOf(page, "#text .line.lit"), /<stationID>1001/);
});

test("a schema of one's own", async () => {
    const page = await open();
    await page.click("#tab-schema");
    await page.waitForSelector("#editor .cm-content", PATIENCE);
    await page.waitForFunction(() => document.querySelector("#problems").textContent.includes("compiles"), PATIENCE);
    await page.click("#use-schema");
    const write = async (text) => {
        await page.click("#editor .cm-content");
        await page.keyboard.down("Control");
        await page.keyboard.press("a");
        await page.keyboard.up("Control");
        await page.keyboard.sendCharacter(text);
    };
    await write("M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\nA ::= SEQUENCE { a INTEGER (0..7), b Colour }\nEND\n");
    await page.waitForSelector("#problems .wrong", PATIENCE);
    assert.match(await textOf(page, "#problems .wrong"), /^2:\d+ .*Colour/);
    await page.waitForSelector("#editor .cm-lint-marker-error", PATIENCE);
    await shoot(page, "4-schema-error");
    await settled(page, "the schema does not compile");
    await page.reload();
    await settled(page, "the schema does not compile");
    await page.click("#tab-schema");
    await page.waitForSelector("#editor .cm-lint-marker-error", PATIENCE);

    await write(
        "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\nA ::= SEQUENCE { a INTEGER (0..7), b Colour, r REAL OPTIONAL }\nColour ::= ENUMERATED { red, green }\nMuch ::= SEQUENCE (SIZE (60000)) OF SEQUENCE (SIZE (60000)) OF SEQUENCE { x INTEGER (1) }\nEND\n",
    );
    await page.waitForFunction(() => document.querySelector("#problems").textContent.includes("3 types"), PATIENCE);
    await page.click("#tab-message");
    await type(page, "58");
    await settled(page, "A · UPER · 1 octet");
    const look = await page.$eval("#hex .octet", ({ className }) => className);
    assert.equal(look, "octet", "values between presence and padding");
    assert.deepEqual(
        await page.$$eval("#tree .row:not([aria-expanded]) .value", (all) => all.map(({ textContent }) => textContent)),
        ["5", "green"],
    );
    await shoot(page, "5-schema-used");

    // A type that one octet fills the memory by: the library says so, and the next message is read.
    const choose = async (name) => {
        await page.focus("#type");
        await page.keyboard.type(name);
        await page.waitForFunction(
            (wanted) => document.querySelector("#type-list [aria-selected=true]")?.textContent === wanted,
            PATIENCE,
            name,
        );
        await page.keyboard.press("Enter");
    };
    await choose("Much");
    await page.waitForFunction(
        () => /not enough memory/.test(document.querySelector("#value-note").textContent),
        PATIENCE,
    );
    await shoot(page, "12-memory");
    await choose("A");
    await settled(page, "A · UPER · 1 octet");
    assert.equal(await textOf(page, `${row("a")} .value`), "5");

    await page.select("#examples", "random");
    await page.waitForFunction(() => document.querySelector("#input").value !== "58", PATIENCE);

    await type(page, '{"a": 1, "b": "red", "r": 2}');
    await settled(page, "A · JER");
    await page.click(`${row("r")} .value`);
    await page.keyboard.type("-3.25");
    await page.keyboard.press("Enter");
    await page.waitForFunction(() => document.querySelector("#input").value.includes("-3.25"), PATIENCE);
    assert.deepEqual(
        [await textOf(page, `${row("r")} .value`), await page.$eval("#value-note", ({ hidden }) => hidden)],
        ["-3.25", true],
    );

    await type(page, "58\n18\n58");
    await page.waitForFunction(() => document.querySelectorAll(".message:not(.bad)").length === 3, PATIENCE);
    await settled(page, "A · UPER");

    await page.click("#copy-link");
    await page.waitForFunction(() => location.hash.includes("s="), PATIENCE);
    const other = await open(new URL(page.url()).hash);
    await other.waitForSelector(row("b"), PATIENCE);
    assert.equal(await textOf(other, `${row("a")} .value`), "5");
});

test("maps: EU, US and CN, and the time of a log", async () => {
    const page = await open();
    await page.click("#tab-map");
    const count = (selector) => page.$$eval(`#map ${selector}`, (all) => all.length);
    const at = async (moment) => {
        await page.$eval(
            "#moment",
            (slider, value) => {
                slider.value = value;
                slider.dispatchEvent(new Event("input"));
            },
            String(moment),
        );
        await page.waitForSelector(`.message.current[aria-selected=true]`, PATIENCE);
        await page.waitForFunction(
            (text) => document.querySelector("#moment-text").textContent.startsWith(text),
            PATIENCE,
            `${moment + 1} of`,
        );
        await new Promise((done) => setTimeout(done, 300));
    };
    await example(page, "Europe: MAPEM");
    await page.waitForFunction(() => document.querySelector("#moment-text").textContent.includes("of 122"), PATIENCE);
    await page.waitForSelector("#progress", { ...PATIENCE, hidden: true });
    await at(1);
    assert.equal(await count(".lane"), 20);
    assert.equal(await count(".mark.vehicle"), 0);
    const first = await page.$$eval("#map .stop", (all) => all.map((one) => one.getAttribute("class")));
    assert.ok(first.includes("stop green") && first.includes("stop red"));
    await at(56);
    assert.equal(await count(".mark.vehicle"), 4);
    const places = () => page.$$eval("#map .mark.vehicle", (all) => all.map((one) => one.getAttribute("transform")));
    const old = await places();
    await page.click("#tab-value");
    await page.click(`${row("cam.camParameters.basicContainer.referencePosition.latitude")} .value`);
    await page.keyboard.press("ArrowUp");
    for (const key of ["End", "Backspace", "Backspace", "Backspace", "9", "9", "9", "Enter"])
        await page.keyboard.press(key);
    await settled(page, "changed here, not in the log");
    // The next message takes the field away, and what was typed for the one before is not for it.
    await page.click(`${row("cam.camParameters.basicContainer.stationType")} .value`);
    await page.keyboard.type("9");
    await at(53);
    await page.waitForFunction(() => /CAM/.test(document.querySelector("#note").textContent), PATIENCE);
    assert.equal(await textOf(page, `${row("cam.camParameters.basicContainer.stationType")} .value`), "5");
    assert.doesNotMatch(await textOf(page, "#note"), /changed here/);
    await page.click("#tab-map");
    await at(56);
    const moved = (await places()).filter((place, i) => place !== old[i]);
    assert.equal(moved.length, 1, "the one that was edited");
    await page.keyboard.press("k");
    await page.keyboard.press("j");
    await settled(page, "changed here, not in the log");

    assert.equal(await count(".mark.happening"), 1);
    assert.ok((await count(".trail")) === 4 && (await count(".connection.green")) > 0);
    assert.notDeepEqual(await page.$$eval("#map .stop", (all) => all.map((one) => one.getAttribute("class"))), first);
    await shoot(page, "6-map-log");
    await page.setViewport({ width: 1680, height: 950 });
    await shoot(page, "7-wide");
    await page.setViewport({ width: 1280, height: 820 });

    for (const [name, shot] of [
        ["US", "8-map-us"],
        ["China", "9-map-cn"],
    ]) {
        await example(page, `${name}: MAP`);
        await settled(page, name === "US" ? "US.MessageFrame" : "CN.MessageFrame");
        await page.waitForSelector("#progress", { ...PATIENCE, hidden: true });
        await page.waitForFunction(() => document.querySelector("#moment-text").textContent.includes("of 3"), PATIENCE);
        await at(2);
        const moments = [];
        await page.exposeFunction(`moment${name}`, (text) => moments.push(text));
        await page.evaluate((told) => {
            const text = document.querySelector("#moment-text");
            new MutationObserver(() => window[told](text.textContent[0])).observe(text, { childList: true });
        }, `moment${name}`);
        await page.click("#play");
        await page.waitForSelector("#play[aria-label=Pause]", PATIENCE);
        await page.waitForSelector("#play[aria-label=Play]", PATIENCE);
        assert.equal(moments.join(""), "123", "from the start, when it was at its end");
        assert.equal(await count(".mark.vehicle"), 1, name);
        assert.ok((await count(".lane")) >= 12 && (await count(".stop.green")) > 0, name);
        await shoot(page, shot);
    }

    // A CPM has the messageID that VAM had once. This one could be decoded as a VAM, but for what is left over.
    const numbered = (name, seed, messageID) => {
        const value = orlenta.random(name, seed);
        const header = { protocolVersion: 2, messageID, stationID: 7 };
        return Buffer.from(orlenta.encode(name, { ...value, header })).toString("hex");
    };
    await type(page, [numbered("EU.VAM", 1, 16), numbered("EU.CPM", 9, 14)].join("\n"));
    await page.waitForFunction(
        () => [...document.querySelectorAll(".message .what")].map((one) => one.textContent).join() === "VAM,CPM",
        PATIENCE,
    );
});

test("a link shows the same to a colleague", async () => {
    const page = await open();
    await type(
        page,
        Buffer.from(orlenta.encode("US.MessageFrame", orlenta.random("US.MessageFrame", 3))).toString("hex"),
    );
    await settled(page, "US.MessageFrame");
    await page.click("#copy-link");
    await page.waitForFunction(() => location.hash.includes("m="), PATIENCE);
    const other = await open(new URL(page.url()).hash);
    await settled(other, "US.MessageFrame");
    assert.equal(await hexOf(other), await hexOf(page));
    assert.equal(await textOf(other, "#tree"), await textOf(page, "#tree"));

    // A link, broken or not, leaves alone what was typed before.
    await type(other, "typed");
    for (const [fragment, note] of [
        [new URL(page.url()).hash, "US.MessageFrame"],
        ["#t=EU.CAM&r=jer&x=q1YqSyzKTM", "the link is broken"],
        ["", "no hexadecimal digit"],
    ]) {
        await other.goto("about:blank");
        await other.goto(site.url + fragment);
        await settled(other, note);
    }
    assert.equal(await other.$eval("#input", ({ value }) => value), "typed");

    await page.$eval("#input", (input) => {
        const noise = crypto.getRandomValues(new Uint8Array(5e4));
        input.value = `{"messageId": 20, "value": "${Array.from(noise, (octet) => octet.toString(16)).join("")}"}`;
        input.dispatchEvent(new Event("input"));
    });
    await page.waitForFunction(() => document.querySelector("#text").textContent.length > 6e4, PATIENCE);
    await page.click("#copy-link");
    await settled(page, "characters: send it as a file");
});

test("a log of 20 MB leaves the page alive; one of more than 200 MB is refused", async () => {
    const page = await open();
    const cam = await hexOf(page);
    const line = `${cam}\n`;
    const file = join(tmpdir(), `orlenta-${process.pid}.hex`);
    await writeFile(file, line.repeat(Math.ceil(20e6 / line.length)));
    await page.evaluate(() => {
        window.longest = 0;
        let last = performance.now();
        const frame = (now) => {
            window.longest = Math.max(window.longest, now - last);
            last = now;
            requestAnimationFrame(frame);
        };
        requestAnimationFrame(frame);
    });
    const start = Date.now();
    await (await page.$("#file")).uploadFile(file);
    await page.waitForSelector("#progress", { ...PATIENCE, visible: true });
    await page.waitForFunction(() => /of \d{3}/.test(document.querySelector("#moment-text").textContent), PATIENCE);
    await page.hover(`${row(STATION)} .name`);
    assert.deepEqual(await litOctets(page), [2, 3, 4, 5], "it answers while it works");
    await page.click(".message:nth-child(3)");
    await page.waitForFunction(() => document.querySelector("#moment-text").textContent.startsWith("3 of"), PATIENCE);
    assert.ok(await page.$("#progress:not([hidden])"), "and is not done yet");
    await shoot(page, "10-big-log");
    await page.waitForSelector("#progress", { timeout: 240_000, hidden: true });
    const count = Math.ceil(20e6 / line.length);
    await page.waitForFunction(
        (end) => document.querySelector("#moment-text").textContent.includes(`of ${end}`),
        PATIENCE,
        count,
    );
    const longest = await page.evaluate(() => window.longest);
    console.log(
        `log of 20 MB: ${count} messages in ${((Date.now() - start) / 1000).toFixed(1)} s, longest frame ${Math.round(longest)} ms`,
    );
    assert.ok(longest < 1000, "no frame waits for the log");
    await rm(file);

    const drop = (name, ...parts) =>
        page.evaluate(
            (called, all) => {
                const carried = new DataTransfer();
                const texts = all.map(([text, times]) => Array(times).fill(text)).flat();
                carried.items.add(new File(texts, called));
                window.dispatchEvent(new DragEvent("drop", { dataTransfer: carried }));
            },
            name,
            parts,
        );
    // A line that can be no message is told of, and not read.
    await drop("long.log", [line, 1], ["00".repeat(5e5), 2], [`\n${line}`, 1]);
    await page.waitForFunction(() => document.querySelector("#moment-text").textContent === "1 of 3", PATIENCE);
    await page.click(".message.bad");
    await settled(page, "a line of 2.0 MB is no message");
    await page.click(".message:last-child");
    await settled(page, `${CAM} · UPER`);

    await drop("huge.log", ["0".repeat(1e6), 201]);
    await settled(page, "takes 200 MB");
    assert.equal(await page.$$eval(".message", (all) => all.length), 3, "what was there stays");
});

test("dark, narrow, and without a network", async () => {
    const page = await open("", { width: 390, height: 844, isMobile: true, hasTouch: true });
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: "dark" }]);
    const overflow = await page.evaluate(
        () => document.documentElement.scrollWidth - document.documentElement.clientWidth,
    );
    assert.equal(overflow, 0, "nothing to scroll to the side");
    await shoot(page, "11-phone-dark");

    const scrolled = () => page.evaluate(() => scrollY);
    await page.tap("#hex .octet[data-octet='4']");
    assert.match(await textOf(page, "#run"), /header\.stationID.*bits 16–47/, "what is tapped lights up and stays so");
    assert.deepEqual(await litOctets(page), [2, 3, 4, 5]);
    await page.tap("#hex .octet[data-octet='80']");
    assert.equal(await scrolled(), 0, "pointing leaves the page where it is");
    await type(page, (await hexOf(page)).slice(0, 80));
    await page.waitForSelector("#tree .row.wrong", PATIENCE);
    assert.equal(await scrolled(), 0, "and so does what is wrong while one types");
    await page.evaluate(() => navigator.serviceWorker.ready);
    await page.waitForFunction(async () => (await caches.keys()).length === 1, PATIENCE);
    await page.reload();
    await page.waitForSelector("#tree .row", PATIENCE);
    await page.setOfflineMode(true);
    await page.reload();
    await page.waitForSelector("#tree .row", PATIENCE);
    await page.setOfflineMode(false);
});

test("a newer page waits until it is asked for", async () => {
    const folder = await mkdtemp(join(tmpdir(), "orlenta-page-"));
    await cp(join(root, "build/web"), folder, { recursive: true });
    const elsewhere = await serve(folder);
    const page = await open("", undefined, elsewhere);
    await page.waitForFunction(() => navigator.serviceWorker.controller !== null, PATIENCE);
    assert.ok(await page.$("#newer[hidden]"), "the first one is not newer");
    const change = async (file, from, to) => {
        const text = await readFile(join(folder, file), "utf8");
        assert.match(text, from);
        await writeFile(join(folder, file), text.replace(from, to));
    };
    await change("index.html", /<title>.*<\/title>/, "<title>newer</title>");
    await change("offline.js", /[0-9a-f]{16}/, "0123456789abcdef");
    await page.reload();
    await page.waitForSelector("#newer:not([hidden])", PATIENCE);
    assert.notEqual(await page.title(), "newer");
    await Promise.all([page.waitForNavigation(PATIENCE), page.click("#reload")]);
    await page.waitForSelector("#tree .row", PATIENCE);
    assert.equal(await page.title(), "newer");
    assert.deepEqual(
        (await page.evaluate(() => caches.keys())).map((name) => name.slice(-16)),
        ["0123456789abcdef"],
    );
    await page.close();
    elsewhere.close();
    await rm(folder, { recursive: true });
});

// SPDX-License-Identifier: Apache-2.0
// The page: what was typed or dropped becomes a message or a log, and goes to the views.
import type { Rules, Schema, Value } from "orlenta";
import { type Engine, needType, startEngine } from "../codec/engine";
import {
    type Choice,
    identify,
    InputError,
    type Reading,
    readMessage,
    type Source,
    withoutPath,
} from "../codec/reading";
import { isText, REGIONS, RULE_NAMES, RULES } from "../codec/types";
import { formOf, toBase64, toHex } from "../input/bytes";
import { undump } from "../input/dump";
import { isLog, onlyMessage, readEntry } from "../input/lines";
import { textRules } from "../input/rules";
import { LARGEST_LOG, Log } from "../log/log";
import { createSchemaTab, FILE, FIRST_SCHEMA } from "../schema/tab";
import { byId, debounced, h } from "../view/dom";
import { createList } from "../view/message-list";
import { AUTO, createPicker } from "../view/type-picker";
import type { Base } from "../view/hex";
import { acceptFiles, looksLikeText } from "./drop";
import { EXAMPLES } from "./examples";
import { createInspector } from "./inspector";
import { listenToKeys } from "./keys";
import { fromFragment, toFragment } from "./link";
import { createMapPane } from "./map-pane";
import { loadSaved, save } from "./saved";
import { createTabs } from "./tabs";
import { applyTheme, nextTheme } from "./theme";

const TYPING_MS = 180;
const SAVING_MS = 400;
/** Characters; programs that people send links by cut what is much longer. */
const LONGEST_LINK = 30_000;
/** A longer file stays a file, beside the text field. */
const LONGEST_TEXT = 262_144;

/** A text, and what it is to be read as. */
interface Entry {
    text: string;
    as: Choice;
}

const saved = loadSaved();
const choice: Choice = { type: saved.type ?? AUTO, rules: (saved.rules as Rules | "auto") ?? "auto" };
let theme = saved.theme ?? "";
let base: Base = saved.base ?? "hex";
let file: File | null = null;
/** What is on the screen came by a link, and was not changed since. */
let isLinked = false;
let log: Log | null = null;
let selected = 0;
let reading: Reading | null = null;
/** The message of the log that `reading` is; `selected` is ahead of it while the next one is read. */
let shown = 0;
/** Messages of the log as they were changed here. */
const edits = new Map<number, Entry>();
let schema: Schema | null = null;
let refreshed = 0;

let engineStarted: Promise<Engine> | null = null;
const engine = () => (engineStarted ??= startEngine());

const input = byId<HTMLTextAreaElement>("input");
const { placeholder } = input;
const rules = byId<HTMLSelectElement>("rules");
const useSchema = byId<HTMLInputElement>("use-schema");

// ---- what is told ------------------------------------------------------------------------------------------------

function tell(text: string, isWrong = false): void {
    const note = byId("note");
    note.textContent = text;
    note.classList.toggle("wrong", isWrong);
}

/** A link takes the place of what was typed on the screen alone, until it is changed; so does a file. */
const saveSoon = debounced(SAVING_MS, () => {
    if (isLinked) return void save({ theme, base });
    const { type, rules: under } = choice;
    const typed = { type, rules: under, schema: schemaTab.text(), useSchema: useSchema.checked };
    byId("not-kept").hidden = save({ ...typed, ...(file ? {} : { text: input.value }), theme, base });
});

// ---- views -------------------------------------------------------------------------------------------------------

const mapPane = createMapPane({
    onPick(message, path) {
        if (log && message !== selected) void select(message).then(() => inspector.reveal(path));
        else inspector.reveal(path);
    },
    onMoment: select,
    async valueAt(message) {
        const value = await readAt(message);
        return value?.value;
    },
});

const inspector = createInspector({
    onEdit,
    onPoint: (path) => mapPane.point(path),
    onCopy: (text) => void copy(text, "copied", ""),
    onUse(encoded) {
        if (!reading) return;
        const { type } = reading;
        if (log) {
            changeInLog({ text: encoded.text, as: { type, rules: encoded.rules } });
            void select(selected);
        } else setText(encoded.text, { type, rules: ruleChoice(encoded.rules, encoded.text) });
    },
});

const list = createList(byId("list"), (index) => void select(index));

const picker = createPicker(byId<HTMLInputElement>("type"), byId("type-list"), {
    async types() {
        if (useSchema.checked && schema) return schema.types();
        const started = await engine();
        await Promise.allSettled(REGIONS.map((region) => started.need(region)));
        return started.codec.types();
    },
    onPick(name) {
        choice.type = name;
        void refresh();
    },
});

const schemaTab = createSchemaTab(byId("editor"), byId("problems"), engine, saved.schema || FIRST_SCHEMA, {
    onText: saveSoon,
    onCompiled(next) {
        schema = next;
        if (!useSchema.checked) return;
        chooseOwn();
        void refresh();
    },
});

// ---- reading -----------------------------------------------------------------------------------------------------

/** A type of the schema, where what was chosen is none. */
function chooseOwn(): void {
    const types = schema?.types() ?? [];
    if (types.length === 0 || types.some(({ name }) => name === choice.type)) return;
    choice.type = types.find(({ isRoot }) => isRoot)?.name ?? AUTO;
}

async function source(): Promise<Source> {
    const started = await engine();
    if (!useSchema.checked) return { engine: started };
    const own = await schemaTab.compiled();
    if (!own) throw new Error("the schema does not compile: see its tab");
    return { engine: started, schema: own };
}

/** What must be chosen so that a text is read under these rules: nothing if it shows them, or bytes could not follow. */
function ruleChoice(under: Rules, text: string): Rules | "auto" {
    return textRules(text) === under ? "auto" : under;
}

async function readText(text: string, as: Choice): Promise<Reading> {
    return readMessage(await identify(await source(), text, as));
}

async function entryAt(from: Log, index: number): Promise<Entry> {
    const edited = edits.get(index);
    if (edited) return edited;
    const { type, rules: under } = from.messages[index]; // as the worker found it
    const text = readEntry(await from.textAt(index))?.message ?? "";
    return { text, as: type === "" ? choice : { type, rules: under ?? choice.rules } };
}

/** A message of the log, or undefined if it is none. */
async function readAt(index: number): Promise<Reading | undefined> {
    try {
        const { text, as } = await entryAt(log as Log, index);
        return await readText(text, as);
    } catch {
        return undefined;
    }
}

function showReading(next: Reading, isEdited = false): void {
    reading = next;
    shown = selected;
    inspector.show(next);
    picker.show(choice.type, next.type);
    const octets = typeof next.data === "string" ? new TextEncoder().encode(next.data).length : next.data.length;
    const found = choice.type === AUTO ? " · type found by itself" : "";
    const changed = log && edits.has(selected) ? " · changed here, not in the log" : "";
    tell(`${next.type} · ${RULE_NAMES[next.rules]} · ${octets} ${octets === 1 ? "octet" : "octets"}${found}${changed}`);
    if (log) mapPane.showLog(log, selected, false);
    else mapPane.showOne(next.value, isEdited);
}

async function showText(text: string, as: Choice = choice): Promise<void> {
    const mine = ++refreshed;
    if (text.trim() === "") {
        reading = null;
        picker.show(choice.type, null);
        inspector.clear();
        if (!log) mapPane.showOne(undefined, false);
        return tell("");
    }
    try {
        const next = await readText(text, as);
        if (mine === refreshed) showReading(next);
    } catch (error) {
        if (mine !== refreshed) return;
        reading = null;
        picker.show(choice.type, null);
        inspector.showBroken(text, error instanceof InputError ? error.position : null);
        if (log) mapPane.showLog(log, selected, false);
        else mapPane.showOne(undefined, false);
        tell((error as Error).message, true);
    }
}

/** Whether the schema is used is asked for in its tab, and told everywhere. */
function showUse(): void {
    byId("use-schema-label").hidden = byId("pane-schema").hidden && !useSchema.checked;
}

/** Reads anew what stands in the text field, or the file. */
async function refresh(): Promise<void> {
    refreshed++;
    saveSoon();
    showUse();
    picker.show(choice.type, null);
    rules.value = choice.rules;
    log?.stop();
    log = null;
    edits.clear();
    selected = 0;
    byId("progress").hidden = true;
    input.placeholder = file ? `${file.name}, ${(file.size / 1e6).toFixed(1)} MB` : placeholder;
    const dumped = undump(input.value);
    const isMany = file !== null || (dumped === null && isLog(input.value));
    byId("list").hidden = !isMany;
    if (isMany) startLog(file ?? new Blob([input.value]));
    else await showText(dumped ?? onlyMessage(input.value));
}

// ---- logs --------------------------------------------------------------------------------------------------------

function startLog(blob: Blob): void {
    const mine = new Log(blob);
    log = mine;
    const progress = byId("progress");
    progress.hidden = false;
    let isShown = false;
    const show = () => {
        list.show(mine.messages, selected);
        if (mine.messages.length === 0) return;
        if (isShown) return mapPane.showLog(mine, selected, true);
        isShown = true;
        void select(selected);
    };
    reading = null;
    inspector.clear();
    show();
    mine.start(choice, useSchema.checked ? [{ name: FILE, text: schemaTab.text() }] : undefined, {
        onProgress(octets) {
            const done = (100 * octets) / Math.max(blob.size, 1);
            progress.style.setProperty("--done", `${done}%`);
            progress.firstElementChild?.setAttribute("aria-valuenow", done.toFixed(0));
            show();
        },
        onDone(error) {
            progress.hidden = true;
            show();
            if (mine.messages.length === 0) mapPane.showOne(undefined, false);
            if (error) tell(error, true);
            else if (mine.messages.length === 0) tell("no message in it", true);
        },
    });
}

async function select(index: number): Promise<void> {
    if (!log || index < 0 || index >= log.messages.length) return;
    selected = index;
    list.show(log.messages, selected);
    const mine = ++refreshed;
    try {
        const { text, as } = await entryAt(log, index);
        if (mine === refreshed) await showText(text, as);
    } catch (error) {
        if (mine !== refreshed) return;
        // The file is gone or has changed, or the line is none that could be a message.
        reading = null;
        inspector.clear();
        mapPane.showLog(log, selected, false);
        tell((error as Error).message, true);
    }
}

/** The message in sight, as it is to be from now on. */
function changeInLog(entry: Entry): void {
    edits.set(shown, entry);
    mapPane.changed(shown);
}

async function openFile(next: File): Promise<void> {
    if (next.size > LARGEST_LOG) {
        const size = Math.round(next.size / 1e6);
        return tell(
            `${next.name} has ${size} MB: this page takes ${LARGEST_LOG / 1e6} MB. The command orlenta works through any log.`,
            true,
        );
    }
    const isTextual = await looksLikeText(next);
    if (!isTextual && next.size > LONGEST_TEXT)
        return tell(`${next.name} is no text, and too long for one message`, true);
    forgetLink();
    file = null;
    if (!isTextual) {
        input.value = toHex(new Uint8Array(await next.arrayBuffer()));
    } else if (next.size <= LONGEST_TEXT) {
        input.value = await next.text();
    } else {
        file = next;
        input.value = "";
    }
    await refresh();
}

// ---- edits -------------------------------------------------------------------------------------------------------

function encodeEdited(
    { codec, type, rules: under, data }: Reading,
    value: Value,
): { data: Uint8Array | string; text: string } {
    if (isText(under)) {
        const text = codec.convert(type, codec.encode(type, value, "uper"), "uper", under, 2) as string;
        return { data: text, text };
    }
    const bytes = codec.encode(type, value, under);
    const isBase64 = !log && typeof data !== "string" && formOf(input.value) === "base64";
    return { data: bytes, text: isBase64 ? toBase64(bytes) : toHex(bytes) };
}

function onEdit(from: Reading, value: Value): void {
    try {
        const { data, text } = encodeEdited(from, value);
        if (log) {
            changeInLog({ text, as: { type: from.type, rules: from.rules } });
            if (shown !== selected) return; // the next one is on its way
        }
        refreshed++;
        if (!log) {
            // The type stays, though the message may no longer show it.
            choice.type = from.type;
            choice.rules = ruleChoice(from.rules, text);
            rules.value = choice.rules;
            input.value = text;
        }
        forgetLink();
        saveSoon();
        showReading(readMessage({ ...from, data }), true);
    } catch (error) {
        const { message, path = "" } = error as Error & { path?: string };
        inspector.showRefused(value, { path, message: withoutPath(message) });
        mapPane.showOne(value, true);
    }
}

function setText(text: string, next: Partial<Choice>): void {
    file = null;
    input.value = text;
    Object.assign(choice, next);
    forgetLink();
    void refresh();
}

// ---- links -------------------------------------------------------------------------------------------------------

function forgetLink(): void {
    isLinked = false;
    if (location.hash !== "") history.replaceState(null, "", location.pathname + location.search);
}

async function copy(text: string, done: string, instead: string): Promise<void> {
    try {
        await navigator.clipboard.writeText(text);
        tell(done);
    } catch {
        tell(`the browser keeps the clipboard to itself${instead}`, true);
    }
}

async function copyLink(): Promise<void> {
    if (!reading) return tell("there is no message to link to", true);
    const { data, type, rules: under } = reading;
    const fragment = await toFragment({
        data,
        type,
        rules: under,
        schema: useSchema.checked ? schemaTab.text() : undefined,
    });
    if (fragment.length > LONGEST_LINK)
        return tell(`a link to this message would have ${fragment.length} characters: send it as a file`, true);
    history.replaceState(null, "", fragment);
    await copy(
        location.href,
        "the link is in the address line and in the clipboard",
        "; the link is in the address line",
    );
}

/** @throws BrokenLink */
async function followLink(): Promise<boolean> {
    const linked = await fromFragment(location.hash);
    if (!linked) return false;
    isLinked = true;
    file = null;
    choice.type = linked.type;
    input.value = typeof linked.data === "string" ? linked.data : toHex(linked.data);
    choice.rules = linked.rules === "auto" ? "auto" : ruleChoice(linked.rules, input.value);
    useSchema.checked = linked.schema !== undefined;
    if (linked.schema !== undefined) {
        schemaTab.setText(linked.schema);
        await schemaTab.compiled();
    }
    await refresh();
    return true;
}

// ---- start -------------------------------------------------------------------------------------------------------

function fillRules(): void {
    const options = RULES.map((one) => h("option", { value: one }, RULE_NAMES[one]));
    rules.replaceChildren(h("option", { value: "auto" }, "any rules"), ...options);
    rules.value = choice.rules;
    rules.addEventListener("change", () => {
        choice.rules = rules.value as Rules | "auto";
        void refresh();
    });
}

const RANDOM = "random";
let seed = 1;

/** Another value of the type in sight. */
async function showRandom(): Promise<void> {
    try {
        const { codec, type, rules: under } = reading ?? (await anyType());
        const binary = isText(under) ? "uper" : under;
        const bytes = codec.encode(type, codec.random(type, seed++), binary);
        setText(toHex(bytes), { type, rules: binary });
    } catch (error) {
        tell((error as Error).message, true);
    }
}

async function anyType(): Promise<Pick<Reading, "codec" | "type" | "rules">> {
    const { engine: started, schema: own } = await source();
    const type = choice.type !== AUTO ? choice.type : (own?.types().find(({ isRoot }) => isRoot)?.name ?? "EU.CAM");
    if (!own) await needType(started, type);
    return { codec: own ?? started.codec, type, rules: "uper" };
}

function fillExamples(): void {
    const examples = byId<HTMLSelectElement>("examples");
    examples.append(
        ...EXAMPLES.map(({ name }, i) => h("option", { value: String(i) }, name)),
        h("option", { value: RANDOM }, "A random value of this type"),
    );
    examples.addEventListener("change", () => {
        const { value } = examples;
        examples.value = "";
        if (value !== RANDOM) useSchema.checked = false;
        showInput("message");
        if (value === RANDOM) void showRandom();
        else setText(EXAMPLES[Number(value)].text, { type: AUTO, rules: "auto" });
    });
}

const main = document.querySelector("main") as HTMLElement;
const showInput = createTabs(["message", "schema"], (name) => {
    byId("pane-message").hidden = name !== "message";
    byId("pane-schema").hidden = name !== "schema";
    showUse();
    if (name === "schema") void schemaTab.open();
});
const showResult = createTabs(["value", "map", "encodings"], (name) => {
    main.dataset.side = name;
});

function listen(): void {
    const readSoon = debounced(TYPING_MS, () => void refresh());
    input.addEventListener("input", () => {
        file = null;
        forgetLink();
        saveSoon();
        readSoon();
    });
    useSchema.addEventListener("change", () => {
        if (useSchema.checked) chooseOwn();
        else choice.type = AUTO;
        void refresh();
    });
    byId("stop").addEventListener("click", () => {
        log?.stop();
        byId("progress").hidden = true;
    });
    byId("base").addEventListener("click", () => setBase(base === "hex" ? "bits" : "hex"));
    byId("theme").addEventListener("click", () => {
        theme = nextTheme(theme);
        applyTheme(theme);
        saveSoon();
    });
    byId("help").addEventListener("click", () => byId<HTMLDialogElement>("keys").showModal());
    byId("copy-link").addEventListener("click", () => void copyLink());
    window.addEventListener("hashchange", () => followLink().catch((error: Error) => tell(error.message, true)));
    for (const leaving of ["pagehide", "visibilitychange"]) window.addEventListener(leaving, saveSoon.flush);
    acceptFiles((next) => openFile(next).catch((error: Error) => tell(`${next.name}: ${error.message}`, true)));
    listenToKeys({
        "/": () => picker.focus(),
        "?": () => byId<HTMLDialogElement>("keys").showModal(),
        j: () => void select(selected + 1),
        k: () => void select(selected - 1),
        "1": () => showResult("value"),
        "2": () => showResult("map"),
        "3": () => showResult("encodings"),
        m: () => showInput("message"),
        s: () => showInput("schema"),
        " ": () => mapPane.togglePlay(),
    });
}

function setBase(next: Base): void {
    base = next;
    inspector.setBase(base);
    byId("base").textContent = base === "hex" ? "bits" : "hex";
    saveSoon();
}

export async function start(): Promise<void> {
    applyTheme(theme);
    fillRules();
    fillExamples();
    listen();
    setBase(base);
    useSchema.checked = saved.useSchema ?? false;
    showInput("message");
    showResult("value");
    let broken: Error | null = null;
    const isFollowed = await followLink().catch((error: Error) => {
        broken = error;
        return false;
    });
    if (isFollowed) return;
    input.value = saved.text ?? EXAMPLES[0].text;
    await refresh();
    if (broken) tell((broken as Error).message, true);
}

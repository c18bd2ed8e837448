// SPDX-License-Identifier: Apache-2.0
// The library in this page: loaded when it is needed, message set by message set.
import { load, type Codec, type Orlenta, type Region } from "orlenta";
import { REGIONS } from "./types";

async function read(file: string): Promise<Uint8Array> {
    const response = await fetch(new URL(`wasm/${file}`, self.location.href));
    if (!response.ok) throw new Error(`${file} could not be loaded (${response.status})`);
    return new Uint8Array(await response.arrayBuffer());
}

export interface Engine {
    readonly orlenta: Orlenta;
    readonly codec: Codec;
    need(...regions: Region[]): Promise<void>;
}

export async function startEngine(): Promise<Engine> {
    const orlenta = await load({ read });
    return { orlenta, codec: orlenta, need: (...regions) => orlenta.need(...regions) };
}

/** Regions that may define the type; RRC's types are called US, as those of US are. */
export function regionsOf(type: string): Region[] {
    const region = type.slice(0, type.indexOf("."));
    if (region === "US") return ["US"];
    return REGIONS.filter((name) => name === region);
}

/** A type that is in none of the loaded sets is looked for in RRC last, the set that is seldom needed. */
export async function needType(engine: Engine, type: string): Promise<void> {
    await engine.need(...regionsOf(type));
    if (!type.startsWith("US.") || engine.orlenta.loaded().includes("RRC")) return;
    try {
        engine.codec.type(type);
    } catch {
        await engine.need("RRC");
    }
}

// SPDX-License-Identifier: Apache-2.0
// A message in a link: what stands behind # is not sent to any server.
import type { Rules } from "orlenta";
import { RULES } from "../codec/types";
import { toBase64 } from "../input/bytes";

export interface Linked {
    type: string;
    rules: Rules | "auto";
    data: Uint8Array | string;
    schema?: string;
}

const toUrl = (bytes: Uint8Array) => toBase64(bytes).replaceAll("+", "-").replaceAll("/", "_").replace(/=+$/, "");

function fromUrl(text: string): Uint8Array {
    return Uint8Array.from(atob(text.replaceAll("-", "+").replaceAll("_", "/")), (character) =>
        character.charCodeAt(0),
    );
}

async function through(bytes: Uint8Array, stream: GenericTransformStream): Promise<Uint8Array> {
    const out = new Blob([bytes as BlobPart])
        .stream()
        .pipeThrough(stream as ReadableWritablePair<Uint8Array, Uint8Array>);
    return new Uint8Array(await new Response(out).arrayBuffer());
}

const packed = async (text: string) =>
    toUrl(await through(new TextEncoder().encode(text), new CompressionStream("deflate")));
const unpacked = async (text: string) =>
    new TextDecoder().decode(await through(fromUrl(text), new DecompressionStream("deflate")));

export async function toFragment({ type, rules, data, schema }: Linked): Promise<string> {
    const parts = new URLSearchParams({ t: type, r: rules });
    if (typeof data === "string") parts.set("x", await packed(data));
    else parts.set("m", toUrl(data));
    if (schema !== undefined) parts.set("s", await packed(schema));
    return `#${parts}`;
}

export class BrokenLink extends Error {}

/**
 * Null if the fragment is none of ours.
 * @throws BrokenLink
 */
export async function fromFragment(fragment: string): Promise<Linked | null> {
    const parts = new URLSearchParams(fragment.replace(/^#/, ""));
    const bytes = parts.get("m");
    const text = parts.get("x");
    if (bytes === null && text === null) return null;
    try {
        const schema = parts.get("s");
        const rules = parts.get("r") as Rules;
        return {
            type: parts.get("t") ?? "auto",
            rules: RULES.includes(rules) ? rules : "auto",
            data: bytes !== null ? fromUrl(bytes) : await unpacked(text ?? ""),
            ...(schema === null ? {} : { schema: await unpacked(schema) }),
        };
    } catch {
        throw new BrokenLink("the link is broken: a part of it is missing, perhaps");
    }
}

// SPDX-License-Identifier: Apache-2.0
// Bytes as people paste them: hexadecimal digits with or without 0x, blanks, colons and commas, or base64.

export class InputError extends Error {
    /** Where in the text, in characters. */
    readonly position: number;

    constructor(message: string, position: number) {
        super(message);
        this.position = position;
    }
}

export type Form = "hex" | "base64";

const SEPARATOR = /[\s:,;_-]/;

function fromHex(text: string): Uint8Array {
    const bytes = new Uint8Array(text.length);
    let digits = 0;
    for (let i = 0; i < text.length; i++) {
        const character = text[i];
        if (SEPARATOR.test(character)) continue;
        if (character === "0" && /[xX]/.test(text[i + 1] ?? "") && digits % 2 === 0) {
            i++;
            continue;
        }
        const digit = Number.parseInt(character, 16);
        if (Number.isNaN(digit)) throw new InputError(`"${character}" is no hexadecimal digit`, i);
        bytes[digits >> 1] = (bytes[digits >> 1] << 4) | digit;
        digits++;
    }
    if (digits % 2 !== 0) throw new InputError("half an octet at the end: the digits are odd in number", text.length);
    return bytes.slice(0, digits / 2);
}

function fromBase64(text: string): Uint8Array {
    const bad = /[^A-Za-z0-9+/=_\-\s]/.exec(text);
    if (bad) throw new InputError(`"${bad[0]}" is not of base64`, bad.index);
    try {
        const digits = text.replace(/\s/g, "").replaceAll("-", "+").replaceAll("_", "/");
        return Uint8Array.from(atob(digits), (character) => character.charCodeAt(0));
    } catch {
        throw new InputError("this is no whole base64 text", text.length);
    }
}

/** Of base64's digits two thirds are not hexadecimal; fewer are slips of hexadecimal text. */
const MOST_SLIPS = 0.25;

/** Base64 is taken for it only where it cannot be hexadecimal and is whole. */
export function formOf(text: string): Form {
    const bare = text.replace(/\s/g, "");
    const others = bare.replace(/0[xX]|[0-9a-fA-F:,;_-]/g, "");
    const isBase64 = bare.length % 4 === 0 && /^[A-Za-z0-9+/_-]+={0,2}$/.test(bare);
    return isBase64 && (others.length > bare.length * MOST_SLIPS || /[+/=]/.test(others)) ? "base64" : "hex";
}

/** @throws InputError */
export function readBytes(text: string): Uint8Array {
    return formOf(text) === "base64" ? fromBase64(text) : fromHex(text);
}

export function toHex(bytes: Uint8Array): string {
    return Array.from(bytes, (byte) => byte.toString(16).padStart(2, "0")).join("");
}

export function toBase64(bytes: Uint8Array): string {
    let text = "";
    for (const byte of bytes) text += String.fromCharCode(byte);
    return btoa(text);
}

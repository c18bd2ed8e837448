// SPDX-License-Identifier: Apache-2.0
import type { Rules } from "orlenta";

/** The rules of a text, as far as it shows; undefined for bytes. */
export function textRules(text: string): Rules | undefined {
    const start = text.trimStart().slice(0, 200);
    if (start.startsWith("<")) return "xer";
    if (/^(\{\s*("|\})|\[)/.test(start)) return "jer";
    if (/^\{\s*[a-z]|^[a-z][\w-]*\s*:/.test(start)) return "gser";
    return undefined;
}

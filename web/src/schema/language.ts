// SPDX-License-Identifier: Apache-2.0
// ASN.1 for the editor: enough of its lexical items (X.680, 12) to colour them.
import { type StreamParser, StreamLanguage } from "@codemirror/language";

const RESERVED = new Set(
    (
        "ABSENT ALL APPLICATION AUTOMATIC BEGIN BIT BOOLEAN BY CHARACTER CHOICE CLASS COMPONENT COMPONENTS CONSTRAINED " +
        "CONTAINING DEFAULT DEFINITIONS EMBEDDED ENCODED END ENUMERATED EXCEPT EXPLICIT EXPORTS EXTENSIBILITY EXTERNAL " +
        "FALSE FROM IDENTIFIER IMPLICIT IMPLIED IMPORTS INCLUDES INSTANCE INTEGER INTERSECTION MAX MIN MINUS-INFINITY " +
        "NULL OBJECT OCTET OF OPTIONAL PATTERN PDV PLUS-INFINITY PRESENT PRIVATE REAL SEQUENCE SET SIZE STRING SYNTAX " +
        "TAGS TRUE UNION UNIQUE UNIVERSAL WITH"
    ).split(" "),
);

const parser: StreamParser<{ inComment: boolean }> = {
    name: "asn1",
    startState: () => ({ inComment: false }),
    languageData: { commentTokens: { line: "--" } },
    token(stream, state) {
        if (state.inComment || stream.match("/*")) {
            state.inComment = !stream.match(/^.*?\*\//);
            if (state.inComment) stream.skipToEnd();
            return "comment";
        }
        if (stream.eatSpace()) return null;
        if (stream.match("--")) {
            if (!stream.match(/^.*?--/)) stream.skipToEnd();
            return "comment";
        }
        if (stream.match(/^"(?:[^"]|"")*"?/) || stream.match(/^'[^']*'[BH]?/)) return "string";
        if (stream.match(/^-?\d+(\.\d+)?/)) return "number";
        const word = stream.match(/^[A-Za-z][A-Za-z0-9]*(?:-[A-Za-z0-9]+)*/) as RegExpMatchArray | null;
        if (word)
            return RESERVED.has(word[0]) || /String$/.test(word[0])
                ? "keyword"
                : /^[A-Z]/.test(word[0])
                  ? "typeName"
                  : "propertyName";
        stream.next();
        return null;
    },
};

export const asn1 = StreamLanguage.define(parser);

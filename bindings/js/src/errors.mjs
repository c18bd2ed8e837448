// SPDX-License-Identifier: Apache-2.0
// What calls throw.

export class OrlentaError extends Error {
    constructor(message, path = "") {
        super(path ? `${message} (at ${path})` : message);
        this.path = path;
    }
}

export class DecodeError extends OrlentaError {
    constructor(message, path, bitPosition, line) {
        super(message, path);
        this.bitPosition = bitPosition;
        this.line = line;
    }
}

export class EncodeError extends OrlentaError {}
export class ConstraintError extends OrlentaError {}

export class UnknownType extends OrlentaError {
    constructor(message, nearest) {
        super(message);
        this.nearest = nearest;
    }
}

export class SchemaError extends Error {
    constructor(problems) {
        const first = problems.find((problem) => !problem.isNote);
        super(first ? `${first.file}:${first.line}:${first.column}: ${first.text}` : "not enough memory");
        this.problems = problems;
    }
}

// Names that outlive a minifier.
for (const [name, type] of Object.entries({
    OrlentaError, DecodeError, EncodeError, ConstraintError, UnknownType, SchemaError,
}))
    Object.defineProperty(type.prototype, "name", { value: name, configurable: true, writable: true });

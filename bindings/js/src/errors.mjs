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

// What a breakdown means to who called. JavaScript's stack ends by a RangeError, and Firefox's by an InternalError.
export function ofBreakdown(error) {
    if (error instanceof WebAssembly.RuntimeError) return new OrlentaError(`the module failed: ${error.message}`);
    if (/call stack|recursion/.test(error?.message)) return new OrlentaError("value nested too deeply");
    const isTooLarge = error instanceof RangeError || error?.code === "ERR_STRING_TOO_LONG";
    return isTooLarge ? new OrlentaError("the value is too large for JavaScript") : error;
}

// Names that outlive a minifier.
for (const [name, type] of Object.entries({
    OrlentaError, DecodeError, EncodeError, ConstraintError, UnknownType, SchemaError,
}))
    Object.defineProperty(type.prototype, "name", { value: name, configurable: true, writable: true });

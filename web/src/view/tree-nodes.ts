// SPDX-License-Identifier: Apache-2.0
// A value and its type walked together: the nodes of the tree.
import type { Component, TypeInfo, Value } from "orlenta";
import { joinPath, type Step } from "../codec/path";
import { isContainer } from "./value-text";

export interface Node {
    name: string;
    path: string;
    depth: number;
    value: Value;
    /** Absent where the type of an open type is not known. */
    type?: TypeInfo;
    /** It may be taken out: an optional component, or an element of a list. */
    isRemovable: boolean;
    isContainer: boolean;
}

/** Gives the type in an open type, or undefined. */
export type OpenTypes = (path: string) => TypeInfo | undefined;

function node(
    parent: Node,
    step: Step,
    value: Value,
    type: TypeInfo | undefined,
    isRemovable: boolean,
    open: OpenTypes,
): Node {
    const path = joinPath(parent.path, step);
    const known = type?.kind === "open type" ? (open(path) ?? type) : type;
    return {
        name: typeof step === "number" ? `[${step}]` : step,
        path,
        depth: parent.depth + 1,
        value,
        type: known,
        isRemovable,
        isContainer: isContainer(value, known),
    };
}

export function rootNode(name: string, value: Value, type: TypeInfo): Node {
    return { name, path: "", depth: 0, value, type, isRemovable: false, isContainer: isContainer(value, type) };
}

export function childrenOf(parent: Node, open: OpenTypes): Node[] {
    const { value, type } = parent;
    if (!parent.isContainer) return [];
    if (Array.isArray(value)) {
        const isList = type?.kind === "SEQUENCE OF" || type?.kind === "SET OF";
        return value.map((element, i) => node(parent, i, element, isList ? type.element : undefined, isList, open));
    }
    const record = value as { [name: string]: Value };
    const alternatives = new Map(type?.alternatives?.map((one) => [one.name, one]));
    const components = new Map(type?.components?.map((one) => [one.name, one]));
    // In the order of the type, then what the type does not know.
    const names = [...components.keys()].filter((name) => record[name] !== undefined);
    names.push(...Object.keys(record).filter((name) => !components.has(name)));
    return names.map((name) => {
        const component = components.get(name);
        const isRemovable = component !== undefined && (component.presence !== "mandatory" || component.isAddition);
        return node(parent, name, record[name], (component ?? alternatives.get(name))?.type, isRemovable, open);
    });
}

/** Components that a SEQUENCE could have and has not. */
export function absentOf({ value, type }: Node): Component[] {
    const record = value as { [name: string]: Value };
    return (type?.components ?? []).filter(({ name }) => record[name] === undefined);
}

export function canGrow({ value, type }: Node): boolean {
    if (!type?.element || !Array.isArray(value)) return false;
    return type.upper === undefined || type.isExtensible || value.length < Number(type.upper);
}

# SPDX-License-Identifier: Apache-2.0
"""Types in words: what the tables know of them, in the notation of X.680."""


def _range(bounds, is_extensible):
    least, most = bounds
    if least == most:
        text = str(least)
    else:
        text = f"{'MIN' if least is None else least}..{'MAX' if most is None else most}"
    return text + (", ..." if is_extensible else "")


def _constraint(type):
    bounds = type.bounds
    if bounds is None or bounds in ((None, None), (0, None)) and type.kind != "INTEGER":
        return ""
    text = _range(bounds, type.is_extensible)
    if type.kind == "INTEGER":
        return "" if bounds == (None, None) else f" ({text})"
    return f" (SIZE ({text}))"


def _braces(type, parts, indent):
    """Parts of (text, is_addition), with the extension marker where it stands."""
    lines = [text for text, is_addition in parts if not is_addition]
    if type.is_extensible:
        lines.append("...")
    lines += [text for text, is_addition in parts if is_addition]
    inner = ",\n".join(indent + "  " + line for line in lines)
    return f"{{\n{inner}\n{indent}}}" if lines else "{ }"


def _component(part, indent):
    text = f"{part.name} {_named(part.type, indent)}"
    if part.default is not None:
        default = part.default if not isinstance(part.default, bool) else str(part.default).upper()
        return f"{text} DEFAULT {default}"
    return text + (" OPTIONAL" if part.optional and not part.is_addition else "")


def _named(type, indent):
    """The type as another one refers to it: by its name, or in place."""
    return type.name.rpartition(".")[2] if type.region or type.module else body(type, indent + "  ")


def body(type, indent=""):
    kind = type.kind
    if kind in ("SEQUENCE", "SET"):
        parts = [(_component(part, indent), part.is_addition) for part in type.components]
    elif kind == "CHOICE":
        parts = [(f"{part.name} {_named(part.type, indent)}", part.is_addition) for part in type.alternatives]
    elif kind == "ENUMERATED":
        parts = [(f"{item.name}({item.number})", item.is_addition) for item in type.items]
    elif kind in ("SEQUENCE OF", "SET OF"):
        return f"{kind[:-3]}{_constraint(type)} OF {_named(type.element, indent)}"
    else:
        contained = type.contained
        holds = f" (CONTAINING {_named(contained, indent)})" if contained else ""
        return kind + _constraint(type) + holds
    return f"{kind} {_braces(type, parts, indent)}"


def describe(type):
    """The type's definition, as far as the tables have it: Type.documentation."""
    where = f"-- module {type.module}\n" if type.module else ""
    about = f"-- {type.about}\n" if type.about else ""
    return f"{where}{about}{type.name.rpartition('.')[2]} ::= {body(type)}"

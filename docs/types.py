# SPDX-License-Identifier: Apache-2.0
"""Pages of the HTML manual that list the types of a message set: types.py ORLENTA FOLDER REGION...

For each region `orlenta show` prints all types; each type name in its output becomes a link, and each type tells which
others use it. FOLDER gets types_<region>.md, which Doxygen lists as a page, and types_<region>.html, which that includes.
"""
import html
import re
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

TITLES = {"CN": "China", "EU": "Europe", "US": "United States"}
# Comments with units and character strings hold no names of types.
TOKEN = re.compile(r'(^-- .*$|--@.*?(?: --|$))|("[^"]*")|(?<![\w-])([A-Z][A-Za-z0-9-]*)', re.M)


def definitions(text):
    """Name -> the text of its definition, in the order of `orlenta show`."""
    parts = re.split(r"^((?:-- .*\n)?)([A-Z][A-Za-z0-9-]*)(?= ::= )", text, flags=re.M)
    return {name: about + name + body.rstrip() for about, name, body in zip(parts[1::3], parts[2::3], parts[3::3])}


def link(name, text=None):
    return f'<a href="#{name}">{text or name}</a>'


def linked(text, own, names):
    """The text as HTML, and the names in it that have become links."""
    used, out, end = set(), [], 0
    for match in TOKEN.finditer(text):
        out.append(html.escape(text[end:match.start()], quote=False))
        comment, _, name = match.groups()
        if name in names and name != own:
            used.add(name)
            out.append(link(name))
        else:
            token = html.escape(match[0], quote=False)
            out.append(f'<span class="comment">{token}</span>' if comment else token)
        end = match.end()
    return "".join(out) + html.escape(text[end:], quote=False), used


def page(region, types, roots):
    bodies, users = {}, defaultdict(list)
    for name in sorted(types, key=str.lower):
        bodies[name], used = linked(types[name], name, types)
        for other in used:
            users[other].append(name)
    unresolved = [name for name in types if not users[name] and name not in roots]
    if unresolved:
        sys.exit(f"types.py: {region}: used by nothing, though no root: {', '.join(unresolved)}")
    initials = {name[0]: name for name in reversed(bodies)}  # the first type of each letter
    initials = dict(reversed(initials.items()))
    title = f"Types of {region}, {TITLES.get(region, region)}"
    out = [f"<p>The {len(types)} types of the message set, as the library's tables have them, in the notation of ASN.1. "
           f"A comment <code>--@ unit</code> gives a number's unit and the numbers with a meaning of their own. In C the "
           f"type <code>Some-Type</code> is the record <code>asn1_{region}_Some_Type</code> and the descriptor "
           f"<code>asn1_type_{region}_Some_Type</code>, in C++ "
           f"<code>orlenta::{region.lower()}::Some_Type</code>. Named bits and numbers are constants in "
           f"<code>orlenta/{region.lower()}.h</code>.</p>",
           f"<p>Used by no other type: {', '.join(map(link, roots))}.</p>",
           f"<p>{' '.join(link(name, letter) for letter, name in initials.items())}</p>"]
    for name, body in bodies.items():
        using = f'<p>in {", ".join(map(link, users[name]))}</p>' if users[name] else ""
        out.append(f'<div class="asn1" id="{name}"><pre>{body}</pre>{using}</div>')
    return title, "\n".join(out)


def main():
    orlenta, folder, *regions = sys.argv[1:]
    for region in regions:
        def ask(*arguments):
            return subprocess.run([orlenta, *arguments], capture_output=True, text=True, check=True).stdout

        roots = [name.partition(".")[2] for name in ask("roots", region).split()]
        title, body = page(region, definitions(ask("show", f"{region}.*")), roots)
        name = f"types_{region.lower()}"
        Path(folder, f"{name}.html").write_text(body)
        Path(folder, f"{name}.md").write_text(f"# {title} {{#{name}}}\n\n@htmlinclude {name}.html\n")


main()

#!/usr/bin/python3
"""Draws the pictures of the documentation: draw_pictures.py PICTURE [PROJECT]

PICTURE is "house", the folders and which of them includes which, or "call", the way of one call from
function to function, both for docs/architecture.md; or one of the manual: "plugins", the host's folder
with the plugin in it, "search", the domains that a getter searches, and "travel", what becomes of a value
on its way to the disk and back. The picture goes to stdout, as SVG. docs/conf.py puts them into the site.

Nothing is drawn of the sources that they don't say: an arrow of the house is an include, and an arrow of
the call stands for a name in the body of the function that it starts at. Exits 1 and says why when the
sources say otherwise. What the manual's pictures show, the programs on the same pages show too.
"""

import pathlib
import re
import subprocess
import sys

PRODUCT = ("defaults", "companion", "bridge", "plugin", "native")
# They include whatever they try, and nothing else includes them: no rooms of the house.
VISITORS = ("tests", "examples", "bench", "fuzz")
SOURCE_SUFFIXES = {".cc", ".c", ".h", ".m", ".def"}
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*"([^"]+)"', re.M)

# The functions on the way of d.integerForKey("launchCount"), and the files that they stand in.
PLACES = {
    "NSUserDefaultsMethods": ["plugin/tables.cc"],
    "integerForKey": ["defaults/scalars.cc"],
    "guarded": ["plugin/errors.h"],
    "catching": ["native/exceptions.h"],
    "reportNativeException": ["plugin/errors.cc"],
    "autoreleasedCFString": ["bridge/strings.h"],
    "RBString2CFString": ["bridge/strings.cc"],
    "convertedByHost": ["bridge/strings.cc"],
    "REALGetStringCFString": ["plugin/host_routines.def"],
    "wrapped": ["defaults/instance.h"],
    "dataAt": ["plugin/instance_data.h"],
    "send": ["native/objc.h"],
    "methodOf": ["native/darwin/dispatch.h", "native/gnustep/dispatch.h"],
}
# Step of the page's walk, who names, whom.
STEPS = (
    (1, "NSUserDefaultsMethods", "integerForKey"),
    (2, "integerForKey", "guarded"),
    (2, "guarded", "catching"),
    (2, "guarded", "reportNativeException"),
    (3, "integerForKey", "autoreleasedCFString"),
    (3, "autoreleasedCFString", "RBString2CFString"),
    (3, "RBString2CFString", "convertedByHost"),
    (3, "convertedByHost", "REALGetStringCFString"),
    (4, "integerForKey", "wrapped"),
    (4, "wrapped", "dataAt"),
    (5, "integerForKey", "send"),
    (5, "send", "methodOf"),
)

# The domains in the order in which a getter searches them; those on disk, and what they are.
DOMAINS = (
    ("arguments", "what the program was started with", False),
    ("the program's own", "where every setter writes", True),
    ("suites", "the one that was added last comes first", True),
    ("global", "all programs of the user", True),
    ("registered", "what the program comes with", False),
)
# A value in the program, in memory and in the file.
KINDS = (
    ("Integer, Double, Boolean", "NSNumber", "number, boolean"),
    ("String", "NSString", "text"),
    ("Date", "NSDate", "date"),
    ("MemoryBlock", "NSData", "data"),
    ("FolderItem, URL", "NSURL", "path or data"),
    ("String(), Variant()", "NSArray", "list"),
    ("Dictionary", "NSDictionary", "dictionary"),
)

# The page's own colours, light or dark, as its reader has chosen; without a page, dark on light.
STYLE = """
.picture { max-width: 100%; height: auto; }
.picture text { fill: var(--color-foreground-primary, #111); }
.picture .cluster text, .picture .edge text { fill: var(--color-foreground-secondary, #555); }
.picture .node :is(path, ellipse, polygon, polyline)
  { fill: var(--color-background-primary, #fff); stroke: var(--color-foreground-muted, #777); }
.picture .cluster path
  { fill: var(--color-foreground-primary, #111); fill-opacity: 0.04;
    stroke: var(--color-foreground-muted, #777); stroke-opacity: 0.5; }
.picture .product path, .picture .disk :is(path, polygon) { fill: var(--color-brand-primary, #2962ff); fill-opacity: 0.12; }
.picture .edge path { stroke: var(--color-foreground-secondary, #555); }
.picture .edge polygon { fill: var(--color-foreground-secondary, #555); stroke: none; }
"""
LOOKS = (
    'bgcolor=transparent fontname="Liberation Sans" fontsize=13 labeljust=l',
    'node [fontname="Liberation Sans" fontsize=13 shape=box style=rounded margin="0.08,0.05" height=0.3]',
    'edge [fontname="Liberation Sans" fontsize=12 arrowsize=0.7]',
)


class Refusal(Exception):
    """The sources don't say what would be drawn."""


# --- the house


def sources(root):
    """Every source of the project, as a path from its root. What has no folder is in no room."""
    for folder in sorted(root.iterdir()):
        if folder.is_dir() and folder.name != "build" and not folder.name.startswith("."):
            for file in sorted(folder.rglob("*")):
                if file.suffix in SOURCE_SUFFIXES:
                    yield file.relative_to(root)


def arrows_of_house(root):
    """The rooms, and which of them includes which."""
    rooms, arrows = set(), set()
    for file in sources(root):
        if file.parts[0] in VISITORS:
            continue
        rooms.add(room_of(file))
        for target in INCLUDE.findall((root / file).read_text(encoding="utf-8")):
            if not (root / target).is_file():
                raise Refusal(f'{file} includes "{target}", which is no file of the project')
            if target.split("/")[0] in VISITORS:
                raise Refusal(f'{file} includes "{target}": only {", ".join(VISITORS)} may')
            if room_of(file) != room_of(target):
                arrows.add((room_of(file), room_of(target)))
    return rooms, arrows


def room_of(file):
    """The folder of a file, or the part of a folder. What a room keeps to itself is no other room."""
    return "/".join(pathlib.PurePath(file).parent.parts[:2]).removesuffix("/internal")


def reduced(arrows):
    """The arrows without those whose end others lead to as well, by a way that has no circle."""
    after = {start: {end for other, end in arrows if other == start} for start, _ in arrows}

    def beyond(room, seen):
        for following in after.get(room, set()) - seen:
            seen = beyond(following, seen | {following})
        return seen

    ways = {room: beyond(room, set()) for arrow in arrows for room in arrow}
    return {(start, end) for start, end in arrows
            if not any(end in ways[room] and start not in ways[room]
                       for room in after[start] - {end})}


def house(root):
    rooms, arrows = arrows_of_house(root)
    streets = {"product": [], "surroundings": []}
    for top in sorted({room.split("/")[0] for room in rooms}):
        own = [room for room in sorted(rooms) if room.split("/")[0] == top]
        lines = [f"{quoted(room)} [label={quoted(room.split('/')[-1])}]" for room in own]
        streets["product" if top in PRODUCT else "surroundings"] += (
            lines if len(own) == 1 else cluster(top, f"{top}/", lines))
    drawing = ["ranksep=0.4 nodesep=0.2",
               *cluster("surroundings", "around the product", streets["surroundings"]),
               *cluster("product", "the product", streets["product"])]
    kept = reduced(arrows)
    for start, end in sorted(kept):
        if (end, start) not in kept:
            drawing.append(f"{quoted(start)} -> {quoted(end)}")
        elif start < end:
            drawing.append(f"{quoted(start)} -> {quoted(end)} [dir=both]")
    return drawing


# --- the call


def body_of(root, name, file):
    """What stands in the braces, or in a list's row, that define the name in that file."""
    text = re.sub(r"//.*", "", (root / file).read_text(encoding="utf-8"))
    found = re.search(rf"\b{name}\b[^;{{}}]*\{{|^[A-Z_]+\({name},", text, re.M)
    if found is None:
        raise Refusal(f"{file} doesn't define {name}")
    depth = 1
    for end in range(found.end(), len(text)):
        depth += (text[end] in "{(") - (text[end] in "})")
        if depth == 0:
            return text[found.end():end]
    raise Refusal(f"{file}: the definition of {name} has no end")


def call(root, places=PLACES, steps=STEPS):
    bodies = {(name, file): body_of(root, name, file)
              for name, files in places.items() for file in files}
    for (name, file), body in bodies.items():
        for _, caller, callee in steps:
            if caller == name and not re.search(rf"\b{callee}\b", body):
                raise Refusal(f"{file}: {name} doesn't name {callee}")
    drawing = ["ranksep=0.35 nodesep=0.15",
               'host [label="the host" shape=ellipse style=""]',
               'host -> NSUserDefaultsMethods [label=" 1"]',
               'integerForKey -> host [label="  6" style=dashed constraint=false]']
    for name, files in places.items():
        lines = "".join(f'<br/><font point-size="10">{file}</font>' for file in files)
        drawing.append(f"{name} [label=<{name}{lines}>]")
    drawing += [f'{caller} -> {callee} [label=" {number}"]' for number, caller, callee in steps]
    return drawing


# --- the manual


def plugins(root):
    """The host's folder after the plugin has been put into it, as a tree."""
    header = (root / "plugin" / "version.h").read_text(encoding="utf-8")
    version = re.search(r'"(\d+\.\d+\.\d+)"', header)
    if version is None:
        raise Refusal("plugin/version.h says no version")
    return ["ranksep=0.25 nodesep=0.3", 'node [style=""]', "edge [arrowhead=none]",
            'host [label="the host\'s folder" shape=folder]', 'program [label="the host"]',
            'plugins [label="Plugins" shape=folder]',
            f'file [label="NSUserDefaultsZEL-{version.group(1)}.xojo_plugin" shape=note class=disk]',
            "host -> plugins", "host -> program", "plugins -> file"]


def search(root):
    """What a getter asks in turn, and where a setter writes."""
    drawing = ["ranksep=0.25 nodesep=0.6", 'getter [label="a getter" shape=ellipse style=""]',
               'setter [label="a setter" shape=ellipse style=""]',
               f'nothing [label={words("nothing found", "0, False, the empty text, an empty array, Nil")}]']
    for name, meaning, on_disk in DOMAINS:
        drawing.append(f"{quoted(name)} [label={words(name, meaning)}{' class=disk' if on_disk else ''}]")
    way = ["getter", *(name for name, *_ in DOMAINS), "nothing"]
    drawing += [f"{quoted(start)} -> {quoted(end)}" for start, end in zip(way, way[1:])]
    written = quoted(DOMAINS[1][0])
    return [*drawing, f"{{ rank=same; setter; {written} }}", f"setter -> {written}"]


def travel(root):
    """One row for each kind of value, one column for each place that it is in."""
    columns = [[], [], []]
    rows = []
    for number, row in enumerate(KINDS):
        nodes = [f"{place}{number}" for place in ("program", "memory", "file")]
        for column, node, text in zip(columns, nodes, row):
            column.append(f"{node} [label={quoted(text)}]")
        rows.append(f"{nodes[0]} -> {nodes[1]} -> {nodes[2]} [dir=both]")
    titles = ("in the program", "in memory", "on disk")
    drawing = ["rankdir=LR ranksep=0.6 nodesep=0.12 ordering=out"]
    for name, title, column in zip(("program", "memory", "disk"), titles, columns):
        drawing += cluster(name, title, column)
    return [*drawing, *rows]


def words(name, meaning):
    return f'<{name}<br/><font point-size="11">{meaning}</font>>'


# --- drawing


def quoted(text):
    return '"' + text.replace('"', '\\"') + '"'


def cluster(name, label, lines):
    return [f"subgraph {quoted('cluster_' + name)} {{",
            f"label={quoted(label)} class={name} style=rounded", *lines, "}"]


PICTURES = {draw.__name__: draw for draw in (house, call, plugins, search, travel)}


def picture(name, root):
    """The picture of that name as SVG that can stand in a page. The same sources give the same."""
    lines = PICTURES[name](pathlib.Path(root))
    text = "\n".join([f"digraph {name} {{", *LOOKS, *lines, "}"])
    drawn = subprocess.run(["dot", "-Tsvg"], input=text, capture_output=True, check=True,
                           encoding="utf-8").stdout
    # Two pictures in one page must not share their elements' names.
    drawn = re.sub(r' id="[^"]*"', "", drawn[drawn.index("<svg"):])
    return re.sub(r"(<svg\b[^>]*)>", rf'\1 class="picture">\n<style>{STYLE}</style>', drawn, 1)


def main(arguments):
    if not 1 <= len(arguments) <= 2 or arguments[0] not in PICTURES:
        print(__doc__.splitlines()[0], file=sys.stderr)
        return 2
    try:
        print(picture(arguments[0], *arguments[1:] or [pathlib.Path(__file__).parents[1]]), end="")
    except Refusal as refusal:
        print(f"tools/draw_pictures.py: {refusal}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

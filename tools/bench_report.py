"""Makes tables, plots and docs/performance.md of what tools/bench has measured."""

import argparse
import csv
import datetime
import json
import pathlib
import platform
import subprocess

COLUMNS = {
    "count": ["family", "road", "entries", "direct", "plugin", "bound", "state"],
    "start": ["direct", "plugin"],
    "time": ["family", "road", "entries", "direct", "plugin"],
    "grow": ["family", "road", "entries", "direct", "plugin"],
    "memory": ["family", "road", "entries", "direct", "direct kept", "plugin", "plugin kept"],
    "peers": ["peer", "road", "nanoseconds"],
}
WORDS = {"family", "road", "bound", "state", "peer"}


def number(text):
    value = float(text)
    return int(value) if value.is_integer() else value


def read(folder):
    """Everything measured, by what it is: lists of rows."""
    measured = {}
    for name, columns in COLUMNS.items():
        file = folder / f"{name}.tsv"
        if not file.exists():
            continue
        with file.open(newline="", encoding="utf-8") as lines:
            measured[name] = [
                {key: cell if key in WORDS else number(cell) for key, cell in zip(columns, row)}
                for row in csv.reader(lines, delimiter="\t")
            ]
    turns = folder / "turns.json"
    if turns.exists():
        found = json.loads(turns.read_text(encoding="utf-8"))["benchmarks"]
        measured["turns"] = [
            {"road": row["name"], "nanoseconds": 1e9 / row["items_per_second"]} for row in found
        ]
    return measured


def circumstances(arguments):
    """Machine, versions, date and command."""

    def first(command, fallback="unknown"):
        try:
            lines = subprocess.run(command, capture_output=True, text=True, check=True).stdout
            return lines.splitlines()[0]
        except (OSError, subprocess.CalledProcessError, IndexError):
            return fallback

    processor = platform.machine()
    for line in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if line.startswith("model name"):
            processor = line.split(":", 1)[1].strip()
            break
    package = ["dpkg-query", "--show", "--showformat", "${Version}\n"]
    return {
        "plugin": arguments.version,
        "target": arguments.target,
        "processor": processor,
        "system": f"{platform.freedesktop_os_release()['PRETTY_NAME']}, Linux {platform.release()}",
        "compiler": first(["g++-12", "--version"]),
        "GNUstep base": first(package + ["libgnustep-base1.28"]),
        "valgrind": first(["valgrind", "--version"]),
        "date": datetime.date.today().isoformat(),
        "command": arguments.command,
    }


def grouped(value):
    return f"{value:,.0f}"


def count_rows(measured):
    rows = []
    for row in measured["count"]:
        entries = "" if row["entries"] == 1 else f", each of {row['entries']:,}"
        rows.append([
            row["road"] + entries, grouped(row["direct"]), grouped(row["plugin"]),
            f"{row['plugin'] - row['direct']:+,.0f}", f"{row['plugin'] / row['direct']:.3f}",
            row["bound"].replace("x", " ×"), "" if row["bound"] == "-" else row["state"],
        ])
    return rows


def ratio_rows(measured, name, unit):
    return [
        [row["road"], f"{row['entries']:,}", f"{row['direct'] / unit:,.2f}",
         f"{row['plugin'] / unit:,.2f}", f"{row['plugin'] / row['direct']:.2f}"]
        for row in measured.get(name, [])
    ]


def growth_rows(measured):
    """How much longer an entry of the largest value takes than one of the smallest."""
    rows = []
    for road in dict.fromkeys(row["road"] for row in measured.get("grow", [])):
        sizes = [row for row in measured["grow"] if row["road"] == road]
        least, most = sizes[0], sizes[-1]
        rows.append([
            road, f"{least['entries']:,} to {most['entries']:,}",
            f"{most['direct'] / least['direct']:.2f}", f"{most['plugin'] / least['plugin']:.2f}",
            f"{most['direct'] - least['direct']:+.0f}", f"{most['plugin'] - least['plugin']:+.0f}",
        ])
    return rows


def memory_rows(measured):
    return [
        [row["road"], f"{row['entries']:,}"]
        + [f"{row[key]:,.0f}" for key in ("direct", "direct kept", "plugin", "plugin kept")]
        for row in measured.get("memory", [])
    ]


SECTIONS = [
    ("Instructions", "What a call costs, in instructions; of a large value, what each entry costs.",
     ["road", "directly", "plugin", "added", "ratio", "bound", "state"], count_rows),
    ("Time", "Nanoseconds of processor time for a call, or for each entry: medians of turns that "
     "alternate.", ["road", "entries", "directly", "plugin", "ratio"],
     lambda measured: ratio_rows(measured, "time", 1)),
    ("Growth", "How many times as long an entry of the largest value takes as one of the smallest, and how "
     "many\nnanoseconds longer.",
     ["road", "entries", "directly", "plugin", "longer, directly", "longer, plugin"], growth_rows),
    ("Sizes", "Microseconds of processor time for each entry.",
     ["road", "entries", "directly", "plugin", "ratio"],
     lambda measured: ratio_rows(measured, "grow", 1000)),
    ("Memory", "Bytes for a call, or for each entry, before the pool drains and afterwards. The host's "
     "own values don't count.", ["road", "entries", "directly", "kept", "plugin", "kept"],
     memory_rows),
    ("Start", "Instructions from nothing to the first value; the plugin's have its loading in them.",
     ["directly", "plugin", "ratio"],
     lambda measured: [[grouped(row["direct"]), grouped(row["plugin"]),
                        f"{row['plugin'] / row['direct']:.3f}"] for row in measured.get("start", [])]),
    ("The runner", "Nanoseconds for a turn of a loop in the runner's language.", ["turn", "time"],
     lambda measured: [[row["road"], grouped(row["nanoseconds"])]
                       for row in measured.get("turns", [])]),
    ("Others", "Nanoseconds that other stores and bridges take for what is nearest to a call.",
     ["what", "call", "time"],
     lambda measured: [[row["peer"], row["road"], grouped(row["nanoseconds"])]
                       for row in measured.get("peers", [])]),
]


def plain_table(heads, rows):
    cells = [heads] + rows
    widths = [max(len(row[i]) for row in cells) for i in range(len(heads))]
    lines = []
    for row in cells:
        first, *rest = (cell for cell in row)
        lines.append("  ".join([first.ljust(widths[0])]
                               + [cell.rjust(width) for cell, width in zip(rest, widths[1:])]))
    return "\n".join(lines)


def page_table(heads, rows):
    lines = ["| " + " | ".join(row) + " |" for row in [heads, *rows]]
    lines.insert(1, "|---|" + "---:|" * (len(heads) - 1))
    return "\n".join(lines)


def draw(measured, folder):
    """One plot for each large value: what an entry costs against how many there are."""
    import matplotlib

    matplotlib.use("svg")
    matplotlib.rcParams["svg.hashsalt"] = "performance"
    from matplotlib import pyplot

    folder.mkdir(parents=True, exist_ok=True)
    files = []
    for road in dict.fromkeys(row["road"] for row in measured.get("grow", [])):
        sizes = [row for row in measured["grow"] if row["road"] == road]
        figure, axes = pyplot.subplots(figsize=(6, 3))
        for side, label, style in (("direct", "directly", "--"), ("plugin", "plugin", "-")):
            axes.plot([row["entries"] for row in sizes], [row[side] / 1000 for row in sizes],
                      style, marker="o", label=label)
        axes.set_xscale("log")
        axes.set_ylim(bottom=0)
        axes.set_xlabel("entries")
        axes.set_ylabel("µs for each entry")
        axes.set_title(road)
        axes.legend()
        figure.tight_layout()
        file = folder / (road.replace(" ", "-") + ".svg")
        figure.savefig(file, metadata={"Date": None})
        pyplot.close(figure)
        files.append((road, file))
    return files


INTRODUCTION = """# Performance

What a call through the plugin costs, beside the same work written directly in Objective-C by somebody
who cares for speed: the same messages, with classes and selectors remembered. The host on both sides
is one that costs nothing of its own (`bench/lean_host.h`), and Foundation is GNUstep base.

`tools/bench` measures, and `tools/bench --write --peers` writes this page. Instructions are counted, so
they are the same on a busy machine; times are those of the machine below. The bounds for single reads
are tests of every round.
"""

GROWTH = """
A dictionary on its way out grows by a larger factor through the plugin, because a small one costs it so
much less; the nanoseconds that come on top are as many as directly. They are what it takes to reach the
entries in memory. In valgrind's model of the caches, an entry of 200,000 costs fewer instructions than
one of 1,000 (directly 0.97 times as many, through the plugin 0.94 times), and of its accesses ten miss the
first cache at either size and on either side: what misses is the same, and beyond the caches it takes
longer.
"""

NARROW = """
## 32-bit Linux

The same calls, counted on 32-bit x86; `tools/bench --target linux-i386` tells more of it. The bounds are
for 64 bits: here arguments go over the stack, and every use of the plugin's own data needs an address
worked out.
"""


def write_page(page, measured, about, plots, narrow):
    parts = [INTRODUCTION]
    parts.append(page_table(["", "measured with"], [[key, value] for key, value in about.items()]))
    for title, text, heads, rows in SECTIONS:
        found = rows(measured)
        if not found:
            continue
        parts.append(f"\n## {title}\n\n{text}\n\n{page_table(heads, found)}")
        if title == "Growth":
            parts.append(GROWTH)
        if title == "Sizes":
            parts += [f"\n![{road}: cost of an entry against the number of entries]"
                      f"({file.relative_to(page.parent)})" for road, file in plots]
    parts += [NARROW, page_table(SECTIONS[0][2][:5], [row[:5] for row in count_rows(narrow)])]
    page.write_text("\n".join(parts) + "\n", encoding="utf-8")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("measured", type=pathlib.Path)
    parser.add_argument("--command", required=True)
    parser.add_argument("--target", required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--json", type=pathlib.Path)
    parser.add_argument("--plot", type=pathlib.Path, action="append", default=[])
    parser.add_argument("--page", type=pathlib.Path)
    parser.add_argument("--narrow", type=pathlib.Path, help="of 32 bits, for the page")
    arguments = parser.parse_args()
    if arguments.page and not arguments.narrow:
        parser.error("--page needs --narrow")
    measured = read(arguments.measured)
    about = circumstances(arguments)
    for title, text, heads, rows in SECTIONS:
        found = rows(measured)
        if found:
            print(f"\n{title}. {text}\n\n{plain_table(heads, found)}")
    if arguments.json:
        content = {"about": about, "measured": measured}
        arguments.json.write_text(json.dumps(content, indent=1) + "\n", encoding="utf-8")
    plots = []
    for folder in arguments.plot:
        plots = draw(measured, folder)
    if arguments.page:
        write_page(arguments.page, measured, about, plots, read(arguments.narrow))


if __name__ == "__main__":
    main()

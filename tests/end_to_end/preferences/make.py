#!/usr/bin/env python3
"""Makes the binary files beside this one, which have what XML can't hold or doesn't keep: as other
programs than Foundation write them, with Python's plistlib. Run it after a change; the files are
kept, so that no test needs it."""

import datetime
import pathlib
import plistlib

UID = plistlib.UID


def color(red, green, blue):
    return {"Red Component": red, "Green Component": green, "Blue Component": blue,
            "Alpha Component": 1.0, "Color Space": "sRGB"}


ARCHIVED_FONT = {
    "$archiver": "NSKeyedArchiver",
    "$version": 100000,
    "$top": {"root": UID(1)},
    "$objects": ["$null",
                 {"$class": UID(3), "NSName": UID(2), "NSSize": 11.0, "NSfFlags": 16},
                 "Menlo-Regular",
                 {"$classname": "NSFont", "$classes": ["NSFont", "NSObject"]}]}

FILES = {
    "terminal": {
        "Background": color(0.84313725490196079, 0.30000000000000004, 0.1),
        "Cursor": color(5e-324, 1.7976931348623157e+308, -0.0),
        "Ones": [1, True, 1.0, 0, False, 0.0, -0.0, [1], [True], [1.0]],
        "Font": plistlib.dumps(ARCHIVED_FONT, fmt=plistlib.FMT_BINARY),
        "Profiles": [{"Columns": 80, "Rows": 24, "Name": f"Profile {n}"} for n in range(20)],
    },
    "shortcuts": {
        "NSUserKeyEquivalents": {
            "\x1bFile\x1bSave As\u2026": "@$s",
            "\x1bEdit\x1bEmoji & Symbols": "^@ ",
            "\x1bView\x1b\U0001f600": "\uf704",
        },
        "mood": "fine \U0001f600",
        "\U0001f600": "\U0001f600",
        "escapes": "x\\U0041y \\UD83D\\UDE00 \\n",
        "controls": "".join(map(chr, range(1, 32))) + "\x7f\x80\x9f",
        "composed": "\u00e9\u212b", "decomposed": "e\u0301A\u030a",
        "marks": "\ufeffa", "swapped": "\ufffea", "last": "\uffff\U0010ffff",
    },
    "archive": ARCHIVED_FONT,
    "counters": {
        "highest": 2**64 - 1, "lowest": 2**63, "other": 2**63 + 5, "signed": 2**63 - 1,
        "since": datetime.datetime(2013, 9, 3, 12, 34, 56), "name": "counters",
    },
}

for name, contents in FILES.items():
    file = pathlib.Path(__file__).with_name(name + ".plist")
    file.write_bytes(plistlib.dumps(contents, fmt=plistlib.FMT_BINARY))

"""What Python's plistlib takes to write and read a list like that of the plugin's measurements."""

import plistlib
import statistics
import time

ENTRIES = 1000
TURNS = 15


def measure(what, call):
    seconds = []
    for _ in range(TURNS):
        before = time.process_time()
        call()
        seconds.append(time.process_time() - before)
    print(f"plistlib\t{what}, each of {ENTRIES:,}\t{statistics.median(seconds) * 1e9 / ENTRIES:.1f}")


entries = {f"text number {i}": i if i % 2 == 0 else f"text number {i}" for i in range(ENTRIES)}
written = plistlib.dumps(entries, fmt=plistlib.FMT_BINARY)
measure("dictionary written", lambda: plistlib.dumps(entries, fmt=plistlib.FMT_BINARY))
measure("dictionary read", lambda: plistlib.loads(written))

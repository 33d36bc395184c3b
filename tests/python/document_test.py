#!/usr/bin/env python3
"""The first lines that docs/python.md shows draw what they say.

usage: document_test.py DOCUMENT
"""

import pathlib
import re
import sys

import numpy as np


def main():
    text = pathlib.Path(sys.argv[1]).read_text(encoding="utf-8")
    names = {}
    exec(re.search(r"^```python\n(.*?)^```", text, re.DOTALL | re.MULTILINE)[1], names)
    picture = names["picture"]
    # From its rim on the light adds nothing; in its middle its weight is a little low.
    ground = {picture[place] for place in ((0, 0), (319, 479), (160, 140), (60, 240))}
    middle = [int(picture[160, 240]) >> shift & 0xFF for shift in (16, 8, 0)]
    expected = (0x0A + 0x40, 0x0C + 0x80, 0xFF)
    faults = [] if ground == {0x0A0C1E} else [f"the ground: {ground}"]
    if any(not 0 <= most - channel <= 2 for most, channel in zip(expected, middle)):
        faults.append(f"the middle: {middle}")
    if picture.shape != (320, 480) or picture.dtype != np.uint32 or len(np.unique(picture)) < 50:
        faults.append(f"{picture.shape} of {picture.dtype}, {len(np.unique(picture))} colours")
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Copies a source with one text in it replaced, which must stand there just once.

    make_fault.py SOURCE COPY OLD NEW
"""

import sys
from pathlib import Path

source, copy, old, new = sys.argv[1:]
text = Path(source).read_text(encoding="utf-8")
if text.count(old) != 1:
    sys.exit(f'make_fault: "{old}" stands {text.count(old)} times in {source}')
Path(copy).parent.mkdir(parents=True, exist_ok=True)
Path(copy).write_text(text.replace(old, new), encoding="utf-8")

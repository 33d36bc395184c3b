#!/usr/bin/env python3
"""Stands in for a test that cannot run here: says why, and CTest shows it as skipped.

usage: skip.py REASON
"""

import sys

print(sys.argv[1])
sys.exit(77)

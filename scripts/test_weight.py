#!/usr/bin/env python3
"""The `test_weight` test: the C++ under tests/ may be at most half of the
C++ elsewhere (src/ and resources/). Lines count when they are neither blank
nor comment-only. Usage: test_weight.py SOURCE_TREE"""
import os
import sys


def lines_of_code(folder):
    total = 0
    for top, _, names in os.walk(folder):
        for name in names:
            if name.endswith((".cpp", ".h")):
                with open(os.path.join(top, name), encoding="utf-8", errors="replace") as source:
                    total += sum(1 for line in source if line.strip() and not line.strip().startswith("//"))
    return total


root = sys.argv[1]
tests = lines_of_code(os.path.join(root, "tests"))
product = sum(lines_of_code(os.path.join(root, folder)) for folder in ("src", "resources"))
print(f"C++ lines: tests/ {tests}, src/ and resources/ {product}: {100 * tests / product:.1f}% (at most 50%)")
sys.exit(0 if 2 * tests <= product else 1)

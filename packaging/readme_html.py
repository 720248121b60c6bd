#!/usr/bin/env python3
"""Turns README.md into README.html for the packages: one plain page with real
headings, lists and tables, which a screen reader moves through by heading.

The page keeps what a user of the program needs: the sections about building
and testing it (DEVELOPER_SECTIONS) and the build commands at the top are left
out, and so are the pictures (and paragraphs that link to them) and the links into
the source tree.

Usage: readme_html.py README.md README.html VERSION
"""
import html
import os
import re
import sys

import markdown

DEVELOPER_SECTIONS = {"make run", "make test", "Building on Windows", "Source layout"}


def user_part(text):
    kept, skipping, before_first_section = [], False, True
    in_code = False
    for line in text.splitlines():
        if line.startswith("```"):
            in_code = not in_code
        if not in_code and line.startswith("## "):
            before_first_section = False
            skipping = line[3:].strip() in DEVELOPER_SECTIONS
        if not skipping:
            kept.append(line)
    text = "\n".join(kept) + "\n"
    # Before the first section: the build commands and what they install.
    head, sep, rest = text.partition("\n## ")
    head = re.sub(r"```.*?```\n", "", head, flags=re.S)
    head = "\n\n".join(p for p in head.split("\n\n") if not re.search(r"make |Debian", p))
    text = head + "\n" + sep + rest
    text = re.sub(r"^!\[[^\]]*\]\([^)]*\)\n", "", text, flags=re.M)  # pictures
    text = "\n\n".join(p for p in text.split("\n\n") if not re.search(r"\]\([^)]*\.png\)", p))  # links to them
    text = re.sub(r"\[([^\]]+)\]\((?!https?:)[^)]*\)", r"\1", text)  # links into the tree
    return text


def main(source, target, version):
    with open(source, encoding="utf-8") as f:
        text = user_part(f.read())
    title = text.splitlines()[0].lstrip("# ").strip()
    body = markdown.markdown(text, extensions=["tables", "fenced_code"], output_format="html")
    page = (
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        f"<title>{html.escape(title)} {html.escape(version)}</title>\n"
        "<style>body{font-family:sans-serif;max-width:50em;margin:1em auto;padding:0 1em;line-height:1.4}"
        "table{border-collapse:collapse}th,td{border:1px solid #888;padding:.2em .5em;text-align:left}</style>\n"
        f"</head>\n<body>\n{body}\n<p>Version {html.escape(version)}</p>\n</body>\n</html>\n"
    )
    os.makedirs(os.path.dirname(os.path.abspath(target)), exist_ok=True)
    with open(target, "w", encoding="utf-8", newline="\r\n") as f:
        f.write(page)


if __name__ == "__main__":
    main(*sys.argv[1:4])

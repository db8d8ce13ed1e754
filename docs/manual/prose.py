"""The comments of the public headers in scdoc's notation. They are written so:

    `name`: text            a parameter, one line or more
    - text                  an item of a list, goes on two columns in
      87, 2   text          a row of codes, goes on below its text
        text                as it stands
    Errors, Blocks          each begins a paragraph of its own"""
import re

from scdoc import bold, definition, literal, plain

NAMED = re.compile(r"`(\w+)`: (.*)")
ROW = re.compile(r"  (\S.*?)(?:  +(.*))?$")


class Prose:
    def __init__(self):
        self.parts, self.kind, self.term, self.lines = [], None, "", []

    def begin(self, kind, line, term=""):
        self.end()
        self.kind, self.term, self.lines = kind, term, [line] if line else []

    def end(self):
        text = " ".join(self.lines)
        if self.kind == "literal":
            self.parts.append(literal(self.lines))
        elif self.kind == "item":
            self.parts.append(f"- {plain(text)}\n")
        elif self.kind in ("named", "row"):
            self.parts.append(definition(bold(self.term), plain(text)) if text else f"{bold(self.term)}\n")
        elif self.lines:
            self.parts.append(plain(text) + "\n")
        self.kind, self.lines = None, []

    def take(self, line):
        named, row = NAMED.match(line), ROW.match(line)
        if not line:
            self.end()
        elif named:
            self.begin("named", named[2], named[1])
        elif line.startswith("- "):
            self.begin("item", line[2:])
        elif self.kind == "item" and line.startswith("  "):
            self.lines.append(line.strip())
        elif self.kind in ("row", "named") and line.startswith("   "):
            self.lines.append(line.strip())
        elif line.startswith("    "):
            self.lines.append(line[4:]) if self.kind == "literal" else self.begin("literal", line[4:])
        elif row:
            self.begin("row", row[2] or "", row[1])
        elif re.match(r"(Errors|Blocks)\b", line) or self.kind in ("row", "item", "literal", None):
            self.begin("text", line)
        else:
            self.lines.append(line)


def prose(lines):
    text = Prose()
    for line in lines:
        text.take(line)
    text.end()
    return "\n".join(text.parts)

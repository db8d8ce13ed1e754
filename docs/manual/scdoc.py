"""What the makers of pages share: texts in scdoc's notation, and pages made of them."""
import pathlib
import re
import subprocess


def escaped(text):
    return re.sub(r"([\\*_#+~<>\[\]|`^-])", r"\\\1", text)


def plain(text):
    """A sentence of ours: what stands between `these` is to be typed."""
    return "".join(f"*{escaped(part)}*" if i % 2 and part else escaped(part) for i, part in enumerate(text.split("`")))


def bold(text):
    return f"*{escaped(text)}*"


def slanted(text):
    return f"_{escaped(text)}_"


def literal(lines):
    return "```\n" + "\n".join(lines) + "\n```\n"


def definition(term, text):
    """`term` is in scdoc's notation already."""
    body = "\n".join(f"\t{line}" for line in text.splitlines())
    return f"{term}\n{body}\n"


def table_of(rows):
    """Of pairs of texts."""
    return "\n".join(definition(bold(term), plain(text)) for term, text in rows)


def page(name, section, version, about, parts):
    """`parts`: (heading, text) pairs; those without a text are left out."""
    text = f'{name}({section}) "Kestrel SDK {version}" "Kestrel SDK"\n\n# NAME\n\n{about}\n'
    return text + "".join(f"\n# {heading}\n\n{body.strip()}\n" for heading, body in parts if body.strip())


def write(folder, name, section, text):
    target = pathlib.Path(folder) / f"man{section}"
    target.mkdir(parents=True, exist_ok=True)
    made = subprocess.run(["scdoc"], input=text, capture_output=True, text=True)
    if made.returncode != 0:
        numbered = "\n".join(f"{i:4} {line}" for i, line in enumerate(text.splitlines(), 1))
        raise SystemExit(f"{numbered}\n{name}({section}): {made.stderr}")
    # Names that are cut at a line's end cannot be looked for.
    (target / f"{name}.{section}").write_text(re.sub(r"^(\.TH .*)$", r"\1\n.nh", made.stdout, count=1, flags=re.M))


def link(folder, name, section, target):
    """A page that shows another one."""
    path = pathlib.Path(folder) / f"man{section}" / f"{name}.{section}"
    path.write_text(f".so man{section}/{target}.{section}\n")

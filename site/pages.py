#!/usr/bin/env python3
"""Writes the gallery's pages from what the catalogue and the pictures say of themselves.

usage: pages.py [--playground MODULE.wasm] CATALOGUE.json PICTURES.json DIRECTORY

Refuses an export without a text or a picture, a picture that shows nothing, and two that are alike without a reason.
"""

import argparse
import base64
import collections
import gzip
import itertools
import json
import pathlib
import re
import shutil
import struct
import sys
import tomllib

import jinja2
import markupsafe

HERE = pathlib.Path(__file__).resolve().parent
PHOTOGRAPHS = HERE.parent / "examples" / "show" / "photos" / "README.md"
WORDS = tomllib.loads((HERE / "words.toml").read_text(encoding="utf-8"))
MOST_RELATIVES = 10


class Refusal(Exception):
    pass


def full_name(function):
    return " ".join(filter(None, [function["name"], function.get("overload", "")]))


def page_of(function):
    return re.sub(r"\W", "-", full_name(function)) + ".html"


# Pictures


def complaints_about(functions, pictures):
    """What keeps a gallery from being shown."""
    complaints = []
    alike = collections.defaultdict(list)
    for function in functions:
        name = full_name(function)
        picture = pictures.get(name)
        if not function["text"].strip():
            complaints.append(f"{name} has no text")
        if not picture:
            complaints.append(f"{name} has no picture")
            continue
        if picture["isPlain"]:
            complaints.append(f"{name}: its picture has one colour only")
        if not picture["changes"] and function["drawsPixels"]:
            complaints.append(f"{name}: its picture shows nothing of what the call does")
        alike[picture["checksum"]].append(function)
    for same in alike.values():
        without = [full_name(function) for function in same if not function.get("looksLike")]
        if len(without) > 1:
            complaints.append(f"these look alike and give no reason: {', '.join(without)}")
    return complaints


# The call as code


def is_float(type_name):
    return re.search(r"float|double|_POINT3DFLOAT|_I3DVECTOR|_I3DMATRIX", type_name) is not None


def number_text(value, type_name):
    if value is None:
        return "0"
    if "float" in type_name or "double" in type_name:
        text = f"{value:.6g}"
        text += "" if re.search(r"[.e]", text) else ".0"
        return text + ("F" if "float" in type_name else "")
    whole = int(value)
    return f"0x{whole:06X}" if "q_ulong" in type_name and whole > 4096 else str(whole)


def words_text(words, type_name):
    if is_float(type_name):
        values = [struct.unpack("f", struct.pack("I", word))[0] for word in words]
        return ", ".join(number_text(value, "float") for value in values)
    if "q_ulong" in type_name:
        return ", ".join(f"0x{word:06X}" for word in words)
    return ", ".join(str(word - (1 << 32) if word >> 31 else word) for word in words)


def argument_of_call(argument, value, reads_beyond):
    """What stands in the call, and what has to be declared for it."""
    name, type_name = argument["name"], argument["type"]
    base = type_name.replace("const", "").replace("*", "").replace("&", "").strip()
    if value is None:
        return "nullptr", None
    if not isinstance(value, dict):
        text = number_text(value, type_name)
        if argument["kind"] in ("colour", "key") and "q_ulong" in type_name:
            text = f"0x{int(value):06X}"
        return text, None
    for record, struct_name in (("rect", "tagRECT"), ("point", "tagPOINT")):
        if record in value:
            pointer = "*" in type_name
            declared = f"{struct_name} {name} = {{{', '.join(str(int(part)) for part in value[record])}}};"
            return ("&" if pointer else "") + name, declared
    if "block" in value:
        return name, f"{base} *{name}; // {unit_text(argument) or 'made once'}"
    if argument["kind"] == "text":
        return name, f'char {name}[] = "{value["text"]}";'
    if "words" in value:
        count = len(value["words"])
        if "_" in base and count <= 4:
            return ("" if "&" in type_name else "&") + name, f"{base} {name} = {{{words_text(value['words'], base)}}};"
        if base in ("int", "float", "q_ulong") and count == 1:
            return "&" + name, f"{base} {name} = {words_text(value['words'], base)};"
        return name, f"{base} {name}[] = {{{words_text(value['words'], base)}}};"
    if argument["kind"] == "host record":
        return name, f"{base} *{name};"
    return memory_of_call(argument, value, base, reads_beyond and argument["kind"] == "source")


SIZES_OF_TYPES = {"q_ulong": 4, "int": 4, "float": 4, "short": 2, "unsigned char": 1}


def memory_of_call(argument, value, base, is_beyond):
    """As play.js declares it: a vector of its own, or a pointer to what only the host can know."""
    name, width, height, pitch = argument["name"], value["width"], value["height"], value["pitch"]
    what = f"{width} words"
    if height > 1:
        rows = f", {pitch} from row to row" if pitch != width else ""
        kind = "pixels" if value["bytes"] == 4 else "elements"
        what = f"{width} x {height} {kind}{rows}{', and a row beyond' if is_beyond else ''}"
    if SIZES_OF_TYPES.get(base) != value["bytes"] or pitch < width:
        return name, f"{base} *{name}; // {what}"
    count = f"{pitch} * {height + is_beyond}" if height > 1 else width
    return f"{name}.data()", f"std::vector<{base}> {name}({count}); // {what}"


def unit_text(argument):
    return argument.get("unit", "")


def call_of(function, picture):
    lines, passed = [], []
    for argument, value in zip(function["arguments"], picture["values"]):
        text, declared = argument_of_call(argument, value, function["lookup"] == "filtered")
        passed.append(text)
        if declared:
            lines.append(declared)
    result = function["result"]
    begin = "" if result == "void" else f"{result}{'' if result.endswith('*') else ' '}result = "
    call = f"{begin}{function['name']}("
    indent = " " * 4
    wrapped, line = [], call
    for i, text in enumerate(passed):
        piece = text + (", " if i + 1 < len(passed) else "")
        if len(line) + len(piece.rstrip()) > 76:
            wrapped.append(line.rstrip())
            line = indent
        line += piece
    wrapped.append(line + ");")
    return "\n".join(lines + wrapped)


# Tables


def limit_text(value, low):
    if value is None:
        return "−∞" if low else "∞"
    return {-2147483648: "−2³¹", 2147483647: "2³¹ − 1", 4294967295: "2³² − 1"}.get(value, f"{value:g}".replace("-", "−"))


def range_text(argument):
    contract = argument.get("contract")
    if not contract:
        return ""
    if argument.get("contractIsASample"):  # nothing ends there, but at a least size of 0 or more
        contract = [contract[0] if contract[0] >= 0 else None, None]
    is_any = contract in ([None, None], [-2147483648, 2147483647], [0, 4294967295])
    texts = ["any" if is_any else both_ends(contract)]
    for key, words in (("meant", "meant: {}"), ("idle", "{} writes nothing")):
        if key in argument and argument[key] != contract:
            texts.append(words.format(both_ends(argument[key])))
    return "; ".join(texts)


def both_ends(ends):
    return limit_text(ends[0], True) if ends[0] == ends[1] else f"{limit_text(ends[0], True)} to {limit_text(ends[1], False)}"


def shown_text(argument, index, picture):
    """What the argument is in the picture."""
    values = [picture[at][index] for at in ("begin", "end")]
    if any(isinstance(value, dict) or value is None for value in values):
        return ""
    if argument["kind"] in ("colour", "key"):
        return f"0x{int(values[0]):06X}"
    texts = [f"{value:.4g}".replace("-", "−") for value in values]
    return texts[0] if texts[0] == texts[1] else f"{texts[0]} … {texts[1]}"


def arguments_table(function, picture):
    return [
        {
            "of": "",
            "mayBeNull": False,
            **argument,
            "range": range_text(argument),
            "shown": shown_text(argument, index, picture),
            "unitText": unit_text(argument),
        }
        for index, argument in enumerate(function["arguments"])
    ]


# Texts


def sentences(text):
    flat = re.sub(r"\s+", " ", re.sub(r"\\(param \w+|return)", "", text))
    return re.split(r"(?<=[.;:])\s+(?=[A-Z`])", flat)


def facts_of(function, subsystem):
    """What becomes of the top byte, of sums and of overlap, and what is clipped and trusted."""
    facts = []
    for title, key in (("Top byte", "topByte"), ("Overflow", "sums"), ("Overlap", "overlap")):
        sentence = WORDS[key].get(function[key])
        if sentence:
            facts.append((title, [sentence]))
    said = [s for text in (function["text"], function["groupText"], subsystem["about"]) for s in sentences(text)
            if re.search(r"\bclip|trust", s, re.IGNORECASE)]
    clips = [a["name"] for a in function["arguments"] if a["kind"] == "clip" or a["name"].startswith("clip")]
    lines = [f"Drawing is kept inside `{'`, `'.join(clips)}`."] if clips else []
    if not clips and any(a["kind"] == "destination" for a in function["arguments"]):
        lines.append("There is no clip: places and sizes are trusted.")
    facts.append(("Clipped, trusted", lines + said))
    facts.append(("Broken where", [f"{rule[0].upper()}{rule[1:]}." for rule in function["rules"]]))
    if function["drawsRandomNumbers"]:
        facts.append(("Random", ["Draws from the platform's `rand`."]))
    return [fact for fact in facts if fact[1]]


class Texts:
    """Turns comments of headers into HTML, with links to the functions that they name."""

    def __init__(self, functions):
        self.pages = {}
        for function in functions:
            for name in [function["name"], *function["aliases"]]:
                self.pages.setdefault(name, page_of(function))

    def inline(self, text):
        def marked(match):
            shown = match.group(1) or match.group(0).lstrip("#")
            html = f"<code>{markupsafe.escape(shown)}</code>"
            page = self.pages.get(shown.removesuffix("()"))
            return f'<a href="{page}">{html}</a>' if page else html

        pieces, at = [], 0
        for match in re.finditer(r"`([^`]+)`|\b(\w+\(\))|#\w+", text):
            pieces += [str(markupsafe.escape(text[at : match.start()])), marked(match)]
            at = match.end()
        pieces.append(str(markupsafe.escape(text[at:])))
        html = "".join(pieces)
        return re.sub(r"\*\*(.+?)\*\*", r"<strong>\1</strong>", re.sub(r"(?<!\*)\*([\w-]+)\*(?!\*)", r"<em>\1</em>", html))

    def paragraphs(self, text):
        """Paragraphs, lists and tables, of which a comment has the simplest forms of Markdown."""
        html = []
        for block in re.split(r"\n\s*\n", text.strip()):
            # A list's points and a table's rows begin lines of their own, and what follows a point belongs to it.
            for kind, parts in itertools.groupby(re.split(r"\n(?=- |\d+\. |\|[^\n]*\|(?:\n|$)|\\(?:param|return)\b)", block), kind_of_part):
                html += self.of_kind(kind, [re.sub(r"\s+", " ", part).strip() for part in parts])
        return markupsafe.Markup("\n".join(html))

    def of_kind(self, kind, parts):
        if kind in ("ul", "ol"):
            points = "".join(f"<li>{self.inline(part.partition(' ')[2])}</li>" for part in parts)
            return [f"<{kind}>{points}</{kind}>"]
        if kind == "table":
            rows = [[self.inline(cell.strip()) for cell in part.strip("|").split("|")] for part in parts if part.strip("|- ")]
            head, *body = ["".join(f"<td>{cell}" for cell in row) for row in rows]
            lines = "".join(f"<tr>{row}</tr>" for row in body)
            return [f'<div class="wide"><table><thead><tr>{head.replace("<td>", "<th>")}</tr></thead><tbody>{lines}</tbody></table></div>']
        said = [re.sub(r"^\\param (\w+) ", r"`\1`: ", part) for part in parts if part]
        said = [re.sub(r"^\\return (\w)", lambda match: f"Returns {match.group(1)}", part) for part in said]
        return [f"<p>{self.inline(part)}</p>" for part in said]


def kind_of_part(part):
    if re.match(r"- ", part):
        return "ul"
    if re.match(r"\d+\. ", part):
        return "ol"
    return "table" if re.fullmatch(r"\|.*\|", part.strip()) else "p"


# Relatives


def parts_of(name):
    """The words that a name is made of: iBltFast32_KeySrc is i, Blt, Fast, 32, KeySrc."""
    name = name.replace("Keysrc", "KeySrc")
    return re.findall(r"AlphaFast|AddSome|AntiAliasing|Anti_Aliasing|KeySrc|VKD|[A-Z]?[a-z]+|[A-Z]+(?![a-z])|\d+", name)


def relation(function, other):
    """How another function differs, in words; the arguments say more than the names."""
    if function["name"] == other["name"]:
        return other.get("overload") or "the first of this name"
    kinds = [{a["kind"] for a in f["arguments"]} | {"clip" for a in f["arguments"] if a["name"].startswith("clip")}
             for f in (function, other)]
    mine, theirs = (collections.Counter(parts_of(f["name"])) for f in (function, other))
    words = ["clipped"] if "clip" in kinds[1] - kinds[0] else ["not clipped"] if "clip" in kinds[0] - kinds[1] else []
    for part in theirs - mine:
        word = WORDS["parts"].get(part)
        if word and word not in words and not (word == "clipped" and "clip" not in kinds[1]):
            words.append(word)
    without = [WORDS["parts"].get(part) for part in mine - theirs if not words]
    words += [f"not {word}" for word in without if word and word != "clipped"]
    return "the same, " + ", ".join(words) if words else ""


def relatives_of(function, functions):
    """What is alike by its name, what the text names, and what names it in its text."""
    mine = collections.Counter(parts_of(function["name"]))
    found = []
    for other in functions:
        if other is function:
            continue
        theirs = collections.Counter(parts_of(other["name"]))
        difference = sum(((mine - theirs) + (theirs - mine)).values())
        common = sum((mine & theirs).values())
        named = re.search(rf"\b{other['name']}\b", function["text"]) or re.search(rf"\b{function['name']}\b", other["text"])
        score = difference - common / 10 - (2 if named else 0) + (0 if other["subsystem"] == function["subsystem"] else 2)
        if named or (common >= 2 and difference <= 3 and difference < common + 2):
            found.append((score, other))
    found.sort(key=lambda pair: pair[0])
    return [{"function": other, "page": page_of(other), "relation": relation(function, other)}
            for _, other in found[:MOST_RELATIVES]]


# Search


def search_entry(function):
    kinds = {a["kind"] for a in function["arguments"]} | {function["sums"]}
    kinds |= {"clip" for a in function["arguments"] if a["name"].startswith("clip")}
    words = [WORDS["kinds"][kind] for kind in sorted(kinds) if kind in WORDS["kinds"]]
    named = [WORDS["parts"].get(part, "") for part in parts_of(function["name"])]
    words += [word for word in named if word != "clipped" or "clip" in kinds]
    return {
        "name": full_name(function),
        "page": page_of(function),
        "picture": function["picture"]["file"],
        "sentence": function["sentence"],
        "draws": function["drawsPixels"],
        "words": " ".join([function["group"], WORDS["subsystems"][function["subsystem"]], *function["aliases"], *words]).lower(),
        "text": re.sub(r"[\s`\\]+", " ", function["text"]).lower(),
        "group": re.sub(r"[\s`\\]+", " ", function["groupText"]).lower(),
    }


# The playground


def plain_name(function):
    """The name under which modules for other languages have a function."""
    return re.sub(r"\W", "_", "_".join(filter(None, [function["name"], function.get("overload")])))


def is_played(function):
    """The module has neither letters nor files."""
    return function["name"] not in ("iTextOut", "LoadBitmap24")


def played_row(function, picture):
    """What the playground has to know of a row besides what the module says."""
    said = ("name", "type", "kind", "unit", "of")
    row = {
        "name": function["name"],
        "fullName": full_name(function),
        "plainName": plain_name(function),
        "sentence": function["sentence"],
        "result": function["result"],
        "readsBeyond": function["lookup"] == "filtered",
        "moves": picture["frames"] > 1,
        "isLoop": picture["isLoop"],
        "arguments": [{"unit": "", "of": "", **{key: a[key] for key in said if key in a}} for a in function["arguments"]],
    }
    return markupsafe.Markup(json.dumps(row, separators=(",", ":")).replace("<", "\\u003c"))


def credits_of_photographs():
    """Author and licence of each photograph, as the table beside the originals has them."""
    table = re.findall(r"^\| `(\w+)\.jpg` +\| ([^|]+?) +\| ([^|]+?) +\|", PHOTOGRAPHS.read_text(encoding="utf-8"), re.MULTILINE)
    return {name: f"{author}, {licence}, scaled down" for name, licence, author in table}


def write_playground(module, directory):
    """The module and the photographs as scripts: a page of the file system may load nothing else."""
    packed = base64.b64encode(gzip.compress(module.read_bytes(), 9, mtime=0)).decode()
    (directory / "playground-module.js").write_text(f'const playgroundModule = "{packed}";\n', encoding="utf-8")
    credits = credits_of_photographs()
    photographs = {
        file.stem: {"credit": credits[file.stem],
                    "data": f"data:image/webp;base64,{base64.b64encode(file.read_bytes()).decode()}"}
        for file in sorted((HERE / "photographs").glob("*.webp"))
    }
    (directory / "playground-photographs.js").write_text(
        f"const playgroundPhotographs = {json.dumps(photographs, indent=0)};\n", encoding="utf-8")
    shutil.copyfile(HERE / "templates" / "play.js", directory / "play.js")


# Pages


def shown_first(functions, count=4):
    """Some of a subsystem's functions, from its beginning to its end, that draw if there are enough."""
    drawing = [function for function in functions if function["drawsPixels"] and function["picture"]["changes"]]
    chosen = drawing if len(drawing) >= count else functions
    return [chosen[(2 * i + 1) * len(chosen) // (2 * count)] for i in range(count)]


def write_pages(catalogue, pictures, directory, module=None):
    pictures = {" ".join(filter(None, [p["name"], p["overload"]])): p for p in pictures}
    functions = []
    for subsystem in catalogue["subsystems"]:
        for function in subsystem["functions"]:
            function["subsystem"] = subsystem["name"]
            function.setdefault("overload", "")
            function.setdefault("looksLike", "")
            functions.append(function)
    complaints = complaints_about(functions, pictures)
    if complaints:
        raise Refusal("\n".join(complaints))
    environment = jinja2.Environment(
        loader=jinja2.FileSystemLoader(HERE / "templates"), autoescape=True, trim_blocks=True, lstrip_blocks=True,
        undefined=jinja2.StrictUndefined)
    texts = Texts(functions)
    environment.filters.update(paragraphs=texts.paragraphs, inline=lambda text: markupsafe.Markup(texts.inline(text)))
    environment.globals.update(shown_first=shown_first, title_of=lambda name: WORDS["subsystems"][name], full_name=full_name, page_of=page_of,
                               subsystems=catalogue["subsystems"], count=len(functions))

    def write(page, template, **values):
        html = environment.get_template(template).render(page=page, **values)
        (directory / page).write_text(html, encoding="utf-8")

    for function in functions:
        function["picture"] = pictures[full_name(function)]
    for subsystem in catalogue["subsystems"]:
        groups = []
        for function in subsystem["functions"]:
            if not groups or groups[-1]["name"] != function["group"]:
                groups.append({"name": function["group"], "text": function["groupText"], "functions": []})
            groups[-1]["functions"].append(function)
            write(page_of(function), "function.html", function=function, subsystem=subsystem,
                  picture=function["picture"], call=call_of(function, function["picture"]),
                  arguments=arguments_table(function, function["picture"]), facts=facts_of(function, subsystem),
                  relatives=relatives_of(function, functions),
                  play=module and is_played(function) and played_row(function, function["picture"]))
        write(f"subsystem-{subsystem['name']}.html", "subsystem.html", subsystem=subsystem, groups=groups)
    write("index.html", "index.html", tries=WORDS["tries"], has_reference=(directory / "reference" / "files.html").exists())
    index = {"functions": [search_entry(function) for function in functions], "intents": WORDS["intents"]}
    (directory / "index.js").write_text(f"const gallery = {json.dumps(index, separators=(',', ':'))};\n", encoding="utf-8")
    for name in ("style.css", "search.js"):
        shutil.copyfile(HERE / "templates" / name, directory / name)
    if module:
        write_playground(module, directory)
    return len(functions)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--playground", type=pathlib.Path, metavar="MODULE.wasm")
    parser.add_argument("catalogue", type=pathlib.Path)
    parser.add_argument("pictures", type=pathlib.Path)
    parser.add_argument("directory", type=pathlib.Path)
    options = parser.parse_args()
    catalogue, pictures = (json.loads(file.read_text(encoding="utf-8")) for file in (options.catalogue, options.pictures))
    try:
        print(f"{write_pages(catalogue, pictures, options.directory, options.playground)} functions")
    except Refusal as refusal:
        print(refusal, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())

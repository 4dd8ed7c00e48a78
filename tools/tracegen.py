#!/usr/bin/env python3
"""Makes the trace headers and trace format files from the message catalogues.

Beside each source file that traces, say driver/Queue.cpp, stands its catalogue driver/Queue.trace:

    # comment
    guid 3f0c8f52-6a1d-4c57-9d0e-51b7a2c4e6d8
    10 information general OnCreate CreateEntered(count:u32) "entry, {count} queues"

that is: number, level, flag, function that traces, message name with typed arguments, text. From
all catalogues together come <header dir>/driver/Queue.trace.h for each source file, one
<tmf dir>/<message guid>.tmf each, and the control file <tmf dir>/<control guid>.tmc. Mistakes are
reported as "file:line: what" and make the exit code 1.
"""

import argparse
import dataclasses
import pathlib
import re
import sys

CONTROL_GUID = "f4acaab5-c82f-4f79-bf37-c04f93c01389"
PROVIDER = r"Tavrel\Sensor\Stelvane"
COMPONENT = "Stelvane"

LEVELS = ("critical", "error", "warning", "information", "verbose")
# In the order of their bits; None is a bit that no message has.
FLAGS = ("general", None, "usb")


@dataclasses.dataclass(frozen=True)
class ArgumentType:
    wrapper: str  # class in driver/Trace.h
    item: str  # item type in the format file
    insert: str  # insert in the text, with {} for the insert number


TYPES = {
    "hr": ArgumentType("Hr", "ItemHRESULT", "%{}!s!"),
    "u32": ArgumentType("U32", "ItemULong", "%{}!u!"),
    "i32": ArgumentType("I32", "ItemLong", "%{}!d!"),
    "hex": ArgumentType("Hex", "ItemULong", "0x%{}!08x!"),
    "u64": ArgumentType("U64", "ItemULongLong", "%{}!I64u!"),
    "str": ArgumentType("Str", "ItemString", "%{}!s!"),
    "ptr": ArgumentType("Ptr", "ItemPtr", "%{}!p!"),
}

FIRST_NUMBER = 10
LAST_NUMBER = 0xFFFF
FIRST_INSERT = 10

GUID_LINE = re.compile(r"guid ([0-9a-f]{8}(?:-[0-9a-f]{4}){3}-[0-9a-f]{12})")
MESSAGE_LINE = re.compile(
    r"(?P<number>\d+)\s+(?P<level>\w+)\s+(?P<flag>\w+)\s+(?P<function>~?[A-Za-z_]\w*)\s+"
    r'(?P<name>[A-Z]\w*)\((?P<arguments>[^()]*)\)\s+"(?P<text>.*)"')
ARGUMENT = re.compile(r"([a-z]\w*):(\w+)")
INSERT = re.compile(r"\{(\w*)\}")
COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)


class Mistakes(Exception):
    """The catalogues are wrong; str() gives one line a mistake."""


@dataclasses.dataclass
class Message:
    line: int
    number: int
    level: str
    flag: str
    function: str
    name: str
    arguments: list  # of (name, type)
    text: str

    def types(self):
        return " ".join(kind for _, kind in self.arguments)


@dataclasses.dataclass
class Catalogue:
    path: pathlib.Path
    guid: str = ""
    guid_line: int = 1
    messages: list = dataclasses.field(default_factory=list)

    @property
    def source(self):
        return self.path.with_suffix(".cpp")


class Reader:
    """Reads catalogues and gathers every mistake in them."""

    def __init__(self):
        self.mistakes = []

    def read(self, paths):
        catalogues = [self.read_file(pathlib.Path(path)) for path in paths]
        given = {}
        for catalogue in catalogues:
            other = given.setdefault(catalogue.guid, catalogue)
            if catalogue.guid and other is not catalogue:
                self.mistake(catalogue, catalogue.guid_line,
                             f"guid {catalogue.guid} is that of {other.path}")
        if self.mistakes:
            raise Mistakes("\n".join(self.mistakes))
        return catalogues

    def mistake(self, catalogue, line, what):
        self.mistakes.append(f"{catalogue.path}:{line}: {what}")

    def read_file(self, path):
        catalogue = Catalogue(path)
        for line, content in enumerate(path.read_text(encoding="utf-8").splitlines(), start=1):
            content = content.strip()
            if content and not content.startswith("#"):
                self.read_line(catalogue, line, content)
        if not catalogue.guid:
            self.mistake(catalogue, 1, "no guid")
        self.check_use(catalogue)
        return catalogue

    def read_line(self, catalogue, line, content):
        if content.startswith("guid"):
            match = GUID_LINE.fullmatch(content)
            if not match:
                self.mistake(catalogue, line, "a guid is lower-case hexadecimal with hyphens")
            elif catalogue.guid:
                self.mistake(catalogue, line, "second guid")
            else:
                catalogue.guid, catalogue.guid_line = match[1], line
            return
        match = MESSAGE_LINE.fullmatch(content)
        if not match:
            self.mistake(catalogue, line, "not of the form: number level flag function "
                         'Name(argument:type, ...) "text"')
            return
        arguments = self.read_arguments(catalogue, line, match["arguments"])
        message = Message(line, int(match["number"]), match["level"], match["flag"],
                          match["function"].lstrip("~"), match["name"], arguments, match["text"])
        self.check_message(catalogue, message)
        catalogue.messages.append(message)

    def read_arguments(self, catalogue, line, text):
        arguments = []
        for part in filter(None, (part.strip() for part in text.split(","))):
            match = ARGUMENT.fullmatch(part)
            if not match:
                self.mistake(catalogue, line, f"argument '{part}' is not of the form name:type")
                continue
            if match[2] not in TYPES:
                self.mistake(catalogue, line, f"unknown type {match[2]}; known: {' '.join(TYPES)}")
                continue
            if match[1] in (name for name, _ in arguments):
                self.mistake(catalogue, line, f"two arguments are named {match[1]}")
            arguments.append((match[1], match[2]))
        return arguments

    def check_message(self, catalogue, message):
        def mistake(what):
            self.mistake(catalogue, message.line, what)

        if message.number < FIRST_NUMBER:
            mistake(f"number {message.number} is reserved; the first is {FIRST_NUMBER}")
        if message.number > LAST_NUMBER:
            mistake(f"number {message.number} has more than 16 bits")
        for other in catalogue.messages:
            if other.number == message.number:
                mistake(f"number {message.number} is that of line {other.line}")
            if other.name == message.name:
                mistake(f"name {message.name} is that of line {other.line}")
        if message.level not in LEVELS:
            mistake(f"unknown level {message.level}; known: {' '.join(LEVELS)}")
        if message.flag not in filter(None, FLAGS):
            mistake(f"unknown flag {message.flag}; known: {' '.join(filter(None, FLAGS))}")
        self.check_text(message, mistake)

    @staticmethod
    def check_text(message, mistake):
        plain = INSERT.sub("", message.text)
        for character in sorted(set(plain)):
            if character in '"%\\{}' or not " " <= character <= "~":
                mistake(f"the text must not contain {character!r}")
        inserts = set(INSERT.findall(message.text))
        arguments = {name for name, _ in message.arguments}
        for name in sorted(inserts - arguments):
            mistake(f"insert {{{name}}} has no argument")
        for name in sorted(arguments - inserts):
            mistake(f"argument {name} is not in the text")

    def check_use(self, catalogue):
        if not catalogue.source.exists():
            self.mistake(catalogue, 1, f"there is no {catalogue.source}")
            return
        code = COMMENT.sub(" ", catalogue.source.read_text(encoding="utf-8"))
        words = set(re.findall(r"\w+", code))
        for message in catalogue.messages:
            for kind, word in (("message", message.name), ("function", message.function)):
                if word not in words:
                    self.mistake(catalogue, message.line,
                                 f"{kind} {word} does not occur in {catalogue.source.name}")


def guid_initialiser(guid):
    digits = guid.replace("-", "")
    tail = ", ".join(f"0x{digits[at:at + 2]}" for at in range(16, 32, 2))
    return f"{{0x{digits[:8]}, 0x{digits[8:12]}, 0x{digits[12:16]}, {{{tail}}}}}"


def header_text(catalogue):
    lines = [
        f"// Made from {catalogue.path.name}.",
        "#pragma once",
        "",
        '#include "driver/Trace.h"',
        "",
        "namespace stelvane::trace {",
        "namespace {",
        "",
        f"inline constexpr GUID kMessageGuid = {guid_initialiser(catalogue.guid)};",
    ]
    for message in catalogue.messages:
        parameters = ", ".join(f"{TYPES[kind].wrapper} {name}" for name, kind in message.arguments)
        items = "".join(f" {name}.Data(), {name}.Size()," for name, _ in message.arguments)
        lines += [
            "",
            f"struct {message.name} {{",
            f"  static constexpr Level kLevel = Level::k{message.level.capitalize()};",
            f"  static constexpr Flag kFlag = Flag::k{message.flag.capitalize()};",
            f"  static void Emit({parameters}) noexcept {{",
            f"    TraceMessage(LoggerHandle(), kMessageFlags, &kMessageGuid, {message.number},"
            f"{items} nullptr);",
            "  }",
            "};",
        ]
    lines += ["", "}  // namespace", "}  // namespace stelvane::trace"]
    return "\n".join(lines) + "\n"


def tmf_text(catalogue):
    source = catalogue.source.name
    tag = re.sub(r"\W", "_", source)
    lines = [
        f"// PDB:  {COMPONENT}.pdb",
        f"{catalogue.guid} {COMPONENT} // SRC={source} MJ= MN=",
    ]
    for message in catalogue.messages:
        inserts = {name: TYPES[kind].insert.format(FIRST_INSERT + index)
                   for index, (name, kind) in enumerate(message.arguments)}
        text = INSERT.sub(lambda match: inserts[match[1]], message.text)
        lines += [
            f'#typev {tag}{message.line} {message.number} "%0%!FUNC! {text}" //   '
            f"LEVEL=TRACE_LEVEL_{message.level.upper()} FLAGS=TRACE_{message.flag.upper()} "
            f"FUNC={message.function}",
            "{",
        ]
        lines += [f"{name}, {TYPES[kind].item} -- {FIRST_INSERT + index}"
                  for index, (name, kind) in enumerate(message.arguments)]
        lines.append("}")
    return "\n".join(lines) + "\n"


def tmc_text():
    names = [f"TRACE_{name.upper()}" if name else f"TRACE_UNUSED_{1 << bit:X}"
             for bit, name in enumerate(FLAGS)]
    return "\n".join([f"{CONTROL_GUID} {PROVIDER}", *names]) + "\n"


def generate(catalogues, root, header_dir, tmf_dir):
    """Writes what changed, so that nothing is compiled again for nothing, and removes the format
    files of catalogues that are gone."""
    files = {tmf_dir / f"{CONTROL_GUID}.tmc": tmc_text()}
    for catalogue in catalogues:
        place = catalogue.path.resolve().relative_to(root.resolve())
        files[header_dir / place.parent / f"{place.name}.h"] = header_text(catalogue)
        files[tmf_dir / f"{catalogue.guid}.tmf"] = tmf_text(catalogue)
    for path, text in files.items():
        path.parent.mkdir(parents=True, exist_ok=True)
        if not path.exists() or path.read_bytes() != text.encode("ascii"):
            path.write_bytes(text.encode("ascii"))
    for path in tmf_dir.glob("*.tmf"):
        if path not in files:
            path.unlink()


def given_numbers(path):
    """The numbers given out: (guid, number) -> argument types."""
    numbers = {}
    for line in path.read_text(encoding="ascii").splitlines():
        if line and not line.startswith("#"):
            guid, number, *types = line.split()
            numbers[guid, int(number)] = " ".join(types)
    return numbers


def compare_numbers(catalogues, path):
    """Returns the mistakes in numbers given out earlier, and the entries that are new."""
    now = {(catalogue.guid, message.number): message.types()
           for catalogue in catalogues for message in catalogue.messages}
    given = given_numbers(path)
    mistakes = []
    for (guid, number), types in given.items():
        entry = f"{path}: {guid} {number}"
        if (guid, number) not in now:
            mistakes.append(f"{entry} was given out and is gone from the catalogues")
        elif now[guid, number] != types:
            mistakes.append(f"{entry} had the arguments ({types}), now "
                            f"({now[guid, number]}); take a new number")
    return mistakes, {key: types for key, types in now.items() if key not in given}


def check_numbers(catalogues, path):
    mistakes, new = compare_numbers(catalogues, path)
    mistakes += [f"{path}: {guid} {number} is not listed; run tracegen.py --update-numbers"
                 for guid, number in new]
    if mistakes:
        raise Mistakes("\n".join(mistakes))


def update_numbers(catalogues, path):
    mistakes, new = compare_numbers(catalogues, path)
    if mistakes:
        raise Mistakes("\n".join(mistakes))
    with path.open("a", encoding="ascii", newline="\n") as file:
        for (guid, number), types in new.items():
            file.write(f"{guid} {number} {types}".rstrip() + "\n")


def check_absent(catalogues, program):
    """A text that says something, so has a blank in it, must be in the format files only."""
    content = program.read_bytes()
    mistakes = []
    for catalogue in catalogues:
        for message in catalogue.messages:
            for part in INSERT.split(message.text)[::2]:
                part = part.strip(" ,:;.()")
                if " " in part and any(part.encode(coding) in content
                                       for coding in ("ascii", "utf-16-le")):
                    mistakes.append(f"{catalogue.path}:{message.line}: the text '{part}' is in "
                                    f"{program.name}")
    if mistakes:
        raise Mistakes("\n".join(mistakes))


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--root", type=pathlib.Path, default=pathlib.Path.cwd(),
                        help="folder that the places of the headers are relative to")
    parser.add_argument("--header-dir", type=pathlib.Path)
    parser.add_argument("--tmf-dir", type=pathlib.Path)
    parser.add_argument("--check-numbers", type=pathlib.Path, metavar="LIST",
                        help="fail if a listed number vanished or changed, or one is not listed")
    parser.add_argument("--update-numbers", type=pathlib.Path, metavar="LIST",
                        help="append the numbers that are new")
    parser.add_argument("--check-absent", type=pathlib.Path, metavar="PROGRAM",
                        help="fail if the program contains a message text")
    parser.add_argument("catalogues", nargs="*", metavar="CATALOGUE")
    options = parser.parse_args(arguments)
    if (options.header_dir is None) != (options.tmf_dir is None):
        parser.error("--header-dir and --tmf-dir go together")
    try:
        catalogues = Reader().read(options.catalogues)
        if options.header_dir:
            generate(catalogues, options.root, options.header_dir, options.tmf_dir)
        if options.check_numbers:
            check_numbers(catalogues, options.check_numbers)
        if options.update_numbers:
            update_numbers(catalogues, options.update_numbers)
        if options.check_absent:
            check_absent(catalogues, options.check_absent)
    except Mistakes as mistakes:
        print(mistakes, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

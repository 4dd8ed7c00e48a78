#!/usr/bin/env python3
"""Tests of tracegen.py: what it makes, and that each mistake is refused at its line."""

import contextlib
import io
import pathlib
import re
import tempfile
import unittest

import tracegen

REPOSITORY = pathlib.Path(__file__).resolve().parent.parent
GUID = "3f0c8f52-6a1d-4c57-9d0e-51b7a2c4e6d8"
OTHER_GUID = "3f0c8f52-6a1d-4c57-9d0e-51b7a2c4e6d9"
ENTERED = '10 information general Create Entered() "entry"'
FAILED = '11 error usb Create Failed(result:hr, count:u32) "{count} left: {result}"'


class Workplace(unittest.TestCase):
    """A folder with catalogues and sources; run() is the command line."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.numbers = self.root / "numbers.txt"
        self.catalogues = []

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        return path

    def add(self, *messages, guid=GUID, name="driver/Queue", source="Create Entered Failed"):
        """Adds a catalogue; its first message stands in line 3."""
        if source is not None:
            self.write(f"{name}.cpp", source)
        lines = ["# comment", f"guid {guid}", *messages]
        path = self.write(f"{name}.trace", "\n".join(lines) + "\n")
        if path not in self.catalogues:
            self.catalogues.append(path)
        return path

    def run_tool(self, *options):
        """Returns the exit code and the complaints, without the folder in their paths."""
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors):
            code = tracegen.main([*map(str, options), *map(str, self.catalogues)])
        return code, errors.getvalue().replace(f"{self.root}/", "").splitlines()

    def generate(self):
        return self.run_tool("--root", self.root, "--header-dir", self.root / "trace",
                             "--tmf-dir", self.root / "tmf")

    def made(self, place):
        return (self.root / place).read_bytes().decode("ascii")


class MadeFiles(Workplace):
    def test_format_file_text(self):
        self.add(ENTERED, FAILED)
        self.assertEqual(self.generate(), (0, []))
        self.assertEqual(self.made(f"tmf/{GUID}.tmf"), (
            "// PDB:  Stelvane.pdb\n"
            f"{GUID} Stelvane // SRC=Queue.cpp MJ= MN=\n"
            '#typev Queue_cpp3 10 "%0%!FUNC! entry" //   '
            "LEVEL=TRACE_LEVEL_INFORMATION FLAGS=TRACE_GENERAL FUNC=Create\n"
            "{\n"
            "}\n"
            '#typev Queue_cpp4 11 "%0%!FUNC! %11!u! left: %10!s!" //   '
            "LEVEL=TRACE_LEVEL_ERROR FLAGS=TRACE_USB FUNC=Create\n"
            "{\n"
            "result, ItemHRESULT -- 10\n"
            "count, ItemULong -- 11\n"
            "}\n"))

    def test_every_type_has_its_item_and_insert(self):
        self.add("10 verbose general Create Entered(a:hr, b:u32, c:i32, d:hex, e:u64, f:str, "
                 'g:ptr) "{a} {b} {c} {d} {e} {f} {g}"')
        self.assertEqual(self.generate(), (0, []))
        text = self.made(f"tmf/{GUID}.tmf")
        self.assertIn('"%0%!FUNC! %10!s! %11!u! %12!d! 0x%13!08x! %14!I64u! %15!s! %16!p!"', text)
        self.assertEqual(re.findall(r"^(\w), (\w+) -- (\d+)$", text, re.MULTILINE), [
            ("a", "ItemHRESULT", "10"), ("b", "ItemULong", "11"), ("c", "ItemLong", "12"),
            ("d", "ItemULong", "13"), ("e", "ItemULongLong", "14"), ("f", "ItemString", "15"),
            ("g", "ItemPtr", "16")])

    def test_format_file_follows_the_grammar_of_its_readers(self):
        self.add(ENTERED, FAILED)
        self.generate()
        grammar = (
            r"// .*",
            r"[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12} \S+ // SRC=\S+ MJ= MN=",
            r'#typev (\w+?)(\d+) (\d+) "%0(.*)" //   LEVEL=(\w+) FLAGS=(\w+) FUNC=(\w+)',
            r"[{}]",
            r"(.*), (Item\w+(\(.*\))?) -- (\d+)")
        for line in self.made(f"tmf/{GUID}.tmf").splitlines():
            self.assertTrue(any(re.fullmatch(form, line) for form in grammar), line)

    def test_header_has_numbers_and_types_but_no_text(self):
        self.add(ENTERED, FAILED)
        self.generate()
        header = self.made("trace/driver/Queue.trace.h")
        self.assertIn("{0x3f0c8f52, 0x6a1d, 0x4c57, "
                      "{0x9d, 0x0e, 0x51, 0xb7, 0xa2, 0xc4, 0xe6, 0xd8}}", header)
        self.assertIn("static void Emit(Hr result, U32 count) noexcept", header)
        self.assertIn("&kMessageGuid, 11, result.Data(), result.Size(), count.Data(), "
                      "count.Size(), nullptr);", header)
        self.assertIn("Level::kError", header)
        self.assertIn("Flag::kUsb", header)
        self.assertNotIn("left", header)

    def test_destructor_is_named_without_its_tilde(self):
        self.add('10 verbose general ~Create Entered() "gone"')
        self.assertEqual(self.generate(), (0, []))
        self.assertTrue(self.made(f"tmf/{GUID}.tmf").splitlines()[2].endswith("FUNC=Create"))

    def test_control_file_names_each_bit_in_order(self):
        self.add(ENTERED)
        self.generate()
        self.assertEqual(self.made("tmf/f4acaab5-c82f-4f79-bf37-c04f93c01389.tmc"),
                         "f4acaab5-c82f-4f79-bf37-c04f93c01389 Tavrel\\Sensor\\Stelvane\n"
                         "TRACE_GENERAL\nTRACE_UNUSED_2\nTRACE_USB\n")

    def test_unchanged_files_keep_their_time(self):
        self.add(ENTERED)
        self.generate()
        header = self.root / "trace/driver/Queue.trace.h"
        before = header.stat().st_mtime_ns
        self.generate()
        self.assertEqual(header.stat().st_mtime_ns, before)

    def test_format_file_of_a_changed_guid_goes(self):
        self.add(ENTERED)
        self.generate()
        self.add(ENTERED, guid=OTHER_GUID)
        self.generate()
        self.assertEqual([path.name for path in (self.root / "tmf").glob("*.tmf")],
                         [f"{OTHER_GUID}.tmf"])

    def test_mistakes_make_no_files(self):
        self.add(ENTERED, ENTERED)
        self.assertEqual(self.generate()[0], 1)
        self.assertFalse((self.root / "tmf").exists())

    def test_constants_agree_with_the_runtime(self):
        source = (REPOSITORY / "driver/Trace.cpp").read_text(encoding="ascii")
        control = re.search(r"kControlGuid = (\{.*?\}\})", source, re.DOTALL)[1]
        self.assertEqual(re.findall("0x[0-9a-f]+", control), re.findall(
            "0x[0-9a-f]+", tracegen.guid_initialiser(tracegen.CONTROL_GUID)))
        header = (REPOSITORY / "driver/Trace.h").read_text(encoding="ascii")
        for number, level in enumerate(tracegen.LEVELS, start=1):
            self.assertIn(f"k{level.capitalize()} = {number},", header)
        for bit, flag in enumerate(tracegen.FLAGS):
            if flag:
                self.assertIn(f"k{flag.capitalize()} = 0x{1 << bit:x},", header)


class Refusals(Workplace):
    def refused(self, *complaints):
        self.assertEqual(self.generate(), (1, [f"driver/Queue.trace:{what}" for what in complaints]))

    def test_doubled_number(self):
        self.add(ENTERED, FAILED.replace("11", "10"))
        self.refused("4: number 10 is that of line 3")

    def test_reserved_number(self):
        self.add(ENTERED.replace("10", "9"))
        self.refused("3: number 9 is reserved; the first is 10")

    def test_number_of_17_bits(self):
        self.add(ENTERED.replace("10", "65536"))
        self.refused("3: number 65536 has more than 16 bits")

    def test_missing_number(self):
        self.add(ENTERED.removeprefix("10 "))
        self.refused('3: not of the form: number level flag function Name(argument:type, ...) '
                     '"text"')

    def test_doubled_name(self):
        self.add(ENTERED, ENTERED.replace("10", "11"))
        self.refused("4: name Entered is that of line 3")

    def test_message_that_no_source_line_uses(self):
        self.add(ENTERED, FAILED, source="Create EnteredTwice Failed")
        self.refused("3: message Entered does not occur in Queue.cpp")

    def test_message_that_only_a_comment_names(self):
        self.add(ENTERED, source="Create // Entered\n/* Entered\nEntered */")
        self.refused("3: message Entered does not occur in Queue.cpp")

    def test_function_that_is_not_in_the_source(self):
        self.add(ENTERED, source="Recreate Entered")
        self.refused("3: function Create does not occur in Queue.cpp")

    def test_catalogue_without_source(self):
        self.add(ENTERED, source=None)
        self.assertEqual(self.generate(),
                         (1, ["driver/Queue.trace:1: there is no driver/Queue.cpp"]))

    def test_insert_without_argument(self):
        self.add('10 error general Create Entered() "{result}"')
        self.refused("3: insert {result} has no argument")

    def test_empty_insert(self):
        self.add('10 error general Create Entered() "{}"')
        self.refused("3: insert {} has no argument")

    def test_argument_without_insert(self):
        self.add('10 error general Create Entered(result:hr) "failed"')
        self.refused("3: argument result is not in the text")

    def test_doubled_argument(self):
        self.add('10 error general Create Entered(a:hr, a:u32) "{a}"')
        self.refused("3: two arguments are named a")

    def test_argument_without_type(self):
        self.add('10 error general Create Entered(a) "text"')
        self.refused("3: argument 'a' is not of the form name:type")

    def test_unknown_type(self):
        self.add('10 error general Create Entered(a:wstr) "text"')
        self.refused("3: unknown type wstr; known: hr u32 i32 hex u64 str ptr")

    def test_unknown_level(self):
        self.add(ENTERED.replace("information", "info"))
        self.refused("3: unknown level info; known: critical error warning information verbose")

    def test_unknown_flag(self):
        self.add(ENTERED.replace("general", "modem"))
        self.refused("3: unknown flag modem; known: general usb")

    def test_unused_flag_bit_has_no_name(self):
        self.add(ENTERED.replace("general", "None"))
        self.refused("3: unknown flag None; known: general usb")

    def test_characters_that_a_format_file_cannot_hold(self):
        for character in ('"', "%", "\\", "{", "}", "\t", "\u00e9"):
            with self.subTest(character=character):
                self.add(ENTERED.replace("entry", f"a {character} b"))
                self.refused(f"3: the text must not contain {character!r}")

    def test_qualified_function(self):
        self.add(ENTERED.replace("Create", "Queue::Create"))
        self.assertEqual(self.generate()[0], 1)

    def test_missing_guid(self):
        self.add(ENTERED)
        self.write("driver/Queue.trace", ENTERED)
        self.refused("1: no guid")

    def test_second_guid(self):
        self.add(f"guid {OTHER_GUID}", ENTERED)
        self.refused("3: second guid")

    def test_upper_case_guid(self):
        self.add(ENTERED, guid=GUID.upper())
        self.refused("2: a guid is lower-case hexadecimal with hyphens", "1: no guid")

    def test_guid_of_another_catalogue(self):
        self.add(ENTERED, name="at/Engine")
        self.add(ENTERED)
        self.refused(f"2: guid {GUID} is that of {self.root}/at/Engine.trace".replace(
            f"{self.root}/", ""))

    def test_all_mistakes_are_told_at_once(self):
        self.add(ENTERED.replace("10", "1"), FAILED.replace("usb", "ubs"))
        self.refused("3: number 1 is reserved; the first is 10",
                     "4: unknown flag ubs; known: general usb")


class GivenNumbers(Workplace):
    def setUp(self):
        super().setUp()
        self.numbers.write_text("# given out\n", encoding="ascii")
        self.add(ENTERED, FAILED)

    def check(self):
        return self.run_tool("--check-numbers", self.numbers)

    def update(self):
        return self.run_tool("--update-numbers", self.numbers)

    def test_update_appends_what_is_new(self):
        self.assertEqual(self.update(), (0, []))
        self.assertEqual(self.numbers.read_text(encoding="ascii"),
                         f"# given out\n{GUID} 10\n{GUID} 11 hr u32\n")
        self.assertEqual(self.check(), (0, []))

    def test_second_update_changes_nothing(self):
        self.update()
        before = self.numbers.read_bytes()
        self.update()
        self.assertEqual(self.numbers.read_bytes(), before)

    def test_unlisted_number(self):
        self.update()
        self.add(ENTERED, FAILED, '12 error usb Create Late() "late"', source="Create Entered "
                 "Failed Late")
        self.assertEqual(self.check(), (1, [
            f"numbers.txt: {GUID} 12 is not listed; run tracegen.py --update-numbers"]))

    def test_vanished_number(self):
        self.update()
        self.add(ENTERED)
        self.assertEqual(self.check(), (1, [
            f"numbers.txt: {GUID} 11 was given out and is gone from the catalogues"]))

    def test_vanished_catalogue(self):
        self.update()
        self.add(ENTERED, FAILED, guid=OTHER_GUID)
        code, complaints = self.check()
        self.assertEqual(code, 1)
        self.assertIn(f"numbers.txt: {GUID} 10 was given out and is gone from the catalogues",
                      complaints)

    def test_changed_arguments(self):
        self.update()
        self.add(ENTERED, FAILED.replace("u32", "i32"))
        self.assertEqual(self.check(), (1, [
            f"numbers.txt: {GUID} 11 had the arguments (hr u32), now (hr i32); "
            "take a new number"]))

    def test_update_refuses_a_changed_number(self):
        self.update()
        before = self.numbers.read_bytes()
        self.add(ENTERED.replace("()", "(a:u32)").replace("entry", "{a}"), FAILED)
        self.assertEqual(self.update()[0], 1)
        self.assertEqual(self.numbers.read_bytes(), before)

    def test_changed_text_is_allowed(self):
        self.update()
        self.add(ENTERED.replace("entry", "came in"), FAILED)
        self.assertEqual(self.check(), (0, []))


class Texts(Workplace):
    def check(self, content):
        program = self.root / "program.dll"
        program.write_bytes(content)
        return self.run_tool("--check-absent", program)

    def setUp(self):
        super().setUp()
        self.add('10 error usb Create Entered(a:hr, b:str) "no AT port: {a} at {b}"')

    def test_program_without_the_texts(self):
        self.assertEqual(self.check(b"MZ\0port\0no AT\0%s at %s"), (0, []))

    def test_program_with_a_text(self):
        self.assertEqual(self.check(b"MZ\0no AT port: %s"), (1, [
            "driver/Queue.trace:3: the text 'no AT port' is in program.dll"]))

    def test_program_with_a_wide_text(self):
        self.assertEqual(self.check("no AT port: %s".encode("utf-16-le"))[0], 1)


if __name__ == "__main__":
    unittest.main()

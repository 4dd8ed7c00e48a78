#!/usr/bin/env python3
"""Traces as a user records and reads them: trace_test.py WINE-RUN WORKBENCH TRACEDECODE DOCS.

The catalogue of faults in DOCS/debugging.md is made anew: each of its commands has to show the lines
that follow it, in their order.
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest

LINE = re.compile(r"^\d{4}-\d\d-\d\d (\d\d:\d\d:\d\d\.\d{3}) ([0-9a-f]{4})  (\w+) +\S+\.cpp .+$")


def wine(path):
    return "Z:" + os.path.realpath(path)


def run(program, *arguments):
    return subprocess.run([WINE_RUN, program, *arguments], capture_output=True, text=True,
                          timeout=120, stdin=subprocess.DEVNULL)


def read(*path, mode="r"):
    with open(os.path.join(*path), mode) as file:
        return file.read()


class TraceCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def demo(self, *arguments):
        finished = run(WORKBENCH, "demo", "--pace", "0", "--run-folder", wine(self.folder),
                       *arguments)
        self.assertEqual(finished.stderr, "")
        return finished.stdout

    def decode(self, *arguments, trace="trace.bin"):
        return run(TRACEDECODE, wine(os.path.join(self.folder, trace)), *arguments)


class RunFolder(TraceCase):
    def test_without_a_trace_has_the_dialogue_only(self):
        self.demo("--seconds", "3", "--trace", "error")
        self.demo("--seconds", "3")
        self.assertEqual(os.listdir(self.folder), ["at.txt"])
        self.assertIn("> ATE1\n", read(self.folder, "at.txt"))

    def test_keeps_the_whole_trace_of_a_quiet_run(self):
        text = self.demo("--seconds", "3", "--quiet", "--trace", "verbose")
        self.assertNotIn("  trace  ", text)
        kept = read(self.folder, "trace.txt")
        for level in ("critical", "error", "warning", "information", "verbose"):
            self.assertRegex(kept, rf"(?m)^ +\d+\.\d{{3}} [0-9a-f]{{4}}  {level} +Driver\.cpp ")
        self.assertIn("OnReleaseHardware: exit 0x00000000(S_OK)", kept)

    def test_has_only_what_the_level_asks_for(self):
        text = self.demo("--seconds", "3", "--trace", "2")
        levels = {line.split()[2] for line in text.splitlines() if "  trace  " in line}
        self.assertEqual(levels, {"critical", "error"})

    def test_that_cannot_be_made_is_named(self):
        with open(os.path.join(self.folder, "file"), "w", encoding="ascii"):
            pass
        place = wine(self.folder) + "/file/run"
        finished = run(WORKBENCH, "demo", "--run-folder", place)
        self.assertEqual((finished.returncode, finished.stdout), (2, ""))
        self.assertRegex(finished.stderr, r"^workbench: .*file/run: cannot be made: .+\n$")


class BadOption(TraceCase):
    def check(self, culprit, program, *arguments):
        with self.subTest(arguments=arguments):
            finished = run(program, *arguments)
            self.assertEqual((finished.returncode, finished.stdout), (2, ""))
            self.assertEqual(len(finished.stderr.splitlines()), 1, finished.stderr)
            self.assertIn(culprit, finished.stderr)

    def test_is_one_clear_line_and_exit_code_2(self):
        self.check("--trace takes", WORKBENCH, "demo", "--trace", "loud")
        self.check("--no-config", WORKBENCH, "demo", "--no-config", "--config", "x")
        self.check("--hand-over", WORKBENCH, "demo", "--hand-over", "--unplug", "1")
        self.check("no trace given", TRACEDECODE)
        self.check("--level takes", TRACEDECODE, "x", "--level", "6")
        self.check("--tmf needs", TRACEDECODE, "x", "--tmf")
        self.check("--fast", TRACEDECODE, "--fast")
        self.check("one trace", TRACEDECODE, "x", "y")
        self.check("missing.bin", TRACEDECODE, wine(self.folder) + "/missing.bin")


class Decoder(TraceCase):
    def test_says_the_same_as_the_workbench(self):
        self.demo("--seconds", "3", "--trace", "verbose")
        finished = self.decode()
        self.assertEqual((finished.returncode, finished.stderr), (0, ""))
        lines = finished.stdout.splitlines()
        for line in lines:
            self.assertRegex(line, LINE)
        shown = [line.split("  ", 1)[1] for line in lines]
        kept = [line.lstrip().split("  ", 1)[1]
                for line in read(self.folder, "trace.txt").splitlines()]
        self.assertGreater(len(kept), 100)
        self.assertEqual(shown, kept)

    def test_leaves_out_what_is_less_grave_than_its_level(self):
        self.demo("--seconds", "3", "--trace", "verbose")
        lines = self.decode("--level", "warning").stdout.splitlines()
        self.assertEqual({LINE.match(line)[3] for line in lines},
                         {"critical", "error", "warning"})

    def test_of_a_trace_cut_short_shows_what_there_is_and_says_so(self):
        self.demo("--seconds", "3", "--trace", "error")
        whole = read(self.folder, "trace.bin", mode="rb")
        with open(os.path.join(self.folder, "cut.bin"), "wb") as file:
            file.write(whole[:-3])
        finished = self.decode(trace="cut.bin")
        self.assertEqual(finished.returncode, 1)
        self.assertRegex(finished.stderr, r"cut\.bin: the trace ends within message \d+\n$")
        self.assertEqual(finished.stdout.splitlines(),
                         self.decode().stdout.splitlines()[:-1])

    def test_without_the_right_format_files_shows_the_bytes(self):
        self.demo("--seconds", "3", "--trace", "error")
        tmf = os.path.join(self.folder, "tmf")
        os.mkdir(tmf)
        none = self.decode("--tmf", wine(tmf))
        self.assertEqual(none.returncode, 2)
        self.assertIn("no trace format (.tmf) file", none.stderr)
        guid = "00000000-0000-0000-0000-000000000000"
        with open(os.path.join(tmf, "other.tmf"), "w", encoding="ascii") as file:
            file.write(f"{guid} other // SRC=other.cpp MJ= MN=\n")
        other = self.decode("--tmf", wine(tmf))
        self.assertEqual(other.returncode, 1)
        self.assertIn("no format file has this message", other.stdout)
        self.assertRegex(other.stderr, r"(\d+) of \1 messages could not be decoded")

    def test_refuses_another_kind_of_file(self):
        self.demo("--seconds", "3", "--trace", "error")
        finished = self.decode(trace="trace.txt")
        self.assertEqual((finished.returncode, finished.stdout), (2, ""))
        self.assertIn("trace.txt: not a trace", finished.stderr)

    def test_explains_itself(self):
        finished = run(TRACEDECODE, "--help")
        self.assertEqual((finished.returncode, finished.stderr), (0, ""))
        for option in ("--tmf", "--level", "--help"):
            self.assertIn(option, finished.stdout)


class FaultCatalogue(TraceCase):
    def test_shows_what_its_commands_show(self):
        text = read(DOCS, "debugging.md")
        faults = re.findall(r"(?m)^    \./demo\.sh (--pace 0 .*)\n\n```\n((?s:.*?))```$", text)
        self.assertEqual(len(faults), text.count("```") // 2)
        self.assertGreaterEqual(len(faults), 9)
        for command, excerpt in faults:
            with self.subTest(command=command):
                arguments = [wine(os.path.join(DOCS, "..", argument))
                             if argument.startswith("docs/") else argument
                             for argument in command.split()]
                shown = iter(run(WORKBENCH, "demo", *arguments, "--run-folder",
                                 wine(self.folder)).stdout.splitlines())
                for line in excerpt.splitlines():
                    self.assertIn(line, shown, "missing, or not in this order")


if __name__ == "__main__":
    WINE_RUN, WORKBENCH, TRACEDECODE, DOCS = sys.argv[1:5]
    unittest.main(argv=[sys.argv[0], *sys.argv[5:]], verbosity=2)

#!/usr/bin/env python3
"""Tests of the small tools that test.sh relies on: what they must catch, and what they must not."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

TOOLS = os.path.dirname(os.path.abspath(__file__))

GOOGLETEST_PASSED = """[==========] Running 3 tests from 1 test suite.
[       OK ] Suite.Case (0 ms)
[==========] 3 tests from 1 test suite ran. (0 ms total)
[  PASSED  ] 3 tests.
"""
GOOGLETEST_FAILED = """[==========] 6 tests from 1 test suite ran. (0 ms total)
[  PASSED  ] 3 tests.
[  SKIPPED ] 1 test, listed below:
[  SKIPPED ] Suite.NotHere
[  FAILED  ] 2 tests, listed below:
[  FAILED  ] Suite.One
[  FAILED  ] Suite.Two
"""


def run(tool, *arguments):
    return subprocess.run([os.path.join(TOOLS, tool), *arguments], capture_output=True, text=True,
                          check=False)


class FileTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(text)
        return path


class CountTestsTest(FileTest):
    def count(self, *entries):
        """Counts in a report with these entries, each (status, output)."""
        cases = "".join(f'<testcase name="t{i}" status="{status}"><system-out>{output}'
                        "</system-out></testcase>" for i, (status, output) in enumerate(entries))
        report = self.write("report.xml", f"<testsuite>{cases}</testsuite>")
        counted = run("count-tests", report)
        self.assertEqual(counted.returncode, 0, counted.stderr)
        return counted.stdout.strip()

    def test_a_googletest_program_counts_with_its_cases(self):
        self.assertEqual(self.count(("run", GOOGLETEST_PASSED)), "3 0")

    def test_lines_that_end_as_windows_ends_them_are_understood(self):
        self.assertEqual(self.count(("run", GOOGLETEST_PASSED.replace("\n", "&#13;\n"))), "3 0")

    def test_failed_and_skipped_cases_count_as_failed(self):
        self.assertEqual(self.count(("fail", GOOGLETEST_FAILED)), "3 3")

    def test_what_a_program_tried_in_all_is_told_with_its_name(self):
        self.assertEqual(self.count(("run", "a\nin all 7 runs&#13;\n"), ("run", "none in all 8")),
                         "2 0\nt0: 7 runs")

    def test_another_program_counts_as_one(self):
        self.assertEqual(self.count(("run", "hello"), ("run", ""), ("fail", "oh")), "2 1")

    def test_a_program_that_died_before_its_summary_counts_as_one_failed(self):
        output = GOOGLETEST_PASSED[:GOOGLETEST_PASSED.index("[  PASSED")]
        self.assertEqual(self.count(("fail", output)), "0 1")

    def test_a_program_that_failed_after_its_cases_passed_counts_as_failed(self):
        self.assertEqual(self.count(("fail", GOOGLETEST_PASSED)), "3 1")

    def test_a_test_that_did_not_run_counts_as_failed(self):
        self.assertEqual(self.count(("notrun", ""), ("disabled", "")), "0 2")

    def test_a_program_without_a_single_case_counts_as_failed(self):
        self.assertEqual(self.count(("run", "[  PASSED  ] 0 tests.\n")), "0 1")


class CheckWordsTest(FileTest):
    def assert_caught(self, text):
        checked = run("check-words", self.write("a.txt", f"one\n{text}\n"))
        self.assertEqual(checked.returncode, 1, text)
        self.assertIn("a.txt:2: ", checked.stdout)

    def assert_passes(self, text):
        checked = run("check-words", self.write("a.txt", text))
        self.assertEqual(checked.returncode, 0, checked.stdout)

    # The words are put together here so that this file itself passes.
    def test_work_left_undone_is_caught(self):
        self.assert_caught("// TO" + "DO: later")
        self.assert_caught("# FIX" + "ME")

    def test_a_merge_mark_is_caught(self):
        self.assert_caught("<" * 7 + " HEAD")

    def test_a_folder_of_one_machine_is_caught(self):
        self.assert_caught('#include "/wo' + 'rk/main/at/X.h"')
        self.assert_caught("see /ho" + "me/anna/notes")

    def test_a_pointer_to_an_absent_paper_is_caught(self):
        self.assert_caught("as the spe" + "cification says")
        self.assert_caught("see Pa" + "rt 2.3")

    def test_ordinary_words_pass(self):
        self.assert_passes("specific parts, part of 1.2, a special homework, root/homework, 3 parts")

    def test_the_name_of_a_file_is_checked_too(self):
        checked = run("check-words", self.write("spe" + "c.txt", "fine"))
        self.assertEqual(checked.returncode, 1, checked.stdout)


class QuietlyTest(FileTest):
    def test_the_output_of_a_success_goes_to_the_log_only(self):
        log = os.path.join(self.folder, "new", "log")
        ran = run("quietly", log, "sh", "-c", "echo out; echo err >&2")
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (0, "", ""))
        with open(log, encoding="utf-8") as file:
            self.assertEqual(file.read(), "out\nerr\n")

    def test_a_failure_shows_its_output_and_keeps_its_exit_code(self):
        ran = run("quietly", os.path.join(self.folder, "log"), "sh", "-c", "echo why; exit 7")
        self.assertEqual(ran.returncode, 7)
        self.assertIn("why", ran.stderr)

    def test_a_command_that_waits_for_input_gets_none(self):
        ran = run("quietly", os.path.join(self.folder, "log"), "cat")
        self.assertEqual(ran.returncode, 0)


class FuzzTest(FileTest):
    TARGETS = ("lines", "dialogue", "report", "profile", "numbers", "lead_times", "properties")
    FINE = "echo 'cov: 5 ft: 6'; echo 'stat::number_of_executed_units: 1000'"
    # The prefix of what it writes is among its options.
    FINDS = ('for a; do case $a in -artifact_prefix=*) touch "${a#*=}crash-1" ;; esac; done; '
             "exit 77")

    def fuzz(self, *arguments, **bodies):
        """Runs the tool in a tree of its own, on programs with these shell scripts."""
        os.makedirs(os.path.join(self.folder, "build", "native-fuzz"))
        os.mkdir(os.path.join(self.folder, "tools"))
        tool = shutil.copy(os.path.join(TOOLS, "fuzz"), os.path.join(self.folder, "tools"))
        for target in self.TARGETS:
            body = bodies.get(target, self.FINE)
            if body is not None:
                os.chmod(self.write(f"build/native-fuzz/fuzz_{target}", f"#!/bin/sh\n{body}\n"),
                         0o755)
        return subprocess.run([tool, *arguments], capture_output=True, text=True, check=False)

    def test_targets_that_find_nothing_are_added_up(self):
        done = self.fuzz("--minute")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stdout, r"(?m)^report +1000 +\d+ +\d+ +5 +0$")
        self.assertRegex(done.stdout, r"(?m)^total +7000 +\d+ +\d+ +35 +0$")

    def test_rounds_go_on_until_the_executions_are_done(self):
        done = self.fuzz("--executions", "15000")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stdout, r"(?m)^total +21000 ")

    def test_a_finding_is_named_with_its_replay(self):
        done = self.fuzz("--minute", report=self.FINDS)
        self.assertEqual(done.returncode, 1)
        self.assertIn("replay: build/native-fuzz/fuzz_report "
                      "build/fuzz/minute/findings/report-crash-1\n", done.stdout)

    def test_a_target_with_a_finding_does_not_hold_the_others_up(self):
        done = self.fuzz("--executions", "15000", report=self.FINDS)
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stdout, r"(?m)^total +18000 .* 1$")

    def test_a_target_that_fails_without_an_input_is_a_finding(self):
        done = self.fuzz("--minute", lines="exit 1")
        self.assertEqual(done.returncode, 1)
        self.assertIn("lines: build/fuzz/minute/log/lines.log", done.stdout)

    def test_a_target_that_is_not_built_is_told(self):
        done = self.fuzz("--minute", numbers=None)
        self.assertEqual(done.returncode, 1)
        self.assertIn("fuzz_numbers is not built", done.stderr)


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/env python3
"""Runs workbench.exe as a user does: cli_test.py WINE-RUN WORKBENCH."""

import os
import re
import subprocess
import sys
import tempfile
import unittest

FOLDER = os.path.dirname(os.path.realpath(__file__))
HARBOUR = os.path.join(FOLDER, "data", "harbour.nmea")
PROJECT = os.path.join(FOLDER, "..", "..", "CMakeLists.txt")
OPTIONS = [
    "--seconds", "--interval", "--nmea", "--pace", "--form", "--shape", "--script", "--sim",
    "--sim-change", "--config", "--no-config", "--no-at-port", "--unplug", "--hand-over",
    "--radio-off", "--dll", "--transcript", "--trace", "--run-folder", "--all", "--quiet", "--help",
]


def workbench(*arguments):
    """The finished process; files are named as Wine sees them."""
    return subprocess.run(
        [WINE_RUN, WORKBENCH, *arguments], capture_output=True, text=True, timeout=120,
        stdin=subprocess.DEVNULL)


def wine(path):
    return "Z:" + path


def number(pattern, text):
    """The one number that `pattern` finds."""
    (found,) = re.findall(pattern, text)
    return int(found)


def clients(text):
    """(reports, delivered, due) of each client in the summary."""
    pattern = r"client \d+ +every \d+ ms: (\d+) reports; (\d+) of (\d+) due fixes delivered"
    return [tuple(map(int, found)) for found in re.findall(pattern, text)]


class WorkbenchCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def file(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return wine(path)

    def demo(self, *arguments, exit_code=0):
        run = workbench("demo", "--pace", "0", *arguments)
        self.assertEqual(run.returncode, exit_code, run.stdout + run.stderr)
        self.assertEqual(run.stderr, "")
        return run.stdout


class Help(WorkbenchCase):
    def test_names_the_commands(self):
        run = workbench("--help")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertIn("workbench demo", run.stdout)
        self.assertIn("--version", run.stdout)

    def test_of_the_demo_explains_every_option_once(self):
        run = workbench("demo", "--help")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertEqual(re.findall(r"(?m)^  (--[a-z-]+)", run.stdout), OPTIONS)

    def test_version_is_the_projects(self):
        with open(PROJECT, encoding="utf-8") as file:
            (version,) = re.findall(r"project\(Stelvane VERSION (\d+\.\d+\.\d+) ", file.read())
        run = workbench("--version")
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, f"workbench {version}\n", ""))


class BadCommandLine(WorkbenchCase):
    def check(self, culprit, *arguments):
        with self.subTest(arguments=arguments):
            run = workbench(*arguments)
            self.assertEqual((run.returncode, run.stdout), (2, ""))
            self.assertEqual(len(run.stderr.splitlines()), 1, run.stderr)
            self.assertTrue(run.stderr.startswith("workbench: "), run.stderr)
            self.assertIn(culprit, run.stderr)

    def test_is_one_clear_line_and_exit_code_2(self):
        self.check("no command")
        self.check("drive", "drive")
        self.check("--fast", "demo", "--fast")
        self.check("--seconds", "demo", "--seconds")
        self.check("--seconds", "demo", "--seconds=0")
        self.check("--interval", "demo", "--interval", "999")
        self.check("--form", "demo", "--form", "4")
        self.check("--shape", "demo", "--shape", "round")
        self.check("--sim-change", "demo", "--sim-change", "999990123456789")
        self.check("--quiet", "demo", "--quiet=yes")

    def test_names_the_file_that_is_not_there(self):
        for option in ("--nmea", "--script", "--config", "--dll"):
            self.check("missing.file", "demo", option, wine(self.folder + "/missing.file"))
        self.check("missing", "demo", "--transcript", wine(self.folder + "/missing/file"))

    def test_names_the_line_of_a_bad_script_and_a_log_without_a_fix(self):
        script = self.file("bad.script", "at 1 silent 2\nat soon silent 2\n")
        self.check("bad.script:2", "demo", "--script", script)
        self.check("empty.nmea", "demo", "--nmea", self.file("empty.nmea", "nothing\n"))
        self.check("wrong.dll", "demo", "--dll", self.file("wrong.dll", "no driver"))


class Drive(WorkbenchCase):
    def test_shows_what_its_summary_counts(self):
        transcript = os.path.join(self.folder, "at.txt")
        text = self.demo("--transcript", wine(transcript))
        ((reports, delivered, due),) = clients(text)
        self.assertGreater(due, 5)
        self.assertEqual(delivered, due)
        self.assertEqual(len(re.findall(r"(?m)^ +[\d.]+  report ", text)), reports)
        self.assertGreaterEqual(number(r"(\d+) fixes sent", text), reports)
        self.assertEqual(len(re.findall(r"(?m)^ +[\d.]+  modem  > ", text)),
                         number(r"(\d+) commands received", text))
        self.assertIn("state    ready", text)
        self.assertIn("DllCanUnloadNow says S_OK", text)
        with open(transcript, encoding="ascii") as file:
            lines = file.read().splitlines()
        self.assertEqual(sum(" > AT" in line for line in lines),
                         number(r"(\d+) commands received", text))
        self.assertEqual(sum("< +XLCSLSR: 0," in line for line in lines),
                         number(r"(\d+) fixes sent", text))

    def test_arrives_in_each_form_and_shape(self):
        for options in (["--form=1"], ["--form=2"], ["--form=3"], ["--shape=sentences-first"]):
            with self.subTest(options=options):
                text = self.demo("--quiet", "--seconds", "15", *options)
                ((_, delivered, due),) = clients(text)
                self.assertGreater(due, 3)
                self.assertEqual(delivered, due)

    def test_gives_several_clients_the_same_reports(self):
        text = self.demo("--quiet", "--interval=5000", "--interval=1000", "--interval=9000")
        results = clients(text)
        self.assertEqual(len(results), 3)
        self.assertEqual(len(set(results)), 1)
        self.assertGreater(results[0][2], 15)

    def test_above_eight_seconds_runs_on_single_fixes(self):
        text = self.demo("--seconds", "60", "--interval", "9000")
        ((_, delivered, due),) = clients(text)
        self.assertGreater(due, 3)
        self.assertEqual(delivered, due)
        self.assertGreaterEqual(text.count("modem  > AT+XLCSLSR=1,1,,,,,,,,2,,"), due)

    def test_that_is_long_tells_its_progress(self):
        text = self.demo("--seconds", "180")
        self.assertEqual(re.findall(r"(?m)^ +(\d) of 3 min: ", text)[:2], ["1", "2"])
        self.assertNotIn("modem  >", text)


class Log(WorkbenchCase):
    def test_delivers_every_fix_of_a_log(self):
        text = self.demo("--nmea", wine(HARBOUR))
        fixes = number(r"(\d+) fixes in \d+ epochs", text)
        self.assertEqual(fixes, 11)
        self.assertEqual(clients(text), [(fixes, fixes, fixes)])
        self.assertIn("54.918", text)

    def test_may_have_a_name_outside_ascii(self):
        with open(HARBOUR, encoding="ascii") as log:
            name = self.file("h\u00e4fen \u6e2f.nmea", log.read())
        self.assertEqual(clients(self.demo("--quiet", "--nmea", name)), [(11, 11, 11)])


class Setting(WorkbenchCase):
    def test_a_sim_is_provisioned_from_the_file_and_a_new_one_again(self):
        text = self.demo("--sim", "001010000000001", "--sim-change", "999990123456789@8")
        self.assertIn('AT+XLCSSLP=1,"slp.example.com",7275', text)
        self.assertIn('SUPL         server "192.0.2.75" port 7276', text)
        self.assertIn("SIM          999990123456789", text)

    def test_a_configuration_file_of_ones_own_is_used(self):
        config = self.file("supl.xml", '<C><SUPL SID="_Default"><Supl_Ver_Info>7</Supl_Ver_Info>'
                           "<SuplServer><Supl_Address_type>2</Supl_Address_type>"
                           "<Supl_Port_Number>1</Supl_Port_Number></SuplServer></SUPL></C>")
        text = self.demo("--quiet", "--seconds=5", "--config", config)
        self.assertIn('server "" port 1, address type 2, version 7', text)

    def test_a_radio_that_is_off_delivers_once_it_is_on(self):
        text = self.demo("--radio-off")
        self.assertLess(text.index("state    not available"), text.index("state    ready"))
        self.assertGreater(clients(text)[0][2], 3)

    def test_a_hand_over_is_shown_to_the_restart(self):
        text = self.demo("--hand-over")
        order = [text.index(part) for part in ("usb_profile_get", '"MBIM"', "store_nvm",
                                               "AT+XLCSSHUTDOWN", "AT+CFUN=1,1")]
        self.assertEqual(order, sorted(order))
        self.assertNotIn("AT+XLCSLSR", text)
        self.assertIn("1 restarts", text)


class BrokenRoad(WorkbenchCase):
    def test_a_modem_silent_on_requests_is_exit_code_1(self):
        script = self.file("silent.script", "on AT+XLCSLSR silence always\n")
        text = self.demo("--quiet", "--script", script, exit_code=1)
        self.assertIn("BROKEN       the modem had reception and sent no fix", text)
        self.assertNotIn("all is well", text)

    def test_a_lost_and_found_fix_is_none(self):
        script = self.file("lost.script", "at 8 lose-fix 6\n")
        times_ready = [
            self.demo("--interval=1000", "--seconds=20", *options).count("state    ready")
            for options in ([], ["--script", script])]
        self.assertEqual(times_ready, [1, 2])


if __name__ == "__main__":
    WINE_RUN, WORKBENCH = sys.argv[1:3]
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)

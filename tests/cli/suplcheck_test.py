#!/usr/bin/env python3
"""Runs suplcheck.exe as a user does: suplcheck_test.py WINE-RUN SUPLCHECK WORKBENCH."""

import os
import re
import sys

sys.dont_write_bytecode = True  # nothing is written outside build/
from suplcheck_case import DEFAULT, LONG, SHORT, TOOLS, SuplCheckCase, document, main, record, run

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
SHIPPED = os.path.join(ROOT, "package", "StelvaneSUPLInfo-DTD.xml")


class CommandLine(SuplCheckCase):
    def refused(self, culprit, *arguments):
        result = run(TOOLS.suplcheck, *arguments)
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)
        self.assertTrue(result.stderr.startswith("suplcheck: "), result.stderr)
        self.assertIn(culprit, result.stderr)

    def test_help_explains_options_and_exit_codes(self):
        result = run(TOOLS.suplcheck, "--help")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertIn("--imsi N", result.stdout)
        self.assertIn("Exit code", result.stdout)

    def test_without_a_file_is_refused(self):
        self.refused("no file")

    def test_two_files_are_refused(self):
        self.refused('"a.xml" and "b.xml"', "a.xml", "b.xml")

    def test_an_empty_file_name_is_refused(self):
        self.refused("file name is empty", "")

    def test_an_unknown_option_is_refused(self):
        self.refused("--fast", "a.xml", "--fast")

    def test_imsi_without_a_value_is_refused(self):
        self.refused("--imsi needs a value", "a.xml", "--imsi")

    def test_an_imsi_with_letters_is_refused(self):
        self.refused('not "31041o"', "a.xml", "--imsi", "31041o")

    def test_an_imsi_of_fewer_than_6_or_more_than_15_digits_is_refused(self):
        self.refused('not "31041"', "a.xml", "--imsi=31041")
        self.refused('not "3104101234567890"', "a.xml", "--imsi=3104101234567890")


class UnusableFile(SuplCheckCase):
    def unusable(self, pattern, name):
        result = run(TOOLS.suplcheck, self.wine(name))
        self.assertEqual(result.returncode, 2, result.stdout + result.stderr)
        self.assertRegex(result.stderr, re.escape(self.wine(name)) + r"(:\d+)*: error: " + pattern)
        self.assertEqual(result.stdout, f"{self.wine(name)}: the driver cannot use it\n")

    def test_that_is_not_there(self):
        self.unusable("no such file", "missing.xml")

    def test_that_is_a_folder(self):
        os.mkdir(os.path.join(self.folder, "folder.xml"))
        self.unusable("this is a folder", "folder.xml")

    def test_that_is_empty(self):
        self.write("")
        self.unusable("the file is empty", "supl.xml")

    def test_that_is_huge(self):
        with open(os.path.join(self.folder, "supl.xml"), "wb") as file:
            file.truncate(16 * 1024 * 1024 + 1)
        self.unusable("the file is larger than 16 MiB", "supl.xml")

    def test_that_is_binary(self):
        self.write(bytes(range(256)) * 10)
        self.unusable("the XML parser refuses it", "supl.xml")

    def test_that_is_not_well_formed(self):
        self.write(document(DEFAULT)[:-2])
        self.unusable("the XML parser refuses it: .+", "supl.xml")

    def test_without_a_declaration(self):
        self.write("<SUPLInfo>" + DEFAULT + "</SUPLInfo>")
        self.unusable("it has no document type declaration", "supl.xml")

    def test_that_is_not_valid(self):
        self.write(document(DEFAULT, "<Unknown/>"))
        self.unusable("not valid against its document type declaration", "supl.xml")

    def test_with_an_id_twice_where_the_declaration_forbids_it(self):
        with open(SHIPPED, encoding="utf-8") as shipped:
            self.write(shipped.read().replace('"_00101"', '"_Default"'))
        self.unusable("not valid against its document type declaration", "supl.xml")

    def test_with_its_declaration_outside(self):
        self.write("<!ELEMENT SUPLInfo ANY>", "outside.dtd")
        self.write('<!-- <!DOCTYPE a []> --><!DOCTYPE SUPLInfo SYSTEM "outside.dtd"><SUPLInfo/>')
        self.unusable("the document type declaration is outside", "supl.xml")


class LoadableFile(SuplCheckCase):
    def test_the_shipped_one_is_clean_for_its_networks(self):
        imsis = ["001010123456789", "00101012345678", "999990123456789", LONG]
        result = run(TOOLS.suplcheck, "Z:" + SHIPPED, *(f"--imsi={imsi}" for imsi in imsis))
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertNotIn("warning:", result.stderr)
        chosen = re.findall(r"(?m)^IMSI (\d+): record \d+ \(SID \"(\w+)\"\)", result.stdout)
        self.assertEqual(chosen, list(zip(imsis, ["_001010", "_00101", "_999990", "_Default"])))

    def test_lists_its_records(self):
        result = self.clean(DEFAULT, record("_310410", "7", "2", None, "65535"))
        rows = [line.split() for line in result.stdout.splitlines()[1:3]]
        self.assertEqual(rows, [["1", "_Default", "2", "0", "7275", "default.example"],
                                ["2", "_310410", "7", "2", "65535", "(none)"]])

    def test_may_have_a_name_outside_ascii_with_marks_of_addresses_in_it(self):
        name = self.write(document(DEFAULT), "h\u00e4fen \u6e2f 50%20#1.xml")
        result = run(TOOLS.suplcheck, name)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertIn(f"{name}: the driver loads it; 1 records, 0 warnings", result.stdout)

    def test_is_warned_of_a_part_outside(self):
        text = document(DEFAULT).replace("]>", '<!ENTITY e SYSTEM "outside.txt">\n]>')
        result = self.check(text, exit_code=1)
        self.assertRegex(self.messages(result, "warning")[0], "refers to something outside")

    def test_may_say_system_elsewhere(self):
        text = document(DEFAULT).replace("]>", "<!-- SYSTEM \"x\" --><!ENTITY e ' SYSTEM \"'>\n]>")
        self.assertEqual(self.check(text, exit_code=0).stderr, "")

    def test_of_two_thousand_records_is_read(self):
        records = [record(f"_{400000 + i}") for i in range(1999)]
        result = self.clean(DEFAULT, *records)
        self.assertIn("2000 records, 0 warnings", result.stdout)
        self.assertRegex(self.messages(result, "note")[0], '"_400000" and 1998 more')


class Lookup(SuplCheckCase):
    def test_prints_the_record_and_the_commands(self):
        self.assertEqual(
            self.lookup(LONG, DEFAULT, record("_310410", "7", "1", "six.example", "7276")),
            (0, [f'IMSI {LONG}: record 2 (SID "_310410")', '  AT+XLCSSLP=1,"six.example",7276',
                 "  AT+XLCSTER=1", "  AT+XLCSSUPLVER=7"], []))

    def test_is_the_default_record_for_everybody_else(self):
        code, lines, _ = self.lookup("262019876543210", record("_310410"), DEFAULT)
        self.assertEqual((code, lines[0]), (0, 'IMSI 262019876543210: record 2 (SID "_Default")'))

    def test_does_not_depend_on_the_order_of_ids_that_begin_alike(self):
        five, six = record("_31041", address="five"), record("_310410", address="six")
        for records in ((five, six), (six, five)):
            self.assertIn('"six"', self.lookup(LONG, DEFAULT, *records)[1][1])
            self.assertIn('"five"', self.lookup(SHORT, DEFAULT, *records)[1][1])

    def test_takes_the_first_of_two(self):
        _, lines, _ = self.lookup(LONG, DEFAULT, record("_310410", address="first"),
                                  record("_310410", address="second"))
        self.assertEqual(lines[:2], [f'IMSI {LONG}: record 2 (SID "_310410")',
                                     '  AT+XLCSSLP=0,"first",7275'])

    def nothing(self, why, imsi, *records):
        code, lines, warnings = self.lookup(imsi, *records)
        self.assertEqual((code, lines), (1, [f"IMSI {imsi}: nothing is sent"]))
        self.assertEqual(warnings, [f"IMSI {imsi}: nothing is sent: {why}"])

    def test_of_15_digits_with_a_record_of_5(self):
        self.nothing('record 2 (SID "_31041") matches, but there is no record "_310410"',
                     LONG, DEFAULT, record("_31041"))

    def test_of_14_digits_with_a_record_of_6(self):
        self.nothing('record 2 (SID "_310410") matches, but there is no record "_31041"',
                     SHORT, DEFAULT, record("_310410"))

    def test_with_an_id_on_another_element(self):
        self.nothing('element "Other" 2 (SID "_310410") matches, but there is no record "_310410"',
                     LONG, DEFAULT, '<Other SID="_310410"/>')

    def test_with_an_empty_id_before(self):
        self.nothing('record 1 (SID "") matches, but there is no record "_310410"',
                     LONG, record(""), DEFAULT)

    def test_without_a_match_and_a_default_record(self):
        self.nothing('no id matches, and there is no record "_Default"', LONG, record("_26201"))

    def test_whose_record_makes_no_command(self):
        self.nothing('address type "1" needs an address', LONG, record("_Default", kind="1",
                                                                       address=None))
        self.nothing('address type "" is not 0, 1 or 2', LONG, record("_Default", kind=None))

    def test_shows_what_would_break_a_command(self):
        _, lines, _ = self.lookup(LONG, record("_Default", address="a\nb"))
        self.assertEqual(lines[1], r'  AT+XLCSSLP=0,"a\x0Ab",7275')


class Workbench(SuplCheckCase):
    """What is printed is what the driver says to the modem."""

    def commands(self, file, imsi):
        transcript = os.path.join(self.folder, "at.txt")
        demo = run(TOOLS.workbench, "demo", "--quiet", "--pace=0", "--seconds=5", "--sim", imsi,
                   "--config", file, "--transcript", "Z:" + transcript)
        with open(transcript, encoding="ascii") as lines:
            sent = [line.split(" > ")[1].strip() for line in lines if " > " in line]
        self.assertIn("AT+CIMI", sent, demo.stdout + demo.stderr)
        names = ("AT+XLCSSLP=", "AT+XLCSTER=", "AT+XLCSSUPLVER=")
        return list(dict.fromkeys(line for line in sent if line.startswith(names)))

    def test_sends_what_is_printed_for_a_network(self):
        _, lines, _ = self.lookup(LONG, DEFAULT, record("_310410", "7", "1", "a&amp;b", "1"))
        self.assertEqual(self.commands(self.name, LONG), [line.strip() for line in lines[1:]])
        self.assertEqual(lines[1], '  AT+XLCSSLP=1,"a&b",1')

    def test_sends_nothing_where_nothing_is_printed(self):
        self.assertEqual(self.lookup(SHORT, DEFAULT, record("_310410"))[0], 1)
        self.assertEqual(self.commands(self.name, SHORT), [])


if __name__ == "__main__":
    main()

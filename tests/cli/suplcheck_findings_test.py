#!/usr/bin/env python3
"""What suplcheck.exe warns of: suplcheck_findings_test.py WINE-RUN SUPLCHECK WORKBENCH."""

import sys

sys.dont_write_bytecode = True  # nothing is written outside build/
from suplcheck_case import DEFAULT, SuplCheckCase, document, main, record


class Id(SuplCheckCase):
    def test_with_an_underscore_inside(self):
        self.warns(r'record 2 \(SID "_310_410"\): never chosen: IMSIs .* looked up as "_310410"',
                   DEFAULT, record("_310_410"))

    def test_without_the_leading_underscore(self):
        self.warns('never chosen: .* looked up as "_310410"', DEFAULT, record("310410"))

    def test_of_5_digits_which_15_digit_imsis_match_and_do_not_find(self):
        self.warns("15 digits that begin with 31041 match, but are looked up by 6 digits",
                   DEFAULT, record("_31041"))

    def test_of_5_digits_with_some_of_6_beside_it_is_noted(self):
        result = self.clean(DEFAULT, record("_31041"), record("_310410"), record("_310417"))
        (note,) = self.messages(result, "note")
        self.assertTrue(note.endswith("if the sixth digit is one of 12345689"), note)

    def test_of_5_digits_with_all_of_6_beside_it_is_clean(self):
        result = self.clean(DEFAULT, record("_31041"), *(record(f"_31041{i}") for i in range(10)))
        self.assertEqual(result.stderr, "")

    def test_of_6_digits_alone_is_noted_for_shorter_imsis(self):
        result = self.clean(DEFAULT, record("_310410"))
        (note,) = self.messages(result, "note")
        self.assertRegex(note, 'fewer than 15 digits get nothing.*: "_310410"$')

    def test_that_is_empty_matches_everybody(self):
        self.warns("the id matches every IMSI", DEFAULT, record(""))

    def test_of_underscores_only_matches_everybody(self):
        self.warns("the id matches every IMSI", DEFAULT, record("__"))

    def test_that_is_not_digits(self):
        self.warns("never chosen: an id is an underscore and the 5 or 6 digits",
                   DEFAULT, record("_31041x"))

    def test_with_a_blank(self):
        self.warns("never chosen: an id is an underscore", DEFAULT, record("_310410 "))

    def test_that_is_too_short(self):
        self.warns("the id is too short: IMSIs that begin with 3104", DEFAULT, record("_3104"))

    def test_that_is_too_long(self):
        self.warns("the id is too long: IMSIs that begin with 3104101", DEFAULT, record("_3104101"))

    def test_default_without_underscore(self):
        self.warns('never chosen: the default record\'s id is "_Default"',
                   DEFAULT, record("Default"))

    def test_default_in_small_letters(self):
        self.warns('never chosen: the default record\'s id is "_Default"',
                   DEFAULT, record("_default"))

    def test_default_missing(self):
        self.warns('no record "_Default": a SIM that no record fits gets nothing',
                   record("_310410"))

    def test_that_comes_twice(self):
        self.warns(r"record 3 .*: never chosen: record 2 has the same id and comes first",
                   DEFAULT, record("_310410"), record("_310410"))

    def test_on_an_element_other_than_a_record(self):
        self.warns(r'element "Other" 2 \(SID "_310410"\): its SID matches IMSIs, but only',
                   DEFAULT, '<Other SID="_310410"/>')

    def test_on_an_element_of_another_case(self):
        self.warns(r'element "Supl" 2 .*: its SID matches IMSIs, but only elements "SUPL"',
                   DEFAULT, record("_310410").replace("SUPL", "Supl"))

    def test_on_a_record_in_a_namespace(self):
        self.warns('only elements "SUPL" of no namespace are looked up',
                   DEFAULT, record("_310410").replace("<SUPL ", '<SUPL xmlns="urn:x" '))

    def test_missing(self):
        self.warns('record 2: never chosen: it has no attribute "SID"',
                   DEFAULT, record("_310410").replace(' SID="_310410"', ""))

    def test_in_an_attribute_of_another_case(self):
        self.warns('record 2: never chosen: it has no attribute "SID"',
                   DEFAULT, record("_310410").replace(" SID=", " Sid="))

    def test_missing_everywhere(self):
        self.warns('no record "_Default"')


class Setting(SuplCheckCase):
    def default(self, pattern, **settings):
        self.warns(pattern, record("_Default", **settings))

    def test_types_0_and_1_without_address(self):
        self.default('nothing is sent: address type "0" needs an address', kind="0", address=None)
        self.default('nothing is sent: address type "1" needs an address', kind="1", address="")

    def test_type_2_without_address_is_clean(self):
        self.clean(record("_Default", kind="2", address=None))

    def test_type_missing(self):
        self.default("nothing is sent: there is no address type", kind=None)

    def test_type_unknown(self):
        self.default('nothing is sent: address type "3" is not 0, 1 or 2', kind="3")

    def test_type_with_white_space_that_the_parser_takes_off_is_clean(self):
        self.clean(record("_Default", kind=" 1 "))

    def test_type_with_white_space_that_stays(self):
        text = document(record("_Default", kind="<![CDATA[ 1]]>"))
        warnings = self.messages(self.check(text, exit_code=1), "warning")
        self.assertEqual(len(warnings), 2, warnings)
        self.assertIn('address type " 1" is not 0, 1 or 2', warnings[0])
        self.assertIn('Supl_Address_type " 1" has white space around it', warnings[1])

    def test_port_that_is_none(self):
        for port in ("0", "65536", "http", "72 75", "-1", None):
            with self.subTest(port=port):
                self.default(f'the port "{port or ""}" is not a number from 1 to 65535', port=port)

    def test_address_with_a_double_quote(self):
        self.default(r'the address "a"b" holds a double quote', address="a&quot;b")

    def test_address_with_a_line_break(self):
        self.default(r'Supl_Address "a\\x0Ab" holds a line break', address="a\nb")

    def test_version_missing(self):
        self.default(r'no version: "AT\+XLCSSUPLVER=" is sent with nothing', version=None)

    def test_a_character_outside_ascii(self):
        self.default("Supl_Address holds a character outside ASCII", address="h\u00e4fen.example")
        self.default("Supl_Ver_Info holds a character outside ASCII", version="\u6e2f")

    def test_a_child_twice(self):
        self.default("Supl_Address stands there 2 times; of a doubled text the last counts",
                     inside="<Supl_Address>last</Supl_Address>")

    def test_a_server_twice(self):
        self.default("SuplServer stands there 2 times", more="<SuplServer/>")

    def test_an_unknown_child(self):
        self.default('element "Other" is unknown and ignored', more="<Other/>")

    def test_a_child_in_the_wrong_place(self):
        self.default('element "Supl_Address" is ignored in this place',
                     more="<Supl_Address>a</Supl_Address>")

    def test_a_child_of_another_case(self):
        self.default('element "supl_address" is ignored: it is written "Supl_Address"',
                     inside="<supl_address>a</supl_address>")

    def test_comments_are_clean(self):
        self.clean(record("_Default", inside="<!-- a -->", more="<!-- b -->"))


if __name__ == "__main__":
    main()

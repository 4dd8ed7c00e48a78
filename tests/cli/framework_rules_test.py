"""The page about the framework's rules against the code: same rules, same wrong drivers, in the
same order. And every test of the DLL asks, at its end, whether one was broken.

usage: framework_rules_test.py SOURCE_FOLDER"""

import pathlib
import re
import sys
import unittest

SOURCE = pathlib.Path(sys.argv.pop(1))


def rules():
    """[(constant, name)] as declared."""
    text = (SOURCE / "workbench/framework/Rules.h").read_text()
    return re.findall(r'std::string_view (k\w+) =\s*"([^"]+)";', text)


def listed():
    """The constants in kAll."""
    text = (SOURCE / "workbench/framework/Rules.h").read_text()
    return re.findall(r"k\w+", text[text.index("kAll[] = {") + len("kAll"):])


def wrong_drivers():
    """[(constant, what it does wrong)]"""
    text = (SOURCE / "tests/unit/bench_rules/WrongDriversTest.cpp").read_text()
    return re.findall(r'\{rule::(k\w+), "([^"]+)",', text)


def page():
    """[(name, meaning, wrong driver)]"""
    lines = (SOURCE / "docs/framework-rules.md").read_text().splitlines()
    rows = [[cell.strip() for cell in line.strip("|").split("|")]
            for line in lines if line.startswith("|")]
    return rows[2:]


class FrameworkRules(unittest.TestCase):
    def test_every_rule_is_in_the_list_of_all(self):
        self.assertEqual([constant for constant, _ in rules()], listed())

    def test_the_page_has_every_rule_with_its_wrong_driver(self):
        names = dict(rules())
        self.assertEqual([(name, wrong) for name, _, wrong in page()],
                         [(names[constant], wrong) for constant, wrong in wrong_drivers()])
        self.assertEqual([name for name, _, _ in page()], list(names.values()))

    def test_every_rule_is_explained(self):
        for name, meaning, _ in page():
            self.assertTrue(meaning.endswith("."), name)


class Fixtures(unittest.TestCase):
    def test_every_rig_is_asked_what_it_has_found(self):
        for path in (SOURCE / "tests/driver").iterdir():
            text = path.read_text()
            rigs = len(re.findall(r"\bRig rig\(|unique_ptr<Rig> rig_;", text))
            ends = path if path.suffix == ".cpp" else path.with_suffix(".cpp")
            asked = text.count("Findings()")
            if ends != path and ends.exists():
                asked += ends.read_text().count("Findings()")
            self.assertGreaterEqual(asked, rigs, path)

    def test_no_end_of_a_fixture_leaves_out_its_bases(self):
        for path in (SOURCE / "tests/driver").iterdir():
            ends = re.findall(r"TearDown\(\)(?: override)? \{(.*?)\n *\}", path.read_text(), re.S)
            for body in ends:
                self.assertRegex(body, r"\w+::TearDown\(\);|Findings\(\)", path)


unittest.main()

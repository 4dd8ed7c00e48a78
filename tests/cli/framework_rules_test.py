"""The page about the framework's rules against the code: same rules, same wrong drivers, in the
same order.

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


unittest.main()

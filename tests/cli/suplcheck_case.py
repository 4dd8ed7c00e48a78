"""What the tests of suplcheck.exe share: running it, and files for it."""

import os
import subprocess
import sys
import tempfile
import types
import unittest

LONG = "310410123456789"
SHORT = "31041012345678"
TOOLS = types.SimpleNamespace()  # the programs; main() fills it in

# Takes whatever order and number of elements a test wants; it holds nothing back but names.
DECLARATION = """<!DOCTYPE SUPLInfo [
  <!ELEMENT SUPLInfo ANY> <!ELEMENT SUPL ANY> <!ELEMENT SuplServer ANY>
  <!ELEMENT Supl_Ver_Info (#PCDATA)> <!ELEMENT Supl_Address_type (#PCDATA)>
  <!ELEMENT Supl_Address (#PCDATA)> <!ELEMENT Supl_Port_Number (#PCDATA)>
  <!ELEMENT Supl ANY> <!ELEMENT Other ANY> <!ELEMENT supl_address ANY>
  <!ATTLIST SUPL SID CDATA #IMPLIED Sid CDATA #IMPLIED xmlns CDATA #IMPLIED>
  <!ATTLIST Other SID CDATA #IMPLIED>
  <!ATTLIST Supl SID CDATA #IMPLIED>
]>
"""


def run(program, *arguments):
    """The finished process. Its streams are files: Wine starts a desktop process for the XML
    parser, which inherits the streams and would hold a pipe open for another second."""
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        result = subprocess.run([TOOLS.wine_run, program, *arguments], stdout=out, stderr=err,
                                timeout=120, stdin=subprocess.DEVNULL, check=False)
        result.stdout, result.stderr = text_of(out), text_of(err)
    return result


def text_of(file):
    file.seek(0)
    return file.read().decode("utf-8", errors="backslashreplace").replace("\r\n", "\n")


def element(name, text):
    return "" if text is None else f"<{name}>{text}</{name}>"


def record(sid, version="2", kind="0", address="slp.example", port="7275", more="", inside=""):
    server = (element("Supl_Address_type", kind) + element("Supl_Address", address) +
              element("Supl_Port_Number", port) + inside)
    return (f'<SUPL SID="{sid}">{element("Supl_Ver_Info", version)}'
            f"<SuplServer>{server}</SuplServer>{more}</SUPL>")


DEFAULT = record("_Default", address="default.example")


def document(*records):
    return f"{DECLARATION}<SUPLInfo>{''.join(records)}</SUPLInfo>"


class SuplCheckCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.name = self.wine("supl.xml")

    def wine(self, name):
        return f"Z:{self.folder}/{name}"

    def write(self, text, name="supl.xml"):
        with open(os.path.join(self.folder, name), "wb") as file:
            file.write(text if isinstance(text, bytes) else text.encode("utf-8"))
        return self.wine(name)

    def check(self, text, *arguments, exit_code):
        """The finished process for a file of that text."""
        result = run(TOOLS.suplcheck, self.write(text), *arguments)
        self.assertEqual(result.returncode, exit_code, result.stdout + result.stderr)
        return result

    def messages(self, result, severity):
        start = f"{self.name}: {severity}: "
        return [line[len(start):] for line in result.stderr.splitlines() if line.startswith(start)]

    def clean(self, *records):
        result = self.check(document(*records), exit_code=0)
        self.assertEqual(self.messages(result, "warning"), [])
        return result

    def warns(self, pattern, *records):
        """Checks a file of these records: one warning, that of the pattern."""
        result = self.check(document(*records), exit_code=1)
        warnings = self.messages(result, "warning")
        self.assertEqual(len(warnings), 1, warnings)
        self.assertRegex(warnings[0], pattern)
        self.assertIn(f"{self.name}: the driver loads it; ", result.stdout)
        self.assertIn(" 1 warnings", result.stdout)

    def lookup(self, imsi, *records):
        """(exit code, what is printed for the IMSI, the warnings that name it)."""
        result = run(TOOLS.suplcheck, self.write(document(*records)), "--imsi", imsi)
        lines = result.stdout.splitlines()
        at = next(i for i, line in enumerate(lines) if line.startswith("IMSI"))
        about = [text for text in self.messages(result, "warning") if f"IMSI {imsi}:" in text]
        return result.returncode, lines[at:-1], about


def main():
    """Runs the calling script's tests: SCRIPT WINE-RUN SUPLCHECK WORKBENCH [OPTION...]."""
    TOOLS.wine_run, TOOLS.suplcheck, TOOLS.workbench = sys.argv[1:4]
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=2)

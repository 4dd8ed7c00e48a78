#!/usr/bin/env python3
"""Looks at the driver package that the build made: package_test.py SOURCE BUILD VERSION."""
import datetime
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SOURCE, BUILD = (Path(name).resolve() for name in sys.argv[1:3])
VERSION = sys.argv[3]
PACKAGE = BUILD / "package"
ROOMS = ("base", "at", "modem", "sensor", "driver")
CONTROL_FILE = "tmf/f4acaab5-c82f-4f79-bf37-c04f93c01389.tmc"
COPIED_TEXTS = {"StelvaneSUPLInfo-DTD.xml": "package", "install.md": "docs", "debugging.md": "docs"}
TEXTS = {"Stelvane.inf", *COPIED_TEXTS}
DRIVERS = {"Stelvane.dll": "x64", "x86/Stelvane.dll": "x86"}
FEW_DAYS_AFTER_1970 = 9 * 86400 + 5


def contents(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file()}


def trace_texts():
    """Each message catalogue of the driver has one format file, named after its GUID."""
    for room in ROOMS:
        for catalogue in (SOURCE / room).glob("*.trace"):
            yield "tmf/" + re.search(r"(?m)^guid (\S+)$", catalogue.read_text()).group(1) + ".tmf"


class FolderTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)


class ContentsTest(unittest.TestCase):
    def test_exactly_what_belongs_there_is_there(self):
        wanted = {*DRIVERS, *TEXTS, "suplcheck.exe", CONTROL_FILE, *trace_texts()}
        self.assertEqual(contents(PACKAGE), wanted)

    def test_each_driver_is_for_its_processor(self):
        for name, machine in DRIVERS.items():
            subprocess.run(
                [SOURCE / "tools/check-dll", PACKAGE / name, "--machine", machine,
                 "--imports", SOURCE / "tools/windows8-imports.txt", "--rule", "machine",
                 "--rule", "version-resource", "--project-version", VERSION],
                check=True, capture_output=True)

    def test_texts_can_be_read_by_any_editor_of_windows(self):
        for name in TEXTS:
            lines = (PACKAGE / name).read_bytes().decode("ascii").split("\n")
            self.assertEqual(lines.pop(), "", name)
            self.assertTrue(all(line.endswith("\r") for line in lines), name)

    def test_texts_are_otherwise_those_of_the_project(self):
        for name, folder in COPIED_TEXTS.items():
            self.assertEqual((PACKAGE / name).read_bytes().replace(b"\r\n", b"\n"),
                             (SOURCE / folder / name).read_bytes())


class MakingTest(FolderTest):
    """Makes the package once more, in a folder of its own."""

    def stamp(self, epoch=None):
        shutil.copytree(BUILD / "tmf", self.folder / "tmf", dirs_exist_ok=True)
        shutil.copy(BUILD / "package-files.cmake", self.folder)
        environment = {name: value for name, value in os.environ.items()
                       if name != "SOURCE_DATE_EPOCH"}
        if epoch is not None:
            environment["SOURCE_DATE_EPOCH"] = str(epoch)
        subprocess.run(
            ["cmake", "-D", f"source={SOURCE}", "-D", f"build={self.folder}",
             "-D", f"version={VERSION}", "-P", SOURCE / "cmake/MakePackage.cmake"],
            check=True, capture_output=True, env=environment)
        inf = (self.folder / "package/Stelvane.inf").read_text(encoding="ascii")
        return re.search(r"(?m)^DriverVer += (.*)$", inf).group(1)

    def test_the_time_of_the_build_can_be_given(self):
        self.assertEqual(self.stamp(FEW_DAYS_AFTER_1970), f"01/10/1970,{VERSION}.0")

    def test_otherwise_it_is_today_in_utc(self):
        def today():
            return datetime.datetime.now(datetime.timezone.utc).strftime("%m/%d/%Y")
        days = [today()]
        stamp = self.stamp()
        days.append(today())
        self.assertIn(stamp, [f"{day},{VERSION}.0" for day in days])

    def test_what_an_earlier_run_left_does_not_stay(self):
        stale = self.folder / "package/tmf/stale.tmf"
        stale.parent.mkdir(parents=True)
        stale.write_text("old")
        self.stamp()
        self.assertEqual(contents(self.folder / "package"), contents(PACKAGE))


class SigningTest(FolderTest):
    def setUp(self):
        super().setUp()
        self.package = self.folder / "package"
        shutil.copytree(PACKAGE, self.package)
        self.driver = self.package / "x86/Stelvane.dll"

    def sign(self, *options):
        """Exit code and messages."""
        run = subprocess.run([SOURCE / "tools/sign-package", *options, self.package],
                             capture_output=True, text=True, check=False)
        return run.returncode, run.stdout + run.stderr

    def assert_refused(self, text, *options):
        code, messages = self.sign(*options)
        self.assertEqual(code, 1, messages)
        self.assertIn(text, messages)

    def assert_accepted(self, *options):
        code, messages = self.sign(*options)
        self.assertEqual(code, 0, messages)

    def openssl(self, *command):
        subprocess.run(["openssl", *command], cwd=self.folder, check=True, capture_output=True)

    def certificate(self, password="", key_use="codeSigning", issuer=None):
        """A PFX of a new certificate, protected by a password; without an issuer its own root."""
        request = ["req", "-newkey", "rsa:2048", "-nodes", "-keyout", "key.pem",
                   "-subj", "/CN=Somebody"]
        if issuer:
            (self.folder / "use").write_text(f"extendedKeyUsage={key_use}\n")
            self.openssl(*request, "-out", "request.pem")
            self.openssl("x509", "-req", "-in", "request.pem", "-CA", f"{issuer}.pem",
                         "-CAkey", f"{issuer}.key", "-extfile", "use", "-out", "own.pem")
        else:
            self.openssl(*request, "-x509", "-addext", f"extendedKeyUsage={key_use}",
                         "-out", "own.pem")
        self.openssl("pkcs12", "-export", "-inkey", "key.pem", "-in", "own.pem",
                     "-out", "own.pfx", "-passout", f"pass:{password}")
        return "--certificate", self.folder / "own.pfx"

    def password(self, text):
        path = self.folder / "password"
        path.write_text(text + "\n", encoding="ascii")
        return "--password-file", path

    def test_every_driver_and_program_is_signed_and_the_rest_unchanged(self):
        code, messages = self.sign()
        self.assertEqual(code, 0, messages)
        changed = {name for name in contents(PACKAGE)
                   if (PACKAGE / name).read_bytes() != (self.package / name).read_bytes()}
        programs = {name for name in contents(PACKAGE) if name.endswith((".dll", ".exe"))}
        self.assertEqual(changed, programs)
        for name in programs:
            self.assertIn(f"signed and verified: {self.package / name}\n", messages)

    def test_a_changed_byte_is_noticed(self):
        self.assert_accepted()
        self.assert_accepted("--check")
        data = bytearray(self.driver.read_bytes())
        data[len(data) // 2] ^= 1
        self.driver.write_bytes(data)
        self.assert_refused(f"{self.driver}: the signature is not valid", "--check")

    def test_a_file_that_is_not_signed_is_noticed(self):
        self.assert_accepted()
        shutil.copy(PACKAGE / "x86/Stelvane.dll", self.driver)
        self.assert_refused(f"{self.driver}: the signature is not valid", "--check")

    def test_a_signature_of_somebody_else_is_noticed(self):
        own = self.certificate("secret") + self.password("secret")
        self.assert_accepted(*own)
        self.assert_accepted("--check", *own)
        self.assert_refused("the signature is not valid", "--check")
        self.assert_accepted()
        self.assert_refused("the signature is not valid", "--check", *own)

    def test_the_root_of_a_certificate_can_be_given(self):
        self.openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=Root",
                     "-keyout", "root.key", "-out", "root.pem")
        own = self.certificate(issuer="root")
        self.assert_refused("the signature is not valid", *own)
        self.assert_accepted(*own, "--ca", self.folder / "root.pem")

    def test_a_wrong_password_is_refused(self):
        own = self.certificate("secret")
        self.assert_refused("not opened with this password", *own)
        self.assert_refused("not opened with this password", *own, *self.password("other"))

    def test_a_certificate_for_other_uses_is_refused(self):
        own = self.certificate(key_use="serverAuth")
        self.assert_refused("the signature is not valid", *own)

    def test_what_is_no_program_is_refused(self):
        self.driver.write_text("text")
        self.assert_refused(f"{self.driver}: not signed")

    def test_a_folder_without_programs_is_refused(self):
        shutil.rmtree(self.package)
        self.assert_refused("no such folder")
        self.package.mkdir()
        self.assert_refused("no DLL or program")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

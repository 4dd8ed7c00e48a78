#!/usr/bin/env python3
"""Breaks the rules of tools/check-dll one at a time and sees each breach caught.

    tools/check_dll_test.py MACHINE COMPILER NM WINDRES      (MACHINE: x64 or x86)

A tiny DLL that keeps every rule is built by the cross compiler, then variants of it that each break
one; the check must name exactly the rules that a variant breaks.
"""
import functools
import os
import re
import struct
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
import pe

TOOLS = os.path.dirname(os.path.abspath(__file__))
MACHINE, COMPILER, NM, WINDRES = sys.argv[1:]

SOURCE = """
#include <windows.h>
#include <unknwn.h>
struct VersionRecord { unsigned long major, minor, service; };
extern "C" {
extern VersionRecord Microsoft_WDF_UMDF_Version;
VersionRecord Microsoft_WDF_UMDF_Version = {1, 11, 0};
HRESULT __stdcall DllGetClassObject(REFCLSID, REFIID, void**) { return GetLastError(); }
HRESULT __stdcall DllCanUnloadNow() { return S_OK; }
}
BOOL WINAPI DllMain(HINSTANCE, DWORD, void*) { return TRUE; }
"""
# Its call has no __declspec(dllimport), so the linker leads it to the import by a jump.
WITHOUT_HEADERS = """
extern "C" {
extern unsigned long Microsoft_WDF_UMDF_Version[3];
unsigned long Microsoft_WDF_UMDF_Version[3] = {1, 11, 0};
void* __stdcall LoadLibraryA(const char*);
long __stdcall DllGetClassObject(void*, void*, void*) { return 0; }
long __stdcall DllCanUnloadNow() { return LoadLibraryA("x") != nullptr; }
}
"""
DEFINITION = """LIBRARY Tiny
EXPORTS
  DllGetClassObject PRIVATE
  DllCanUnloadNow PRIVATE
  Microsoft_WDF_UMDF_Version DATA
"""
RESOURCE = """
1 VERSIONINFO FILEVERSION 1,2,3,0 PRODUCTVERSION 1,2,3,0 FILETYPE 2
BEGIN
  BLOCK "StringFileInfo"
  BEGIN
    BLOCK "040904b0"
    BEGIN
      VALUE "CompanyName", "Maker"
      VALUE "FileDescription", "A file"
      VALUE "FileVersion", "1.2.3.0"
      VALUE "LegalCopyright", "Maker's"
      VALUE "OriginalFilename", "tiny.dll"
      VALUE "ProductName", "Tiny"
      VALUE "ProductVersion", "1.2.3.0"
    END
  END
END
"""
LINK = ["-shared", "-static", "-s", "-Wl,--nxcompat", "-Wl,--dynamicbase",
        "-Wl,--enable-stdcall-fixup", "-Wl,--exclude-all-symbols"]


@functools.cache
def compiled(source):
    """The object file of a source; most tests share one."""
    with tempfile.TemporaryDirectory() as folder:
        with open(os.path.join(folder, "tiny.cpp"), "w", encoding="ascii") as file:
            file.write(source)
        subprocess.run([COMPILER, "-std=c++20", "-Os", "-c", "tiny.cpp", "-o", "tiny.o"],
                       check=True, cwd=folder)
        with open(os.path.join(folder, "tiny.o"), "rb") as file:
            return file.read()


class CheckDllTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def build(self, source=SOURCE, definition=DEFINITION, link=(), without=(),
              resource=RESOURCE):
        """Compiles and links a DLL; returns the paths of the DLL and its object file."""
        for name, text in ("def", definition), ("rc", resource):
            with open(self.path(f"tiny.{name}"), "w", encoding="ascii") as file:
                file.write(text)
        with open(self.path("tiny.o"), "wb") as file:
            file.write(compiled(source))
        high_entropy = ["-Wl,--high-entropy-va"] if MACHINE == "x64" else []
        options = [option for option in LINK + high_entropy if option not in without]
        for command in (
                [WINDRES, "tiny.rc", "details.o"],
                [COMPILER, "tiny.o", "details.o", "tiny.def", "-o", "tiny.dll", *options, *link]):
            subprocess.run(command, check=True, cwd=self.folder)
        return self.path("tiny.dll"), self.path("tiny.o")

    @staticmethod
    def header_offset(path):
        with open(path, "rb") as file:
            return struct.unpack_from("<I", file.read(), 0x3C)[0]

    def patch(self, path, offset, data):
        """Overwrites bytes of a file, at an offset from its PE header."""
        start = self.header_offset(path) + offset
        with open(path, "r+b") as file:
            file.seek(start)
            file.write(data)

    def check(self, built, machine=None, folders=()):
        """Runs the check; returns the names of the broken rules and everything it printed."""
        dll, object_file = built
        run = subprocess.run(
            [sys.executable, os.path.join(TOOLS, "check-dll"), dll,
             "--machine", machine or MACHINE,
             "--imports", os.path.join(TOOLS, "windows8-imports.txt"),
             "--project-version", "1.2.3", "--nm", NM, "--objects", object_file,
             "--folders", *folders],
            capture_output=True, text=True, check=False)
        broken = set(re.findall(r"^BROKEN  ([a-z-]+):", run.stdout, re.MULTILINE))
        self.assertEqual(run.returncode, 1 if broken else 0, run.stdout + run.stderr)
        return broken, run.stdout

    def assert_broken(self, rule, text, built, **more):
        broken, output = self.check(built, **more)
        self.assertEqual(broken, {rule}, output)
        self.assertIn(text, output)

    def test_a_dll_that_keeps_every_rule_passes(self):
        broken, output = self.check(self.build())
        self.assertEqual(broken, set(), output)

    def test_a_dll_for_the_other_machine_is_caught(self):
        other = "x86" if MACHINE == "x64" else "x64"
        broken, _ = self.check(self.build(), machine=other)
        self.assertIn("machine", broken)

    def test_a_program_is_caught(self):
        broken, output = self.check(self.build(
            source=SOURCE + "int main() { return 0; }\n",
            definition=DEFINITION.replace("LIBRARY Tiny\n", ""), without=("-shared",)))
        self.assertIn("machine", broken)
        self.assertIn("not marked as a DLL", output)

    def test_one_export_too_many_is_caught(self):
        self.assert_broken("exports", "Extra is exported", self.build(
            source=SOURCE + 'extern "C" int Extra() { return 0; }\n',
            definition=DEFINITION + "  Extra\n"))

    def test_a_missing_export_is_caught(self):
        self.assert_broken("exports", "DllCanUnloadNow is not exported", self.build(
            definition=DEFINITION.replace("  DllCanUnloadNow PRIVATE\n", "")))

    def test_a_data_export_in_place_of_a_function_is_caught(self):
        self.assert_broken("exports", "DllCanUnloadNow is not code", self.build(
            definition=DEFINITION.replace("DllCanUnloadNow PRIVATE",
                                          "DllCanUnloadNow=Microsoft_WDF_UMDF_Version DATA")))

    @unittest.skipUnless(MACHINE == "x86", "only x86 decorates names")
    def test_decorated_exports_are_caught(self):
        broken, output = self.check(self.build(
            source=SOURCE.replace("HRESULT __stdcall", "__declspec(dllexport) HRESULT __stdcall"),
            definition="LIBRARY Tiny\nEXPORTS\n  Microsoft_WDF_UMDF_Version DATA\n"))
        self.assertEqual(broken, {"exports"})
        self.assertIn("DllCanUnloadNow@0 is exported", output)

    def test_another_framework_version_is_caught(self):
        self.assert_broken("version-record", "it says (1, 9, 0)", self.build(
            source=SOURCE.replace("{1, 11, 0}", "{1, 9, 0}")))

    def test_other_version_numbers_in_the_resource_are_caught(self):
        self.assert_broken("version-resource", "file version (1, 2, 4, 0) is not", self.build(
            resource=RESOURCE.replace("FILEVERSION 1,2,3,0", "FILEVERSION 1,2,4,0")))
        self.assert_broken("version-resource", "product version (0, 0, 0, 0) is not", self.build(
            resource=RESOURCE.replace("PRODUCTVERSION 1,2,3,0", "")))

    def test_other_version_texts_in_the_resource_are_caught(self):
        broken, output = self.check(self.build(resource=RESOURCE.replace("1.2.3.0", "1.2.4.0")))
        self.assertEqual(broken, {"version-resource"}, output)
        self.assertIn("FileVersion is '1.2.4.0', not '1.2.3.0'", output)
        self.assertIn("ProductVersion is '1.2.4.0', not '1.2.3.0'", output)

    def test_another_file_name_in_the_resource_is_caught(self):
        self.assert_broken("version-resource", "OriginalFilename is 'large.dll'", self.build(
            resource=RESOURCE.replace("tiny.dll", "large.dll")))

    def test_a_missing_text_in_the_resource_is_caught(self):
        self.assert_broken("version-resource", "there is no CompanyName", self.build(
            resource=RESOURCE.replace("CompanyName", "Company")))

    def test_a_dll_without_a_version_resource_is_caught(self):
        self.assert_broken("version-resource", "0 version resources", self.build(
            resource="1 RCDATA BEGIN 1 END"))

    def test_a_dll_that_is_not_listed_is_caught(self):
        broken, output = self.check(self.build(
            source=SOURCE.replace("GetLastError()", "MessageBeep(0)"), link=["-luser32"]))
        self.assertEqual(broken, {"import-dlls", "driver-imports"})
        self.assertIn("USER32.dll is not on the list", output)

    def test_the_compilers_runtime_as_a_dll_is_caught(self):
        broken, output = self.check(self.build(
            source=SOURCE.replace("GetLastError()", "(throw 1, S_OK)"), without=("-static",)))
        self.assertIn("import-dlls", broken)
        self.assertIn("libstdc++-6.dll is not on the list", output)

    def test_a_function_that_is_not_listed_is_caught(self):
        broken, output = self.check(self.build(
            source=SOURCE.replace("GetLastError()", "Beep(1, 1)")))
        self.assertEqual(broken, {"import-functions", "driver-imports"})
        self.assertIn("Beep of KERNEL32.dll is not on the list", output)

    def test_a_lookup_by_name_in_the_drivers_own_code_is_caught(self):
        self.assert_broken("driver-imports", "the driver's code uses GetProcAddress", self.build(
            source=SOURCE.replace("GetLastError()", "!GetProcAddress(nullptr, nullptr)")))

    def test_a_lookup_that_goes_round_the_import_slot_is_caught(self):
        self.assert_broken("driver-imports", "the driver's code uses LoadLibraryA", self.build(
            source=WITHOUT_HEADERS))

    def test_object_files_that_are_not_given_are_caught(self):
        run = subprocess.run(
            [sys.executable, os.path.join(TOOLS, "check-dll"), self.build()[0],
             "--machine", MACHINE, "--imports", os.path.join(TOOLS, "windows8-imports.txt"),
             "--rule", "driver-imports"], capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 1, run.stdout + run.stderr)

    def test_executable_data_is_caught(self):
        self.assert_broken("no-execute", "NX_COMPAT", self.build(
            without=("-Wl,--nxcompat",), link=["-Wl,--disable-nxcompat"]))

    def test_a_fixed_address_is_caught(self):
        broken, output = self.check(self.build(
            without=("-Wl,--dynamicbase", "-Wl,--high-entropy-va"),
            link=["-Wl,--disable-dynamicbase"]))
        self.assertIn("address-randomisation", broken)
        self.assertIn("DYNAMIC_BASE is not set", output)

    @unittest.skipUnless(MACHINE == "x64", "only x64 has the flag")
    def test_randomisation_in_the_low_address_space_is_caught(self):
        self.assert_broken("address-randomisation", "HIGH_ENTROPY_VA is not set", self.build(
            without=("-Wl,--high-entropy-va",), link=["-Wl,--disable-high-entropy-va"]))

    def test_missing_relocations_are_caught(self):
        built = self.build()
        directories = 24 + (112 if MACHINE == "x64" else 96)
        self.patch(built[0], directories + 8 * pe.RELOCATION_TABLE, bytes(8))
        self.assert_broken("relocations", "there are none", built)

    def test_relocations_marked_as_stripped_are_caught(self):
        built = self.build()
        with open(built[0], "rb") as file:
            flags = struct.unpack_from("<H", file.read(), self.header_offset(built[0]) + 22)[0]
        self.patch(built[0], 22, struct.pack("<H", flags | pe.FILE_RELOCATIONS_STRIPPED))
        self.assert_broken("relocations", "marked as stripped", built)

    def test_a_missing_entry_point_is_caught(self):
        self.assert_broken("entry-point", "there is none", self.build(link=["-Wl,-e,0"]))

    def test_a_newer_windows_is_caught(self):
        self.assert_broken("subsystem-version", "it asks for Windows 10.0", self.build(
            link=["-Wl,--major-subsystem-version=10", "-Wl,--minor-subsystem-version=0"]))

    def test_a_file_over_the_limit_is_caught(self):
        self.assert_broken("size", "307200 are allowed", self.build(
            source=SOURCE + 'extern const char big[307200]; const char big[307200] = "x";\n'))

    def test_symbols_left_in_the_file_are_caught(self):
        self.assert_broken("stripped", "symbols", self.build(without=("-s",)))

    def test_a_path_of_the_build_machine_is_caught(self):
        source = SOURCE + 'extern const char path[]; const char path[] = "/some/folder/x.cpp";\n'
        self.assert_broken("build-paths", "/some/folder (utf-8)", self.build(source=source),
                           folders=["/some/folder"])

    def test_a_wide_path_of_the_build_machine_is_caught(self):
        source = SOURCE + "extern const wchar_t p[]; const wchar_t p[] = L\"/some/folder/x\";\n"
        self.assert_broken("build-paths", "/some/folder (utf-16-le)", self.build(source=source),
                           folders=["/some/folder"])

    def test_a_file_that_is_no_dll_at_all_is_refused(self):
        with open(self.path("text.dll"), "w", encoding="ascii") as file:
            file.write("text" * 100)
        run = subprocess.run(
            [sys.executable, os.path.join(TOOLS, "check-dll"), self.path("text.dll"),
             "--machine", MACHINE, "--imports", os.path.join(TOOLS, "windows8-imports.txt")],
            capture_output=True, text=True, check=False)
        self.assertNotEqual(run.returncode, 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

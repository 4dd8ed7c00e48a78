"""Reads the parts of a Windows PE file that the checks of the driver look at."""
import struct

EXPORT_TABLE, IMPORT_TABLE, RESOURCE_TABLE, RELOCATION_TABLE = 0, 1, 2, 5
DEBUG_TABLE, DELAY_IMPORT_TABLE = 6, 13
VERSION_RESOURCE = 16
MACHINES = {0x8664: "x64", 0x014C: "x86"}

FILE_RELOCATIONS_STRIPPED = 0x0001
FILE_DLL = 0x2000
DLL_HIGH_ENTROPY_VA = 0x0020
DLL_DYNAMIC_BASE = 0x0040
DLL_NX_COMPAT = 0x0100
SECTION_EXECUTE = 0x20000000


class Section:
    """One section: name, address range and access, and where its bytes lie in the file."""

    def __init__(self, name, header):
        self.name = name
        self.size, self.address, self.file_size, self.file_offset = header[0:4]
        self.executable = bool(header[8] & SECTION_EXECUTE)


class PeFile:
    """A PE file, read whole. Addresses are relative to the image base unless said otherwise."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self.data = file.read()
        header = self._unpack("<I", 0x3C)[0]
        if self.data[:2] != b"MZ" or self.data[header:header + 4] != b"PE\0\0":
            raise ValueError(f"{path} is not a PE file")
        (machine, section_count, _, symbols, self.symbol_count, optional_size,
         self.file_flags) = self._unpack("<HHIIIHH", header + 4)
        self.machine = MACHINES.get(machine, hex(machine))
        optional = header + 24
        wide = self._unpack("<H", optional)[0] == 0x20B
        self.thunk_size = 8 if wide else 4
        self.entry_point = self._unpack("<I", optional + 16)[0]
        self.subsystem_version = self._unpack("<HH", optional + 48)
        self.dll_flags = self._unpack("<H", optional + 70)[0]
        self._read_directories(optional + (108 if wide else 92))
        self._read_sections(optional + optional_size, section_count, symbols)

    def _unpack(self, layout, offset):
        return struct.unpack_from(layout, self.data, offset)

    def _read_directories(self, offset):
        count = self._unpack("<I", offset)[0]
        self.directories = [self._unpack("<II", offset + 4 + 8 * i) for i in range(count)]

    def _read_sections(self, offset, count, symbols):
        # A name of more than eight characters stands in the string table, after the symbols.
        strings = symbols + 18 * self.symbol_count
        self.sections = []
        for start in range(offset, offset + 40 * count, 40):
            name = self.data[start:start + 8].rstrip(b"\0")
            if name.startswith(b"/"):
                name = self._text_at(strings + int(name[1:]))
            else:
                name = name.decode("ascii")
            self.sections.append(Section(name, self._unpack("<IIIIIIHHI", start + 8)))

    def _text_at(self, offset):
        return self.data[offset:self.data.index(b"\0", offset)].decode("ascii")

    def section_at(self, address):
        """The section that holds an address, or None."""
        for section in self.sections:
            if section.address <= address < section.address + max(section.size, section.file_size):
                return section
        return None

    def offset_of(self, address):
        """Where in the file an address lies."""
        section = self.section_at(address)
        return address - section.address + section.file_offset

    def directory(self, index):
        """Address and size of a data directory; (0, 0) if there is none."""
        return self.directories[index] if index < len(self.directories) else (0, 0)

    def values_at(self, address, layout):
        """Numbers at an address, unpacked by a struct layout."""
        return self._unpack(layout, self.offset_of(address))

    def exports(self):
        """Exported names and their addresses."""
        address, size = self.directory(EXPORT_TABLE)
        if not size:
            return {}
        count, functions, names, ordinals = self.values_at(address + 24, "<IIII")
        result = {}
        for i in range(count):
            name = self._text_at(self.offset_of(self.values_at(names + 4 * i, "<I")[0]))
            ordinal = self.values_at(ordinals + 2 * i, "<H")[0]
            result[name] = self.values_at(functions + 4 * ordinal, "<I")[0]
        return result

    def imports(self):
        """Imported names by DLL, as spelled in the file; an import by number is '#<number>'."""
        result = {}
        address, _ = self.directory(IMPORT_TABLE)
        while address:
            lookup, _, _, name, _ = self.values_at(address, "<IIIII")
            if not name:
                break
            dll = self._text_at(self.offset_of(name))
            result.setdefault(dll, []).extend(self._thunk_names(lookup))
            address += 20
        return result

    def _thunk_names(self, address):
        layout = "<Q" if self.thunk_size == 8 else "<I"
        by_number = 1 << (8 * self.thunk_size - 1)
        while thunk := self.values_at(address, layout)[0]:
            if thunk & by_number:
                yield f"#{thunk & 0xFFFF}"
            else:
                yield self._text_at(self.offset_of(thunk) + 2)
            address += self.thunk_size

    def resources(self, kind):
        """The bytes of each resource of a kind (a number), by name and language."""
        start, size = self.directory(RESOURCE_TABLE)
        if size:
            for entry_kind, names in self._resource_entries(start, 0):
                if entry_kind == kind:
                    yield from self._resource_data(start, names)

    def _resource_entries(self, start, offset):
        """Pairs of a directory's entry: its number, and the offset of what it leads to."""
        named, numbered = self.values_at(start + offset + 12, "<HH")
        for i in range(named + numbered):
            yield self.values_at(start + offset + 16 + 8 * i, "<II")

    def _resource_data(self, start, offset):
        is_folder = 0x80000000
        if offset & is_folder:
            for _, below in self._resource_entries(start, offset & ~is_folder):
                yield from self._resource_data(start, below)
        else:
            address, size = self.values_at(start + offset, "<II")
            place = self.offset_of(address)
            yield self.data[place:place + size]

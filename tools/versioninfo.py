"""Reads the version resource of a Windows PE file."""
import struct

FIXED_SIGNATURE = 0xFEEF04BD


class VersionInfo:
    """File and product version as four numbers each, and the texts by name."""

    def __init__(self, data):
        key, value, children, _ = _block(data, 0)
        if key != "VS_VERSION_INFO" or len(value) < 24:
            raise ValueError("the version resource begins with something else")
        numbers = struct.unpack_from("<IIIIII", value)
        if numbers[0] != FIXED_SIGNATURE:
            raise ValueError("the version resource has no signature")
        self.file_version = _four(*numbers[2:4])
        self.product_version = _four(*numbers[4:6])
        self.texts = {}
        for name, _, languages, _ in _blocks(children):
            if name == "StringFileInfo":
                for _, _, texts, _ in _blocks(languages):
                    for text_name, text, _, _ in _blocks(texts):
                        self.texts[text_name] = text.decode("utf-16-le").rstrip("\0")


def _four(high, low):
    return high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF


def _aligned(offset):
    return offset + 3 & ~3


def _block(data, start):
    """A block's key, value, the bytes of its children, and where the next block may begin."""
    length, value_length, is_text = struct.unpack_from("<HHH", data, start)
    if length < 6 or start + length > len(data):
        raise ValueError("the version resource ends inside a block")
    data = data[start:start + length]
    key_end = 6
    while data[key_end:key_end + 2] not in (b"\0\0", b""):
        key_end += 2
    value = _aligned(key_end + 2)
    value_end = value + value_length * (2 if is_text else 1)
    key = data[6:key_end].decode("utf-16-le")
    return key, data[value:value_end], data[_aligned(value_end):], _aligned(start + length)


def _blocks(data):
    offset = 0
    while offset < len(data):
        *block, offset = _block(data, offset)
        yield *block, offset

python3 - <<'END'
import struct
import zlib


def block(number, count, address=0, size=256, family=0xE48BFF56, flags=0x2000, mark=0x0AB16F30):
    head = struct.pack('<8I', 0x0A324655, 0x9E5D5157, flags, address, size, number, count, family)
    return head + bytes([number + 1]) * 476 + struct.pack('<I', mark)


files = {
    'half': block(0, 1)[:-1],
    'none': b'',
    'mark': block(0, 2) + block(1, 2, mark=1),
    'payload': block(0, 1, size=477),
    'twice': block(0, 2) + block(0, 2),
    'beyond': block(0, 1) + block(1, 1),
    'missing': block(0, 3) + block(1, 3),
    'fewer': block(0, 2) + block(1, 3),
    'lost': block(0, 2) + block(1, 2, flags=0x2001)[:0],
    # Blocks for the last byte of one family and another, which shares it; of one the family has no
    # name. Then, in a mixed order, a family with a count of its own, and blocks without a family.
    'families': (block(0, 2, 0x100, 8) + block(0, 1, 0x107, 4, family=1)
                 + block(1, 2, 0x108, 8)),
    'apart': (block(0, 2, 0x100, 8) + block(0, 1, 0x108, 4, family=0xE48BFF59)
              + block(1, 2, 0x10C, 8) + block(0, 2, 0x200, 1, flags=0)
              + block(1, 2, 0x300, 1, flags=1)),
    # Numbered through, which a loader never completes, but nothing is missing.
    'through': block(0, 2, 0x100, 4) + block(1, 2, 0x104, 4, family=1),
    'fewerOfOne': block(0, 2) + block(0, 1, 0x100, family=1),
    'countsTooMany': block(0, 2) + block(0, 2, 0x100, family=1) + block(1, 2, 0x200),
    'skipped': block(0, 1, flags=0x2001),
    'top': block(0, 1, address=0xFFFFFF80),
    # In any order, with a block for another memory and one without meaning in front.
    'good': (block(0, 2, 0x10FFFF00, family=0xE48BFF57)[:32] + b'\xEF' * 476 + block(0, 1)[508:]
             + block(1, 3, 0x100, 4) + block(0, 3, 0x10, 2) + block(2, 3, 0x20, flags=0x2001)),
}
for name, text in files.items():
    open(name + '.uf2', 'wb').write(text)


def element(address, data, size=None):
    return struct.pack('<II', address, len(data) if size is None else size) + data


def target(*elements, mark=b'Target', count=None, size=None, name=b''):
    body = b''.join(elements)
    return (mark + struct.pack('<BI', 1, 1 if name else 0) + name.ljust(255, b'\0')
            + struct.pack('<II', len(body) if size is None else size,
                          len(elements) if count is None else count) + body)


def dfu(*targets, mark=b'DfuSe', version=1, size=None, tail=b'', suffix=b'UFD\x10', crc=0):
    """UM0391 and appendix B of the class specification of USB."""
    body = b''.join(targets) + tail
    text = (mark + struct.pack('<BIB', version, 11 + len(body) if size is None else size,
                               len(targets)) + body)
    text += struct.pack('<4H', 0xFFFF, 0xDF11, 0x0483, 0x011A) + suffix
    return text + struct.pack('<I', zlib.crc32(text) ^ 0xFFFFFFFF ^ crc)


good = target(element(0x10, b'abc'), name=b'Flash')
files = {
    'short': dfu()[:-1],
    'prefix': dfu(good, mark=b'DfuSE'),
    'version': dfu(good, version=2),
    'suffix': dfu(good, suffix=b'UFE\x10'),
    'suffixSize': dfu(good, suffix=b'UFD\x0F'),
    'checksum': dfu(good, crc=1),
    'size': dfu(good, size=0x100),
    'target': dfu(good, target(mark=b'target')),
    'more': dfu(target(element(0x10, b'abc'), count=2)),
    'cut': dfu(good[:-4]),
    'beyond': dfu(target(element(0xFFFFFFFE, b'abc'))),
    'element': dfu(target(element(0x10, b'abc', 0xFFFFFFFF))),
    'tail': dfu(good, tail=b'x'),
    'none': dfu(target(element(0x10, b''))),
    # Two targets, and an element without data.
    'targets': dfu(target(element(0x10, b'abc'), element(0x18, b'')), target(element(0x20, b'd'))),
    'twice': dfu(good, target(element(0x12, b'd'))),
}
for name, text in files.items():
    open(name + '.dfu', 'wb').write(text)
END

python3 - <<'END'
import struct


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
    'families': block(0, 2) + block(1, 2, 256, family=1),
    'skipped': block(0, 1, flags=0x2001),
    'top': block(0, 1, address=0xFFFFFF80),
    # In any order, with a block for another memory and one without meaning in front.
    'good': (block(0, 2, 0x10FFFF00, family=0xE48BFF57)[:32] + b'\xEF' * 476 + block(0, 1)[508:]
             + block(1, 3, 0x100, 4) + block(0, 3, 0x10, 2) + block(2, 3, 0x20, flags=0x2001)),
}
for name, text in files.items():
    open(name + '.uf2', 'wb').write(text)
END

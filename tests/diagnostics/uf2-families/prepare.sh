# A program for each of two kinds of core, in one file: blocks of the published description.
python3 - <<'END'
import struct

with open("both.uf2", "wb") as file:
    for family, byte in ((0xE48BFF59, b"A"), (0xE48BFF5A, b"R")):
        file.write(struct.pack("<8I", 0x0A324655, 0x9E5D5157, 0x2000, 0x10000000, 256, 0, 1, family)
                   + byte * 256 + bytes(220) + struct.pack("<I", 0x0AB16F30))
END

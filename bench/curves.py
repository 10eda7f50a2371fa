"""The curves of growth.py: work of a size, the commands that do it, and what else does the same."""
import random
from collections import namedtuple

from compare import make_inputs, objcopy, srec_cat
from limits import areas, hex_records, shuffled

# A curve has a name, its largest size and the unit of its sizes. `make`(bench, size) puts script and
# inputs into the folder of `bench` and returns the commands by name, in which the first word `tessaron`
# or `CmdTessaron` is a program of ours. The command `tessaron` is what the curve is about, the others
# run in the order in which they are, so that one may leave what a later one reads.
Curve = namedtuple("Curve", "name largest unit make")


def run(bench, text, *options, name="run.tsn"):
    bench.script(name, text)
    return ["tessaron", "run", name, *options]


def crcs(bench, size):
    lines = ["NEW_BUFFER @A EMPTY -useBufferRange={0, %d}\nFILL_BUFFER @A WITH_FILLER {0xFF}\n" % (8 * size)]
    for i in range(size):
        lines.append("NEW_CRC @C%dq FROM_BUFFER @A -useAreas={{%d, 4}}\n"
                     "FILL_BUFFER @A WITH_CRC @C%dq -useAreas={{%d, 4}}\n" % (i, 8 * i, i, 8 * i + 4))
    text = "".join(lines) + "WRITE_FILE out.bin WITH_BUFFERS {@A} -setFormat=RawBinary\n"
    return {"without": run(bench, text), "tessaron": run(bench, text, "--manifest", "manifest.json")}


def ranges(bench, size):
    text = "NEW_BUFFER @A EMPTY -useBufferRange={0, %d}\n" % (8 * size) + "".join(
        "FILL_BUFFER @A WITH_VALUES {%d} -useAreas={{%d, 1}}\n" % (i & 255, 8 * i) for i in range(size))
    text += "WRITE_FILE out.hex WITH_BUFFERS {@A}\n"
    return {"without": run(bench, text), "tessaron": run(bench, text, "--report", "report.html")}


def images(bench, size):
    text = "".join("NEW_BUFFER @I%dq FROM_VALUES {%d} -changeStartAddressTo=%d\n" % (i, i & 255, 4 * i)
                   for i in range(size)) + "WRITE_FILE out.hex WITH_BUFFERS {@I0q}\n"
    return {"without": run(bench, text), "tessaron": run(bench, text, "--report", "report.html")}


def outputs(bench, size):
    text = "NEW_BUFFER @A EMPTY -useBufferRange={0, 1024}\nFILL_BUFFER @A WITH_FILLER {0xFF}\n" + "".join(
        "WRITE_FILE out%d.bin WITH_BUFFERS {@A} -setFormat=RawBinary\n" % i for i in range(size))
    return {"without": run(bench, text), "tessaron": run(bench, text, "--manifest", "manifest.json")}


def conversion(bench, size):
    """A run that converts a HEX file of `size` MiB, and the name of that file."""
    source = make_inputs(bench, size)["hex"]
    return run(bench, "NEW_BUFFER @A FROM_FILE {%s}\nWRITE_FILE out.hex WITH_BUFFERS {@A}\n" % source), source


def check(*options):
    def make(bench, size):
        return {"run": conversion(bench, size)[0], "tessaron": ["tessaron", "check", "run.tsn", *options]}
    return make


def manifest(bench, size):
    command, _ = conversion(bench, size)
    return {"without": command, "tessaron": command + ["--manifest", "manifest.json"]}


def convert(bench, size):
    command, source = conversion(bench, size)
    return {"run": command, "tessaron": ["tessaron", "convert", source, "converted.hex"],
            "objcopy": objcopy(source, "hex", "out-objcopy.hex", "hex"),
            "srec_cat": srec_cat(source, "hex", "out-srec_cat.hex", "hex")}


def info(bench, size):
    source = make_inputs(bench, size)["hex"]
    return {"run": run(bench, "NEW_BUFFER @A FROM_FILE {%s}\n" % source), "tessaron": ["tessaron", "info", source]}


def scattered(bench, size, name, order=shuffled):
    (bench.work / name).write_text(hex_records(size, order))


def read(bench, size):
    scattered(bench, size, "in.hex")
    return {"tessaron": run(bench, "NEW_BUFFER @A FROM_FILE in.hex\nWRITE_FILE out.hex WITH_BUFFERS {@A}\n"),
            "srec_cat": ["srec_cat", "in.hex", "-intel", "-o", "out-srec_cat.hex", "-intel"]}


def merge(bench, size):
    """Two files whose areas alternate: the second one is moved into the gaps of the first."""
    scattered(bench, size, "in.hex")
    scattered(bench, size, "other.hex", lambda count: shuffled(count)[::-1])
    text = ("NEW_BUFFER @A FROM_FILE in.hex\nNEW_BUFFER @B FROM_FILE other.hex -changeStartAddressTo=16\n"
            "NEW_BUFFER @C FROM_BUFFERS {@A, @B} -onOverlap=Error\nWRITE_FILE out.hex WITH_BUFFERS {@C}\n")
    return {"tessaron": run(bench, text),
            "srec_cat": ["srec_cat", "in.hex", "-intel", "other.hex", "-intel", "-offset", "16", "-o",
                         "out-srec_cat.hex", "-intel"]}


def read_with_manifest(bench, size):
    command = read(bench, size)["tessaron"]
    return {"without": command, "tessaron": command + ["--manifest", "manifest.json"]}


def areas_after_comments(bench, size):
    text = "NEW_BUFFER @A EMPTY -useAreas=%s\nFILL_BUFFER @A WITH_VALUES {1} -useAreas=%s\n" % (
        (areas(size),) * 2) + "WRITE_FILE out.hex WITH_BUFFERS {@A}\n"
    return {"without": run(bench, text, name="without.tsn"), "tessaron": run(bench, "// a line of comment\n" * 50 + text)}


def parts(bench, size):
    """Images of an area each of one image of 1 MiB, and of a range of it."""
    whole = "NEW_BUFFER @A EMPTY -useBufferRange={0, 0x100000}\nFILL_BUFFER @A WITH_VALUES {1, 2, 3, 4}\n"

    def text(option):
        return whole + "".join("NEW_BUFFER @B%dq FROM_BUFFER @A %s\n" % (i, option % (8 * (i % 100000)))
                               for i in range(size)) + "WRITE_FILE out.hex WITH_BUFFERS {@B0q}\n"
    return {"range": run(bench, text("-useBufferRange={%d, 8}"), name="ranges.tsn"),
            "tessaron": run(bench, text("-useAreas={{%d, 8}}")), "CmdTessaron": ["CmdTessaron", "run.tsn"]}


def variables(pattern):
    def make(bench, size):
        return {"tessaron": run(bench, "".join(
            "SUBSTITUTE %s WITH value%d\n" % (pattern % i, i) for i in range(size)) + "".join(
                "PRINT_TEXT {name%dx}\n" % i for i in range(size)))}
    return make


CURVES = (
    Curve("manifest with n CRCs and their places", 100000, "CRCs", crcs),
    Curve("manifest with n outputs", 4000, "outputs", outputs),
    Curve("manifest of a conversion", 64, "MiB", manifest),
    Curve("report with n ranges", 100000, "ranges", ranges),
    Curve("report with n images", 100000, "images", images),
    Curve("check", 240, "MiB", check()),
    Curve("check --against-disk", 240, "MiB", check("--against-disk")),
    Curve("convert", 64, "MiB", convert),
    Curve("info", 64, "MiB", info),
    Curve("areas in random order, read", 1000000, "areas", read),
    Curve("areas in random order, merged", 1000000, "areas", merge),
    Curve("areas in random order, manifest", 1000000, "areas", read_with_manifest),
    Curve("areas after 50 lines of comment", 100000, "areas", areas_after_comments),
    Curve("n images of areas of one image", 100000, "images", parts),
    Curve("n variables that are words", 10000, "variables", variables("name%dx")),
    Curve("n variables that are patterns", 2000, "variables", variables("nam[e]%dx")),
)

#!/usr/bin/env python3
"""Writes the sample terminal blocks: the settings file kvmbblks.bsf, one drawing
(DXF text, extension .SHT) per block and a small sample picture (.bmp) for most.

Run it from anywhere; it writes beside itself. The output is committed, so the build
does not need Python. Every name, text and picture here is made up for the sample.
"""

import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))

# An attribute: tag, prompt, x, y, and what differs from the plain defaults.
# paper: "entities" puts it in paper space through group 67, "block" inside the
# "*Paper_Space" block definition.
def att(tag, prompt, x, y, height=0.08, paper=None, rotation=0.0, width=1.0,
        oblique=0.0, hmode=0, vmode=0, flags=0, default=""):
    return dict(tag=tag, prompt=prompt, x=x, y=y, height=height, paper=paper,
                rotation=rotation, width=width, oblique=oblique, hmode=hmode,
                vmode=vmode, flags=flags, default=default)


# drawing file, category, description, sample picture (None: none), vertical, label, attributes,
# picture size
BLOCKS = [
    ("HP1SPACE.SHT", "Spacers", "Module header", "hpspace.bmp", False, "HDR", [
        att("TAG", "Module tag", 0.30, 0.15, height=0.10),
        att("MFG", "Manufacturer", 0.30, 0.02, flags=1),
        att("CAT", "Catalog number", 1.20, 0.02, flags=1),
        att("DESC", "Description", 0.30, -0.12, flags=1),
        att("LINE1", "First line", 1.60, 0.15, paper="entities", hmode=2),
        att("LINE2", "Second line", 1.60, 0.02, paper="entities", hmode=2),
        att("RACK", "", 2.20, 0.15, flags=1),
        att("SLOT", "", 2.20, 0.02, flags=1),
    ], (64, 24)),
    ("HP1COM.SHT", "Power", "Common", "hpcom.bmp", False, "COM", [
        att("TERM_", "Terminal number", 0.05, 0.09, hmode=1, vmode=2),
        att("CHAN", "Channel", 0.60, 0.09),
    ], (48, 24)),
    ("HP1PWR.SHT", "Power", "Power feed", "hppwr.bmp", False, "PWR", [
        att("TERM_", "Terminal number", 0.05, 0.09, hmode=1, vmode=2),
        att("PWR", "Supply", 0.60, 0.09, default="24V DC"),
        att("MFG1", "Fuse maker", 0.60, -0.10, paper="block", flags=1),
        att("CAT1", "Fuse catalog", 1.20, -0.10, paper="block", flags=1),
        att("CNT1", "Fuse count", 1.80, -0.10, paper="block", flags=1),
    ], (56, 28)),
    ("HP1DI.SHT", "Digital", "Digital input", "hpdi.bmp", False, "DI", [
        att("TERM_", "Terminal number", 0.05, 0.09, hmode=1, vmode=2),
        att("DESC1", "Device", 0.60, 0.15),
        att("DESC2", "Function", 0.60, 0.02, width=0.8),
        att("ADDR", "Address", 1.60, 0.09, paper="entities"),
    ], (64, 32)),
    ("HP1DO.SHT", "Digital", "Digital output", "hpdo.bmp", False, "DO", [
        att("TERM_", "Terminal number", 0.05, 0.09, hmode=1, vmode=2),
        att("DESC1", "Load", 0.60, 0.15),
        att("DESC2", "Function", 0.60, 0.02, width=0.8),
        att("ADDR", "Address", 1.60, 0.09, paper="entities"),
    ], (64, 32)),
    ("HP1AI.SHT", "Analog", "Analog input", "hpai.bmp", False, "AI", [
        att("TERM_", "Terminal number", 0.05, 0.09, hmode=1, vmode=2),
        att("CHAN", "Channel", 0.60, 0.15),
        att("RANGE", "Signal range", 0.60, 0.02, default="4-20mA"),
    ], (40, 40)),
    ("HP1AO.SHT", "Analog", "Analog output", "hpao.bmp", False, "AO", [
        att("TERM_", "Terminal number", 0.05, 0.09, hmode=1, vmode=2),
        att("CHAN", "Channel", 0.60, 0.15),
        att("RANGE", "Signal range", 0.60, 0.02, default="0-10V"),
    ], (40, 40)),
    ("HP1SHLD.SHT", "Analog", "Shield", "hpshld.bmp", False, "SH", [
        att("TERM_", "Terminal number", 0.05, 0.09, hmode=1, vmode=2),
        att("CHAN", "", 0.60, 0.09),
    ], (32, 24)),
    ("HP1RLY.SHT", "Relay", "Relay contact", "hprly.bmp", False, "K", [
        att("TERM_", "Terminal number", 0.05, 0.09, hmode=1, vmode=2),
        att("COIL", "Coil tag", 0.60, 0.15),
        att("CONTACT", "Contact", 0.60, 0.02, oblique=15.0),
    ], (72, 32)),
    ("VP1RLY2.SHT", "Relay", "Relay contact, vertical", "vprly2.bmp", True, "K", [
        att("TERM_", "Terminal number", 0.09, 0.05, rotation=90.0, hmode=1, vmode=2),
        att("COIL", "Coil tag", 0.15, 0.60, rotation=90.0),
        att("CONTACT", "Contact", 0.02, 0.60, rotation=90.0),
    ], (32, 72)),
    ("HP1TC.SHT", "Temperature", "Thermocouple input", "hptc.bmp", False, "TC", [
        att("TERM_", "Terminal number", 0.05, 0.09, hmode=1, vmode=2),
        att("CHAN", "Channel", 0.60, 0.15),
        att("TCTYPE", "Thermocouple type", 0.60, 0.02, default="K"),
        att("POLARITY", "Polarity", 1.60, 0.09, paper="block"),
    ], (48, 48)),
    ("VP1RTD.SHT", "Temperature", "Resistance thermometer, vertical", "vprtd.bmp", True, "RTD", [
        att("TERM_", "Terminal number", 0.09, 0.05, rotation=90.0, hmode=1, vmode=2),
        att("CHAN", "Channel", 0.15, 0.60, rotation=90.0),
        att("WIRES", "Wires", 0.02, 0.60, rotation=90.0, default="3"),
    ], (36, 60)),
    ("HP1BLANK.SHT", "Spacers", "Blank row", None, False, "", [], (0, 0)),
]


def fmt(value):
    text = ("%.6f" % value).rstrip("0").rstrip(".")
    return text if text not in ("", "-0") else "0"


def pairs(*items):
    out = []
    for code, value in items:
        out.append("%3d" % code)
        out.append(value if isinstance(value, str) else fmt(value))
    return out


def attdef(a, in_entities):
    items = [(0, "ATTDEF"), (8, "TERMINAL")]
    if in_entities and a["paper"] == "entities":
        items.append((67, "1"))
    items += [(10, a["x"]), (20, a["y"]), (30, 0.0), (40, a["height"]), (1, a["default"])]
    if a["rotation"]:
        items.append((50, a["rotation"]))
    if a["width"] != 1.0:
        items.append((41, a["width"]))
    if a["oblique"]:
        items.append((51, a["oblique"]))
    if a["hmode"]:
        items.append((72, str(a["hmode"])))
    if a["hmode"] or a["vmode"]:
        items += [(11, a["x"]), (21, a["y"]), (31, 0.0)]
    items += [(3, a["prompt"]), (2, a["tag"]), (70, str(a["flags"]))]
    if a["vmode"]:
        items.append((74, str(a["vmode"])))
    return pairs(*items)


def geometry(vertical, label):
    """A terminal body: outline, screw, separator, label; turned for vertical blocks."""
    length, depth = 2.5, 0.25
    lines = [((0, -0.05), (length, -0.05)), ((length, -0.05), (length, depth)),
             ((length, depth), (0, depth)), ((0, depth), (0, -0.05)),
             ((0.5, -0.05), (0.5, depth))]
    circles = [((0.25, 0.1), 0.08)]
    text = ((0.02, -0.2), 0.06, label)

    def turn(point):
        return (point[1], point[0]) if vertical else point

    out = []
    for start, end in lines:
        s, e = turn(start), turn(end)
        out += pairs((0, "LINE"), (8, "TERMINAL"), (10, s[0]), (20, s[1]), (30, 0.0),
                     (11, e[0]), (21, e[1]), (31, 0.0))
    for center, radius in circles:
        c = turn(center)
        out += pairs((0, "CIRCLE"), (8, "TERMINAL"), (10, c[0]), (20, c[1]), (30, 0.0),
                     (40, radius))
    if label:
        p = turn(text[0])
        out += pairs((0, "TEXT"), (8, "TERMINAL"), (10, p[0]), (20, p[1]), (30, 0.0),
                     (40, text[1]), (1, text[2]), (50, 90.0 if vertical else 0.0))
    return out


def drawing(vertical, label, attributes):
    out = pairs((999, "Sample terminal block of plcdb"), (0, "SECTION"), (2, "HEADER"),
                (9, "$ACADVER"), (1, "AC1009"), (9, "$INSUNITS"), (70, "1"),
                (0, "ENDSEC"), (0, "SECTION"), (2, "BLOCKS"))
    for name, space in (("*Model_Space", None), ("*Paper_Space", "block")):
        out += pairs((0, "BLOCK"), (8, "0"), (2, name), (70, "0"), (10, 0.0), (20, 0.0),
                     (30, 0.0), (3, name), (1, ""))
        for a in attributes:
            if space and a["paper"] == space:
                out += attdef(a, False)
        out += pairs((0, "ENDBLK"), (8, "0"))
    out += pairs((0, "ENDSEC"), (0, "SECTION"), (2, "ENTITIES"))
    out += geometry(vertical, label)
    for a in attributes:
        if a["paper"] != "block":
            out += attdef(a, True)
    out += pairs((0, "ENDSEC"), (0, "EOF"))
    return "\r\n".join(out) + "\r\n"


def bitmap(width, height, vertical):
    """A 24-bit picture: light background, dark body outline, a round screw."""
    rows = []
    for y in range(height):
        row = bytearray()
        for x in range(width):
            u, v = (y, x) if vertical else (x, y)
            span_u, span_v = (height, width) if vertical else (width, height)
            border = u in (1, span_u - 2) or v in (2, span_v - 3)
            inside = 1 <= u <= span_u - 2 and 2 <= v <= span_v - 3
            screw_r = max(2, span_v // 4)
            cu, cv = span_v // 2, span_v // 2
            screw = (u - cu) ** 2 + (v - cv) ** 2 <= screw_r ** 2
            if screw and inside:
                color = (150, 150, 150)
            elif border and inside:
                color = (40, 40, 40)
            elif inside:
                color = (120, 200, 120)
            else:
                color = (245, 245, 245)
            row += bytes(reversed(color))  # blue, green, red
        row += b"\0" * ((4 - len(row) % 4) % 4)
        rows.append(bytes(row))
    pixels = b"".join(reversed(rows))  # bottom row first
    header = struct.pack("<2sIHHI", b"BM", 54 + len(pixels), 0, 0, 54)
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 2835, 2835,
                       0, 0)
    return header + info + pixels


def main():
    lines = ["* Terminal blocks of the plcdb sample: file;category;description;sample picture",
             "* Names of the HP and VP families: the third character is the style digit."]
    for name, category, description, sample, vertical, label, attributes, size in BLOCKS:
        with open(os.path.join(HERE, name), "w", newline="") as out:
            out.write(drawing(vertical, label, attributes))
        if sample:
            with open(os.path.join(HERE, sample), "wb") as out:
                out.write(bitmap(size[0], size[1], vertical))
        # The list names a block without the extension, as modules store it.
        lines.append(":%s;%s;%s;%s" % (name[:-4], category, description, sample or ""))
    with open(os.path.join(HERE, "kvmbblks.bsf"), "w", newline="") as out:
        out.write("\r\n".join(lines) + "\r\n")


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Writes the sample files beside itself, always the same bytes. Needs nothing but Python 3.

A drawing is made once, as a list of points, lines, arcs and texts; each format has one function that turns a Drawing
into that format's bytes; pump_cover shows what else a DXF can hold. The table SAMPLES at the end says which drawing
goes into which file. All lengths are drawing units (millimetres), angles degrees counter-clockwise, y upwards.
"""

import math
import pathlib
import struct
from dataclasses import dataclass, field

# Pens, as every format knows them.
SOLID, HIDDEN, CENTER, DASHED = "CONTINUOUS", "HIDDEN", "CENTER", "DASHED"
LEFT, MIDDLE, RIGHT = 0, 1, 2
BASELINE, HALF, TOP = 0, 2, 3
NONE, ARROW, DOT = 0, 1, 2  # marks at the ends of a line or an arc

ANSI_CODEPAGE, JAPANESE = "cp1252", "cp932"


# ---- The model of a drawing ----


@dataclass(frozen=True)
class Point:
    x: float
    y: float
    layer: str


@dataclass(frozen=True)
class Line:
    x1: float
    y1: float
    x2: float
    y2: float
    pen: str
    layer: str
    marks: tuple = (NONE, NONE)  # at (x1, y1) and at (x2, y2)
    mark_size: float = 0.0


@dataclass(frozen=True)
class Arc:
    """Counter-clockwise from start to end; 0 to 360 is a full circle."""

    x: float
    y: float
    radius: float
    start: float
    end: float
    pen: str
    layer: str
    marks: tuple = (NONE, NONE)  # at the start and at the end


@dataclass(frozen=True)
class Text:
    """(x, y) is the corner or middle of the text that `across` and `up` name."""

    x: float
    y: float
    height: float
    text: str
    angle: float
    across: int
    up: int
    layer: str


@dataclass
class Drawing:
    name: str
    number: str
    designer: str
    width: float  # the sheet reaches from (0, low) to (width, height)
    height: float
    low: float = 0.0
    encoding: str = ANSI_CODEPAGE
    items: list = field(default_factory=list)
    layer: str = "0"
    hidden: tuple = ()  # layers that are not shown
    current: str = ""  # the layer that new items would go to; shown whatever its flag says
    erased: list = field(default_factory=list)  # items that the user has deleted; native and backup files keep them

    def point(self, x, y):
        self.items.append(Point(x, y, self.layer))

    def line(self, x1, y1, x2, y2, pen=SOLID, marks=(NONE, NONE), mark_size=0.0):
        self.items.append(Line(x1, y1, x2, y2, pen, self.layer, marks, mark_size))

    def path(self, *corners, pen=SOLID):
        for (x1, y1), (x2, y2) in zip(corners, corners[1:]):
            self.line(x1, y1, x2, y2, pen)

    def box(self, x1, y1, x2, y2, pen=SOLID):
        self.path((x1, y1), (x2, y1), (x2, y2), (x1, y2), (x1, y1), pen=pen)

    def arc(self, x, y, radius, start, end, pen=SOLID, marks=(NONE, NONE)):
        self.items.append(Arc(x, y, radius, start, end, pen, self.layer, marks))

    def circle(self, x, y, radius, pen=SOLID):
        self.arc(x, y, radius, 0, 360, pen)

    def text(self, x, y, height, text, angle=0, across=LEFT, up=BASELINE):
        self.items.append(Text(x, y, height, text, angle, across, up, self.layer))

    def axes(self, x, y, reach):
        """Centre lines of a round shape."""
        self.line(x - reach, y, x + reach, y, CENTER)
        self.line(x, y - reach, x, y + reach, CENTER)

    def bore(self, x, y, diameter):
        self.circle(x, y, diameter / 2)
        self.axes(x, y, diameter / 2 + 4)

    def dimension(self, x1, y1, x2, y2, offset, text, height):
        """A measure from (x1, y1) to (x2, y2), drawn `offset` to the left of that direction."""
        angle = math.atan2(y2 - y1, x2 - x1)
        nx, ny = -math.sin(angle), math.cos(angle)
        degrees = math.degrees(angle)
        gap = math.copysign(height * 0.5, offset)
        for x, y in ((x1, y1), (x2, y2)):
            self.line(x + nx * gap, y + ny * gap, x + nx * (offset + gap), y + ny * (offset + gap))
        ax, ay, bx, by = x1 + nx * offset, y1 + ny * offset, x2 + nx * offset, y2 + ny * offset
        self.line(ax, ay, bx, by, marks=(ARROW, ARROW), mark_size=height)
        lift = height * 0.6
        self.text((ax + bx) / 2 + nx * lift, (ay + by) / 2 + ny * lift, height, text, degrees, MIDDLE)

    def erase_last(self):
        self.erased.append(self.items[-1])

    def extents(self):
        return 0.0, self.low, self.width, self.height

    def layers(self):
        """Names in the order of their first use."""
        return list(dict.fromkeys(item.layer for item in self.items))

    def visible(self):
        """What a format keeps that knows neither hidden layers nor deleted items."""
        return [item for item in self.items if item not in self.erased and item.layer not in self.hidden]


# ---- Drawings ----


def mounting_plate():
    """A plate with a bearing seat, two slots and a side view, on an A3 sheet."""
    d = Drawing("Mounting plate", "MP-2040-01", "K. Tanaka", 420, 297)
    d.layer = "FRAME"
    d.box(5, 5, 415, 292)
    d.box(275, 5, 415, 45)
    d.path((275, 32), (415, 32))
    d.path((275, 19), (415, 19))
    d.path((340, 5), (340, 19))
    d.text(279, 34.5, 11, d.name)
    d.text(279, 23, 4, "S45C  t20   " + d.designer)
    d.text(279, 9.5, 4, d.number)
    d.text(344, 9.5, 4, "1:1")

    left, bottom, right, top, corner = 50, 95, 290, 255, 18
    cx, cy = (left + right) / 2, (bottom + top) / 2
    d.layer = "PART"
    d.line(left + corner, bottom, right - corner, bottom)
    d.line(right, bottom + corner, right, top - corner)
    d.line(right - corner, top, left + corner, top)
    d.line(left, top - corner, left, bottom + corner)
    for x, y, start in ((right - corner, top - corner, 0), (left + corner, top - corner, 90),
                        (left + corner, bottom + corner, 180), (right - corner, bottom + corner, 270)):
        d.arc(x, y, corner, start, start + 90)
        d.bore(x, y, 14)
    d.circle(cx, cy, 52)
    d.circle(cx, cy, 30)
    d.circle(cx, cy, 42, CENTER)
    d.circle(cx, cy, 33, HIDDEN)
    d.axes(cx, cy, 60)
    for i in range(8):
        a = math.radians(22.5 + 45 * i)
        d.circle(cx + 42 * math.cos(a), cy + 42 * math.sin(a), 3.4)
    for x in (left + 40, right - 40):
        d.arc(x, cy + 22, 8, 0, 180)
        d.arc(x, cy - 22, 8, 180, 360)
        d.line(x - 8, cy - 22, x - 8, cy + 22)
        d.line(x + 8, cy - 22, x + 8, cy + 22)
        d.line(x, cy - 36, x, cy + 36, CENTER)
    d.line(left - 8, cy, right + 8, cy, CENTER)

    d.layer = "SIDE"  # seen from the right: 20 thick, with the raised seat and what lies inside
    s1, s2, s3 = 340, 360, 372
    d.box(s1, bottom, s2, top)
    d.path((s2, cy - 52), (s3, cy - 52), (s3, cy + 52), (s2, cy + 52))
    for y in (cy - 30, cy + 30):
        d.line(s1, y, s3, y, HIDDEN)
    for y in (cy - 33, cy + 33):
        d.line(s1, y, s1 + 8, y, HIDDEN)
    for y in (bottom + corner, top - corner):
        for half in (-7, 7):
            d.line(s1, y + half, s2, y + half, HIDDEN)
        d.line(s1 - 6, y, s2 + 6, y, CENTER)
    d.line(s1 - 8, cy, s3 + 8, cy, CENTER)

    d.layer = "DIMENSION"
    d.dimension(left, bottom, right, bottom, -40, "240", 12)
    d.dimension(left + corner, bottom, right - corner, bottom, -19, "204", 12)
    d.dimension(left, bottom, left, top, 20, "160", 12)
    d.dimension(s1, top, s2, top, 14, "20", 12)
    a = math.radians(60)
    d.path((cx + 52 * math.cos(a), cy + 52 * math.sin(a)), (cx + 84, 268), (cx + 112, 268))
    d.text(cx + 86, 271, 12, "R52")
    d.text(14, 22, 4, "8 - M8 P.C.D.84   4 - %%c14   (R18)")
    d.text(14, 12, 4, "Edges without note C0.5")
    return d


ROOMS = {"living": "Living room", "kitchen": "Kitchen", "bed": "Bedroom", "study": "Study", "bath": "Bath",
         "hall": "Hall", "title": "Ground floor  1:100", "name": "House plan", "designer": "M. Sato"}
ROOMS_JAPANESE = {"living": "居間", "kitchen": "台所", "bed": "寝室", "study": "書斎", "bath": "浴室",
                  "hall": "ﾎｰﾙ", "title": "１階平面図　縮尺 1:100", "name": "住宅平面図", "designer": "佐藤"}


def floor_plan(words, encoding):
    """A small house; the outer walls run from (1500, 2600) to (12500, 9600)."""
    d = Drawing(words["name"], "HP-0117", words["designer"], 14850, 10500, -600, encoding)
    left, bottom, right, top = 1500, 2600, 12500, 9600
    t, thin = 240, 120

    def wall(x1, y1, x2, y2, thickness, gaps):
        """Both faces of a straight wall along x or y; `gaps` are (from, to) along it and get jambs."""
        upright = x1 == x2
        at, end = (y1, y2) if upright else (x1, x2)
        for start, stop in [*sorted(gaps), (end, None)]:
            for side in (-thickness / 2, thickness / 2):
                ends = (x1 + side, at, x1 + side, start) if upright else (at, y1 + side, start, y1 + side)
                d.line(*ends)
            if stop is None:
                break
            for jamb in (start, stop):
                half = thickness / 2
                d.line(*((x1 - half, jamb, x1 + half, jamb) if upright else (jamb, y1 - half, jamb, y1 + half)))
            at = stop

    def window(x1, y1, x2, y2):
        d.line(x1, y1, x2, y2)
        nx, ny = (t / 2, 0) if x1 == x2 else (0, t / 2)
        for side in (-1, 1):
            d.line(x1 + nx * side, y1 + ny * side, x2 + nx * side, y2 + ny * side)

    def door(x, y, width, leaf, sweep):
        """Hinge at (x, y); the open leaf points to `leaf` degrees, the arc shows the way it swings."""
        a = math.radians(leaf)
        d.line(x, y, x + width * math.cos(a), y + width * math.sin(a))
        d.arc(x, y, width, min(leaf, leaf + sweep) % 360, max(leaf, leaf + sweep) % 360 or 360)

    d.layer = "WALL"
    wall(left, bottom, right, bottom, t, [(2600, 4600), (7050, 8050), (9600, 11400)])
    wall(left, top, right, top, t, [(2400, 4200), (6600, 7800), (9700, 11500)])
    wall(left, bottom, left, top, t, [(4000, 5600), (7800, 8800)])
    wall(right, bottom, right, top, t, [(3700, 5100), (7600, 8600)])
    wall(6100, bottom, 6100, top, thin, [(3300, 4200), (7400, 8300)])
    wall(8800, bottom, 8800, top, thin, [(4700, 5600), (7000, 7900)])
    wall(left, 6600, 6100, 6600, thin, [(4600, 5500)])
    wall(6100, 6400, 8800, 6400, thin, [(6900, 7700)])
    wall(8800, 6200, right, 6200, thin, [])
    d.layer = "OPENING"
    for x1, y1, x2, y2 in ((2600, bottom, 4600, bottom), (9600, bottom, 11400, bottom), (2400, top, 4200, top),
                           (6600, top, 7800, top), (9700, top, 11500, top), (left, 4000, left, 5600),
                           (left, 7800, left, 8800), (right, 3700, right, 5100), (right, 7600, right, 8600)):
        window(x1, y1, x2, y2)
    door(7050, bottom, 1000, 90, -90)
    door(6100, 3300, 900, 180, -90)
    door(6100, 7400, 900, 180, -90)
    door(8800, 5600, 900, 0, -90)
    door(8800, 7900, 900, 0, -90)
    door(5500, 6600, 900, 270, -90)
    door(7700, 6400, 800, 90, 90)

    d.layer = "FURNITURE"
    d.box(1900, 3000, 2800, 5000)  # sofa, table
    d.box(3300, 3600, 4200, 4600)
    d.path((1620, 9000), (5200, 9000), (5200, 9480))  # worktop with sink and hob
    d.box(2300, 9080, 3100, 9400)
    for x in (4150, 4550):
        d.circle(x, 9240, 150)
    d.box(10700, 2900, 12300, 5000)  # bed
    d.line(10700, 4400, 12300, 4400)
    d.box(9000, 9050, 11200, 9450)  # desk
    d.circle(10100, 8650, 260)
    d.box(6250, 8600, 7900, 9400)  # tub
    d.arc(7550, 9000, 260, 270, 90)
    d.path((7550, 9260), (6500, 9260), (6500, 8740), (7550, 8740))
    d.circle(8400, 6800, 220)
    for i in range(5):  # stairs
        d.line(6160, 4500 + 270 * i, 7400, 4500 + 270 * i)
    d.line(7400, 4400, 7400, 5700)

    d.layer = "AXIS"
    for x in (left, 6100, 8800, right):
        d.line(x, top + 200, x, top + 700, CENTER)
    for y in (bottom, 6600, top):
        d.line(left - 700, y, left - 200, y, CENTER)

    d.layer = "NAME"
    for room, x, y in (("living", 3750, 5700), ("kitchen", 3600, 8000), ("bed", 10650, 5650), ("study", 10700, 7200),
                       ("bath", 7300, 7900), ("hall", 7800, 4150)):
        d.text(x, y, 480, words[room], 0, MIDDLE, HALF)
    d.text(7000, 0, 520, words["title"], 0, MIDDLE)
    d.layer = "DIMENSION"
    for x1, x2, text in ((left, 6100, "4600"), (6100, 8800, "2700"), (8800, right, "3700")):
        d.dimension(x1, bottom, x2, bottom, -850, text, 420)
    d.dimension(left, bottom, right, bottom, -1750, "11000", 420)
    d.dimension(right, bottom, right, top, -900, "7000", 420)
    return d


SHAFT = {"name": "Drive shaft", "designer": "T. Suzuki", "section": "A-A", "grip": "Grip", "scale": "Scale 1:1",
         "material": "Material [SCM440]", "heat": ("Heat treatment:", "28-32 HRC, seats ground"),
         "notes": ("Break all edges without note 0.3 x 45 degrees. Ground faces Ra 0.8, all others Ra 6.3. Oil well.",
                   "Run-out of the seats 0.01 between the centres. Keyway to fit the key 10 x 8 x 50, no burrs left.")}
SHAFT_JAPANESE = {"name": "駆動軸", "designer": "鈴木", "section": "断面 A-A", "grip": "ｸﾞﾘｯﾌﾟ", "scale": "尺度 1:1",
                  "material": "材質 [SCM440]", "heat": ("熱処理：焼入焼戻し", "HRC28～32　表面は研削仕上げ"),
                  "notes": ("指示なき角部は C0.3 とする。研削面は Ra0.8、その他は Ra6.3。軸受座の振れは 0.01 以下。",
                            "ｷｰ溝は平行ｷｰ 10x8x50 に合わせる。加工後は脱脂し、防錆油を塗布して梱包すること。")}


def drive_shaft(words, encoding):
    """A stepped shaft with a keyway, its section, and a layer of construction lines that is not shown."""
    d = Drawing(words["name"], "DS-0350-02", words["designer"], 420, 297, 0, encoding)
    d.hidden, d.current = ("CONSTRUCTION",), "DIMENSION"
    d.layer = "FRAME"
    d.box(5, 5, 415, 292)
    d.box(275, 5, 415, 45)
    d.path((275, 32), (415, 32))
    d.path((275, 19), (415, 19))
    d.path((340, 5), (340, 19))
    d.text(279, 34.5, 11, d.name)
    d.text(279, 23, 4, words["material"])
    d.text(411, 25.5, 4, d.designer, 0, RIGHT, HALF)
    d.text(279, 9.5, 4, d.number)
    d.text(411, 14.5, 4, words["scale"], 0, RIGHT, TOP)
    d.line(5, 297, 420, 0)
    d.erase_last()

    cy = 205
    steps = [(30, 85, 30), (85, 150, 40), (150, 168, 60), (168, 265, 44), (265, 325, 36), (325, 375, 24)]
    d.layer = "CONSTRUCTION"
    for x1, x2, diameter in steps:
        for half in (-diameter / 2, diameter / 2):
            d.line(0, cy + half, 420, cy + half)
        d.line(x1, 0, x1, 297)
    d.circle(216, cy, 80)

    d.layer = "PART"
    for x1, x2, diameter in steps:
        first, last = max(x1, 32), min(x2, 373)  # the ends are chamfered
        d.line(first, cy + diameter / 2, last, cy + diameter / 2)
        d.line(first, cy - diameter / 2, last, cy - diameter / 2)
    for (x1, _, diameter), (_, _, before) in zip(steps, [(0, 0, 0), *steps]):
        half = max(diameter, before) / 2 - (2 if before == 0 else 0)
        d.line(x1, cy - half, x1, cy + half)
    d.line(375, cy - 10, 375, cy + 10)
    for end, inner, half in ((30, 32, 15), (375, 373, 12)):
        d.line(inner, cy - half, inner, cy + half)
        for side in (-1, 1):
            d.line(inner, cy + side * half, end, cy + side * (half - 2))
            d.line(inner, cy + side * half, end, cy + side * half)  # the corner as it was
            d.erase_last()
    for side in (-1, 1):  # the root of the thread
        d.line(330, cy + side * 9.5, 375, cy + side * 9.5, HIDDEN)
    d.arc(190, cy, 5, 90, 270)  # the keyway
    d.arc(240, cy, 5, 270, 90)
    d.line(190, cy + 5, 240, cy + 5)
    d.line(190, cy - 5, 240, cy - 5)
    for side in (-1, 1):  # the bearing that belongs on its seat
        d.box(272, cy + side * 18, 304, cy + side * 36, DASHED)
    d.line(20, cy, 385, cy, CENTER)
    d.layer = "TEXTURE"  # the grip is knurled
    for column in range(11):
        for row in range(6):
            d.point(36 + column * 4.5, cy - 12 + row * 4.8 + column % 2 * 2.4)

    sx, sy, r = 90, 78, 44  # the section, twice as large, hatched
    d.layer = "PART"
    notch = math.degrees(math.asin(10 / r))
    edge = r * math.cos(math.radians(notch))
    d.arc(sx, sy, r, 90 + notch, 90 - notch)
    d.path((sx - 10, sy + edge), (sx - 10, sy + 34), (sx + 10, sy + 34), (sx + 10, sy + edge))
    d.axes(sx, sy, r + 6)
    d.layer = "HATCH"
    diagonal = math.sqrt(0.5)
    for k in range(-6, 7):
        offset = k * 7.0  # from the centre, along the normal of the hatch
        reach = math.sqrt(r * r - offset * offset)
        points = [(sx + (c - offset) * diagonal, sy + (c + offset) * diagonal)
                  for c in (i / 2 for i in range(int(-2 * reach), int(2 * reach) + 1))]
        start = last = None
        for point in [*points, None]:  # a stroke ends at the keyway and at the edge
            if point and not (abs(point[0] - sx) < 10 and point[1] - sy > 34):
                start, last = start or point, point
            elif start:
                d.line(*start, *last)
                start = None
    d.layer = "NOTE"
    d.line(30, cy + 40, 30 + 36, cy + 40)
    d.line(58, cy + 8, 48, cy + 40, marks=(DOT, NONE))
    d.text(32, cy + 43, 12, words["grip"])
    for side in (-1, 1):  # where the section is taken
        d.line(192, cy + side * 28, 192, cy + side * 40)
        d.line(192, cy + side * 40, 176, cy + side * 40, marks=(NONE, ARROW), mark_size=6)
    d.text(sx, sy - r - 20, 12, words["section"], 0, MIDDLE)
    for i, line in enumerate(words["heat"]):
        d.text(178, 92 - 16 * i, 11, line)
    for i, line in enumerate(words["notes"]):
        d.text(178, 66 - 8 * i, 4, line)
    d.line(375, cy - 10, 395, cy + 10)  # the angle of the chamfer
    d.arc(373, cy - 12, 26, 0, 45, marks=(ARROW, ARROW))
    d.line(378, cy - 12, 403, cy - 12)
    d.text(387, cy + 16, 11, "45°")

    d.layer = "DIMENSION"
    d.dimension(168, cy - 22, 265, cy - 22, -25, "97", 12)
    d.dimension(30, cy - 12, 375, cy - 12, -58, "345", 12)
    d.dimension(150, cy + 30, 168, cy + 30, 22, "18", 12)
    d.dimension(265, cy + 18, 325, cy + 18, 24, "60", 12)
    d.dimension(sx + 10, sy - r, sx + 10, sy + 34, -60, "39", 12)
    return d


# ---- Formats of drawings ----


def dxf(drawing):
    """ASCII DXF, release 12: group codes right-aligned in three columns, CRLF."""
    lines = []

    def group(code, value):
        text = f"{value:.6f}".rstrip("0") if isinstance(value, float) else str(value)
        lines.append(f"{code:3d}")
        lines.append(text + "0" if text.endswith(".") else text)

    def groups(*pairs):
        for code, value in pairs:
            group(code, value)

    def coordinates(first_code, x, y):
        groups((first_code, float(x)), (first_code + 10, float(y)), (first_code + 20, 0.0))

    def entity(kind, item, pen):
        groups((0, kind), (8, item.layer), (6, pen))

    min_x, min_y, max_x, max_y = drawing.extents()
    groups((999, f"{drawing.name}  {drawing.number}"), (0, "SECTION"), (2, "HEADER"), (9, "$ACADVER"), (1, "AC1009"))
    if drawing.encoding == JAPANESE:
        groups((9, "$DWGCODEPAGE"), (3, "ANSI_932"))
    group(9, "$EXTMIN")
    coordinates(10, min_x, min_y)
    group(9, "$EXTMAX")
    coordinates(10, max_x, max_y)
    group(0, "ENDSEC")

    patterns = {SOLID: (), HIDDEN: (6.0, -3.0), CENTER: (30.0, -6.0, 6.0, -6.0), DASHED: (12.0, -6.0)}
    layers = sorted({item.layer for item in drawing.items} | {"0"})
    groups((0, "SECTION"), (2, "TABLES"), (0, "TABLE"), (2, "LTYPE"), (70, len(patterns)))
    for pen, pattern in patterns.items():
        groups((0, "LTYPE"), (2, pen), (70, 64), (3, pen.capitalize()), (72, 65), (73, len(pattern)),
               (40, float(sum(map(abs, pattern)))))
        groups(*((49, dash) for dash in pattern))
    groups((0, "ENDTAB"), (0, "TABLE"), (2, "LAYER"), (70, len(layers)))
    for layer in layers:
        groups((0, "LAYER"), (2, layer), (70, 64), (62, 7), (6, SOLID))
    groups((0, "ENDTAB"), (0, "ENDSEC"), (0, "SECTION"), (2, "ENTITIES"))

    def line(item, x1, y1, x2, y2, pen):
        entity("LINE", item, pen)
        coordinates(10, x1, y1)
        coordinates(11, x2, y2)

    def arrow(item, x, y, angle):
        for side in (-12, 12):
            a = math.radians(angle + side)
            line(item, x, y, x + item.mark_size * math.cos(a), y + item.mark_size * math.sin(a), SOLID)

    for item in drawing.visible():
        if isinstance(item, Point):
            entity("POINT", item, SOLID)
            coordinates(10, item.x, item.y)
        elif isinstance(item, Line):
            line(item, item.x1, item.y1, item.x2, item.y2, item.pen)
            angle = math.degrees(math.atan2(item.y2 - item.y1, item.x2 - item.x1))
            if item.marks[0] == ARROW:
                arrow(item, item.x1, item.y1, angle)
            if item.marks[1] == ARROW:
                arrow(item, item.x2, item.y2, angle + 180)
        elif isinstance(item, Arc):
            full = item.end - item.start == 360
            entity("CIRCLE" if full else "ARC", item, item.pen)
            coordinates(10, item.x, item.y)
            group(40, float(item.radius))
            if not full:
                groups((50, float(item.start)), (51, float(item.end)))
        else:
            entity("TEXT", item, SOLID)
            coordinates(10, item.x, item.y)
            groups((40, float(item.height)), (1, item.text), (50, float(item.angle)), (41, 0.75))
            if item.across or item.up:
                group(72, item.across)
                coordinates(11, item.x, item.y)
                group(73, item.up)
    groups((0, "ENDSEC"), (0, "EOF"))
    return "".join(line + "\r\n" for line in lines).encode(drawing.encoding)


COVER = {"name": "Pump cover", "designer": "A. Mori", "material": "FC250", "seat": "Seat", "title": "Notes",
         "notes": ("Mill the flange to Ra 1.6 in one clamping.", "Tighten the bolts crosswise, 25 Nm.")}
COVER_JAPANESE = {"name": "ポンプカバー", "designer": "森", "material": "FC250", "seat": "座", "title": "注記",
                  "notes": ("フランジ面は Ra1.6 に一度で加工する。", "締付トルクは 25 Nm とする。")}


def pump_cover(words, version, encoding):
    """
    ASCII DXF as newer programs write it: blocks within blocks, mirrored, with attributes; polylines with bulges,
    splines, ellipses, a hatch with an island, dimensions by their blocks, texts of several lines, layers that are off
    or frozen, an arc that is seen from below.
    """
    lines = []

    def put(*pairs):
        for code, value in pairs:
            lines.extend((f"{code:3d}", f"{value:.6f}" if isinstance(value, float) else str(value)))

    def at(x, y, first_code=10):
        return (first_code, float(x)), (first_code + 10, float(y))

    def entity(kind, layer, *pairs):
        put((0, kind), (8, layer), *pairs)

    def line(layer, x1, y1, x2, y2):
        entity("LINE", layer, *at(x1, y1), *at(x2, y2, 11))

    def polyline(layer, closed, *corners, kind=()):
        """Corners are (x, y) or (x, y, bulge); a bulge of 1 is half a circle to the next corner, counter-clockwise."""
        entity("LWPOLYLINE", layer, *kind, (90, len(corners)), (70, int(closed)))
        for x, y, *bulge in corners:
            put(*at(x, y), *((42, float(b)) for b in bulge))

    def text(layer, x, y, height, value, angle=0, across=0, up=0):
        entity("TEXT", layer, *at(x, y), (40, float(height)), (1, value), (50, float(angle)), (72, across),
               *at(x, y, 11), (73, up))

    def insert(layer, block, x, y, scale_x=1, angle=0, attributes=()):
        entity("INSERT", layer, (66, int(bool(attributes))), (2, block), *at(x, y), (41, float(scale_x)), (42, 1.0),
               (50, float(angle)))
        for tag, tx, ty, height, value in attributes:
            entity("ATTRIB", layer, *at(tx, ty), (40, float(height)), (1, value), (2, tag), (70, 0), (72, 1),
                   *at(tx, ty, 11), (74, 2))
        if attributes:
            put((0, "SEQEND"))

    def block(name, x=0, y=0):
        put((0, "BLOCK"), (8, "0"), (2, name), (70, 0), *at(x, y))

    def dimension(name, x1, y1, x2, y2, value):
        """A block in the drawing's own coordinates: the line, two filled arrowheads, the text above it."""
        block(name)
        angle = math.atan2(y2 - y1, x2 - x1)
        c, s = math.cos(angle), math.sin(angle)
        line("0", x1, y1, x2, y2)
        for x, y, way in ((x1, y1, 10), (x2, y2, -10)):
            entity("SOLID", "0", *at(x, y), *at(x + way * c - 2 * s, y + way * s + 2 * c, 11),
                   *at(x + way * c + 2 * s, y + way * s - 2 * c, 12), *at(x + way * c + 2 * s, y + way * s - 2 * c, 13))
        text("0", (x1 + x2) / 2 - 3 * s, (y1 + y2) / 2 + 3 * c, 11, value, math.degrees(angle), 1)
        put((0, "ENDBLK"))

    put((999, f"{words['name']}  PC-0062-01"), (0, "SECTION"), (2, "HEADER"), (9, "$ACADVER"), (1, version),
        (9, "$DWGCODEPAGE"), (3, "ANSI_1252" if encoding == ANSI_CODEPAGE else "ANSI_932"), (9, "$INSUNITS"), (70, 4),
        (9, "$EXTMIN"), *at(0, 0), (9, "$EXTMAX"), *at(420, 297), (0, "ENDSEC"))

    put((0, "SECTION"), (2, "TABLES"), (0, "TABLE"), (2, "LTYPE"), (70, 3))
    for name, pattern in ((SOLID, ()), (HIDDEN, (6.0, -3.0)), (CENTER, (30.0, -6.0, 6.0, -6.0))):
        put((0, "LTYPE"), (2, name), (70, 0), (3, ""), (72, 65), (73, len(pattern)),
            (40, float(sum(map(abs, pattern)))), *((49, dash) for dash in pattern))
    put((0, "ENDTAB"), (0, "TABLE"), (2, "LAYER"), (70, 8))
    for name, flags, colour, pen in (("0", 0, 7, SOLID), ("FRAME", 0, 7, SOLID), ("PART", 0, 7, SOLID),
                                     ("GEAR", 0, 3, HIDDEN), ("AXIS", 0, 1, CENTER), ("NOTE", 0, 2, SOLID),
                                     ("DRAFT", 1, 8, SOLID), ("OLD", 0, -8, SOLID)):  # the last two: frozen, off
        put((0, "LAYER"), (2, name), (70, flags), (62, colour), (6, pen))
    put((0, "ENDTAB"), (0, "ENDSEC"), (0, "SECTION"), (2, "BLOCKS"))

    block("SHEET")
    polyline("0", True, (5, 5), (415, 5), (415, 292), (5, 292))
    polyline("0", False, (275, 5), (275, 45), (415, 45))
    line("0", 275, 22, 415, 22)
    put((0, "ENDBLK"))
    block("BOLT")  # a screw's head, seen from above
    entity("CIRCLE", "0", *at(0, 0), (40, 6.0))
    polyline("0", True, *((4 * math.cos(k * math.pi / 3), 4 * math.sin(k * math.pi / 3)) for k in range(6)))
    put((0, "ENDBLK"))
    block("HUB")
    polyline("0", True, (3, 10), (3, 13), (-3, 13), (-3, 10, 6.8), (3, 10, 0))  # a bore with its keyway
    put((0, "ENDBLK"))
    block("GEAR")
    insert("PART", "HUB", 0, 0)
    teeth = []
    for k in range(12):
        for radius, turn, bulge in ((26, 1, 0), (34, 5, 0.05), (34, 11, 0), (26, 15, 0.07)):
            a = math.radians(30 * k + turn * 1.5)
            teeth.append((radius * math.cos(a), radius * math.sin(a), bulge))
    polyline("0", True, *teeth)
    entity("CIRCLE", "AXIS", *at(0, 0), (40, 30.0))
    put((0, "ENDBLK"))
    dimension("*D1", 95, 82, 155, 82, "60%%p0.02")
    dimension("*D2", 20, 103, 20, 227, "%%c124")
    put((0, "ENDSEC"), (0, "SECTION"), (2, "ENTITIES"))

    insert("FRAME", "SHEET", 0, 0, attributes=(("NAME", 345, 33, 12, words["name"]),
                                               ("NUMBER", 345, 13, 8, f"PC-0062-01  {words['designer']}")))
    ax, bx, cy = 95, 155, 165  # the axes of the two gears
    polyline("PART", True, (bx, cy - 62, 1), (bx, cy + 62), (ax, cy + 62, 1), (ax, cy - 62))
    polyline("PART", True, (bx, cy - 38, 1), (bx, cy + 38), (ax, cy + 38, 1), (ax, cy - 38))
    insert("GEAR", "GEAR", ax, cy)
    insert("GEAR", "GEAR", bx, cy, -1, 15)
    number = 0
    for x, angles in ((ax, (90, 150, 210, 270)), (bx, (-90, -30, 30, 90))):
        line("AXIS", x, cy - 70, x, cy + 70)
        for angle in angles:
            number += 1
            a = math.radians(angle)
            insert("PART", "BOLT", x + 50 * math.cos(a), cy + 50 * math.sin(a), 1, angle)
    line("AXIS", 25, cy, 350, cy)

    # The section from the side: hatched around the bore, which is an island, and a filled gasket.
    wall = ((285, 103), (325, 103), (325, 227), (285, 227))
    bore = ((295, 145, 0), (313, 145, 0.4142), (318, 150, 0), (318, 180, 0.4142), (313, 185, 0), (295, 185, 0))
    polyline("PART", True, *wall)
    polyline("PART", True, *bore)
    entity("HATCH", "PART", *at(0, 0), (2, "ANSI31"), (70, 0), (71, 0), (91, 2))
    for flags, corners in ((3, wall), (2, bore)):
        put((92, flags), (72, 1), (73, 1), (93, len(corners)))
        for x, y, *bulge in corners:
            put(*at(x, y), (42, float(bulge[0] if bulge else 0)))
        put((97, 0))
    put((75, 0), (76, 1), (52, 0.0), (41, 1.0), (77, 0), (78, 1), (53, 45.0), (43, 0.0), (44, 0.0),
        (45, -5 * math.sqrt(0.5)), (46, 5 * math.sqrt(0.5)), (79, 0), (98, 0))
    entity("HATCH", "PART", *at(0, 0), (2, "SOLID"), (70, 1), (71, 0), (91, 1), (92, 3), (72, 0), (73, 1), (93, 4),
           *at(325, 108), *at(329, 108), *at(329, 222), *at(325, 222), (97, 0), (75, 0), (76, 1), (98, 0))
    entity("ARC", "PART", *at(-329, cy), (40, 22.0), (50, 90.0), (51, 270.0), (210, 0.0), (220, 0.0), (230, -1.0))

    # A pipe, seen from above at a slant, and the hose that leaves it.
    for y, pen, start, end in ((222, SOLID, 0, 2), (140, SOLID, 1, 2), (140, HIDDEN, 0, 1)):
        entity("ELLIPSE", "PART", (6, pen), *at(386, y), *at(20, 0, 11), (40, 0.35), (41, start * math.pi),
               (42, end * math.pi))
    for x in (366, 406):
        polyline("PART", False, (x, 140), (x, 222))
    for shift in (0, 9):
        points = ((382 + shift, 222), (382 + shift, 262), (340, 240 + shift), (330, 276 - shift), (250, 262 + shift))
        knots = (0, 0, 0, 0, 1, 2, 2, 2, 2)
        entity("SPLINE", "PART", (70, 8), (71, 3), (72, len(knots)), (73, len(points)), (74, 0),
               *((40, float(knot)) for knot in knots))
        for point in points:
            put(*at(*point))

    for name, x, y in (("*D1", 125, 82), ("*D2", 20, cy)):
        entity("DIMENSION", "NOTE", (2, name), *at(x, y), (70, 0))
    entity("LEADER", "NOTE", (71, 1), (72, 0), (76, 3), *at(318, 178), *at(262, 240), *at(222, 240))
    text("NOTE", 242, 250, 12, words["seat"], 0, 4)
    notes = "\\P".join(f"{i}. {note}" for i, note in enumerate(words["notes"], 1))
    entity("MTEXT", "NOTE", *at(14, 72), (40, 9.0), (41, 250.0), (71, 1), (72, 1),
           (1, f"{{\\H1.2x;\\L{words['title']}\\l}} {{\\C1;{words['material']}}}\\P{notes}"))
    for y in range(20, 290, 30):  # what helped to draw it, frozen, and what was there before, off
        line("DRAFT", 0, y, 420, y + 7)
    entity("CIRCLE", "OLD", *at(125, cy), (40, 90.0))
    put((0, "ENDSEC"), (0, "EOF"))
    return "".join(line + "\r\n" for line in lines).encode(encoding)


# Native and backup drawings: a header, then records of 64 bytes; everything little-endian. Pens and kinds by number.
PENS = {SOLID: 0, DASHED: 2, CENTER: 3, HIDDEN: 5}
POINT_RECORD, LINE_RECORD, ARC_RECORD, TEXT_RECORD, MORE_TEXT_RECORD = 1, 2, 4, 8, 9
SHOWN, ERASED = 0, 0x4000  # status of a record
FILLER = 0xA5  # stands in bytes that nobody has written: record status A5 25 and tail A5 A5 A5 A5 A5 A5 mean zeros
LAST_LINK = 65535
UP = {BASELINE: 0, HALF: 1, TOP: 2}
CELL, NARROW_CELL, SPACING = 0.5, 0.36, 0.04  # of a text's height: half a full-width character, the gap between two


def plain(text, encoding):
    return text.replace("%%c", "φ" if encoding == JAPANESE else "ø").encode(encoding)


def slot(text, size):
    """A text in a slot of the header: cut, closed by a zero, padded with zeros."""
    return text.encode(JAPANESE)[:size - 1].ljust(size, b"\0")


def put_title(buffer, drawing, offset, size):
    """Drawing name, drawing number and designer, one slot after the other."""
    for i, text in enumerate((drawing.name, drawing.number, drawing.designer)):
        struct.pack_into(f"{size}s", buffer, offset + i * size, slot(text, size))


def lower_left(text, length, across, up):
    """Where a text of that length begins, when (x, y) is the corner or middle that `across` and `up` name."""
    a = math.radians(text.angle)
    back, down = length * across / 2, text.height * UP[up] / 2
    return (text.x - back * math.cos(a) + down * math.sin(a), text.y - back * math.sin(a) - down * math.cos(a))


def element_record(item, layer, status, dx=0.0, dy=0.0, cell=CELL):
    """
     0  u16  status
     4  u16  kind in the low 4 bits
     7  u8   layer
    16       point  f64 x, y
             line   f64 x1, y1, x2, y2; u16 attributes (at 48)
             arc    f64 centre x, y, radius, start angle, end angle; u16 attributes (at 56)
             text   f32 x, y, height, full-width character's width, spacing, angle; u16 justification (at 44)
    Attributes: pen << 4, mark at the first end << 8, mark at the second end << 11 (0 none, 1 arrowhead, 2 dot).
    Justification: vertical << 5 (0 bottom, 1 middle, 2 top), horizontal << 7 (0 left, 1 middle, 2 right).
    """
    record = bytearray(64)

    def head(kind):
        struct.pack_into("<HHHBB", record, 0, status, 0, kind, 0, layer)

    def attributes(offset):
        struct.pack_into("<H", record, offset, PENS[item.pen] << 4 | item.marks[0] << 8 | item.marks[1] << 11)

    if isinstance(item, Point):
        head(POINT_RECORD)
        struct.pack_into("<2d", record, 16, item.x + dx, item.y + dy)
    elif isinstance(item, Line):
        head(LINE_RECORD)
        struct.pack_into("<4d", record, 16, item.x1 + dx, item.y1 + dy, item.x2 + dx, item.y2 + dy)
        attributes(48)
    elif isinstance(item, Arc):
        head(ARC_RECORD)
        struct.pack_into("<5d", record, 16, item.x + dx, item.y + dy, item.radius, item.start, item.end)
        attributes(56)
    else:
        head(TEXT_RECORD)
        struct.pack_into("<6f", record, 16, item.x + dx, item.y + dy, item.height, 2 * cell * item.height,
                         SPACING * item.height, item.angle)
        struct.pack_into("<H", record, 44, UP[item.up] << 5 | item.across << 7)
    return record


@dataclass(frozen=True)
class Edition:
    signature: bytes
    version: int
    header: int  # bytes
    layers: int
    layer_step: int  # between the numbers that a drawing's layers get


EDITION_A = Edition(b"CAD ORVIL QA V4.0", 4, 1024, 16, 1)
EDITION_B = Edition(b"LumosBase", 20, 12704, 256, 25)


def native(drawing, edition, origin=None):
    """
      0   4    "LMOS" when the drawing has an origin
      4  17    signature (edition A) or 9 (edition B)
     25   1    version
     32  6x8   f64 sheet maximum x, y, minimum x, y (0 with an origin), origin x, y
    106  3x42  drawing name, drawing number, designer: texts that end with a zero
    242   2    u16 number of records
    248   2    u16 current layer
    250  2xn   u16 for each of the 16 (edition A) or 256 (edition B) layers: not 0 when shown
    1024 (edition A) or 12704 (edition B): the records

    With an origin, positions count from the sheet's lower left corner and the origin is what the user sees as (0, 0).

    A text's first 14 bytes stand at 48 of its record, then the number of the record that goes on (the first one is 1)
    or 65535; a record that goes on holds 46 bytes at 16 and such a number at 62. Texts are Shift_JIS.
    """
    min_x, min_y, max_x, max_y = drawing.extents()
    dx, dy = (-min_x, -min_y) if origin else (0.0, 0.0)
    numbers = {name: 1 + i * edition.layer_step for i, name in enumerate(drawing.layers())}
    header = bytearray(edition.header)
    struct.pack_into("<4s17s", header, 0, b"LMOS" if origin else b"", edition.signature)
    header[25] = edition.version
    if origin:
        struct.pack_into("<6d", header, 32, max_x + dx, max_y + dy, 0.0, 0.0, *origin)
    else:
        struct.pack_into("<4d", header, 32, max_x, max_y, min_x, min_y)
    put_title(header, drawing, 106, 42)
    current = numbers.get(drawing.current, 0)
    struct.pack_into("<H", header, 248, current)
    for name, number in numbers.items():
        shown = name not in drawing.hidden and number != current  # the current layer needs no flag
        struct.pack_into("<H", header, 250 + 2 * number, int(shown))

    cell = CELL if drawing.encoding == JAPANESE else NARROW_CELL  # Latin letters are drawn full-width and get long
    records = []

    def add_text(item, record, layer):
        text = plain(item.text, JAPANESE)
        chunks = [text[:14]] + [text[at:at + 46] for at in range(14, len(text), 46)]
        last = len(chunks) - 1
        for i, chunk in enumerate(chunks):
            if i > 0:
                record = bytearray(64)
                struct.pack_into("<HHHBB", record, 0, SHOWN, 0, MORE_TEXT_RECORD, 0, layer)
            struct.pack_into("14s" if i == 0 else "46s", record, 48 if i == 0 else 16, chunk)
            struct.pack_into("<H", record, 62, LAST_LINK if i == last else len(records) + 2)
            records.append(record)

    for item in drawing.items:
        layer = numbers[item.layer]
        if isinstance(item, Text):
            if item.across != LEFT:  # written by its left end: a preview takes a text for half as long as it draws it
                length = len(plain(item.text, JAPANESE).decode(JAPANESE)) * (2 * cell + SPACING) * item.height
                x, y = lower_left(item, length, item.across, item.up)
                item = Text(x, y, item.height, item.text, item.angle, LEFT, BASELINE, item.layer)
            add_text(item, element_record(item, layer, SHOWN, dx, dy, cell), layer)
            continue
        status = ERASED if item in drawing.erased else SHOWN
        record = element_record(item, layer, status, dx, dy)
        record[58:64] = bytes([FILLER] * 6)
        if item.layer in ("FRAME", "AXIS") and status == SHOWN:
            record[0:2] = b"\xA5\x25"
        records.append(record)
    struct.pack_into("<H", header, 242, len(records))
    return bytes(header) + b"".join(records)


def backup(drawing):
    """
      0  23    signature
     24  260   description
    284  3x42  drawing name, drawing number, designer: texts that end with a zero
    410  4x8   f64 minimum x, y, maximum x, y
    442   4    u32 number of records
    446        the records, as in native drawings, without end marks and links; a text has its number of characters
               (u16) at 46, the width at 28 is one character's, and the text itself is not kept
    There are 16 layers, all shown: what is hidden is kept as erased.
    """
    numbers = {name: i % 16 for i, name in enumerate(drawing.layers())}
    header = bytearray(446)
    struct.pack_into("23s", header, 0, b"VEXTRON lumos Backup V2")
    struct.pack_into("260s", header, 24, slot(f"{drawing.number} {drawing.name}", 260))
    put_title(header, drawing, 284, 42)
    records = []
    for item in drawing.items:
        hidden = item in drawing.erased or item.layer in drawing.hidden
        record = element_record(item, numbers[item.layer], ERASED if hidden else SHOWN)
        if isinstance(item, Text):
            count = len(item.text)
            length = len(plain(item.text, JAPANESE)) * CELL * item.height
            struct.pack_into("<f", record, 28, length / count)
            struct.pack_into("<H", record, 46, count)
        records.append(record)
    struct.pack_into("<4dI", header, 410, *drawing.extents(), len(records))
    return bytes(header) + b"".join(records)


def exf(drawing):
    """
    Lines of a key, a blank and values with commas between them; a line that begins with ";" is a remark.
      FIGRNAME, FIGRNUMB, DESIGNER   a text to the line's end
      AR  minimum x, y, maximum x, y; before everything that is drawn
      GP  layer, x, y, attributes
      GL  layer, x1, y1, x2, y2, attributes
      GA  layer, centre x, y, radius, start angle, end angle, attributes
      GT  x, y of the lower left corner, full-width character's width, height, spacing, angle, 0, attributes 'text'
    Attributes are hexadecimal: pen, mark at the first end << 4, mark at the second end << 7 (0 none, 1 dot,
    2 arrowhead: not as in native drawings).
    """
    marks = {NONE: 0, DOT: 1, ARROW: 2}
    numbers = {name: i + 1 for i, name in enumerate(drawing.layers())}

    def value(number):
        return f"{number:.4f}".rstrip("0").rstrip(".") if isinstance(number, float) else str(number)

    def values(*numbers_):
        return ",".join(map(value, numbers_))

    def attributes(item):
        return f"{PENS[item.pen] | marks[item.marks[0]] << 4 | marks[item.marks[1]] << 7:x}"

    lines = [f"; {drawing.number}", f"FIGRNAME {drawing.name}", f"FIGRNUMB {drawing.number}",
             f"DESIGNER {drawing.designer}", "AR " + values(*drawing.extents())]
    layer = None
    for item in drawing.visible():
        if item.layer != layer:
            layer = item.layer
            lines += ["", f"; {layer.lower()}"]
        number = numbers[layer]
        if isinstance(item, Point):
            lines.append(f"GP {values(number, item.x, item.y)},0")
        elif isinstance(item, Line):
            lines.append(f"GL {values(number, item.x1, item.y1, item.x2, item.y2)},{attributes(item)}")
        elif isinstance(item, Arc):
            lines.append(f"GA {values(number, item.x, item.y, item.radius, item.start, item.end)},{attributes(item)}")
        else:
            text = plain(item.text, drawing.encoding)
            cell = CELL * item.height
            x, y = lower_left(item, len(text) * cell, item.across, item.up)
            lines.append(f"GT {values(x, y, 2 * cell, item.height, 0, item.angle, 0)},6 "
                         f"'{text.decode(drawing.encoding)}'")
    return "".join(line + "\r\n" for line in lines).encode(drawing.encoding)


# ---- Files of other kinds ----


def title_only(drawing, signature, offset, size, length):
    """A drawing of which only the title block is known: the signature at 4, three slots of that size at that offset."""
    head = bytearray(length)
    struct.pack_into("11s", head, 4, signature)
    put_title(head, drawing, offset, size)
    return bytes(head)


def qj(drawing):
    return title_only(drawing, b"CADORVIL QJ", 144, 42, 512)


def qf(drawing):
    return title_only(drawing, b"CADORVIL QF", 576, 48, 1024)


def command_file(drawing, file, remarks):
    """A text; the first line of that form names the drawing to preview, beside the command file."""
    lines = [f"; {remarks}", f"; {drawing.number} {drawing.name}", "", f'DIALOG_PREVIEW "{file}"',
             f'LOAD "{file}"', "ZOOM ALL", "PLOT A3"]
    return "".join(line + "\r\n" for line in lines).encode(drawing.encoding)


def nc_program(drawing):
    """Spot-drills and drills every full circle of up to 14 mm diameter of the drawing's PART layer."""
    holes = [item for item in drawing.items
             if isinstance(item, Arc) and item.layer == "PART" and item.end - item.start == 360 and item.radius <= 7]
    lines = ["%", "O2040", f"({drawing.name.upper()} {drawing.number})", "(MATERIAL S45C  T20)", "G21 G90 G17 G40 G80"]
    tools = [(1, "SPOT DRILL D10", 1800, 180, holes, -3.0)]
    for number, radius in enumerate(sorted({hole.radius for hole in holes}), 2):
        tools.append((number, f"DRILL D{2 * radius:g}", int(9000 / radius), int(900 / radius),
                      [hole for hole in holes if hole.radius == radius], -24.0))
    sequence = 10
    for tool, name, speed, feed, targets, depth in tools:
        block = [f"T{tool:02d} M06 ({name})", f"G54 G00 X{targets[0].x:.3f} Y{targets[0].y:.3f}", f"S{speed} M03",
                 f"G43 H{tool:02d} Z50.000 M08", f"G98 G81 Z{depth:.3f} R3.000 F{feed}"]
        block += [f"X{hole.x:.3f} Y{hole.y:.3f}" for hole in targets[1:]]
        block += ["G80 M09", "G91 G28 Z0. M05", "G90"]
        for line in block:
            lines.append(f"N{sequence:04d} {line}")
            sequence += 10
    lines += [f"N{sequence:04d} M30", "%"]
    return "".join(line + "\r\n" for line in lines).encode("ascii")


def note_in_english():
    return ("Machining notes - mounting plate MP-2040-01\r\n"
            "\r\n"
            "1. Material S45C, flame-cut blank 250 x 170 x 22.\r\n"
            "2. Mill both faces to 20 mm, parallel within 0.02.\r\n"
            "3. Bore the bearing seat to 60 H7 in one clamping with the 66 mm recess.\r\n"
            "4. Drill and tap 8 x M8 on the 84 mm pitch circle.\r\n"
            "5. Break all edges 0.5 x 45 degrees, degrease, phosphate.\r\n"
            "\r\n"
            "Check the seat with the plug gauge before the part leaves the machine.\r\n").encode("ascii")


def note_in_japanese():
    # 表, ソ and 能 hold a byte that reads as a backslash when a double-byte character is split.
    return ("加工指示書　取付ﾌﾟﾚｰﾄ MP-2040-01\r\n"
            "\r\n"
            "1. 材質 S45C、素材寸法 250 x 170 x 22。\r\n"
            "2. 表裏両面を 20mm に仕上げ、平行度 0.02 以内。\r\n"
            "3. ﾍﾞｱﾘﾝｸﾞ座は φ60 H7、φ66 の逃げと同一段取りで加工。\r\n"
            "4. P.C.D.84 に M8 ﾀｯﾌﾟを 8ヶ所。\r\n"
            "5. 指示なき角部は C0.5、脱脂後ﾘﾝ酸塩処理。\r\n"
            "\r\n"
            "機能上重要：ソケット側の座は限界ｹﾞｰｼﾞで検査すること。\r\n").encode(JAPANESE)


def bitmap(width, height, bits, palette, pixels):
    """A Windows bitmap file, bottom row first; pixels(x, y) gives a palette index or (r, g, b), y downwards."""
    stride = (width * bits // 8 + 3) // 4 * 4
    rows = bytearray()
    for y in reversed(range(height)):
        row = bytearray()
        for x in range(width):
            value = pixels(x, y)
            row += bytes([value]) if bits == 8 else bytes(value[::-1])
        rows += row.ljust(stride, b"\0")
    colours = b"".join(struct.pack("<4B", b, g, r, 0) for r, g, b in palette)
    offset = 14 + 40 + len(colours)
    header = struct.pack("<2sIHHI", b"BM", offset + len(rows), 0, 0, offset)
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, 0, len(rows), 2835, 2835, len(palette), 0)
    return header + info + colours + rows


def turned_disc():
    """A photograph-like picture, 24 bits a pixel: a turned flange with six bolt holes, lit from two sides."""
    width, height, cx, cy = 176, 124, 88, 62

    def sample(x, y):
        r, a = math.hypot(x - cx, y - cy), math.atan2(cy - y, x - cx)
        holes = min(math.hypot(x - cx - 40 * math.cos(k * math.pi / 3), y - cy - 40 * math.sin(k * math.pi / 3))
                    for k in range(6))
        if r > 54 or r < 14 or holes < 5:
            depth = 0 if r > 54 else 26
            return (70 + y * 0.45 - depth, 84 + y * 0.5 - depth, 104 + y * 0.55 - depth)
        shine = math.cos(2 * a - 1.1) ** 2 if r > 28 else math.cos(2 * a + 0.5) ** 2
        groove = 8 * math.sin(r * 2.4)
        edge = -55 if abs(r - 28) < 1 or r > 52.5 or r < 15.5 or holes < 6.2 else 0
        light = 120 + 105 * shine + groove + edge
        return (light, light, light * 1.04)

    def pixels(x, y):
        quarters = [sample(x + dx, y + dy) for dx in (0.25, 0.75) for dy in (0.25, 0.75)]
        return tuple(max(0, min(255, int(sum(channel) / 4))) for channel in zip(*quarters))

    return bitmap(width, height, 24, [], pixels)


def stress_plot():
    """A contour plot with a palette, 8 bits a pixel: stress around the bore of a plate that is pulled sideways."""
    width, height, cx, cy, radius = 178, 124, 82, 62, 20
    steps = 12
    colours = []
    for i in range(steps):
        hue = 4.0 * (1 - i / (steps - 1))  # blue over green to red
        colours.append(tuple(int(255 * max(0.0, min(1.0, c))) for c in
                             (2 - hue, min(hue, 4 - hue), hue - 2)))
    white, black = steps, steps + 1
    palette = colours + [(255, 255, 255), (0, 0, 0)]

    def pixels(x, y):
        if 160 <= x < 170 and 8 <= y < 116:  # the scale
            return (115 - y) * steps // 108
        if not (4 <= x < 152 and 8 <= y < 116):
            return white
        if x in (4, 151) or y in (8, 115):
            return black
        dx, dy = x + 0.5 - cx, y + 0.5 - cy
        r = math.hypot(dx, dy)
        if r < radius:
            return white if r < radius - 1.2 else black
        q, cos2, cos4 = (radius / r) ** 2, math.cos(2 * math.atan2(dy, dx)), math.cos(4 * math.atan2(dy, dx))
        stress = 1 - q * (1.5 * cos2 + cos4) + 1.5 * q * q * cos4  # Kirsch's plate, along the pull: -1 to 3
        return max(0, min(steps - 1, int((stress + 0.2) / 3.2 * steps)))

    return bitmap(width, height, 8, palette, pixels)


# ---- The files ----

PLATE = mounting_plate()
HOUSE = floor_plan(ROOMS, ANSI_CODEPAGE)
HOUSE_JAPANESE = floor_plan(ROOMS_JAPANESE, JAPANESE)
AXLE = drive_shaft(SHAFT, ANSI_CODEPAGE)
AXLE_JAPANESE = drive_shaft(SHAFT_JAPANESE, JAPANESE)
HOUSE_ORIGIN = (1500.0, 3200.0)  # the outer corner of the walls, from the sheet's lower left corner

SAMPLES = {
    "mounting_plate.dxf": lambda: dxf(PLATE),
    "house_plan.dxf": lambda: dxf(HOUSE),
    "house_plan_ja.dxf": lambda: dxf(HOUSE_JAPANESE),
    "pump_cover.dxf": lambda: pump_cover(COVER, "AC1015", ANSI_CODEPAGE),
    "pump_cover_ja.dxf": lambda: pump_cover(COVER_JAPANESE, "AC1021", "utf-8"),
    "mounting_plate.qa": lambda: native(PLATE, EDITION_A),
    "house_plan.qa": lambda: native(HOUSE, EDITION_A, HOUSE_ORIGIN),
    "drive_shaft.lms": lambda: native(AXLE, EDITION_B),
    "drive_shaft_ja.lms": lambda: native(AXLE_JAPANESE, EDITION_B),
    "house_plan.lms": lambda: native(HOUSE, EDITION_B, HOUSE_ORIGIN),
    "house_plan_ja.lms": lambda: native(HOUSE_JAPANESE, EDITION_B, HOUSE_ORIGIN),
    "drive_shaft.lbk": lambda: backup(AXLE),
    "drive_shaft_ja.lbk": lambda: backup(AXLE_JAPANESE),
    "house_plan.exf": lambda: exf(HOUSE),
    "house_plan_ja.exf": lambda: exf(HOUSE_JAPANESE),
    "drive_shaft.qj": lambda: qj(AXLE),
    "drive_shaft_ja.qj": lambda: qj(AXLE_JAPANESE),
    "house_plan.qf": lambda: qf(HOUSE),
    "house_plan_ja.qf": lambda: qf(HOUSE_JAPANESE),
    "plot_plate.cmd": lambda: command_file(PLATE, "mounting_plate.qa", "Plot the mounting plate"),
    "plot_shaft_ja.cmd": lambda: command_file(AXLE_JAPANESE, "drive_shaft_ja.lms", "図面を表示して出力する"),
    "mounting_plate.nc": lambda: nc_program(PLATE),
    "machining_notes.txt": note_in_english,
    "machining_notes_ja.txt": note_in_japanese,
    "flange.bmp": turned_disc,
    "stress.bmp": stress_plot,
}

if __name__ == "__main__":
    folder = pathlib.Path(__file__).parent
    for name, make in SAMPLES.items():
        (folder / name).write_bytes(make())
        print(name)

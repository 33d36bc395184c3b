"""Two beamed notes of violet enamel."""

from .canvas import Canvas, clamp, ellipse, mix, one_way, outline, ramp
from .relief import relief

ENAMEL = ramp((0.0, 0x4AA8FF), (0.3, 0x6E5BFF), (0.62, 0xB03CF0), (1.0, 0xF0308C))


def draw(width, height):
    canvas = Canvas(width, height)
    notes = outline("M 44 27 C 62 24 92 17 118 5 L 118 87 L 109 87 L 109 33 C 94 39 72 45 53 47 L 53 104 L 44 104 Z")
    notes += ellipse(32, 105, 23, 15.5, -24) + ellipse(97, 89, 23, 15.5, -24)
    canvas.fill(one_way(notes), lambda x, y: ENAMEL((y + (64 - x) * 0.18) / 128))
    light = relief(canvas, (1, 2, 3, 5), 15)

    def paint(x, y):
        facing, gleam, depth = light(x, y)
        base = ENAMEL((y + (64 - x) * 0.18) / 128)
        colour = mix(base, (28, 6, 70), clamp(0.62 - facing) * 1.15)
        colour = mix(colour, (255, 255, 255), clamp(facing - 0.72) * 0.9)
        return mix(colour, (255, 255, 255), gleam)

    canvas.fill(canvas.box(), paint, inside=True)
    return canvas


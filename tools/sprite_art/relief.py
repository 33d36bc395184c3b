"""Lights a flat figure as if it were raised: its blurred shape is taken for a height."""

import math

from .canvas import clamp


def blurred(values, width, height, radius):
    """The mean over squares, taken along the rows and then along the columns; outside there is nothing."""
    size = 2 * radius + 1

    def along(values, count, length, step, stride):
        result = [0.0] * len(values)
        for line in range(count):
            start = line * stride
            total = sum(values[start + i * step] for i in range(min(radius, length)))
            for i in range(length):
                if i + radius < length:
                    total += values[start + (i + radius) * step]
                if i > radius:
                    total -= values[start + (i - radius - 1) * step]
                result[start + i * step] = total / size
        return result

    return along(along(values, height, width, 1, width), width, height, width, 1)


def heights(canvas, radii):
    """From 0 outside to 1 deep inside, rounded towards the edge."""
    total = [0.0] * len(canvas.cover)
    for radius in radii:
        hill = blurred(canvas.cover, canvas.width, canvas.height, radius)
        hill = blurred(hill, canvas.width, canvas.height, radius)
        total = [a + b / len(radii) for a, b in zip(total, hill)]
    return total


def relief(canvas, radii, steepness):
    """A function from a place to how far it faces the light at the upper left (0 to 1), how much it gleams (0 to 1),
    and how deep inside it lies (0 to 1)."""
    height = heights(canvas, radii)
    width = canvas.width

    def light(x, y):
        index = int(y) * width + int(x)
        here = height[index]
        left = height[index - 1] if index else here
        right = height[index + 1] if index + 1 < len(height) else here
        above = height[index - width] if index >= width else here
        below = height[index + width] if index + width < len(height) else here
        u, v = (left - right) * steepness, (above - below) * steepness
        length = math.sqrt(u * u + v * v + 1)
        facing = (-0.45 * u - 0.62 * v + 0.64) / length
        towards = clamp((-0.26 * u - 0.36 * v + 0.9) / length)  # halfway between the light and the eye
        gleam = towards * towards
        gleam *= gleam
        gleam *= gleam
        gleam *= gleam
        gleam *= gleam
        return clamp(facing), clamp((gleam - 0.55) * 2.2) * 0.9, here

    return light

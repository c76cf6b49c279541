#!/usr/bin/python3
"""Draws the product's images into the folder given, or into its own. Needs python3-cairo.

What the colour of an image says, its shape says too: they are told apart in grey, and by the colour-blind.
"""
import math
import os
import sys

import cairo

INK = (0.20, 0.20, 0.22)
WHITE = (1, 1, 1)
BLUE = (0.13, 0.36, 0.66)
YELLOW = (1.00, 0.78, 0.16)
BROWN = (0.50, 0.25, 0.00)
GREEN = (0.12, 0.52, 0.22)
RED = (0.74, 0.13, 0.13)
GREY = (0.32, 0.32, 0.34)
TURN = 2 * math.pi


def stroke(c, colour, width):
    c.set_source_rgb(*colour)
    c.set_line_width(width)
    c.stroke()


def fill(c, colour, edge=None, width=1):
    c.set_source_rgb(*colour)
    c.fill_preserve()
    if edge:
        stroke(c, edge, width)
    c.new_path()


def disc(c, x, y, radius):
    c.new_sub_path()
    c.arc(x, y, radius, 0, TURN)


def lines(c, *points):
    c.move_to(*points[0])
    for point in points[1:]:
        c.line_to(*point)


def power(c, x, y, radius, width, colour):
    """A ring that is open at the top, and a bar in the opening."""
    gap = 0.13 * TURN
    c.set_line_cap(cairo.LINE_CAP_ROUND)
    c.arc(x, y, radius, -TURN / 4 + gap, 3 * TURN / 4 - gap)
    lines(c, (x, y - radius), (x, y))
    stroke(c, colour, width)


def sun(c, x, y, inner, outer):
    """A disc with eight rays, as one outline."""
    for i in range(16):
        radius = outer if i % 2 == 0 else inner
        angle = i * TURN / 16 - TURN / 4
        c.line_to(x + radius * math.cos(angle), y + radius * math.sin(angle))
    c.close_path()


def startup_dot(c):
    disc(c, 8, 8, 7)
    fill(c, BLUE)
    power(c, 8, 8.5, 3.5, 1.6, WHITE)


def wake_up_dot(c):
    c.set_line_join(cairo.LINE_JOIN_ROUND)
    sun(c, 8, 8, 4.9, 7.5)
    fill(c, YELLOW, BROWN, 1)


def mixed_dot(c):
    """The sun, rising behind the disc of the start-up."""
    c.save()
    c.rectangle(0, 0, 16, 8)
    c.clip()
    wake_up_dot(c)
    c.restore()
    c.arc(8, 8, 7.5, 0, TURN / 2)
    c.close_path()
    fill(c, BLUE)
    c.set_line_cap(cairo.LINE_CAP_ROUND)
    lines(c, (8, 10), (8, 13))
    stroke(c, WHITE, 2)


def none_dot(c):
    disc(c, 8, 8, 4)
    stroke(c, GREY, 1.25)


def available(c):
    disc(c, 8, 8, 7)
    fill(c, GREEN)
    c.set_line_cap(cairo.LINE_CAP_ROUND)
    c.set_line_join(cairo.LINE_JOIN_ROUND)
    lines(c, (4.75, 8.25), (7, 10.75), (11.25, 5.5))
    stroke(c, WHITE, 1.8)


def unavailable(c):
    disc(c, 8, 8, 6)
    fill(c, WHITE, RED, 2)
    lines(c, (3.75, 3.75), (12.25, 12.25))
    stroke(c, RED, 2)


def padlock(c, body, lift):
    """The shackle stands in the body with both legs, or with its left one only where it is lifted."""
    c.move_to(6.5, 10)
    c.line_to(6.5, 6 - lift)
    c.arc(10, 6 - lift, 3.5, TURN / 2, TURN)
    c.line_to(13.5, 10 - 2 * lift)
    stroke(c, GREY, 2)
    c.rectangle(3.5, 9.5, 13, 8)
    fill(c, body, BROWN)
    disc(c, 10, 12.5, 1.5)
    c.rectangle(9, 12.5, 2, 3)
    fill(c, BROWN)


def locked(c):
    padlock(c, (0.89, 0.67, 0.18), 0)


def unlocked(c):
    padlock(c, (0.97, 0.90, 0.68), 1.5)


def add(c):
    lines(c, (7, 2), (7, 12))
    lines(c, (2, 7), (12, 7))
    stroke(c, INK, 2)


def remove(c):
    lines(c, (2, 7), (12, 7))
    stroke(c, INK, 2)


def edit(c):
    """A pencil, its point at the lower left."""
    lines(c, (1, 13), (2, 9), (9.5, 1.5), (12.5, 4.5), (5, 12))
    c.close_path()
    fill(c, INK)
    lines(c, (4, 10), (9.5, 4.5))
    stroke(c, (0.85, 0.85, 0.86), 1.2)


def quorel(c):
    """A clock that is a power symbol: its minute hand is the bar in the open ring."""
    radius = 10
    for x, y, quarter in ((37, 11, 3), (37, 37, 0), (11, 37, 1), (11, 11, 2)):
        c.arc(x, y, radius - 1.5, quarter * TURN / 4, (quarter + 1) * TURN / 4)
    c.close_path()
    shade = cairo.LinearGradient(0, 2, 0, 46)
    shade.add_color_stop_rgb(0, 0.24, 0.50, 0.80)
    shade.add_color_stop_rgb(1, 0.08, 0.24, 0.48)
    c.set_source(shade)
    c.fill_preserve()
    stroke(c, (0.05, 0.16, 0.34), 1)
    power(c, 24, 25, 14, 4, WHITE)
    c.set_line_cap(cairo.LINE_CAP_ROUND)
    lines(c, (24, 25), (30.5, 28.75))
    stroke(c, (1.0, 0.72, 0.20), 4)


IMAGES = {
    "NoneDot": (16, none_dot),
    "StartupDot": (16, startup_dot),
    "WakeUpDot": (16, wake_up_dot),
    "MixedDot": (16, mixed_dot),
    "Available": (16, available),
    "Unavailable": (16, unavailable),
    "Locked": (20, locked),
    "Unlocked": (20, unlocked),
    "Add": (14, add),
    "Remove": (14, remove),
    "Edit": (14, edit),
    "Quorel": (48, quorel),
}


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.abspath(__file__))
    for name, (size, draw) in IMAGES.items():
        surface = cairo.ImageSurface(cairo.FORMAT_ARGB32, size, size)
        draw(cairo.Context(surface))
        surface.write_to_png(os.path.join(folder, name + ".png"))


main()

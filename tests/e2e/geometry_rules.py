"""The line rectangles and the alpha of a marker, computed afresh from the
rules of the line geometry, to hold the program's windows against."""


def effective(marker, group, globals_):
    """The cascade: the marker's cell, else the group's, else the global one (-1 is blank)."""
    return [m if m != -1 else (g if g != -1 else d) for m, g, d in zip(marker, group, globals_)]


def marker_lines(hpos, vpos, hlen, vlen, thickness, screen_left, screen_top, screen_width):
    half = int(thickness / 2)  # truncation towards zero
    if hlen == -2:
        w, l = screen_width, screen_left
    else:
        w, l = hlen, round(hpos - hlen / 2 - half)  # round(): ties to even
        l = max(l, screen_left)
    if vlen == -2:
        h, t = screen_width, screen_top  # the width, not the height
    else:
        h, t = vlen, round(vpos - vlen / 2 - half)
        t = max(t, screen_top)
    w = 1 if w == 0 else w
    h = 1 if h == 0 else h
    return (l, vpos - half, w, thickness), (hpos - half, t, thickness, h)


def alpha(opacity):
    return round(opacity * 255 / 100)


def hatch(x, y):
    """The 8x8 diagonal cross, counted from the window's origin."""
    return x % 8 == y % 8 or (x % 8) + (y % 8) == 7

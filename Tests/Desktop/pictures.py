"""Pictures as rows of (red, green, blue) bytes, read without any library."""
import struct
import zlib


class Picture:
    def __init__(self, width, height, rows):
        self.width, self.height, self.rows = width, height, rows

    def pixel(self, x, y):
        return tuple(self.rows[y][3 * x:3 * x + 3])

    def cropped(self, x, y, width, height):
        return Picture(width, height, [row[3 * x:3 * (x + width)] for row in self.rows[y:y + height]])

    def difference(self, other, tolerance):
        """Where the first pixel differs by more than the tolerance; empty when none does."""
        if (self.width, self.height) != (other.width, other.height):
            return f"{self.width}x{self.height} is not {other.width}x{other.height}"
        for y, (mine, theirs) in enumerate(zip(self.rows, other.rows)):
            if mine != theirs:
                for x in range(self.width):
                    a, b = self.pixel(x, y), other.pixel(x, y)
                    if max(abs(p - q) for p, q in zip(a, b)) > tolerance:
                        return f"at {x},{y}: {a} is not {b}"
        return ""


def read_png(path):
    """An 8 bit RGB or RGBA picture; the alpha is dropped."""
    with open(path, "rb") as file:
        data = file.read()
    at, packed = 8, b""
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, color = struct.unpack(">IIBB", body[:10])
            assert depth == 8 and color in (2, 6), "not 8 bit RGB or RGBA"
        elif kind == b"IDAT":
            packed += body
        at += 12 + length
    step = 4 if color == 6 else 3
    lines = zlib.decompress(packed)
    above = bytearray(width * step)
    rows = []
    for y in range(height):
        begin = y * (width * step + 1)
        above = unfiltered(lines[begin], bytearray(lines[begin + 1:begin + 1 + width * step]), above, step)
        rgb = bytearray(3 * width)
        for channel in range(3):
            rgb[channel::3] = above[channel::step]
        rows.append(bytes(rgb))
    return Picture(width, height, rows)


def unfiltered(kind, line, above, step):
    for i in range(len(line)):
        left = line[i - step] if i >= step else 0
        corner = above[i - step] if i >= step else 0
        if kind == 1:
            line[i] = (line[i] + left) & 255
        elif kind == 2:
            line[i] = (line[i] + above[i]) & 255
        elif kind == 3:
            line[i] = (line[i] + (left + above[i]) // 2) & 255
        elif kind == 4:
            guess = left + above[i] - corner
            nearest = min((abs(guess - left), 0, left), (abs(guess - above[i]), 1, above[i]),
                          (abs(guess - corner), 2, corner))[2]
            line[i] = (line[i] + nearest) & 255
    return line

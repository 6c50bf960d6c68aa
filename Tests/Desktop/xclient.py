"""A client of the X server over its C libraries: pictures of the screen, and how often a window's pixels change."""
import ctypes
from ctypes import POINTER, byref, c_char, c_char_p, c_int, c_uint, c_uint8, c_uint16, c_uint32, c_void_p

from pictures import Picture


class Cookie(ctypes.Structure):
    _fields_ = [("sequence", c_uint)]


class Extension(ctypes.Structure):
    _fields_ = [("response_type", c_uint8), ("pad", c_uint8), ("sequence", c_uint16), ("length", c_uint32),
                ("present", c_uint8), ("major_opcode", c_uint8), ("first_event", c_uint8), ("first_error", c_uint8)]


class ScreenIterator(ctypes.Structure):
    _fields_ = [("data", POINTER(c_uint32)), ("rem", c_int), ("index", c_int)]


def declared(function, result, *arguments):
    function.restype, function.argtypes = result, arguments
    return function


xcb = ctypes.CDLL("libxcb.so.1")
free = declared(ctypes.CDLL("libc.so.6").free, None, c_void_p)
connect = declared(xcb.xcb_connect, c_void_p, c_char_p, c_void_p)
disconnect = declared(xcb.xcb_disconnect, None, c_void_p)
generate_id = declared(xcb.xcb_generate_id, c_uint32, c_void_p)
poll_for_event = declared(xcb.xcb_poll_for_event, POINTER(c_uint8), c_void_p)
get_setup = declared(xcb.xcb_get_setup, c_void_p, c_void_p)
setup_roots = declared(xcb.xcb_setup_roots_iterator, ScreenIterator, c_void_p)
get_image = declared(xcb.xcb_get_image, Cookie, c_void_p, c_uint8, c_uint32, ctypes.c_int16, ctypes.c_int16, c_uint16,
                     c_uint16, c_uint32)
get_image_reply = declared(xcb.xcb_get_image_reply, c_void_p, c_void_p, Cookie, c_void_p)
get_image_data = declared(xcb.xcb_get_image_data, POINTER(c_uint8), c_void_p)
get_extension_data = declared(xcb.xcb_get_extension_data, POINTER(Extension), c_void_p, c_void_p)


def screenshot(display, width, height):
    """What the screen shows, all windows with it."""
    connection = connect(display.encode(), None)
    root = setup_roots(get_setup(connection)).data[0]
    all_pixels, plane_mask = 2, 0xffffffff
    reply = get_image_reply(connection, get_image(connection, all_pixels, root, 0, 0, width, height, plane_mask), None)
    data = ctypes.string_at(get_image_data(reply), width * height * 4)
    free(reply)
    disconnect(connection)
    rows = []
    for y in range(height):
        row = data[y * width * 4:(y + 1) * width * 4]
        rgb = bytearray(3 * width)
        rgb[0::3], rgb[1::3], rgb[2::3] = row[2::4], row[1::4], row[0::4]
        rows.append(bytes(rgb))
    return Picture(width, height, rows)


class DamageCounter:
    def __init__(self, display, window):
        library = ctypes.CDLL("libxcb-damage.so.0")
        self.query = declared(library.xcb_damage_query_version, Cookie, c_void_p, c_uint32, c_uint32)
        self.answer = declared(library.xcb_damage_query_version_reply, c_void_p, c_void_p, Cookie, c_void_p)
        create = declared(library.xcb_damage_create, Cookie, c_void_p, c_uint32, c_uint32, c_uint8)
        self.connection = connect(display.encode(), None)
        extension = get_extension_data(self.connection, byref(c_char.in_dll(library, "xcb_damage_id")))
        self.event = extension.contents.first_event
        self.total = 0
        self.wait_for_server()
        create(self.connection, generate_id(self.connection), window, 0)
        # A window that is on the screen counts as changed at first.
        self.count()
        self.total = 0

    def wait_for_server(self):
        free(self.answer(self.connection, self.query(self.connection, 1, 1), None))

    def count(self):
        """Reports since the counter was made."""
        self.wait_for_server()
        while event := poll_for_event(self.connection):
            self.total += (event[0] & 0x7f) == self.event
            free(event)
        return self.total

    def close(self):
        disconnect(self.connection)

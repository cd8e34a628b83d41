#include "desktop_only/DisplayProfile.h"

#include "media/ColorTransformSet.h"

#ifdef VANTREL_HAVE_XCB
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#endif

std::vector<uint8_t> readX11DisplayIccProfile()
{
    std::vector<uint8_t> bytes;
#ifdef VANTREL_HAVE_XCB
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display)
        return bytes;
    int screenIndex = 0;
    xcb_connection_t* conn = xcb_connect(nullptr, &screenIndex);
    if (!conn || xcb_connection_has_error(conn)) {
        if (conn)
            xcb_disconnect(conn);
        return bytes;
    }
    xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(conn));
    for (int i = 0; i < screenIndex && it.rem; ++i)
        xcb_screen_next(&it);
    if (it.rem) {
        const char* name = "_ICC_PROFILE";
        xcb_intern_atom_reply_t* atom =
            xcb_intern_atom_reply(conn, xcb_intern_atom(conn, 1, uint16_t(std::strlen(name)), name), nullptr);
        if (atom && atom->atom != XCB_ATOM_NONE) {
            // Profiles are small; 16 MB (in 32-bit units) is far beyond any real one.
            xcb_get_property_reply_t* prop = xcb_get_property_reply(
                conn, xcb_get_property(conn, 0, it.data->root, atom->atom, XCB_GET_PROPERTY_TYPE_ANY, 0, 4u << 20),
                nullptr);
            if (prop && prop->format == 8) {
                const int len = xcb_get_property_value_length(prop);
                const uint8_t* v = static_cast<const uint8_t*>(xcb_get_property_value(prop));
                if (len > 0)
                    bytes.assign(v, v + len);
            }
            std::free(prop);
        }
        std::free(atom);
    }
    xcb_disconnect(conn);
#endif
    return bytes;
}

void installDisplayIccProvider()
{
    setDisplayIccProvider(&readX11DisplayIccProfile);
}

#include "platform/PictureLayer.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QImage>
#include <QPointer>
#include <QWidget>
#include <QWindow>

#include <array>
#include <cstdlib>
#include <vector>
#include <xcb/xcb.h>

namespace {

// The X window the top-level `window` has now, or 0. Asked of its QWindow: the toolkit makes
// the X window again on some changes of the window's flags, and the widget's own copy of
// the id is not always brought up to date.
xcb_window_t XWindowOf(const QWidget* window)
{
    const QWindow* handle = window ? window->windowHandle() : nullptr;
    return handle && handle->handle() ? xcb_window_t(handle->winId()) : 0;
}

// Requests whose errors would otherwise reach the toolkit's event handler and be printed:
// freeing what the server may already have dropped with a destroyed window.
void Quietly(xcb_connection_t* connection, xcb_void_cookie_t cookie)
{
    xcb_discard_reply(connection, cookie.sequence);
}

// True when a pixel of `depth` on `visual` is stored as Qt's 32-bit image formats store it:
// TrueColor, 8 bits each of red, green and blue in 0x00RRGGBB, 32 bits per pixel, least
// significant byte first. Anything else is left to the toolkit.
bool TakesQtPixels(const xcb_setup_t* setup, uint8_t depth, xcb_visualid_t visual)
{
    if (QSysInfo::ByteOrder != QSysInfo::LittleEndian ||
        setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST || (depth != 24 && depth != 32))
        return false;
    bool wholeWords = false;
    for (auto f = xcb_setup_pixmap_formats_iterator(setup); f.rem; xcb_format_next(&f))
        if (f.data->depth == depth)
            wholeWords = f.data->bits_per_pixel == 32 && f.data->scanline_pad == 32;
    if (!wholeWords)
        return false;
    for (auto s = xcb_setup_roots_iterator(setup); s.rem; xcb_screen_next(&s))
        for (auto d = xcb_screen_allowed_depths_iterator(s.data); d.rem; xcb_depth_next(&d)) {
            if (d.data->depth != depth)
                continue;
            for (auto v = xcb_depth_visuals_iterator(d.data); v.rem; xcb_visualtype_next(&v))
                if (v.data->visual_id == visual)
                    return v.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR && v.data->red_mask == 0xff0000 &&
                           v.data->green_mask == 0xff00 && v.data->blue_mask == 0xff;
        }
    return false;
}

// On X11 the layer is a child window of the program's window that takes no input (the
// pointer's events go through to the window beneath) and whose background is the picture
// shown: the server draws it by itself whenever it is uncovered, and changing the picture is
// one request to set the background and one to clear the window to it. Each picture is kept
// as a pixmap on the server.
//
// The requests are not waited on (a round trip each second would wake the program once more
// a second). The server's refusal of any of them comes back later as an error event, which
// the layer watches for among the toolkit's events: from then on it reports that it has
// failed, and the box goes back to painting itself.
class X11PictureLayer final : public PictureLayer, public QAbstractNativeEventFilter
{
public:
    X11PictureLayer(xcb_connection_t* connection, QWidget* window, xcb_window_t root, uint8_t depth)
        : m_connection(connection), m_window(window), m_root(root), m_depth(depth)
    {
        m_parent = XWindowOf(window);
        QCoreApplication::instance()->installNativeEventFilter(this);
        // Pixmaps and their drawing context belong to the screen, not to the window, which
        // may be made anew: a context of the pictures' depth, made on a pixmap of that depth.
        const xcb_pixmap_t sample = NewId();
        m_gc = NewId();
        if (sample == 0 || m_gc == 0) {
            m_failed = true;
            return;
        }
        Burst burst;
        burst.Note(xcb_create_pixmap(m_connection, m_depth, sample, m_root, 1, 1));
        burst.Note(xcb_create_gc(m_connection, m_gc, sample, 0, nullptr));
        burst.Note(xcb_free_pixmap(m_connection, sample));
        Record(burst);
    }

    ~X11PictureLayer() override
    {
        if (QCoreApplication* app = QCoreApplication::instance())
            app->removeNativeEventFilter(this);
        Forget();
        DestroyChild();
        if (m_gc != 0)
            Quietly(m_connection, xcb_free_gc_checked(m_connection, m_gc));
        xcb_flush(m_connection);
    }

    int Keep(const QImage& picture) override
    {
        if (m_failed || picture.isNull() || picture.width() > 0x7fff || picture.height() > 0x7fff)
            return -1;
        QImage pixels = picture;
        if (pixels.format() != QImage::Format_RGB32 && pixels.format() != QImage::Format_ARGB32_Premultiplied)
            pixels = pixels.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        // One request carries the whole picture: its header, then whole rows of 32-bit pixels.
        const size_t bytes = size_t(pixels.width()) * 4 * size_t(pixels.height());
        if (size_t(pixels.bytesPerLine()) != size_t(pixels.width()) * 4 ||
            bytes + 24 > size_t(xcb_get_maximum_request_length(m_connection)) * 4)
            return -1;
        const xcb_pixmap_t pixmap = NewId();
        if (pixmap == 0)
            return -1;
        Burst burst;
        burst.Note(xcb_create_pixmap(m_connection, m_depth, pixmap, m_root, uint16_t(pixels.width()),
                                     uint16_t(pixels.height())));
        burst.Note(xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, m_gc,
                                 uint16_t(pixels.width()), uint16_t(pixels.height()), 0, 0, 0, m_depth,
                                 uint32_t(bytes), pixels.constBits()));
        Record(burst);
        m_pixmaps.push_back(pixmap);
        return int(m_pixmaps.size()) - 1;
    }

    bool Show(int number, const QRect& area) override
    {
        if (m_failed)
            return false;
        if (number < 0 || number >= int(m_pixmaps.size()) || area.isEmpty())
            return true;
        // A window made anew (its id changed) took the old child with it.
        const xcb_window_t parent = XWindowOf(m_window);
        if (parent == 0)
            return true;
        if (parent != m_parent) {
            m_parent = parent;
            m_child = 0;
        }
        const xcb_pixmap_t pixmap = m_pixmaps[size_t(number)];
        Burst burst;
        if (m_child == 0) {
            m_child = NewId();
            if (m_child == 0) {
                m_failed = true;
                return false;
            }
            const uint32_t values[] = {pixmap, 0};
            burst.Note(xcb_create_window(
                m_connection, XCB_COPY_FROM_PARENT, m_child, m_parent, int16_t(area.x()), int16_t(area.y()),
                uint16_t(area.width()), uint16_t(area.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXMAP | XCB_CW_EVENT_MASK, values));
            m_area = area;
            m_shown = pixmap;
            m_mapped = false;
        }
        if (area != m_area) {
            const uint32_t geometry[] = {uint32_t(area.x()), uint32_t(area.y()), uint32_t(area.width()),
                                         uint32_t(area.height())};
            burst.Note(xcb_configure_window(m_connection, m_child,
                                            XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y |
                                                XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                                            geometry));
            m_area = area;
        }
        if (pixmap != m_shown) {
            burst.Note(xcb_change_window_attributes(m_connection, m_child, XCB_CW_BACK_PIXMAP, &pixmap));
            burst.Note(xcb_clear_area(m_connection, 0, m_child, 0, 0, 0, 0));
            m_shown = pixmap;
        }
        if (!m_mapped) {
            // Always the top child: nothing the program draws itself is over it.
            const uint32_t above[] = {XCB_STACK_MODE_ABOVE};
            burst.Note(xcb_configure_window(m_connection, m_child, XCB_CONFIG_WINDOW_STACK_MODE, above));
            burst.Note(xcb_map_window(m_connection, m_child));
            m_mapped = true;
        }
        Record(burst);
        xcb_flush(m_connection);
        return true;
    }

    void Hide() override
    {
        if (m_child == 0 || !m_mapped)
            return;
        if (XWindowOf(m_window) == m_parent)
            Quietly(m_connection, xcb_unmap_window_checked(m_connection, m_child));
        m_mapped = false;
        xcb_flush(m_connection);
    }

    void Forget() override
    {
        for (const xcb_pixmap_t pixmap : m_pixmaps)
            Quietly(m_connection, xcb_free_pixmap_checked(m_connection, pixmap));
        m_pixmaps.clear();
        // An id may be handed out again: the next Show sets the background whatever it is.
        m_shown = 0;
        xcb_flush(m_connection);
    }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) override
    {
        if (m_failed || eventType != "xcb_generic_event_t" || !message)
            return false;
        const auto* event = static_cast<const xcb_generic_event_t*>(message);
        if ((event->response_type & 0x7f) != 0)
            return false;
        const uint32_t sequence = static_cast<const xcb_generic_error_t*>(message)->full_sequence;
        for (const Burst& burst : m_sent)
            if (burst.Holds(sequence))
                m_failed = true;
        // The toolkit goes on to handle (and log) the error as it would any other.
        return false;
    }

private:
    // The sequence numbers of the requests the layer sent in one go (the toolkit's own
    // requests come before or after, from the same thread), for the errors they may bring.
    struct Burst
    {
        bool any = false;
        uint32_t first = 0;
        uint32_t last = 0;
        void Note(xcb_void_cookie_t cookie)
        {
            if (!any)
                first = cookie.sequence;
            any = true;
            last = cookie.sequence;
        }
        bool Holds(uint32_t sequence) const { return any && sequence - first <= last - first; }
    };
    // The last few bursts: an error comes back within moments, long before the next tick.
    void Record(const Burst& burst)
    {
        if (!burst.any)
            return;
        m_sent[m_sentAt] = burst;
        m_sentAt = (m_sentAt + 1) % m_sent.size();
    }
    xcb_window_t NewId()
    {
        const uint32_t id = xcb_generate_id(m_connection);
        return id == uint32_t(-1) ? 0 : id;
    }
    void DestroyChild()
    {
        // The child goes with its parent; one made anew has another id.
        if (m_child != 0 && XWindowOf(m_window) == m_parent)
            Quietly(m_connection, xcb_destroy_window_checked(m_connection, m_child));
        m_child = 0;
    }

    xcb_connection_t* m_connection;
    // Gone with the window, should the layer outlive it.
    QPointer<QWidget> m_window;
    xcb_window_t m_root;
    uint8_t m_depth;
    xcb_window_t m_parent = 0;
    xcb_window_t m_child = 0;
    xcb_gcontext_t m_gc = 0;
    std::vector<xcb_pixmap_t> m_pixmaps;
    QRect m_area;
    xcb_pixmap_t m_shown = 0;
    bool m_mapped = false;
    bool m_failed = false;
    std::array<Burst, 8> m_sent{};
    size_t m_sentAt = 0;
};

class X11PictureLayers final : public PictureLayers
{
public:
    std::unique_ptr<PictureLayer> Create(QWidget* window) override
    {
        // Only on X11 (not under Wayland, nor the offscreen platform of the tests), and only
        // when the layer can be switched off by hand.
        auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
        if (!x11 || !window || !window->isWindow() || qEnvironmentVariableIsSet("TARROWIND_NO_LAYERS"))
            return nullptr;
        xcb_connection_t* connection = x11->connection();
        if (!connection || xcb_connection_has_error(connection))
            return nullptr;
        window->winId(); // makes the native window if there is none yet
        const xcb_window_t id = XWindowOf(window);
        if (id == 0)
            return nullptr;
        // Two round trips, once: the window's depth and visual decide whether the server takes
        // Qt's pixels as they are.
        xcb_get_geometry_reply_t* geometry =
            xcb_get_geometry_reply(connection, xcb_get_geometry(connection, id), nullptr);
        xcb_get_window_attributes_reply_t* attributes =
            xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, id), nullptr);
        std::unique_ptr<PictureLayer> layer;
        if (geometry && attributes &&
            TakesQtPixels(xcb_get_setup(connection), geometry->depth, attributes->visual))
            layer = std::make_unique<X11PictureLayer>(connection, window, geometry->root, geometry->depth);
        std::free(geometry);
        std::free(attributes);
        return layer;
    }
};

} // namespace

std::unique_ptr<PictureLayers> PictureLayers::Make()
{
    return std::make_unique<X11PictureLayers>();
}

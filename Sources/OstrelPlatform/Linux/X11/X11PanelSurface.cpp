#include "OstrelPlatform/Linux/X11/X11PanelSurface.h"

#include <xcb/shape.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace Ostrel {

namespace {

constexpr std::size_t BytesAPixel = 4;

/// Memory of this process that another may map while this object lives; not kept by the system after that, however the
/// process ends.
class SharedMemory {
public:
    explicit SharedMemory(std::size_t bytes) {
        id_ = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
        if (id_ < 0)
            return;
        if (void* mapped = shmat(id_, nullptr, 0); mapped != reinterpret_cast<void*>(-1))
            bytes_ = static_cast<uchar*>(mapped);
        // Linux lets others attach to a removed segment for as long as it is mapped here.
        shmctl(id_, IPC_RMID, nullptr);
    }
    ~SharedMemory() {
        if (bytes_)
            shmdt(bytes_);
    }
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    uchar* bytes() const { return bytes_; }
    std::uint32_t id() const { return static_cast<std::uint32_t>(id_); }

private:
    int id_ = -1;
    uchar* bytes_ = nullptr;
};

std::int16_t coordinate(int value) {
    return static_cast<std::int16_t>(value);
}

std::uint16_t extent(int value) {
    return static_cast<std::uint16_t>(value);
}

} // namespace

/// The picture's memory on both sides.
class X11PanelSurface::Memory {
public:
    Memory(xcb_connection_t* connection, std::size_t bytes)
        : connection_(connection)
        , shared_(bytes) {
        if (!shared_.bytes())
            return;
        segment_ = xcb_generate_id(connection);
        xcb_shm_attach(connection, segment_, shared_.id(), true);
    }
    ~Memory() {
        if (segment_)
            xcb_shm_detach(connection_, segment_);
    }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;

    uchar* bytes() const { return shared_.bytes(); }
    xcb_shm_seg_t segment() const { return segment_; }

private:
    xcb_connection_t* connection_;
    SharedMemory shared_;
    xcb_shm_seg_t segment_ = 0;
};

X11PanelSurface::X11PanelSurface(Screen& screen, std::uint32_t window, std::uint8_t depth)
    : screen_(screen)
    , window_(window)
    , depth_(depth)
    , context_(xcb_generate_id(screen.connection)) {
    xcb_create_gc(screen_.connection, context_, window_, 0, nullptr);
    screen_.surfaces.push_back(this);
}

X11PanelSurface::~X11PanelSurface() {
    xcb_free_gc(screen_.connection, context_);
    std::erase(screen_.surfaces, this);
}

bool X11PanelSurface::canShareMemory(xcb_connection_t* connection) {
    const auto* extension = xcb_get_extension_data(connection, &xcb_shm_id);
    if (!extension || !extension->present)
        return false;
    const SharedMemory probe(1);
    if (!probe.bytes())
        return false;
    const xcb_shm_seg_t segment = xcb_generate_id(connection);
    xcb_generic_error_t* error
        = xcb_request_check(connection, xcb_shm_attach_checked(connection, segment, probe.id(), true));
    const bool attached = !error;
    std::free(error);
    if (attached)
        xcb_shm_detach(connection, segment);
    return attached;
}

QImage& X11PanelSurface::resize(const QSize& pixels) {
    picture_ = {};
    memory_.reset();
    const std::size_t stride = static_cast<std::size_t>(pixels.width()) * BytesAPixel;
    if (screen_.sharesMemory)
        memory_ = std::make_unique<Memory>(screen_.connection, stride * static_cast<std::size_t>(pixels.height()));
    constexpr auto Format = QImage::Format_ARGB32_Premultiplied;
    if (memory_ && memory_->bytes())
        picture_ = QImage(memory_->bytes(), pixels.width(), pixels.height(), static_cast<qsizetype>(stride), Format);
    else
        picture_ = QImage(pixels, Format);
    return picture_;
}

/// The server paints a window's background when it maps it, without waiting for the client that is told of it.
void X11PanelSurface::presentWhenShown() {
    if (picture_.isNull())
        return;
    const xcb_pixmap_t pixmap = xcb_generate_id(screen_.connection);
    xcb_create_pixmap(screen_.connection, depth_, pixmap, window_, extent(picture_.width()), extent(picture_.height()));
    put(pixmap, picture_.rect());
    setBackground(pixmap);
    xcb_free_pixmap(screen_.connection, pixmap);
    hasBackground_ = true;
}

void X11PanelSurface::setBackground(std::uint32_t pixmap) {
    xcb_change_window_attributes(screen_.connection, window_, XCB_CW_BACK_PIXMAP, &pixmap);
}

void X11PanelSurface::present(const std::vector<QRect>& parts) {
    if (!screen_.blends && shape_.follow(picture_, parts))
        applyShape();
    for (const QRect& part : parts)
        put(window_, part);
    // It is of another picture now, and the server's memory.
    if (std::exchange(hasBackground_, false))
        setBackground(XCB_BACK_PIXMAP_NONE);
}

void X11PanelSurface::put(std::uint32_t drawable, const QRect& part) {
    if (!memory_ || !memory_->segment())
        return putInBands(drawable, part);
    xcb_shm_put_image(screen_.connection, drawable, context_, extent(picture_.width()), extent(picture_.height()),
        extent(part.x()), extent(part.y()), extent(part.width()), extent(part.height()), coordinate(part.x()),
        coordinate(part.y()), depth_, XCB_IMAGE_FORMAT_Z_PIXMAP, false, memory_->segment(), 0);
}

/// As many rows at a time as a request may hold.
void X11PanelSurface::putInBands(std::uint32_t drawable, const QRect& part) {
    const std::size_t stride = static_cast<std::size_t>(part.width()) * BytesAPixel;
    const std::size_t most = std::size_t{xcb_get_maximum_request_length(screen_.connection)} * 4 - 64;
    const int bandHeight = static_cast<int>(std::clamp<std::size_t>(most / stride, 1, extent(part.height())));
    std::vector<std::uint8_t> band;
    for (int top = part.top(); top <= part.bottom(); top += bandHeight) {
        const int height = std::min(bandHeight, part.bottom() + 1 - top);
        band.resize(stride * static_cast<std::size_t>(height));
        for (int row = 0; row < height; ++row)
            std::memcpy(band.data() + stride * static_cast<std::size_t>(row),
                picture_.constScanLine(top + row) + static_cast<std::size_t>(part.x()) * BytesAPixel, stride);
        xcb_put_image(screen_.connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, context_, extent(part.width()),
            extent(height), coordinate(part.x()), coordinate(top), 0, depth_, static_cast<std::uint32_t>(band.size()),
            band.data());
    }
}

void X11PanelSurface::blendingDidChange() {
    if (!screen_.blends) {
        shape_.follow(picture_, {picture_.rect()});
        applyShape();
    } else if (std::exchange(isShaped_, false)) {
        xcb_shape_mask(screen_.connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window_, 0, 0, XCB_NONE);
    }
}

void X11PanelSurface::applyShape() {
    isShaped_ = true;
    std::vector<xcb_rectangle_t> rectangles;
    for (const QRect& rect : shape_.region())
        rectangles.push_back({coordinate(rect.x()), coordinate(rect.y()), extent(rect.width()), extent(rect.height())});
    xcb_shape_rectangles(screen_.connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_YX_BANDED,
        window_, 0, 0, static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
}

} // namespace Ostrel

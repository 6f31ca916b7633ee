#include "graphics/native/KNativeImageFile.h"

#include "graphics/native/KNativeText.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <cstring>

namespace KNativeImageFile {

namespace {

// The loaders TaleLoom reads with; gdk-pixbuf has more (SVG, ANI, ...),
// which are refused.
constexpr const char* kReadableFormats[] = { "bmp", "jpeg", "png", "gif", "tiff", "tga", "xpm", "ico" };

bool isReadableFormat(GdkPixbufFormat* format)
{
    gchar* name = gdk_pixbuf_format_get_name(format);
    bool readable = false;
    for (const char* known : kReadableFormats)
        readable = readable || (name && std::strcmp(name, known) == 0);
    g_free(name);
    return readable;
}

bool sizeAllowed(int64_t width, int64_t height)
{
    return width > 0 && height > 0 && width <= kMaxSide && height <= kMaxSide && width * height <= kMaxPixels;
}

void convert(GdkPixbuf* pixbuf, Picture& out)
{
    int width = gdk_pixbuf_get_width(pixbuf);
    int height = gdk_pixbuf_get_height(pixbuf);
    int channels = gdk_pixbuf_get_n_channels(pixbuf);
    int stride = gdk_pixbuf_get_rowstride(pixbuf);
    bool hasAlpha = gdk_pixbuf_get_has_alpha(pixbuf) && channels == 4;
    const guint8* data = gdk_pixbuf_read_pixels(pixbuf);
    out.width = width;
    out.height = height;
    out.pixels.assign(size_t(width) * size_t(height), 0);
    out.alpha.clear();
    bool anyTransparent = false;
    std::vector<uint8_t> alpha(hasAlpha ? out.pixels.size() : 0, 255);
    for (int y = 0; y < height; ++y) {
        const guint8* p = data + size_t(y) * size_t(stride);
        for (int x = 0; x < width; ++x, p += channels) {
            uint32_t r = p[0], g = p[1], b = p[2];
            if (hasAlpha && p[3] != 255) {
                // Over white, so that the "transparent white" masks of
                // elements treat see-through parts as background.
                uint32_t a = p[3], ia = 255 - a;
                r = (r * a + 255 * ia + 127) / 255;
                g = (g * a + 255 * ia + 127) / 255;
                b = (b * a + 255 * ia + 127) / 255;
                alpha[size_t(y) * size_t(width) + size_t(x)] = uint8_t(a);
                anyTransparent = true;
            }
            out.pixels[size_t(y) * size_t(width) + size_t(x)] = (r << 16) | (g << 8) | b;
        }
    }
    if (anyTransparent)
        out.alpha = std::move(alpha);
}

// Turns a decoded pixbuf into `out` when it is a picture TaleLoom can use;
// takes the pixbuf.
bool takePixbuf(GdkPixbuf* pixbuf, Picture& out)
{
    bool usable = pixbuf && gdk_pixbuf_get_colorspace(pixbuf) == GDK_COLORSPACE_RGB
                  && gdk_pixbuf_get_bits_per_sample(pixbuf) == 8 && gdk_pixbuf_get_n_channels(pixbuf) >= 3
                  && sizeAllowed(gdk_pixbuf_get_width(pixbuf), gdk_pixbuf_get_height(pixbuf));
    if (usable)
        convert(pixbuf, out);
    if (pixbuf)
        g_object_unref(pixbuf);
    return usable;
}

} // namespace

std::string fileNameOf(const KString& path)
{
    std::string utf8 = kGraphicsTextToUtf8(path);
    gchar* name = g_filename_from_utf8(utf8.c_str(), gssize(utf8.size()), nullptr, nullptr, nullptr);
    if (!name)
        return utf8;
    std::string result(name);
    g_free(name);
    return result;
}

bool read(const std::string& fileName, Picture& out)
{
    out = Picture();
    int width = 0, height = 0;
    // The header alone: format and declared size.
    GdkPixbufFormat* format = gdk_pixbuf_get_file_info(fileName.c_str(), &width, &height);
    if (!format || !isReadableFormat(format) || !sizeAllowed(width, height))
        return false;
    GdkPixbuf* loaded = gdk_pixbuf_new_from_file(fileName.c_str(), nullptr);
    if (!loaded)
        return false;
    GdkPixbuf* pixbuf = gdk_pixbuf_apply_embedded_orientation(loaded);
    g_object_unref(loaded);
    return takePixbuf(pixbuf, out);
}

bool readBytes(const void* bytes, size_t size, Picture& out)
{
    out = Picture();
    if (!bytes || size == 0)
        return false;
    GdkPixbufLoader* loader = gdk_pixbuf_loader_new();
    bool written = gdk_pixbuf_loader_write(loader, static_cast<const guchar*>(bytes), size, nullptr);
    bool closed = gdk_pixbuf_loader_close(loader, nullptr);
    GdkPixbufFormat* format = gdk_pixbuf_loader_get_format(loader);
    GdkPixbuf* pixbuf = nullptr;
    if (written && closed && format && isReadableFormat(format)) {
        if (GdkPixbuf* loaded = gdk_pixbuf_loader_get_pixbuf(loader))
            pixbuf = gdk_pixbuf_apply_embedded_orientation(loaded);
    }
    g_object_unref(loader);
    return pixbuf && takePixbuf(pixbuf, out);
}

bool write(const std::string& fileName, const char* type, const KPixelBuffer& pixels)
{
    if (!pixels.isValid())
        return false;
    GdkPixbuf* pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, pixels.width, pixels.height);
    if (!pixbuf)
        return false;
    guint8* data = gdk_pixbuf_get_pixels(pixbuf);
    int stride = gdk_pixbuf_get_rowstride(pixbuf);
    for (int32_t y = 0; y < pixels.height; ++y) {
        guint8* p = data + size_t(y) * size_t(stride);
        const uint32_t* row = pixels.row(y);
        for (int32_t x = 0; x < pixels.width; ++x, p += 3) {
            p[0] = guint8(row[x] >> 16);
            p[1] = guint8(row[x] >> 8);
            p[2] = guint8(row[x]);
        }
    }
    char* keys[2] = { nullptr, nullptr };
    char* values[2] = { nullptr, nullptr };
    char quality[] = "quality";
    char ninety[] = "90";
    if (std::strcmp(type, "jpeg") == 0) {
        keys[0] = quality;
        values[0] = ninety;
    }
    gboolean saved = gdk_pixbuf_savev(pixbuf, fileName.c_str(), type, keys, values, nullptr);
    g_object_unref(pixbuf);
    return saved;
}

} // namespace KNativeImageFile

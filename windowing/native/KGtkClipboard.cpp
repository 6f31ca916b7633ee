#include "windowing/KEventTranslator.h"
#include "windowing/native/KGtkNativeLayer.h"
#include "windowing/native/KGtkText.h"

#include <gtk/gtk.h>

#include <cstring>

namespace {

// Target infos: text, image, then the private formats by index.
enum : guint { InfoText = 1, InfoImage = 2, InfoFormat = 16 };

// What the program offers while it owns the clipboard.
struct Offer {
    std::string text;
    GdkPixbuf* image = nullptr;
    std::vector<std::pair<std::string, std::vector<uint8_t>>> formats;

    ~Offer()
    {
        if (image)
            g_object_unref(image);
    }
};

GtkClipboard* clipboard() { return gtk_clipboard_get(GDK_SELECTION_CLIPBOARD); }

GdkPixbuf* pixbufOf(const KNativeImageData& image)
{
    GdkPixbuf* pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, image.width, image.height);
    if (!pixbuf)
        return nullptr;
    guchar* pixels = gdk_pixbuf_get_pixels(pixbuf);
    int stride = gdk_pixbuf_get_rowstride(pixbuf);
    for (int32_t y = 0; y < image.height; ++y) {
        guchar* row = pixels + ptrdiff_t(y) * stride;
        for (int32_t x = 0; x < image.width; ++x) {
            uint32_t p = image.pixels[size_t(y) * size_t(image.width) + size_t(x)];
            row[x * 3] = guchar(p >> 16);
            row[x * 3 + 1] = guchar(p >> 8);
            row[x * 3 + 2] = guchar(p);
        }
    }
    return pixbuf;
}

// Transparent parts come out over white, as images from files do.
void imageOf(GdkPixbuf* pixbuf, KNativeImageData& image)
{
    int channels = gdk_pixbuf_get_n_channels(pixbuf);
    bool alpha = gdk_pixbuf_get_has_alpha(pixbuf);
    int stride = gdk_pixbuf_get_rowstride(pixbuf);
    const guchar* pixels = gdk_pixbuf_read_pixels(pixbuf);
    image.width = gdk_pixbuf_get_width(pixbuf);
    image.height = gdk_pixbuf_get_height(pixbuf);
    image.pixels.assign(size_t(image.width) * size_t(image.height), 0);
    for (int32_t y = 0; y < image.height; ++y) {
        const guchar* row = pixels + ptrdiff_t(y) * stride;
        for (int32_t x = 0; x < image.width; ++x) {
            const guchar* p = row + x * channels;
            uint32_t a = alpha ? p[3] : 255;
            auto over = [a](uint32_t c) { return (c * a + 255 * (255 - a) + 127) / 255; };
            image.pixels[size_t(y) * size_t(image.width) + size_t(x)]
                = (over(p[0]) << 16) | (over(p[1]) << 8) | over(p[2]);
        }
    }
}

void provide(GtkClipboard*, GtkSelectionData* selection, guint info, gpointer data)
{
    auto* offer = static_cast<Offer*>(data);
    if (info == InfoText) {
        gtk_selection_data_set_text(selection, offer->text.c_str(), gint(offer->text.size()));
    } else if (info == InfoImage) {
        if (offer->image)
            gtk_selection_data_set_pixbuf(selection, offer->image);
    } else if (info >= InfoFormat && info - InfoFormat < offer->formats.size()) {
        auto& format = offer->formats[info - InfoFormat];
        gtk_selection_data_set(selection, gdk_atom_intern(format.first.c_str(), FALSE), 8, format.second.data(),
                               gint(format.second.size()));
    }
}

void release(GtkClipboard*, gpointer data) { delete static_cast<Offer*>(data); }

void onOwnerChange(GtkClipboard*, GdkEvent*, gpointer data)
{
    auto* layer = static_cast<KGtkNativeLayer*>(data);
    KNativeRecord record;
    record.message = KNativeMessage::ClipboardUpdate;
    record.time = layer->now();
    kksDeliverNativeRecord(record);
}

} // namespace

void KGtkNativeLayer::connectClipboard(bool connect)
{
    if (connect)
        g_signal_connect(clipboard(), "owner-change", G_CALLBACK(onOwnerChange), this);
    else
        g_signal_handlers_disconnect_by_data(clipboard(), this);
}

bool KGtkNativeLayer::setClipboard(const KNativeClipboardContent& content)
{
    if (!hasDisplay())
        return false;
    auto* offer = new Offer();
    GtkTargetList* targets = gtk_target_list_new(nullptr, 0);
    if (content.hasText) {
        offer->text = kToUtf8(content.text.c_str());
        gtk_target_list_add_text_targets(targets, InfoText);
    }
    if (content.hasImage && content.image.width > 0 && content.image.height > 0
        && content.image.pixels.size() == size_t(content.image.width) * size_t(content.image.height)) {
        offer->image = pixbufOf(content.image);
        if (offer->image)
            gtk_target_list_add_image_targets(targets, InfoImage, TRUE);
    }
    offer->formats = content.formats;
    for (size_t index = 0; index < offer->formats.size(); ++index)
        gtk_target_list_add(targets, gdk_atom_intern(offer->formats[index].first.c_str(), FALSE), 0,
                            guint(InfoFormat + index));
    gint count = 0;
    GtkTargetEntry* table = gtk_target_table_new_from_list(targets, &count);
    gtk_target_list_unref(targets);
    bool owned = count > 0 && gtk_clipboard_set_with_data(clipboard(), table, guint(count), &provide, &release, offer);
    gtk_target_table_free(table, count);
    if (!owned) {
        delete offer;
        gtk_clipboard_clear(clipboard());
        return count == 0;
    }
    gtk_clipboard_set_can_store(clipboard(), nullptr, 0);
    return true;
}

bool KGtkNativeLayer::clipboardHasFormat(const char* format)
{
    if (!hasDisplay())
        return false;
    if (std::strcmp(format, kClipboardText) == 0)
        return gtk_clipboard_wait_is_text_available(clipboard());
    if (std::strcmp(format, kClipboardImage) == 0)
        return gtk_clipboard_wait_is_image_available(clipboard());
    return gtk_clipboard_wait_is_target_available(clipboard(), gdk_atom_intern(format, FALSE));
}

bool KGtkNativeLayer::clipboardText(std::string& text)
{
    if (!hasDisplay())
        return false;
    gchar* utf8 = gtk_clipboard_wait_for_text(clipboard());
    if (!utf8)
        return false;
    text = kFromUtf8(utf8);
    g_free(utf8);
    return true;
}

bool KGtkNativeLayer::clipboardImage(KNativeImageData& image)
{
    if (!hasDisplay())
        return false;
    GdkPixbuf* pixbuf = gtk_clipboard_wait_for_image(clipboard());
    if (!pixbuf)
        return false;
    imageOf(pixbuf, image);
    g_object_unref(pixbuf);
    return true;
}

bool KGtkNativeLayer::clipboardData(const char* format, std::vector<uint8_t>& data)
{
    if (!hasDisplay())
        return false;
    GtkSelectionData* selection = gtk_clipboard_wait_for_contents(clipboard(), gdk_atom_intern(format, FALSE));
    if (!selection)
        return false;
    gint length = gtk_selection_data_get_length(selection);
    const guchar* bytes = gtk_selection_data_get_data(selection);
    bool found = length >= 0;
    if (found)
        data.assign(bytes, bytes + length);
    gtk_selection_data_free(selection);
    return found;
}

void KGtkNativeLayer::storeClipboard()
{
    if (hasDisplay())
        gtk_clipboard_store(clipboard());
}

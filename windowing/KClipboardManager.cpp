#include "windowing/KClipboardManager.h"

#include "graphics/KImage.h"
#include "kernel/KClass.h"
#include "windowing/KNativeLayer.h"

#include <algorithm>
#include <cstring>

namespace {

KClipboardManager* gClipboardManager = nullptr;

} // namespace

K_DEFINE_CLASS(KClipboardManager, KThing)

KClipboardManager::KClipboardManager() { gClipboardManager = this; }

KClipboardManager::~KClipboardManager()
{
    if (gClipboardManager == this)
        gClipboardManager = nullptr;
}

KClipboardManager* KClipboardManager::current() { return gClipboardManager; }

bool KClipboardManager::setContent(const KNativeClipboardContent& content)
{
    return KNativeLayer::get().setClipboard(content);
}

bool KClipboardManager::setText(const KString& text)
{
    KNativeClipboardContent content;
    content.hasText = true;
    content.text.assign(text.c_str(), size_t(text.getLength()));
    return setContent(content);
}

bool KClipboardManager::hasText() const { return KNativeLayer::get().clipboardHasFormat(kClipboardText); }

bool KClipboardManager::getText(KString& text) const
{
    std::string found;
    if (!KNativeLayer::get().clipboardText(found))
        return false;
    text.setText(found.data(), int32_t(found.size()));
    return true;
}

bool KClipboardManager::imageContent(KImage& image, KNativeClipboardContent& content)
{
    if (!image.hasImage())
        return false;
    KPixelBuffer pixels;
    if (!image.getDevice().beginPixelAccess(pixels))
        return false;
    content.hasImage = true;
    content.image.width = pixels.width;
    content.image.height = pixels.height;
    content.image.pixels.resize(size_t(pixels.width) * size_t(pixels.height));
    for (int32_t y = 0; y < pixels.height; ++y) {
        const uint32_t* row = pixels.row(y);
        std::transform(row, row + pixels.width, content.image.pixels.begin() + ptrdiff_t(y) * pixels.width,
                       [](uint32_t p) { return p & KPixelBuffer::kColourBits; });
    }
    image.getDevice().endPixelAccess(KWideRectangle());
    return true;
}

bool KClipboardManager::setImage(KImage& image)
{
    KNativeClipboardContent content;
    return imageContent(image, content) && setContent(content);
}

bool KClipboardManager::setImageAndData(KImage& image, const char* format, const std::vector<uint8_t>& data)
{
    KNativeClipboardContent content;
    imageContent(image, content);
    content.formats.emplace_back(format, data);
    return setContent(content);
}

bool KClipboardManager::hasImage() const { return KNativeLayer::get().clipboardHasFormat(kClipboardImage); }

bool KClipboardManager::getImage(KImage& image) const
{
    KNativeImageData data;
    if (!KNativeLayer::get().clipboardImage(data) || data.width <= 0 || data.height <= 0 || data.width > 32767
        || data.height > 32767 || data.pixels.size() != size_t(data.width) * size_t(data.height))
        return false;
    image.setSize(KGraphicSize(int16_t(data.width), int16_t(data.height)));
    KPixelBuffer pixels;
    if (!image.getDevice().beginPixelAccess(pixels))
        return false;
    for (int32_t y = 0; y < data.height; ++y)
        std::memcpy(pixels.row(y), &data.pixels[size_t(y) * size_t(data.width)], size_t(data.width) * 4);
    image.getDevice().endPixelAccess(KWideRectangle(0, 0, data.width, data.height));
    return true;
}

bool KClipboardManager::setData(const char* format, const std::vector<uint8_t>& data)
{
    KNativeClipboardContent content;
    content.formats.emplace_back(format, data);
    return setContent(content);
}

bool KClipboardManager::hasData(const char* format) const { return KNativeLayer::get().clipboardHasFormat(format); }

bool KClipboardManager::getData(const char* format, std::vector<uint8_t>& data) const
{
    return KNativeLayer::get().clipboardData(format, data);
}

void KClipboardManager::registerFormat(const char* format)
{
    if (std::find(formats.begin(), formats.end(), format) == formats.end())
        formats.emplace_back(format);
}

bool KClipboardManager::holdsSomething() const
{
    if (hasText() || hasImage())
        return true;
    for (auto& format : formats) {
        if (hasData(format.c_str()))
            return true;
    }
    return false;
}

bool KClipboardManager::importClipboard() { return holdsSomething(); }

void KClipboardManager::exportClipboard() { KNativeLayer::get().storeClipboard(); }

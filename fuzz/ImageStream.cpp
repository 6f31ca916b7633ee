// Reads arbitrary bytes as the class stream of an image and of an alpha
// image (with its mask and its embedded bitmaps), then draws, writes and
// reads again what came out. Damaged input may only leave the image empty:
// a fatal error reached from the bytes is a finding and aborts, so that
// libFuzzer reports it (a fatal end otherwise exits quietly).
#include "graphics/KAlphaImage.h"
#include "graphics/KGraphicsClasses.h"
#include "graphics/KImage.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

int32_t abortOnFatal(const char* location, const char* text)
{
    std::fprintf(stderr, "fatal error reached from image bytes: %s: %s\n", location, text);
    std::abort();
}

void quietMessage(const char*, const char*, int32_t) { }

bool prepare()
{
    KErrorHandler::loadKernelErrors();
    KErrorHandler::setFatalProc(&abortOnFatal);
    KErrorHandler::setMessageProc(&quietMessage);
    kRegisterGraphicsClasses();
    return true;
}

// A read-buffered file over a copy of the bytes; the file disposes of it.
void openImage(KFile& file, const uint8_t* data, size_t size)
{
    auto* image = static_cast<uint8_t*>(KMemory::allocate(size ? size : 1, false));
    if (size)
        std::memcpy(image, data, size);
    file.setMode(KFileModeReadBuffered);
    file.openFromRAM(image, int32_t(size));
}

// Whatever was read has to draw in every blend mode and survive a second
// trip through its own stream.
void exercise(KImage& image, bool alpha)
{
    KImagePtr target(new KImage(KGraphicSize(24, 16)));
    KGraphicRectangle source = image.getBounds();
    if (alpha) {
        auto& alphaImage = static_cast<KAlphaImage&>(image);
        for (int32_t mode : { KAlphaImage::Masked, KAlphaImage::Constant, KAlphaImage::PerPixel }) {
            alphaImage.setBlendMode(mode);
            alphaImage.drawRegion(target->getDevice(), source, KGraphicRectangle(-3, 2, 20, 9));
        }
    } else {
        image.drawAt(target->getDevice(), KGraphicPoint(1, 1));
    }

    KFile out;
    out.setMode(KFileModeMemory);
    image.writeToFile(out, 1);
    KFile in;
    openImage(in, static_cast<const uint8_t*>(out.getMemoryData()), size_t(out.getMemorySize()));
    KImagePtr again(alpha ? new KAlphaImage() : new KImage());
    again->readFromFile(in);
    if (in.getError() != 0 || again->hasImage() != image.hasImage()) {
        std::fprintf(stderr, "an image did not read back what it wrote\n");
        std::abort();
    }
}

void readAs(const uint8_t* data, size_t size, bool alpha)
{
    KFile file;
    openImage(file, data, size);
    KImagePtr image(alpha ? new KAlphaImage() : new KImage());
    image->readFromFile(file);
    if (image->getBounds().getWidth() > 512 || image->getBounds().getHeight() > 512)
        return;
    exercise(*image, alpha);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static bool ready = prepare();
    (void)ready;
    if (size > size_t(INT32_MAX))
        return 0;
    readAs(data, size, false);
    readAs(data, size, true);
    return 0;
}

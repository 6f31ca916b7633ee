// Loads arbitrary bytes as a document, with every kernel class registered
// and the error table loaded. Damaged input must only make the load return
// false: a fatal error reached from the bytes is a finding and aborts, so
// that libFuzzer reports it (a fatal end otherwise exits quietly).
#include "kernel/KDocument.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KKernelClasses.h"
#include "kernel/KMemory.h"
#include "kernel/KUnknownObject.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

int32_t abortOnFatal(const char* location, const char* text)
{
    std::fprintf(stderr, "fatal error reached from document bytes: %s: %s\n", location, text);
    std::abort();
}

bool prepare()
{
    KErrorHandler::loadKernelErrors();
    KErrorHandler::setFatalProc(&abortOnFatal);
    kRegisterKernelClasses();
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

bool load(KDocument& document, const uint8_t* data, size_t size, bool keepUnknown)
{
    KFile file;
    openImage(file, data, size);
    if (!keepUnknown)
        return document.loadFrom(file);
    KUnknownObject::KeepScope keep;
    return document.loadFrom(file);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static bool ready = prepare();
    (void)ready;
    if (size > size_t(INT32_MAX))
        return 0;

    KDocument document;
    // The magic comes from the input, so that every input reaches the body.
    if (size >= 4)
        document.setMagic(
            int32_t(uint32_t(data[0]) << 24 | uint32_t(data[1]) << 16 | uint32_t(data[2]) << 8 | data[3]));
    // Odd lengths load as the inspector does, with unknown objects kept.
    bool keepUnknown = size % 2 == 1;
    bool loaded = load(document, data, size, keepUnknown);

    // Whatever was read can be shown.
    KJsonWriter json(0);
    json.beginObject();
    document.describe(json);
    json.endObject();

    // A document that loaded saves, and what it saves loads again.
    if (loaded && !keepUnknown) {
        KFile out;
        out.setMode(KFileModeMemory);
        if (!document.saveTo(out) || out.getMemorySize() < 0)
            std::abort();
        KDocument again;
        again.setMagic(document.getMagic());
        if (!load(again, static_cast<const uint8_t*>(out.getMemoryData()), size_t(out.getMemorySize()), false)) {
            std::fprintf(stderr, "a saved document does not load again (code %d)\n", again.getFileError());
            std::abort();
        }
    }
    return 0;
}

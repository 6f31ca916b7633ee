#include "windowing/KNativeLayer.h"

#include "kernel/KErrorHandler.h"
#include "windowing/KApplication.h"
#include "windowing/KServices.h"

namespace {

KNativeLayer* gLayer = nullptr;

} // namespace

KNativeLayer::~KNativeLayer()
{
    if (gLayer == this)
        gLayer = nullptr;
}

bool KNativeLayer::droppedFile(int32_t, char*, int32_t) { return false; }

void KNativeLayer::install(KNativeLayer* layer) { gLayer = layer; }

KNativeLayer* KNativeLayer::current() { return gLayer; }

KNativeLayer& KNativeLayer::get()
{
    if (!gLayer)
        KErrorHandler::raiseUnrecoverable(KError::ApplicationCannotRun, "KNativeLayer& KNativeLayer::get()");
    return *gLayer;
}

// The platform first, then the error table (which the platform's failure
// needs to be reported), then the verdict.
void knsEnterKernel()
{
    bool ready = gLayer && gLayer->initialize();
    if (!KErrorHandler::isLoaded())
        KErrorHandler::loadKernelErrors();
    if (!ready)
        KErrorHandler::raiseError(KError::ApplicationCannotRun, "void knsEnterKernel()");
    KApplication::setWindowManagerClassName("KWindowManager");
}

void knsExitKernel()
{
    KErrorHandler::clearErrors();
    if (gLayer)
        gLayer->shutDown();
}

// After the native message: the pointer's position drives enter, leave and
// hover without any mouse message, and the message channel is read.
void knsProcessNativeMessage(bool block, bool& keepRunning, int32_t waitMs)
{
    KNativeLayer& layer = KNativeLayer::get();
    layer.processNativeMessage(block, keepRunning, waitMs);
    const KServices& services = kServices();
    if (services.updateCursor && kServiceExists(KServices::Cursor)) {
        int32_t x = 0;
        int32_t y = 0;
        if (layer.cursorPosition(x, y))
            services.updateCursor(x, y);
    }
    if (services.pollMessages)
        services.pollMessages();
}

uint32_t knsGetTime() { return gLayer ? gLayer->now() : 0; }

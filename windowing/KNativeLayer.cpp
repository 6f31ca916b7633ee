#include "windowing/KNativeLayer.h"

#include "kernel/KErrorHandler.h"
#include "windowing/KApplication.h"
#include "windowing/KServices.h"

#include <cstdio>

namespace {

KNativeLayer* gLayer = nullptr;

} // namespace

KNativeLayer::~KNativeLayer()
{
    if (gLayer == this)
        gLayer = nullptr;
}

bool KNativeLayer::droppedFile(int32_t, char*, int32_t) { return false; }

void KNativeLayer::setWindowFullScreen(void*, bool) { }
void KNativeLayer::addRecentFile(const char*) { }
void KNativeLayer::watchTermination(SignalHandler) { }
void KNativeLayer::watchStateRequest(SignalHandler) { }

KNativeRect KNativeLayer::workArea() const
{
    KNativeRect area;
    screenSize(area.width, area.height);
    return area;
}

// Without a display there is nothing to show, stack or choose from: the
// defaults do nothing and refuse what must be refused.
void KNativeLayer::setWindowBounds(void*, const KNativeRect&) { }
void KNativeLayer::restackWindows(const std::vector<void*>&) { }
void KNativeLayer::setWindowEnabled(void*, bool) { }
void KNativeLayer::setWindowModal(void*, bool) { }
void KNativeLayer::invalidateWindow(void*, const KNativeRect&) { }
void KNativeLayer::setWindowTooltip(void*, const char*) { }

void KNativeLayer::setAccessibleControls(void*, const std::vector<KNativeAccessible>&) { }

void KNativeLayer::screenSize(int32_t& width, int32_t& height) const
{
    width = 1280;
    height = 1024;
}

void* KNativeLayer::createControl(void*, const KNativeControlSetup&) { return nullptr; }
void KNativeLayer::destroyControl(void*) { }
void KNativeLayer::setControlBounds(void*, const KNativeRect&) { }
void KNativeLayer::setControlText(void*, const char*) { }
void KNativeLayer::setControlEnabled(void*, bool) { }
void KNativeLayer::setControlVisible(void*, bool) { }
void KNativeLayer::setControlValue(void*, double) { }
void KNativeLayer::setControlItems(void*, const std::vector<std::string>&) { }
void KNativeLayer::setControlRange(void*, const KNativeControlRange&) { }
void KNativeLayer::setControlTextLimit(void*, int32_t) { }
void KNativeLayer::setControlColour(void*, const KNativeColour&) { }
void KNativeLayer::setControlPicture(void*, const KNativeImageData&) { }
bool KNativeLayer::controlValue(void*, double&) { return false; }
bool KNativeLayer::controlText(void*, std::string&) { return false; }
void KNativeLayer::setControlStyledText(void*, const KNativeStyledText&) { }
bool KNativeLayer::controlStyledText(void*, KNativeStyledText&) { return false; }
void KNativeLayer::selectControlText(void*, int32_t, int32_t) { }
bool KNativeLayer::controlSelection(void*, int32_t&, int32_t&) { return false; }
void KNativeLayer::changeControlTextStyle(void*, const KNativeStyleChange&) { }
void KNativeLayer::sendControlKey(void*, int32_t, int32_t) { }
void KNativeLayer::focusControl(void*) { }
int32_t KNativeLayer::popUpMenu(void*, const std::vector<KNativeMenuItem>&, int32_t, int32_t) { return 0; }
void KNativeLayer::setMenuBar(void*, const std::vector<KNativeMenuItem>&) { }
void KNativeLayer::updateMenuBar(void*, const std::vector<KNativeMenuItem>&) { }
void KNativeLayer::showMenuBar(void*, bool) { }
void KNativeLayer::removeMenuBar(void*) { }
void KNativeLayer::editControlText(void*, KNativeTextEdit) { }

void KNativeLayer::setCursorShape(KCursorShape) { }
void KNativeLayer::setCursorVisible(bool) { }

bool KNativeLayer::setClipboard(const KNativeClipboardContent&) { return false; }
bool KNativeLayer::clipboardHasFormat(const char*) { return false; }
bool KNativeLayer::clipboardText(std::string&) { return false; }
bool KNativeLayer::clipboardImage(KNativeImageData&) { return false; }
bool KNativeLayer::clipboardData(const char*, std::vector<uint8_t>&) { return false; }
void KNativeLayer::storeClipboard() { }

bool KNativeLayer::chooseFile(const KNativeChooserRequest&, std::string&) { return false; }
bool KNativeLayer::chooseColour(const char*, KNativeColour&) { return false; }
bool KNativeLayer::runPageSetup(KNativePageSetupRequest&) { return false; }
bool KNativeLayer::printPaperSize(double&, double&) { return false; }
bool KNativeLayer::isPrintLandscape() { return false; }

int32_t KNativeLayer::runPrintJob(const KNativePrintJob&, std::string& error)
{
    error = "no printing";
    return KNativePrintJob::Failed;
}

// A box nobody can see takes its default answer; the text still reaches
// the terminal.
int32_t KNativeLayer::messageBox(const KNativeAlertRequest& alert)
{
    std::fprintf(stderr, "%s: %s\n", alert.title.c_str(), alert.text.c_str());
    switch (alert.style) {
    case KNativeAlertRequest::YesNo:
        return KNativeAnswer::Yes;
    case KNativeAlertRequest::YesNoDefaultNo:
        return KNativeAnswer::No;
    case KNativeAlertRequest::YesNoCancel:
    case KNativeAlertRequest::OkCancel:
        return KNativeAnswer::Cancel;
    default:
        return KNativeAnswer::Ok;
    }
}

void KNativeLayer::beep() { }

bool KNativeLayer::openMessageSlot(const char*) { return false; }
void KNativeLayer::closeMessageSlot() { }
int32_t KNativeLayer::nextSlotMessageSize() { return -1; }
int32_t KNativeLayer::readSlotMessage(char*, int32_t) { return -1; }
bool KNativeLayer::sendSlotMessages(const char*, const std::vector<std::string>&) { return false; }

void KNativeLayer::install(KNativeLayer* layer) { gLayer = layer; }

KNativeLayer* KNativeLayer::current() { return gLayer; }

KNativeLayer& KNativeLayer::get()
{
    if (!gLayer)
        KErrorHandler::raiseUnrecoverable(KError::ApplicationCannotRun);
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
        KErrorHandler::raiseError(KError::ApplicationCannotRun);
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

#include "windowing/native/KGLibNativeLayer.h"

#include <glib.h>

namespace {

// A window without a display: only its owner is known.
struct HeadlessWindow {
    KWindow* owner = nullptr;
};

gboolean endWait(gpointer) { return G_SOURCE_REMOVE; }

} // namespace

KGLibNativeLayer::KGLibNativeLayer() = default;

KGLibNativeLayer::~KGLibNativeLayer() = default;

bool KGLibNativeLayer::initialize() { return true; }

void KGLibNativeLayer::shutDown() { messageSlot.close(); }

// One iteration of the default main context. A blocking iteration with a
// limit gets a one-shot timeout source, so it returns at the latest when the
// limit is reached; wakeUp() ends it earlier.
void KGLibNativeLayer::processNativeMessage(bool block, bool& keepRunning, int32_t waitMs)
{
    bool mayBlock = block && !quitPending.load();
    GSource* limit = nullptr;
    if (mayBlock && waitMs > 0) {
        limit = g_timeout_source_new(static_cast<guint>(waitMs));
        g_source_set_callback(limit, &endWait, nullptr, nullptr);
        g_source_attach(limit, nullptr);
    }
    g_main_context_iteration(nullptr, mayBlock);
    if (limit) {
        g_source_destroy(limit);
        g_source_unref(limit);
    }
    if (quitPending.exchange(false)) {
        setExitCode(pendingExitCode.load());
        keepRunning = false;
    }
}

uint32_t KGLibNativeLayer::now() const { return static_cast<uint32_t>(g_get_monotonic_time() / 1000); }

void KGLibNativeLayer::wakeUp() { g_main_context_wakeup(nullptr); }

void KGLibNativeLayer::postQuit(int32_t exitCode)
{
    pendingExitCode.store(exitCode);
    quitPending.store(true);
    wakeUp();
}

int32_t KGLibNativeLayer::modifierState() const { return 0; }

bool KGLibNativeLayer::cursorPosition(int32_t&, int32_t&) { return false; }

bool KGLibNativeLayer::hasDisplay() const { return false; }

void* KGLibNativeLayer::openWindow(KWindow& owner, const KNativeWindowSetup&)
{
    auto* window = new HeadlessWindow();
    window->owner = &owner;
    return window;
}

void KGLibNativeLayer::closeWindow(void* handle) { delete static_cast<HeadlessWindow*>(handle); }

void KGLibNativeLayer::showWindow(void*, bool) { }

void KGLibNativeLayer::setWindowTitle(void*, const char*) { }

bool KGLibNativeLayer::openMessageSlot(const char* name) { return messageSlot.open(name); }

void KGLibNativeLayer::closeMessageSlot() { messageSlot.close(); }

int32_t KGLibNativeLayer::nextSlotMessageSize() { return messageSlot.nextSize(); }

int32_t KGLibNativeLayer::readSlotMessage(char* buffer, int32_t size) { return messageSlot.read(buffer, size); }

bool KGLibNativeLayer::sendSlotMessages(const char* name, const std::vector<std::string>& messages)
{
    return KGLibMessageSlot::send(name, messages);
}

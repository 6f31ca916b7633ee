#include "windowing/testing/KFakeNativeLayer.h"

#include "windowing/KEventTranslator.h"

#include <cstdio>
#include <cstring>

KFakeNativeLayer::KFakeNativeLayer() = default;

KFakeNativeLayer::~KFakeNativeLayer() = default;

bool KFakeNativeLayer::initialize()
{
    initialized = true;
    return canRun;
}

void KFakeNativeLayer::shutDown() { initialized = false; }

void KFakeNativeLayer::processNativeMessage(bool block, bool& keepRunning, int32_t waitMs)
{
    recordedTurns.push_back({ block, waitMs });
    if (deliverDue(keepRunning))
        return;
    if (quitPending) {
        quitPending = false;
        setExitCode(pendingExitCode);
        keepRunning = false;
        return;
    }
    if (wakePending) {
        wakePending = false;
        return;
    }
    if (!block) {
        clock += pollStep;
        return;
    }
    waitUntilNextEvent(waitMs, keepRunning);
}

// The clock jumps to the end of the wait or to the next timed record,
// whichever comes first. A wait without end and nothing to come is a loop
// that would hang.
void KFakeNativeLayer::waitUntilNextEvent(int32_t waitMs, bool& keepRunning)
{
    bool haveTarget = waitMs > 0;
    uint32_t target = clock + static_cast<uint32_t>(waitMs > 0 ? waitMs : 0);
    uint32_t timed = 0;
    if (earliestTimed(timed) && (!haveTarget || kTimeDifference(timed, target) < 0)) {
        target = timed;
        haveTarget = true;
    }
    if (!haveTarget) {
        stuck = true;
        keepRunning = false;
        const char* message = "the event loop waits forever with nothing scripted";
        if (stuckProc)
            stuckProc(message);
        else
            std::fprintf(stderr, "KFakeNativeLayer: %s\n", message);
        return;
    }
    if (kTimeDifference(target, clock) > 0)
        clock = target;
    deliverDue(keepRunning);
}

bool KFakeNativeLayer::earliestTimed(uint32_t& time) const
{
    bool found = false;
    for (auto& entry : scripted) {
        if (!entry.timed)
            continue;
        if (!found || kTimeDifference(entry.time, time) < 0)
            time = entry.time;
        found = true;
    }
    return found;
}

bool KFakeNativeLayer::deliverDue(bool& keepRunning)
{
    for (auto it = scripted.begin(); it != scripted.end(); ++it) {
        if (it->timed && kTimeDifference(clock, it->time) < 0)
            continue;
        KNativeRecord record = it->record;
        scripted.erase(it);
        deliver(record, keepRunning);
        return true;
    }
    return false;
}

void KFakeNativeLayer::deliver(KNativeRecord record, bool& keepRunning)
{
    if (record.time == 0)
        record.time = clock;
    if (record.message == KNativeMessage::Quit) {
        setExitCode(record.param1);
        keepRunning = false;
        return;
    }
    kksDeliverNativeRecord(record);
}

void KFakeNativeLayer::wakeUp()
{
    ++wakeUps;
    wakePending = true;
}

void KFakeNativeLayer::postQuit(int32_t exitCode)
{
    ++quitPosts;
    quitPending = true;
    pendingExitCode = exitCode;
}

bool KFakeNativeLayer::cursorPosition(int32_t& x, int32_t& y)
{
    if (!cursorKnown)
        return false;
    x = cursorX;
    y = cursorY;
    return true;
}

void KFakeNativeLayer::setCursor(int32_t x, int32_t y)
{
    cursorX = x;
    cursorY = y;
    cursorKnown = true;
}

void* KFakeNativeLayer::openWindow(KWindow& owner, const char* title, int32_t width, int32_t height)
{
    auto window = std::make_unique<Window>();
    window->owner = &owner;
    window->title = title ? title : "";
    window->width = width;
    window->height = height;
    openedWindows.push_back(std::move(window));
    return openedWindows.back().get();
}

void KFakeNativeLayer::closeWindow(void* handle)
{
    if (auto* window = const_cast<Window*>(windowOf(handle))) {
        window->open = false;
        window->visible = false;
        window->owner = nullptr;
    }
}

void KFakeNativeLayer::showWindow(void* handle, bool visible)
{
    if (auto* window = const_cast<Window*>(windowOf(handle)))
        window->visible = visible;
}

void KFakeNativeLayer::setWindowTitle(void* handle, const char* title)
{
    if (auto* window = const_cast<Window*>(windowOf(handle)))
        window->title = title ? title : "";
}

bool KFakeNativeLayer::droppedFile(int32_t drop, char* buffer, int32_t size)
{
    if (drop < 0 || drop >= static_cast<int32_t>(drops.size()) || drops[drop].empty() || size <= 0)
        return false;
    const std::string& first = drops[drop].front();
    std::snprintf(buffer, static_cast<size_t>(size), "%s", first.c_str());
    return true;
}

void KFakeNativeLayer::script(const KNativeRecord& record) { scripted.push_back({ record, 0, false }); }

void KFakeNativeLayer::scriptAt(uint32_t time, const KNativeRecord& record)
{
    scripted.push_back({ record, time, true });
}

int32_t KFakeNativeLayer::addDrop(const std::vector<std::string>& files)
{
    drops.push_back(files);
    return static_cast<int32_t>(drops.size()) - 1;
}

const KFakeNativeLayer::Window* KFakeNativeLayer::windowOf(void* handle) const
{
    for (auto& window : openedWindows) {
        if (window.get() == handle)
            return window.get();
    }
    return nullptr;
}

std::vector<const KFakeNativeLayer::Window*> KFakeNativeLayer::windows() const
{
    std::vector<const Window*> list;
    for (auto& window : openedWindows)
        list.push_back(window.get());
    return list;
}

#include "windowing/testing/KFakeNativeLayer.h"

#include "graphics/native/KNativeDevice.h"
#include "windowing/KEventTranslator.h"

#include <algorithm>
#include <cmath>
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
    if (turnHook) {
        std::function<void()> hook = turnHook;
        hook();
    }
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

void* KFakeNativeLayer::openWindow(KWindow& owner, const KNativeWindowSetup& setup)
{
    auto window = std::make_unique<Window>();
    window->owner = &owner;
    window->setup = setup;
    window->title = setup.title;
    window->client = setup.client;
    openedWindows.push_back(std::move(window));
    return openedWindows.back().get();
}

void KFakeNativeLayer::closeWindow(void* handle)
{
    auto* window = const_cast<Window*>(windowOf(handle));
    if (!window)
        return;
    window->open = false;
    window->visible = false;
    window->owner = nullptr;
    menuBars.erase(handle);
    stacking.erase(std::remove(stacking.begin(), stacking.end(), handle), stacking.end());
    for (auto& control : madeControls) {
        if (control->window == handle)
            control->alive = false;
    }
    stacking.erase(std::remove(stacking.begin(), stacking.end(), handle), stacking.end());
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

void KFakeNativeLayer::setWindowBounds(void* handle, const KNativeRect& client)
{
    if (auto* window = const_cast<Window*>(windowOf(handle)))
        window->client = client;
}

// As the desktop does: each window named is raised in turn, so the last
// ends in front and the windows not named keep their places below.
void KFakeNativeLayer::restackWindows(const std::vector<void*>& backToFront)
{
    ++restacks;
    for (void* handle : backToFront) {
        stacking.erase(std::remove(stacking.begin(), stacking.end(), handle), stacking.end());
        stacking.push_back(handle);
    }
}

void KFakeNativeLayer::setWindowEnabled(void* handle, bool enabled)
{
    if (auto* window = const_cast<Window*>(windowOf(handle)))
        window->enabled = enabled;
}

void KFakeNativeLayer::setWindowModal(void* handle, bool modal)
{
    if (auto* window = const_cast<Window*>(windowOf(handle)))
        window->modal = modal;
}

void KFakeNativeLayer::invalidateWindow(void* handle, const KNativeRect& area)
{
    if (auto* window = const_cast<Window*>(windowOf(handle))) {
        ++window->invalidations;
        window->lastInvalidated = area;
    }
}

void KFakeNativeLayer::setWindowTooltip(void* handle, const char* text)
{
    if (auto* window = const_cast<Window*>(windowOf(handle)))
        window->tooltip = text ? text : "";
}

void KFakeNativeLayer::setAccessibleControls(void* handle, const std::vector<KNativeAccessible>& controls)
{
    if (auto* window = const_cast<Window*>(windowOf(handle)))
        window->accessibles = controls;
}

void KFakeNativeLayer::screenSize(int32_t& width, int32_t& height) const
{
    width = screenWidth;
    height = screenHeight;
}

void KFakeNativeLayer::setScreenSize(int32_t width, int32_t height)
{
    screenWidth = width;
    screenHeight = height;
}

void KFakeNativeLayer::setDoubleClick(int32_t milliseconds, int32_t pixels)
{
    doubleClickMs = milliseconds;
    doubleClickPixels = pixels;
}

// --- Controls ------------------------------------------------------------------

void* KFakeNativeLayer::createControl(void* window, const KNativeControlSetup& setup)
{
    if (!windowOf(window))
        return nullptr;
    auto control = std::make_unique<Control>();
    control->window = window;
    control->setup = setup;
    control->text = setup.text;
    control->bounds = setup.bounds;
    control->value = setup.value;
    control->items = setup.items;
    control->range = setup.range;
    control->textLimit = setup.textLimit;
    control->colour = setup.colour;
    control->picture = setup.picture;
    if (setup.kind == KNativeControlKind::StyledText)
        control->styled.load(setup.styledText);
    madeControls.push_back(std::move(control));
    return madeControls.back().get();
}

const KFakeNativeLayer::Control* KFakeNativeLayer::controlOf(void* handle) const
{
    for (auto& control : madeControls) {
        if (control.get() == handle)
            return control.get();
    }
    return nullptr;
}

std::vector<const KFakeNativeLayer::Control*> KFakeNativeLayer::controlsOf(void* window) const
{
    std::vector<const Control*> list;
    for (auto& control : madeControls) {
        if (control->window == window && control->alive)
            list.push_back(control.get());
    }
    return list;
}

void KFakeNativeLayer::destroyControl(void* handle)
{
    if (auto* control = const_cast<Control*>(controlOf(handle)))
        control->alive = false;
    if (focus == handle)
        focus = nullptr;
}

void KFakeNativeLayer::setControlBounds(void* handle, const KNativeRect& bounds)
{
    if (auto* control = const_cast<Control*>(controlOf(handle)))
        control->bounds = bounds;
}

void KFakeNativeLayer::setControlText(void* handle, const char* text)
{
    if (auto* control = const_cast<Control*>(controlOf(handle)))
        control->text = text ? text : "";
}

void KFakeNativeLayer::setControlEnabled(void* handle, bool enabled)
{
    if (auto* control = const_cast<Control*>(controlOf(handle)))
        control->enabled = enabled;
}

void KFakeNativeLayer::setControlVisible(void* handle, bool visible)
{
    if (auto* control = const_cast<Control*>(controlOf(handle)))
        control->visible = visible;
}

void KFakeNativeLayer::setControlValue(void* handle, double value)
{
    if (Control* control = liveControl(handle))
        control->value = value;
}

void KFakeNativeLayer::setControlItems(void* handle, const std::vector<std::string>& items)
{
    if (Control* control = liveControl(handle))
        control->items = items;
}

void KFakeNativeLayer::setControlRange(void* handle, const KNativeControlRange& range)
{
    if (Control* control = liveControl(handle))
        control->range = range;
}

void KFakeNativeLayer::setControlTextLimit(void* handle, int32_t limit)
{
    if (Control* control = liveControl(handle))
        control->textLimit = limit;
}

void KFakeNativeLayer::setControlColour(void* handle, const KNativeColour& colour)
{
    if (Control* control = liveControl(handle))
        control->colour = colour;
}

void KFakeNativeLayer::setControlPicture(void* handle, const KNativeImageData& picture)
{
    if (Control* control = liveControl(handle))
        control->picture = picture;
}

bool KFakeNativeLayer::controlValue(void* handle, double& value)
{
    Control* control = liveControl(handle);
    if (!control)
        return false;
    value = control->value;
    return true;
}

bool KFakeNativeLayer::controlText(void* handle, std::string& text)
{
    Control* control = liveControl(handle);
    if (!control)
        return false;
    text = control->text;
    return true;
}

// --- Styled text -------------------------------------------------------------------

namespace {

bool isStyled(const KFakeNativeLayer::Control* control)
{
    return control && control->setup.kind == KNativeControlKind::StyledText;
}

} // namespace

void KFakeNativeLayer::setControlStyledText(void* handle, const KNativeStyledText& text)
{
    Control* control = liveControl(handle);
    if (isStyled(control))
        control->styled.load(text);
}

bool KFakeNativeLayer::controlStyledText(void* handle, KNativeStyledText& text)
{
    Control* control = liveControl(handle);
    if (!isStyled(control))
        return false;
    text = control->styled.read();
    return true;
}

void KFakeNativeLayer::selectControlText(void* handle, int32_t start, int32_t length)
{
    Control* control = liveControl(handle);
    if (isStyled(control))
        control->styled.select(start, length);
}

bool KFakeNativeLayer::controlSelection(void* handle, int32_t& start, int32_t& length)
{
    Control* control = liveControl(handle);
    if (!isStyled(control))
        return false;
    start = control->styled.selectionStart();
    length = control->styled.selectionLength();
    return true;
}

void KFakeNativeLayer::changeControlTextStyle(void* handle, const KNativeStyleChange& change)
{
    Control* control = liveControl(handle);
    if (isStyled(control))
        control->styled.change(change);
}

void KFakeNativeLayer::sendControlKey(void* handle, int32_t key, int32_t)
{
    Control* control = usableControl(handle);
    if (isStyled(control))
        control->styled.key(key);
}

void KFakeNativeLayer::focusControl(void* handle)
{
    if (usableControl(handle))
        focus = handle;
}

bool KFakeNativeLayer::typeStyledText(void* handle, const std::string& text)
{
    Control* control = usableControl(handle);
    if (!isStyled(control) || focus != handle)
        return false;
    control->styled.type(text);
    return true;
}

bool KFakeNativeLayer::rightClickControl(void* handle, int32_t x, int32_t y)
{
    Control* control = usableControl(handle);
    if (!control)
        return false;
    KNativeRecord record;
    record.window = windowOf(control->window)->owner;
    record.message = KNativeMessage::Command;
    record.param1 = KControlNotification::ContextMenu;
    record.param2 = control->setup.tag;
    record.time = clock;
    record.x = x;
    record.y = y;
    kksDeliverNativeRecord(record);
    return true;
}

int32_t KFakeNativeLayer::popUpMenu(void* window, const std::vector<KNativeMenuItem>& items, int32_t x, int32_t y)
{
    shownMenus.push_back({ window, items, x, y });
    if (menuAnswers.empty())
        return 0;
    int32_t answer = menuAnswers.front();
    menuAnswers.pop_front();
    return answer;
}

// --- Menu strips ---------------------------------------------------------------

namespace {

void applyUpdate(std::vector<KNativeMenuItem>& shown, const std::vector<KNativeMenuItem>& update)
{
    for (KNativeMenuItem& item : shown) {
        if (item.id != 0) {
            if (const KNativeMenuItem* fresh = KFakeNativeLayer::findMenuItem(update, item.id)) {
                item.text = fresh->text;
                item.enabled = fresh->enabled;
                item.checked = fresh->checked;
            }
        }
        applyUpdate(item.children, update);
    }
}

bool hasAccelerator(const std::vector<KNativeMenuItem>& items, int32_t key)
{
    for (const KNativeMenuItem& item : items) {
        if ((item.accelerator != 0 && item.accelerator == key) || hasAccelerator(item.children, key))
            return true;
    }
    return false;
}

} // namespace

const KNativeMenuItem* KFakeNativeLayer::findMenuItem(const std::vector<KNativeMenuItem>& items, int32_t id)
{
    for (const KNativeMenuItem& item : items) {
        if (item.id == id && !item.separator)
            return &item;
        if (const KNativeMenuItem* inside = findMenuItem(item.children, id))
            return inside;
    }
    return nullptr;
}

void KFakeNativeLayer::setMenuBar(void* window, const std::vector<KNativeMenuItem>& menus)
{
    MenuBar& bar = menuBars[window];
    bar.menus = menus;
    bar.installed = true;
}

// Like a real strip, an update changes what is there and adds nothing.
void KFakeNativeLayer::updateMenuBar(void* window, const std::vector<KNativeMenuItem>& menus)
{
    auto found = menuBars.find(window);
    if (found == menuBars.end() || !found->second.installed)
        return;
    applyUpdate(found->second.menus, menus);
    ++found->second.updates;
}

void KFakeNativeLayer::showMenuBar(void* window, bool shown)
{
    auto found = menuBars.find(window);
    if (found != menuBars.end())
        found->second.shown = shown;
}

void KFakeNativeLayer::removeMenuBar(void* window) { menuBars.erase(window); }

void KFakeNativeLayer::editControlText(void* control, KNativeTextEdit edit)
{
    sentTextEdits.emplace_back(control, edit);
}

const KFakeNativeLayer::MenuBar* KFakeNativeLayer::menuBarOf(void* window) const
{
    auto found = menuBars.find(window);
    return found == menuBars.end() ? nullptr : &found->second;
}

bool KFakeNativeLayer::openMenu(void* window, int32_t id)
{
    const MenuBar* bar = menuBarOf(window);
    const Window* shown = windowOf(window);
    if (!bar || !bar->shown || !shown || !shown->owner)
        return false;
    bool isMenu = false;
    for (const KNativeMenuItem& menu : bar->menus)
        isMenu = isMenu || menu.id == id;
    if (!isMenu)
        return false;
    KNativeRecord record;
    record.window = shown->owner;
    record.message = KNativeMessage::MenuPopup;
    record.param1 = id;
    record.time = clock;
    kksDeliverNativeRecord(record);
    return true;
}

bool KFakeNativeLayer::chooseMenuItem(void* window, int32_t id)
{
    const MenuBar* bar = menuBarOf(window);
    const Window* shown = windowOf(window);
    const KNativeMenuItem* item = bar ? findMenuItem(bar->menus, id) : nullptr;
    if (!bar || !bar->shown || !item || !item->enabled || !item->children.empty() || !shown || !shown->owner)
        return false;
    KNativeRecord record;
    record.window = shown->owner;
    record.message = KNativeMessage::Command;
    record.param1 = id;
    record.time = clock;
    kksDeliverNativeRecord(record);
    return true;
}

bool KFakeNativeLayer::typeAccelerator(void* window, int32_t key)
{
    const MenuBar* bar = menuBarOf(window);
    const Window* shown = windowOf(window);
    if (!bar || !shown || !shown->owner || !hasAccelerator(bar->menus, key))
        return false;
    KNativeRecord record;
    record.window = shown->owner;
    record.message = KNativeMessage::Accelerator;
    record.param1 = key;
    record.param2 = 2;
    record.time = clock;
    kksDeliverNativeRecord(record);
    return true;
}

KFakeNativeLayer::Control* KFakeNativeLayer::liveControl(void* handle)
{
    auto* control = const_cast<Control*>(controlOf(handle));
    return control && control->alive ? control : nullptr;
}

// A user reaches only a control that is alive, enabled and shown in an
// open window.
KFakeNativeLayer::Control* KFakeNativeLayer::usableControl(void* handle)
{
    Control* control = liveControl(handle);
    const Window* window = control ? windowOf(control->window) : nullptr;
    if (!control || !control->enabled || !control->visible || !window || !window->owner || !window->open)
        return nullptr;
    return control;
}

void KFakeNativeLayer::notifyControl(const Control& control, int32_t code)
{
    KNativeRecord record;
    record.window = windowOf(control.window)->owner;
    record.message = KNativeMessage::Command;
    record.param1 = code;
    record.param2 = control.setup.tag;
    record.time = clock;
    kksDeliverNativeRecord(record);
}

void KFakeNativeLayer::clickControl(void* handle)
{
    const Control* control = controlOf(handle);
    const Window* window = control ? windowOf(control->window) : nullptr;
    if (!control || !control->alive || !control->enabled || !window || !window->owner)
        return;
    notifyControl(*control, KControlNotification::Clicked);
}

bool KFakeNativeLayer::changeControlValue(void* handle, double value)
{
    Control* control = usableControl(handle);
    if (!control)
        return false;
    const KNativeControlRange& range = control->range;
    switch (control->setup.kind) {
    case KNativeControlKind::CheckBox:
        control->value = value != 0 ? 1 : 0;
        break;
    case KNativeControlKind::RadioGroup:
    case KNativeControlKind::PopUpList:
    case KNativeControlKind::List:
        if (value < 0 || value >= double(control->items.size()) || value != std::floor(value))
            return false;
        control->value = value;
        break;
    case KNativeControlKind::SpinField:
    case KNativeControlKind::Slider:
    case KNativeControlKind::ScrollBar: {
        double scale = std::pow(10.0, range.decimals);
        control->value = std::clamp(std::round(value * scale) / scale, range.minimum, range.maximum);
        break;
    }
    default:
        return false;
    }
    notifyControl(*control, KControlNotification::Changed);
    return true;
}

bool KFakeNativeLayer::typeControlText(void* handle, const std::string& text)
{
    Control* control = usableControl(handle);
    if (!control
        || (control->setup.kind != KNativeControlKind::Entry
            && control->setup.kind != KNativeControlKind::MultiLineText))
        return false;
    control->text = text;
    if (control->textLimit > 0 && control->text.size() > size_t(control->textLimit))
        control->text.resize(size_t(control->textLimit));
    notifyControl(*control, KControlNotification::Changed);
    return true;
}

bool KFakeNativeLayer::activateControlItem(void* handle, int32_t index)
{
    Control* control = usableControl(handle);
    if (!control || control->setup.kind != KNativeControlKind::List || index < 0
        || index >= int32_t(control->items.size()))
        return false;
    control->value = index;
    notifyControl(*control, KControlNotification::Activated);
    return true;
}

// --- Clipboard -------------------------------------------------------------------

bool KFakeNativeLayer::setClipboard(const KNativeClipboardContent& content)
{
    clipboardContent = content;
    return true;
}

bool KFakeNativeLayer::clipboardHasFormat(const char* format)
{
    if (std::strcmp(format, kClipboardText) == 0)
        return clipboardContent.hasText;
    if (std::strcmp(format, kClipboardImage) == 0)
        return clipboardContent.hasImage;
    for (auto& entry : clipboardContent.formats) {
        if (entry.first == format)
            return true;
    }
    return false;
}

bool KFakeNativeLayer::clipboardText(std::string& text)
{
    if (!clipboardContent.hasText)
        return false;
    text = clipboardContent.text;
    return true;
}

bool KFakeNativeLayer::clipboardImage(KNativeImageData& image)
{
    if (!clipboardContent.hasImage)
        return false;
    image = clipboardContent.image;
    return true;
}

bool KFakeNativeLayer::clipboardData(const char* format, std::vector<uint8_t>& data)
{
    for (auto& entry : clipboardContent.formats) {
        if (entry.first == format) {
            data = entry.second;
            return true;
        }
    }
    return false;
}

// --- Choosers and boxes --------------------------------------------------------------

bool KFakeNativeLayer::chooseFile(const KNativeChooserRequest& request, std::string& path)
{
    choosers.push_back(request);
    if (chooserAnswers.empty())
        return false;
    ChooserAnswer answer = chooserAnswers.front();
    chooserAnswers.pop_front();
    if (answer.accept)
        path = answer.path;
    return answer.accept;
}

bool KFakeNativeLayer::chooseColour(const char*, KNativeColour& colour)
{
    ++colourAsks;
    if (colourAnswers.empty())
        return false;
    colour = colourAnswers.front();
    colourAnswers.pop_front();
    return true;
}

bool KFakeNativeLayer::runPageSetup(KNativePageSetupRequest& request)
{
    pageSetupRequests.push_back(request);
    if (pageSetupAnswers.empty())
        return false;
    request.margins = pageSetupAnswers.front();
    pageSetupAnswers.pop_front();
    return true;
}

bool KFakeNativeLayer::printPaperSize(double& widthPoints, double& heightPoints)
{
    widthPoints = paperWidth;
    heightPoints = paperHeight;
    return true;
}

void KFakeNativeLayer::setPaper(double widthPoints, double heightPoints, bool landscape)
{
    paperWidth = widthPoints;
    paperHeight = heightPoints;
    paperLandscape = landscape;
}

void KFakeNativeLayer::answerPrintJob(int32_t outcome, const std::string& error)
{
    printAnswers.emplace_back(outcome, error);
}

int32_t KFakeNativeLayer::runPrintJob(const KNativePrintJob& job, std::string& error)
{
    std::pair<int32_t, std::string> answer { KNativePrintJob::Printed, {} };
    if (!printAnswers.empty()) {
        answer = printAnswers.front();
        printAnswers.pop_front();
    }
    if (answer.first != KNativePrintJob::Printed) {
        error = answer.second;
        return answer.first;
    }
    PrintedJob printed { job.title, job.pages, job.showDialog, job.exportPath, {} };
    int32_t width = int32_t(std::lround(paperWidth * job.dotsPerInch / 72.0));
    int32_t height = int32_t(std::lround(paperHeight * job.dotsPerInch / 72.0));
    for (int32_t page = 1; page <= job.pages; ++page) {
        std::shared_ptr<KNativeDevice> sheet(KNativeDevice::createImage(width, height));
        if (!sheet)
            break;
        KPixelBuffer pixels;
        if (sheet->beginPixels(pixels)) {
            for (int32_t y = 0; y < height; ++y)
                std::fill(pixels.row(y), pixels.row(y) + width, 0xFFFFFFFFu);
            sheet->endPixels(KWideRectangle(0, 0, width, height));
        }
        if (job.drawPage)
            job.drawPage(KNativeDevice::wrapSurface(sheet->getSurface()), page);
        printed.sheets.push_back(sheet);
    }
    printedJobs.push_back(std::move(printed));
    return KNativePrintJob::Printed;
}

int32_t KFakeNativeLayer::messageBox(const KNativeAlertRequest& alert)
{
    shownAlerts.push_back(alert);
    if (boxAnswers.empty()) {
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
    int32_t answer = boxAnswers.front();
    boxAnswers.pop_front();
    return answer;
}

// --- Message slots --------------------------------------------------------------------

bool KFakeNativeLayer::openMessageSlot(const char* name)
{
    if (std::find(heldSlots.begin(), heldSlots.end(), name) != heldSlots.end())
        return false;
    slotName = name;
    slots[slotName].clear();
    return true;
}

void KFakeNativeLayer::closeMessageSlot() { slotName.clear(); }

int32_t KFakeNativeLayer::nextSlotMessageSize()
{
    if (slotName.empty() || slots[slotName].empty())
        return -1;
    return static_cast<int32_t>(slots[slotName].front().size());
}

int32_t KFakeNativeLayer::readSlotMessage(char* buffer, int32_t size)
{
    if (slotName.empty() || slots[slotName].empty() || size < 0)
        return -1;
    std::string message = slots[slotName].front();
    slots[slotName].pop_front();
    // Messages are counted bytes; the reader sized and zeroed its buffer.
    // NOLINTNEXTLINE(bugprone-not-null-terminated-result)
    std::memcpy(buffer, message.data(), std::min(message.size(), size_t(size)));
    return static_cast<int32_t>(message.size());
}

bool KFakeNativeLayer::sendSlotMessages(const char* name, const std::vector<std::string>& messages)
{
    auto& queue = slots[name];
    for (auto& message : messages)
        queue.push_back(message);
    return true;
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

#pragma once

#include "windowing/KNativeLayer.h"
#include "windowing/KNativeRecord.h"
#include "windowing/testing/KFakeStyledText.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// A native layer for tests: native records come from a script the test
// fills, time from a clock that moves only when told (or when the loop
// waits, by the time it waits), and windows are plain records. If the loop
// would wait forever with nothing scripted, the layer reports it through the
// stuck procedure and ends the loop instead of hanging. Choosers and message
// boxes take scripted answers and are recorded; the clipboard and the
// message slots are kept in memory.
class KFakeNativeLayer : public KNativeLayer {
public:
    struct Turn {
        bool block = false;
        int32_t wait = 0;
    };
    struct Window {
        KWindow* owner = nullptr;
        KNativeWindowSetup setup;
        std::string title;
        KNativeRect client;
        bool visible = false;
        bool open = true;
        bool enabled = true;
        bool modal = false;
        std::string tooltip;
        std::vector<KNativeAccessible> accessibles;
        int32_t invalidations = 0;
        KNativeRect lastInvalidated;
    };
    // A control's model: what its widget would show.
    struct Control {
        void* window = nullptr;
        KNativeControlSetup setup;
        std::string text;
        KNativeRect bounds;
        bool enabled = true;
        bool visible = true;
        bool alive = true;
        double value = 0;
        std::vector<std::string> items;
        KNativeControlRange range;
        int32_t textLimit = 0;
        KNativeColour colour;
        KNativeImageData picture;
        // The text of a StyledText control.
        KFakeStyledText styled;
    };
    // A pop-up menu as it was shown.
    struct Menu {
        void* window = nullptr;
        std::vector<KNativeMenuItem> items;
        int32_t x = 0;
        int32_t y = 0;
    };
    // A window's menu strip: the tree as installed, with the titles, ticks
    // and enabling of the last update.
    struct MenuBar {
        std::vector<KNativeMenuItem> menus;
        bool shown = true;
        bool installed = false;
        int32_t updates = 0;
    };
    // What a chooser answers: a path, or a cancel.
    struct ChooserAnswer {
        bool accept = false;
        std::string path;
    };
    using StuckProc = void (*)(const char* message);

    KFakeNativeLayer();
    ~KFakeNativeLayer() override;

    bool initialize() override;
    void shutDown() override;
    void processNativeMessage(bool block, bool& keepRunning, int32_t waitMs) override;
    int32_t minimumWait() const override { return minimumWaitMs; }
    uint32_t now() const override { return clock; }
    void wakeUp() override;
    void postQuit(int32_t exitCode) override;
    int32_t modifierState() const override { return modifiers; }
    bool cursorPosition(int32_t& x, int32_t& y) override;
    bool hasDisplay() const override { return false; }
    void* openWindow(KWindow& owner, const KNativeWindowSetup& setup) override;
    void closeWindow(void* handle) override;
    void showWindow(void* handle, bool visible) override;
    void setWindowTitle(void* handle, const char* title) override;
    void setWindowBounds(void* handle, const KNativeRect& client) override;
    void restackWindows(const std::vector<void*>& backToFront) override;
    void setWindowEnabled(void* handle, bool enabled) override;
    void setWindowModal(void* handle, bool modal) override;
    void invalidateWindow(void* handle, const KNativeRect& area) override;
    void setWindowTooltip(void* handle, const char* text) override;
    void setAccessibleControls(void* handle, const std::vector<KNativeAccessible>& controls) override;
    void screenSize(int32_t& width, int32_t& height) const override;
    void* createControl(void* window, const KNativeControlSetup& setup) override;
    void destroyControl(void* control) override;
    void setControlBounds(void* control, const KNativeRect& bounds) override;
    void setControlText(void* control, const char* text) override;
    void setControlEnabled(void* control, bool enabled) override;
    void setControlVisible(void* control, bool visible) override;
    void setControlValue(void* control, double value) override;
    void setControlItems(void* control, const std::vector<std::string>& items) override;
    void setControlRange(void* control, const KNativeControlRange& range) override;
    void setControlTextLimit(void* control, int32_t limit) override;
    void setControlColour(void* control, const KNativeColour& colour) override;
    void setControlPicture(void* control, const KNativeImageData& picture) override;
    bool controlValue(void* control, double& value) override;
    bool controlText(void* control, std::string& text) override;
    void setControlStyledText(void* control, const KNativeStyledText& text) override;
    bool controlStyledText(void* control, KNativeStyledText& text) override;
    void selectControlText(void* control, int32_t start, int32_t length) override;
    bool controlSelection(void* control, int32_t& start, int32_t& length) override;
    void changeControlTextStyle(void* control, const KNativeStyleChange& change) override;
    void sendControlKey(void* control, int32_t key, int32_t modifiers) override;
    void focusControl(void* control) override;
    int32_t popUpMenu(void* window, const std::vector<KNativeMenuItem>& items, int32_t x, int32_t y) override;
    void setMenuBar(void* window, const std::vector<KNativeMenuItem>& menus) override;
    void updateMenuBar(void* window, const std::vector<KNativeMenuItem>& menus) override;
    void showMenuBar(void* window, bool shown) override;
    void removeMenuBar(void* window) override;
    void editControlText(void* control, KNativeTextEdit edit) override;
    int32_t doubleClickTime() const override { return doubleClickMs; }
    int32_t doubleClickDistance() const override { return doubleClickPixels; }
    void setCursorShape(KCursorShape shape) override { cursorShapeValue = shape; }
    void setCursorVisible(bool visible) override { cursorVisibleValue = visible; }
    bool setClipboard(const KNativeClipboardContent& content) override;
    bool clipboardHasFormat(const char* format) override;
    bool clipboardText(std::string& text) override;
    bool clipboardImage(KNativeImageData& image) override;
    bool clipboardData(const char* format, std::vector<uint8_t>& data) override;
    void storeClipboard() override { ++clipboardStores; }
    bool chooseFile(const KNativeChooserRequest& request, std::string& path) override;
    bool chooseColour(const char* title, KNativeColour& colour) override;
    bool runPageSetup(KNativePageSetupRequest& request) override;
    bool printPaperSize(double& widthPoints, double& heightPoints) override;
    bool isPrintLandscape() override { return paperLandscape; }
    int32_t runPrintJob(const KNativePrintJob& job, std::string& error) override;
    int32_t messageBox(const KNativeAlertRequest& alert) override;
    void beep() override { ++beeps; }
    bool openMessageSlot(const char* name) override;
    void closeMessageSlot() override;
    int32_t nextSlotMessageSize() override;
    int32_t readSlotMessage(char* buffer, int32_t size) override;
    bool sendSlotMessages(const char* name, const std::vector<std::string>& messages) override;
    bool droppedFile(int32_t drop, char* buffer, int32_t size) override;

    // Delivered on the next turn, in the order scripted.
    void script(const KNativeRecord& record);
    // Delivered on the first turn at or after `time`; a waiting loop wakes
    // for it.
    void scriptAt(uint32_t time, const KNativeRecord& record);
    int32_t pendingRecords() const { return static_cast<int32_t>(scripted.size()); }
    // A drop of files, named by the returned number in a DropFiles record.
    int32_t addDrop(const std::vector<std::string>& files);

    void advance(uint32_t milliseconds) { clock += milliseconds; }
    void setTime(uint32_t time) { clock = time; }
    void setModifiers(int32_t flags) { modifiers = flags; }
    void setCursor(int32_t x, int32_t y);
    void setMinimumWait(int32_t milliseconds) { minimumWaitMs = milliseconds; }
    // How far the clock moves on a turn that does not wait.
    void setPollStep(uint32_t milliseconds) { pollStep = milliseconds; }
    void setCanRun(bool value) { canRun = value; }
    void setStuckProc(StuckProc proc) { stuckProc = proc; }

    const std::vector<Turn>& turns() const { return recordedTurns; }
    void clearTurns() { recordedTurns.clear(); }
    int32_t wakeUpCount() const { return wakeUps; }
    int32_t quitCount() const { return quitPosts; }
    bool wasStuck() const { return stuck; }
    bool isInitialized() const { return initialized; }
    const Window* windowOf(void* handle) const;
    // Every window opened so far, closed ones included.
    std::vector<const Window*> windows() const;
    // The open windows, back to front, as last stacked.
    const std::vector<void*>& stackOrder() const { return stacking; }
    int32_t restackCount() const { return restacks; }
    const Control* controlOf(void* handle) const;
    // The live controls of a window, in the order made.
    std::vector<const Control*> controlsOf(void* window) const;
    // What the native side does on a click of a control: a Command record
    // with the control's tag, delivered at once.
    void clickControl(void* control);
    // Runs at the start of every turn of the loop, as a user would act
    // between two native messages; modal dialogs are answered this way.
    void setTurnHook(std::function<void()> hook) { turnHook = std::move(hook); }
    // What the native side does when the user sets a control's value: the
    // widget keeps it within what it offers (a check box 0 or 1, an item
    // of its list, a number within its range with its decimals), then
    // sends a Changed record. False when the user could not have done it
    // (the control is disabled, hidden or gone, the item does not exist).
    bool changeControlValue(void* control, double value);
    // The user types a control's whole text; the widget cuts it to its
    // limit, then sends a Changed record.
    bool typeControlText(void* control, const std::string& text);
    // A double click on an item of a list: the item is chosen, and an
    // Activated record follows.
    bool activateControlItem(void* control, int32_t index);
    // The user types into a styled text control that has the keyboard, at
    // its caret; CR or LF breaks the line.
    bool typeStyledText(void* control, const std::string& text);
    // A right click on a control: it asks for its menu at the screen point.
    bool rightClickControl(void* control, int32_t x, int32_t y);
    // The control that has the keyboard, or null.
    void* focusedControl() const { return focus; }
    // Answers (item numbers) of the next pop-up menus; without one a menu
    // is dismissed.
    void answerPopUpMenu(int32_t item) { menuAnswers.push_back(item); }
    const std::vector<Menu>& popUpMenus() const { return shownMenus; }

    // The window's menu strip, or null.
    const MenuBar* menuBarOf(void* window) const;
    // The item (or menu) of the id in a tree, or null.
    static const KNativeMenuItem* findMenuItem(const std::vector<KNativeMenuItem>& items, int32_t id);
    // The user opens a menu of the strip: its MenuPopup record, delivered at
    // once. False when the strip is hidden or has no such menu.
    bool openMenu(void* window, int32_t id);
    // The user clicks an item: its Command record. False when the strip is
    // hidden or the item is not there or greyed.
    bool chooseMenuItem(void* window, int32_t id);
    // Control and the key typed in the window: an Accelerator record when
    // an item of the strip has the key, shown or not, enabled or not. False
    // when no item has it (the key would go on as a key).
    bool typeAccelerator(void* window, int32_t key);
    // The clipboard commands sent to text controls, in order.
    const std::vector<std::pair<void*, KNativeTextEdit>>& textEdits() const { return sentTextEdits; }

    void setScreenSize(int32_t width, int32_t height);
    void setDoubleClick(int32_t milliseconds, int32_t pixels);
    KCursorShape cursorShape() const { return cursorShapeValue; }
    bool cursorVisible() const { return cursorVisibleValue; }

    // Answers of the next choosers, in order; a chooser without a scripted
    // answer is cancelled.
    void answerChooser(const ChooserAnswer& answer) { chooserAnswers.push_back(answer); }
    void answerColour(const KNativeColour& colour) { colourAnswers.push_back(colour); }
    const std::vector<KNativeChooserRequest>& chooserRequests() const { return choosers; }
    int32_t colourRequests() const { return colourAsks; }
    // Answers (KNativeAnswer) of the next message boxes; without one a box
    // takes its default.
    void answerMessageBox(int32_t answer) { boxAnswers.push_back(answer); }
    const std::vector<KNativeAlertRequest>& alerts() const { return shownAlerts; }
    int32_t beepCount() const { return beeps; }

    // Printing: the paper of the next jobs, the answers of the next page
    // set-ups (margins, or a cancel when none is scripted) and jobs (an
    // outcome; printed when none is scripted). A printed job's sheets are
    // kept as images.
    struct PrintedJob {
        std::string title;
        int32_t pages = 0;
        bool showDialog = false;
        std::string exportPath;
        std::vector<std::shared_ptr<KNativeDevice>> sheets;
    };
    void setPaper(double widthPoints, double heightPoints, bool landscape = false);
    void answerPageSetup(const KNativePrintMargins& margins) { pageSetupAnswers.push_back(margins); }
    void answerPrintJob(int32_t outcome, const std::string& error = {});
    const std::vector<KNativePageSetupRequest>& pageSetups() const { return pageSetupRequests; }
    const std::vector<PrintedJob>& printJobs() const { return printedJobs; }

    const KNativeClipboardContent& clipboard() const { return clipboardContent; }
    // What another program put on the clipboard.
    void setClipboardFromOutside(const KNativeClipboardContent& content) { clipboardContent = content; }
    int32_t clipboardStoreCount() const { return clipboardStores; }

    const std::string& openSlotName() const { return slotName; }
    // The messages waiting in the slot of the name.
    const std::deque<std::string>& slotMessages(const std::string& name) { return slots[name]; }
    // Names refused as if another program held them.
    void holdSlotElsewhere(const std::string& name) { heldSlots.push_back(name); }

private:
    std::deque<KNativePrintMargins> pageSetupAnswers;
    std::vector<KNativePageSetupRequest> pageSetupRequests;
    std::deque<std::pair<int32_t, std::string>> printAnswers;
    std::vector<PrintedJob> printedJobs;
    double paperWidth = 216.0;
    double paperHeight = 288.0;
    bool paperLandscape = false;
    struct Entry {
        KNativeRecord record;
        uint32_t time = 0;
        bool timed = false;
    };
    bool deliverDue(bool& keepRunning);
    bool earliestTimed(uint32_t& time) const;
    void deliver(KNativeRecord record, bool& keepRunning);
    void waitUntilNextEvent(int32_t waitMs, bool& keepRunning);
    Control* liveControl(void* handle);
    Control* usableControl(void* handle);
    void notifyControl(const Control& control, int32_t code);

    uint32_t clock = 1000;
    uint32_t pollStep = 1;
    int32_t minimumWaitMs = 6;
    int32_t modifiers = 0;
    int32_t cursorX = 0;
    int32_t cursorY = 0;
    bool cursorKnown = false;
    bool canRun = true;
    bool initialized = false;
    bool quitPending = false;
    int32_t pendingExitCode = 0;
    bool wakePending = false;
    int32_t wakeUps = 0;
    int32_t quitPosts = 0;
    bool stuck = false;
    StuckProc stuckProc = nullptr;
    std::vector<Entry> scripted;
    std::function<void()> turnHook;
    std::vector<Turn> recordedTurns;
    std::vector<std::unique_ptr<Window>> openedWindows;
    std::vector<std::vector<std::string>> drops;
    std::vector<void*> stacking;
    int32_t restacks = 0;
    std::vector<std::unique_ptr<Control>> madeControls;
    int32_t screenWidth = 1280;
    int32_t screenHeight = 1024;
    int32_t doubleClickMs = 500;
    int32_t doubleClickPixels = 4;
    KCursorShape cursorShapeValue = KCursorShape::Normal;
    bool cursorVisibleValue = true;
    KNativeClipboardContent clipboardContent;
    int32_t clipboardStores = 0;
    std::deque<ChooserAnswer> chooserAnswers;
    std::deque<KNativeColour> colourAnswers;
    std::vector<KNativeChooserRequest> choosers;
    int32_t colourAsks = 0;
    std::deque<int32_t> boxAnswers;
    std::deque<int32_t> menuAnswers;
    std::vector<Menu> shownMenus;
    std::map<void*, MenuBar> menuBars;
    std::vector<std::pair<void*, KNativeTextEdit>> sentTextEdits;
    void* focus = nullptr;
    std::vector<KNativeAlertRequest> shownAlerts;
    int32_t beeps = 0;
    std::string slotName;
    std::map<std::string, std::deque<std::string>> slots;
    std::vector<std::string> heldSlots;
};

#include "windowing/KEventTranslator.h"

#include "windowing/KApplication.h"
#include "windowing/KApplicationEvent.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KMenuEvent.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KNativeEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowEvent.h"
#include "windowing/KWindowManager.h"

#include <string>

namespace {

struct TranslatorState {
    uint8_t leftDown = 0;
    uint8_t rightDown = 0;
    uint8_t applicationActive = 0;
    bool windowOrderMode = false;
    std::string pendingText;
};

TranslatorState& state()
{
    static TranslatorState s;
    return s;
}

namespace Message = KNativeMessage;

bool isOpen(const KWindow* window) { return window && window->isOpen(); }

bool isKnownAndOpen(const KWindow* window)
{
    KWindowManager* manager = KWindowManager::current();
    return manager && manager->isKnown(window) && isOpen(window);
}

KEvent* windowEvent(const KNativeRecord& record, int32_t type, bool known)
{
    bool accepted = known ? isKnownAndOpen(record.window) : isOpen(record.window);
    return accepted ? new KWindowEvent(type, record.window) : nullptr;
}

KEvent* activationEvent(const KNativeRecord& record)
{
    KWindowManager* manager = KWindowManager::current();
    if (!manager || !manager->isKnown(record.window))
        return nullptr;
    int32_t type = (record.param1 & 0xFFFF) != 0 ? KWindowEvent::Activated : KWindowEvent::Deactivated;
    return new KWindowEvent(type, record.window);
}

KEvent* applicationActivationEvent(const KNativeRecord& record)
{
    uint8_t active = record.param1 != 0 ? 1 : 0;
    if (active == state().applicationActive)
        return nullptr;
    state().applicationActive = active;
    return new KApplicationEvent(active ? KApplicationEvent::Activated : KApplicationEvent::Deactivated);
}

// A key goes to the window of the focus element when there is one.
KWindow* keyWindow(const KNativeRecord& record)
{
    if (auto focusWindow = kServices().focusWindow) {
        if (KWindow* focus = focusWindow())
            return focus;
    }
    return record.window;
}

int32_t keyType(const KNativeRecord& record, int32_t held)
{
    return (record.param2 & KKeyRecord::Repeat) != 0 ? KKeyEvent::KeyRepeat : held;
}

// The code a virtual key makes: the key table's, and Ctrl+W, which the
// accelerators of the menus need; 0 for the keys that the character
// message delivers.
int32_t keyCode(int32_t virtualKey, int32_t modifiers)
{
    int32_t code = kksMapVirtualKey(virtualKey);
    if (code == 0 && virtualKey == 'W' && (modifiers & 2) != 0)
        code = 'W';
    return code;
}

KEvent* keyDownEvent(const KNativeRecord& record)
{
    int32_t modifiers = KNativeLayer::get().modifierState();
    int32_t code = keyCode(record.param1, modifiers);
    if (code == 0)
        return nullptr;
    return new KKeyEvent(keyType(record, KKeyEvent::KeyDown), keyWindow(record), code, modifiers);
}

// Typed characters are keys from the space up; Control held with a
// printable key gives that character with modifier 2.
KEvent* characterEvent(const KNativeRecord& record)
{
    int32_t character = record.param1 & 0xFF;
    if (character < 32)
        return new KNativeEvent(record);
    int32_t modifiers = KNativeLayer::get().modifierState();
    return new KKeyEvent(keyType(record, KKeyEvent::KeyDown), keyWindow(record), character, modifiers);
}

// A key is let go under the code its press made: a table key by its code,
// a printable key by its character.
KEvent* keyUpEvent(const KNativeRecord& record)
{
    int32_t modifiers = KNativeLayer::get().modifierState();
    int32_t code = keyCode(record.param1, modifiers);
    if (code == 0)
        code = record.param2 & KKeyRecord::CharacterMask;
    if (code < 32)
        return nullptr;
    return new KKeyEvent(KKeyEvent::KeyUp, keyWindow(record), code, modifiers);
}

// --- Mouse -----------------------------------------------------------------

void fillMouseEvent(KMouseEvent& event, const KNativeRecord& record)
{
    event.setLocal({ kPointX(record.param2), kPointY(record.param2) });
    event.setGlobal({ record.x, record.y });
    int32_t modifiers = 0;
    if (record.param1 & KMouseKeys::Shift)
        modifiers |= 1;
    if (record.param1 & KMouseKeys::Control)
        modifiers |= 2;
    event.setModifiers(modifiers);
    event.setNativeRecord(record);
}

// True when the record shows that a button the translator thinks is down
// was released where no window saw it: its bit is clear, or it is pressed
// anew.
bool buttonWasLost(const KNativeRecord& record, int32_t buttonBit, int32_t downMessage, int32_t upMessage)
{
    if (record.message == upMessage)
        return false;
    if (record.message == downMessage)
        return true;
    return (record.param1 & buttonBit) == 0;
}

void releaseButton(const KNativeRecord& record, bool lostLeft, bool lostRight)
{
    TranslatorState& s = state();
    if (!lostLeft && !lostRight)
        return;
    auto* up = new KMouseEvent(KMouseEvent::Up, record.window);
    fillMouseEvent(*up, record);
    up->setButton(lostLeft ? KMouseEvent::Left : KMouseEvent::Right);
    up->setButtonDown(false);
    s.leftDown = 0;
    s.rightDown = 0;
    processNow(up);
}

void releaseLostButton(const KNativeRecord& record)
{
    TranslatorState& s = state();
    bool lostLeft = s.leftDown && buttonWasLost(record, KMouseKeys::LeftButton, Message::LeftDown, Message::LeftUp);
    bool lostRight
        = s.rightDown && buttonWasLost(record, KMouseKeys::RightButton, Message::RightDown, Message::RightUp);
    releaseButton(record, lostLeft, lostRight);
}

// The mouse was taken away while a button was down (another program's
// grab, a window that went away): the release will never come, so it is
// made up now at the record's point.
KEvent* captureLostEvent(const KNativeRecord& record)
{
    if (record.window)
        releaseButton(record, state().leftDown != 0, state().rightDown != 0);
    return nullptr;
}

KMouseEvent* moveEvent(const KNativeRecord& record)
{
    TranslatorState& s = state();
    auto* event = new KMouseEvent(KMouseEvent::Moved, record.window);
    if (record.param1 & KMouseKeys::LeftButton) {
        event->setButton(KMouseEvent::Left);
        event->setButtonDown(s.leftDown != 0);
    } else if (record.param1 & KMouseKeys::RightButton) {
        event->setButton(KMouseEvent::Right);
        event->setButtonDown(s.rightDown != 0);
    }
    return event;
}

KMouseEvent* pressEvent(const KNativeRecord& record, uint8_t& pressed, uint8_t other, int32_t button)
{
    if (other)
        return nullptr;
    pressed = 1;
    auto* event = new KMouseEvent(KMouseEvent::Down, record.window);
    event->setButton(button);
    event->setButtonDown(true);
    return event;
}

KMouseEvent* releaseEvent(const KNativeRecord& record, uint8_t& released, int32_t button)
{
    if (!released)
        return nullptr;
    released = 0;
    auto* event = new KMouseEvent(KMouseEvent::Up, record.window);
    event->setButton(button);
    return event;
}

KEvent* mouseEvent(const KNativeRecord& record)
{
    releaseLostButton(record);
    TranslatorState& s = state();
    KMouseEvent* event = nullptr;
    switch (record.message) {
    case Message::MouseMove:
        event = moveEvent(record);
        break;
    case Message::LeftDown:
        event = pressEvent(record, s.leftDown, s.rightDown, KMouseEvent::Left);
        break;
    case Message::RightDown:
        event = pressEvent(record, s.rightDown, s.leftDown, KMouseEvent::Right);
        break;
    case Message::LeftUp:
        event = releaseEvent(record, s.leftDown, KMouseEvent::Left);
        break;
    case Message::RightUp:
        event = releaseEvent(record, s.rightDown, KMouseEvent::Right);
        break;
    default:
        break;
    }
    if (event)
        fillMouseEvent(*event, record);
    return event;
}

// --- Application -------------------------------------------------------------

KEvent* dropEvent(const KNativeRecord& record)
{
    char path[4096];
    if (!KNativeLayer::get().droppedFile(record.param1, path, sizeof(path)))
        return nullptr;
    auto* event = new KApplicationEvent(KApplicationEvent::OpenDocument);
    event->setFilePath(KString(path));
    return event;
}

KEvent* clipboardEvent()
{
    if (!kServiceExists(KServices::Clipboard))
        return nullptr;
    return new KApplicationEvent(KApplicationEvent::ClipboardChanged);
}

// Text from another process arrives one byte per message; a byte 0 ends it.
KEvent* postedDataEvent(const KNativeRecord& record)
{
    TranslatorState& s = state();
    char byte = static_cast<char>(record.param1 & 0xFF);
    if (byte != 0) {
        s.pendingText += byte;
        return nullptr;
    }
    if (s.pendingText.empty())
        return nullptr;
    auto* text = new KString();
    text->setText(s.pendingText.data(), static_cast<int32_t>(s.pendingText.size()));
    s.pendingText.clear();
    auto* event = new KApplicationEvent(KApplicationEvent::DataReceived);
    event->setParameter("Received Data", text);
    return event;
}

KEvent* menuEvent(int32_t type, const KNativeRecord& record)
{
    auto* event = new KMenuEvent(type);
    event->setItemId(record.param1);
    return event;
}

KEvent* otherMessage(const KNativeRecord& record)
{
    if (auto handler = kServices().nativeMessage)
        handler(record);
    return nullptr;
}

KEvent* translate(const KNativeRecord& record)
{
    switch (record.message) {
    case Message::Move:
        return windowEvent(record, KWindowEvent::Moved, true);
    case Message::Size:
        return windowEvent(record, KWindowEvent::Resized, true);
    case Message::Activate:
        return activationEvent(record);
    case Message::Paint:
        return windowEvent(record, KWindowEvent::Paint, false);
    case Message::Close:
        return windowEvent(record, KWindowEvent::CloseRequest, false);
    case Message::EraseBackground:
    case Message::Notify:
    case Message::DisplayChange:
    case Message::HorizontalScroll:
    case Message::VerticalScroll:
    case Message::Sizing:
    case Message::Moving:
        return new KNativeEvent(record);
    case Message::PositionChanging:
        return state().windowOrderMode ? new KNativeEvent(record) : nullptr;
    case Message::ActivateApp:
        return applicationActivationEvent(record);
    case Message::KeyDown:
        return keyDownEvent(record);
    case Message::Char:
        return characterEvent(record);
    case Message::KeyUp:
        return keyUpEvent(record);
    case Message::CaptureChanged:
        return captureLostEvent(record);
    case Message::Command:
        // From a control the record names its widget; from the menu bar it
        // carries the item's command number.
        return record.param2 != 0 ? new KNativeEvent(record) : menuEvent(KMenuEvent::ItemChosen, record);
    case Message::MenuPopup:
        return menuEvent(KMenuEvent::MenuOpen, record);
    case Message::Accelerator:
        return menuEvent(KMenuEvent::Accelerator, record);
    case Message::Timer:
        KNativeLayer::get().wakeUp();
        return nullptr;
    case Message::MouseMove:
    case Message::LeftDown:
    case Message::LeftUp:
    case Message::RightDown:
    case Message::RightUp:
        return mouseEvent(record);
    case Message::DropFiles:
        return dropEvent(record);
    case Message::DrawClipboard:
    case Message::ClipboardUpdate:
    case Message::ClipboardChainChanged:
        return clipboardEvent();
    case Message::PostedData:
        return postedDataEvent(record);
    default:
        return otherMessage(record);
    }
}

} // namespace

KEvent* kksCreateEvent(const KNativeRecord& record)
{
    KApplication* application = KApplication::current();
    if (!application || application->getState() > KApplication::Exiting)
        return nullptr;
    KEvent* event = translate(record);
    if (event && !event->getNativeRecord())
        event->setNativeRecord(record);
    return event;
}

KEventReturn kksDeliverNativeRecord(const KNativeRecord& record)
{
    if (!KApplication::current())
        return 0;
    KEvent* event = kksCreateEvent(record);
    if (!event)
        return 0;
    if (record.message == Message::PostedData) {
        post(event);
        return 0;
    }
    return processNow(event);
}

int32_t kksMapVirtualKey(int32_t virtualKey)
{
    namespace VK = KVirtualKey;
    if (virtualKey >= VK::F1 && virtualKey <= VK::F15)
        return KKeyEvent::F1 + (virtualKey - VK::F1);
    switch (virtualKey) {
    case VK::Up:
        return KKeyEvent::Up;
    case VK::Down:
        return KKeyEvent::Down;
    case VK::Left:
        return KKeyEvent::Left;
    case VK::Right:
        return KKeyEvent::Right;
    case VK::Home:
        return KKeyEvent::Home;
    case VK::End:
        return KKeyEvent::End;
    case VK::Prior:
        return KKeyEvent::PageUp;
    case VK::Next:
        return KKeyEvent::PageDown;
    case VK::Help:
        return KKeyEvent::Help;
    case VK::Delete:
        return KKeyEvent::Delete;
    case VK::Back:
        return KKeyEvent::Backspace;
    case VK::Tab:
        return KKeyEvent::Tab;
    case VK::Return:
        return KKeyEvent::Return;
    case VK::Escape:
        return KKeyEvent::Escape;
    default:
        return 0;
    }
}

void kksResetTranslator()
{
    bool orderMode = state().windowOrderMode;
    state() = TranslatorState();
    state().windowOrderMode = orderMode;
}

bool kksMouseButtonDown() { return state().leftDown || state().rightDown; }

void kksSetWindowOrderMode(bool on) { state().windowOrderMode = on; }

bool kksWindowOrderMode() { return state().windowOrderMode; }

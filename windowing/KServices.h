#pragma once

#include "kernel/KString.h"
#include "windowing/KWindowingForward.h"

#include <cstdint>

// The services that KApplication::run starts and that the loop and the
// events consult, supplied by the parts of the framework that own them
// (menus, clipboard, cursor, keyboard, dialogs, localizer). An empty slot is
// skipped; an empty route leaves the event to the application's handlers.
struct KServices {
    // Managers in the order run() creates them; shut-down destroys them in
    // the reverse order. The timer manager comes first and is always made.
    enum Manager : int32_t {
        NativeDevices,
        Menus,
        Printing,
        Clipboard,
        Cursor,
        Keyboard,
        Dialogs,
        ManagerCount,
    };
    struct ManagerHooks {
        void (*create)() = nullptr;
        void (*destroy)() = nullptr;
        // True while the manager exists.
        bool (*exists)() = nullptr;
    };
    ManagerHooks managers[ManagerCount];

    void (*createLocalizer)() = nullptr;
    void (*destroyLocalizer)() = nullptr;
    // True when the system clipboard held something.
    bool (*importClipboard)() = nullptr;
    void (*exportClipboard)() = nullptr;
    void (*releaseKeyboard)() = nullptr;
    void (*showNormalCursor)() = nullptr;
    void (*freeNativeCaches)() = nullptr;

    // Each loop turn: the pointer's position for enter, leave and hover,
    // and a look at the incoming message channel.
    void (*updateCursor)(int32_t x, int32_t y) = nullptr;
    void (*pollMessages)() = nullptr;

    KEventReturn (*routeMouse)(KMouseEvent& event) = nullptr;
    KEventReturn (*routeKey)(KKeyEvent& event) = nullptr;
    // The menu objects' part of a menu event's route, before the application.
    KEventReturn (*routeMenu)(KMenuEvent& event) = nullptr;
    // The element, layer and window part of an action's route.
    // Clears `routed` when the source is no interactive element, which
    // leaves the event to the root route.
    KEventReturn (*routeAction)(KActionEvent& event, bool& routed) = nullptr;
    KEventReturn (*routeControlAction)(KControlActionEvent& event) = nullptr;
    // The window of the keyboard focus element, if there is one.
    KWindow* (*focusWindow)() = nullptr;
    void (*windowActivated)(KWindow& window) = nullptr;
    void (*windowDeactivated)(KWindow& window) = nullptr;
    // Native messages the translator has no event for (hot keys, device
    // changes, file-change notices, ...).
    KEventReturn (*nativeMessage)(const KNativeRecord& record) = nullptr;
    // The native-only part of a KNativeEvent (paint details, owner draw, ...).
    KEventReturn (*nativeEvent)(KNativeEvent& event) = nullptr;
    // The menus' share of the native-only messages (owner-drawn items and
    // their measures), asked for what the windows leave unhandled.
    KEventReturn (*menuNativeEvent)(KNativeEvent& event) = nullptr;
    // Turns the menus off while a modal dialog is up and on again when the
    // last one closes.
    void (*enableMenus)(bool enabled) = nullptr;
    // The text of an English key in the current language.
    KString (*translate)(const char* key) = nullptr;
};

KServices& kServices();

inline bool kServiceExists(KServices::Manager manager)
{
    auto exists = kServices().managers[manager].exists;
    return exists && exists();
}

// The text of an English key in the current language; the key itself while
// no localizer is there.
KString kTranslate(const char* key);

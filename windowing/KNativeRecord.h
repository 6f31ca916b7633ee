#pragma once

#include "windowing/KWindowingForward.h"

#include <cstdint>

// One message of the native layer, in the vocabulary of the window system
// the framework was designed on: whatever the platform delivers is put into
// this form before the translator turns it into a KEvent. Mouse messages
// carry the button and modifier state in param1 and the local point packed
// in param2; x and y are always the screen position at the message's time.
struct KNativeRecord {
    KWindow* window = nullptr;
    int32_t message = 0;
    int32_t param1 = 0;
    int32_t param2 = 0;
    uint32_t time = 0;
    int32_t x = 0;
    int32_t y = 0;
};

namespace KNativeMessage {
enum : int32_t {
    Null = 0x0000,
    Move = 0x0003,
    Size = 0x0005,
    Activate = 0x0006,
    Paint = 0x000F,
    Close = 0x0010,
    Quit = 0x0012,
    EraseBackground = 0x0014,
    ActivateApp = 0x001C,
    DrawItem = 0x002B,
    MeasureItem = 0x002C,
    PositionChanging = 0x0046,
    Notify = 0x004E,
    DisplayChange = 0x007E,
    KeyDown = 0x0100,
    KeyUp = 0x0101,
    Char = 0x0102,
    Command = 0x0111,
    Timer = 0x0113,
    HorizontalScroll = 0x0114,
    VerticalScroll = 0x0115,
    MenuPopup = 0x0117,
    MouseMove = 0x0200,
    LeftDown = 0x0201,
    LeftUp = 0x0202,
    RightDown = 0x0204,
    RightUp = 0x0205,
    Sizing = 0x0214,
    CaptureChanged = 0x0215,
    Moving = 0x0216,
    DeviceChange = 0x0219,
    DropFiles = 0x0233,
    DrawClipboard = 0x0308,
    ClipboardChainChanged = 0x030D,
    HotKey = 0x0312,
    ClipboardUpdate = 0x031D,
    FileChange = 1123,
    // A menu bar's accelerator: the key in param1 (an upper-case letter or
    // a digit), the modifiers in param2.
    Accelerator = 1124,
    PostedData = 32768,
};
}

// Button and modifier bits of a mouse message's param1.
namespace KMouseKeys {
enum : int32_t {
    LeftButton = 0x0001,
    RightButton = 0x0002,
    Shift = 0x0004,
    Control = 0x0008,
};
}

// Key messages: KeyDown carries the virtual key in param1, Char the typed
// character; KeyUp carries the virtual key in param1 and, in param2, the
// character the key types (0 when none), so that a printable key is let go
// under the code it was pressed with. The repeat bit in param2 of KeyDown
// and Char marks a key held down by the keyboard's auto-repeat.
namespace KKeyRecord {
enum : int32_t { CharacterMask = 0xFF, Repeat = 0x40000000 };
}

// Virtual-key codes carried by a key-down message's param1. Letters and
// digits are their upper-case ASCII codes.
namespace KVirtualKey {
enum : int32_t {
    Back = 0x08,
    Tab = 0x09,
    Return = 0x0D,
    Shift = 0x10,
    Control = 0x11,
    Capital = 0x14,
    Escape = 0x1B,
    Prior = 0x21,
    Next = 0x22,
    End = 0x23,
    Home = 0x24,
    Left = 0x25,
    Up = 0x26,
    Right = 0x27,
    Down = 0x28,
    Snapshot = 0x2C,
    Delete = 0x2E,
    Help = 0x2F,
    F1 = 0x70,
    F15 = 0x7E,
    NumLock = 0x90,
};
}

// Packs a local point the way a mouse message's param2 carries it: x in the
// low 16 bits, y in the high 16 bits, both signed.
constexpr int32_t kPackPoint(int32_t x, int32_t y)
{
    return static_cast<int32_t>((static_cast<uint32_t>(y & 0xFFFF) << 16) | static_cast<uint32_t>(x & 0xFFFF));
}
constexpr int32_t kPointX(int32_t packed) { return static_cast<int16_t>(packed & 0xFFFF); }
constexpr int32_t kPointY(int32_t packed)
{
    return static_cast<int16_t>((static_cast<uint32_t>(packed) >> 16) & 0xFFFF);
}

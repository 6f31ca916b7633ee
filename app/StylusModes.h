#pragma once

#include <cstdint>

// What the main window is doing as a whole.
enum class WindowMode : int32_t {
    None = 0,
    TapeEditing = 1,
    ActorEditing = 2,
    Playing = 3,
    Paused = 4,
};

// Which in-place editor is open over the page.
enum class EditMode : int32_t {
    None = 0,
    Image = 1,
    Movie = 2,
    Text = 3,
    ActorPosition = 4,
    Paste = 5,
};

// The program's screen form: a window, or the whole screen.
enum class ScreenMode : int32_t {
    Window = 0,
    FullScreen = 1,
    // Changed the resolution on the first platform; plain full screen here.
    FullScreenResolution = 2,
};

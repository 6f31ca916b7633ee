#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

// The plain records that travel through the native layer's interface. Text
// in them is in the framework's 8-bit set; the native side converts it.

// A rectangle in pixels: client areas are in screen terms, controls in
// their window's.
struct KNativeRect {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;

    bool operator==(const KNativeRect& other) const
    {
        return x == other.x && y == other.y && width == other.width && height == other.height;
    }
};

// What kind of frame a window lives in. A palette floats over the main
// window and stays off the task bar; a dialog belongs to the window it was
// opened over.
enum class KNativeWindowKind : int32_t { Normal = 0, Palette = 1, Dialog = 2 };

struct KNativeWindowSetup {
    KNativeWindowKind kind = KNativeWindowKind::Normal;
    std::string title;
    // The client area; its origin is where the window goes on the screen.
    KNativeRect client;
    // The window this one is transient for, or null.
    void* parent = nullptr;
    bool closable = true;
    bool resizable = true;
    bool centreOnParent = false;
};

struct KNativeColour {
    uint16_t red = 0;
    uint16_t green = 0;
    uint16_t blue = 0;
    // No colour at all: what lies beneath shows through (a text field over
    // the page for a text without a background).
    bool transparent = false;
};

// Pixels of an image (a clipboard's, a picture control's): 0x00RRGGBB,
// row by row.
struct KNativeImageData {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint32_t> pixels;
};

enum class KNativeControlKind : int32_t {
    Button = 0,
    StaticText = 1,
    RadioGroup = 2,
    CheckBox = 3,
    Entry = 4,
    MultiLineText = 5,
    PopUpList = 6,
    SpinField = 7,
    Slider = 8,
    ScrollBar = 9,
    List = 10,
    ColourSwatch = 11,
    Picture = 12,
    // Several lines of text in runs of styles, over the page: no border.
    StyledText = 13,
};

// The look of a stretch of styled text: a family (in the framework's
// 8-bit set), a size in points, the face bits of KFont (1 bold, 2 italic,
// 4 underline) and the colour.
struct KNativeTextStyle {
    std::string family;
    double size = 24;
    int32_t face = 0;
    KNativeColour colour;

    bool operator==(const KNativeTextStyle& other) const
    {
        return family == other.family && size == other.size && face == other.face && colour.red == other.colour.red
               && colour.green == other.colour.green && colour.blue == other.colour.blue;
    }
};

struct KNativeStyledRun {
    int32_t length = 0;
    KNativeTextStyle style;
};

// Styled text as a field holds it: the characters with the lines joined
// by one CR each, the runs covering them exactly one after the other (a
// line break takes the style of the line it ends, so that an empty line
// keeps one), and the alignment of the whole (KTextBlock's numbers). Empty
// text has one run of length 0: the style that typing starts with.
struct KNativeStyledText {
    std::string text;
    std::vector<KNativeStyledRun> runs;
    int32_t alignment = 0;
};

// A change of style for the selected characters, or for what will be
// typed at the caret when nothing is selected: each part whose flag is
// set. The face bits in `faceMask` take their values from `face`. The
// alignment is the whole text's.
struct KNativeStyleChange {
    bool setFamily = false;
    std::string family;
    bool setSize = false;
    double size = 0;
    int32_t faceMask = 0;
    int32_t face = 0;
    bool setColour = false;
    KNativeColour colour;
    bool setAlignment = false;
    int32_t alignment = 0;
};

// An item of a pop-up menu or of a menu bar: a command with its number
// (never 0), a separator, or a sub-menu of the children. A check item
// shows a tick when `checked`, a round one when `radio`. An item of a menu
// bar may have an accelerator: the character (an upper-case letter or a
// digit) typed with Control.
struct KNativeMenuItem {
    int32_t id = 0;
    std::string text;
    bool enabled = true;
    bool checkable = false;
    bool checked = false;
    bool radio = false;
    bool separator = false;
    int32_t accelerator = 0;
    std::vector<KNativeMenuItem> children;
};

// What a text control does with its selection and the clipboard.
enum class KNativeTextEdit : int32_t { Cut, Copy, Paste, Clear };

// The numbers of a control whose value lies between bounds: a spin field,
// a slider, a scroll bar. The value runs from minimum to maximum; a scroll
// bar's thumb covers `page` of it.
struct KNativeControlRange {
    double minimum = 0;
    double maximum = 100;
    // What an arrow key or an arrow button adds.
    double step = 1;
    // What a page key or a click beside a scroll bar's thumb adds.
    double page = 10;
    // Digits after the point.
    int32_t decimals = 0;

    bool operator==(const KNativeControlRange& other) const
    {
        return minimum == other.minimum && maximum == other.maximum && step == other.step && page == other.page
               && decimals == other.decimals;
    }
};

// All a control's widget needs at its making; each kind reads its part.
// After that the same parts change through the layer's setters.
struct KNativeControlSetup {
    KNativeControlKind kind = KNativeControlKind::Button;
    std::string text;
    KNativeRect bounds;
    // The number the control's notifications carry (param2 of a Command
    // record); never 0.
    int32_t tag = 0;
    bool isDefault = false;
    // The choices of a radio group, a pop-up list or a list.
    std::vector<std::string> items;
    // The headings of a list of several columns; each of its items then
    // holds its cells separated by tabs. A list without headings has one
    // column and no heading row.
    std::vector<std::string> columns;
    // A check box's state (0 or 1), the chosen item's index (-1 for none),
    // or the number of a ranged control.
    double value = 0;
    KNativeControlRange range;
    // The most characters an entry or a multi-line text takes; 0 for no
    // limit.
    int32_t textLimit = 0;
    KNativeColour colour;
    KNativeImageData picture;
    // The text of a styled text field; its background is `colour`.
    KNativeStyledText styledText;
};

// Notification codes of a Command record from a control (param1): a
// press, a change of the value the user made, a choice confirmed (a
// double click or Return on a list item), and a request for the control's
// own menu (a right click, the menu key), whose screen position is the
// record's x and y.
namespace KControlNotification {
enum : int32_t { Clicked = 0, Changed = 1, Activated = 2, ContextMenu = 3 };
}

// The cursor shapes the cursor manager asks for.
enum class KCursorShape : int32_t { Normal = 0, Wait = 1, Cross = 2, Hand = 3, Text = 4 };

struct KNativeFileFilter {
    std::string name;
    // Without the dot; matched without regard to case.
    std::vector<std::string> extensions;
};

struct KNativeChooserRequest {
    enum Mode : int32_t { Open = 0, Save = 1, Folder = 2 };
    Mode mode = Open;
    std::string title;
    // Where the chooser starts, or empty.
    std::string folder;
    // The name a save proposes.
    std::string name;
    std::vector<KNativeFileFilter> filters;
};

// A message box: its buttons and what it answers.
struct KNativeAlertRequest {
    enum Style : int32_t {
        Information = 0,
        YesNo = 1,
        // Yes and No with No as the default button.
        YesNoDefaultNo = 2,
        YesNoCancel = 3,
        OkCancel = 4,
        Error = 5,
    };
    Style style = Information;
    std::string title;
    std::string text;
};

namespace KNativeAnswer {
enum : int32_t { Cancel = 1, Yes = 2, No = 3, Ok = 4 };
}

// A control that a window draws itself, as a screen reader is told of it:
// its name (the Windows set, as every text the program gives the layer),
// what kind of thing it is, where it stands in client terms, and its state.
enum class KNativeAccessibleRole : int32_t { Button = 0, ToggleButton = 1, Slider = 2, Image = 3 };

struct KNativeAccessible {
    std::string name;
    KNativeAccessibleRole role = KNativeAccessibleRole::Button;
    KNativeRect bounds;
    bool enabled = true;
    bool focused = false;
    // A toggle button that is down (the selected colour).
    bool pressed = false;

    bool operator==(const KNativeAccessible& other) const = default;
};

// Everything the program puts on the clipboard at once: text, an image and
// its private formats, each under its own target name.
struct KNativeClipboardContent {
    bool hasText = false;
    std::string text;
    bool hasImage = false;
    KNativeImageData image;
    std::vector<std::pair<std::string, std::vector<uint8_t>>> formats;
};

// The two standard formats by name, for clipboardHasFormat.
inline constexpr const char* kClipboardText = "TEXT";
inline constexpr const char* kClipboardImage = "IMAGE";

class KNativeDevice;

// Paper margins in hundredths of a millimetre.
struct KNativePrintMargins {
    int32_t left = 1000;
    int32_t top = 1000;
    int32_t right = 1000;
    int32_t bottom = 1000;

    bool operator==(const KNativePrintMargins& other) const = default;
};

// The page set-up dialog: the paper and its orientation are the printing
// system's own; the margins row carries the program's labels.
struct KNativePageSetupRequest {
    std::string title;
    std::string marginsLabel;
    // Left, top, right, bottom.
    std::string sideLabels[4];
    KNativePrintMargins margins;
};

// A print job. Its pages are drawn on the paper's whole sheet in dots of
// `dotsPerInch`, the origin at the paper's corner.
struct KNativePrintJob {
    enum Outcome : int32_t { Printed = 0, Cancelled = 1, Failed = 2 };
    std::string title;
    int32_t pages = 1;
    bool showDialog = true;
    double dotsPerInch = 300.0;
    // A PDF file to write instead of printing, or empty.
    std::string exportPath;
    // Draws page `page` (from 1) on a device of the sheet, which the callee
    // takes over.
    std::function<void(KNativeDevice* device, int32_t page)> drawPage;
};

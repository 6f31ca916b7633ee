#pragma once

#include "app/ColorPaletteFile.h"
#include "app/StylusColorButtonControl.h"
#include "graphics/KColor.h"
#include "kernel/KDirectory.h"
#include "windowing/KImageControl.h"
#include "windowing/KPaletteWindow.h"
#include "windowing/KTimer.h"

#include <array>
#include <vector>

class KFile;
class KFileReference;

// The strip of tools that floats over the main window, at the bottom of
// the screen: brush size and 16 brush colours in the first row with play,
// erase, the steps, modify and up/down; the buttons that insert elements in
// the second row, shown when the palette is full. It owns what a new
// stroke takes: the brush size and the colour of the selected colour
// button. Its background is white; it never takes the keyboard from the
// page.
//
// Every control is one of the table's ids. Colour buttons are indexed 0 to
// 15 in the brush operations (button 1 is index 0).
class ToolPalette : public KPaletteWindow {
    K_DECLARE_CLASS(ToolPalette)
public:
    enum ControlId : int32_t {
        FirstColourButton = 1,
        LastColourButton = 16,
        SizeControl = 17,
        PlayButton = 18,
        StopButton = 19,
        EraseButton = 20,
        BackButton = 21,
        ForwardButton = 22,
        BeginningButton = 23,
        EndButton = 24,
        ModifyButton = 25,
        UpDownButton = 26,
        TextButton = 27,
        SoundButton = 28,
        SpeechButton = 29,
        ImageButton = 30,
        TransitionButton = 31,
        MovieButton = 32,
        PauseButton = 33,
        WaitButton = 34,
        ElementIndicator = 35,
        LastControl = 35,
    };
    static constexpr int32_t kWidth = 640;
    static constexpr int32_t kShortHeight = 67;
    static constexpr int32_t kFullHeight = 132;
    static constexpr int32_t kColourCount = 16;
    static constexpr int16_t kDefaultBrushSize = 32;
    static constexpr int16_t kMinimumBrushSize = 4;
    static constexpr int16_t kMaximumBrushSize = 128;
    // Button 1, white.
    static constexpr int32_t kDefaultColourButton = 0;
    // The palette drawn larger for eyes and hands that need it.
    static constexpr double kScales[] = { 1.0, 1.5, 2.0 };
    // The shipped palette, in the "Color Palettes" folders.
    static constexpr const char* kShippedPalette = "Atelier Colors";
    static constexpr const char* kPaletteFolder = "Color Palettes";

    ToolPalette();
    ~ToolPalette() override;

    static ToolPalette* current();

    // Opens below the main window, inside the screen, and takes the colours
    // of the default palette file when there is one.
    void open(OpenMode mode) override;
    // Once, when the main window shows its first story: the palette becomes
    // full and follows the window's mode.
    void finishOpen();
    KEventReturn doPaint(KWindowEvent& event) override;
    KEventReturn doControlAction(KControlActionEvent& event) override;
    KEventReturn doKeyDown(KKeyEvent& event) override;

    // --- Controls ----------------------------------------------------------------
    // The control of the id, null for an unknown id.
    KImageControl* getControl(int32_t id) const;
    StylusColorButtonControl* getColorButton(int32_t index) const;
    // Where the table puts the control at scale 1, in window terms.
    static KWideRectangle placeOf(int32_t id);
    // The element kind a button inserts (27 text ... 34 wait), 0 for others.
    static int32_t elementKindOf(int32_t controlId);
    // The hover text of the control, translated.
    static KString tooltipOf(int32_t id);

    // --- Brush ---------------------------------------------------------------------
    int16_t getBrushSize() const { return brushSize; }
    // Any size is kept as given: the thin pen sets 1 for one stroke. The
    // size control shows it; the main window is told unless `quiet`.
    void setBrushSize(int16_t size, bool quiet = false);
    const KColor& getBrushColor() const { return brushColor; }
    void getBrushColor(KColor& colour) const { colour = brushColor; }
    // Puts the colour into the selected button.
    void setBrushColor(const KColor& colour);
    int32_t getSelectedButton() const { return selectedButton; }
    // Buttons 0 to 15; others are ignored. The brush takes the button's
    // colour as its picture shows it.
    void selectColorButton(int32_t index);
    KColor getButtonColor(int32_t index) const;
    void setButtonColor(int32_t index, const KColor& colour);
    static KColor defaultButtonColor(int32_t index);
    // Every button back to its default colour.
    void resetColors();

    // --- Palette files --------------------------------------------------------------
    ColorPaletteFile::Colors getColors() const;
    // The colours the file names go into their buttons, or none of them.
    void applyColors(const ColorPaletteFile::Colors& colors);
    // Reads a palette from the file's position; a file that is no palette
    // is told in an alert and leaves the colours as they were. True when
    // the colours changed.
    bool loadColors(KFile& file);
    void saveColors(KFile& file);
    // The same on whole files. A file that cannot be opened changes
    // nothing and is not told (a default palette that is not installed);
    // a failed save is told and leaves the old file.
    bool loadColorsFrom(const KFileReference& file);
    bool saveColorsTo(const KFileReference& file);
    // The palette the "DefaultColorPalette" preference names, or the
    // shipped one.
    void loadDefaultColors();
    // Where the user's palettes are saved.
    static KDirectory userPaletteFolder();
    // Where palettes are looked for: the user's folder, the program's, the
    // system's data folders.
    static std::vector<KDirectory> paletteFolders();
    // The shipped palette, when one of the folders has it.
    static bool findShippedPalette(KFileReference& file);

    // --- State ---------------------------------------------------------------------
    bool isFull() const { return paletteState == 1; }
    int32_t getPaletteState() const { return paletteState; }
    void swapPaletteState();
    void showFull(bool full);
    // The kind picture of the modify button: the tool entry of the element
    // before the position (0 for none). The step buttons follow the tape.
    void setElementIndicator(int32_t entry);
    int32_t getElementIndicator() const { return elementIndicator; }
    // The controls for the main window's mode: 0 none (the palette is
    // disabled), 1 tape editing, 2 actor editing, 3 playing, 4 paused.
    void updateState(int32_t windowMode);
    void updateState();
    int32_t getShownWindowMode() const { return shownWindowMode; }

    // --- Size and keyboard ---------------------------------------------------------
    // 1, 1.5 or 2: controls, pictures and the window grow together.
    void setScale(double value);
    double getScale() const { return scale; }
    // Moves the focus ring to the next (or previous) usable control; the
    // first when none has it.
    void focusNext(bool backwards);
    KImageControl* getFocusedControl() const;
    // The control with the ring is pressed as by the mouse.
    void pressFocused();
    // Tells the screen reader the controls as they stand: name (the hover
    // text), kind, place, and whether each is usable, has the ring or is
    // the selected colour. Only a change is passed on.
    void tellScreenReaders();
    // The ring leaves the palette: keys go back to the page.
    void clearFocus();

    // --- Switch scanning -----------------------------------------------------------
    // For a child with a single switch mapped to Space: the ring steps on by
    // itself every interval, and Space presses the control it stands on.
    static constexpr int32_t kMinimumScanInterval = 500;
    static constexpr int32_t kMaximumScanInterval = 5000;
    // 0 stops scanning; other intervals are kept within the bounds above.
    void setScanInterval(int32_t milliseconds);
    int32_t getScanInterval() const { return scanInterval; }
    bool isScanning() const { return scanInterval > 0; }

    // Holding a colour button this long opens the colour chooser, as
    // Control+click and the right button do: a press anyone can make.
    static constexpr int32_t kLongPress = 700;
    void timerFired(KTimer& timer) override;
    void close() override;

private:
    void buildControls();
    void addImageControl(int32_t id);
    void placeControls();
    void resizeForState();
    void keepOnScreen();
    void drawSizeSample();
    static void keepFaceEdge(KAlphaImage& sample, KAlphaImage& base);
    void refreshSteps();
    void enable(int32_t id, bool on);
    void enableAll(bool on);
    void showPlaying(bool playing);
    void colourButtonAction(StylusColorButtonControl& button, int32_t type);
    void pickColour(StylusColorButtonControl& button);
    void sizeAction(KImageControl& control, int32_t type);
    void pressed(int32_t id, int32_t modifiers);
    void tellMainWindow();
    void reportBadFile();
    // The controls in the order the focus goes through them.
    std::vector<KImageControl*> focusOrder() const;

    void startLongPress(StylusColorButtonControl& button);
    void stopTimer(KPtr<KTimer>& timer);

    std::array<KImageControlPtr, LastControl + 1> controls;
    std::vector<KNativeAccessible> toldScreenReaders;
    KPtr<KTimer> scanTimer;
    KPtr<KTimer> longPressTimer;
    // The colour button held down, while the long press is timed.
    StylusColorButtonControl* heldButton = nullptr;
    int32_t scanInterval = 0;
    KAlphaImagePtr sizeBase;
    KColor brushColor;
    int32_t selectedButton = kDefaultColourButton;
    int16_t brushSize = kDefaultBrushSize;
    int16_t dragStartSize = kDefaultBrushSize;
    int32_t elementIndicator = -1;
    // The kind pictures read so far: each step along the tape may show
    // another, and reading one from the art costs more than the step.
    std::vector<KAlphaImagePtr> indicatorPictures;
    int32_t shownWindowMode = 0;
    int32_t paletteState = 0;
    double scale = 1.0;
    bool finished = false;
    // The colour chooser answered the press: its release selects nothing.
    bool chooserPress = false;
    // A palette file was read.
    bool coloursLoaded = false;
};

#include "app/ToolPalette.h"

#include "app/ArtResources.h"
#include "app/StylusActions.h"
#include "app/StylusApplication.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "graphics/KGraphicStateGuard.h"
#include "graphics/KPixelBuffer.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileSystem.h"
#include "kernel/KLocalizer.h"
#include "kernel/KPath.h"
#include "tape/Tape.h"
#include "windowing/KAlert.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace {

ToolPalette* gToolPalette = nullptr;

constexpr int32_t kControlKey = 2;

struct Channels {
    uint16_t red, green, blue;
};

// In button order; the buttons pair on two rows, light above dark.
constexpr Channels kDefaultColours[ToolPalette::kColourCount] = {
    { 0xFFFF, 0xFFFF, 0xFFFF }, { 0, 0, 0 },           { 0xC600, 0xC600, 0xC600 }, { 0x5A00, 0x5A00, 0x5A00 },
    { 0xF700, 0xF700, 0x0800 }, { 0xEF00, 0xB600, 0 }, { 0xEF00, 0x6100, 0x0800 }, { 0xEF00, 0, 0 },
    { 0xE700, 0, 0x5A00 },      { 0x8C00, 0, 0x6B00 }, { 0, 0xCF00, 0xE700 },      { 0, 0, 0xE700 },
    { 0x3100, 0xE700, 0x3100 }, { 0, 0xA600, 0 },      { 0xD600, 0x8600, 0 },      { 0x8C00, 0x2800, 0 },
};

struct Place {
    int32_t id;
    int16_t x, y, width, height;
    const char* tooltip;
};

// The controls after the colour buttons, in the order they are made. The
// stop button shares the play button's place and is shown instead of it
// while the story plays; the element indicator sits inside the modify
// button.
constexpr Place kPlaces[] = {
    { ToolPalette::SizeControl, 260, 2, 62, 62, kTranslatable("Modify Size") },
    { ToolPalette::PlayButton, 323, 2, 62, 62, kTranslatable("Play/Stop") },
    { ToolPalette::StopButton, 323, 2, 62, 62, kTranslatable("Play/Stop") },
    { ToolPalette::EraseButton, 386, 2, 62, 62, kTranslatable("Erase") },
    { ToolPalette::BackButton, 448, 1, 32, 32, kTranslatable("Back") },
    { ToolPalette::ForwardButton, 480, 1, 32, 32, kTranslatable("Forward") },
    { ToolPalette::BeginningButton, 448, 32, 32, 32, kTranslatable("Beginning") },
    { ToolPalette::EndButton, 480, 32, 32, 32, kTranslatable("End") },
    { ToolPalette::ModifyButton, 512, 2, 62, 62, kTranslatable("Modify") },
    { ToolPalette::UpDownButton, 575, 2, 62, 62, kTranslatable("Up/Down Tools") },
    { ToolPalette::TextButton, 2, 68, 62, 62, kTranslatable("Text") },
    { ToolPalette::SoundButton, 274, 68, 62, 62, kTranslatable("Sound") },
    { ToolPalette::SpeechButton, 340, 68, 62, 62, kTranslatable("Speech") },
    { ToolPalette::ImageButton, 105, 68, 62, 62, kTranslatable("Image") },
    { ToolPalette::TransitionButton, 443, 68, 62, 62, kTranslatable("Page Transition") },
    { ToolPalette::MovieButton, 171, 68, 62, 62, kTranslatable("Movie") },
    { ToolPalette::PauseButton, 575, 68, 62, 62, kTranslatable("Pause") },
    { ToolPalette::WaitButton, 509, 68, 62, 62, kTranslatable("Wait") },
    // Within the modify button, in its terms.
    { ToolPalette::ElementIndicator, 11, 11, 40, 40, kTranslatable("Modify") },
};

const Place* placeEntry(int32_t id)
{
    for (const Place& place : kPlaces) {
        if (place.id == id)
            return &place;
    }
    return nullptr;
}

bool isColourButton(int32_t index) { return index >= 0 && index < ToolPalette::kColourCount; }

bool isColourId(int32_t id) { return id >= ToolPalette::FirstColourButton && id <= ToolPalette::LastColourButton; }

int16_t scaled(int32_t value, double scale) { return int16_t(std::lround(value * scale)); }

// The element kinds of the insert buttons, from the text button on.
constexpr int32_t kInsertKinds[] = { 3, 6, 4, 10, 7, 9, 5, 1 };

// A colour light enough to vanish on the white face of the size control.
bool isLight(const KColor& colour)
{
    return 0.299 * colour.getRed() + 0.587 * colour.getGreen() + 0.114 * colour.getBlue() > 0.85 * 65535;
}

} // namespace

K_DEFINE_CLASS(ToolPalette, KPaletteWindow)

// Centred at the bottom of the screen, without a close box.
ToolPalette::ToolPalette()
{
    gToolPalette = this;
    setWindowFlags(0);
    // The palette carries the program's name.
    setTitle(kTranslate("TaleLoom"));
    setBackground(KColor(KColor::White));
    int32_t screenWidth = 0;
    int32_t screenHeight = 0;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->screenSize(screenWidth, screenHeight);
    int32_t x = screenWidth / 2 - kWidth / 2;
    int32_t y = screenHeight - 84;
    setBounds(KGraphicRectangle(int16_t(x > 0 ? x : 0), int16_t(y > 0 ? y : 0), kWidth, kShortHeight));
    buildControls();
    for (int32_t i = 0; i < kColourCount; ++i)
        getColorButton(i)->setColor(defaultButtonColor(i));
    setBrushSize(kDefaultBrushSize, true);
    selectColorButton(kDefaultColourButton);
}

ToolPalette::~ToolPalette()
{
    stopTimer(scanTimer);
    stopTimer(longPressTimer);
    if (gToolPalette == this)
        gToolPalette = nullptr;
}

ToolPalette* ToolPalette::current() { return gToolPalette; }

KColor ToolPalette::defaultButtonColor(int32_t index)
{
    if (!isColourButton(index))
        return KColor(KColor::Black);
    const Channels& c = kDefaultColours[index];
    return KColor(c.red, c.green, c.blue);
}

// --- Building ---------------------------------------------------------------------

KWideRectangle ToolPalette::placeOf(int32_t id)
{
    if (isColourId(id)) {
        int32_t index = id - FirstColourButton;
        return KWideRectangle(32 * (index / 2), index % 2 == 0 ? 1 : 33, StylusColorButtonControl::kSide,
                              StylusColorButtonControl::kSide);
    }
    const Place* place = placeEntry(id);
    if (!place)
        return KWideRectangle();
    KWideRectangle bounds(place->x, place->y, place->width, place->height);
    if (id == ElementIndicator) {
        KWideRectangle modify = placeOf(ModifyButton);
        bounds.x += modify.x;
        bounds.y += modify.y;
    }
    return bounds;
}

int32_t ToolPalette::elementKindOf(int32_t controlId)
{
    if (controlId < TextButton || controlId > WaitButton)
        return 0;
    return kInsertKinds[controlId - TextButton];
}

KString ToolPalette::tooltipOf(int32_t id)
{
    if (isColourId(id))
        return uiTranslate("Select Brush Color");
    const Place* place = placeEntry(id);
    return place ? uiTranslate(place->tooltip) : KString();
}

// The size control first, then the colour buttons and the rest in the
// table's order.
void ToolPalette::buildControls()
{
    addImageControl(SizeControl);
    for (int32_t id = FirstColourButton; id <= LastColourButton; ++id) {
        StylusColorButtonControlPtr button(new StylusColorButtonControl(id, placeOf(id)));
        button->setTooltip(tooltipOf(id));
        controls[size_t(id)] = button;
        addControl(*button);
    }
    for (const Place& place : kPlaces) {
        if (place.id != SizeControl)
            addImageControl(place.id);
    }
    controls[StopButton]->hide();
    sizeBase = ArtResources::loadMaskedPicture(ArtResources::toolButtonPicture(SizeControl, false),
                                               int16_t(ArtResources::toolButtonPicture(SizeControl, false) + 1));
    setElementIndicator(0);
}

void ToolPalette::addImageControl(int32_t id)
{
    KImageControlPtr control(new KImageControl(id, placeOf(id)));
    control->setTooltip(tooltipOf(id));
    int16_t picture = ArtResources::toolButtonPicture(id, false);
    if (picture >= 0) {
        KAlphaImagePtr plain = ArtResources::loadMaskedPicture(picture, int16_t(picture + 1));
        int16_t pushedId = ArtResources::toolButtonPicture(id, true);
        KAlphaImagePtr pushed = ArtResources::loadMaskedPicture(pushedId, int16_t(pushedId + 1));
        control->setPicture(plain.get(), pushed.get());
    }
    controls[size_t(id)] = control;
    if (id == ElementIndicator) {
        // Clicks on the kind picture are the modify button's.
        control->setClickThrough(true);
        const Place* inner = placeEntry(id);
        control->setPosition(KWidePoint(inner->x, inner->y));
        controls[ModifyButton]->addChild(*control);
        return;
    }
    addControl(*control);
}

KImageControl* ToolPalette::getControl(int32_t id) const
{
    return id >= 1 && id <= LastControl ? controls[size_t(id)].get() : nullptr;
}

StylusColorButtonControl* ToolPalette::getColorButton(int32_t index) const
{
    if (!isColourButton(index))
        return nullptr;
    return static_cast<StylusColorButtonControl*>(controls[size_t(index) + size_t(FirstColourButton)].get());
}

// --- Window -------------------------------------------------------------------------

void ToolPalette::open(OpenMode mode)
{
    KPaletteWindow::open(mode);
    KGraphicRectangle frame = getClientBounds();
    if (StylusWindow* window = StylusWindow::current(); window && window->isOpen()) {
        KGraphicRectangle main = window->getFrame();
        frame.y = int16_t(main.y + main.height);
    }
    setBounds(frame);
    keepOnScreen();
    loadDefaultColors();
    selectColorButton(selectedButton);
}

void ToolPalette::finishOpen()
{
    if (finished)
        return;
    finished = true;
    swapPaletteState();
    updateState();
}

KEventReturn ToolPalette::doPaint(KWindowEvent&)
{
    const KGraphicRectangle& client = getClientBounds();
    fillRectangle(KGraphicRectangle(0, 0, client.width, client.height), KColor(KColor::White));
    // Every change of the controls shows on the palette: what a reader is
    // told follows from here.
    tellScreenReaders();
    return 0;
}

void ToolPalette::tellScreenReaders()
{
    std::vector<KNativeAccessible> told;
    // The short palette keeps its second row below its edge.
    int32_t height = getClientBounds().height;
    for (int32_t id = 1; id <= LastControl; ++id) {
        const KImageControl& control = *controls[size_t(id)];
        if (!control.isVisible() || control.getBounds().y >= height)
            continue;
        KNativeAccessible item;
        item.name = control.getTooltip().c_str();
        bool colour = id >= FirstColourButton && id <= LastColourButton;
        item.role = colour                   ? KNativeAccessibleRole::ToggleButton
                    : id == SizeControl      ? KNativeAccessibleRole::Slider
                    : id == ElementIndicator ? KNativeAccessibleRole::Image
                                             : KNativeAccessibleRole::Button;
        KWideRectangle place = control.getBounds();
        item.bounds = KNativeRect { place.x, place.y, place.width, place.height };
        item.enabled = control.isEnabled();
        item.focused = control.hasFocus();
        item.pressed = colour && id - FirstColourButton == selectedButton;
        told.push_back(std::move(item));
    }
    if (told == toldScreenReaders || !getNativeWindow())
        return;
    toldScreenReaders = told;
    KNativeLayer::get().setAccessibleControls(getNativeWindow(), told);
}

// A frame that passes the screen's edge ends there.
void ToolPalette::keepOnScreen()
{
    int32_t screenWidth = 0;
    int32_t screenHeight = 0;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->screenSize(screenWidth, screenHeight);
    KGraphicRectangle frame = getClientBounds();
    KGraphicRectangle kept = frame;
    // A palette made larger may pass the right edge too.
    if (screenWidth > 0 && kept.x + kept.width > screenWidth)
        kept.x = int16_t(std::max(0, screenWidth - kept.width));
    if (screenHeight > 0 && kept.y + kept.height > screenHeight)
        kept.y = int16_t(std::max(0, screenHeight - kept.height));
    if (kept.x != frame.x || kept.y != frame.y)
        setBounds(kept);
}

// --- Brush ---------------------------------------------------------------------------

void ToolPalette::setBrushSize(int16_t size, bool quiet)
{
    brushSize = size;
    drawSizeSample();
    if (!quiet)
        tellMainWindow();
}

// A disc of the brush's size and colour in the middle of the size
// control's face, cut by the face's edge; a light colour gets a grey rim.
void ToolPalette::drawSizeSample()
{
    KImageControl* control = getControl(SizeControl);
    if (!control)
        return;
    if (!sizeBase) {
        control->pictureChanged();
        return;
    }
    KAlphaImagePtr sample(static_cast<KAlphaImage*>(sizeBase->deepCopy()));
    KGraphicSize face = sample->getSize();
    KGraphicDevice& device = sample->getDevice();
    int16_t side = std::max<int16_t>(1, brushSize);
    KGraphicRectangle disc(int16_t(face.width / 2 - side / 2), int16_t(face.height / 2 - side / 2), side, side);
    {
        KGraphicStateGuard state(device);
        device.setForeground(brushColor);
        device.fillOval(disc);
        if (isLight(brushColor)) {
            device.setForeground(KColor(KColor::Grey));
            device.frameOval(disc);
        }
    }
    keepFaceEdge(*sample, *sizeBase);
    control->setPicture(sample.get(), nullptr);
}

// The disc stays on the face's white: the face's ring comes back over it,
// and outside the mask the picture is white again, as masked drawing needs.
void ToolPalette::keepFaceEdge(KAlphaImage& sample, KAlphaImage& base)
{
    KPixelBuffer drawn;
    KPixelBuffer original;
    KPixelBuffer mask;
    KImage* maskImage = base.getMask();
    if (!maskImage || !sample.getDevice().beginPixelAccess(drawn))
        return;
    bool haveOriginal = base.getDevice().beginPixelAccess(original);
    bool haveMask = maskImage->getDevice().beginPixelAccess(mask);
    bool readable = haveOriginal && haveMask;
    for (int32_t y = 0; readable && y < drawn.height; ++y) {
        for (int32_t x = 0; x < drawn.width; ++x) {
            if (!original.contains(x, y) || !mask.contains(x, y))
                continue;
            uint32_t before = *original.at(x, y) & KPixelBuffer::kColourBits;
            bool outside = (*mask.at(x, y) & 0xFF) >= 128;
            if (outside)
                *drawn.at(x, y) = KPixelBuffer::kColourBits;
            else if (before != KPixelBuffer::kColourBits)
                *drawn.at(x, y) = before;
        }
    }
    if (haveMask)
        maskImage->getDevice().endPixelAccess(KWideRectangle());
    if (haveOriginal)
        base.getDevice().endPixelAccess(KWideRectangle());
    sample.getDevice().endPixelAccess(KWideRectangle(0, 0, drawn.width, drawn.height));
}

void ToolPalette::setBrushColor(const KColor& colour) { setButtonColor(selectedButton, colour); }

KColor ToolPalette::getButtonColor(int32_t index) const
{
    StylusColorButtonControl* button = getColorButton(index);
    return button ? button->getColor() : KColor(KColor::Black);
}

void ToolPalette::setButtonColor(int32_t index, const KColor& colour)
{
    StylusColorButtonControl* button = getColorButton(index);
    if (!button)
        return;
    button->setColor(colour);
    if (index == selectedButton)
        selectColorButton(index);
}

void ToolPalette::selectColorButton(int32_t index)
{
    if (!isColourButton(index))
        return;
    if (StylusColorButtonControl* old = getColorButton(selectedButton))
        old->setSelected(false);
    selectedButton = index;
    StylusColorButtonControl* button = getColorButton(index);
    button->setSelected(true);
    brushColor = button->getColor();
    drawSizeSample();
    tellMainWindow();
}

void ToolPalette::resetColors()
{
    ColorPaletteFile::Colors defaults;
    for (int32_t i = 0; i < kColourCount; ++i)
        defaults.set(i, defaultButtonColor(i));
    applyColors(defaults);
}

void ToolPalette::tellMainWindow()
{
    if (StylusWindow* window = StylusWindow::current())
        window->updateBrushSprite();
}

// --- Palette files ------------------------------------------------------------------

ColorPaletteFile::Colors ToolPalette::getColors() const
{
    ColorPaletteFile::Colors colors;
    for (int32_t i = 0; i < kColourCount; ++i)
        colors.set(i, getButtonColor(i));
    return colors;
}

void ToolPalette::applyColors(const ColorPaletteFile::Colors& colors)
{
    for (int32_t i = 0; i < kColourCount; ++i) {
        if (colors.has(i))
            getColorButton(i)->setColor(colors.colors[size_t(i)]);
    }
    if (colors.has(selectedButton))
        selectColorButton(selectedButton);
}

bool ToolPalette::loadColors(KFile& file)
{
    ColorPaletteFile::Colors colors;
    if (ColorPaletteFile::read(file, colors) == ColorPaletteFile::Form::None) {
        reportBadFile();
        return false;
    }
    applyColors(colors);
    return true;
}

void ToolPalette::saveColors(KFile& file) { ColorPaletteFile::write(file, getColors()); }

bool ToolPalette::loadColorsFrom(const KFileReference& file)
{
    ColorPaletteFile::Colors colors;
    bool opened = false;
    if (ColorPaletteFile::load(file, colors, opened) == ColorPaletteFile::Form::None) {
        if (opened)
            reportBadFile();
        return false;
    }
    applyColors(colors);
    coloursLoaded = true;
    return true;
}

bool ToolPalette::saveColorsTo(const KFileReference& file)
{
    if (ColorPaletteFile::save(file, getColors()))
        return true;
    alert(uiText("TaleLoom"), uiText("The colors could not be saved in \"%1\".", file.getNativeText()));
    return false;
}

void ToolPalette::reportBadFile()
{
    alert(uiText("Error while reading file"), uiText("This file is not a TaleLoom Colors File!"));
}

// A palette given on the command line before the palette opened stays.
void ToolPalette::loadDefaultColors()
{
    if (coloursLoaded)
        return;
    StylusApplication* application = StylusApplication::current();
    KString named = application ? application->getPreferences().defaultColorPalette : KString();
    KFileReference file;
    if (!named.isEmpty())
        file = KFileReference(KPath(named, KPath::kHostPlatform));
    else if (!findShippedPalette(file))
        return;
    if (file.doesExist())
        loadColorsFrom(file);
}

KDirectory ToolPalette::userPaletteFolder()
{
    KPath data = KFileSystem::get().getUserApplicationDataDirectory().getPath();
    return KDirectory(data.getChildFolder(KString("TaleLoom")).getChildFolder(KString(kPaletteFolder)));
}

std::vector<KDirectory> ToolPalette::paletteFolders()
{
    std::vector<KDirectory> folders { userPaletteFolder() };
    KPath program = KFileSystem::get().getApplicationDirectory().getPath();
    folders.emplace_back(program.getChildFolder(KString(kPaletteFolder)));
    KPath installed = program.getParent().getChildFolder(KString("share")).getChildFolder(KString("taleloom"));
    folders.emplace_back(installed.getChildFolder(KString(kPaletteFolder)));
    const char* dataDirs = std::getenv("XDG_DATA_DIRS");
    std::string list = dataDirs && *dataDirs ? dataDirs : "/usr/local/share/:/usr/share/";
    size_t start = 0;
    while (start <= list.size()) {
        size_t end = list.find(':', start);
        std::string dir = list.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (!dir.empty() && dir[0] == '/') {
            KPath base(KString(dir.c_str()), KPath::kHostPlatform);
            // A folder text without its closing slash reads as a file.
            if (!base.getName().isEmpty()) {
                base.addFolder(base.getName());
                base.clearName();
            }
            folders.emplace_back(base.getChildFolder(KString("taleloom")).getChildFolder(KString(kPaletteFolder)));
        }
        if (end == std::string::npos)
            break;
        start = end + 1;
    }
    return folders;
}

bool ToolPalette::findShippedPalette(KFileReference& file)
{
    KString name = KString(kShippedPalette) + "." + ColorPaletteFile::kExtension;
    for (const KDirectory& folder : paletteFolders()) {
        KFileReference candidate(folder.getPath().getChildFile(name));
        if (candidate.doesExist()) {
            file = candidate;
            return true;
        }
    }
    return false;
}

// --- State ---------------------------------------------------------------------------

void ToolPalette::swapPaletteState() { showFull(paletteState == 0); }

void ToolPalette::showFull(bool full)
{
    paletteState = full ? 1 : 0;
    resizeForState();
}

void ToolPalette::resizeForState()
{
    KGraphicRectangle frame = getClientBounds();
    frame.width = scaled(kWidth, scale);
    frame.height = scaled(isFull() ? kFullHeight : kShortHeight, scale);
    setBounds(frame);
    keepOnScreen();
    invalidate();
}

void ToolPalette::setElementIndicator(int32_t entry)
{
    if (entry < 0 || entry >= ArtResources::kIndicatorCount)
        entry = 0;
    if (entry != elementIndicator) {
        elementIndicator = entry;
        indicatorPictures.resize(ArtResources::kIndicatorCount);
        KAlphaImagePtr& picture = indicatorPictures[size_t(entry)];
        if (!picture) {
            picture = ArtResources::loadMaskedPicture(int16_t(ArtResources::kIndicatorBase + entry),
                                                      ArtResources::kIndicatorMask);
        }
        controls[ElementIndicator]->setPicture(picture.get());
    }
    refreshSteps();
}

// The steps and the modify button by the tape's position, while the tape
// is edited.
void ToolPalette::refreshSteps()
{
    if (shownWindowMode != 1)
        return;
    StylusWindow* window = StylusWindow::current();
    Tape* tape = window ? window->getTape() : nullptr;
    int32_t position = tape ? tape->getPosition() : 0;
    int32_t count = tape ? tape->getCount() : 0;
    enable(BackButton, position > 0);
    enable(BeginningButton, position > 0);
    enable(ForwardButton, position < count);
    enable(EndButton, position < count);
    enable(PlayButton, count > 0);
    enable(EraseButton, position > 0);
    enable(ModifyButton, tape && tape->hasCurrentElement());
}

void ToolPalette::enable(int32_t id, bool on)
{
    if (KImageControl* control = getControl(id)) {
        control->setEnabled(on);
        if (id == ModifyButton)
            controls[ElementIndicator]->setEnabled(on);
    }
}

void ToolPalette::enableAll(bool on)
{
    for (int32_t id = 1; id <= LastControl; ++id)
        enable(id, on);
}

void ToolPalette::showPlaying(bool playing)
{
    if (playing) {
        controls[PlayButton]->hide();
        controls[StopButton]->setVisible(true);
    } else {
        controls[StopButton]->hide();
        controls[PlayButton]->setVisible(true);
    }
    controls[PlayButton]->draw();
}

void ToolPalette::updateState()
{
    StylusWindow* window = StylusWindow::current();
    updateState(window ? int32_t(window->getWindowMode()) : 0);
}

void ToolPalette::updateState(int32_t windowMode)
{
    shownWindowMode = windowMode;
    if (windowMode <= 0 || windowMode > 4) {
        setEnabled(false);
        return;
    }
    setEnabled(true);
    StylusActions* actions = StylusActions::current();
    switch (windowMode) {
    case 1:
        showPlaying(false);
        enableAll(true);
        for (int32_t id = TextButton; id <= WaitButton; ++id)
            enable(id, !actions || actions->canInsertElement(elementKindOf(id)));
        refreshSteps();
        break;
    case 2:
        showPlaying(false);
        enableAll(false);
        enable(SizeControl, true);
        for (int32_t id = FirstColourButton; id <= LastColourButton; ++id)
            enable(id, true);
        for (int32_t id : { TextButton, ImageButton, SoundButton, SpeechButton })
            enable(id, !actions || actions->canInsertElement(elementKindOf(id)));
        break;
    case 3:
        showPlaying(true);
        enableAll(false);
        enable(StopButton, true);
        break;
    default:
        showPlaying(false);
        enableAll(false);
        enable(StopButton, true);
        enable(PlayButton, true);
        break;
    }
}

// --- Actions --------------------------------------------------------------------------

KEventReturn ToolPalette::doControlAction(KControlActionEvent& event)
{
    auto* control = dynamic_cast<KImageControl*>(event.getSource());
    if (!control || control->getWindow() != this)
        return 0;
    KImageControlPtr held(control);
    int32_t id = control->getId();
    int32_t type = event.getType();
    if (isColourId(id)) {
        colourButtonAction(static_cast<StylusColorButtonControl&>(*control), type);
        return 1;
    }
    if (id == SizeControl) {
        sizeAction(*control, type);
        return 1;
    }
    if (type != KImageControl::Pressed || id < PlayButton || id > WaitButton)
        return 0;
    pressed(id, control->getPressModifiers());
    return 1;
}

// A plain click selects the button; Control with the press, or the right
// button, opens the colour chooser on it instead.
void ToolPalette::colourButtonAction(StylusColorButtonControl& button, int32_t type)
{
    if (type == KImageControl::Pressed) {
        chooserPress = (button.getPressModifiers() & kControlKey) != 0 || button.getPressButton() == KMouseEvent::Right;
        if (chooserPress)
            pickColour(button);
        else
            startLongPress(button);
        return;
    }
    if (type == KImageControl::Released) {
        heldButton = nullptr;
        stopTimer(longPressTimer);
        if (!chooserPress)
            selectColorButton(button.getId() - FirstColourButton);
    }
}

void ToolPalette::startLongPress(StylusColorButtonControl& button)
{
    heldButton = &button;
    if (!longPressTimer) {
        longPressTimer = kAdopt(new KTimer());
        longPressTimer->setMode(KTimer::Relative);
        longPressTimer->setTarget(this);
    }
    longPressTimer->setInterval(kLongPress);
    longPressTimer->start();
}

void ToolPalette::stopTimer(KPtr<KTimer>& timer)
{
    if (timer)
        timer->stop();
}

void ToolPalette::timerFired(KTimer& timer)
{
    if (&timer == scanTimer.get()) {
        focusNext(false);
        return;
    }
    if (&timer != longPressTimer.get())
        return;
    timer.stop();
    StylusColorButtonControl* button = heldButton;
    heldButton = nullptr;
    // The chooser answers this press: its release selects nothing.
    if (button && button->isTracking() && button->isEnabled()) {
        chooserPress = true;
        pickColour(*button);
    }
}

void ToolPalette::setScanInterval(int32_t milliseconds)
{
    scanInterval = milliseconds <= 0 ? 0 : std::clamp(milliseconds, kMinimumScanInterval, kMaximumScanInterval);
    if (scanInterval == 0) {
        stopTimer(scanTimer);
        return;
    }
    if (!scanTimer) {
        scanTimer = kAdopt(new KTimer());
        scanTimer->setMode(KTimer::Relative);
        scanTimer->setRepeat(true);
        scanTimer->setTarget(this);
    }
    scanTimer->setInterval(scanInterval);
    scanTimer->start();
}

void ToolPalette::close()
{
    stopTimer(scanTimer);
    stopTimer(longPressTimer);
    heldButton = nullptr;
    KPaletteWindow::close();
}

void ToolPalette::pickColour(StylusColorButtonControl& button)
{
    KDialogHandler* dialogs = KDialogHandler::current();
    KColor colour = button.getColor();
    if (!dialogs || !dialogs->doColorDialog(colour))
        return;
    setButtonColor(button.getId() - FirstColourButton, colour);
}

// The drag measures from the press: right and down grow the brush, left
// and up shrink it.
void ToolPalette::sizeAction(KImageControl& control, int32_t type)
{
    if (type == KImageControl::Pressed) {
        dragStartSize = brushSize;
        tellMainWindow();
        return;
    }
    if (type != KImageControl::Dragged)
        return;
    const KWidePoint& from = control.getPressPoint();
    const KWidePoint& to = control.getDragPoint();
    int32_t size = dragStartSize + (to.x - from.x) + (to.y - from.y);
    size = std::clamp<int32_t>(size, kMinimumBrushSize, kMaximumBrushSize);
    if (size != brushSize)
        setBrushSize(int16_t(size));
}

void ToolPalette::pressed(int32_t id, int32_t modifiers)
{
    StylusActions* actions = StylusActions::current();
    if (!actions)
        return;
    switch (id) {
    case PlayButton:
        actions->play((modifiers & kControlKey) != 0, false, false);
        return;
    case StopButton:
        actions->stopPlay();
        return;
    case EraseButton:
        actions->deleteLast();
        return;
    case BackButton:
        actions->goBack();
        return;
    case ForwardButton:
        actions->goForward();
        return;
    case BeginningButton:
        actions->goToBeginning();
        return;
    case EndButton:
        actions->goToEnd();
        return;
    case ModifyButton:
        actions->modifyCurrentElement();
        return;
    case UpDownButton:
        actions->moveToolPalette();
        return;
    default:
        if (int32_t kind = elementKindOf(id); kind != 0 && actions->canInsertElement(kind))
            actions->insertElement(kind);
        return;
    }
}

// --- Size and keyboard -----------------------------------------------------------------

void ToolPalette::setScale(double value)
{
    double chosen = kScales[0];
    for (double offered : kScales) {
        if (std::fabs(offered - value) < 0.01)
            chosen = offered;
    }
    if (chosen == scale)
        return;
    scale = chosen;
    placeControls();
    resizeForState();
}

void ToolPalette::placeControls()
{
    for (int32_t id = 1; id <= LastControl; ++id) {
        KImageControl* control = getControl(id);
        KWideRectangle place = placeOf(id);
        if (id == ElementIndicator) {
            KWideRectangle modify = placeOf(ModifyButton);
            place.x -= modify.x;
            place.y -= modify.y;
        }
        control->setPosition(KWidePoint(scaled(place.x, scale), scaled(place.y, scale)));
        control->setSize(KWideSize(scaled(place.width, scale), scaled(place.height, scale)));
    }
}

std::vector<KImageControl*> ToolPalette::focusOrder() const
{
    std::vector<KImageControl*> order;
    for (int32_t id = FirstColourButton; id <= LastColourButton; ++id)
        order.push_back(getControl(id));
    for (const Place& place : kPlaces) {
        if (place.id == ElementIndicator)
            continue;
        KImageControl* control = getControl(place.id);
        bool secondRow = place.y >= 68;
        if (control->isVisible() && control->isEnabled() && (!secondRow || isFull()))
            order.push_back(control);
    }
    std::erase_if(order, [](KImageControl* control) { return !control->isEnabled(); });
    return order;
}

KImageControl* ToolPalette::getFocusedControl() const
{
    for (int32_t id = 1; id <= LastControl; ++id) {
        if (controls[size_t(id)]->hasFocus())
            return controls[size_t(id)].get();
    }
    return nullptr;
}

void ToolPalette::focusNext(bool backwards)
{
    std::vector<KImageControl*> order = focusOrder();
    if (order.empty())
        return;
    KImageControl* focused = getFocusedControl();
    auto at = std::find(order.begin(), order.end(), focused);
    size_t next = 0;
    if (at != order.end()) {
        size_t index = size_t(at - order.begin());
        next = backwards ? (index + order.size() - 1) % order.size() : (index + 1) % order.size();
    } else if (backwards) {
        next = order.size() - 1;
    }
    if (focused)
        focused->setFocus(false);
    order[next]->setFocus(true, true);
    tellScreenReaders();
}

void ToolPalette::pressFocused()
{
    if (KImageControl* focused = getFocusedControl())
        focused->pressByKey();
}

void ToolPalette::clearFocus()
{
    if (KImageControl* focused = getFocusedControl())
        focused->setFocus(false);
    tellScreenReaders();
}

// Tab and Shift+Tab walk the ring, Space and Return press.
KEventReturn ToolPalette::doKeyDown(KKeyEvent& event)
{
    switch (event.getKeyCode()) {
    case KKeyEvent::Tab:
        focusNext((event.getModifiers() & 1) != 0);
        return 1;
    case KKeyEvent::Return:
    case ' ':
        pressFocused();
        return 1;
    default:
        return 0;
    }
}

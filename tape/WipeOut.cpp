#include "tape/WipeOut.h"

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicDeviceState.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KDirectory.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KLocalizer.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapePage.h"
#include "windowing/KNativeLayer.h"

#include <random>

namespace {

const char* const kEffectNames[WipeOut::kEffectCount] = {
    kTranslatable("Hard Cut"),        kTranslatable("Fade"),      kTranslatable("Zoom In"),
    kTranslatable("Zoom Out"),        kTranslatable("Wipe Left"), kTranslatable("Wipe Right"),
    kTranslatable("Wipe Up"),         kTranslatable("Wipe Down"), kTranslatable("CheckerBoard"),
    kTranslatable("Venetian Blinds"),
};

constexpr int32_t kDefaultSteps = 100;
constexpr int32_t kFadeSteps = 100;
constexpr int32_t kMovingSteps = 120;
constexpr int32_t kCheckerCells = 100;
constexpr int32_t kCheckerSteps = kCheckerCells - 1;
constexpr int32_t kCheckerSwaps = 200;
// "Venetian Blinds" draws two lines of this height a step, this far apart.
constexpr int32_t kBlindHeight = 2;
constexpr int32_t kBlindSpacing = 4;

std::mt19937& randomSource()
{
    static std::mt19937 engine { std::random_device {}() };
    return engine;
}

int32_t randomCell()
{
    std::uniform_int_distribution<int32_t> cells(0, kCheckerCells - 1);
    return cells(randomSource());
}

KGraphicRectangle rectangle(int32_t x, int32_t y, int32_t width, int32_t height)
{
    return KGraphicRectangle(int16_t(x), int16_t(y), int16_t(width), int16_t(height));
}

} // namespace

K_DEFINE_CLASS(WipeOut, TapeGraphicObject)

WipeOut::WipeOut()
    : colour(KColor::Black)
{
    setType(PageTransitionType);
    order.setIsDirect(true);
}

WipeOut::WipeOut(const WipeOut& other)
    : TapeGraphicObject(other)
    , effect(other.effect)
    , background(other.background)
    , colour(other.colour)
    , imageFile(other.imageFile)
    , removesActors(other.removesActors)
{
    setType(PageTransitionType);
    order.setIsDirect(true);
}

WipeOut::~WipeOut() = default;

KThing* WipeOut::deepCopy() const { return new WipeOut(*this); }

void WipeOut::setEffect(int32_t value)
{
    effect = value;
    noteChanged();
}

void WipeOut::setBackground(int32_t value)
{
    background = value;
    noteChanged();
}

void WipeOut::setColour(const KColor& value)
{
    colour = value;
    noteChanged();
}

void WipeOut::setImageFile(const KFileReference& file)
{
    imageFile = file;
    noteChanged();
}

void WipeOut::setRemovesActors(bool value)
{
    removesActors = value;
    noteChanged();
}

KStringBagPtr WipeOut::getEffectNames()
{
    KStringBagPtr names(new KStringBag());
    for (const char* name : kEffectNames)
        names->add(tapeTranslate(name));
    return names;
}

bool WipeOut::hasImageName() const { return !imageFile.getPath().isEmpty(); }

bool WipeOut::usesImage() const { return background == ImageBackground && hasImageName(); }

// --- Persistence -------------------------------------------------------------

void WipeOut::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    TapeGraphicObject::writeToFile(file, version);
    colour.writeToFile(file, version);
    imageFile.writeToFile(file, version);
    file.writeShort(int16_t(effect));
    file.writeShort(int16_t(background));
    file.writeBool(removesActors);
    writer.end();
}

void WipeOut::readFromFile(KFile& file)
{
    auto readMain = [&](int32_t) {
        TapeGraphicObject::readFromFile(file);
        setType(PageTransitionType);
        colour.readFromFile(file);
        imageFile.readFromFile(file);
        effect = file.readShort();
        background = file.readShort();
        removesActors = file.readBool();
    };
    KClassReader::readSections(file, classRecord, { { 1, readMain } });
    noteChanged();
}

void WipeOut::describe(KJsonWriter& out) const
{
    TapeGraphicObject::describe(out);
    out.member("effect", effect);
    out.member("background", background);
    tapeDescribeColour(out, "colour", colour);
    out.objectMember("imageFile", &imageFile);
    out.member("removesActors", removesActors);
}

// --- The finished page -------------------------------------------------------

KGraphicRectangle WipeOut::pageRectangle() const
{
    TapePage* page = getPage();
    return page ? page->getPageBounds() : KGraphicRectangle();
}

void WipeOut::drawOn(KGraphicDevice& device, const KGraphicRectangle&, const KGraphicRectangle& target)
{
    TapeHost& host = TapeHost::get();
    bool image = background == ImageBackground;
    bool blank = image ? host.printingWithoutImageBackgrounds() : host.printingWithoutColourBackgrounds();
    device.setPenMode(KGraphicDeviceState::CopyForeground);
    if (image && !blank) {
        // Stretched to the page, whatever its proportions. A file that
        // cannot be read leaves the page as it was.
        KImagePtr picture(new KImage());
        if (hasImageName())
            picture->createFromPath(imageFile.getNativeText());
        picture->drawIn(device, target);
    } else {
        device.setForeground(blank ? KColor(KColor::White) : colour);
        device.fillRectangle(target);
    }
    if (TapePage* page = getPage())
        page->refresh(target);
}

void WipeOut::drawOnPage()
{
    TapePage* page = getPage();
    if (!page)
        return;
    if (removesActors) {
        getTape()->stopActors();
        getTape()->resetActors();
    }
    KGraphicRectangle whole = page->getPageBounds();
    drawOn(page->getPageDevice(), whole, whole);
    page->refresh(whole);
}

void WipeOut::redrawOver() { }

bool WipeOut::hitTest(const KGraphicPoint&) const { return true; }

// --- Playing ---------------------------------------------------------------------

void WipeOut::startPlaying()
{
    Tape* tape = getTape();
    if (!tape)
        return;
    TapePage* page = getPage();
    if (!page) {
        tape->clearPlayingObject();
        return;
    }
    if (removesActors) {
        tape->stopActors();
        tape->resetActors();
    }
    KGraphicRectangle whole = page->getPageBounds();
    step = 0;
    stepCount = kMovingSteps;
    makeNewPage(whole);
    prepareEffect(page->getPageDevice(), whole);
}

void WipeOut::makeNewPage(const KGraphicRectangle& whole)
{
    newPage = new KAlphaImage();
    newPage->setSize(whole.getSize());
    if (!newPage->hasImage())
        return;
    KGraphicDevice& device = newPage->getDevice();
    if (background == ImageBackground) {
        KImagePtr picture(new KImage());
        if (hasImageName())
            picture->createFromPath(imageFile.getNativeText());
        picture->drawIn(device, whole);
        return;
    }
    device.setPenMode(KGraphicDeviceState::CopyForeground);
    device.setForeground(colour);
    device.fillRectangle(whole);
}

void WipeOut::prepareEffect(KGraphicDevice& device, const KGraphicRectangle& whole)
{
    Tape* tape = getTape();
    switch (effect) {
    case Cut:
        // A cut costs the one tick it started in.
        newPage->drawIn(device, whole);
        getPage()->refresh(whole);
        releasePages();
        tape->clearPlayingObject();
        return;
    case Fade:
        oldPage = new KImage(whole.getSize());
        device.copyTo(oldPage->getDevice(), KGraphicPoint(0, 0));
        newPage->setBlendMode(KAlphaImage::Constant);
        stepCount = kFadeSteps;
        fadeDuration = stepCount * tape->getPlayInterval();
        fadeStart = knsGetTime();
        return;
    case ZoomIn:
    case ZoomOut:
    case WipeLeft:
    case WipeRight:
    case WipeUp:
    case WipeDown:
        stepCount = kMovingSteps;
        return;
    case CheckerBoard:
        shuffleOrder();
        stepCount = kCheckerSteps;
        return;
    case VenetianBlinds:
        stepCount = whole.height / kBlindSpacing;
        return;
    default:
        stepCount = kDefaultSteps;
        return;
    }
}

// The cells in a new random order on every run.
void WipeOut::shuffleOrder()
{
    if (order.getSize() != kCheckerCells) {
        order.clear();
        for (int32_t i = 0; i < kCheckerCells; ++i)
            order.addDirectData(i);
    }
    int32_t* cells = order.getDirectData();
    for (int32_t i = 0; i < kCheckerSwaps; ++i) {
        int32_t a = randomCell();
        int32_t b = randomCell();
        std::swap(cells[a], cells[b]);
    }
}

void WipeOut::playStep()
{
    TapePage* page = getPage();
    if (!page || !newPage) {
        releasePages();
        if (Tape* tape = getTape())
            tape->clearPlayingObject();
        return;
    }
    KGraphicRectangle whole = page->getPageBounds();
    if (effect == Fade)
        drawFadeStep(whole);
    else
        drawStep(whole);
    ++step;
    if (step > stepCount)
        finishEffect(whole);
}

void WipeOut::reveal(const KGraphicRectangle& part)
{
    TapePage* page = getPage();
    KGraphicRectangle visible = part;
    visible.intersectWith(page->getPageBounds());
    if (visible.isEmpty())
        return;
    newPage->drawRegion(page->getPageDevice(), visible, visible);
    page->refresh(visible);
}

// The rectangles of one step; the names of the wipes tell the edge at which
// they begin, and each strip is a pixel wider than its step so that no gap
// stays behind.
void WipeOut::drawStep(const KGraphicRectangle& whole)
{
    int32_t w = whole.width;
    int32_t h = whole.height;
    int32_t s = step;
    int32_t n = stepCount > 0 ? stepCount : 1;
    switch (effect) {
    case ZoomIn: {
        int32_t a = w / (2 * n);
        int32_t b = h / (2 * n);
        // Made in 16 bits, as the strips always were.
        int32_t sa = int16_t(s * a);
        int32_t sb = int16_t(s * b);
        reveal(rectangle(0, sb, w, b + 1));
        reveal(rectangle(0, h - sb, w, b + 1));
        reveal(rectangle(w - sa, 0, a + 1, h));
        reveal(rectangle(sa, 0, a + 1, h));
        return;
    }
    case ZoomOut: {
        int32_t width = s * (w / n) + 1;
        int32_t height = s * (h / n) + 1;
        reveal(rectangle((w - width) / 2, (h - height) / 2, width, height));
        return;
    }
    case WipeLeft:
        reveal(rectangle(s * w / n, 0, w / n + 1, h));
        return;
    case WipeRight:
        reveal(rectangle(w - s * w / n, 0, w / n + 1, h));
        return;
    case WipeUp:
        reveal(rectangle(0, s * h / n, w, h / n + 1));
        return;
    case WipeDown:
        reveal(rectangle(0, h - s * h / n, w, h / n + 1));
        return;
    case CheckerBoard: {
        if (s >= order.getSize())
            return;
        int32_t cellWidth = w / 10 + 1;
        int32_t cellHeight = h / 10 + 1;
        int32_t k = order.getDirectDataAt(s);
        reveal(rectangle(k % 10 * cellWidth, k / 10 * cellHeight, cellWidth, cellHeight));
        return;
    }
    case VenetianBlinds: {
        int32_t bottom = (h / kBlindSpacing) * kBlindSpacing + kBlindHeight;
        reveal(rectangle(0, kBlindSpacing * s, w, kBlindHeight));
        reveal(rectangle(0, bottom - kBlindSpacing * s, w, kBlindHeight));
        return;
    }
    default:
        return;
    }
}

// "Fade" goes by the clock: the new page shows through more as time passes,
// and the step count only bounds the ticks it may take.
void WipeOut::drawFadeStep(const KGraphicRectangle& whole)
{
    TapePage* page = getPage();
    double t = 1.0;
    if (fadeDuration > 0)
        t = double(kTimeDifference(knsGetTime(), fadeStart)) / double(fadeDuration);
    if (t < 0.0)
        t = 0.0;
    if (t >= 1.0) {
        t = 1.0;
        step = stepCount;
    }
    newPage->setTransparency(1.0 - t);
    KGraphicDevice& device = page->getPageDevice();
    if (oldPage)
        oldPage->drawIn(device, whole);
    newPage->drawIn(device, whole);
    page->refresh(whole);
}

void WipeOut::finishEffect(const KGraphicRectangle& whole)
{
    TapePage* page = getPage();
    newPage->setBlendMode(KAlphaImage::Masked);
    newPage->drawRegion(page->getPageDevice(), whole, whole);
    page->refresh(whole);
    releasePages();
    if (Tape* tape = getTape())
        tape->clearPlayingObject();
}

void WipeOut::releasePages()
{
    oldPage.clear();
    newPage.clear();
}

void WipeOut::stopPlaying() { releasePages(); }

// --- Media ---------------------------------------------------------------------

bool WipeOut::findMissingMedia(KDirectory& directory, KDirectory* second)
{
    if (!usesImage() || imageFile.doesExist())
        return false;
    KString name = imageFile.getObjectName();
    for (KDirectory* folder : { &directory, second }) {
        if (!folder)
            continue;
        KFileReference candidate(folder->getPath().getChildFile(name));
        if (candidate.doesExist()) {
            setImageFile(candidate);
            return false;
        }
    }
    KFileReference before(imageFile);
    bool gaveUp = TapeHost::get().findMissingFile(imageFile, directory, second);
    if (!(imageFile.getPath() == before.getPath()))
        noteChanged();
    return gaveUp;
}

void WipeOut::collectMedia(KDirectory& from, KDirectory& to)
{
    if (usesImage())
        TapeHost::get().collectMediaFile(imageFile, from, to);
}

bool WipeOut::replaceMedia(const KFileReference& oldFile, const KFileReference& newFile)
{
    if (!hasImageName() || !(imageFile.getPath() == oldFile.getPath()))
        return false;
    setImageFile(newFile);
    return true;
}

void WipeOut::addMediaName(KStringBag& names)
{
    if (!usesImage())
        return;
    KString name = imageFile.getObjectName();
    if (!names.has(name))
        names.add(name);
}

bool WipeOut::usesMediaNamed(const KString& name) { return usesImage() && imageFile.getObjectName() == name; }

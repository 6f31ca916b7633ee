#include "tape/Stroke.h"

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicDeviceState.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kmultimedia/KBresenham.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapePage.h"
#include "windowing/KTimer.h"

#include <algorithm>
#include <climits>

namespace {

// The points bag grows and starts in steps of a hundred values.
constexpr int32_t kPointsGrowSize = 100;
constexpr int32_t kPointsMinSize = 100;
// The highlight: a white rim of 4 pixels outside a black rim of 2.
constexpr int16_t kHighlightOuter = 8;
constexpr int16_t kHighlightInner = 4;

// Truncation toward zero into 16 bits, a value out of range kept at the
// nearest end.
int16_t clampShort(double value)
{
    if (!(value > SHRT_MIN))
        return SHRT_MIN;
    if (value > SHRT_MAX)
        return SHRT_MAX;
    return int16_t(value);
}

KGraphicRectangle dabSquare(int32_t x, int32_t y, int16_t size)
{
    int32_t half = size / 2;
    return KGraphicRectangle(int16_t(x - half), int16_t(y - half), size, size);
}

// The line stepper of all strokes, made at first use. Lines are stepped one
// at a time, each to its end, so one is enough.
KBresenham& lineStepper()
{
    static KBresenham* stepper = new KBresenham();
    return *stepper;
}

// Takes up to `steps` steps along the line; true when its end was reached.
// The last point delivered is left in x, y.
bool advance(KBresenham& stepper, int32_t steps, int32_t& x, int32_t& y)
{
    for (int32_t i = 0; i < steps; ++i) {
        if (stepper.next(x, y))
            return true;
    }
    return false;
}

// The dabs of a segment lie close together: they are refreshed as one
// rectangle, since every refresh restores the scene under it. The rectangle
// is let go when it would grow past a few brush sizes, so that a long
// diagonal never refreshes the page between its ends.
class DabRefresh {
public:
    DabRefresh(TapePage* page, int16_t size)
        : page(page)
        , limit(std::max(64, 4 * int32_t(size)))
    {
    }
    ~DabRefresh() { flush(); }
    DabRefresh(const DabRefresh&) = delete;
    DabRefresh& operator=(const DabRefresh&) = delete;

    void add(const KGraphicRectangle& dab)
    {
        if (!page)
            return;
        KGraphicRectangle united = pending;
        if (united.isEmpty())
            united = dab;
        else
            united.uniteWith(dab);
        if (united.width > limit || united.height > limit) {
            flush();
            united = dab;
        }
        pending = united;
    }

private:
    void flush()
    {
        if (page && !pending.isEmpty())
            page->refresh(pending);
        pending = KGraphicRectangle();
    }

    TapePage* page;
    int32_t limit;
    KGraphicRectangle pending;
};

} // namespace

K_DEFINE_CLASS(Stroke, TapeGraphicObject)

Stroke::Stroke()
    : colour(KColor::Black)
    , stepTimer(new KTimer())
{
    setType(StrokeType);
    resetPoints();
}

Stroke::Stroke(const Stroke& other)
    : TapeGraphicObject(other)
    , stepTimer(new KTimer())
{
    setType(StrokeType);
    resetPoints();
    const int32_t* data = other.points.getDirectData();
    for (int32_t i = 0; i < other.points.getSize(); ++i)
        points.addDirectData(data[i]);
    brushWidth = other.brushWidth;
    brushHeight = other.brushHeight;
    colour = other.colour;
}

Stroke::~Stroke() { stepTimer->stop(); }

KThing* Stroke::deepCopy() const { return new Stroke(*this); }

void Stroke::resetPoints()
{
    KBag fresh;
    fresh.setIsDirect(true);
    fresh.setGrowSize(kPointsGrowSize);
    fresh.setMinSize(kPointsMinSize);
    points = fresh;
}

int16_t Stroke::xAt(int32_t entry) const { return int16_t(points.getDirectData()[entry]); }

int16_t Stroke::yAt(int32_t entry) const { return int16_t(points.getDirectData()[entry + 1]); }

KGraphicPoint Stroke::getPoint(int32_t index) const
{
    if (index < 0 || index >= getPointCount())
        return KGraphicPoint();
    return KGraphicPoint(xAt(index * 2), yAt(index * 2));
}

void Stroke::setBrushSize(int16_t size)
{
    brushWidth = size;
    brushHeight = size;
    noteChanged();
}

void Stroke::setColour(const KColor& value)
{
    colour = value;
    noteChanged();
}

void Stroke::addPoint(int16_t x, int16_t y)
{
    points.addDirectData(x);
    points.addDirectData(y);
    noteChanged();
}

// --- Persistence -------------------------------------------------------------

void Stroke::writeToFile(KFile& file, int32_t version)
{
    keepBounds(getBounds());
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    TapeGraphicObject::writeToFile(file, version);
    points.writeToFile(file, version);
    file.writeShort(brushWidth);
    file.writeShort(brushHeight);
    colour.writeToFile(file, version);
    writer.end();
}

void Stroke::readFromFile(KFile& file)
{
    KBag read;
    auto readMain = [&](int32_t) {
        TapeGraphicObject::readFromFile(file);
        setType(StrokeType);
        read.readFromFile(file);
        brushWidth = file.readShort();
        brushHeight = file.readShort();
        colour.readFromFile(file);
    };
    KClassReader::readSections(file, classRecord, { { 1, readMain } });
    takePoints(read);
    noteChanged();
}

// The points come into a bag of the stroke's own making, whatever sizes the
// file gave: a bag of objects counts as no points, an odd value at the end
// is dropped.
void Stroke::takePoints(const KBag& read)
{
    resetPoints();
    if (!read.getIsDirect())
        return;
    int32_t count = read.getSize() & ~1;
    const int32_t* data = read.getDirectData();
    for (int32_t i = 0; i < count; ++i)
        points.addDirectData(int16_t(data[i]));
}

void Stroke::describe(KJsonWriter& out) const
{
    TapeGraphicObject::describe(out);
    out.key("points");
    out.beginArray();
    for (int32_t i = 0; i < getPointCount(); ++i) {
        out.beginArray();
        out.value(int32_t(xAt(i * 2)));
        out.value(int32_t(yAt(i * 2)));
        out.endArray();
    }
    out.endArray();
    out.member("brushWidth", int32_t(brushWidth));
    out.member("brushHeight", int32_t(brushHeight));
    tapeDescribeColour(out, "colour", colour);
}

// --- Drawing -------------------------------------------------------------------

void Stroke::drawDabLine(KGraphicDevice& device, const KGraphicPoint& from, const KGraphicPoint& to, int16_t size,
                         TapePage* refresh)
{
    drawDabs(device, from, to, size, refresh, true);
}

void Stroke::drawDabs(KGraphicDevice& device, const KGraphicPoint& from, const KGraphicPoint& to, int16_t size,
                      TapePage* refresh, bool withStart)
{
    KBresenham& stepper = lineStepper();
    stepper.set(from.x, from.y, to.x, to.y);
    DabRefresh refreshed(refresh, size);
    KGraphicRectangle dab = dabSquare(from.x, from.y, size);
    if (withStart) {
        device.fillOval(dab);
        refreshed.add(dab);
    }
    int32_t x = 0;
    int32_t y = 0;
    // The first point the stepper hands out is the start, drawn already.
    if (stepper.next(x, y))
        return;
    int32_t step = std::max(1, size / 8);
    bool arrived = false;
    while (!arrived) {
        arrived = advance(stepper, step, x, y);
        dab = dabSquare(x, y, size);
        device.fillOval(dab);
        refreshed.add(dab);
    }
}

KGraphicRectangle Stroke::dabAround(int32_t x, int32_t y, int16_t width, int16_t height) const
{
    return KGraphicRectangle(int16_t(x - 0.5 * width), int16_t(y - 0.5 * height), width, height);
}

void Stroke::drawWith(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target,
                      const KColor& inColour, int16_t width, int16_t height)
{
    int32_t count = getPointCount();
    if (count == 0)
        return;
    double sx = 1.0;
    double sy = 1.0;
    if (source.width > 0 && source.height > 0) {
        sx = double(target.width) / double(source.width);
        sy = double(target.height) / double(source.height);
    }
    int32_t dx = int32_t(target.x) - source.x;
    int32_t dy = int32_t(target.y) - source.y;
    const int32_t* data = points.getDirectData();
    auto place = [&](int32_t entry) {
        return KGraphicPoint(int16_t(int32_t(int16_t(data[entry]) * sx + dx)),
                             int16_t(int32_t(int16_t(data[entry + 1]) * sy + dy)));
    };

    device.setPenMode(KGraphicDeviceState::CopyForeground);
    device.setForeground(inColour);
    KGraphicPoint previous = place(0);
    device.fillOval(dabAround(previous.x, previous.y, width, height));
    for (int32_t i = 1; i < count; ++i) {
        KGraphicPoint next = place(i * 2);
        // Each line of dabs after the first starts on the dab the one before
        // ended with; drawing it again would change no pixel.
        drawDabs(device, previous, next, width, nullptr, i == 1);
        previous = next;
    }
}

void Stroke::drawOn(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target)
{
    drawWith(device, source, target, colour, brushWidth, brushHeight);
}

void Stroke::drawOnPage()
{
    TapePage* page = getPage();
    if (!page)
        return;
    KGraphicRectangle bounds = getBounds();
    drawOn(page->getPageDevice(), bounds, bounds);
    // An odd brush reaches one pixel past the bounds on the right and below.
    page->refresh(KGraphicRectangle(bounds.x, bounds.y, int16_t(bounds.width + 1), int16_t(bounds.height + 1)));
}

void Stroke::drawHighlighted(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target)
{
    drawWith(device, source, target, KColor(KColor::White), int16_t(brushWidth + kHighlightOuter),
             int16_t(brushHeight + kHighlightOuter));
    drawWith(device, source, target, KColor(KColor::Black), int16_t(brushWidth + kHighlightInner),
             int16_t(brushHeight + kHighlightInner));
    drawWith(device, source, target, colour, brushWidth, brushHeight);
}

// The page is black, so a black stroke wipes the place where it stood.
void Stroke::drawSilhouette(KGraphicDevice& device, const KGraphicRectangle& from, const KGraphicRectangle& to)
{
    drawWith(device, from, to, KColor(KColor::Black), brushWidth, brushHeight);
}

void Stroke::redrawOver() { }

// --- Playing -------------------------------------------------------------------

bool Stroke::stepTimerRanOut() const
{
    return !stepTimer->isRunning() || stepTimer->getElapsed() >= stepTimer->getInterval();
}

void Stroke::restartStepTimer()
{
    stepTimer->stop();
    stepTimer->setRepeat(false);
    if (Tape* tape = getTape())
        stepTimer->setInterval(tape->getPlayInterval());
    stepTimer->start();
}

void Stroke::finishPlaying()
{
    stepTimer->stop();
    TapeHost::get().setWindowColour(KColor(KColor::Black));
    if (Tape* tape = getTape())
        tape->clearPlayingObject();
}

void Stroke::startPlaying()
{
    Tape* tape = getTape();
    if (!tape)
        return;
    if (getPointCount() == 0) {
        tape->clearPlayingObject();
        return;
    }
    lastX = xAt(0);
    lastY = yAt(0);
    KGraphicRectangle dab = dabAround(lastX, lastY, brushWidth, brushHeight);
    TapePage* page = getPage();
    auto drawDab = [&] {
        if (!page)
            return;
        KGraphicDevice& device = page->getPageDevice();
        device.setPenMode(KGraphicDeviceState::CopyForeground);
        device.setForeground(colour);
        device.fillOval(dab);
        page->refresh(dab);
    };
    drawDab();
    playIndex = 0;
    holdTicks = 0;
    restartStepTimer();
    if (getPointCount() == 1) {
        drawDab();
        holdTicks = kSinglePointHold;
    }
}

void Stroke::playStep()
{
    if (!stepTimerRanOut())
        return;
    if (holdTicks <= 0)
        drawNextPiece();
    else if (holdTicks > 1) {
        --holdTicks;
        restartStepTimer();
    } else
        finishPlaying();
}

// One recorded point a tick: the line from where the hand stood to the next
// point. A short stroke lingers a few ticks at its end.
void Stroke::drawNextPiece()
{
    int32_t entries = getPointCount() * 2;
    if (playIndex >= entries) {
        finishPlaying();
        return;
    }
    KGraphicPoint to(xAt(playIndex), yAt(playIndex));
    if (TapePage* page = getPage()) {
        KGraphicDevice& device = page->getPageDevice();
        device.setPenMode(KGraphicDeviceState::CopyForeground);
        device.setForeground(colour);
        drawDabLine(device, KGraphicPoint(int16_t(lastX), int16_t(lastY)), to, brushWidth, page);
    }
    lastX = to.x;
    lastY = to.y;
    playIndex += 2;
    if (playIndex < entries) {
        restartStepTimer();
        return;
    }
    if (entries > kShortStrokeEntries) {
        finishPlaying();
        return;
    }
    holdTicks = int16_t(6 - entries / 2);
    restartStepTimer();
}

// --- Geometry --------------------------------------------------------------------

KGraphicRectangle Stroke::getBounds() const
{
    int32_t count = getPointCount();
    if (count == 0)
        return KGraphicRectangle();
    int32_t left = 9999;
    int32_t top = 9999;
    int32_t right = -9999;
    int32_t bottom = -9999;
    int32_t halfWidth = brushWidth / 2;
    int32_t halfHeight = brushHeight / 2;
    for (int32_t i = 0; i < count; ++i) {
        int32_t x = xAt(i * 2);
        int32_t y = yAt(i * 2);
        left = std::min(left, x - halfWidth);
        right = std::max(right, x + halfWidth);
        top = std::min(top, y - halfHeight);
        bottom = std::max(bottom, y + halfHeight);
    }
    return KGraphicRectangle(int16_t(left), int16_t(top), int16_t(right - left), int16_t(bottom - top));
}

bool Stroke::hitTest(const KGraphicPoint& p) const
{
    int32_t count = getPointCount();
    if (count == 0)
        return false;
    if (dabAround(xAt(0), yAt(0), brushWidth, brushHeight).contains(p))
        return true;
    int32_t step = std::max(1, int32_t(0.125 * std::min(brushWidth, brushHeight)));
    KBresenham& stepper = lineStepper();
    for (int32_t i = 1; i < count; ++i) {
        int32_t endX = xAt(i * 2);
        int32_t endY = yAt(i * 2);
        stepper.set(xAt(i * 2 - 2), yAt(i * 2 - 2), endX, endY);
        if (dabAround(endX, endY, brushWidth, brushHeight).contains(p))
            return true;
        int32_t x = 0;
        int32_t y = 0;
        if (stepper.next(x, y))
            continue;
        bool arrived = false;
        while (!arrived) {
            arrived = advance(stepper, step, x, y);
            if (dabAround(x, y, brushWidth, brushHeight).contains(p))
                return true;
        }
    }
    return false;
}

void Stroke::moveBy(int16_t x, int16_t y)
{
    if (x == 0 && y == 0)
        return;
    int32_t* data = points.getDirectData();
    for (int32_t i = 0; i + 1 < points.getSize(); i += 2) {
        data[i] = int16_t(data[i] + x);
        data[i + 1] = int16_t(data[i + 1] + y);
    }
    noteChanged();
}

void Stroke::scale(double x, double y)
{
    if (x == 1.0 && y == 1.0)
        return;
    KGraphicRectangle bounds = getBounds();
    int32_t cx = bounds.width / 2 + bounds.x;
    int32_t cy = bounds.height / 2 + bounds.y;
    brushWidth = std::max<int16_t>(1, clampShort(brushWidth * x));
    brushHeight = std::max<int16_t>(1, clampShort(brushHeight * y));
    int32_t* data = points.getDirectData();
    for (int32_t i = 0; i + 1 < points.getSize(); i += 2) {
        data[i] = int16_t(clampShort((int16_t(data[i]) - cx) * x) + cx);
        data[i + 1] = int16_t(clampShort((int16_t(data[i + 1]) - cy) * y) + cy);
    }
    noteChanged();
}

void Stroke::scale(double factor) { scale(factor, factor); }

void Stroke::scaleBetween(const KGraphicRectangle& oldBounds, const KGraphicRectangle& newBounds)
{
    if (getPointCount() == 0 || oldBounds.width <= 0 || oldBounds.height <= 0)
        return;
    scale(double(newBounds.width) / double(oldBounds.width), double(newBounds.height) / double(oldBounds.height));
}

void Stroke::mirror(bool horizontal, int16_t centre)
{
    int32_t* data = points.getDirectData();
    int32_t offset = horizontal ? 0 : 1;
    for (int32_t i = offset; i < points.getSize(); i += 2)
        data[i] = int16_t(2 * centre - int16_t(data[i]));
    noteChanged();
}

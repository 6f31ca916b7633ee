#include "graphics/KTextBlockObject.h"

#include "graphics/KGraphicClipGuard.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicStateGuard.h"
#include "graphics/KTextBlock.h"
#include "graphics/KTextStyleRun.h"
#include "graphics/native/KNativeText.h"
#include "graphics/native/KNativeTextLayout.h"
#include "kernel/KClass.h"

#include <algorithm>
#include <cmath>
#include <string>

K_DEFINE_CLASS(KTextBlockObject, KGraphicObject)

namespace {

constexpr double kLargestCoordinate = 32767.0;

// Control characters would break lines or vanish in the layout; a blank
// keeps one character in one place.
const std::string& utf8Of(char c, int32_t charSet)
{
    static const std::string blank(" ");
    auto byte = static_cast<unsigned char>(c);
    if ((byte < 0x20 && byte != '\t') || byte == 0x7F)
        return blank;
    return kGraphicsCharToUtf8(byte, charSet);
}

KNativeTextLayout::Alignment nativeAlignment(int16_t alignment)
{
    switch (alignment) {
    case KTextBlock::AlignCentre:
        return KNativeTextLayout::Alignment::Centre;
    case KTextBlock::AlignRight:
        return KNativeTextLayout::Alignment::Right;
    case KTextBlock::AlignJustify:
        return KNativeTextLayout::Alignment::Justify;
    default:
        return KNativeTextLayout::Alignment::Left;
    }
}

int32_t coordinate(double value) { return int32_t(std::clamp(value, -kLargestCoordinate, kLargestCoordinate)); }

// The pixels a box of the layout touches once placed: rounded outwards.
KWideRectangle pixelsOf(double x, double y, double width, double height)
{
    int32_t left = coordinate(std::floor(x));
    int32_t top = coordinate(std::floor(y));
    int32_t right = coordinate(std::ceil(x + width));
    int32_t bottom = coordinate(std::ceil(y + height));
    return KWideRectangle(left, top, right - left, bottom - top);
}

} // namespace

KTextBlockObject::KTextBlockObject()
    : block(new KTextBlock())
{
}

KTextBlockObject::KTextBlockObject(const KTextBlock& block)
    : block(new KTextBlock(block))
{
}

KTextBlockObject::~KTextBlockObject() = default;

KThing* KTextBlockObject::deepCopy() const
{
    auto* copy = new KTextBlockObject(*block);
    copy->width = width;
    copy->singleLineMode = singleLineMode;
    copy->useTextColour = useTextColour;
    copy->textColour = textColour;
    copy->selectionStart = selectionStart;
    copy->selectionLength = selectionLength;
    copy->selectionColour = selectionColour;
    return copy;
}

// --- Text and settings ---------------------------------------------------------

void KTextBlockObject::changed() { laidOut = false; }

void KTextBlockObject::setTextBlock(const KTextBlock& value)
{
    block = new KTextBlock(value);
    setSelection(selectionStart, selectionLength);
    changed();
}

const KTextBlock& KTextBlockObject::getTextBlock() const { return *block; }

void KTextBlockObject::setWidth(int32_t value)
{
    value = std::clamp(value, 0, int32_t(kLargestCoordinate));
    if (value != width) {
        width = value;
        changed();
    }
}

void KTextBlockObject::setSingleLineMode(int32_t mode) { singleLineMode = mode; }

void KTextBlockObject::setTextColour(const KColor& colour)
{
    useTextColour = true;
    textColour = colour;
    changed();
}

void KTextBlockObject::clearTextColour()
{
    if (useTextColour) {
        useTextColour = false;
        changed();
    }
}

void KTextBlockObject::setSelection(int32_t start, int32_t length)
{
    int32_t end = block->getLength();
    selectionStart = std::clamp(start, 0, end);
    selectionLength = std::clamp(length, 0, end - selectionStart);
}

void KTextBlockObject::clearSelection()
{
    selectionStart = 0;
    selectionLength = 0;
}

// --- Layout --------------------------------------------------------------------

void KTextBlockObject::layout() { buildLayout(); }

void KTextBlockObject::ensureLaidOut() const
{
    if (!laidOut)
        buildLayout();
}

// The block's lines joined by "\n" as UTF-8, each run a span of its own.
// The last run of a line also covers the line's break, and the block's very
// last run everything behind it, so that an empty line is as high as its
// style says.
void KTextBlockObject::buildLayout() const
{
    std::string utf8;
    std::vector<KNativeTextSpan> spans;
    byteOfChar.clear();
    int32_t lineCount = block->getLineCount();
    for (int32_t i = 0; i < lineCount; ++i) {
        const KTextLine& line = *block->getLine(i);
        const KString& text = line.getText();
        int32_t lineStart = int32_t(byteOfChar.size());
        for (int32_t c = 0; c < text.getLength(); ++c) {
            byteOfChar.push_back(int32_t(utf8.size()));
            utf8 += utf8Of(text.charAt(c), text.getCharSet());
        }
        byteOfChar.push_back(int32_t(utf8.size()));
        bool lastLine = i == lineCount - 1;
        if (!lastLine)
            utf8 += '\n';
        int32_t runStart = lineStart;
        for (int32_t r = 0; r < line.getStyleRunCount(); ++r) {
            const KTextStyleRun& run = *line.getStyleRun(r);
            int32_t runEnd = std::min(runStart + run.getLength(), lineStart + text.getLength());
            KNativeTextSpan span;
            span.startByte = byteOfChar[size_t(runStart)];
            span.endByte = byteOfChar[size_t(runEnd)];
            if (r == line.getStyleRunCount() - 1)
                span.endByte = lastLine ? -1 : span.endByte + 1;
            span.font = run.getFont().getNativeFont();
            span.face = run.getFont().getFace();
            span.colour = (useTextColour ? textColour : run.getColour()).getNative();
            spans.push_back(span);
            runStart = runEnd;
        }
    }
    if (!native)
        native = std::make_unique<KNativeTextLayout>();
    native->setText(utf8, spans);
    native->setWidth(width);
    native->setAlignment(nativeAlignment(block->getAlignment()));
    double laidOutWidth = width > 0 ? width : std::ceil(native->getWidth());
    layoutBounds.set(0, 0, int16_t(coordinate(laidOutWidth)), int16_t(coordinate(std::ceil(native->getHeight()))));
    laidOut = true;
}

int32_t KTextBlockObject::getHeight() const
{
    ensureLaidOut();
    return layoutBounds.height;
}

KGraphicRectangle KTextBlockObject::getBounds() const
{
    ensureLaidOut();
    return layoutBounds;
}

int32_t KTextBlockObject::charAtByte(int32_t byte) const
{
    auto after = std::upper_bound(byteOfChar.begin(), byteOfChar.end(), byte);
    return std::max(int32_t(after - byteOfChar.begin()) - 1, 0);
}

std::vector<int32_t> KTextBlockObject::getLineStarts() const
{
    ensureLaidOut();
    std::vector<int32_t> starts;
    for (int32_t byte : native->getLineStarts())
        starts.push_back(charAtByte(byte));
    return starts;
}

// --- Geometry ------------------------------------------------------------------

std::vector<KWideRectangle> KTextBlockObject::boxesAt(int32_t start, int32_t length, const Placement& at) const
{
    ensureLaidOut();
    std::vector<KWideRectangle> boxes;
    int32_t first = std::clamp(start, 0, textLength());
    int32_t end = std::clamp<int64_t>(int64_t(start) + std::max(length, 0), first, textLength());
    if (first >= end)
        return boxes;
    bool toEdge = singleLineMode != SingleLineMarks;
    for (const KNativeTextBox& box :
         native->getRangeBoxes(byteOfChar[size_t(first)], byteOfChar[size_t(end)], toEdge)) {
        KWideRectangle r = pixelsOf(at.x + box.x * at.scaleX, at.y + box.y * at.scaleY, box.width * at.scaleX,
                                    box.height * at.scaleY);
        if (!r.isEmpty())
            boxes.push_back(r);
    }
    return boxes;
}

std::vector<KWideRectangle> KTextBlockObject::getCharacterBoxes(int32_t start, int32_t length) const
{
    return boxesAt(start, length, Placement());
}

std::vector<KWideRectangle> KTextBlockObject::getCharacterBoxes(int32_t start, int32_t length,
                                                                const KGraphicRectangle& target) const
{
    std::vector<KWideRectangle> boxes;
    for (KWideRectangle box : boxesAt(start, length, placementIn(target))) {
        box.intersectWith(target.toWide());
        if (!box.isEmpty())
            boxes.push_back(box);
    }
    return boxes;
}

int32_t KTextBlockObject::getCharPositionAt(const KWidePoint& p) const
{
    ensureLaidOut();
    bool trailing = false;
    int32_t pos = charAtByte(native->getIndexAt(p.x, p.y, trailing));
    return std::min(pos + (trailing ? 1 : 0), textLength());
}

KWideRectangle KTextBlockObject::getCursorBox(int32_t pos) const
{
    ensureLaidOut();
    pos = std::clamp(pos, 0, textLength());
    KNativeTextBox box = native->getCursorBox(byteOfChar[size_t(pos)]);
    KWideRectangle r = pixelsOf(box.x, box.y, 0.0, box.height);
    r.width = 1;
    return r;
}

// --- Drawing -------------------------------------------------------------------

KTextBlockObject::Placement KTextBlockObject::placementIn(const KGraphicRectangle& target) const
{
    ensureLaidOut();
    double scale = double(target.width) / std::max<int32_t>(layoutBounds.width, 1);
    return { double(target.x), double(target.y), scale, scale };
}

void KTextBlockObject::drawIn(KGraphicDevice& device, const KGraphicRectangle& target)
{
    paint(device, placementIn(target), target);
}

void KTextBlockObject::drawRegion(KGraphicDevice& device, const KGraphicRectangle& source,
                                  const KGraphicRectangle& target)
{
    if (source.isEmpty())
        return;
    Placement at;
    at.scaleX = double(target.width) / source.width;
    at.scaleY = double(target.height) / source.height;
    at.x = target.x - source.x * at.scaleX;
    at.y = target.y - source.y * at.scaleY;
    paint(device, at, target);
}

void KTextBlockObject::drawAt(KGraphicDevice& device, const KGraphicPoint& p)
{
    ensureLaidOut();
    Placement at;
    at.x = p.x;
    at.y = p.y;
    paint(device, at, KGraphicRectangle(p, layoutBounds.getSize()));
}

// The mark first, in whole pixels, then the text over it, both cut to the
// rectangle.
void KTextBlockObject::paint(KGraphicDevice& device, const Placement& at, const KGraphicRectangle& clip)
{
    if (clip.isEmpty() || !(at.scaleX > 0.0) || !(at.scaleY > 0.0))
        return;
    ensureLaidOut();
    KGraphicClipGuard clipGuard(device);
    device.intersectClip(clip);
    if (hasSelection()) {
        KGraphicStateGuard stateGuard(device);
        device.setPenMode(KGraphicDeviceState::CopyForeground);
        device.setForeground(selectionColour);
        for (KWideRectangle box : boxesAt(selectionStart, selectionLength, at)) {
            box.intersectWith(clip.toWide());
            if (!box.isEmpty())
                device.fillRectangle(
                    KGraphicRectangle(int16_t(box.x), int16_t(box.y), int16_t(box.width), int16_t(box.height)));
        }
    }
    device.drawTextLayout(*native, at.x, at.y, at.scaleX, at.scaleY, clip.toWide());
}

#include "tape/TapePreview.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicStateGuard.h"
#include "kernel/KClass.h"
#include "tape/Tape.h"
#include "tape/TapeObject.h"
#include "tape/TapePreviewStage.h"
#include <algorithm>

K_DEFINE_CLASS(TapePreview, KThing)

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

bool isPageTransition(const TapeObject* element) { return element && element->getType() == PageTransitionType; }

} // namespace

TapePreview::TapePreview()
{
    workPage = new KImage(KGraphicSize(640, 480));
    scratchPage = new KImage(KGraphicSize(640, 480));
    thumbnail = new KImage(KGraphicSize(kThumbnailWidth, kThumbnailHeight));
}

TapePreview::~TapePreview() = default;

void TapePreview::setTape(Tape* newTape)
{
    tape = newTape;
    thumbnails.clear();
    lastDone = -1;
    if (actorStage)
        actorStage->clear();
    requestUpdate();
}

void TapePreview::requestUpdate()
{
    state = Survey;
    if (onIdleList)
        onIdleList(*this, tape != nullptr);
}

void TapePreview::setState(int32_t next) { state = next; }

double TapePreview::getStateMilliseconds(int32_t which) const
{
    return which >= 0 && which < 6 ? stateMilliseconds[which] : 0.0;
}

bool TapePreview::step()
{
    if (!tape || state == Finished)
        return false;
    Clock::time_point start = Clock::now();
    int32_t current = state;
    switch (current) {
    case Survey:
        survey();
        break;
    case DrawElement:
        drawNextElement();
        break;
    case ComposeActors:
        composeActors();
        break;
    case Downscale:
        downscale();
        break;
    case Store:
        store();
        break;
    default:
        break;
    }
    stateMilliseconds[current] += millisecondsSince(start);
    if (state == Finished && onIdleList)
        onIdleList(*this, false);
    return state != Finished;
}

void TapePreview::runSlice(double milliseconds)
{
    Clock::time_point start = Clock::now();
    while (step() && millisecondsSince(start) < milliseconds) { }
}

void TapePreview::idle() { runSlice(kSliceMilliseconds); }

void TapePreview::writeAll(const std::function<void(int32_t done, int32_t count)>& report)
{
    requestUpdate();
    while (step()) {
        if (report && state == Survey)
            report(firstInvalid, tape->getCount());
    }
}

// State 0: where the work starts, and how much is left.
void TapePreview::survey()
{
    int32_t count = tape->getCount();
    int32_t invalid = 0;
    int32_t lastTransition = 0;
    firstInvalid = -1;
    for (int32_t i = 0; i < count; ++i) {
        TapeObject* element = tape->getAt(i);
        bool valid = element && element->isPreviewValid();
        if (firstInvalid < 0 && isPageTransition(element) && i > 0)
            lastTransition = i;
        if (!valid) {
            if (firstInvalid < 0)
                firstInvalid = i;
            ++invalid;
        }
    }
    if (thumbnails.size() != size_t(count) + 1)
        thumbnails.resize(size_t(count) + 1);
    if (progress)
        progress(invalid, count);
    if (invalid == 0) {
        setState(Finished);
        return;
    }
    if (lastDone != -1 && lastDone == firstInvalid - 1) {
        nextIndex = firstInvalid;
    } else {
        nextIndex = lastTransition;
        startPage();
    }
    setState(DrawElement);
}

// A new page of the tape's size, black like the page of a story.
void TapePreview::startPage()
{
    ensureImages();
    KGraphicSize size = tape->getPageSize();
    KGraphicDevice& device = workPage->getDevice();
    KGraphicStateGuard guard(device);
    device.setPenMode(KGraphicDeviceState::CopyForeground);
    device.fillRectangle(KGraphicRectangle(0, 0, size.width, size.height), KColor(KColor::Black));
    if (actorStage)
        actorStage->clear();
}

void TapePreview::ensureImages()
{
    KGraphicSize size = tape->getPageSize();
    if (size.width <= 0 || size.height <= 0)
        size = KGraphicSize(640, 480);
    if (workPage->getSize() != size) {
        workPage = new KImage(size);
        scratchPage = new KImage(size);
    }
}

// State 1: the next element goes on the work page; actor elements only move
// the stage's record, since actors are never part of the page.
void TapePreview::drawNextElement()
{
    if (nextIndex >= tape->getCount()) {
        setState(Survey);
        return;
    }
    TapeObject* element = tape->getAt(nextIndex);
    if (element && element->isActive()) {
        int32_t type = element->getType();
        if (type != ActorActionType && type != ActorMotionType) {
            KGraphicSize size = workPage->getSize();
            KGraphicRectangle page(0, 0, size.width, size.height);
            element->drawOn(workPage->getDevice(), page, page);
            ++elementsDrawn;
        }
        if (actorStage)
            actorStage->apply(*tape, *element);
    }
    if (nextIndex != firstInvalid)
        ++nextIndex;
    else
        setState(ComposeActors);
}

// State 2: the actors over a copy of the page.
void TapePreview::composeActors()
{
    if (nextIndex >= tape->getCount()) {
        setState(Survey);
        return;
    }
    KGraphicSize size = workPage->getSize();
    KGraphicRectangle page(0, 0, size.width, size.height);
    workPage->getDevice().copyTo(scratchPage->getDevice(), page, page);
    if (actorStage)
        actorStage->drawOn(*tape, scratchPage->getDevice(), page);
    setState(Downscale);
}

KGraphicRectangle TapePreview::letterbox(const KGraphicSize& size)
{
    if (size.width <= 0 || size.height <= 0)
        return KGraphicRectangle(0, 0, kThumbnailWidth, kThumbnailHeight);
    // Widths and heights compared as cross products, so 4:3 pages of any
    // size fill the thumbnail exactly.
    int64_t wide = int64_t(size.width) * kThumbnailHeight;
    int64_t tall = int64_t(size.height) * kThumbnailWidth;
    if (wide == tall)
        return KGraphicRectangle(0, 0, kThumbnailWidth, kThumbnailHeight);
    if (wide > tall) {
        int32_t height
            = std::max<int32_t>(1, int32_t((int64_t(size.height) * kThumbnailWidth + size.width / 2) / size.width));
        return KGraphicRectangle(0, int16_t((kThumbnailHeight - height) / 2), kThumbnailWidth, int16_t(height));
    }
    int32_t width
        = std::max<int32_t>(1, int32_t((int64_t(size.width) * kThumbnailHeight + size.height / 2) / size.height));
    return KGraphicRectangle(int16_t((kThumbnailWidth - width) / 2), 0, int16_t(width), kThumbnailHeight);
}

// State 3: the page shrunk into the thumbnail, black around a page that is
// not 4:3.
void TapePreview::downscale()
{
    KGraphicDevice& device = thumbnail->getDevice();
    KGraphicRectangle whole(0, 0, kThumbnailWidth, kThumbnailHeight);
    KGraphicRectangle fitted = letterbox(scratchPage->getSize());
    if (fitted != whole) {
        KGraphicStateGuard guard(device);
        device.setPenMode(KGraphicDeviceState::CopyForeground);
        device.fillRectangle(whole, KColor(KColor::Black));
    }
    scratchPage->drawIn(device, fitted);
    setState(Store);
}

// State 4: the thumbnail is kept for the position after the element.
void TapePreview::store()
{
    size_t slot = size_t(firstInvalid) + 1;
    if (slot >= thumbnails.size())
        thumbnails.resize(slot + 1);
    KImagePtr kept(new KImage(KGraphicSize(kThumbnailWidth, kThumbnailHeight)));
    KGraphicRectangle whole(0, 0, kThumbnailWidth, kThumbnailHeight);
    thumbnail->getDevice().copyTo(kept->getDevice(), whole, whole);
    thumbnails[slot] = kept;
    if (TapeObject* element = tape->getAt(firstInvalid))
        element->setPreviewValid(true);
    lastDone = firstInvalid;
    setState(Survey);
}

KImage* TapePreview::getThumbnail(int32_t p) const
{
    if (!tape || p < 1 || p > tape->getCount() || size_t(p) >= thumbnails.size())
        return nullptr;
    TapeObject* element = tape->getAt(p - 1);
    if (!element || !element->isPreviewValid())
        return nullptr;
    return thumbnails[size_t(p)].get();
}

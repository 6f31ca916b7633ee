#include "tape/TapeObject.h"

#include "graphics/KAlphaImage.h"
#include "graphics/KGraphicDevice.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"

namespace {

const char* const kTypeNames[] = {
    "None",        "Wait",  "Stroke", "Text",  "Speech", "Pause", "Sound", "Page Transition",
    "Relay Macro", "Movie", "Image",  "Actor",
};
constexpr int32_t kTypeNameCount = int32_t(sizeof(kTypeNames) / sizeof(kTypeNames[0]));

// The icons of the types are the bitmaps after this one; it is their mask.
constexpr int16_t kTypeIconMask = 24000;
constexpr int16_t kTypeIconBase = 24001;
// The icon stands this far from the right and the top edge.
constexpr int16_t kTypeIconMargin = 16;

uint64_t gNextSerial = 1;

} // namespace

K_DEFINE_ABSTRACT_CLASS(TapeObject, KThing)

TapeObject::TapeObject()
    : serial(gNextSerial++)
{
}

TapeObject::TapeObject(const TapeObject& other)
    : KThing(other)
    , serial(gNextSerial++)
{
    copyFrom(other);
}

TapeObject::~TapeObject() = default;

void TapeObject::copyFrom(const TapeObject& other)
{
    type = other.type;
    active = other.active;
    bookmark = other.bookmark;
    noteChanged();
}

void TapeObject::noteChanged() { ++revision; }

bool TapeObject::getTapeAsPtr(TapePtr& out) const
{
    out = tape;
    return tape != nullptr;
}

TapePage* TapeObject::getPage() const { return tape ? tape->getSpriteSystem() : nullptr; }

KString TapeObject::getTypeName(int32_t typeNumber)
{
    if (typeNumber < 0 || typeNumber >= kTypeNameCount) {
        KErrorHandler::raiseError(KError::IndexOutOfRange);
        return KString();
    }
    return KString(kTypeNames[typeNumber]);
}

void TapeObject::activate()
{
    if (active)
        return;
    active = true;
    noteChanged();
}

void TapeObject::deactivate()
{
    if (!active)
        return;
    active = false;
    noteChanged();
}

void TapeObject::setBookmark(const KString& text) { bookmark = text; }

void TapeObject::clearBookmark() { bookmark.clear(); }

void TapeObject::invalidatePreview()
{
    previewValid = false;
    previewToken = 0;
}

void TapeObject::setPreviewValid(bool valid)
{
    if (valid) {
        previewValid = true;
        return;
    }
    invalidatePreview();
}

// --- Persistence -------------------------------------------------------------

void TapeObject::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeShort(int16_t(type));
    file.writeBool(active);
    bookmark.writeToFile(file, version);
    writer.end();
}

void TapeObject::readFromFile(KFile& file)
{
    auto readMain = [&](int32_t) {
        type = file.readShort();
        active = file.readBool();
        bookmark.readFromFile(file);
    };
    KClassReader::readSections(file, classRecord, { { 1, readMain } });
    noteChanged();
}

void TapeObject::describe(KJsonWriter& out) const
{
    out.member("type", type);
    out.member("active", active);
    out.member("bookmark", bookmark);
}

// --- The operations the tape uses ------------------------------------------

void TapeObject::setTape(Tape& owner) { tape = &owner; }

void TapeObject::clearTape() { tape = nullptr; }

void TapeObject::startPlaying() { }

void TapeObject::playStep() { }

void TapeObject::stopPlaying() { }

void TapeObject::drawOnPage() { }

void TapeObject::drawOn(KGraphicDevice&, const KGraphicRectangle&, const KGraphicRectangle&) { }

void TapeObject::drawHighlighted(KGraphicDevice& device, const KGraphicRectangle&, const KGraphicRectangle&)
{
    KAlphaImagePtr icon(new KAlphaImage());
    TapeHost& host = TapeHost::get();
    if (!host.loadBitmapResource(int16_t(kTypeIconBase + type), *icon))
        return;
    KImagePtr mask(new KImage());
    if (host.loadBitmapResource(kTypeIconMask, *mask))
        icon->setMask(*mask);
    KGraphicSize size = icon->getSize();
    int32_t x = device.getBounds().getRight() - kTypeIconMargin - size.width;
    icon->drawAt(device, KGraphicPoint(int16_t(x), kTypeIconMargin));
}

void TapeObject::drawSilhouette(KGraphicDevice&, const KGraphicRectangle&, const KGraphicRectangle&) { }

void TapeObject::mirror(bool, int16_t) { }

void TapeObject::redrawOver() { drawOnPage(); }

void TapeObject::scale(double, double) { }

void TapeObject::scale(double) { }

void TapeObject::scaleBetween(const KGraphicRectangle&, const KGraphicRectangle&) { }

void TapeObject::moveBy(int16_t, int16_t) { }

KGraphicRectangle TapeObject::getBounds() const { return KGraphicRectangle(); }

bool TapeObject::findMissingMedia(KDirectory&, KDirectory*) { return false; }

void TapeObject::collectMedia(KDirectory&, KDirectory&) { }

bool TapeObject::replaceMedia(const KFileReference&, const KFileReference&) { return false; }

void TapeObject::addMediaName(KStringBag&) { }

bool TapeObject::usesMediaNamed(const KString&) { return false; }

KEventReturn TapeObject::handleKeyDown(KKeyEvent&) { return 0; }

KEventReturn TapeObject::handleMouseMoved(KMouseEvent&) { return 0; }

KEventReturn TapeObject::handleMouseDown(KMouseEvent&) { return 0; }

KEventReturn TapeObject::handleMouseUp(KMouseEvent&) { return 0; }

KEventReturn TapeObject::handleMouseDragged(KMouseEvent&) { return 0; }

// An actor motion takes the entry behind the five actions; an action picks
// its own by its number.
int32_t TapeObject::getToolEntry() const { return type == ActorMotionType ? type + 5 : type; }

const KString& TapeObject::getActorName() const
{
    static const KString none;
    return none;
}

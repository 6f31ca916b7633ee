#include "tape/TapeGraphicObject.h"

#include "graphics/KColor.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicDeviceState.h"
#include "graphics/KGraphicStateGuard.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "tape/TapePage.h"

namespace {

// The rectangle the plain graphic elements draw into: the page of the
// first documents, whatever the project's page size is now.
const KGraphicRectangle kClassicPage(0, 0, 640, 480);

} // namespace

K_DEFINE_ABSTRACT_CLASS(TapeGraphicObject, TapeObject)

TapeGraphicObject::TapeGraphicObject() = default;

TapeGraphicObject::TapeGraphicObject(const TapeGraphicObject& other)
    : TapeObject(other)
    , bounds(other.bounds)
{
}

TapeGraphicObject::~TapeGraphicObject() = default;

void TapeGraphicObject::copyFrom(const TapeGraphicObject& other)
{
    TapeObject::copyFrom(other);
    bounds = other.bounds;
}

void TapeGraphicObject::setBounds(const KGraphicRectangle& value)
{
    bounds = value;
    noteChanged();
}

KGraphicRectangle TapeGraphicObject::getBounds() const { return bounds; }

bool TapeGraphicObject::hitTest(const KGraphicPoint& p) const { return getBounds().contains(p); }

void TapeGraphicObject::drawOnPage()
{
    TapePage* page = getPage();
    if (!page)
        return;
    drawOn(page->getPageDevice(), kClassicPage, kClassicPage);
    page->refresh(kClassicPage);
}

void TapeGraphicObject::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    TapeObject::writeToFile(file, version);
    bounds.writeToFile(file, version);
    writer.end();
}

void TapeGraphicObject::describe(KJsonWriter& out) const
{
    TapeObject::describe(out);
    tapeDescribeRectangle(out, "bounds", bounds);
}

void tapeDescribeRectangle(KJsonWriter& out, const char* name, const KGraphicRectangle& r)
{
    out.key(name);
    out.beginArray();
    for (int32_t value : { int32_t(r.x), int32_t(r.y), int32_t(r.width), int32_t(r.height) })
        out.value(value);
    out.endArray();
}

void tapeDescribeColour(KJsonWriter& out, const char* name, const KColor& colour)
{
    out.key(name);
    out.beginArray();
    for (int32_t value : { int32_t(colour.red), int32_t(colour.green), int32_t(colour.blue) })
        out.value(value);
    out.value(colour.transparency);
    out.endArray();
}

void TapeGraphicObject::readFromFile(KFile& file)
{
    auto readMain = [&](int32_t) {
        TapeObject::readFromFile(file);
        bounds.readFromFile(file);
    };
    KClassReader::readSections(file, classRecord, { { 1, readMain } });
    noteChanged();
}

KGraphicRectangle TapeGraphicObject::movedLike(const KGraphicRectangle& rectangle, const KGraphicRectangle& from,
                                               const KGraphicRectangle& to)
{
    KGraphicRectangle moved = rectangle;
    moved.offset(int16_t(to.x - from.x), int16_t(to.y - from.y));
    return moved;
}

void TapeGraphicObject::fillBlack(KGraphicDevice& device, const KGraphicRectangle& area)
{
    KGraphicStateGuard guard(device);
    device.setPenMode(KGraphicDeviceState::CopyForeground);
    device.fillRectangle(area, KColor(KColor::Black));
}

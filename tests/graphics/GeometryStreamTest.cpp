#include "graphics/KColor.h"
#include "graphics/KFont.h"
#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicRegion.h"
#include "graphics/KGraphicSize.h"
#include "graphics/KWidePoint.h"
#include "graphics/KWideRectangle.h"
#include "graphics/KWideSize.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KErrorHandler.h"
#include "tests/graphics/GraphicsTestSupport.h"
#include "tests/graphics/StreamTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

using GeometryStream = GraphicsTest;

namespace {

uint32_t idOf(const KClass* cls) { return uint32_t(cls->getClassID()); }

// Writes the object, reads the bytes back into `out`, and tells whether the
// read consumed exactly what was written.
template<class T>
bool roundTrip(T& object, T& out)
{
    std::vector<uint8_t> bytes = streams::of(object);
    KFile in;
    streams::openOver(in, bytes);
    bool read = out.readRecord(in);
    return read && in.getError() == 0 && in.getPosition() == int32_t(bytes.size());
}

std::vector<std::string>& shownMessages()
{
    static std::vector<std::string> texts;
    return texts;
}

void noteMessage(const char* text, const char*, int32_t) { shownMessages().push_back(text); }

} // namespace

TEST_F(GeometryStream, PointRectangleAndColourAreLaidOutToTheByte)
{
    KGraphicPoint point(3, -2);
    std::vector<uint8_t> expectedPoint;
    streams::appendLongs(expectedPoint, { idOf(KGraphicPoint::classRecord), 1, 12, 1, 1, 12 });
    streams::appendShorts(expectedPoint, { 0x0003, 0xFFFE });
    EXPECT_EQ(streams::of(point), expectedPoint);

    // A rectangle holds its origin and then its size as whole records.
    KGraphicRectangle rectangle(3, -2, 300, 40);
    std::vector<uint8_t> expectedRectangle;
    streams::appendLongs(expectedRectangle, { idOf(KGraphicRectangle::classRecord), 1, 64, 1, 1, 64 });
    streams::append(expectedRectangle, expectedPoint);
    streams::appendLongs(expectedRectangle, { idOf(KGraphicSize::classRecord), 1, 12, 1, 1, 12 });
    streams::appendShorts(expectedRectangle, { 300, 40 });
    EXPECT_EQ(streams::of(rectangle), expectedRectangle);

    KColor colour(0x1234, 0x5678, 0x9ABC, 0.5);
    std::vector<uint8_t> expectedColour;
    streams::appendLongs(expectedColour, { idOf(KColor::classRecord), 1, 22, 1, 1, 22 });
    streams::appendShorts(expectedColour, { 0x1234, 0x5678, 0x9ABC });
    streams::appendLongs(expectedColour, { 0x3FE00000, 0 });
    EXPECT_EQ(streams::of(colour), expectedColour);
}

// The 32-bit classes store the same frames as the 16-bit ones, every
// coordinate in 4 bytes; each class keeps the id of its own name.
TEST_F(GeometryStream, WideValuesAreLaidOutToTheByte)
{
    for (const KClass* cls : { KGraphicPoint::classRecord, KGraphicSize::classRecord, KGraphicRectangle::classRecord,
                               KWidePoint::classRecord, KWideSize::classRecord, KWideRectangle::classRecord })
        EXPECT_EQ(cls->getClassID(), KClass::computeClassID(cls->getName())) << cls->getName();
    EXPECT_STREQ(KWideSize().getClass()->getName(), "KWideSize");

    KWidePoint point(70000, -2);
    std::vector<uint8_t> expectedPoint;
    streams::appendLongs(expectedPoint, { idOf(KWidePoint::classRecord), 1, 16, 1, 1, 16, 70000, 0xFFFFFFFE });
    EXPECT_EQ(streams::of(point), expectedPoint);

    KWideSize size(0x12345678, 0);
    std::vector<uint8_t> expectedSize;
    streams::appendLongs(expectedSize, { idOf(KWideSize::classRecord), 1, 16, 1, 1, 16, 0x12345678, 0 });
    EXPECT_EQ(streams::of(size), expectedSize);

    KWideRectangle rectangle(point.getX(), point.getY(), size.getWidth(), size.getHeight());
    std::vector<uint8_t> expectedRectangle;
    streams::appendLongs(expectedRectangle, { idOf(KWideRectangle::classRecord), 1, 72, 1, 1, 72 });
    streams::append(expectedRectangle, expectedPoint);
    streams::append(expectedRectangle, expectedSize);
    EXPECT_EQ(streams::of(rectangle), expectedRectangle);

    // A 16-bit record is not a 32-bit one: the wide point stays as it was.
    KWidePoint untouched(1, 2);
    KFile in;
    KGraphicPoint narrow(3, 4);
    streams::openOver(in, streams::of(narrow));
    EXPECT_FALSE(untouched.readRecord(in));
    EXPECT_EQ(untouched, KWidePoint(1, 2));
}

TEST_F(GeometryStream, EveryValueClassReadsBackWhatItWrote)
{
    KGraphicPoint point(-32768, 32767), readPoint;
    EXPECT_TRUE(roundTrip(point, readPoint));
    EXPECT_EQ(readPoint, point);
    KGraphicSize size(0, -5), readSize;
    EXPECT_TRUE(roundTrip(size, readSize));
    EXPECT_EQ(readSize, size);
    KGraphicRectangle rectangle(-7, 9, 1024, 768), readRectangle;
    EXPECT_TRUE(roundTrip(rectangle, readRectangle));
    EXPECT_EQ(readRectangle, rectangle);

    KWidePoint widePoint(std::numeric_limits<int32_t>::min(), 70000), readWidePoint;
    EXPECT_TRUE(roundTrip(widePoint, readWidePoint));
    EXPECT_EQ(readWidePoint, widePoint);
    KWideSize wideSize(100000, 3), readWideSize;
    EXPECT_TRUE(roundTrip(wideSize, readWideSize));
    EXPECT_EQ(readWideSize, wideSize);
    KWideRectangle wideRectangle(-100000, 5, 200000, 40000), readWideRectangle;
    EXPECT_TRUE(roundTrip(wideRectangle, readWideRectangle));
    EXPECT_EQ(readWideRectangle, wideRectangle);
    EXPECT_EQ(streams::of(wideRectangle).size(), 88u);

    // The stored channels are the whole 16 bits, not the device's 8.
    for (int32_t named : { int32_t(KColor::Transparent), int32_t(KColor::LightGrey), int32_t(KColor::MiddleGrey) }) {
        KColor colour(named), readColour;
        EXPECT_TRUE(roundTrip(colour, readColour));
        EXPECT_EQ(readColour, colour);
    }
    KColor odd(0x00FF, 0x0101, 0xFFFE, 0.125), readOdd;
    EXPECT_TRUE(roundTrip(odd, readOdd));
    EXPECT_EQ(readOdd, odd);
    EXPECT_EQ(readOdd.getRed(), 0x00FF);

    // As an element of a stream: the class id, then the record.
    KGraphicRectanglePtr held(new KGraphicRectangle(1, 2, 3, 4));
    KFile out;
    out.setMode(KFileModeMemory);
    KClassWriter::writeObject(out, held.get());
    auto* data = static_cast<const uint8_t*>(out.getMemoryData());
    KFile in;
    streams::openOver(in, std::vector<uint8_t>(data, data + out.getMemorySize()));
    KThingPtr readBack;
    ASSERT_EQ(KClassReader::readObject(in, readBack), KClassReader::ObjectRead);
    auto* rectangleBack = dynamic_cast<KGraphicRectangle*>(readBack.get());
    ASSERT_NE(rectangleBack, nullptr);
    EXPECT_EQ(*rectangleBack, *held);
}

TEST_F(GeometryStream, DamagedRecordsLeaveTheValueAsItWas)
{
    KGraphicRectangle rectangle(1, 2, 3, 4);
    std::vector<uint8_t> bytes = streams::of(rectangle);

    // Every cut: a failure in the file, the value untouched.
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        KGraphicRectangle target(9, 9, 9, 9);
        KFile in;
        streams::openOver(in, std::vector<uint8_t>(bytes.begin(), bytes.begin() + ptrdiff_t(cut)));
        EXPECT_FALSE(target.readRecord(in)) << cut;
        EXPECT_EQ(target, KGraphicRectangle(9, 9, 9, 9)) << cut;
    }

    // A size record where the origin should be: of another class, so the
    // rectangle is not read, and the stream is left at the record's end.
    std::vector<uint8_t> wrong = bytes;
    streams::putLongAt(wrong, 24, idOf(KGraphicSize::classRecord));
    KGraphicRectangle target(9, 9, 9, 9);
    KFile in;
    KGraphicPoint next(5, 6);
    std::vector<uint8_t> stream = wrong;
    streams::append(stream, streams::of(next));
    streams::openOver(in, stream);
    EXPECT_FALSE(target.readRecord(in));
    EXPECT_EQ(target, KGraphicRectangle(9, 9, 9, 9));
    KGraphicPoint readNext;
    EXPECT_TRUE(readNext.readRecord(in));
    EXPECT_EQ(readNext, next);

    // A payload longer than its section: damage.
    std::vector<uint8_t> overlong;
    streams::appendLongs(overlong, { idOf(KGraphicPoint::classRecord), 1, 10, 1, 1, 10 });
    streams::appendShorts(overlong, { 7, 8 });
    KGraphicPoint point(1, 1);
    KFile overIn;
    streams::openOver(overIn, overlong);
    EXPECT_FALSE(point.readRecord(overIn));
    EXPECT_EQ(point, KGraphicPoint(1, 1));
}

TEST_F(GeometryStream, FontsKeepNameSizeFaceAndStyleFlags)
{
    KFont font(KString("DejaVu Sans"), 14.5, KFont::Bold | KFont::Italic);
    font.setStyleFlags(KFlagSet(0x30));
    KFont readFont(KString("helvetica"), 9.0);
    EXPECT_TRUE(roundTrip(font, readFont));
    EXPECT_EQ(readFont, font);
    EXPECT_EQ(readFont.getStyleFlags().getValue(), 0x30);

    // Name, size, face and flags follow one another in section 1.
    std::vector<uint8_t> bytes = streams::of(font);
    KString name("DejaVu Sans");
    size_t nameSize = streams::of(name).size();
    EXPECT_EQ(streams::longAt(bytes, 24), idOf(KString::classRecord));
    size_t sizeAt = 24 + nameSize;
    EXPECT_EQ(streams::longAt(bytes, sizeAt), 0x402D0000u);
    EXPECT_EQ(bytes[sizeAt + 8], 0);
    EXPECT_EQ(bytes[sizeAt + 9], KFont::Bold | KFont::Italic);
    EXPECT_EQ(streams::longAt(bytes, sizeAt + 10), idOf(KFlagSet::classRecord));

    // A stored size that cannot be drawn is taken in hand.
    streams::putLongAt(bytes, sizeAt, 0x7FF80000);
    KFont nanFont;
    KFile in;
    streams::openOver(in, bytes);
    EXPECT_TRUE(nanFont.readRecord(in));
    EXPECT_EQ(nanFont.getSize(), KFont::kDefaultSize);
    EXPECT_EQ(KFont(KString("x"), 1e9).getSize(), KFont::kMaxSize);

    // Cut short, the font stays as it was.
    std::vector<uint8_t> cut(bytes.begin(), bytes.end() - 4);
    KFont untouched(KString("Serif"), 20.0);
    KFile cutIn;
    streams::openOver(cutIn, cut);
    EXPECT_FALSE(untouched.readRecord(cutIn));
    EXPECT_EQ(untouched, KFont(KString("Serif"), 20.0));
}

TEST_F(GeometryStream, RegionsHaveNoFileForm)
{
    shownMessages().clear();
    KErrorHandler::setMessageProc(&noteMessage);
    KGraphicRegion region(KGraphicRectangle(0, 0, 5, 5));
    EXPECT_TRUE(streams::of(region).empty());
    KGraphicPoint point(1, 1);
    KFile in;
    streams::openOver(in, streams::of(point));
    region.readFromFile(in);
    EXPECT_EQ(in.getPosition(), 0);
    EXPECT_EQ(region.getBounds(), KWideRectangle(0, 0, 5, 5));
    KErrorHandler::setMessageProc(nullptr);
    EXPECT_EQ(shownMessages(), (std::vector<std::string> { "Not Yet Implemented!", "Not Yet Implemented!" }));
}

#include "graphics/KAlphaImage.h"
#include "graphics/KBitmapCodec.h"
#include "graphics/KGraphicObject.h"
#include "graphics/KImage.h"
#include "graphics/KPattern.h"
#include "kernel/KArray.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KError.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "tests/graphics/GraphicsTestSupport.h"
#include "tests/graphics/StreamTestSupport.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

#include <limits>

using namespace gfx;

using ImageStream = GraphicsTest;

namespace {

// Offsets in the stream of a KImage: the frame and section heads, the
// bounds as a KGraphicObject record of 104 bytes, the length, the BMP.
constexpr size_t kSizeWidthAt = 124;
constexpr size_t kLengthAt = 128;
constexpr size_t kBitmapAt = 132;

uint32_t idOf(const KClass* cls) { return uint32_t(cls->getClassID()); }

KImagePtr numbered(int16_t width, int16_t height)
{
    KImagePtr image = makeImage(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            setPixel(*image, x, y, uint32_t(0x102030 * (x + 1) + 0x050505 * y));
    return image;
}

// Gives an alpha image the per-pixel transparency a file would.
class PlaneImage : public KAlphaImage {
public:
    explicit PlaneImage(const KGraphicSize& size)
        : KAlphaImage(size)
    {
    }
    void givePlane()
    {
        KGraphicSize size = getSize();
        std::vector<uint8_t> alpha(size_t(size.width) * size_t(size.height));
        for (size_t i = 0; i < alpha.size(); ++i)
            alpha[i] = uint8_t(i * 40);
        takeFileAlpha(alpha, size.width, size.height);
    }
};

template<class T>
KPtr<T> readBack(const std::vector<uint8_t>& bytes, bool* read = nullptr, int32_t* error = nullptr,
                 int32_t* position = nullptr)
{
    KPtr<T> image(new T());
    KFile in;
    streams::openOver(in, bytes);
    bool ok = image->readRecord(in);
    if (read)
        *read = ok;
    if (error)
        *error = in.getError();
    if (position)
        *position = in.getPosition();
    return image;
}

// A bitmap behind its 14-byte file header, with an info header of
// `headerSize` bytes (the fields beyond 40 left 0), then `tables` (masks or
// palette) and `rows`.
std::vector<uint8_t> dib(uint32_t headerSize, int32_t width, int32_t height, uint16_t bits, uint32_t compression,
                         uint32_t coloursUsed, const std::vector<uint8_t>& tables, const std::vector<uint8_t>& rows)
{
    std::vector<uint8_t> bytes(headerSize, 0);
    streams::putLeLongAt(bytes, 0, headerSize);
    streams::putLeLongAt(bytes, 4, uint32_t(width));
    streams::putLeLongAt(bytes, 8, uint32_t(height));
    bytes[12] = 1;
    bytes[14] = uint8_t(bits);
    streams::putLeLongAt(bytes, 16, compression);
    streams::putLeLongAt(bytes, 32, coloursUsed);
    streams::append(bytes, tables);
    streams::append(bytes, rows);
    return bytes;
}

bool decode(const std::vector<uint8_t>& bytes, KBitmapCodec::Picture& picture)
{
    return KBitmapCodec::decode(bytes.data(), bytes.size(), 0, picture);
}

std::vector<uint8_t> leLongs(std::initializer_list<uint32_t> values)
{
    std::vector<uint8_t> bytes;
    for (uint32_t v : values)
        for (int i = 0; i < 4; ++i)
            bytes.push_back(uint8_t(v >> (8 * i)));
    return bytes;
}

} // namespace

TEST_F(ImageStream, TheImageRecordCarriesABitmapFileImage)
{
    KImagePtr image = numbered(3, 2);
    std::vector<uint8_t> bytes = streams::of(*image);
    ASSERT_EQ(bytes.size(), kBitmapAt + 78);
    EXPECT_EQ(streams::longAt(bytes, 0), idOf(KImage::classRecord));
    EXPECT_EQ(streams::longAt(bytes, 24), idOf(KGraphicObject::classRecord));
    EXPECT_EQ(streams::longAt(bytes, 48), idOf(KGraphicRectangle::classRecord));
    // The length, then "BM" with the total size, the offset of the pixels
    // and a 40-byte info header of a 24-bit bottom-up bitmap.
    EXPECT_EQ(streams::longAt(bytes, kLengthAt), 78u);
    EXPECT_EQ(bytes[kBitmapAt], 'B');
    EXPECT_EQ(bytes[kBitmapAt + 1], 'M');
    EXPECT_EQ(streams::leLongAt(bytes, kBitmapAt + 2), 78u);
    EXPECT_EQ(streams::leLongAt(bytes, kBitmapAt + 10), 54u);
    EXPECT_EQ(streams::leLongAt(bytes, kBitmapAt + 14), 40u);
    EXPECT_EQ(streams::leLongAt(bytes, kBitmapAt + 18), 3u);
    EXPECT_EQ(streams::leLongAt(bytes, kBitmapAt + 22), 2u);
    EXPECT_EQ(bytes[kBitmapAt + 28], 24);
    // The bottom row comes first, blue, green, red.
    uint32_t bottomLeft = pixel(*image, 0, 1);
    EXPECT_EQ(bytes[kBitmapAt + 54], uint8_t(bottomLeft));
    EXPECT_EQ(bytes[kBitmapAt + 56], uint8_t(bottomLeft >> 16));

    bool read = false;
    KImagePtr back = readBack<KImage>(bytes, &read);
    EXPECT_TRUE(read);
    EXPECT_EQ(back->getBounds(), KGraphicRectangle(0, 0, 3, 2));
    EXPECT_EQ(pixels(*back), pixels(*image));

    // An empty image is its bounds and a length of 0.
    KImagePtr empty(new KImage());
    std::vector<uint8_t> emptyBytes = streams::of(*empty);
    ASSERT_EQ(emptyBytes.size(), kLengthAt + 4);
    EXPECT_EQ(streams::longAt(emptyBytes, kLengthAt), 0u);
    KImagePtr emptyBack = readBack<KImage>(emptyBytes, &read);
    EXPECT_TRUE(read);
    EXPECT_FALSE(emptyBack->hasImage());

    // A large odd-sized picture survives to the pixel.
    KImagePtr large = makeImage(301, 77);
    fillNoise(*large, 7);
    KImagePtr largeBack = readBack<KImage>(streams::of(*large), &read);
    EXPECT_TRUE(read);
    EXPECT_EQ(pixels(*largeBack), pixels(*large));
}

TEST_F(ImageStream, AlphaImagesKeepMaskHotSpotBlendingAndTheirOwnTransparency)
{
    KPtr<PlaneImage> image(new PlaneImage(KGraphicSize(4, 3)));
    fillNoise(*image, 3);
    KImagePtr mask = makeImage(4, 3);
    setPixel(*mask, 1, 1, kWhite);
    image->setMask(*mask);
    image->setHotSpot(KGraphicPoint(2, -1));
    image->setBlendMode(KAlphaImage::Constant);
    image->setTransparency(0.25);
    image->givePlane();

    bool read = false;
    KAlphaImagePtr back = readBack<KAlphaImage>(streams::of(*image), &read);
    EXPECT_TRUE(read);
    EXPECT_EQ(pixels(*back), pixels(*image));
    ASSERT_TRUE(back->hasMask());
    EXPECT_EQ(pixels(*back->getMask()), pixels(*mask));
    EXPECT_EQ(back->getHotSpot(), KGraphicPoint(2, -1));
    EXPECT_EQ(back->getBlendMode(), KAlphaImage::Constant);
    EXPECT_EQ(back->getTransparency(), 0.25);
    EXPECT_TRUE(back->hasAlphaPlane());

    // Without a mask an empty image record stands in its place, and reads
    // back as no mask.
    KAlphaImagePtr plain(new KAlphaImage(KGraphicSize(2, 2)));
    back = readBack<KAlphaImage>(streams::of(*plain), &read);
    EXPECT_TRUE(read);
    EXPECT_FALSE(back->hasMask());
    EXPECT_FALSE(back->hasAlphaPlane());
    EXPECT_EQ(back->getSize(), KGraphicSize(2, 2));

    // A pattern travels as an element: its own class id, an alpha image's
    // record.
    KPatternPtr pattern(new KPattern(KGraphicSize(3, 3)));
    fillNoise(*pattern, 11);
    KFile out;
    out.setMode(KFileModeMemory);
    KClassWriter::writeObject(out, pattern.get());
    auto* data = static_cast<const uint8_t*>(out.getMemoryData());
    std::vector<uint8_t> element(data, data + out.getMemorySize());
    EXPECT_EQ(streams::longAt(element, 0), idOf(KPattern::classRecord));
    EXPECT_EQ(streams::longAt(element, 4), idOf(KAlphaImage::classRecord));
    KFile in;
    streams::openOver(in, element);
    KThingPtr object;
    ASSERT_EQ(KClassReader::readObject(in, object), KClassReader::ObjectRead);
    auto* patternBack = dynamic_cast<KPattern*>(object.get());
    ASSERT_NE(patternBack, nullptr);
    EXPECT_EQ(pixels(*patternBack), pixels(*pattern));
}

TEST_F(ImageStream, ATruncatedStreamFailsCleanlyAndLeavesTheImageEmpty)
{
    KAlphaImagePtr image(new KAlphaImage(KGraphicSize(5, 4)));
    fillNoise(*image, 5);
    KImagePtr mask = makeImage(5, 4);
    image->setMask(*mask);
    std::vector<uint8_t> bytes = streams::of(*image);
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        bool read = true;
        int32_t error = 0;
        KAlphaImagePtr back
            = readBack<KAlphaImage>(std::vector<uint8_t>(bytes.begin(), bytes.begin() + ptrdiff_t(cut)), &read, &error);
        EXPECT_FALSE(read) << cut;
        EXPECT_NE(error, 0) << cut;
        EXPECT_FALSE(back->hasImage()) << cut;
        EXPECT_FALSE(back->hasMask()) << cut;
    }

    // A length beyond the stream, or below 0, is refused before anything
    // is taken for it.
    KImagePtr plain = numbered(3, 2);
    std::vector<uint8_t> plainBytes = streams::of(*plain);
    for (uint32_t length : { 0x7FFFFFF0u, 0xFFFFFFFFu, 79u }) {
        std::vector<uint8_t> damaged = plainBytes;
        streams::putLongAt(damaged, kLengthAt, length);
        bool read = true;
        int32_t error = 0;
        KImagePtr back = readBack<KImage>(damaged, &read, &error);
        EXPECT_FALSE(read) << length;
        EXPECT_NE(error, 0) << length;
        EXPECT_FALSE(back->hasImage()) << length;
    }
}

TEST_F(ImageStream, ABadBitmapGivesAnEmptyImageAndKeepsTheStreamAligned)
{
    KImagePtr image = numbered(3, 2);
    std::vector<uint8_t> good = streams::of(*image);
    KGraphicPoint after(12, 34);
    auto damagedThenPoint = [&](auto damage) {
        std::vector<uint8_t> bytes = good;
        damage(bytes);
        streams::append(bytes, streams::of(after));
        return bytes;
    };
    std::vector<std::pair<const char*, std::vector<uint8_t>>> cases = {
        { "no BM", damagedThenPoint([](std::vector<uint8_t>& b) { b[kBitmapAt] = 'X'; }) },
        { "total beyond the length",
          damagedThenPoint([](std::vector<uint8_t>& b) { streams::putLeLongAt(b, kBitmapAt + 2, 1000); }) },
        { "huge width",
          damagedThenPoint([](std::vector<uint8_t>& b) { streams::putLeLongAt(b, kBitmapAt + 18, 0x7FFFFFFF); }) },
        { "lowest height",
          damagedThenPoint([](std::vector<uint8_t>& b) { streams::putLeLongAt(b, kBitmapAt + 22, 0x80000000); }) },
        { "RLE", damagedThenPoint([](std::vector<uint8_t>& b) { streams::putLeLongAt(b, kBitmapAt + 30, 1); }) },
        { "header size",
          damagedThenPoint([](std::vector<uint8_t>& b) { streams::putLeLongAt(b, kBitmapAt + 14, 0xFFFFFFF0); }) },
    };
    for (auto& [name, bytes] : cases) {
        KImagePtr back(new KImage());
        KFile in;
        streams::openOver(in, bytes);
        EXPECT_TRUE(back->readRecord(in)) << name;
        EXPECT_FALSE(back->hasImage()) << name;
        KGraphicPoint next;
        EXPECT_TRUE(next.readRecord(in)) << name;
        EXPECT_EQ(next, after) << name;
    }

    // In an alpha image, a bad main bitmap leaves the rest readable.
    KAlphaImagePtr alpha(new KAlphaImage(KGraphicSize(3, 2)));
    alpha->setMask(*numbered(3, 2));
    alpha->setHotSpot(KGraphicPoint(1, 1));
    std::vector<uint8_t> alphaBytes = streams::of(*alpha);
    alphaBytes[24 + kBitmapAt] = 'X';
    bool read = false;
    KAlphaImagePtr back = readBack<KAlphaImage>(alphaBytes, &read);
    EXPECT_TRUE(read);
    EXPECT_FALSE(back->hasImage());
    EXPECT_TRUE(back->hasMask());
    EXPECT_EQ(back->getHotSpot(), KGraphicPoint(1, 1));
}

TEST_F(ImageStream, TheRecordedBoundsStretchTheBitmapWithinReason)
{
    KImagePtr image = numbered(3, 2);
    std::vector<uint8_t> bytes = streams::of(*image);
    // The size record of the bounds: twice the bitmap each way.
    std::vector<uint8_t> doubled = bytes;
    doubled[kSizeWidthAt + 1] = 6;
    doubled[kSizeWidthAt + 3] = 4;
    KImagePtr back = readBack<KImage>(doubled);
    EXPECT_EQ(back->getSize(), KGraphicSize(6, 4));
    EXPECT_EQ(pixel(*back, 0, 0), pixel(*image, 0, 0));
    EXPECT_EQ(pixel(*back, 5, 3), pixel(*image, 2, 1));

    // Bounds that would blow a few bytes up into a huge bitmap are not
    // believed: the bitmap keeps its own size.
    std::vector<uint8_t> huge = bytes;
    streams::putLongAt(huge, kSizeWidthAt, 0x75307530);
    back = readBack<KImage>(huge);
    EXPECT_EQ(back->getSize(), KGraphicSize(3, 2));
    EXPECT_EQ(pixels(*back), pixels(*image));
}

TEST_F(ImageStream, TheBitmapDecoderReadsTheCommonForms)
{
    KBitmapCodec::Picture picture;
    auto expectPixels = [&](const char* name, const std::vector<uint8_t>& bytes, int32_t width, int32_t height,
                            const std::vector<uint32_t>& expected) {
        ASSERT_TRUE(decode(bytes, picture)) << name;
        EXPECT_EQ(picture.width, width) << name;
        EXPECT_EQ(picture.height, height) << name;
        EXPECT_EQ(picture.pixels, expected) << name;
    };

    // 1 bit, bottom-up: the file's first row is the picture's last.
    std::vector<uint8_t> blackWhite = { 0, 0, 0, 0, 255, 255, 255, 0 };
    expectPixels("1 bit", dib(40, 3, 2, 1, 0, 2, blackWhite, { 0xA0, 0, 0, 0, 0x40, 0, 0, 0 }), 3, 2,
                 { kBlack, kWhite, kBlack, kWhite, kBlack, kWhite });
    // 4 bits with two colours in use; indices past them give black.
    std::vector<uint8_t> redBlue = { 0, 0, 255, 0, 255, 0, 0, 0 };
    expectPixels("4 bits", dib(40, 4, 1, 4, 0, 2, redBlue, { 0x10, 0x25, 0, 0 }), 4, 1,
                 { kBlue, kRed, kBlack, kBlack });
    // 8 bits, top-down, the full palette of 256.
    std::vector<uint8_t> palette(1024, 0);
    palette[3 * 4 + 1] = 0xFF;
    palette[4 * 4 + 2] = 0x80;
    expectPixels("8 bits", dib(40, 1, -2, 8, 0, 0, palette, { 3, 0, 0, 0, 4, 0, 0, 0 }), 1, 2, { kGreen, 0x800000 });
    // 16 bits, five a channel by default, or 5-6-5 by masks.
    expectPixels("16 bits", dib(40, 2, 1, 16, 0, 0, {}, { 0x00, 0x7C, 0xE0, 0x03 }), 2, 1, { kRed, kGreen });
    expectPixels("16 bits masked",
                 dib(40, 2, 1, 16, 3, 0, leLongs({ 0xF800, 0x07E0, 0x001F }), { 0xE0, 0x07, 0x1F, 0x00 }), 2, 1,
                 { kGreen, kBlue });
    // 32 bits, plain, and with masks inside a longer header.
    expectPixels("32 bits", dib(40, 1, 1, 32, 0, 0, {}, { 0x11, 0x22, 0x33, 0xFF }), 1, 1, { 0x332211 });
    std::vector<uint8_t> v3 = dib(56, 1, 1, 32, 3, 0, {}, { 0x44, 0x33, 0x22, 0x11 });
    streams::putLeLongAt(v3, 40, 0x0000FF00);
    streams::putLeLongAt(v3, 44, 0x00FF0000);
    streams::putLeLongAt(v3, 48, 0xFF000000);
    expectPixels("32 bits masked", v3, 1, 1, { 0x332211 });
    // The old 12-byte header.
    std::vector<uint8_t> core = { 12, 0, 0, 0, 1, 0, 1, 0, 1, 0, 24, 0, 0x30, 0x20, 0x10, 0 };
    expectPixels("core", core, 1, 1, { 0x102030 });

    std::vector<std::pair<const char*, std::vector<uint8_t>>> refused = {
        { "RLE 8", dib(40, 1, 1, 8, 1, 0, palette, { 0, 0, 0, 0 }) },
        { "2 bits", dib(40, 1, 1, 2, 0, 0, std::vector<uint8_t>(16, 0), { 0, 0, 0, 0 }) },
        { "no width", dib(40, 0, 1, 24, 0, 0, {}, { 0, 0, 0, 0 }) },
        { "lowest height", dib(40, 1, std::numeric_limits<int32_t>::min(), 24, 0, 0, {}, { 0, 0, 0, 0 }) },
        { "too wide", dib(40, 40000, 1, 1, 0, 0, blackWhite, std::vector<uint8_t>(5000, 0)) },
        { "one byte short", dib(40, 2, 2, 24, 0, 0, {}, std::vector<uint8_t>(15, 0)) },
        { "palette too long", dib(40, 1, 1, 8, 0, 300, std::vector<uint8_t>(1200, 0), { 0, 0, 0, 0 }) },
        { "palette cut", dib(40, 1, 1, 8, 0, 0, std::vector<uint8_t>(100, 0), { 0, 0, 0, 0 }) },
        { "masks on 24 bits", dib(40, 1, 1, 24, 3, 0, leLongs({ 1, 2, 4 }), { 0, 0, 0, 0 }) },
        { "header beyond", dib(40, 1, 1, 24, 0, 0, {}, { 0, 0, 0, 0 }) },
        { "nothing", {} },
    };
    streams::putLeLongAt(refused[9].second, 0, 1000);
    for (auto& [name, bytes] : refused)
        EXPECT_FALSE(decode(bytes, picture)) << name;

    // The offset in the file header is followed when it lies beyond the
    // headers, and not believed when it points into them.
    std::vector<uint8_t> gap = dib(40, 1, 1, 24, 0, 0, { 9, 9, 9, 9 }, { 0x30, 0x20, 0x10, 0 });
    ASSERT_TRUE(KBitmapCodec::decode(gap.data(), gap.size(), 14 + 44, picture));
    EXPECT_EQ(picture.pixels, (std::vector<uint32_t> { 0x102030 }));
    ASSERT_TRUE(KBitmapCodec::decode(gap.data(), gap.size(), 14 + 4, picture));
    EXPECT_EQ(picture.pixels, (std::vector<uint32_t> { 0x090909 }));
}

TEST_F(ImageStream, FileReferencesReadAndWriteImageFiles)
{
    ScratchFolder folder;
    auto referenceTo = [&](const char* name) {
        return KFileReference(KPath(KString(folder.file(name).c_str()), KPath::LinuxPlatform));
    };
    KImagePtr image = numbered(4, 3);
    KFileReference png = referenceTo("picture.png");
    ASSERT_TRUE(image->writeToFile(png));

    KImagePtr back(new KImage());
    ASSERT_TRUE(back->createFromFile(png));
    EXPECT_EQ(pixels(*back), pixels(*image));
    ASSERT_TRUE(back->createFromFileScaled(png, KGraphicSize(8, 6)));
    EXPECT_EQ(back->getSize(), KGraphicSize(8, 6));

    KImagePtr mask = makeImage(4, 3);
    KFileReference maskFile = referenceTo("mask.bmp");
    ASSERT_TRUE(mask->writeToFile(maskFile));
    KAlphaImagePtr alpha(new KAlphaImage());
    ASSERT_TRUE(alpha->createFromFiles(png, maskFile));
    EXPECT_TRUE(alpha->hasMask());
    EXPECT_EQ(pixels(*alpha), pixels(*image));

    // Failures are those of the path forms.
    ErrorRecorder recorder;
    EXPECT_FALSE(back->createFromFile(referenceTo("missing.png")));
    EXPECT_EQ(recorder.lastCode(), KError::UnsupportedFormat);
    EXPECT_FALSE(back->hasImage());
}

TEST_F(ImageStream, PolygonsTakeArraysOfPoints)
{
    std::vector<KGraphicPoint> corners
        = { KGraphicPoint(1, 1), KGraphicPoint(9, 2), KGraphicPoint(7, 8), KGraphicPoint(2, 6) };
    KArray array;
    array.setSize(6);
    for (int32_t i = 0; i < 4; ++i)
        array.putAt(*new KGraphicPoint(corners[size_t(i)]), i);
    // An empty slot and another kind of object are passed over.
    array.putAt(*new KColor(KColor::Red), 5);

    KImagePtr fromVector = makeImage(12, 12);
    KImagePtr fromArray = makeImage(12, 12);
    fromVector->getDevice().setForeground(KColor(KColor::White));
    fromArray->getDevice().setForeground(KColor(KColor::White));
    fromVector->getDevice().fillPolygon(corners);
    fromArray->getDevice().fillPolygon(array);
    EXPECT_EQ(pixels(*fromArray), pixels(*fromVector));
    EXPECT_GT(countPixels(*fromArray, kWhite), 20);

    fromVector->getDevice().setForeground(KColor(KColor::Red));
    fromArray->getDevice().setForeground(KColor(KColor::Red));
    fromVector->getDevice().framePolygon(corners);
    fromArray->getDevice().framePolygon(array);
    fromVector->getDevice().drawDashedPath(corners);
    fromArray->getDevice().drawDashedPath(array);
    EXPECT_EQ(pixels(*fromArray), pixels(*fromVector));
}

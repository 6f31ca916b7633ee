#include "graphics/KAlphaImage.h"
#include "graphics/KImage.h"
#include "tests/graphics/GraphicsTestSupport.h"
#include "tests/support/TestSupport.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <iterator>

using namespace gfx;

using ImageFileTest = GraphicsTest;

namespace {

// Blocks of 16 by 16 in plain colours, which even JPEG (with its colour
// halved in resolution) keeps nearly exact.
KImagePtr blocks()
{
    KImagePtr image = makeImage(48, 32);
    const uint32_t colours[] = { 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF, 0x808080, 0x000000 };
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 48; ++x)
            setPixel(*image, x, y, colours[(y / 16) * 3 + x / 16]);
    return image;
}

bool near(uint32_t a, uint32_t b, uint32_t tolerance)
{
    for (int shift : { 0, 8, 16 }) {
        int32_t ca = (a >> shift) & 0xFF, cb = (b >> shift) & 0xFF;
        if (uint32_t(std::abs(ca - cb)) > tolerance)
            return false;
    }
    return true;
}

void put16(std::vector<uint8_t>& out, uint32_t v)
{
    out.push_back(uint8_t(v));
    out.push_back(uint8_t(v >> 8));
}

void put32be(std::vector<uint8_t>& out, uint32_t v)
{
    for (int shift : { 24, 16, 8, 0 })
        out.push_back(uint8_t(v >> shift));
}

uint32_t crc32(const uint8_t* data, size_t size)
{
    uint32_t crc = 0xFFFFFFFF;
    for (size_t i = 0; i < size; ++i) {
        crc ^= data[i];
        for (int k = 0; k < 8; ++k)
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1)));
    }
    return ~crc;
}

// A GIF of up to four colours. Each pixel goes out as a clear code and a
// literal, which keeps the codes at three bits without a real compressor.
std::vector<uint8_t> gifOf(int width, int height, const uint32_t palette[4], const std::vector<int>& indices)
{
    std::vector<uint8_t> out = { 'G', 'I', 'F', '8', '9', 'a' };
    put16(out, uint32_t(width));
    put16(out, uint32_t(height));
    out.insert(out.end(), { 0xF1, 0, 0 }); // global table of 4
    for (int i = 0; i < 4; ++i)
        out.insert(out.end(), { uint8_t(palette[i] >> 16), uint8_t(palette[i] >> 8), uint8_t(palette[i]) });
    out.push_back(0x2C);
    put16(out, 0);
    put16(out, 0);
    put16(out, uint32_t(width));
    put16(out, uint32_t(height));
    out.push_back(0);
    out.push_back(2); // minimum code size
    std::vector<uint8_t> data;
    uint32_t bits = 0;
    int count = 0;
    auto emit = [&](uint32_t code) {
        bits |= code << count;
        count += 3;
        while (count >= 8) {
            data.push_back(uint8_t(bits));
            bits >>= 8;
            count -= 8;
        }
    };
    for (int index : indices) {
        emit(4);
        emit(uint32_t(index));
    }
    emit(5);
    if (count > 0)
        data.push_back(uint8_t(bits));
    for (size_t i = 0; i < data.size(); i += 255) {
        size_t n = std::min<size_t>(255, data.size() - i);
        out.push_back(uint8_t(n));
        out.insert(out.end(), data.begin() + long(i), data.begin() + long(i + n));
    }
    out.push_back(0);
    out.push_back(0x3B);
    return out;
}

std::vector<uint8_t> tgaOf(int width, int height, const std::vector<uint32_t>& rgb)
{
    std::vector<uint8_t> out = { 0, 0, 2, 0, 0, 0, 0, 0 };
    put16(out, 0);
    put16(out, 0);
    put16(out, uint32_t(width));
    put16(out, uint32_t(height));
    out.push_back(24);
    out.push_back(0x20); // top row first
    for (uint32_t p : rgb)
        out.insert(out.end(), { uint8_t(p), uint8_t(p >> 8), uint8_t(p >> 16) });
    return out;
}

std::vector<uint8_t> pngHeaderOf(uint32_t width, uint32_t height)
{
    std::vector<uint8_t> out = { 0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n' };
    put32be(out, 13);
    std::vector<uint8_t> chunk = { 'I', 'H', 'D', 'R' };
    put32be(chunk, width);
    put32be(chunk, height);
    chunk.insert(chunk.end(), { 8, 2, 0, 0, 0 });
    out.insert(out.end(), chunk.begin(), chunk.end());
    put32be(out, crc32(chunk.data(), chunk.size()));
    put32be(out, 4);
    out.insert(out.end(), { 'I', 'D', 'A', 'T', 0, 0, 0, 0, 0, 0, 0, 0 });
    return out;
}

std::vector<uint8_t> bmpHeaderOf(int32_t width, int32_t height)
{
    std::vector<uint8_t> out = { 'B', 'M' };
    auto put32 = [&](uint32_t v) {
        put16(out, v & 0xFFFF);
        put16(out, v >> 16);
    };
    put32(54 + 16);
    put32(0);
    put32(54);
    put32(40);
    put32(uint32_t(width));
    put32(uint32_t(height));
    put16(out, 1);
    put16(out, 24);
    for (int i = 0; i < 6; ++i)
        put32(0);
    out.resize(out.size() + 16, 0x7F);
    return out;
}

} // namespace

TEST_F(ImageFileTest, WrittenFormatsRoundTrip)
{
    ScratchFolder folder;
    KImagePtr original = blocks();
    for (const char* name : { "blocks.png", "blocks.bmp", "blocks.tif", "blocks.TIFF", "blocks.jpg", "blocks.jpeg" }) {
        ErrorRecorder errors;
        std::string path = folder.file(name);
        ASSERT_TRUE(original->writeToPath(KString(path.c_str()))) << name;
        KImagePtr read(new KImage());
        ASSERT_TRUE(read->createFromPath(KString(path.c_str()))) << name;
        EXPECT_TRUE(errors.empty()) << name;
        ASSERT_EQ(read->getSize(), original->getSize()) << name;
        bool lossy = std::strstr(name, ".jp") != nullptr;
        std::vector<uint32_t> a = pixels(*original), b = pixels(*read);
        for (size_t i = 0; i < a.size(); ++i) {
            // JPEG smears colour across the edges of the blocks.
            int x = int(i % 48) % 16, y = int(i / 48) % 16;
            if (lossy && (x < 2 || x >= 14 || y < 2 || y >= 14))
                continue;
            EXPECT_TRUE(near(a[i], b[i], lossy ? 24 : 0)) << name << " pixel " << i << ": " << std::hex << b[i];
        }
    }
}

TEST_F(ImageFileTest, ReadOnlyFormatsAreRead)
{
    ScratchFolder folder;
    const uint32_t palette[4] = { 0x000000, 0xFF0000, 0x00FF00, 0x0000FF };
    writeBytes(folder.file("four.gif"), gifOf(3, 2, palette, { 0, 1, 2, 3, 2, 1 }));
    writeBytes(folder.file("four.tga"), tgaOf(3, 2, { 0x000000, 0xFF0000, 0x00FF00, 0x0000FF, 0x00FF00, 0xFF0000 }));
    const char* xpm = "/* XPM */\nstatic char * four_xpm[] = {\n\"3 2 4 1\",\n\"a c #000000\",\n\"b c #FF0000\",\n"
                      "\"c c #00FF00\",\n\"d c #0000FF\",\n\"abc\",\n\"dcb\"};\n";
    writeBytes(folder.file("four.xpm"), std::vector<uint8_t>(xpm, xpm + std::strlen(xpm)));
    for (const char* name : { "four.gif", "four.tga", "four.xpm" }) {
        ErrorRecorder errors;
        KImagePtr image(new KImage());
        ASSERT_TRUE(image->createFromPath(KString(folder.file(name).c_str()))) << name;
        EXPECT_TRUE(errors.empty());
        EXPECT_EQ(pixels(*image),
                  (std::vector<uint32_t> { 0x000000, 0xFF0000, 0x00FF00, 0x0000FF, 0x00FF00, 0xFF0000 }))
            << name;
    }
}

TEST_F(ImageFileTest, UnreadableFilesAreError57AndAnEmptyImage)
{
    ScratchFolder folder;
    writeBytes(folder.file("noise.png"), { 1, 2, 3, 4, 5, 6, 7, 8, 9 });
    writeBytes(
        folder.file("vector.png"),
        std::vector<uint8_t>(std::begin("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"10\" height=\"10\"/>"),
                             std::end("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"10\" height=\"10\"/>") - 1));
    blocks()->writeToPath(KString(folder.file("truncated.png").c_str()));
    std::filesystem::resize_file(folder.file("truncated.png"), 70);
    writeBytes(folder.file("picture.pict"), { 0, 0, 0 });

    for (const char* name :
         { "noise.png", "vector.png", "truncated.png", "missing.bmp", "picture.pict", "noextension" }) {
        ErrorRecorder errors;
        KImagePtr image = makeImage(5, 5);
        EXPECT_FALSE(image->createFromPath(KString(folder.file(name).c_str()))) << name;
        EXPECT_FALSE(image->hasImage()) << name;
        EXPECT_TRUE(image->getSize().isEmpty());
        ASSERT_EQ(errors.errors().size(), 1u) << name;
        EXPECT_EQ(errors.lastCode(), KError::UnsupportedFormat);
        // The caption names the file.
        EXPECT_NE(errors.lastLocation().find(name), std::string::npos) << name;
        // An empty image draws nothing.
        KImagePtr target = makeImage(4, 4);
        fill(*target, kRed);
        image->drawAt(target->getDevice(), KGraphicPoint(0, 0));
        EXPECT_EQ(countPixels(*target, kRed), 16);
    }

    ErrorRecorder errors;
    EXPECT_FALSE(blocks()->writeToPath(KString(folder.file("out.gif").c_str())));
    EXPECT_EQ(errors.lastCode(), KError::UnsupportedFormat);
    EXPECT_NE(errors.lastLocation().find("out.gif"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(folder.file("out.gif")));
    EXPECT_FALSE(KImagePtr(new KImage())->writeToPath(KString(folder.file("empty.png").c_str())));
}

TEST_F(ImageFileTest, HugeDeclaredSizesAreRefusedBeforeAllocation)
{
    ScratchFolder folder;
    writeBytes(folder.file("square.png"), pngHeaderOf(30000, 30000));
    writeBytes(folder.file("wide.png"), pngHeaderOf(100000, 2));
    writeBytes(folder.file("square.bmp"), bmpHeaderOf(30000, 30000));
    writeBytes(folder.file("tall.bmp"), bmpHeaderOf(1, -2000000000));
    for (const char* name : { "square.png", "wide.png", "square.bmp", "tall.bmp" }) {
        ErrorRecorder errors;
        auto start = std::chrono::steady_clock::now();
        KImagePtr image(new KImage());
        EXPECT_FALSE(image->createFromPath(KString(folder.file(name).c_str()))) << name;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2)) << name;
        EXPECT_EQ(errors.lastCode(), KError::UnsupportedFormat) << name;
        EXPECT_FALSE(image->hasImage());
    }
    // An image too large to allocate stays empty.
    KImagePtr image(new KImage(KGraphicSize(32767, 32767)));
    EXPECT_FALSE(image->hasImage());
}

TEST_F(ImageFileTest, ScaledLoadsAndFileTransparency)
{
    ScratchFolder folder;
    // Red at half transparency on the left, opaque green on the right.
    GdkPixbuf* pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, 2, 1);
    guint8* p = gdk_pixbuf_get_pixels(pixbuf);
    const guint8 values[] = { 255, 0, 0, 128, 0, 255, 0, 255 };
    std::memcpy(p, values, sizeof values);
    std::string path = folder.file("alpha.png");
    ASSERT_TRUE(gdk_pixbuf_save(pixbuf, path.c_str(), "png", nullptr, nullptr));
    g_object_unref(pixbuf);

    // A plain image sees the transparent part over white.
    KImagePtr plain(new KImage());
    ASSERT_TRUE(plain->createFromPath(KString(path.c_str())));
    EXPECT_TRUE(near(pixel(*plain, 0, 0), 0xFF7F7F, 1));

    KAlphaImagePtr sprite(new KAlphaImage());
    ASSERT_TRUE(sprite->createFromPath(KString(path.c_str())));
    EXPECT_TRUE(sprite->hasAlphaPlane());
    sprite->setBlendMode(KAlphaImage::PerPixel);
    KImagePtr target = makeImage(2, 1);
    fill(*target, kBlue);
    sprite->drawAt(target->getDevice(), KGraphicPoint(0, 0));
    EXPECT_TRUE(near(pixel(*target, 0, 0), 0x80007F, 1)) << std::hex << pixel(*target, 0, 0);
    EXPECT_EQ(pixel(*target, 1, 0), kGreen);

    // The alpha turns with the image.
    sprite->flipHorizontal();
    fill(*target, kBlue);
    sprite->drawAt(target->getDevice(), KGraphicPoint(0, 0));
    EXPECT_EQ(pixel(*target, 0, 0), kGreen);
    EXPECT_TRUE(near(pixel(*target, 1, 0), 0x80007F, 1));

    KImagePtr scaled(new KImage());
    ASSERT_TRUE(scaled->createFromPathScaled(KString(folder.file("alpha.png").c_str()), KGraphicSize(8, 3)));
    EXPECT_EQ(scaled->getSize(), KGraphicSize(8, 3));
    EXPECT_EQ(pixel(*scaled, 7, 1), kGreen);
    KAlphaImagePtr scaledSprite(new KAlphaImage());
    ASSERT_TRUE(scaledSprite->createFromPathScaled(KString(path.c_str()), KGraphicSize(8, 3)));
    EXPECT_TRUE(scaledSprite->hasAlphaPlane());
}

// Pictures compiled into the program arrive as the bytes of a file.
TEST_F(ImageFileTest, FileBytesInMemoryReadLikeFiles)
{
    ScratchFolder folder;
    std::string path = folder.file("blocks.png");
    ASSERT_TRUE(blocks()->writeToPath(KString(path.c_str())));
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> png((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ErrorRecorder errors;
    KImagePtr image(new KImage());
    ASSERT_TRUE(image->createFromFileBytes(png.data(), png.size()));
    EXPECT_EQ(pixels(*image), pixels(*blocks()));

    // Damaged or foreign: an empty image, and no message, since the caller
    // knows best what to say.
    const char* svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"10\" height=\"10\"/>";
    std::vector<uint8_t> vector(svg, svg + std::strlen(svg));
    for (const std::vector<uint8_t>& bytes :
         { std::vector<uint8_t> { 1, 2, 3, 4, 5 }, vector, pngHeaderOf(30000, 30000), std::vector<uint8_t>() }) {
        KImagePtr broken = makeImage(5, 5);
        EXPECT_FALSE(broken->createFromFileBytes(bytes.data(), bytes.size()));
        EXPECT_FALSE(broken->hasImage());
    }
    EXPECT_TRUE(errors.empty());
}

#include "tests/graphics/GraphicsTestSupport.h"

#include "graphics/KColor.h"

#include <fstream>
#include <random>

ScratchFolder::ScratchFolder()
{
    std::random_device random;
    path = std::filesystem::temp_directory_path() / ("taleloom-graphics-" + std::to_string(random()));
    std::filesystem::create_directories(path);
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

namespace gfx {

KImagePtr makeImage(int16_t width, int16_t height) { return KImagePtr(new KImage(KGraphicSize(width, height))); }

uint32_t pixel(KImage& image, int32_t x, int32_t y)
{
    KPixelBuffer buffer;
    if (!image.getDevice().beginPixelAccess(buffer) || !buffer.contains(x, y))
        return 0;
    return *buffer.at(x, y) & KPixelBuffer::kColourBits;
}

void setPixel(KImage& image, int32_t x, int32_t y, uint32_t value)
{
    KPixelBuffer buffer;
    if (!image.getDevice().beginPixelAccess(buffer) || !buffer.contains(x, y))
        return;
    *buffer.at(x, y) = value;
    image.getDevice().endPixelAccess(KWideRectangle(x, y, 1, 1));
}

std::vector<uint32_t> pixels(KImage& image)
{
    std::vector<uint32_t> result;
    KPixelBuffer buffer;
    if (!image.getDevice().beginPixelAccess(buffer))
        return result;
    for (int32_t y = 0; y < buffer.height; ++y) {
        for (int32_t x = 0; x < buffer.width; ++x)
            result.push_back(*buffer.at(x, y) & KPixelBuffer::kColourBits);
    }
    return result;
}

void fill(KImage& image, uint32_t value)
{
    KPixelBuffer buffer;
    if (!image.getDevice().beginPixelAccess(buffer))
        return;
    for (int32_t y = 0; y < buffer.height; ++y)
        std::fill_n(buffer.row(y), buffer.width, value);
    image.getDevice().endPixelAccess(KWideRectangle(0, 0, buffer.width, buffer.height));
}

void fillNoise(KImage& image, uint32_t seed)
{
    KPixelBuffer buffer;
    if (!image.getDevice().beginPixelAccess(buffer))
        return;
    std::mt19937 random(seed);
    for (int32_t y = 0; y < buffer.height; ++y) {
        for (int32_t x = 0; x < buffer.width; ++x)
            *buffer.at(x, y) = random() & KPixelBuffer::kColourBits;
    }
    image.getDevice().endPixelAccess(KWideRectangle(0, 0, buffer.width, buffer.height));
}

std::vector<std::string> shape(KImage& image)
{
    std::vector<std::string> rows;
    KGraphicSize size = image.getSize();
    for (int32_t y = 0; y < size.height; ++y) {
        std::string row;
        for (int32_t x = 0; x < size.width; ++x)
            row += pixel(image, x, y) ? '#' : '.';
        rows.push_back(row);
    }
    return rows;
}

int64_t countPixels(KImage& image, uint32_t value)
{
    int64_t count = 0;
    for (uint32_t p : pixels(image))
        count += p == value ? 1 : 0;
    return count;
}

KColor colour(uint32_t rgb) { return KColor::fromNative(rgb); }

void writeBytes(const std::string& fileName, const std::vector<uint8_t>& bytes)
{
    std::ofstream out(fileName, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

} // namespace gfx

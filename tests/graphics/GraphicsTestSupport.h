#pragma once

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicsClasses.h"
#include "graphics/KImage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// Registers the graphics classes before each test.
class GraphicsTest : public ::testing::Test {
protected:
    void SetUp() override { kRegisterGraphicsClasses(); }
};

// A scratch folder removed at the end of the scope.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    std::string file(const std::string& name) const { return (path / name).string(); }

private:
    std::filesystem::path path;
};

namespace gfx {

constexpr uint32_t kBlack = 0x000000;
constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kRed = 0xFF0000;
constexpr uint32_t kGreen = 0x00FF00;
constexpr uint32_t kBlue = 0x0000FF;

KImagePtr makeImage(int16_t width, int16_t height);
// The RGB24 value of a pixel (0 outside).
uint32_t pixel(KImage& image, int32_t x, int32_t y);
void setPixel(KImage& image, int32_t x, int32_t y, uint32_t value);
// All pixels, row by row, without the unused top byte.
std::vector<uint32_t> pixels(KImage& image);
void fill(KImage& image, uint32_t value);
// Fills with a pattern that differs at every pixel.
void fillNoise(KImage& image, uint32_t seed);
// The image as rows of '#' (not black) and '.' (black).
std::vector<std::string> shape(KImage& image);
int64_t countPixels(KImage& image, uint32_t value);
KColor colour(uint32_t rgb);
void writeBytes(const std::string& fileName, const std::vector<uint8_t>& bytes);

} // namespace gfx

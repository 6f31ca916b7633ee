#pragma once

#include "AnimationTestSupport.h"

#include "graphics/KAlphaImage.h"
#include "graphics/KColor.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KImage.h"
#include "kmultimedia/KSprite.h"
#include "kmultimedia/KSpriteLayer.h"
#include "kmultimedia/KSpriteSystem.h"

#include <string>

// Colours by their 8-bit channels, so that a failing pixel reads well.
inline std::string rgb(const KColor& c)
{
    return std::to_string(c.getRed() >> 8) + "," + std::to_string(c.getGreen() >> 8) + ","
           + std::to_string(c.getBlue() >> 8);
}

inline KColor colour(uint8_t r, uint8_t g, uint8_t b)
{
    return KColor(uint16_t(r * 257), uint16_t(g * 257), uint16_t(b * 257));
}

inline const KColor kRed = colour(255, 0, 0);
inline const KColor kGreen = colour(0, 255, 0);
inline const KColor kBlue = colour(0, 0, 255);
inline const KColor kYellow = colour(255, 255, 0);
inline const KColor kGrey = colour(128, 128, 128);
inline const KColor kSentinel = colour(255, 0, 255);
inline const KColor kBlack = colour(0, 0, 0);
inline const KColor kWhite = colour(255, 255, 255);

// The same as the pixels read them back.
inline const std::string red = rgb(kRed);
inline const std::string green = rgb(kGreen);
inline const std::string blue = rgb(kBlue);
inline const std::string yellow = rgb(kYellow);
inline const std::string grey = rgb(kGrey);
inline const std::string black = rgb(kBlack);
inline const std::string sentinel = rgb(kSentinel);
inline const std::string white = rgb(kWhite);

inline std::string pixelAt(KGraphicDevice& device, int x, int y)
{
    return rgb(device.getPixel(int16_t(x), int16_t(y)));
}

inline KPtr<KImage> solidImage(int w, int h, const KColor& fill)
{
    KPtr<KImage> image = kAdopt(new KImage(KGraphicSize(int16_t(w), int16_t(h))));
    image->getDevice().fillRectangle(KGraphicRectangle(0, 0, int16_t(w), int16_t(h)), fill);
    return image;
}

inline KPtr<KAlphaImage> solidFrame(int w, int h, const KColor& fill)
{
    KPtr<KAlphaImage> image = kAdopt(new KAlphaImage(KGraphicSize(int16_t(w), int16_t(h))));
    image->getDevice().fillRectangle(KGraphicRectangle(0, 0, int16_t(w), int16_t(h)), fill);
    return image;
}

// A sprite with one solid frame, at a place.
inline KSpritePtr solidSprite(int x, int y, int w, int h, const KColor& fill)
{
    KSpritePtr sprite = kAdopt(new KSprite());
    sprite->addFrame(*solidFrame(w, h, fill));
    sprite->setPosition(float(x), float(y));
    return sprite;
}

// A sprite system over a small page: the background is green with a grey
// stripe (so that a restored area is told from a filled one), the target a
// larger image full of a sentinel colour that no composition produces.
class SpriteTest : public AnimationTest {
protected:
    static constexpr int kPageWidth = 40;
    static constexpr int kPageHeight = 30;

    void SetUp() override
    {
        AnimationTest::SetUp();
        // The recording system of the animation tests is not wanted here.
        system.clear();
        sprites = kAdopt(new KSpriteSystem());
        screen = solidImage(60, 50, kSentinel);
        page = solidImage(kPageWidth, kPageHeight, kGreen);
        page->getDevice().fillRectangle(KGraphicRectangle(0, 20, kPageWidth, 2), kGrey);
        bottom = kAdopt(new KSpriteLayer());
        top = kAdopt(new KSpriteLayer());
    }
    void TearDown() override
    {
        bottom.clear();
        top.clear();
        sprites.clear();
        AnimationTest::TearDown();
    }

    // Attaches the screen with the page at the origin and the layers added.
    void attach(KSpriteSystem::UpdateMode mode, int originX = 0, int originY = 0)
    {
        sprites->setUpdateMode(mode);
        sprites->setBufferRect(KGraphicRectangle(0, 0, kPageWidth, kPageHeight));
        sprites->setDestinationRect(KGraphicRectangle(int16_t(originX), int16_t(originY), kPageWidth, kPageHeight));
        sprites->attachDevice(screen->getDevice());
        sprites->setBackground(*page);
        sprites->addLayer(*bottom);
        sprites->addLayer(*top);
    }
    void resetScreen() { screen->getDevice().fillRectangle(KGraphicRectangle(0, 0, 60, 50), kSentinel); }
    // One frame of the timer's kind: draw, then step.
    void frame()
    {
        sprites->drawFrame();
        sprites->step(0.0f);
    }
    std::string screenAt(int x, int y) { return pixelAt(screen->getDevice(), x, y); }
    std::string bufferAt(int x, int y) { return pixelAt(sprites->getOffscreen()->getDevice(), x, y); }

    KSpriteSystemPtr sprites;
    KPtr<KImage> screen;
    KPtr<KImage> page;
    KSpriteLayerPtr bottom;
    KSpriteLayerPtr top;
};

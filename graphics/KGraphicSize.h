#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KThing.h"

// A width and a height in device pixels, 16 bits each.
class KGraphicSize : public KThing {
    K_DECLARE_CLASS(KGraphicSize)
public:
    KGraphicSize() = default;
    KGraphicSize(int16_t width, int16_t height)
        : width(width)
        , height(height)
    {
    }
    KGraphicSize(const KGraphicSize& other)
        : KThing(other)
        , width(other.width)
        , height(other.height)
    {
    }
    KGraphicSize& operator=(const KGraphicSize& other)
    {
        width = other.width;
        height = other.height;
        return *this;
    }

    KThing* deepCopy() const override;

    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    // Reads the record; false, with the members as they were, when it is
    // damaged or of another class.
    bool readRecord(KFile& file);

    int16_t getWidth() const { return width; }
    int16_t getHeight() const { return height; }
    void setWidth(int16_t value) { width = value; }
    void setHeight(int16_t value) { height = value; }
    void set(int16_t newWidth, int16_t newHeight)
    {
        width = newWidth;
        height = newHeight;
    }
    // Width or height is 0 or less.
    bool isEmpty() const { return width <= 0 || height <= 0; }

    bool operator==(const KGraphicSize& other) const { return width == other.width && height == other.height; }
    bool operator!=(const KGraphicSize& other) const { return !(*this == other); }

    int16_t width = 0;
    int16_t height = 0;
};

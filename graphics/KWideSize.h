#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KThing.h"

// A width and a height in 32 bits.
class KWideSize : public KThing {
    K_DECLARE_CLASS(KWideSize)
public:
    KWideSize() = default;
    KWideSize(int32_t width, int32_t height)
        : width(width)
        , height(height)
    {
    }
    KWideSize(const KWideSize& other)
        : KThing(other)
        , width(other.width)
        , height(other.height)
    {
    }
    KWideSize& operator=(const KWideSize& other)
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

    int32_t getWidth() const { return width; }
    int32_t getHeight() const { return height; }
    void setWidth(int32_t value) { width = value; }
    void setHeight(int32_t value) { height = value; }
    void set(int32_t newWidth, int32_t newHeight)
    {
        width = newWidth;
        height = newHeight;
    }
    bool isEmpty() const { return width <= 0 || height <= 0; }

    bool operator==(const KWideSize& other) const { return width == other.width && height == other.height; }
    bool operator!=(const KWideSize& other) const { return !(*this == other); }

    int32_t width = 0;
    int32_t height = 0;
};

#pragma once

#include "graphics/KGraphicsStreams.h"
#include "kernel/KThing.h"

#include <cstdint>

// A width and a height of type `C`, which also chooses the stored form (16
// or 32 bits): one section holding width and height. `Derived` is the
// registered class.
template<class Derived, class C>
class KBasicSize : public KThing {
public:
    using Coordinate = C;

    KBasicSize() = default;
    KBasicSize(C width, C height)
        : width(width)
        , height(height)
    {
    }
    KBasicSize(const KBasicSize& other)
        : KThing(other)
        , width(other.width)
        , height(other.height)
    {
    }
    KBasicSize& operator=(const KBasicSize& other)
    {
        width = other.width;
        height = other.height;
        return *this;
    }

    KThing* deepCopy() const override { return new Derived(static_cast<const Derived&>(*this)); }

    void readFromFile(KFile& file) override { readRecord(file); }
    void writeToFile(KFile& file, int32_t) override
    {
        KGraphicsStreams::writePair(file, Derived::classRecord, width, height);
    }
    // Reads the record; false, with the members as they were, when it is
    // damaged or of another class.
    bool readRecord(KFile& file) { return KGraphicsStreams::readPair(file, Derived::classRecord, width, height); }

    C getWidth() const { return width; }
    C getHeight() const { return height; }
    void setWidth(C value) { width = value; }
    void setHeight(C value) { height = value; }
    void set(C newWidth, C newHeight)
    {
        width = newWidth;
        height = newHeight;
    }
    // Width or height is 0 or less.
    bool isEmpty() const { return width <= 0 || height <= 0; }

    friend bool operator==(const Derived& a, const Derived& b) { return a.width == b.width && a.height == b.height; }
    friend bool operator!=(const Derived& a, const Derived& b) { return !(a == b); }

    C width = 0;
    C height = 0;
};

#pragma once

#include "graphics/KGraphicsForward.h"
#include "graphics/KTextStyle.h"

// A style over a number of consecutive characters of a line. The runs of a
// line follow each other and their lengths add up to the line's length.
class KTextStyleRun : public KTextStyle {
    K_DECLARE_CLASS(KTextStyleRun)
public:
    // The default style over no characters.
    KTextStyleRun() = default;
    KTextStyleRun(const KTextStyle& style, int32_t length);
    KTextStyleRun(const KTextStyleRun& other);
    KTextStyleRun& operator=(const KTextStyleRun& other);

    KThing* deepCopy() const override;
    // Section 1: the KTextStyle record, then the length in 32 bits.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;
    // False, with the run as it was, when the record is damaged. A negative
    // length reads as 0; the line that holds the run fits the lengths to its
    // text.
    bool readRecord(KFile& file);

    int32_t getLength() const { return length; }
    // A negative length counts as 0.
    void setLength(int32_t value) { length = value < 0 ? 0 : value; }

private:
    int32_t length = 0;
};

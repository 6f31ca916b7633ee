#pragma once

#include "graphics/KGraphicsForward.h"
#include "graphics/KTextLine.h"
#include "graphics/KTextStyle.h"
#include "kernel/KBag.h"
#include "kernel/KString.h"
#include "kernel/KThing.h"

#include <functional>

// A block of styled text: its lines and their alignment. A block always has
// at least one line.
//
// Character positions count through the whole block with one position for
// the break between two lines, so that position p is the index p in the
// plain text, whose lines are joined by one CR each: that is the text that
// is read aloud, and the positions of the words it reports mark the same
// characters here.
class KTextBlock : public KThing {
    K_DECLARE_CLASS(KTextBlock)
public:
    // The stored alignment; other values lay out as left aligned and are
    // kept as they are.
    enum Alignment : int16_t { AlignLeft = 0, AlignCentre = 1, AlignRight = 2, AlignJustify = 3 };
    static constexpr char kLineBreak = '\r';

    // One empty line in the default style.
    KTextBlock();
    // The text in one style; CR, LF and CR LF each end a line.
    explicit KTextBlock(const KString& text, const KTextStyle& style = KTextStyle(), int16_t alignment = AlignLeft);
    KTextBlock(const KTextBlock& other);
    KTextBlock& operator=(const KTextBlock& other);

    KThing* deepCopy() const override;
    // Section 1: the KBag record of the lines, then the alignment in 16
    // bits.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;
    // False, with the block as it was, when the record is damaged. Elements
    // that are not lines are passed over; a block without lines gets an
    // empty one.
    bool readRecord(KFile& file);

    int16_t getAlignment() const { return alignment; }
    void setAlignment(int16_t value) { alignment = value; }

    int32_t getLineCount() const { return lines.getSize(); }
    // The line at `index`, or null outside.
    KTextLine* getLine(int32_t index) const;
    const KBag& getLines() const { return lines; }
    // Adds a copy of the line at the end.
    void addLine(const KTextLine& line);

    // All characters, line breaks included.
    int32_t getLength() const;
    // The line that holds position `pos`; the position of a line break
    // belongs to the line it ends. Clipped to the lines.
    int32_t getLineAtCharPosition(int32_t pos) const;
    // Where the line at `index` (clipped to the lines) starts.
    int32_t getStartPositionOfLine(int32_t index) const;

    // The text with the lines joined by one CR each.
    KString getPlainText() const;
    // `count` characters of it from `start`, clipped.
    KString getPlainText(int32_t start, int32_t count) const;
    // Replaces everything by the text in one style, as the constructor does.
    void setPlainText(const KString& text, const KTextStyle& style);

    // The style text typed at `pos` takes.
    const KTextStyle& getStyleAt(int32_t pos) const;

    // Editing over character positions of the block. Line breaks (CR, LF,
    // CR LF) in inserted text open new lines; a deleted range that holds a
    // line break joins the lines around it.
    void insertText(int32_t pos, const KString& inserted);
    void insertText(int32_t pos, const KString& inserted, const KTextStyle& style);
    void deleteText(int32_t pos, int32_t count);
    // The style over a range across lines; an empty line in the range
    // takes it too.
    void setStyle(int32_t pos, int32_t count, const KTextStyle& style);
    void changeStyle(int32_t pos, int32_t count, const std::function<void(KTextStyle&)>& change);
    // Every character in one colour.
    void setColour(const KColor& colour);
    // Every font size times the factor, as when the text is scaled.
    void scaleFontSizes(double factor);

private:
    KTextLine& lineAt(int32_t index) const;
    // The inserted text cut at its line breaks.
    void insertLines(int32_t pos, const KString& inserted, const KTextStyle* style);
    void takeLines(const KBag& read);
    void copyLinesFrom(const KTextBlock& other);

    KBag lines;
    int16_t alignment = AlignLeft;
};

#pragma once

#include "graphics/KGraphicsForward.h"
#include "graphics/KTextStyle.h"
#include "kernel/KBag.h"
#include "kernel/KString.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"

#include <functional>

// One line of styled text (a paragraph: it may wrap when laid out): the
// characters and the runs of styles over them. The runs always cover the
// text exactly, one after the other; an empty line keeps one run of length
// 0, whose style is that of the text typed into it. Character positions
// run from 0 to the length; positions outside are clipped.
class KTextLine : public KThing {
    K_DECLARE_CLASS(KTextLine)
public:
    // An empty line in the default style.
    KTextLine();
    explicit KTextLine(const KString& text, const KTextStyle& style = KTextStyle());
    KTextLine(const KTextLine& other);
    KTextLine& operator=(const KTextLine& other);

    KThing* deepCopy() const override;
    // Section 1: the KBag record of the runs, then the KString record of the
    // text.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;
    // False, with the line as it was, when the record is damaged. Runs that
    // do not fit the text are repaired: lengths are cut to the text, the
    // last run takes what no run covers, runs of length 0 and elements that
    // are not runs are dropped.
    bool readRecord(KFile& file);

    const KString& getText() const { return text; }
    int32_t getLength() const { return text.getLength(); }
    // Replaces the text; the last run grows or the runs are cut to fit.
    void setText(const KString& value);

    int32_t getStyleRunCount() const { return runs.getSize(); }
    // The run at `index`, or null outside.
    KTextStyleRun* getStyleRun(int32_t index) const;
    const KBag& getStyleRuns() const { return runs; }

    // The run that holds the character at `pos`; the end of the line
    // belongs to the last run, negative positions to the first.
    int32_t getStyleRunAtPosition(int32_t pos) const;
    // Where the run at `index` (clipped to the runs) starts.
    int32_t getStartPositionOfStyleRun(int32_t index) const;
    // Cuts the run at `index` in two so that a run starts at `position`, a
    // position of the line strictly inside the run. False when there is
    // nothing to cut.
    bool splitStyleRun(int32_t index, int32_t position);
    // The runs from `index` on, `numberOfStyleRuns` of them (clipped),
    // become one run in the style of the first.
    void mergeStyleRuns(int32_t index, int32_t numberOfStyleRuns);

    // The style that text typed at `pos` takes: that of the character
    // before it, or of the first run at the line's start.
    const KTextStyle& getStyleAt(int32_t pos) const;

    // Editing. Each keeps the runs covering the text, and joins neighbours
    // of the same style.
    void insertText(int32_t pos, const KString& inserted);
    void insertText(int32_t pos, const KString& inserted, const KTextStyle& style);
    void deleteText(int32_t pos, int32_t count);
    // On an empty line the one run changes, whatever the range.
    void setStyle(int32_t pos, int32_t count, const KTextStyle& style);
    void changeStyle(int32_t pos, int32_t count, const std::function<void(KTextStyle&)>& change);
    // The text from `pos` on moves to a new line with its styles; a line
    // left empty keeps the style at the cut.
    KTextLinePtr splitOff(int32_t pos);
    // The other line's text and styles are added at the end.
    void append(const KTextLine& other);
    void scaleFontSizes(double factor);

    // Joins neighbouring runs of the same style and drops runs of length 0
    // (but for the one run of an empty line).
    void mergeEqualStyleRuns();
    // Makes the runs cover the text exactly, as reading does.
    void repairStyleRuns();
    // Whether the runs cover the text exactly, none empty unless the line is.
    bool hasConsistentStyleRuns() const;

private:
    KTextStyleRun& runAt(int32_t index) const;
    // Makes a run start at `pos` and answers its index (the run count at
    // the end of the line).
    int32_t boundaryAt(int32_t pos);
    void takeRuns(const KBag& read);
    void dropEmptyRuns();
    void copyRunsFrom(const KTextLine& other);
    int32_t clip(int32_t pos) const;

    KBag runs;
    KString text;
};

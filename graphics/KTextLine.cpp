#include "graphics/KTextLine.h"

#include "graphics/KGraphicsStreams.h"
#include "graphics/KTextStyleRun.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"

#include <algorithm>

K_DEFINE_CLASS(KTextLine, KThing)

namespace {

// Text joining a line is brought into the line's character set.
KString inSet(const KString& text, int32_t charSet)
{
    KString result(text);
    if (result.getCharSet() != charSet)
        result.convertToCharSet(charSet);
    return result;
}

} // namespace

KTextLine::KTextLine() { runs.add(*new KTextStyleRun()); }

KTextLine::KTextLine(const KString& text, const KTextStyle& style)
    : text(text)
{
    runs.add(*new KTextStyleRun(style, text.getLength()));
}

KTextLine::KTextLine(const KTextLine& other)
    : KThing(other)
    , text(other.text)
{
    copyRunsFrom(other);
}

KTextLine& KTextLine::operator=(const KTextLine& other)
{
    if (this != &other) {
        text = other.text;
        copyRunsFrom(other);
    }
    return *this;
}

KThing* KTextLine::deepCopy() const { return new KTextLine(*this); }

void KTextLine::copyRunsFrom(const KTextLine& other)
{
    runs.clear();
    for (int32_t i = 0; i < other.getStyleRunCount(); ++i)
        runs.add(*new KTextStyleRun(other.runAt(i)));
}

KTextStyleRun& KTextLine::runAt(int32_t index) const { return static_cast<KTextStyleRun&>(runs[index]); }

KTextStyleRun* KTextLine::getStyleRun(int32_t index) const
{
    return index >= 0 && index < getStyleRunCount() ? &runAt(index) : nullptr;
}

int32_t KTextLine::clip(int32_t pos) const { return std::clamp(pos, 0, getLength()); }

void KTextLine::setText(const KString& value)
{
    text = value;
    // Whatever no run covers goes to the last one.
    int32_t covered = 0;
    for (int32_t i = 0; i < getStyleRunCount(); ++i)
        covered += runAt(i).getLength();
    if (covered < getLength())
        runAt(getStyleRunCount() - 1).setLength(runAt(getStyleRunCount() - 1).getLength() + getLength() - covered);
    repairStyleRuns();
}

// --- Runs ----------------------------------------------------------------------

int32_t KTextLine::getStyleRunAtPosition(int32_t pos) const
{
    int32_t start = 0;
    int32_t last = getStyleRunCount() - 1;
    for (int32_t i = 0; i < last; ++i) {
        start += runAt(i).getLength();
        if (pos < start)
            return i;
    }
    return std::max(last, 0);
}

int32_t KTextLine::getStartPositionOfStyleRun(int32_t index) const
{
    index = std::clamp(index, 0, getStyleRunCount());
    int32_t start = 0;
    for (int32_t i = 0; i < index; ++i)
        start += runAt(i).getLength();
    return start;
}

bool KTextLine::splitStyleRun(int32_t index, int32_t position)
{
    KTextStyleRun* run = getStyleRun(index);
    if (!run)
        return false;
    int32_t start = getStartPositionOfStyleRun(index);
    int32_t end = start + run->getLength();
    if (position <= start || position >= end)
        return false;
    run->setLength(position - start);
    runs.insertAt(*new KTextStyleRun(*run, end - position), index + 1);
    return true;
}

void KTextLine::mergeStyleRuns(int32_t index, int32_t numberOfStyleRuns)
{
    if (index < 0 || index >= getStyleRunCount())
        return;
    int32_t count = std::min(numberOfStyleRuns, getStyleRunCount() - index);
    if (count < 2)
        return;
    KTextStyleRun& first = runAt(index);
    for (int32_t i = 1; i < count; ++i) {
        first.setLength(first.getLength() + runAt(index + 1).getLength());
        runs.removeAt(index + 1);
    }
}

int32_t KTextLine::boundaryAt(int32_t pos)
{
    if (pos <= 0)
        return 0;
    if (pos >= getLength())
        return getStyleRunCount();
    int32_t index = getStyleRunAtPosition(pos);
    if (getStartPositionOfStyleRun(index) == pos)
        return index;
    splitStyleRun(index, pos);
    return index + 1;
}

void KTextLine::dropEmptyRuns()
{
    if (getLength() > 0) {
        for (int32_t i = getStyleRunCount() - 1; i >= 0; --i) {
            if (runAt(i).getLength() == 0)
                runs.removeAt(i);
        }
    } else {
        while (getStyleRunCount() > 1)
            runs.removeAt(1);
    }
}

void KTextLine::mergeEqualStyleRuns()
{
    dropEmptyRuns();
    for (int32_t i = getStyleRunCount() - 1; i > 0; --i) {
        if (runAt(i - 1).hasSameStyle(runAt(i)))
            mergeStyleRuns(i - 1, 2);
    }
}

void KTextLine::repairStyleRuns()
{
    if (runs.getSize() == 0)
        runs.add(*new KTextStyleRun(KTextStyle(), 0));
    int32_t left = getLength();
    for (int32_t i = 0; i < getStyleRunCount(); ++i) {
        KTextStyleRun& run = runAt(i);
        run.setLength(std::min(run.getLength(), left));
        left -= run.getLength();
    }
    KTextStyleRun& last = runAt(getStyleRunCount() - 1);
    last.setLength(last.getLength() + left);
    // Only empty runs go; neighbours of one style stay as they were stored.
    dropEmptyRuns();
}

bool KTextLine::hasConsistentStyleRuns() const
{
    if (getStyleRunCount() == 0)
        return false;
    int64_t sum = 0;
    for (int32_t i = 0; i < getStyleRunCount(); ++i) {
        int32_t length = runAt(i).getLength();
        if (length < 0 || (length == 0 && getLength() > 0))
            return false;
        sum += length;
    }
    return sum == getLength() && (getLength() > 0 || getStyleRunCount() == 1);
}

// --- Editing -------------------------------------------------------------------

const KTextStyle& KTextLine::getStyleAt(int32_t pos) const
{
    pos = clip(pos);
    return runAt(pos > 0 ? getStyleRunAtPosition(pos - 1) : 0);
}

void KTextLine::insertText(int32_t pos, const KString& inserted)
{
    if (inserted.isEmpty())
        return;
    pos = clip(pos);
    KTextStyleRun& run = runAt(pos > 0 ? getStyleRunAtPosition(pos - 1) : 0);
    text.insertAt(pos, inSet(inserted, text.getCharSet()));
    run.setLength(run.getLength() + inserted.getLength());
}

void KTextLine::insertText(int32_t pos, const KString& inserted, const KTextStyle& style)
{
    if (inserted.isEmpty())
        return;
    pos = clip(pos);
    int32_t index = boundaryAt(pos);
    text.insertAt(pos, inSet(inserted, text.getCharSet()));
    runs.insertAt(*new KTextStyleRun(style, inserted.getLength()), index);
    mergeEqualStyleRuns();
}

void KTextLine::deleteText(int32_t pos, int32_t count)
{
    pos = clip(pos);
    count = std::min(count, getLength() - pos);
    if (count <= 0)
        return;
    int32_t end = pos + count;
    int32_t start = 0;
    for (int32_t i = 0; i < getStyleRunCount(); ++i) {
        KTextStyleRun& run = runAt(i);
        int32_t runEnd = start + run.getLength();
        int32_t cut = std::max(0, std::min(runEnd, end) - std::max(start, pos));
        start = runEnd;
        run.setLength(run.getLength() - cut);
    }
    text.removeRange(pos, count);
    mergeEqualStyleRuns();
}

void KTextLine::setStyle(int32_t pos, int32_t count, const KTextStyle& style)
{
    changeStyle(pos, count, [&](KTextStyle& run) { run.setStyle(style); });
}

void KTextLine::changeStyle(int32_t pos, int32_t count, const std::function<void(KTextStyle&)>& change)
{
    if (getLength() == 0) {
        change(runAt(0));
        return;
    }
    pos = clip(pos);
    count = std::min(count, getLength() - pos);
    if (count <= 0)
        return;
    int32_t first = boundaryAt(pos);
    int32_t last = boundaryAt(pos + count);
    for (int32_t i = first; i < last; ++i)
        change(runAt(i));
    mergeEqualStyleRuns();
}

KTextLinePtr KTextLine::splitOff(int32_t pos)
{
    pos = clip(pos);
    KTextStyle cutStyle = getStyleAt(pos);
    int32_t index = boundaryAt(pos);
    KTextLinePtr tail(new KTextLine());
    tail->text = text.mid(pos, getLength() - pos);
    if (index < getStyleRunCount()) {
        tail->runs.clear();
        while (index < getStyleRunCount()) {
            tail->runs.add(runAt(index));
            runs.removeAt(index);
        }
    } else {
        tail->runAt(0).setStyle(cutStyle);
    }
    text.truncate(pos);
    if (getStyleRunCount() == 0)
        runs.add(*new KTextStyleRun(tail->runAt(0), 0));
    return tail;
}

void KTextLine::append(const KTextLine& other)
{
    if (other.getLength() == 0)
        return;
    if (getLength() == 0)
        runs.clear();
    text += inSet(other.text, text.getCharSet());
    for (int32_t i = 0; i < other.getStyleRunCount(); ++i)
        runs.add(*new KTextStyleRun(other.runAt(i)));
    mergeEqualStyleRuns();
}

void KTextLine::scaleFontSizes(double factor)
{
    for (int32_t i = 0; i < getStyleRunCount(); ++i)
        runAt(i).scaleFontSize(factor);
}

// --- Persistence ---------------------------------------------------------------

void KTextLine::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        runs.writeToFile(file, 1);
        text.writeToFile(file, 1);
    });
}

bool KTextLine::readRecord(KFile& file)
{
    KBag readRuns;
    KString readText;
    bool read = KGraphicsStreams::readMainSection(file, classRecord, [&] {
        return KGraphicsStreams::readNested(file, readRuns) && KGraphicsStreams::readNested(file, readText);
    });
    if (!read)
        return false;
    text = readText;
    takeRuns(readRuns);
    repairStyleRuns();
    return true;
}

void KTextLine::readFromFile(KFile& file) { readRecord(file); }

// Only runs are taken; empty slots, raw values and objects of other classes
// are passed over.
void KTextLine::takeRuns(const KBag& read)
{
    runs.clear();
    for (int32_t i = 0; i < read.getSize(); ++i) {
        KThing* element = read.getAt(i);
        if (element && element->isEqualOrSubClass(KTextStyleRun::classRecord))
            runs.add(*element);
    }
}

void KTextLine::describe(KJsonWriter& out) const
{
    out.member("text", text);
    out.key("runs");
    out.beginArray();
    for (int32_t i = 0; i < getStyleRunCount(); ++i)
        out.object(&runAt(i));
    out.endArray();
}

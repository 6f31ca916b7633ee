#include "graphics/KTextBlock.h"

#include "graphics/KGraphicsStreams.h"
#include "graphics/KTextStyleRun.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStringBuilder.h"

#include <algorithm>
#include <vector>

K_DEFINE_CLASS(KTextBlock, KThing)

namespace {

// The text cut at CR, LF and CR LF; a break at the end leaves an empty last
// piece.
std::vector<KString> splitAtLineBreaks(const KString& text)
{
    std::vector<KString> pieces;
    int32_t start = 0;
    int32_t length = text.getLength();
    for (int32_t i = 0; i < length; ++i) {
        char c = text.charAt(i);
        if (c != '\r' && c != '\n')
            continue;
        pieces.push_back(text.mid(start, i - start));
        if (c == '\r' && i + 1 < length && text.charAt(i + 1) == '\n')
            ++i;
        start = i + 1;
    }
    pieces.push_back(text.mid(start, length - start));
    for (KString& piece : pieces)
        piece.setCharSet(text.getCharSet());
    return pieces;
}

} // namespace

KTextBlock::KTextBlock() { lines.add(*new KTextLine()); }

KTextBlock::KTextBlock(const KString& text, const KTextStyle& style, int16_t alignment)
    : alignment(alignment)
{
    setPlainText(text, style);
}

KTextBlock::KTextBlock(const KTextBlock& other)
    : KThing(other)
    , alignment(other.alignment)
{
    copyLinesFrom(other);
}

KTextBlock& KTextBlock::operator=(const KTextBlock& other)
{
    if (this != &other) {
        alignment = other.alignment;
        copyLinesFrom(other);
    }
    return *this;
}

KThing* KTextBlock::deepCopy() const { return new KTextBlock(*this); }

void KTextBlock::copyLinesFrom(const KTextBlock& other)
{
    lines.clear();
    for (int32_t i = 0; i < other.getLineCount(); ++i)
        lines.add(*new KTextLine(other.lineAt(i)));
}

KTextLine& KTextBlock::lineAt(int32_t index) const { return static_cast<KTextLine&>(lines[index]); }

KTextLine* KTextBlock::getLine(int32_t index) const
{
    return index >= 0 && index < getLineCount() ? &lineAt(index) : nullptr;
}

void KTextBlock::addLine(const KTextLine& line) { lines.add(*new KTextLine(line)); }

void KTextBlock::setPlainText(const KString& text, const KTextStyle& style)
{
    lines.clear();
    for (const KString& piece : splitAtLineBreaks(text))
        lines.add(*new KTextLine(piece, style));
}

// --- Positions -----------------------------------------------------------------

int32_t KTextBlock::getLength() const
{
    int32_t length = getLineCount() - 1;
    for (int32_t i = 0; i < getLineCount(); ++i)
        length += lineAt(i).getLength();
    return length;
}

int32_t KTextBlock::getLineAtCharPosition(int32_t pos) const
{
    int32_t start = 0;
    int32_t last = getLineCount() - 1;
    for (int32_t i = 0; i < last; ++i) {
        start += lineAt(i).getLength();
        if (pos <= start)
            return i;
        ++start;
    }
    return last;
}

int32_t KTextBlock::getStartPositionOfLine(int32_t index) const
{
    index = std::clamp(index, 0, getLineCount() - 1);
    int32_t start = 0;
    for (int32_t i = 0; i < index; ++i)
        start += lineAt(i).getLength() + 1;
    return start;
}

KString KTextBlock::getPlainText() const
{
    KStringBuilder text;
    for (int32_t i = 0; i < getLineCount(); ++i) {
        if (i > 0)
            text += kLineBreak;
        KString line = lineAt(i).getText();
        line.convertToHostCharSet();
        text += line;
    }
    return text.toString();
}

KString KTextBlock::getPlainText(int32_t start, int32_t count) const { return getPlainText().mid(start, count); }

const KTextStyle& KTextBlock::getStyleAt(int32_t pos) const
{
    int32_t index = getLineAtCharPosition(pos);
    return lineAt(index).getStyleAt(pos - getStartPositionOfLine(index));
}

// --- Editing -------------------------------------------------------------------

void KTextBlock::insertText(int32_t pos, const KString& inserted) { insertLines(pos, inserted, nullptr); }

void KTextBlock::insertText(int32_t pos, const KString& inserted, const KTextStyle& style)
{
    insertLines(pos, inserted, &style);
}

void KTextBlock::insertLines(int32_t pos, const KString& inserted, const KTextStyle* style)
{
    if (inserted.isEmpty())
        return;
    pos = std::clamp(pos, 0, getLength());
    int32_t index = getLineAtCharPosition(pos);
    KTextLine& line = lineAt(index);
    int32_t offset = pos - getStartPositionOfLine(index);
    std::vector<KString> pieces = splitAtLineBreaks(inserted);
    if (pieces.size() == 1) {
        if (style)
            line.insertText(offset, pieces.front(), *style);
        else
            line.insertText(offset, pieces.front());
        return;
    }
    KTextStyle typed = style ? *style : line.getStyleAt(offset);
    KTextLinePtr tail = line.splitOff(offset);
    line.insertText(offset, pieces.front(), typed);
    for (size_t i = 1; i + 1 < pieces.size(); ++i)
        lines.insertAt(*new KTextLine(pieces[i], typed), ++index);
    if (tail->getLength() == 0)
        tail->setStyle(0, 0, typed);
    tail->insertText(0, pieces.back(), typed);
    lines.insertAt(tail, ++index);
}

void KTextBlock::deleteText(int32_t pos, int32_t count)
{
    pos = std::clamp(pos, 0, getLength());
    count = std::min(count, getLength() - pos);
    if (count <= 0)
        return;
    int32_t first = getLineAtCharPosition(pos);
    int32_t last = getLineAtCharPosition(pos + count);
    int32_t firstOffset = pos - getStartPositionOfLine(first);
    int32_t lastOffset = pos + count - getStartPositionOfLine(last);
    KTextLine& line = lineAt(first);
    if (first == last) {
        line.deleteText(firstOffset, lastOffset - firstOffset);
        return;
    }
    line.deleteText(firstOffset, line.getLength() - firstOffset);
    KTextLine& lastLine = lineAt(last);
    lastLine.deleteText(0, lastOffset);
    line.append(lastLine);
    for (int32_t i = last; i > first; --i)
        lines.removeAt(i);
}

void KTextBlock::setStyle(int32_t pos, int32_t count, const KTextStyle& style)
{
    changeStyle(pos, count, [&](KTextStyle& run) { run.setStyle(style); });
}

void KTextBlock::changeStyle(int32_t pos, int32_t count, const std::function<void(KTextStyle&)>& change)
{
    if (count <= 0) {
        // At a bare cursor only an empty line changes: its style is what
        // will be typed there.
        KTextLine& line = lineAt(getLineAtCharPosition(pos));
        if (line.getLength() == 0)
            line.changeStyle(0, 0, change);
        return;
    }
    int64_t end = int64_t(pos) + count;
    int32_t start = 0;
    for (int32_t i = 0; i < getLineCount() && start < end; ++i) {
        KTextLine& line = lineAt(i);
        int32_t length = line.getLength();
        if (length == 0) {
            if (start >= pos)
                line.changeStyle(0, 0, change);
        } else {
            int64_t from = std::max<int64_t>(pos, start);
            int64_t to = std::min<int64_t>(end, int64_t(start) + length);
            if (from < to)
                line.changeStyle(int32_t(from - start), int32_t(to - from), change);
        }
        start += length + 1;
    }
}

void KTextBlock::setColour(const KColor& colour)
{
    changeStyle(0, getLength() + 1, [&](KTextStyle& run) { run.setColour(colour); });
}

void KTextBlock::scaleFontSizes(double factor)
{
    for (int32_t i = 0; i < getLineCount(); ++i)
        lineAt(i).scaleFontSizes(factor);
}

// --- Persistence ---------------------------------------------------------------

void KTextBlock::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        lines.writeToFile(file, 1);
        file.writeShort(alignment);
    });
}

bool KTextBlock::readRecord(KFile& file)
{
    KBag readLines;
    int16_t readAlignment = 0;
    bool read = KGraphicsStreams::readMainSection(file, classRecord, [&] {
        if (!KGraphicsStreams::readNested(file, readLines))
            return false;
        readAlignment = file.readShort();
        return file.getError() == 0;
    });
    if (!read)
        return false;
    takeLines(readLines);
    alignment = readAlignment;
    return true;
}

void KTextBlock::readFromFile(KFile& file) { readRecord(file); }

void KTextBlock::takeLines(const KBag& read)
{
    lines.clear();
    for (int32_t i = 0; i < read.getSize(); ++i) {
        KThing* element = read.getAt(i);
        if (element && element->isEqualOrSubClass(KTextLine::classRecord))
            lines.add(*element);
    }
    if (lines.getSize() == 0)
        lines.add(*new KTextLine());
}

void KTextBlock::describe(KJsonWriter& out) const
{
    out.member("alignment", int32_t(alignment));
    out.key("lines");
    out.beginArray();
    for (int32_t i = 0; i < getLineCount(); ++i)
        out.object(&lineAt(i));
    out.endArray();
}

#include "windowing/KEditFieldControl.h"

#include "graphics/KFont.h"
#include "graphics/KTextLine.h"
#include "graphics/KTextStyleRun.h"
#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KNativeEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KTextFormatMenu.h"
#include "windowing/KWindow.h"

#include <algorithm>
#include <vector>

K_DEFINE_CLASS(KEditFieldControl, KControl)

namespace {

constexpr int32_t kStyleFaces = KFont::Bold | KFont::Italic | KFont::Underline;

KNativeColour nativeColour(const KColor& colour) { return { colour.getRed(), colour.getGreen(), colour.getBlue() }; }

KString hostText(const KString& text)
{
    KString result(text);
    result.convertToHostCharSet();
    return result;
}

KString bytesText(const std::string& bytes, size_t from, size_t count)
{
    KString text;
    if (count > 0)
        text.setText(bytes.data() + from, int32_t(count));
    return text;
}

void addRun(std::vector<KNativeStyledRun>& runs, int32_t length, const KNativeTextStyle& style)
{
    if (length <= 0)
        return;
    if (!runs.empty() && runs.back().style == style)
        runs.back().length += length;
    else
        runs.push_back({ length, style });
}

// The styles a block was loaded with, to be found again by their look.
class StyleBook {
public:
    explicit StyleBook(const KTextBlock* model)
    {
        if (!model)
            return;
        for (int32_t i = 0; i < model->getLineCount(); ++i) {
            const KTextLine& line = *model->getLine(i);
            for (int32_t r = 0; r < line.getStyleRunCount(); ++r)
                styles.push_back(*line.getStyleRun(r));
        }
    }

    KTextStyle styleFor(const KNativeTextStyle& look) const
    {
        for (const KTextStyle& style : styles) {
            if (KEditFieldControl::toNative(style) == look)
                return style;
        }
        // A new look keeps the settings the field's text had beyond it.
        KTextStyle made = styles.empty() ? KTextStyle() : styles.front();
        KFont font = made.getFont();
        font.setName(KString(look.family.c_str()));
        font.setSize(look.size);
        font.setFace((font.getFace() & ~kStyleFaces) | (look.face & kStyleFaces));
        made.setFont(font);
        KColor colour = made.getColour();
        colour.set(look.colour.red, look.colour.green, look.colour.blue);
        made.setColour(colour);
        return made;
    }

private:
    std::vector<KTextStyle> styles;
};

// The style of each character, by its run.
std::vector<int32_t> runOfEachCharacter(const KNativeStyledText& text)
{
    std::vector<int32_t> runOf;
    runOf.reserve(text.text.size());
    for (size_t r = 0; r < text.runs.size() && runOf.size() < text.text.size(); ++r) {
        int32_t length = std::max(text.runs[r].length, 0);
        for (int32_t i = 0; i < length && runOf.size() < text.text.size(); ++i)
            runOf.push_back(int32_t(r));
    }
    // Characters no run covers take the last run's style.
    while (runOf.size() < text.text.size())
        runOf.push_back(text.runs.empty() ? -1 : int32_t(text.runs.size()) - 1);
    return runOf;
}

} // namespace

KEditFieldControl::KEditFieldControl()
    : block(new KTextBlock())
{
}

KEditFieldControl::KEditFieldControl(int32_t id, const KWideRectangle& bounds, int32_t fieldMode)
    : KEditFieldControl()
{
    mode = std::clamp(fieldMode, int32_t(SingleLine), int32_t(StyledText));
    setId(id);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
}

KEditFieldControl::~KEditFieldControl() = default;

void KEditFieldControl::editText(KNativeTextEdit edit)
{
    if (hasNativePart())
        KNativeLayer::get().editControlText(getNativeControl(), edit);
}

void KEditFieldControl::setFormatMenu(KTextFormatMenu* menu) { formatMenu = menu; }

KTextFormatMenu* KEditFieldControl::getFormatMenu() const { return formatMenu.get(); }

// --- Conversions -------------------------------------------------------------------

KNativeTextStyle KEditFieldControl::toNative(const KTextStyle& style)
{
    KNativeTextStyle look;
    look.family = hostText(style.getFont().getName()).c_str();
    look.size = style.getFont().getSize();
    look.face = style.getFont().getFace() & kStyleFaces;
    look.colour = nativeColour(style.getColour());
    return look;
}

KNativeStyledText KEditFieldControl::toNative(const KTextBlock& source)
{
    KNativeStyledText text;
    text.alignment = source.getAlignment();
    int32_t last = source.getLineCount() - 1;
    for (int32_t i = 0; i <= last; ++i) {
        const KTextLine& line = *source.getLine(i);
        KString characters = hostText(line.getText());
        text.text.append(characters.c_str(), size_t(characters.getLength()));
        for (int32_t r = 0; r < line.getStyleRunCount(); ++r)
            addRun(text.runs, line.getStyleRun(r)->getLength(), toNative(*line.getStyleRun(r)));
        if (i < last) {
            // The break carries the style at the line's end: an empty line
            // keeps its own this way.
            text.text += KTextBlock::kLineBreak;
            addRun(text.runs, 1, toNative(line.getStyleAt(line.getLength())));
        }
    }
    if (text.runs.empty())
        text.runs.push_back({ 0, toNative(source.getStyleAt(0)) });
    return text;
}

KTextBlock KEditFieldControl::fromNative(const KNativeStyledText& text, const KTextBlock* model)
{
    StyleBook book(model);
    std::vector<int32_t> runOf = runOfEachCharacter(text);
    auto styleAt = [&](size_t index) {
        int32_t run = index < runOf.size() ? runOf[index] : -1;
        return run >= 0 ? book.styleFor(text.runs[size_t(run)].style) : book.styleFor(KNativeTextStyle());
    };
    KTextStyle first = text.runs.empty() ? KTextStyle() : book.styleFor(text.runs.front().style);
    KTextBlock result(bytesText(text.text, 0, text.text.size()), first, int16_t(text.alignment));
    // Each run over its characters; a break in a run gives the empty line
    // it ends that run's style.
    size_t start = 0;
    while (start < runOf.size()) {
        size_t end = start;
        while (end < runOf.size() && runOf[end] == runOf[start])
            ++end;
        KTextStyle style = styleAt(start);
        result.setStyle(int32_t(start), int32_t(end - start), style);
        start = end;
    }
    // An empty last line has no break of its own: it types on in the
    // style of the one before it.
    int32_t last = result.getLineCount() - 1;
    if (last > 0 && result.getLine(last)->getLength() == 0 && !runOf.empty())
        result.getLine(last)->setStyle(0, 0, styleAt(runOf.size() - 1));
    return result;
}

// --- Text -----------------------------------------------------------------------------

bool KEditFieldControl::describeNative(KNativeControlSetup& setup) const
{
    switch (mode) {
    case SingleLine:
        setup.kind = KNativeControlKind::Entry;
        setup.text = block->getPlainText().c_str();
        break;
    case MultiLine:
        setup.kind = KNativeControlKind::MultiLineText;
        setup.text = block->getPlainText().c_str();
        std::replace(setup.text.begin(), setup.text.end(), KTextBlock::kLineBreak, '\n');
        break;
    default:
        setup.kind = KNativeControlKind::StyledText;
        setup.styledText = toNative(*block);
        setup.colour = nativeColour(backColour);
        setup.colour.transparent = transparentBackground;
        break;
    }
    return true;
}

void KEditFieldControl::setTextBlock(const KTextBlock& value)
{
    *block = value;
    selectionStart = 0;
    selectionLength = 0;
    if (!hasNativePart())
        return;
    if (mode == StyledText) {
        KNativeLayer::get().setControlStyledText(getNativeControl(), toNative(*block));
        return;
    }
    KNativeControlSetup setup;
    describeNative(setup);
    KNativeLayer::get().setControlText(getNativeControl(), setup.text.c_str());
}

KTextBlock KEditFieldControl::getTextBlock() const
{
    if (!hasNativePart())
        return *block;
    if (mode == StyledText) {
        KNativeStyledText text;
        if (KNativeLayer::get().controlStyledText(getNativeControl(), text))
            *block = fromNative(text, block.get());
        return *block;
    }
    std::string plain;
    if (KNativeLayer::get().controlText(getNativeControl(), plain)) {
        std::replace(plain.begin(), plain.end(), '\n', KTextBlock::kLineBreak);
        block->setPlainText(bytesText(plain, 0, plain.size()), block->getStyleAt(0));
    }
    return *block;
}

void KEditFieldControl::setBackColour(const KColor& colour)
{
    backColour = colour;
    showBackground();
}

void KEditFieldControl::setTransparentBackground(bool transparent)
{
    transparentBackground = transparent;
    showBackground();
}

void KEditFieldControl::showBackground()
{
    if (!hasNativePart())
        return;
    KNativeColour shown = nativeColour(backColour);
    shown.transparent = transparentBackground;
    KNativeLayer::get().setControlColour(getNativeControl(), shown);
}

// --- Selection ----------------------------------------------------------------------------

void KEditFieldControl::selectAll() { setSelection(0, getTextBlock().getLength()); }

void KEditFieldControl::setSelection(int32_t start, int32_t length)
{
    int32_t total = hasNativePart() ? getTextBlock().getLength() : block->getLength();
    selectionStart = std::clamp(start, 0, total);
    selectionLength = std::clamp(length, 0, total - selectionStart);
    if (hasNativePart())
        KNativeLayer::get().selectControlText(getNativeControl(), selectionStart, selectionLength);
}

void KEditFieldControl::getSelection(int32_t& start, int32_t& length) const
{
    start = selectionStart;
    length = selectionLength;
    if (hasNativePart())
        KNativeLayer::get().controlSelection(getNativeControl(), start, length);
}

KTextStyle KEditFieldControl::getSelectionStyle() const
{
    KTextBlock text = getTextBlock();
    int32_t start = 0;
    int32_t length = 0;
    getSelection(start, length);
    // The first selected character is the one before position start + 1.
    return text.getStyleAt(length > 0 ? start + 1 : start);
}

int16_t KEditFieldControl::getAlignment() const { return getTextBlock().getAlignment(); }

// --- Style changes -----------------------------------------------------------------------

void KEditFieldControl::setFontFace(const KString& family)
{
    KNativeStyleChange wanted;
    wanted.setFamily = true;
    wanted.family = hostText(family).c_str();
    change(wanted);
}

void KEditFieldControl::setFontSize(double points)
{
    KNativeStyleChange wanted;
    wanted.setSize = true;
    wanted.size = std::clamp(points, KTextStyle::kSmallestFontSize, KFont::kMaxSize);
    change(wanted);
}

void KEditFieldControl::setFontStyle(int32_t face)
{
    KNativeStyleChange wanted;
    wanted.face = face & kStyleFaces;
    wanted.faceMask = (wanted.face ^ getSelectionStyle().getFont().getFace()) & kStyleFaces;
    if (wanted.faceMask == 0)
        wanted.faceMask = kStyleFaces;
    change(wanted);
}

void KEditFieldControl::setTextColour(const KColor& colour)
{
    KNativeStyleChange wanted;
    wanted.setColour = true;
    wanted.colour = nativeColour(colour);
    change(wanted);
}

void KEditFieldControl::setAlignment(int16_t alignment)
{
    KNativeStyleChange wanted;
    wanted.setAlignment = true;
    wanted.alignment = alignment;
    change(wanted);
}

void KEditFieldControl::change(const KNativeStyleChange& wanted)
{
    if (hasNativePart() && mode == StyledText)
        KNativeLayer::get().changeControlTextStyle(getNativeControl(), wanted);
    else
        changeHeldBlock(wanted);
}

void KEditFieldControl::changeHeldBlock(const KNativeStyleChange& wanted)
{
    if (wanted.setAlignment)
        block->setAlignment(int16_t(wanted.alignment));
    block->changeStyle(selectionStart, selectionLength, [&](KTextStyle& style) {
        KFont font = style.getFont();
        if (wanted.setFamily)
            font.setName(KString(wanted.family.c_str()));
        if (wanted.setSize)
            font.setSize(wanted.size);
        font.setFace((font.getFace() & ~wanted.faceMask) | (wanted.face & wanted.faceMask));
        style.setFont(font);
        if (wanted.setColour) {
            KColor colour = style.getColour();
            colour.set(wanted.colour.red, wanted.colour.green, wanted.colour.blue);
            style.setColour(colour);
        }
    });
}

// --- Events ----------------------------------------------------------------------------------

void KEditFieldControl::doFocusChange(int32_t focusChange)
{
    KControl::doFocusChange(focusChange);
    if (focusChange != FocusLost && hasNativePart())
        KNativeLayer::get().focusControl(getNativeControl());
}

KEventReturn KEditFieldControl::doKeyDown(KKeyEvent& event)
{
    if (!hasNativePart() || !isEnabled())
        return 0;
    KNativeLayer::get().sendControlKey(getNativeControl(), event.getKeyCode(), event.getModifiers());
    return 1;
}

KEventReturn KEditFieldControl::doNativeEvent(KNativeEvent& event)
{
    const KNativeRecord* record = event.getNativeRecord();
    if (!record || record->param1 != KControlNotification::ContextMenu)
        return 0;
    showMenuAt(*record);
    return 1;
}

// The record tells the screen position; the menu stands at it in the
// window's terms.
void KEditFieldControl::showMenuAt(const KNativeRecord& record)
{
    KWindow* window = getWindow();
    if (!formatMenu || !window)
        return;
    KGraphicPoint local = window->globalToLocal(KGraphicPoint(int16_t(record.x), int16_t(record.y)));
    KEditFieldControlPtr alive(this);
    KTextFormatMenuPtr menu = formatMenu;
    menu->popUp(*this, KWidePoint(local.x, local.y));
}

void KEditFieldControl::describe(KJsonWriter& out) const
{
    KControl::describe(out);
    out.member("mode", mode);
    out.member("value", getTextBlock().getPlainText());
}

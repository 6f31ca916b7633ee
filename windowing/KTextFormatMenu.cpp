#include "windowing/KTextFormatMenu.h"

#include "graphics/KFont.h"
#include "graphics/KTextBlock.h"
#include "kernel/KClass.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KEditFieldControl.h"
#include "windowing/KFormatEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"
#include "windowing/KWindow.h"

#include <cctype>
#include <cmath>
#include <string>

K_DEFINE_CLASS(KTextFormatMenu, KThing)

namespace {

constexpr int32_t kStyleFaces = KFont::Bold | KFont::Italic | KFont::Underline;

KNativeMenuItem command(int32_t id, const KString& text, bool enabled)
{
    KNativeMenuItem item;
    item.id = id;
    item.text = text.c_str();
    item.enabled = enabled;
    return item;
}

KNativeMenuItem check(int32_t id, const KString& text, bool enabled, bool checked)
{
    KNativeMenuItem item = command(id, text, enabled);
    item.checkable = true;
    item.checked = checked;
    return item;
}

KNativeMenuItem subMenu(const KString& text, bool enabled, std::vector<KNativeMenuItem> children)
{
    KNativeMenuItem item;
    item.text = text.c_str();
    item.enabled = enabled;
    item.children = std::move(children);
    return item;
}

KNativeMenuItem separator()
{
    KNativeMenuItem item;
    item.separator = true;
    return item;
}

// Family names match whatever their case, as fontconfig matches them.
bool sameFamily(const KString& a, const KString& b)
{
    std::string left = a.c_str();
    std::string right = b.c_str();
    auto lower = [](std::string& text) {
        for (char& c : text)
            c = char(std::tolower(static_cast<unsigned char>(c)));
    };
    lower(left);
    lower(right);
    return left == right;
}

int32_t alignmentItem(int16_t alignment) { return KTextFormatMenu::FirstAlignment + int32_t(alignment); }

} // namespace

KTextFormatMenu::KTextFormatMenu() = default;

KTextFormatMenu::~KTextFormatMenu() = default;

const std::vector<KString>& KTextFormatMenu::getCandidateFaces()
{
    static const std::vector<KString> faces { "Arial", "Times New Roman", "Courier New", "Comic Sans MS", "Verdana" };
    return faces;
}

const std::vector<int32_t>& KTextFormatMenu::getSizes()
{
    static const std::vector<int32_t> sizes { 9, 10, 12, 14, 16, 18, 20, 24, 28, 32, 36, 48, 60, 72 };
    return sizes;
}

std::vector<KString> KTextFormatMenu::listFaces(const KString& current)
{
    // fontconfig is asked once a run: the fonts do not change under it.
    static const std::vector<KString> installed = [] {
        std::vector<KString> found;
        for (const KString& face : getCandidateFaces()) {
            if (KFont::isFamilyInstalled(face))
                found.push_back(face);
        }
        return found;
    }();
    std::vector<KString> faces = installed;
    bool listed = current.isEmpty();
    for (const KString& face : faces)
        listed = listed || sameFamily(face, current);
    if (!listed)
        faces.push_back(current);
    return faces;
}

std::vector<KNativeMenuItem> KTextFormatMenu::buildItems(const KTextStyle& style, int16_t alignment)
{
    const KFont& font = style.getFont();
    bool on = enabledState;
    offeredFaces = listFaces(font.getName());
    std::vector<KNativeMenuItem> faces;
    for (size_t i = 0; i < offeredFaces.size(); ++i)
        faces.push_back(
            check(FirstFace + int32_t(i), offeredFaces[i], on, sameFamily(offeredFaces[i], font.getName())));
    std::vector<KNativeMenuItem> sizes;
    for (int32_t points : getSizes())
        sizes.push_back(check(FirstSize + points, KString(std::to_string(points).c_str()), on,
                              std::lround(font.getSize()) == points));
    std::vector<KNativeMenuItem> items;
    items.push_back(subMenu(kTranslate("Font"), on, std::move(faces)));
    items.push_back(subMenu(kTranslate("Size"), on, std::move(sizes)));
    items.push_back(separator());
    items.push_back(check(Bold, kTranslate("Bold"), on, (font.getFace() & KFont::Bold) != 0));
    items.push_back(check(Italic, kTranslate("Italic"), on, (font.getFace() & KFont::Italic) != 0));
    items.push_back(check(Underline, kTranslate("Underline"), on, (font.getFace() & KFont::Underline) != 0));
    items.push_back(separator());
    items.push_back(command(TextColour, kTranslate("Text Color..."), on));
    items.push_back(command(BackgroundColour, kTranslate("Background Color..."), on));
    items.push_back(separator());
    items.push_back(
        check(alignmentItem(KTextBlock::AlignLeft), kTranslate("Align Left"), on, alignment == KTextBlock::AlignLeft));
    items.push_back(check(alignmentItem(KTextBlock::AlignCentre), kTranslate("Align Center"), on,
                          alignment == KTextBlock::AlignCentre));
    items.push_back(check(alignmentItem(KTextBlock::AlignRight), kTranslate("Align Right"), on,
                          alignment == KTextBlock::AlignRight));
    return items;
}

void KTextFormatMenu::popUp(KEditFieldControl& field, const KWidePoint& where)
{
    KWindow* window = field.getWindow();
    if (!window || !window->getNativeWindow())
        return;
    KTextStyle style = field.getSelectionStyle();
    std::vector<KNativeMenuItem> items = buildItems(style, field.getAlignment());
    int32_t chosen = KNativeLayer::get().popUpMenu(window->getNativeWindow(), items, where.x, where.y);
    if (chosen != 0)
        choose(chosen, style, field.getBackColour());
}

KFormatEventPtr KTextFormatMenu::makeEvent(int32_t item, const KTextStyle& style, const KColor& background)
{
    if (!enabledState)
        return KFormatEventPtr();
    KFormatEventPtr event(new KFormatEvent());
    int32_t face = style.getFont().getFace() & kStyleFaces;
    if (item >= FirstFace && item < FirstFace + int32_t(offeredFaces.size())) {
        event->setFontFace(offeredFaces[size_t(item - FirstFace)]);
    } else if (item > FirstSize && item <= FirstSize + getSizes().back()) {
        event->setFontSize(double(item - FirstSize));
    } else if (item == Bold) {
        event->setFontStyle(face ^ KFont::Bold);
    } else if (item == Italic) {
        event->setFontStyle(face ^ KFont::Italic);
    } else if (item == Underline) {
        event->setFontStyle(face ^ KFont::Underline);
    } else if (item == TextColour || item == BackgroundColour) {
        KColor colour = item == TextColour ? style.getColour() : background;
        if (!askColour(colour))
            return KFormatEventPtr();
        if (item == TextColour)
            event->setFontColor(colour);
        else
            event->setBackgroundColor(colour);
    } else if (item >= alignmentItem(KTextBlock::AlignLeft) && item <= alignmentItem(KTextBlock::AlignRight)) {
        event->setAlignment(int16_t(item - FirstAlignment));
    } else {
        return KFormatEventPtr();
    }
    return event;
}

bool KTextFormatMenu::choose(int32_t item, const KTextStyle& style, const KColor& background)
{
    KFormatEventPtr event = makeEvent(item, style, background);
    if (!event)
        return false;
    post(event.get());
    return true;
}

// The chooser goes through the dialog handler when there is one, so that
// the framework knows a native dialog is up.
bool KTextFormatMenu::askColour(KColor& colour) const
{
    if (KDialogHandler* dialogs = KDialogHandler::current())
        return dialogs->doColorDialog(colour);
    KNativeColour native { colour.getRed(), colour.getGreen(), colour.getBlue() };
    if (!KNativeLayer::get().chooseColour("", native))
        return false;
    colour.set(native.red, native.green, native.blue);
    return true;
}

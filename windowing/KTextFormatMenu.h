#pragma once

#include "graphics/KColor.h"
#include "graphics/KTextStyle.h"
#include "graphics/KWidePoint.h"
#include "kernel/KString.h"
#include "kernel/KThing.h"
#include "windowing/KNativeTypes.h"
#include "windowing/KWindowingForward.h"

#include <vector>

// The menu of a text's format: the font's face and size, bold, italic and
// underline, the text's colour and its background's, and the alignment.
// Shown over an edit field, it ticks what the field's selection has, and a
// choice posts a KFormatEvent (type 8) that carries the one value changed;
// whoever handles the event applies it.
class KTextFormatMenu : public KThing {
    K_DECLARE_CLASS(KTextFormatMenu)
public:
    // The items' numbers. A face is its index in the faces offered plus
    // FirstFace; a size is its points plus FirstSize; an alignment is
    // KTextBlock's number plus FirstAlignment.
    enum Item : int32_t {
        FirstFace = 1000,
        FirstSize = 2000,
        Bold = 3001,
        Italic = 3002,
        Underline = 3003,
        TextColour = 3101,
        BackgroundColour = 3102,
        FirstAlignment = 3200,
    };

    KTextFormatMenu();
    ~KTextFormatMenu() override;

    // The families offered when installed (or stood in for).
    static const std::vector<KString>& getCandidateFaces();
    // The sizes offered, in points.
    static const std::vector<int32_t>& getSizes();
    // The installed candidates and the current family when it is not
    // among them.
    static std::vector<KString> listFaces(const KString& current);

    // A disabled menu shows its items greyed and chooses nothing.
    void setEnabled(bool enabled) { enabledState = enabled; }
    bool isEnabled() const { return enabledState; }

    // The items for text of the style, aligned so; remembers the faces
    // offered, which the face items' numbers stand for.
    std::vector<KNativeMenuItem> buildItems(const KTextStyle& style, int16_t alignment);
    // Shows the menu for the field at a point of its window, and posts the
    // event of the item chosen.
    void popUp(KEditFieldControl& field, const KWidePoint& where);
    // The event an item makes for a selection of the style on the
    // background: null for an unknown item, a disabled menu, or a colour
    // chooser the user cancelled. The colour items ask for the colour.
    KFormatEventPtr makeEvent(int32_t item, const KTextStyle& style, const KColor& background);
    // makeEvent, posted; false when nothing was.
    bool choose(int32_t item, const KTextStyle& style, const KColor& background);

private:
    bool askColour(KColor& colour) const;

    bool enabledState = false;
    std::vector<KString> offeredFaces;
};

#pragma once

#include "graphics/KAlphaImage.h"
#include "graphics/KWidePoint.h"
#include "kernel/KString.h"
#include "kernel/KThing.h"
#include "windowing/KNativeTypes.h"
#include "windowing/KWindowingForward.h"

#include <array>
#include <vector>

// The navigation tool's filter menu: "All" and the ten kinds of element a
// user can look for, one column. The two actor types share the "Actor"
// entry, which stands for type 11; the old relay macros have none, since no
// story made today holds one.
class TapeObjectMenu : public KThing {
    K_DECLARE_CLASS(TapeObjectMenu)
public:
    static constexpr int32_t kEntryCount = 11;
    // An entry's item number is this plus its kind (0 for "All"), so that
    // no entry is 0, which the native side gives for a dismissed menu.
    static constexpr int32_t kFirstItem = 100;

    TapeObjectMenu();
    ~TapeObjectMenu() override;

    // The kinds in the menu's order, "All" (0) first.
    static const std::array<int32_t, kEntryCount>& kinds();
    // The translated name of an element type: "Wait" ... "Image", 11 and 12
    // both "Actor", 0 "All"; empty for a type with no name.
    static KString titleOf(int32_t type);
    // The art id of the kind's filter picture; the kinds without an entry
    // show the picture of "All".
    static int16_t pictureOf(int32_t type);
    static KAlphaImagePtr loadPicture(int32_t type);

    // The entries, the current kind ticked.
    std::vector<KNativeMenuItem> buildItems(int32_t current) const;
    // Shows the menu at a point of the window (client terms) and waits: the
    // kind chosen, or -1 when the menu was dismissed.
    int32_t popUp(KWindow& window, const KWidePoint& where, int32_t current) const;
    // The kind of an item number, -1 for a number that is no entry.
    static int32_t kindOfItem(int32_t item);
};

using TapeObjectMenuPtr = KPtr<TapeObjectMenu>;

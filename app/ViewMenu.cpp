#include "app/ViewMenu.h"

#include "app/MainPreferences.h"
#include "app/StylusApplication.h"
#include "app/StylusMenuRules.h"
#include "app/ToolPalette.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "windowing/KMenuEvent.h"
#include "windowing/KSubMenu.h"

#include <iterator>
#include <string>

namespace {

// "0.5 s", "2 s": the interval as a reader says it, with the language's
// decimal mark.
KString intervalTitle(int32_t milliseconds)
{
    KString whole(std::to_string(milliseconds / 1000).c_str());
    if (milliseconds % 1000 == 0)
        // TRANSLATORS: a scanning interval, %1 is a whole number of seconds.
        return uiText("%1 s", whole);
    // TRANSLATORS: a scanning interval of %1 seconds and %2 tenths: "%1,%2 s" where a comma marks decimals.
    return uiText("%1.%2 s", whole, KString(std::to_string(milliseconds % 1000 / 100).c_str()));
}

// Keeps the choice in the settings: the next start shows the same palette.
void remember(const ToolPalette& palette, int32_t scanInterval)
{
    StylusApplication* application = StylusApplication::current();
    if (!application)
        return;
    MainPreferences& preferences = application->editPreferences();
    preferences.paletteScale = palette.getScale();
    preferences.scanPalette = palette.isScanning();
    preferences.scanInterval = scanInterval;
    application->writePreferences();
}

} // namespace

K_DEFINE_CLASS(ViewMenu, KMenu)

ViewMenu::ViewMenu()
    : KMenu(uiText("View"))
{
    addItem(NormalPalette, uiText("Normal Palette")).setCheckable(true, true);
    addItem(LargePalette, uiText("Large Palette")).setCheckable(true, true);
    addItem(LargestPalette, uiText("Largest Palette")).setCheckable(true, true);
    addSeparator();
    addItem(ScanPalette, uiText("Scan the Palette")).setCheckable(true);
    intervals = kAdopt(new KSubMenu(*this, uiText("Scanning Interval")));
    for (size_t i = 0; i < std::size(kScanIntervals); ++i)
        intervals->addItem(FirstInterval + int32_t(i), intervalTitle(kScanIntervals[i])).setCheckable(true, true);
    addSubMenu(intervals->getTitle(), *intervals);
}

ViewMenu::~ViewMenu() = default;

KEventReturn ViewMenu::doOpen(KMenuEvent&)
{
    MenuState state = MenuState::now();
    if (!beginMenuOpen(*this, state))
        return 1;
    ToolPalette* palette = ToolPalette::current();
    StylusApplication* application = StylusApplication::current();
    bool usable = palette && application;
    enableAllItems(usable);
    if (!usable)
        return 1;
    for (int32_t i = 0; i < int32_t(std::size(ToolPalette::kScales)); ++i)
        checkItem(NormalPalette + i, palette->getScale() == ToolPalette::kScales[i]);
    checkItem(ScanPalette, palette->isScanning());
    int32_t interval = application->getPreferences().scanInterval;
    for (size_t i = 0; i < std::size(kScanIntervals); ++i)
        intervals->checkItem(FirstInterval + int32_t(i), kScanIntervals[i] == interval);
    return 1;
}

KEventReturn ViewMenu::doMenuItem(KMenuEvent& event)
{
    ToolPalette* palette = ToolPalette::current();
    StylusApplication* application = StylusApplication::current();
    if (!mayRunMenuItem() || !palette || !application)
        return 0;
    int32_t id = event.getItemId();
    int32_t interval = application->getPreferences().scanInterval;
    if (interval <= 0)
        interval = MainPreferences::kDefaultScanInterval;
    if (id >= NormalPalette && id <= LargestPalette) {
        palette->setScale(ToolPalette::kScales[id - NormalPalette]);
    } else if (id == ScanPalette) {
        palette->setScanInterval(palette->isScanning() ? 0 : interval);
    } else if (id >= FirstInterval && id < FirstInterval + int32_t(std::size(kScanIntervals))) {
        interval = kScanIntervals[id - FirstInterval];
        if (palette->isScanning())
            palette->setScanInterval(interval);
    } else {
        return 0;
    }
    remember(*palette, interval);
    return 1;
}

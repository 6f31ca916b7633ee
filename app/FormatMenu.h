#pragma once

#include "windowing/KMenu.h"

// "Format": the text format menu in the menu bar. Its items are those of
// the application's KTextFormatMenu, with the same numbers; they work on
// the text being typed and are off when none is.
class FormatMenu : public KMenu {
    K_DECLARE_CLASS(FormatMenu)
public:
    FormatMenu();
    ~FormatMenu() override;
    KEventReturn doOpen(KMenuEvent& event) override;
    KEventReturn doMenuItem(KMenuEvent& event) override;

private:
    std::vector<KThingPtr> parts;
};

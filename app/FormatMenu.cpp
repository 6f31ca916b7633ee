#include "app/FormatMenu.h"

#include "app/StylusApplication.h"
#include "app/StylusMenuRules.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "graphics/KTextBlock.h"
#include "kernel/KClass.h"
#include "windowing/KEditFieldControl.h"
#include "windowing/KMenuEvent.h"
#include "windowing/KSubMenu.h"
#include "windowing/KTextFormatMenu.h"

namespace {

KTextFormatMenu* textFormatMenu()
{
    StylusApplication* application = StylusApplication::current();
    return application ? application->getFormatMenu() : nullptr;
}

// Titles, ticks and enabling of the items of the same numbers.
void applyState(KMenu& menu, const std::vector<KNativeMenuItem>& items)
{
    size_t index = 0;
    for (const KMenuItemPtr& item : menu.getItems()) {
        if (index >= items.size())
            break;
        const KNativeMenuItem& native = items[index++];
        item->setEnabled(native.enabled);
        if (KMenu* sub = item->getSubMenu()) {
            sub->setEnabled(native.enabled);
            applyState(*sub, native.children);
        } else if (!item->isSeparator()) {
            item->setChecked(native.checked);
        }
    }
}

} // namespace

K_DEFINE_CLASS(FormatMenu, KMenu)

FormatMenu::FormatMenu()
    : KMenu(uiText("Format"))
{
    KPtr<KTextFormatMenu> shape = kAdopt(new KTextFormatMenu());
    for (const KNativeMenuItem& native : shape->buildItems(KTextStyle(), KTextBlock::AlignLeft)) {
        if (native.separator) {
            addSeparator();
            continue;
        }
        if (native.children.empty()) {
            addItem(native.id, KString(native.text.c_str())).setCheckable(native.checkable);
            continue;
        }
        KPtr<KSubMenu> part = kAdopt(new KSubMenu(*this, KString(native.text.c_str())));
        for (const KNativeMenuItem& child : native.children)
            part->addItem(child.id, KString(child.text.c_str())).setCheckable(child.checkable, true);
        addSubMenu(part->getTitle(), *part);
        parts.emplace_back(part.get());
    }
}

FormatMenu::~FormatMenu() = default;

KEventReturn FormatMenu::doOpen(KMenuEvent&)
{
    MenuState state = MenuState::now();
    if (!beginMenuOpen(*this, state))
        return 1;
    KTextFormatMenu* format = textFormatMenu();
    KEditFieldControl* field = state.textOpen ? state.window->getEditField() : nullptr;
    if (!format || !field || !format->isEnabled() || state.playing) {
        setEnabled(false);
        return 1;
    }
    applyState(*this, format->buildItems(field->getSelectionStyle(), field->getAlignment()));
    return 1;
}

KEventReturn FormatMenu::doMenuItem(KMenuEvent& event)
{
    MenuState state = MenuState::now();
    KTextFormatMenu* format = textFormatMenu();
    KEditFieldControl* field = state.textOpen ? state.window->getEditField() : nullptr;
    if (!mayRunMenuItem() || !format || !field)
        return 0;
    format->choose(event.getItemId(), field->getSelectionStyle(), field->getBackColour());
    return 1;
}

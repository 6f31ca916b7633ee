#include "app/ItemsMenu.h"

#include "app/StylusActions.h"
#include "app/StylusMenuRules.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KLocalizer.h"
#include "tape/TapeForward.h"
#include "windowing/KMenuEvent.h"

namespace {

struct Entry {
    int32_t item;
    const char* title;
    int32_t key;
    int32_t kind;
};

constexpr Entry kEntries[] = {
    { 1, kTranslatable("Text"), 'T', TextType },       { 2, kTranslatable("Image"), 'U', ImageType },
    { 3, kTranslatable("Movie"), 'M', MovieType },     { 4, kTranslatable("Sound"), 'D', SoundType },
    { 5, kTranslatable("Speech"), 'J', SpeechType },   { 6, kTranslatable("Page Transition"), 'H', PageTransitionType },
    { 7, kTranslatable("Wait"), 'W', WaitType },       { 8, kTranslatable("Pause"), 'Y', PauseType },
    { 9, kTranslatable("Actor"), 0, ActorActionType }, { 10, kTranslatable("Relay Macro"), 0, RelayMacroType },
};

} // namespace

K_DEFINE_CLASS(ItemsMenu, KMenu)

ItemsMenu::ItemsMenu()
    : KMenu(uiText("Items"))
{
    for (const Entry& entry : kEntries)
        addItem(entry.item, uiTranslate(entry.title), entry.key);
}

int32_t ItemsMenu::kindOf(int32_t item)
{
    for (const Entry& entry : kEntries) {
        if (entry.item == item)
            return entry.kind;
    }
    return 0;
}

KEventReturn ItemsMenu::doOpen(KMenuEvent&)
{
    MenuState state = MenuState::now();
    if (!beginMenuOpen(*this, state))
        return 1;
    for (const Entry& entry : kEntries)
        enableItem(entry.item, state.actions && state.actions->canInsertElement(entry.kind));
    return 1;
}

KEventReturn ItemsMenu::doMenuItem(KMenuEvent& event)
{
    StylusActions* actions = StylusActions::current();
    int32_t kind = kindOf(event.getItemId());
    if (!mayRunMenuItem() || !actions || kind == 0)
        return 0;
    KPtr<StylusActions> held(actions);
    if (actions->canInsertElement(kind))
        actions->insertElement(kind);
    return 1;
}

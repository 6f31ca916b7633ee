#include "windowing/KMenuManager.h"

#include "kernel/KClass.h"
#include "windowing/KMenuBar.h"
#include "windowing/KMenuEvent.h"

namespace {

KMenuManager* gMenuManager = nullptr;

} // namespace

K_DEFINE_CLASS(KMenuManager, KThing)

KMenuManager::KMenuManager() { gMenuManager = this; }

KMenuManager::~KMenuManager()
{
    if (gMenuManager == this)
        gMenuManager = nullptr;
}

KMenuManager* KMenuManager::current() { return gMenuManager; }

void KMenuManager::setMenuBar(KMenuBar* bar)
{
    menuBar = bar;
    if (bar)
        bar->setMenusEnabled(menusEnabled);
}

KMenuBar* KMenuManager::getMenuBar() const { return static_cast<KMenuBar*>(menuBar.get()); }

void KMenuManager::enableMenus(bool enabled)
{
    menusEnabled = enabled;
    if (KMenuBar* bar = getMenuBar())
        bar->setMenusEnabled(enabled);
}

KEventReturn KMenuManager::route(KMenuEvent& event)
{
    KMenuBarPtr bar(getMenuBar());
    if (!bar)
        return 0;
    switch (event.getType()) {
    case KMenuEvent::MenuOpen:
        return bar->openMenu(event.getItemId()) ? 1 : 0;
    case KMenuEvent::ItemChosen:
        return bar->chooseCommand(event.getItemId());
    case KMenuEvent::Accelerator:
        return bar->doAccelerator(event.getItemId());
    default:
        return 0;
    }
}

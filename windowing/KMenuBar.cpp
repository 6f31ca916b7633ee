#include "windowing/KMenuBar.h"

#include "kernel/KClass.h"
#include "windowing/KApplication.h"
#include "windowing/KMenu.h"
#include "windowing/KMenuEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"
#include "windowing/KWindow.h"

namespace {

int32_t upperKey(int32_t key) { return key >= 'a' && key <= 'z' ? key - 'a' + 'A' : key; }

// Every command item of the menu and of its sub-menus, in the order shown.
template<class Visit>
void forEachItem(KMenu& menu, Visit&& visit)
{
    for (const KMenuItemPtr& item : menu.getItems()) {
        if (KMenu* sub = item->getSubMenu())
            forEachItem(*sub, visit);
        else if (!item->isSeparator())
            visit(menu, *item);
    }
}

} // namespace

K_DEFINE_CLASS(KMenuBar, KThing)

KMenuBar::KMenuBar() = default;

KMenuBar::~KMenuBar() { uninstall(); }

void KMenuBar::addMenu(KMenu& menu) { menus.emplace_back(&menu); }

KMenu& KMenuBar::addHelpMenu(const KString& aboutTitle)
{
    helpMenu = kAdopt(new KMenu(kTranslate("Help")));
    helpMenu->addItem(KeyboardSummary, kTranslate("Keyboard Commands Summary"));
    helpMenu->addSeparator();
    helpMenu->addItem(About, aboutTitle);
    addMenu(*helpMenu);
    return *helpMenu;
}

KMenu* KMenuBar::getHelpMenu() const { return helpMenu.get(); }

// --- The native bar ------------------------------------------------------------

void KMenuBar::number(KMenu& menu, int32_t& next)
{
    for (const KMenuItemPtr& item : menu.getItems()) {
        if (item->isSeparator())
            continue;
        item->setCommand(next++);
        if (KMenu* sub = item->getSubMenu()) {
            parents[sub] = { &menu, item.get() };
            number(*sub, next);
        }
    }
}

void KMenuBar::install(KWindow& target)
{
    if (window && window != &target)
        uninstall();
    window = &target;
    menuCommands.clear();
    parents.clear();
    int32_t next = 1;
    for (const KMenuPtr& menu : menus) {
        menuCommands.push_back(next++);
        number(*menu, next);
    }
    if (void* native = window->getNativeWindow()) {
        KNativeLayer::get().setMenuBar(native, nativeMenus());
        KNativeLayer::get().showMenuBar(native, shown);
    }
}

void KMenuBar::uninstall()
{
    if (!window)
        return;
    if (void* native = window->getNativeWindow(); native && KNativeLayer::current())
        KNativeLayer::get().removeMenuBar(native);
    window = nullptr;
}

void KMenuBar::refresh()
{
    if (!window)
        return;
    if (void* native = window->getNativeWindow())
        KNativeLayer::get().updateMenuBar(native, nativeMenus());
}

void KMenuBar::setShown(bool value)
{
    if (shown == value)
        return;
    shown = value;
    if (void* native = window ? window->getNativeWindow() : nullptr)
        KNativeLayer::get().showMenuBar(native, shown);
}

void KMenuBar::setMenusEnabled(bool on)
{
    if (menusEnabled == on)
        return;
    menusEnabled = on;
    refresh();
}

bool KMenuBar::isLive(const KMenu& menu, const KMenuItem& item) const
{
    if (!menusEnabled || !menu.isItemLive(item))
        return false;
    auto up = parents.find(&menu);
    return up == parents.end() || isLive(*up->second.first, *up->second.second);
}

KNativeMenuItem KMenuBar::nativeOf(const KMenu& menu, const KMenuItem& item, bool live) const
{
    KNativeMenuItem native;
    native.separator = item.isSeparator();
    if (native.separator) {
        native.enabled = false;
        return native;
    }
    native.id = item.getCommand();
    native.text = item.getTitle().c_str();
    native.accelerator = upperKey(item.getKey());
    native.enabled = live && menu.isItemLive(item);
    native.checkable = item.isCheckable();
    native.radio = item.isRadio();
    native.checked = item.isChecked();
    if (KMenu* sub = item.getSubMenu()) {
        bool subLive = native.enabled && sub->isEnabled();
        for (const KMenuItemPtr& child : sub->getItems())
            native.children.push_back(nativeOf(*sub, *child, subLive));
    }
    return native;
}

// A menu's title stays enabled in the bar, so that it can always be
// opened and run its `doOpen`; its items show whether they may be chosen.
std::vector<KNativeMenuItem> KMenuBar::nativeMenus() const
{
    std::vector<KNativeMenuItem> tree;
    for (size_t i = 0; i < menus.size(); ++i) {
        const KMenu& menu = *menus[i];
        KNativeMenuItem top;
        top.id = i < menuCommands.size() ? menuCommands[i] : 0;
        top.text = menu.getTitle().c_str();
        bool live = menusEnabled && menu.isEnabled();
        for (const KMenuItemPtr& item : menu.getItems())
            top.children.push_back(nativeOf(menu, *item, live));
        tree.push_back(std::move(top));
    }
    return tree;
}

// --- What the user did -----------------------------------------------------------

void KMenuBar::openTree(KMenu& menu)
{
    KMenuPtr held(menu);
    KMenuEventPtr event = kAdopt(new KMenuEvent(KMenuEvent::MenuOpen));
    event->setMenuBar(this);
    event->setMenu(&menu);
    menu.doOpen(*event);
    for (KMenu* sub : menu.getSubMenus())
        openTree(*sub);
}

bool KMenuBar::openMenu(int32_t command)
{
    for (size_t i = 0; i < menuCommands.size() && i < menus.size(); ++i) {
        if (menuCommands[i] == command) {
            openTree(*menus[i]);
            refresh();
            return true;
        }
    }
    return false;
}

void KMenuBar::openAll()
{
    for (const KMenuPtr& menu : menus)
        openTree(*menu);
    refresh();
}

bool KMenuBar::findCommand(int32_t command, KMenu*& menu, KMenuItem*& item) const
{
    menu = nullptr;
    item = nullptr;
    if (command == 0)
        return false;
    for (const KMenuPtr& top : menus) {
        forEachItem(*top, [&](KMenu& owner, KMenuItem& candidate) {
            if (!item && candidate.getCommand() == command) {
                menu = &owner;
                item = &candidate;
            }
        });
    }
    return item != nullptr;
}

KEventReturn KMenuBar::chooseCommand(int32_t command)
{
    KMenu* menu = nullptr;
    KMenuItem* item = nullptr;
    if (!findCommand(command, menu, item) || !isLive(*menu, *item))
        return 0;
    return choose(*menu, *item);
}

// The help menu's items belong to the application's doHelp and doAbout.
KEventReturn KMenuBar::choose(KMenu& menu, KMenuItem& item)
{
    KMenuPtr heldMenu(menu);
    KMenuItemPtr heldItem(item);
    KThingPtr self(this);
    int32_t type = KMenuEvent::ItemChosen;
    if (&menu == helpMenu.get())
        type = item.getId() == About ? KMenuEvent::AboutChosen : KMenuEvent::HelpChosen;
    KMenuEventPtr event = kAdopt(new KMenuEvent(type));
    event->setMenuBar(this);
    event->setMenu(&menu);
    event->setItem(&item);
    event->setItemId(item.getId());
    KEventReturn result = type == KMenuEvent::ItemChosen ? menu.doMenuItem(*event) : 0;
    if (result == 0)
        result = event->processByApplication();
    // What the command changed shows at once, even with no menu opened.
    openAll();
    return result;
}

KEventReturn KMenuBar::doAccelerator(int32_t key)
{
    key = upperKey(key);
    if (key == 0)
        return 0;
    std::vector<std::pair<KMenu*, KMenuItem*>> holders;
    for (const KMenuPtr& top : menus) {
        forEachItem(*top, [&](KMenu& owner, KMenuItem& item) {
            if (upperKey(item.getKey()) == key)
                holders.emplace_back(&owner, &item);
        });
    }
    if (holders.empty())
        return 0;
    KThingPtr self(this);
    openAll();
    for (auto& [menu, item] : holders) {
        if (isLive(*menu, *item)) {
            choose(*menu, *item);
            break;
        }
    }
    return 1;
}

#include "windowing/KMenu.h"

#include "kernel/KClass.h"
#include "windowing/KMenuEvent.h"

K_DEFINE_CLASS(KMenu, KThing)

KMenu::KMenu() = default;

KMenu::KMenu(const KString& menuTitle)
    : title(menuTitle)
{
}

KMenu::~KMenu() = default;

KMenuItem& KMenu::addItem(int32_t id, const KString& itemTitle, int32_t key)
{
    items.push_back(kAdopt(new KMenuItem(id, itemTitle, key)));
    return *items.back();
}

void KMenu::addSeparator() { items.push_back(KMenuItem::makeSeparator()); }

KMenuItem& KMenu::addSubMenu(const KString& itemTitle, KMenu& menu)
{
    KMenuItem& item = addItem(-1, itemTitle);
    item.setSubMenu(&menu);
    return item;
}

std::vector<KMenu*> KMenu::getSubMenus() const
{
    std::vector<KMenu*> found;
    for (const KMenuItemPtr& item : items) {
        if (KMenu* sub = item->getSubMenu())
            found.push_back(sub);
    }
    return found;
}

// Sub-menu titles and separators are no items of a number.
KMenuItem* KMenu::findItem(int32_t id) const
{
    for (const KMenuItemPtr& item : items) {
        if (!item->isSeparator() && !item->getSubMenu() && item->getId() == id)
            return item.get();
    }
    return nullptr;
}

void KMenu::enableItem(int32_t id, bool on)
{
    if (KMenuItem* item = findItem(id))
        item->setEnabled(on);
}

void KMenu::checkItem(int32_t id, bool on)
{
    if (KMenuItem* item = findItem(id))
        item->setChecked(on);
}

void KMenu::setItemTitle(int32_t id, const KString& itemTitle)
{
    if (KMenuItem* item = findItem(id))
        item->setTitle(itemTitle);
}

void KMenu::enableAllItems(bool on)
{
    for (const KMenuItemPtr& item : items) {
        if (!item->isSeparator())
            item->setEnabled(on);
    }
}

KEventReturn KMenu::doOpen(KMenuEvent&) { return 0; }

KEventReturn KMenu::doMenuItem(KMenuEvent&) { return 0; }

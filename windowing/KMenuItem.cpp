#include "windowing/KMenuItem.h"

#include "kernel/KClass.h"
#include "windowing/KMenu.h"

K_DEFINE_CLASS(KMenuItem, KThing)

KMenuItem::KMenuItem() = default;

KMenuItem::KMenuItem(int32_t itemId, const KString& itemTitle, int32_t itemKey)
    : id(itemId)
    , title(itemTitle)
    , key(itemKey)
{
}

KMenuItem::~KMenuItem() = default;

KMenuItemPtr KMenuItem::makeSeparator()
{
    KMenuItemPtr item = kAdopt(new KMenuItem());
    item->separator = true;
    item->enabled = false;
    return item;
}

void KMenuItem::setCheckable(bool value, bool asRadio)
{
    checkable = value;
    radio = value && asRadio;
}

KMenu* KMenuItem::getSubMenu() const { return static_cast<KMenu*>(subMenu.get()); }

void KMenuItem::setSubMenu(KMenu* menu) { subMenu = menu; }

#include "app/StylusMenuBar.h"

#include "app/ActorsMenu.h"
#include "app/AnimMenu.h"
#include "app/EditMenu.h"
#include "app/FileMenu.h"
#include "app/FormatMenu.h"
#include "app/StylusActions.h"
#include "app/StylusApplication.h"
#include "app/StylusMenuRules.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "app/ViewMenu.h"
#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KTextCodec.h"
#include "tape/Tape.h"
#include "windowing/KMenu.h"

#include <string>

namespace {

StylusMenuBar* gMenuBar = nullptr;

template<class Menu>
Menu& menuOf(const KMenuBar& bar)
{
    for (const KMenuPtr& menu : bar.getMenus()) {
        if (auto* found = dynamic_cast<Menu*>(menu.get()))
            return *found;
    }
    KErrorHandler::raiseUnrecoverable(KError::ApplicationCannotRun);
}

void listKeys(const KMenu& menu, KString& text)
{
    for (const KMenuItemPtr& item : menu.getItems()) {
        if (KMenu* sub = item->getSubMenu())
            listKeys(*sub, text);
        else if (item->getKey() != 0)
            text += uiText("Ctrl+%1: %2", KString(std::string(1, char(item->getKey())).c_str()), item->getTitle())
                    + "\n";
    }
}

std::string keyText(const KMenuItem& item)
{
    return item.getKey() == 0 ? std::string() : "Ctrl+" + std::string(1, char(item.getKey()));
}

std::string utf8(const KString& text) { return KTextCodec::toUtf8(text); }

void describeMenuText(const KMenuBar& bar, const KMenu& menu, int32_t depth, std::string& out)
{
    std::string indent(size_t(depth) * 2, ' ');
    for (const KMenuItemPtr& item : menu.getItems()) {
        if (item->isSeparator()) {
            out += indent + "-\n";
            continue;
        }
        bool on = bar.isLive(menu, *item);
        if (KMenu* sub = item->getSubMenu()) {
            out += indent + "> " + utf8(item->getTitle()) + (on && sub->isEnabled() ? " on" : " off") + "\n";
            describeMenuText(bar, *sub, depth + 1, out);
            continue;
        }
        out += indent + std::to_string(item->getId()) + " \"" + utf8(item->getTitle()) + "\"";
        if (item->getKey() != 0)
            out += " " + keyText(*item);
        out += on ? " on" : " off";
        if (item->isChecked())
            out += " checked";
        out += "\n";
    }
}

void describeMenuJson(const KMenuBar& bar, const KMenu& menu, KJsonWriter& out)
{
    out.key("items");
    out.beginArray();
    for (const KMenuItemPtr& item : menu.getItems()) {
        if (item->isSeparator())
            continue;
        out.beginObject();
        KMenu* sub = item->getSubMenu();
        out.member("id", sub ? -1 : item->getId());
        out.member("title", item->getTitle());
        out.member("key", keyText(*item));
        out.member("enabled", bar.isLive(menu, *item) && (!sub || sub->isEnabled()));
        out.member("checked", item->isChecked());
        if (sub)
            describeMenuJson(bar, *sub, out);
        out.endObject();
    }
    out.endArray();
}

} // namespace

K_DEFINE_CLASS(StylusMenuBar, KMenuBar)

StylusMenuBar::StylusMenuBar()
{
    gMenuBar = this;
    addMenu(*kAdopt(new FileMenu()));
    addMenu(*kAdopt(new EditMenu()));
    addMenu(*kAdopt(new ViewMenu()));
    addMenu(*kAdopt(new FormatMenu()));
    addMenu(*kAdopt(new AnimMenu()));
    addMenu(*kAdopt(new ActorsMenu()));
    addHelpMenu(withEllipsis(uiText("About TaleLoom")));
}

StylusMenuBar::~StylusMenuBar()
{
    if (gMenuBar == this)
        gMenuBar = nullptr;
}

StylusMenuBar* StylusMenuBar::current() { return gMenuBar; }

FileMenu& StylusMenuBar::getFileMenu() const { return menuOf<FileMenu>(*this); }
EditMenu& StylusMenuBar::getEditMenu() const { return menuOf<EditMenu>(*this); }
FormatMenu& StylusMenuBar::getFormatMenu() const { return menuOf<FormatMenu>(*this); }
AnimMenu& StylusMenuBar::getAnimMenu() const { return menuOf<AnimMenu>(*this); }
ActorsMenu& StylusMenuBar::getActorsMenu() const { return menuOf<ActorsMenu>(*this); }

void StylusMenuBar::updateShown()
{
    StylusApplication* application = StylusApplication::current();
    StylusActions* actions = StylusActions::current();
    StylusWindow* window = StylusWindow::current();
    Tape* tape = window ? window->getTape() : nullptr;
    bool fullScreen = application && application->isFullScreen();
    bool shown = !fullScreen || (actions && actions->isMenuStripShown());
    if (window && window->isPlayMode() && tape && tape->getFlags().test(Tape::HideMenuBar))
        shown = false;
    if (fullScreen && window && window->isPlayMode())
        shown = false;
    setShown(shown);
}

void StylusMenuBar::update() { openAll(); }

KString StylusMenuBar::keyboardSummary() const
{
    KString text;
    for (const KMenuPtr& menu : getMenus())
        listKeys(*menu, text);
    return text;
}

std::string StylusMenuBar::describeText() const
{
    std::string out;
    for (const KMenuPtr& menu : getMenus()) {
        out += utf8(menu->getTitle()) + (areMenusEnabled() && menu->isEnabled() ? " on" : " off") + "\n";
        describeMenuText(*this, *menu, 1, out);
    }
    return out;
}

void StylusMenuBar::describe(KJsonWriter& out) const
{
    out.beginArray();
    for (const KMenuPtr& menu : getMenus()) {
        out.beginObject();
        out.member("title", menu->getTitle());
        out.member("enabled", areMenusEnabled() && menu->isEnabled());
        describeMenuJson(*this, *menu, out);
        out.endObject();
    }
    out.endArray();
}

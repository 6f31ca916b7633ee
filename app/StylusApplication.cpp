#include "app/StylusApplication.h"

#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "kernel/KClass.h"
#include "windowing/KWindow.h"

K_DEFINE_CLASS(StylusApplication, KApplication)

StylusApplication::StylusApplication()
{
    registerClasses();
    setName("TaleLoom");
}

StylusApplication::~StylusApplication() = default;

void StylusApplication::registerClasses()
{
    if (KClass::hasClass("StylusApplication"))
        return;
    StylusApplication::registerClass();
    StylusWindow::registerClass();
    ToolPalette::registerClass();
}

void StylusApplication::doInit()
{
    if (KWindow* window = getMainWindow())
        window->show(true);
    toolPalette = new ToolPalette();
    toolPalette->open(KWindow::Normal);
}

void StylusApplication::doExit()
{
    if (toolPalette) {
        toolPalette->close();
        toolPalette.clear();
    }
}

ToolPalette* StylusApplication::getToolPalette() const { return toolPalette.get(); }

#include "windowing/KPaletteWindow.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KApplication.h"

K_DEFINE_CLASS(KPaletteWindow, KWindow)

KPaletteWindow::KPaletteWindow() { setWindowFlags(Closable); }

KPaletteWindow::~KPaletteWindow() = default;

KNativeWindowSetup KPaletteWindow::makeNativeSetup() const
{
    KNativeWindowSetup setup = KWindow::makeNativeSetup();
    setup.kind = KNativeWindowKind::Palette;
    KApplication* application = KApplication::current();
    KWindow* mainWindow = application ? application->getMainWindow() : nullptr;
    setup.parent = mainWindow ? mainWindow->getNativeWindow() : nullptr;
    return setup;
}

void KPaletteWindow::open(OpenMode mode)
{
    if (isOpen())
        KErrorHandler::fatal("Already Open.");
    openWith(mode, makeNativeSetup());
}

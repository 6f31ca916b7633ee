#include "windowing/KPaletteWindow.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KApplication.h"

K_DEFINE_CLASS(KPaletteWindow, KWindow)

KPaletteWindow::KPaletteWindow() { setWindowFlags(Closable); }

KPaletteWindow::~KPaletteWindow() = default;

KNativeWindowSpec KPaletteWindow::makeNativeSpec() const
{
    KNativeWindowSpec spec = KWindow::makeNativeSpec();
    spec.kind = KNativeWindowKind::Palette;
    KApplication* application = KApplication::current();
    KWindow* mainWindow = application ? application->getMainWindow() : nullptr;
    spec.parent = mainWindow ? mainWindow->getNativeWindow() : nullptr;
    return spec;
}

void KPaletteWindow::open(int32_t mode)
{
    if (isOpen())
        knsFatalError("KPaletteWindow::open()", "Already Open.");
    openWith(mode, makeNativeSpec(), "void KPaletteWindow::open(OpenMode Mode)");
}

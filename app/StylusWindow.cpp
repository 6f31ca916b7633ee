#include "app/StylusWindow.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(StylusWindow, KWindow)

StylusWindow::StylusWindow()
{
    setTitle("TaleLoom");
    setFrame({ 0, 0, kDefaultWidth, kDefaultHeight });
}

StylusWindow::~StylusWindow() = default;

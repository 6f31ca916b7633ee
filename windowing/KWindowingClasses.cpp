#include "windowing/KWindowingClasses.h"

#include "kernel/KClass.h"
#include "kernel/KKernelClasses.h"
#include "windowing/KActionEvent.h"
#include "windowing/KApplication.h"
#include "windowing/KApplicationEvent.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KEvent.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KMenuEvent.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KNativeEvent.h"
#include "windowing/KTimer.h"
#include "windowing/KTimerManager.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowEvent.h"
#include "windowing/KWindowManager.h"

namespace {

// Names in the registry without a class of their own.
void registerRoot(const char* name)
{
    KClass::registerClass(name, KThing::classRecord, &KThing::create, 1);
}

} // namespace

void kRegisterWindowingClasses()
{
    kRegisterKernelClasses();
    if (KClass::hasClass("KErrorHandler"))
        return;
    KWindow::registerClass();
    KWindowManager::registerClass();
    KApplication::registerClass();
    KTimer::registerClass();
    KTimerManager::registerClass();
    registerRoot("KEventHandler");
    KEvent::registerClass();
    KNativeEvent::registerClass();
    KWindowEvent::registerClass();
    KMouseEvent::registerClass();
    KKeyEvent::registerClass();
    KMenuEvent::registerClass();
    KApplicationEvent::registerClass();
    KActionEvent::registerClass();
    KControlActionEvent::registerClass();
    registerRoot("KErrorHandler");
}

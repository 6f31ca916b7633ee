#include "windowing/KApplicationEvent.h"

#include "kernel/KClass.h"
#include "windowing/KApplication.h"
#include "windowing/KServices.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowManager.h"

K_DEFINE_CLASS(KApplicationEvent, KEvent)

KApplicationEvent::KApplicationEvent() = default;

KApplicationEvent::KApplicationEvent(int32_t eventType)
    : KEvent(eventType)
{
}

KEventReturn KApplicationEvent::process()
{
    if (isNativeModalUp())
        return 1;
    KApplication* application = KApplication::current();
    if (!application)
        return 0;
    switch (getType()) {
    case Deactivated:
        return deactivate();
    case Activated:
        return activate();
    case QuitRequest:
        return quit();
    case OpenDocument:
        return application->doOpenDocument(*this);
    case PrintDocument:
        return application->doPrintDocument(*this);
    case ClipboardChanged:
        return clipboardChanged();
    case DataReceived:
        return application->doDataReceived(*this);
    default:
        return 0;
    }
}

KEventReturn KApplicationEvent::deactivate()
{
    KApplication* application = KApplication::current();
    if (!application->hasAppFlags(KApplication::Active))
        return 0;
    KEventReturn result = application->doDeactivate(*this);
    application->clearAppFlags(KApplication::Active);
    if (auto exportClipboard = kServices().exportClipboard)
        exportClipboard();
    return result;
}

KEventReturn KApplicationEvent::activate()
{
    KApplication* application = KApplication::current();
    if (application->hasAppFlags(KApplication::Active))
        return 0;
    KEventReturn result = application->doActivate(*this);
    application->setAppFlags(KApplication::Active);
    if (result == 0) {
        KWindowManager* manager = KWindowManager::current();
        KWindow* mainWindow = application->getMainWindow();
        if (manager && mainWindow && mainWindow->isOpen()) {
            manager->setActive(*mainWindow);
            manager->reorderWindows();
        }
    }
    return result;
}

KEventReturn KApplicationEvent::quit()
{
    KApplication* application = KApplication::current();
    KEventReturn answer = application->doQuit(*this);
    if (answer == 2)
        application->postQuit();
    return answer;
}

KEventReturn KApplicationEvent::clipboardChanged()
{
    KApplication* application = KApplication::current();
    if (auto importClipboard = kServices().importClipboard)
        importClipboard();
    KWindow* mainWindow = application->getMainWindow();
    if (mainWindow && mainWindow->isOpen())
        return application->doClipboardChanged(*this);
    return 0;
}

#include "windowing/KWindowingClasses.h"

#include "graphics/KGraphicsClasses.h"
#include "kernel/KClass.h"
#include "kernel/KKernelClasses.h"
#include "windowing/KActionEvent.h"
#include "windowing/KAlert.h"
#include "windowing/KApplication.h"
#include "windowing/KApplicationEvent.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KChoiceNativeControl.h"
#include "windowing/KClipboardManager.h"
#include "windowing/KColourSwatchNativeControl.h"
#include "windowing/KControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KControlsLayer.h"
#include "windowing/KCursorManager.h"
#include "windowing/KDialog.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KDragObject.h"
#include "windowing/KDragObjectsLayer.h"
#include "windowing/KEditFieldControl.h"
#include "windowing/KEntryNativeControl.h"
#include "windowing/KEvent.h"
#include "windowing/KFormatEvent.h"
#include "windowing/KImageControl.h"
#include "windowing/KInteractiveElement.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KKeyboardManager.h"
#include "windowing/KLayer.h"
#include "windowing/KListNativeControl.h"
#include "windowing/KMenu.h"
#include "windowing/KMenuBar.h"
#include "windowing/KMenuEvent.h"
#include "windowing/KMenuItem.h"
#include "windowing/KMenuManager.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KMultiLineTextNativeControl.h"
#include "windowing/KNativeEvent.h"
#include "windowing/KPaletteWindow.h"
#include "windowing/KPictureNativeControl.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KPrintingManager.h"
#include "windowing/KProgressBarControl.h"
#include "windowing/KProgressDialog.h"
#include "windowing/KRadioGroupNativeControl.h"
#include "windowing/KRangeNativeControl.h"
#include "windowing/KScrollBarNativeControl.h"
#include "windowing/KSliderNativeControl.h"
#include "windowing/KSpinFieldNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"
#include "windowing/KTextFormatMenu.h"
#include "windowing/KTimer.h"
#include "windowing/KTimerManager.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowEvent.h"
#include "windowing/KWindowManager.h"

namespace {

// Names in the registry without a class of their own.
void registerRoot(const char* name) { KClass::registerClass(name, KThing::classRecord, &KThing::create, 1); }

} // namespace

void kRegisterWindowingClasses()
{
    kRegisterKernelClasses();
    kRegisterGraphicsClasses();
    if (KClass::hasClass("KErrorHandler"))
        return;
    KWindow::registerClass();
    KPaletteWindow::registerClass();
    KDialog::registerClass();
    KAlert::registerClass();
    KWindowManager::registerClass();
    KInteractiveElement::registerClass();
    KLayer::registerClass();
    KControlsLayer::registerClass();
    KDragObject::registerClass();
    KDragObjectsLayer::registerClass();
    KControl::registerClass();
    KButtonNativeControl::registerClass();
    KStaticTextNativeControl::registerClass();
    KCheckBoxNativeControl::registerClass();
    KChoiceNativeControl::registerClass();
    KRadioGroupNativeControl::registerClass();
    KPopUpListNativeControl::registerClass();
    KListNativeControl::registerClass();
    KRangeNativeControl::registerClass();
    KSpinFieldNativeControl::registerClass();
    KSliderNativeControl::registerClass();
    KScrollBarNativeControl::registerClass();
    KEntryNativeControl::registerClass();
    KMultiLineTextNativeControl::registerClass();
    KColourSwatchNativeControl::registerClass();
    KPictureNativeControl::registerClass();
    KImageControl::registerClass();
    KProgressBarControl::registerClass();
    KProgressDialog::registerClass();
    KPrintingManager::registerClass();
    KEditFieldControl::registerClass();
    KTextFormatMenu::registerClass();
    KMenuItem::registerClass();
    KMenu::registerClass();
    KMenuBar::registerClass();
    KMenuManager::registerClass();
    KCursorManager::registerClass();
    KKeyboardManager::registerClass();
    KClipboardManager::registerClass();
    KDialogHandler::registerClass();
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
    KFormatEvent::registerClass();
    registerRoot("KErrorHandler");
    for (KClass* live : { KWindow::classRecord, KWindowManager::classRecord, KInteractiveElement::classRecord,
                          KCursorManager::classRecord, KKeyboardManager::classRecord, KClipboardManager::classRecord,
                          KDialogHandler::classRecord, KApplication::classRecord, KTimerManager::classRecord,
                          KEvent::classRecord, KTextFormatMenu::classRecord, KMenuItem::classRecord, KMenu::classRecord,
                          KMenuBar::classRecord, KMenuManager::classRecord })
        live->setTransient();
}

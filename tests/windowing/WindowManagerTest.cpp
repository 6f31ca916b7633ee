#include "FrameworkTestSupport.h"

#include "graphics/KColor.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KDialog.h"
#include "windowing/KPaletteWindow.h"
#include "windowing/KWindowEvent.h"

namespace {

std::vector<bool>& menuStates()
{
    static std::vector<bool> states;
    return states;
}

class WindowManagerTest : public FrameworkTest {
protected:
    void SetUp() override
    {
        FrameworkTest::SetUp();
        menuStates().clear();
        kServices().enableMenus = [](bool enabled) { menuStates().push_back(enabled); };
    }

    // The application's main window, shown.
    RecordingWindow& openMainWindow()
    {
        app->createMainWindow(RecordingWindow::classRecord);
        auto* main = static_cast<RecordingWindow*>(app->getMainWindow());
        main->name = "main";
        main->setBounds(KGraphicRectangle(100, 100, 200, 150));
        main->show(true);
        return *main;
    }

    KPtr<KPaletteWindow> openPalette()
    {
        KPtr<KPaletteWindow> palette(new KPaletteWindow());
        palette->setBounds(KGraphicRectangle(100, 300, 200, 40));
        palette->open(KWindow::Normal);
        processQueue();
        return palette;
    }

    void TearDown() override
    {
        if (manager)
            manager->closeAll();
        app->closeMainWindow();
        FrameworkTest::TearDown();
    }

    // The live native control of a standard button.
    void* buttonOf(KDialog& dialog, int32_t which)
    {
        KButtonNativeControl* button = dialog.getStandardButton(which);
        return button ? button->getNativeControl() : nullptr;
    }
};

TEST_F(WindowManagerTest, PalettesFloatOverNormalWindowsAndActivationRestacks)
{
    RecordingWindow& main = openMainWindow();
    KPtr<KPaletteWindow> palette = openPalette();
    KPtr<RecordingWindow> other = openWindow("other", KGraphicRectangle(400, 100, 100, 100));

    // Opened last, the normal window still stays behind the palette.
    ASSERT_EQ(manager->windowCount(), 3);
    EXPECT_EQ(manager->getWindows()[0].get(), &main);
    EXPECT_EQ(manager->getWindows()[1].get(), other.get());
    EXPECT_EQ(manager->getWindows()[2].get(), palette.get());
    std::vector<void*> expected { main.getNativeWindow(), other->getNativeWindow(), palette->getNativeWindow() };
    EXPECT_EQ(layer.stackOrder(), expected);
    EXPECT_EQ(native(*palette).setup.kind, KNativeWindowKind::Palette);
    EXPECT_EQ(native(*palette).setup.parent, main.getNativeWindow());

    // Activating the main window brings it in front of the other normal
    // window, not of the palette; an activation that changes nothing does
    // not restack.
    kksDeliverNativeRecord(record(KNativeMessage::Activate, &main, 1));
    expected = { other->getNativeWindow(), main.getNativeWindow(), palette->getNativeWindow() };
    EXPECT_EQ(layer.stackOrder(), expected);
    EXPECT_EQ(manager->getActiveWindow(), &main);
    int32_t restacks = layer.restackCount();
    manager->setActive(main);
    EXPECT_EQ(layer.restackCount(), restacks);

    // Only what stands above the activated window is raised again: raising
    // the front window itself would, without a window manager, move the
    // focus under the pointer and activate another window in turn.
    kksDeliverNativeRecord(record(KNativeMessage::Activate, palette.get(), 1));
    EXPECT_EQ(layer.restackCount(), restacks) << "nothing stands above the palette";
    kksDeliverNativeRecord(record(KNativeMessage::Activate, other.get(), 1));
    EXPECT_EQ(layer.stackOrder().back(), palette->getNativeWindow());
    kksDeliverNativeRecord(record(KNativeMessage::Activate, &main, 1));
    EXPECT_EQ(layer.stackOrder(), expected);

    EXPECT_EQ(manager->getFrontWindow(), palette.get());
    EXPECT_EQ(manager->getFrontWindow(KWindow::NormalTier), &main);
    EXPECT_EQ(manager->getWindowBelow(main), other.get());
    EXPECT_EQ(manager->getWindowAbove(main), palette.get());

    ErrorRecorder errors;
    EXPECT_EQ(manager->getFrontWindow(KWindow::ModalTier), nullptr);
    EXPECT_EQ(manager->getWindowBelow(*other), nullptr);
    EXPECT_EQ(errors.errors().size(), 2u);
    manager->closeAll();
    app->closeMainWindow();
    EXPECT_EQ(manager->getFrontWindow(), nullptr);
    EXPECT_EQ(errors.errors().size(), 3u);
    EXPECT_EQ(errors.lastCode(), KError::NoWindow);
}

TEST_F(WindowManagerTest, TwoModalDialogsAndTheMenusComingBackWithTheLast)
{
    RecordingWindow& main = openMainWindow();
    KPtr<KPaletteWindow> palette = openPalette();
    KDialogPtr first(new KDialog());
    KDialogPtr second(new KDialog());
    ModalWatchdog watchdog(60000);
    int32_t secondResult = -1;

    scriptStep(50, [&] {
        EXPECT_EQ(manager->getModalCount(), 1);
        EXPECT_FALSE(main.isEnabled());
        EXPECT_FALSE(palette->isEnabled());
        EXPECT_TRUE(first->isEnabled());
        EXPECT_FALSE(native(main).enabled);
        EXPECT_TRUE(native(*first).modal);
        EXPECT_EQ(native(*first).setup.kind, KNativeWindowKind::Dialog);
        EXPECT_EQ(native(*first).setup.parent, main.getNativeWindow());
        EXPECT_EQ(layer.stackOrder().back(), first->getNativeWindow());
        EXPECT_EQ(menuStates(), std::vector<bool> { false });

        scriptStep(50, [&] {
            // The second dialog belongs to the first.
            EXPECT_EQ(native(*second).setup.parent, first->getNativeWindow());
            EXPECT_EQ(manager->getModalCount(), 2);
            EXPECT_FALSE(first->isEnabled());
            EXPECT_TRUE(second->isEnabled());
            EXPECT_FALSE(main.isEnabled());
            EXPECT_EQ(menuStates().size(), 1u);
            second->endDialog(7);
        });
        secondResult = second->runModal();

        // Closing the top one leaves the one below enabled and the rest
        // disabled; the menus stay off while a modal is up.
        EXPECT_TRUE(first->isEnabled());
        EXPECT_FALSE(main.isEnabled());
        EXPECT_FALSE(palette->isEnabled());
        EXPECT_EQ(manager->getModalCount(), 1);
        EXPECT_EQ(menuStates(), std::vector<bool> { false });
        scriptStep(30, [&] { first->endDialog(first->getButtonId(KDialog::CancelButton)); });
    });
    layer.clearTurns();
    int32_t firstResult = first->runModal();

    EXPECT_EQ(secondResult, 7);
    EXPECT_EQ(firstResult, 2);
    EXPECT_EQ(manager->getModalCount(), 0);
    EXPECT_TRUE(main.isEnabled());
    EXPECT_TRUE(palette->isEnabled());
    EXPECT_TRUE(native(main).enabled);
    EXPECT_EQ(menuStates(), (std::vector<bool> { false, true }));
    // The modal loops never waited for more than a moment, and the flag
    // that made them so is gone with them.
    ASSERT_FALSE(layer.turns().empty());
    for (auto& turn : layer.turns())
        EXPECT_TRUE(!turn.block || (turn.wait > 0 && turn.wait <= KApplication::kNeverBlockWait));
    EXPECT_FALSE(app->hasAppFlags(KApplication::NeverBlock));
}

TEST_F(WindowManagerTest, StandardButtonsSitAtTheBottomRightAndAnswer)
{
    openMainWindow();
    KDialogPtr dialog(new KDialog());
    dialog->setBounds(KGraphicRectangle(0, 0, 400, 200));
    dialog->open(KWindow::Normal, KDialog::OkButton | KDialog::CancelButton | KDialog::ApplyButton);
    auto controls = layer.controlsOf(dialog->getNativeWindow());
    ASSERT_EQ(controls.size(), 3u);
    auto bounds = [&](int32_t which) { return layer.controlOf(buttonOf(*dialog, which))->bounds; };
    EXPECT_EQ(bounds(KDialog::ApplyButton), (KNativeRect { 300, 162, 90, 30 }));
    EXPECT_EQ(bounds(KDialog::CancelButton), (KNativeRect { 200, 162, 90, 30 }));
    EXPECT_EQ(bounds(KDialog::OkButton), (KNativeRect { 100, 162, 90, 30 }));
    EXPECT_EQ(layer.controlOf(buttonOf(*dialog, KDialog::OkButton))->text, "OK");
    EXPECT_TRUE(layer.controlOf(buttonOf(*dialog, KDialog::OkButton))->setup.isDefault);
    EXPECT_EQ(layer.controlOf(buttonOf(*dialog, KDialog::ApplyButton))->text, "Apply");

    // Apply leaves the dialog open; Cancel ends it with its id.
    layer.clickControl(buttonOf(*dialog, KDialog::ApplyButton));
    EXPECT_TRUE(dialog->isOpen());
    EXPECT_EQ(std::count(seen().begin(), seen().end(), "app control action"), 0);
    void* cancel = buttonOf(*dialog, KDialog::CancelButton);
    layer.clickControl(cancel);
    EXPECT_FALSE(dialog->isOpen());
    EXPECT_EQ(dialog->getResult(), 2);
    EXPECT_FALSE(layer.controlOf(cancel)->alive);

    // Return presses the default button and Escape the cancel button;
    // closing the frame is cancelling too.
    struct Case {
        std::function<void(KDialog&)> act;
        int32_t result;
    };
    std::vector<Case> cases {
        { [&](KDialog& d) { kksDeliverNativeRecord(record(KNativeMessage::KeyDown, &d, KVirtualKey::Return)); }, 1 },
        { [&](KDialog& d) { kksDeliverNativeRecord(record(KNativeMessage::KeyDown, &d, KVirtualKey::Escape)); }, 2 },
        { [&](KDialog& d) { kksDeliverNativeRecord(record(KNativeMessage::Close, &d)); }, 2 },
    };
    ModalWatchdog watchdog(60000);
    for (auto& each : cases) {
        KDialogPtr keyed(new KDialog());
        scriptStep(20, [&] { each.act(*keyed); });
        EXPECT_EQ(keyed->runModal(), each.result);
        EXPECT_FALSE(keyed->isOpen());
    }
}

// A dialog whose other controls report to an object of its owner's.
class Target : public KThing {
public:
    KEventReturn handleEvent(KEvent& event) override
    {
        if (event.isEqualOrSubClass(KActionEvent::classRecord))
            sources.push_back(static_cast<KActionEvent&>(event).getSource());
        return 1;
    }
    std::vector<KThing*> sources;
};

TEST_F(WindowManagerTest, DialogParametersAndTheActionTarget)
{
    KDialogPtr dialog(new KDialog());
    KVariable value(int32_t(42));
    dialog->setParameter("Size", value);
    value.setLong(7);
    ASSERT_TRUE(dialog->hasParameter("Size"));
    EXPECT_EQ(dialog->getParameter("Size")->getLong(), 42);
    dialog->setParameter("Size", KVariable("big"));
    EXPECT_STREQ(dialog->getParameter("Size")->getString().c_str(), "big");
    EXPECT_FALSE(dialog->hasParameter("Colour"));
    EXPECT_EQ(dialog->getParameter("Colour"), nullptr);

    KPtr<Target> target(new Target());
    dialog->setActionTarget(target.get());
    dialog->open(KWindow::Normal, KDialog::OkButton);
    KButtonNativeControlPtr extra(new KButtonNativeControl(9, "More", KWideRectangle(10, 10, 90, 20)));
    dialog->addControl(*extra);
    layer.clickControl(extra->getNativeControl());
    ASSERT_EQ(target->sources.size(), 1u);
    EXPECT_EQ(target->sources[0], extra.get());
    EXPECT_TRUE(dialog->isOpen());
    // A standard button does not go to the target.
    layer.clickControl(buttonOf(*dialog, KDialog::OkButton));
    EXPECT_EQ(target->sources.size(), 1u);
    EXPECT_EQ(dialog->getResult(), 1);
}

TEST_F(WindowManagerTest, WindowsDrawIntoTheirBackBuffer)
{
    KPtr<RecordingWindow> window = openWindow("w", KGraphicRectangle(0, 0, 20, 10));
    ASSERT_TRUE(window->hasNativeDevice());
    EXPECT_EQ(window->getBounds(), KGraphicRectangle(0, 0, 20, 10));
    // A new window is black; drawing marks the changed area for showing.
    EXPECT_EQ(window->getPixel(5, 5).getNative(), 0u);
    int32_t before = native(*window).invalidations;
    window->fillRectangle(KGraphicRectangle(2, 3, 4, 5), KColor(KColor::Red));
    EXPECT_EQ(window->getPixel(2, 3).getNative(), 0xFF0000u);
    EXPECT_EQ(window->getPixel(6, 3).getNative(), 0u);
    EXPECT_GT(native(*window).invalidations, before);
    EXPECT_EQ(native(*window).lastInvalidated, (KNativeRect { 2, 3, 4, 5 }));

    // A paint runs the window, then the layers upwards; what it draws is
    // shown with the paint and asks for no more.
    struct PaintingLayer : KLayer {
        KEventReturn doPaint(KWindowEvent&) override
        {
            getWindow()->fillRectangle(KGraphicRectangle(0, 0, 1, 1), KColor(KColor::Green));
            return 0;
        }
    };
    KLayerPtr painter(new PaintingLayer());
    window->addLayer(*painter);
    before = native(*window).invalidations;
    kksDeliverNativeRecord(record(KNativeMessage::Paint, window.get()));
    EXPECT_EQ(window->getPixel(0, 0).getNative(), KColor(KColor::Green).getNative());
    EXPECT_EQ(native(*window).invalidations, before);

    // A larger size keeps the pixels and adds black.
    kksDeliverNativeRecord(record(KNativeMessage::Size, window.get(), 30, 12));
    EXPECT_EQ(window->getBounds(), KGraphicRectangle(0, 0, 30, 12));
    EXPECT_EQ(window->getClientBounds().width, 30);
    EXPECT_EQ(window->getPixel(2, 3).getNative(), 0xFF0000u);
    EXPECT_EQ(window->getPixel(0, 0).getNative(), KColor(KColor::Green).getNative());
    EXPECT_EQ(window->getPixel(25, 11).getNative(), 0u);

    // A closed window has no buffer and draws nothing.
    window->close();
    EXPECT_FALSE(window->hasNativeDevice());
    window->fillRectangle(KGraphicRectangle(0, 0, 5, 5), KColor(KColor::Red));
}

using WindowManagerDeathTest = WindowManagerTest;

} // namespace

#include "SpriteTestSupport.h"

#include "kmultimedia/EditSprite.h"
#include "kmultimedia/EditSpriteLayer.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "windowing/KCursorManager.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowManager.h"

namespace {

using Rect = KGraphicRectangle;

class EditSpriteTest : public AnimationTest {
protected:
    void SetUp() override
    {
        AnimationTest::SetUp();
        frame = kAdopt(new EditSprite());
    }
    void TearDown() override
    {
        frame.clear();
        AnimationTest::TearDown();
    }
    // A press, a drag to the second point and a release.
    void dragFrom(int x0, int y0, int x1, int y1, bool shift = false)
    {
        ASSERT_EQ(frame->press(KGraphicPoint(int16_t(x0), int16_t(y0)), shift), 4);
        frame->drag(KGraphicPoint(int16_t(x1), int16_t(y1)));
        frame->release();
    }
    int16_t hit(int x, int y) { return frame->hitTest(KGraphicPoint(int16_t(x), int16_t(y))); }

    EditSpritePtr frame;
};

TEST_F(EditSpriteTest, HitTestFindsHandlesBarInsideAndBorder)
{
    // The default rectangle (10, 10, 100, 100), handles of 10 on a frame 10
    // outside it: the frame is (0, 0, 120, 120).
    EXPECT_EQ(frame->getRectangle(), Rect(10, 10, 100, 100));
    EXPECT_EQ(hit(60, 0), EditSprite::Top); // the bar, 30 by 12 at (45, -2)
    EXPECT_EQ(hit(45, -2), EditSprite::Top);
    EXPECT_EQ(hit(0, 0), EditSprite::TopLeft);
    EXPECT_EQ(hit(119, 0), EditSprite::TopRight);
    EXPECT_EQ(hit(115, 115), EditSprite::BottomRight);
    EXPECT_EQ(hit(0, 119), EditSprite::BottomLeft);
    EXPECT_EQ(hit(60, 115), EditSprite::Bottom);
    EXPECT_EQ(hit(5, 60), EditSprite::Left);
    EXPECT_EQ(hit(115, 60), EditSprite::Right);
    EXPECT_EQ(hit(50, 50), EditSprite::Inside);
    EXPECT_EQ(hit(109, 50), EditSprite::Inside);
    EXPECT_EQ(hit(110, 50), EditSprite::Border); // up to 6 outside
    EXPECT_EQ(hit(4, 30), EditSprite::Border);
    EXPECT_EQ(hit(3, 30), EditSprite::NoHandle);
    EXPECT_EQ(hit(117, 50), EditSprite::NoHandle);
    EXPECT_EQ(hit(200, 200), EditSprite::NoHandle);
    EXPECT_FALSE(frame->hits(KGraphicPoint(3, 30)));
    EXPECT_TRUE(frame->hits(KGraphicPoint(115, 115)));

    // Without the bar, a top square in its place; without side handles,
    // neither it nor the others.
    frame->setShowBar(false);
    EXPECT_EQ(hit(60, -1), EditSprite::NoHandle);
    EXPECT_EQ(hit(60, 5), EditSprite::Top);
    frame->setShowSideHandles(false);
    EXPECT_EQ(hit(60, 5), EditSprite::Border);
    EXPECT_EQ(hit(60, 115), EditSprite::Border);
    EXPECT_EQ(hit(115, 60), EditSprite::Border);
    EXPECT_EQ(hit(117, 60), EditSprite::NoHandle);
    EXPECT_EQ(hit(0, 0), EditSprite::TopLeft);

    // The sprite's bounds reach up to hold the bar.
    frame->setShowBar(true);
    EXPECT_EQ(frame->getBounds(), Rect(0, -2, 120, 122));
}

TEST_F(EditSpriteTest, MovesKeepTouchingTheLimitsAndShiftCanLeaveThePressAlone)
{
    dragFrom(50, 50, 70, 40);
    EXPECT_EQ(frame->getRectangle(), Rect(30, 0, 100, 100));
    EXPECT_EQ(frame->getGrabbedHandle(), EditSprite::NoHandle);
    EXPECT_TRUE(frame->isDirty());

    // Far left and up: the right and bottom edges stay on the limits'
    // left and top edges.
    dragFrom(50, 50, -2000, -2000);
    EXPECT_EQ(frame->getRectangle(), Rect(-100, -100, 100, 100));
    // Far right and down: the left and top edges on the far edges.
    frame->setRectangle(Rect(10, 10, 100, 100));
    dragFrom(50, 50, 5000, 5000);
    EXPECT_EQ(frame->getRectangle(), Rect(640, 480, 100, 100));

    // A press 6 units outside grabs the border and moves; the bar moves.
    frame->setRectangle(Rect(10, 10, 100, 100));
    dragFrom(4, 50, 14, 60);
    EXPECT_EQ(frame->getRectangle(), Rect(20, 20, 100, 100));
    dragFrom(70, 10, 60, 10); // bar of the moved frame: (55, 8)
    EXPECT_EQ(frame->getRectangle(), Rect(10, 20, 100, 100));

    // Nothing grabbed: no action.
    EXPECT_EQ(frame->press(KGraphicPoint(500, 500), false), 0);
    frame->drag(KGraphicPoint(600, 600));
    EXPECT_EQ(frame->getRectangle(), Rect(10, 20, 100, 100));

    // With Shift and no Shift move, a press inside is left to what lies
    // under; a handle still takes it.
    frame->setAllowShiftMove(false);
    EXPECT_EQ(frame->press(KGraphicPoint(50, 50), true), 0);
    frame->drag(KGraphicPoint(80, 80));
    EXPECT_EQ(frame->getRectangle(), Rect(10, 20, 100, 100));
    EXPECT_EQ(frame->press(KGraphicPoint(115, 125), true), 4);

    // A grid cuts the remainders: a width of 103 becomes 96.
    frame->release();
    frame->setAllowShiftMove(true);
    frame->setRectangle(Rect(16, 16, 100, 100));
    frame->setGridStep(8);
    dragFrom(125, 66, 128, 66);
    EXPECT_EQ(frame->getRectangle(), Rect(16, 16, 96, 96));
}

TEST_F(EditSpriteTest, ResizesHoldTheSizeLimitsAndTheOppositeEdges)
{
    // Bottom right grows freely.
    dragFrom(115, 115, 135, 125);
    EXPECT_EQ(frame->getRectangle(), Rect(10, 10, 120, 110));
    // Shrunk past the minimum of 31 by 1.
    frame->setRectangle(Rect(10, 10, 100, 100));
    dragFrom(115, 115, -500, -500);
    EXPECT_EQ(frame->getRectangle(), Rect(10, 10, 31, 1));
    // A limited top-left handle keeps the bottom right corner in place.
    frame->setRectangle(Rect(10, 10, 100, 100));
    dragFrom(5, 5, 500, 500);
    EXPECT_EQ(frame->getRectangle(), Rect(79, 109, 31, 1));
    // Top right: the top moves, the left stays.
    frame->setRectangle(Rect(10, 10, 100, 100));
    dragFrom(115, 5, 125, -5);
    EXPECT_EQ(frame->getRectangle(), Rect(10, 0, 110, 110));
    // Bottom left: the left moves, the top stays.
    frame->setRectangle(Rect(10, 10, 100, 100));
    dragFrom(5, 115, 15, 135);
    EXPECT_EQ(frame->getRectangle(), Rect(20, 10, 90, 120));
    // The side handles move one edge.
    frame->setRectangle(Rect(10, 10, 100, 100));
    dragFrom(5, 60, 25, 90);
    EXPECT_EQ(frame->getRectangle(), Rect(30, 10, 80, 100));
    dragFrom(115, 60, 95, 0);
    EXPECT_EQ(frame->getRectangle(), Rect(30, 10, 60, 100));
    dragFrom(60, 115, 0, 95);
    EXPECT_EQ(frame->getRectangle(), Rect(30, 10, 60, 80));

    // A maximum size holds, and a left handle keeps the right edge.
    frame->setRectangle(Rect(100, 100, 100, 100));
    frame->setMaximumSize(KGraphicSize(320, 240));
    dragFrom(95, 150, -1000, 150);
    EXPECT_EQ(frame->getRectangle(), Rect(-120, 100, 320, 100));
    frame->clearMaximumSize();
    frame->setRectangle(Rect(100, 100, 100, 100));
    dragFrom(95, 150, -1000, 150);
    EXPECT_EQ(frame->getRectangle(), Rect(-995, 100, 1195, 100));
}

TEST_F(EditSpriteTest, ShiftKeepsTheRatioAndFitsTheLimitsToIt)
{
    // 100 by 50 has ratio 2; the corner keeps it.
    frame->setRectangle(Rect(10, 10, 100, 50));
    dragFrom(115, 65, 135, 75, true);
    EXPECT_TRUE(frame->isKeepingAspect());
    EXPECT_FLOAT_EQ(frame->getAspectRatio(), 2.0f);
    EXPECT_EQ(frame->getRectangle(), Rect(10, 10, 130, 65));
    // At the top left the bottom right corner stays.
    frame->setRectangle(Rect(10, 10, 100, 50));
    dragFrom(5, 5, -15, -5, true);
    EXPECT_EQ(frame->getRectangle(), Rect(-20, -5, 130, 65));
    // A side handle brings the other side along.
    frame->setRectangle(Rect(10, 10, 100, 50));
    dragFrom(115, 35, 135, 35, true);
    EXPECT_EQ(frame->getRectangle(), Rect(10, 10, 120, 60));

    // The maximum of 320 by 240 fitted to a square is 240 by 240; without
    // Shift it is not.
    frame->setMaximumSize(KGraphicSize(320, 240));
    frame->setRectangle(Rect(10, 10, 100, 100));
    dragFrom(115, 115, 2000, 2000, true);
    EXPECT_EQ(frame->getRectangle(), Rect(10, 10, 240, 240));
    frame->setRectangle(Rect(10, 10, 100, 100));
    dragFrom(115, 115, 2000, 2000);
    EXPECT_EQ(frame->getRectangle(), Rect(10, 10, 320, 240));
    // The minimum fitted to a square is 31 by 31.
    frame->setRectangle(Rect(10, 10, 100, 100));
    dragFrom(115, 115, -500, -500, true);
    EXPECT_EQ(frame->getRectangle(), Rect(10, 10, 31, 31));

    // A height of 1 at the press leaves the ratio unset: the resize is
    // free.
    frame->clearMaximumSize();
    frame->setRectangle(Rect(10, 10, 100, 1));
    dragFrom(115, 16, 135, 56, true);
    EXPECT_FLOAT_EQ(frame->getAspectRatio(), 0.0f);
    EXPECT_EQ(frame->getRectangle(), Rect(10, 10, 130, 31));
}

// --- The scene layer -----------------------------------------------------------

// The scene in an open window of the fake layer, with the managers that
// route the mouse.
class SceneTest : public SpriteTest {
protected:
    void SetUp() override
    {
        SpriteTest::SetUp();
        KCursorManager::resetClickHistory();
        app = kAdopt(new KApplication());
        manager = kAdopt(new KWindowManager());
        cursor = kAdopt(new KCursorManager());
        window = kAdopt(new KWindow());
        window->setBounds(KGraphicRectangle(100, 100, 200, 150));
        window->open(KWindow::Normal);
        processQueue();
        scene = kAdopt(new StylusSpriteSystem());
        scene->setPageSize(KGraphicSize(kPageWidth, kPageHeight));
        scene->setOrigin(KGraphicPoint(20, 10));
        scene->attachDevice(screen->getDevice());
        window->addLayer(*scene);
    }
    void TearDown() override
    {
        if (manager)
            manager->closeAll();
        scene.clear();
        window.clear();
        cursor.clear();
        manager.clear();
        app.clear();
        SpriteTest::TearDown();
    }
    void mouse(int32_t message, int32_t keys, int x, int y)
    {
        KNativeRecord r = record(message, window.get(), keys, kPackPoint(x, y));
        r.x = window->getClientBounds().x + x;
        r.y = window->getClientBounds().y + y;
        r.time = layer.now();
        kksDeliverNativeRecord(r);
    }

    KPtr<KApplication> app;
    KPtr<KWindowManager> manager;
    KPtr<KCursorManager> cursor;
    KPtr<KWindow> window;
    StylusSpriteSystemPtr scene;
};

TEST_F(SceneTest, TheSceneOwnsThePageAndKeepsTheEditFrameOnTop)
{
    KSpriteSystem& system = scene->getSpriteSystem();
    EXPECT_EQ(scene->getPageSize(), KGraphicSize(kPageWidth, kPageHeight));
    ASSERT_NE(scene->getPageImage(), nullptr);
    EXPECT_EQ(scene->getPageDevice(), &scene->getPageImage()->getDevice());
    EXPECT_EQ(system.getLayerAt(0), &scene->getActorLayer());
    EXPECT_EQ(system.getLayerAt(2), &scene->getEditLayer());
    KSpriteLayerPtr extra = kAdopt(new KSpriteLayer());
    scene->addLayer(*extra);
    EXPECT_EQ(system.getLayerAt(3), &scene->getEditLayer());
    EXPECT_FALSE(scene->removeLayer(scene->getEditLayer()));
    EXPECT_TRUE(scene->removeLayer(*extra));

    // Paint on the page, refresh: the next frame shows it at the origin.
    // A full composition marks every sprite, so one frame follows it.
    scene->redrawAll();
    scene->drawFrame();
    system.step(0.0f);
    resetScreen();
    scene->getPageDevice()->fillRectangle(Rect(0, 0, 4, 4), kBlue);
    scene->refresh(Rect(0, 0, 4, 4));
    scene->drawFrame();
    EXPECT_EQ(screenAt(20, 10), blue);
    EXPECT_EQ(screenAt(24, 10), sentinel);

    // An actor comes and goes; its place is wiped.
    KSpritePtr actor = solidSprite(10, 10, 4, 4, kRed);
    scene->addActor(*actor);
    scene->drawFrame();
    system.step(0.0f);
    EXPECT_EQ(screenAt(31, 21), red);
    scene->removeActor(*actor);
    scene->drawFrame();
    EXPECT_EQ(screenAt(31, 21), rgb(KColor(KColor::Black)));
    EXPECT_FALSE(system.getObjects().has(*actor));

    // The edit frame is drawn over the scene while editing, and wiped at
    // the end.
    KPtr<KImage> picture = solidImage(4, 4, kYellow);
    scene->startEdit(Rect(5, 5, 30, 20), *picture);
    EXPECT_TRUE(scene->isEditing());
    EXPECT_EQ(screenAt(20 + 15, 10 + 12), yellow);
    EXPECT_EQ(screenAt(20 + 4, 10 + 7), black); // the frame's inner line
    EXPECT_EQ(screenAt(20 + 2, 10 + 7), white); // its broad white band
    EXPECT_EQ(screenAt(20 + 0, 10 + 0), black); // the top left handle
    Rect final = scene->endEdit();
    system.step(0.0f);
    EXPECT_EQ(final, Rect(5, 5, 30, 20));
    EXPECT_FALSE(scene->isEditing());
    EXPECT_EQ(screenAt(20 + 15, 10 + 12), black); // the black page again
    EXPECT_EQ(screenAt(20 + 2, 10 + 7), black);
    EXPECT_EQ(scene->getEditSprite().getGraphicObject(), nullptr);
}

TEST_F(SceneTest, MouseReachesTheFrameInPageTermsAndTheCaptureFollowsTheDrag)
{
    // While not editing, the scene takes no press.
    mouse(KNativeMessage::LeftDown, KMouseKeys::LeftButton, 50, 40);
    EXPECT_EQ(cursor->getCaptureLayer(), nullptr);
    mouse(KNativeMessage::LeftUp, 0, 50, 40);

    KPtr<KImage> picture = solidImage(4, 4, kYellow);
    scene->startEdit(Rect(10, 10, 30, 20), *picture);
    // A press inside the rectangle, at page (25, 20) = window (45, 30).
    mouse(KNativeMessage::LeftDown, KMouseKeys::LeftButton, 45, 30);
    EXPECT_EQ(cursor->getCaptureLayer(), scene.get());
    EXPECT_EQ(scene->getEditSprite().getGrabbedHandle(), EditSprite::Inside);
    // Moves go to the captured scene, also far outside the frame.
    mouse(KNativeMessage::MouseMove, KMouseKeys::LeftButton, 55, 35);
    EXPECT_EQ(scene->getEditLayer().getRectangle(), Rect(20, 15, 30, 20));
    mouse(KNativeMessage::MouseMove, KMouseKeys::LeftButton, 190, 140);
    EXPECT_EQ(scene->getEditLayer().getRectangle(), Rect(155, 120, 30, 20));
    mouse(KNativeMessage::LeftUp, 0, 190, 140);
    EXPECT_EQ(cursor->getCaptureLayer(), nullptr);
    EXPECT_EQ(scene->getEditSprite().getGrabbedHandle(), EditSprite::NoHandle);

    // A press outside the frame is not the scene's; with Shift and no
    // Shift move neither is one inside.
    scene->getEditLayer().setRectangle(Rect(10, 10, 30, 20));
    mouse(KNativeMessage::LeftDown, KMouseKeys::LeftButton, 150, 120);
    EXPECT_EQ(cursor->getCaptureLayer(), nullptr);
    mouse(KNativeMessage::LeftUp, 0, 150, 120);
    scene->getEditLayer().setAllowShiftMove(false);
    mouse(KNativeMessage::LeftDown, KMouseKeys::LeftButton | KMouseKeys::Shift, 45, 30);
    EXPECT_EQ(cursor->getCaptureLayer(), nullptr);
    mouse(KNativeMessage::LeftUp, 0, 45, 30);

    // A resize with Shift through the window: bottom right handle at page
    // (45, 35) = window (65, 45).
    mouse(KNativeMessage::LeftDown, KMouseKeys::LeftButton | KMouseKeys::Shift, 65, 45);
    EXPECT_EQ(scene->getEditSprite().getGrabbedHandle(), EditSprite::BottomRight);
    mouse(KNativeMessage::MouseMove, KMouseKeys::LeftButton | KMouseKeys::Shift, 80, 55);
    mouse(KNativeMessage::LeftUp, 0, 80, 55);
    // 30 by 20, ratio 1.5, moved by (15 + 10) / 2 = 12 each way: height 32,
    // width follows as 48.
    EXPECT_EQ(scene->endEdit(), Rect(10, 10, 48, 32));
}

} // namespace

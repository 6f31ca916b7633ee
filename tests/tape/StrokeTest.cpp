#include "tests/support/TestSupport.h"
#include "tests/tape/TapeTestSupport.h"

#include "tape/StrokeRecorder.h"

using namespace tapetest;

namespace {

constexpr uint32_t kRed = 0xFF0000;
constexpr uint32_t kGreen = 0x00FF00;
constexpr uint32_t kBlack = 0x000000;

class StrokeTest : public TapeTest { };

} // namespace

TEST_F(StrokeTest, TypeTableAndTheBaseElementFields)
{
    const char* names[] = { "None",        "Wait",  "Stroke", "Text", "Speech", "Pause", "Sound", "Page Transition",
                            "Relay Macro", "Movie", "Image",  "Actor" };
    for (int32_t i = 0; i < 12; ++i)
        EXPECT_EQ(TapeObject::getTypeName(i), names[i]);
    {
        ErrorRecorder recorder;
        EXPECT_TRUE(TapeObject::getTypeName(ActorMotionType).isEmpty());
        EXPECT_EQ(recorder.lastCode(), KError::IndexOutOfRange);
    }

    StrokePtr stroke = makeStroke({ { 10, 10 } }, 8, rgb(kRed));
    EXPECT_EQ(stroke->getType(), StrokeType);
    EXPECT_TRUE(stroke->isActive());
    EXPECT_FALSE(stroke->hasBookmark());
    stroke->setBookmark("Chapter");
    stroke->deactivate();
    tape->addElement(*stroke);
    stroke->setPreviewValid(true);
    stroke->setPreviewToken(7);

    // A copy takes the type, the flag and the bookmark, but no tape and no
    // valid preview.
    StrokePtr copy(static_cast<Stroke*>(stroke->deepCopy()));
    EXPECT_FALSE(copy->hasTape());
    EXPECT_FALSE(copy->isPreviewValid());
    EXPECT_EQ(copy->getPreviewToken(), 0);
    EXPECT_FALSE(copy->isActive());
    EXPECT_EQ(copy->getBookmark(), "Chapter");
    EXPECT_EQ(copy->getPoint(0), KGraphicPoint(10, 10));
    EXPECT_EQ(copy->getColour(), rgb(kRed));
    EXPECT_NE(copy->getSerial(), stroke->getSerial());

    stroke->setPreviewValid(false);
    EXPECT_EQ(stroke->getPreviewToken(), 0);
    TapePtr owner;
    EXPECT_TRUE(stroke->getTapeAsPtr(owner));
    EXPECT_EQ(owner.get(), tape.get());
    EXPECT_FALSE(copy->getTapeAsPtr(owner));

    // Elements without a place on the page have no bounds.
    ProbeElement pause(PauseType);
    EXPECT_TRUE(pause.getBounds().isEmpty());
    EXPECT_EQ(pause.getToolEntry(), PauseType);
    EXPECT_EQ(ProbeElement(ActorMotionType).getToolEntry(), 17);
}

TEST_F(StrokeTest, DabsFallEveryEighthOfTheBrush)
{
    // A brush of 1 draws single pixels, one a step; a brush of 16 puts a dab
    // every second pixel and one at the end.
    KGraphicDevice& device = page->getPageDevice();
    device.setForeground(rgb(kRed));
    Stroke::drawDabLine(device, KGraphicPoint(10, 10), KGraphicPoint(20, 10), 1, page.get());
    EXPECT_EQ(countColour(*page, kRed), 11);
    // The dabs of a short segment are refreshed as one rectangle.
    EXPECT_EQ(page->getRefreshCount(), 1);
    EXPECT_EQ(page->getRefreshed(), KGraphicRectangle(10, 10, 11, 1));

    page->clearRefreshed();
    Stroke::drawDabLine(device, KGraphicPoint(30, 60), KGraphicPoint(39, 60), 16, page.get());
    // Dabs at 30, 32, 34, 36, 38 and the end 39.
    EXPECT_EQ(page->getRefreshed(), KGraphicRectangle(22, 52, 25, 16));
    EXPECT_EQ(pixel(*page, 46, 60), kRed);
    EXPECT_EQ(pixel(*page, 47, 60), kBlack);
}

TEST_F(StrokeTest, LongSegmentsAreRefreshedInPieces)
{
    // A diagonal across the page never refreshes the rectangle between its
    // ends in one go, yet every dab lies in some refreshed piece.
    KGraphicDevice& device = page->getPageDevice();
    device.setForeground(rgb(kRed));
    Stroke::drawDabLine(device, KGraphicPoint(5, 5), KGraphicPoint(300, 200), 8, page.get());
    EXPECT_GE(page->getRefreshCount(), 5);
    EXPECT_TRUE(page->getRefreshed().contains(KGraphicPoint(2, 2)));
    EXPECT_TRUE(page->getRefreshed().contains(KGraphicPoint(303, 203)));
}

TEST_F(StrokeTest, GeometryFollowsThePoints)
{
    StrokePtr stroke = makeStroke({ { 20, 30 }, { 60, 40 } }, 10, rgb(kRed));
    EXPECT_EQ(stroke->getBounds(), KGraphicRectangle(15, 25, 50, 20));
    EXPECT_TRUE(StrokePtr(new Stroke())->getBounds().isEmpty());

    // The hit test follows the path, not the bounds.
    EXPECT_TRUE(stroke->hitTest(KGraphicPoint(40, 35)));
    EXPECT_TRUE(stroke->hitTest(KGraphicPoint(16, 26)));
    EXPECT_FALSE(stroke->hitTest(KGraphicPoint(60, 26)));
    EXPECT_FALSE(StrokePtr(new Stroke())->hitTest(KGraphicPoint(0, 0)));

    uint32_t revision = stroke->getRevision();
    stroke->moveBy(0, 0);
    EXPECT_EQ(stroke->getRevision(), revision);
    stroke->moveBy(5, -5);
    EXPECT_EQ(stroke->getPoint(1), KGraphicPoint(65, 35));
    EXPECT_GT(stroke->getRevision(), revision);

    // Mirrored bounds are computed from the new points.
    stroke->mirror(true, 50);
    EXPECT_EQ(stroke->getPoint(0), KGraphicPoint(75, 25));
    EXPECT_EQ(stroke->getPoint(1), KGraphicPoint(35, 35));
    EXPECT_EQ(stroke->getBounds(), KGraphicRectangle(30, 20, 50, 20));
    stroke->mirror(false, 30);
    EXPECT_EQ(stroke->getPoint(0), KGraphicPoint(75, 35));

    // Scaling goes about the centre of the bounds and scales the brush; a
    // thin brush stays at least 1.
    StrokePtr wide = makeStroke({ { 0, 0 }, { 100, 50 } }, 10, rgb(kRed));
    wide->scale(0.5);
    EXPECT_EQ(wide->getBrushWidth(), 5);
    EXPECT_EQ(wide->getPoint(0), KGraphicPoint(25, 13));
    EXPECT_EQ(wide->getPoint(1), KGraphicPoint(75, 37));
    StrokePtr thin = makeStroke({ { 0, 0 }, { 10, 10 } }, 1, rgb(kRed));
    thin->scale(0.3, 0.2);
    EXPECT_EQ(thin->getBrushWidth(), 1);
    EXPECT_EQ(thin->getBrushHeight(), 1);
    thin->scaleBetween(KGraphicRectangle(0, 0, 0, 10), KGraphicRectangle(0, 0, 20, 20));
    EXPECT_EQ(thin->getBrushWidth(), 1);
}

TEST_F(StrokeTest, DrawingOnTheFullPageAndScaledIntoAThumbnail)
{
    StrokePtr stroke = makeStroke({ { 20, 20 }, { 100, 20 } }, 8, rgb(kRed));
    tape->addElement(*stroke);
    page->clearRefreshed();
    stroke->drawOnPage();
    EXPECT_EQ(pixel(*page, 20, 20), kRed);
    EXPECT_EQ(pixel(*page, 100, 20), kRed);
    EXPECT_EQ(pixel(*page, 60, 23), kRed);
    EXPECT_EQ(pixel(*page, 60, 26), kBlack);
    EXPECT_TRUE(page->getRefreshed().contains(KGraphicPoint(103, 23)));

    // Into half the size: the path shrinks, the brush does not.
    ImageTapePagePtr thumb(new ImageTapePage(KGraphicSize(80, 60)));
    stroke->drawOn(thumb->getPageDevice(), KGraphicRectangle(0, 0, 160, 120), KGraphicRectangle(0, 0, 80, 60));
    EXPECT_EQ(pixel(*thumb, 10, 10), kRed);
    EXPECT_EQ(pixel(*thumb, 50, 10), kRed);
    EXPECT_EQ(pixel(*thumb, 30, 13), kRed);
    EXPECT_EQ(pixel(*thumb, 55, 10), kBlack);

    // The highlight rims the stroke in white and black; the silhouette is
    // black.
    stroke->drawHighlighted(page->getPageDevice(), page->getPageBounds(), page->getPageBounds());
    EXPECT_EQ(pixel(*page, 60, 20), kRed);
    EXPECT_EQ(pixel(*page, 60, 25), 0x000000u);
    EXPECT_EQ(pixel(*page, 60, 27), 0xFFFFFFu);
    stroke->drawSilhouette(page->getPageDevice(), page->getPageBounds(), page->getPageBounds());
    EXPECT_EQ(pixel(*page, 60, 20), kBlack);
    EXPECT_EQ(stroke->getColour(), rgb(kRed));
}

TEST_F(StrokeTest, RecordingThinsPointsAndKeepsTheLast)
{
    StrokeRecorder recorder;
    recorder.press(*tape, 50, 50, 16, rgb(kGreen));
    EXPECT_EQ(pixel(*page, 50, 50), kGreen);
    // Nearer than an eighth of the brush in both directions: dropped, but
    // the cursor follows.
    EXPECT_FALSE(recorder.move(51, 51, false));
    EXPECT_EQ(recorder.getCursorPosition(), KGraphicPoint(43, 43));
    EXPECT_TRUE(recorder.move(52, 50, false));
    EXPECT_TRUE(recorder.move(70, 50, false));
    EXPECT_FALSE(recorder.move(71, 50, false));
    StrokePtr stroke = recorder.release(71, 50, false);
    ASSERT_TRUE(stroke);
    EXPECT_FALSE(recorder.isOpen());
    ASSERT_EQ(stroke->getPointCount(), 4);
    EXPECT_EQ(stroke->getPoint(3), KGraphicPoint(71, 50));
    EXPECT_EQ(tape->getCount(), 1);
    EXPECT_EQ(tape->getPosition(), 1);
    EXPECT_EQ(pixel(*page, 78, 50), kGreen);

    // What the recorder drew is what the stroke draws.
    EXPECT_EQ(pixels(*page), referencePage(*tape, 1));

    // A click leaves two points at one place and a visible dab.
    recorder.press(*tape, 120, 100, 1, rgb(kRed));
    StrokePtr click = recorder.release(120, 100, false);
    EXPECT_EQ(click->getPointCount(), 2);
    EXPECT_EQ(pixel(*page, 120, 100), kRed);
    EXPECT_EQ(tape->getPosition(), 2);
}

TEST_F(StrokeTest, ShiftKeepsTheLineOnTheAxisChosenOnce)
{
    StrokeRecorder recorder;
    recorder.press(*tape, 50, 50, 8, rgb(kRed));
    // Within 4 pixels in both directions: nothing happens at all.
    EXPECT_FALSE(recorder.move(53, 54, true));
    EXPECT_EQ(recorder.getStroke()->getPointCount(), 1);
    // The first point beyond chooses: x moves less, so x is kept.
    EXPECT_TRUE(recorder.move(52, 60, true));
    EXPECT_EQ(recorder.getStroke()->getPoint(1), KGraphicPoint(50, 60));
    EXPECT_TRUE(recorder.move(80, 70, true));
    EXPECT_EQ(recorder.getStroke()->getPoint(2), KGraphicPoint(50, 70));
    // Letting go of the key frees the line.
    EXPECT_TRUE(recorder.move(80, 70, false));
    EXPECT_EQ(recorder.getStroke()->getPoint(3), KGraphicPoint(80, 70));
    // A new press ends the open stroke first.
    recorder.press(*tape, 10, 10, 8, rgb(kRed));
    EXPECT_EQ(tape->getCount(), 1);
    StrokePtr second = recorder.release(30, 12, true);
    EXPECT_EQ(second->getPoint(1), KGraphicPoint(30, 10));
    EXPECT_EQ(tape->getCount(), 2);
}

#include "SpriteTestSupport.h"

#include "kernel/KError.h"

#include <vector>

namespace {

TEST_F(SpriteTest, BoundsFollowPositionOriginScaleAndFrame)
{
    KSpritePtr sprite = solidSprite(20, 10, 8, 6, kRed);
    sprite->setOrigin(2.0f, 1.0f);
    sprite->setScale(1.5f, 2.0f);
    // left 20 - 2 * 1.5 = 17, top 10 - 1 * 2 = 8, size 12 by 12.
    EXPECT_EQ(sprite->getBounds(), KGraphicRectangle(17, 8, 12, 12));
    // Truncation toward zero, also left of the page.
    sprite->setPosition(-3.7f, 0.9f);
    sprite->setScale(1.0f, 1.0f);
    EXPECT_EQ(sprite->getBounds(), KGraphicRectangle(-5, 0, 8, 6));
    // No valid frame: an empty rectangle, whatever the position.
    sprite->setFrame(-1);
    EXPECT_EQ(sprite->getBounds(), KGraphicRectangle(0, 0, 0, 0));
    sprite->setFrame(1);
    EXPECT_EQ(sprite->getBounds(), KGraphicRectangle(0, 0, 0, 0));
    EXPECT_EQ(sprite->getFrameSize(), KGraphicSize(8, 6));
    EXPECT_EQ(KSprite().getFrameSize(), KGraphicSize(0, 0));

    // Overlap by whole rectangles with exclusive edges.
    KSpritePtr a = solidSprite(0, 0, 10, 10, kRed);
    KSpritePtr touching = solidSprite(10, 0, 10, 10, kBlue);
    KSpritePtr crossing = solidSprite(9, 9, 10, 10, kBlue);
    EXPECT_FALSE(a->overlaps(*touching));
    EXPECT_TRUE(a->overlaps(*crossing));
}

TEST_F(SpriteTest, FullCompositionDrawsLayersInOrderAndStretchesIntoTheDestination)
{
    attach(KSpriteSystem::Full);
    KSpritePtr low = solidSprite(5, 5, 10, 10, kRed);
    KSpritePtr high = solidSprite(10, 10, 10, 10, kBlue);
    KSpritePtr hidden = solidSprite(30, 2, 4, 4, kYellow);
    hidden->hide();
    top->addSprite(*high);
    bottom->addSprite(*low);
    bottom->addSprite(*hidden);
    sprites->drawFrame();
    EXPECT_EQ(screenAt(6, 6), red);
    EXPECT_EQ(screenAt(12, 12), blue); // the upper layer wins
    EXPECT_EQ(screenAt(31, 3), green); // hidden sprites are not drawn
    EXPECT_EQ(screenAt(1, 21), grey); // the background below all
    EXPECT_EQ(screenAt(45, 5), sentinel);

    // Within a layer, the later sprite is above; a z-order change swaps.
    KSpritePtr cover = solidSprite(8, 8, 4, 4, kYellow);
    bottom->addSprite(*cover);
    sprites->drawFrame();
    EXPECT_EQ(screenAt(9, 9), yellow);
    cover->sendToBack();
    EXPECT_EQ(bottom->getSpriteAt(0), cover.get());
    sprites->drawFrame();
    EXPECT_EQ(screenAt(9, 9), red);

    // A destination of another size stretches the page in modes 0 and 1.
    resetScreen();
    sprites->setDestinationRect(KGraphicRectangle(0, 0, 20, 15));
    sprites->drawFrame();
    EXPECT_EQ(screenAt(3, 3), red); // page (6, 6)
    EXPECT_EQ(screenAt(0, 10), grey); // page (0, 20)
    EXPECT_EQ(screenAt(25, 5), sentinel);
}

TEST_F(SpriteTest, IncrementalFrameRestoresTheBackgroundWhereASpriteWas)
{
    attach(KSpriteSystem::Incremental);
    // With no sprites, mode 1 still transfers the whole buffer, black as
    // long as nothing composed it.
    frame();
    EXPECT_EQ(screenAt(39, 29), black);
    EXPECT_EQ(screenAt(40, 29), sentinel);

    KSpritePtr mover = solidSprite(2, 16, 6, 6, kRed);
    bottom->addSprite(*mover);
    sprites->redrawAll();
    frame();
    EXPECT_EQ(screenAt(3, 21), red);

    mover->setPosition(30.0f, 2.0f);
    frame();
    // The old place shows the background again, stripe included.
    EXPECT_EQ(screenAt(3, 21), grey);
    EXPECT_EQ(screenAt(3, 17), green);
    EXPECT_EQ(screenAt(31, 3), red);
    EXPECT_TRUE(sprites->getDirtySprites().getSize() == 1);

    // A still frame draws nothing and leaves the sprite clean.
    frame();
    EXPECT_EQ(sprites->getDirtySprites().getSize(), 0);
    EXPECT_FALSE(mover->isDirty());

    // Without a background the place is painted black.
    sprites->clearBackgroundImage();
    mover->setPosition(10.0f, 10.0f);
    frame();
    EXPECT_EQ(screenAt(31, 3), black);
    EXPECT_EQ(screenAt(11, 11), red);
}

TEST_F(SpriteTest, DirtinessSpreadsToOverlappingSpritesSoTheOrderHolds)
{
    attach(KSpriteSystem::Incremental);
    KSpritePtr mover = solidSprite(0, 10, 10, 10, kRed);
    KSpritePtr still = solidSprite(12, 10, 10, 10, kBlue);
    KSpritePtr beyond = solidSprite(20, 12, 10, 4, kYellow);
    KSpritePtr apart = solidSprite(30, 0, 4, 4, kYellow);
    bottom->addSprite(*mover);
    top->addSprite(*still);
    top->addSprite(*beyond);
    top->addSprite(*apart);
    sprites->redrawAll();
    frame();

    // The mover slides under the still sprite of the upper layer, which
    // must be drawn again over it, and so must the one overlapping that.
    mover->setPosition(8.0f, 10.0f);
    frame();
    EXPECT_EQ(screenAt(9, 12), red);
    EXPECT_EQ(screenAt(14, 12), blue);
    EXPECT_EQ(screenAt(25, 13), yellow);
    const KBag& drawn = sprites->getDirtySprites();
    EXPECT_EQ(drawn.getSize(), 3);
    EXPECT_EQ(drawn.getAt(0), mover.get()); // bottom layer first
    EXPECT_FALSE(drawn.has(*apart));
}

TEST_F(SpriteTest, RectangleModeTransfersOnlyTheChangedRectangles)
{
    attach(KSpriteSystem::Rectangles, 10, 5);
    // With no sprites, a frame transfers nothing.
    frame();
    EXPECT_EQ(screenAt(15, 10), sentinel);

    KSpritePtr mover = solidSprite(2, 2, 4, 4, kRed);
    bottom->addSprite(*mover);
    sprites->redrawAll();
    // The full transfer is unscaled at the destination's origin.
    EXPECT_EQ(screenAt(12, 7), red);
    EXPECT_EQ(screenAt(10 + 39, 5 + 29), green);
    EXPECT_EQ(screenAt(9, 5), sentinel);
    frame();

    // A small move: one copy, the union of the old and the new place.
    resetScreen();
    mover->setPosition(4.0f, 2.0f);
    frame();
    EXPECT_EQ(screenAt(10 + 2, 5 + 2), green); // uncovered, restored
    EXPECT_EQ(screenAt(10 + 7, 5 + 5), red);
    EXPECT_EQ(screenAt(10 + 8, 5 + 2), sentinel);
    EXPECT_EQ(screenAt(10 + 1, 5 + 2), sentinel);
    EXPECT_EQ(screenAt(10 + 2, 5 + 6), sentinel);

    // A far move: two copies, nothing between them.
    resetScreen();
    mover->setPosition(30.0f, 20.0f);
    frame();
    EXPECT_EQ(screenAt(10 + 4, 5 + 2), green);
    EXPECT_EQ(screenAt(10 + 30, 5 + 20), red);
    EXPECT_EQ(screenAt(10 + 33, 5 + 21), red);
    EXPECT_EQ(screenAt(10 + 20, 5 + 10), sentinel);

    // Painting on the background and invalidating sends that area too,
    // once.
    resetScreen();
    sprites->getBackground()->getDevice().fillRectangle(KGraphicRectangle(0, 0, 3, 3), kBlue);
    sprites->invalidate(KGraphicRectangle(0, 0, 3, 3));
    EXPECT_EQ(sprites->getExtraRects().getSize(), 1);
    frame();
    EXPECT_EQ(screenAt(10, 5), blue);
    EXPECT_EQ(screenAt(13, 5), sentinel);
    EXPECT_EQ(sprites->getExtraRects().getSize(), 0);
    resetScreen();
    frame();
    EXPECT_EQ(screenAt(10, 5), sentinel);
}

TEST_F(SpriteTest, MarkedSpritesLeaveOverTwoFramesOrOneWhenHidden)
{
    attach(KSpriteSystem::Rectangles);
    KSpritePtr leaving = solidSprite(2, 2, 5, 5, kRed);
    KSpritePtr hidden = solidSprite(20, 2, 5, 5, kBlue);
    KSpritePtr neighbour = solidSprite(5, 5, 5, 5, kYellow);
    bottom->addSprite(*leaving);
    bottom->addSprite(*hidden);
    top->addSprite(*neighbour);
    sprites->redrawAll();
    frame();
    hidden->hide();
    frame();

    bottom->markForRemoval(*leaving);
    bottom->markForRemoval(*hidden);
    frame();
    // The visible one is wiped but still listed; the hidden one is gone.
    EXPECT_EQ(screenAt(3, 3), green);
    EXPECT_EQ(screenAt(6, 6), yellow); // the neighbour over the wiped area
    EXPECT_FALSE(leaving->isVisible());
    EXPECT_EQ(leaving->getLayer(), bottom.get());
    EXPECT_EQ(hidden->getLayer(), nullptr);
    EXPECT_FALSE(bottom->getSprites().has(*hidden));
    EXPECT_FALSE(sprites->getObjects().has(*hidden));
    frame();
    EXPECT_EQ(leaving->getLayer(), nullptr);
    EXPECT_EQ(bottom->getSpriteCount(), 0);
    EXPECT_FALSE(sprites->getObjects().has(*leaving));

    // Re-adding in the same frame keeps the sprite.
    KSpritePtr stays = solidSprite(2, 2, 5, 5, kRed);
    bottom->addSprite(*stays);
    bottom->markForRemoval(*stays);
    bottom->addSprite(*stays);
    EXPECT_FALSE(stays->isRemovePending());

    // A layer outside a system does not mark.
    KSpriteLayerPtr loose = kAdopt(new KSpriteLayer());
    KSpritePtr lone = solidSprite(0, 0, 2, 2, kRed);
    loose->addSprite(*lone);
    loose->markForRemoval(*lone);
    EXPECT_FALSE(lone->isRemovePending());
}

TEST_F(SpriteTest, LayersEnterTheirSpritesAndFindAndSortThem)
{
    KSpritePtr early = solidSprite(0, 0, 10, 10, kRed);
    bottom->addSprite(*early);
    attach(KSpriteSystem::Full);
    // Sprites of an added layer, and sprites added later, are stepped.
    KSpritePtr later = solidSprite(5, 5, 10, 10, kBlue);
    bottom->addSprite(*later);
    EXPECT_TRUE(sprites->getObjects().has(*early));
    EXPECT_TRUE(sprites->getObjects().has(*later));
    EXPECT_EQ(bottom->getSystem(), sprites.get());
    // A layer of a system is not added twice, nor to another system.
    sprites->addLayer(*bottom);
    EXPECT_EQ(sprites->getLayers().getSize(), 2);

    // The topmost sprite at the point, hidden or not; false off them all.
    KSpritePtr found;
    later->hide();
    EXPECT_TRUE(bottom->findSpriteAt(KGraphicPoint(7, 7), found));
    EXPECT_EQ(found.get(), later.get());
    EXPECT_TRUE(bottom->findSpriteAt(KGraphicPoint(2, 2), found));
    EXPECT_EQ(found.get(), early.get());
    EXPECT_FALSE(bottom->findSpriteAt(KGraphicPoint(15, 15), found));

    // Sort mode 1 orders by y before each full composition; equal y keep
    // their order.
    KSpritePtr a = solidSprite(0, 20, 2, 2, kRed);
    KSpritePtr b = solidSprite(0, 3, 2, 2, kRed);
    KSpritePtr c = solidSprite(0, 3, 2, 2, kRed);
    top->addSprite(*a);
    top->addSprite(*b);
    top->addSprite(*c);
    top->setSortMode(KSpriteLayer::SortByY);
    sprites->redrawAll();
    EXPECT_EQ(top->getSpriteAt(0), b.get());
    EXPECT_EQ(top->getSpriteAt(1), c.get());
    EXPECT_EQ(top->getSpriteAt(2), a.get());
    // A copied layer takes the sort mode, not the sprites.
    KPtr<KSpriteLayer> copy = kAdopt(static_cast<KSpriteLayer*>(top->deepCopy()));
    EXPECT_EQ(copy->getSortMode(), KSpriteLayer::SortByY);
    EXPECT_EQ(copy->getSpriteCount(), 0);

    // Moving to the top and removing.
    sprites->moveLayerToTop(*bottom);
    EXPECT_EQ(sprites->getLayerAt(1), bottom.get());
    EXPECT_TRUE(sprites->removeLayer(*bottom));
    EXPECT_FALSE(sprites->removeLayer(*bottom));
    EXPECT_EQ(bottom->getSystem(), nullptr);
    EXPECT_FALSE(sprites->getObjects().has(*early));
    EXPECT_EQ(bottom->getSpriteCount(), 2);
    sprites->removeAllLayers();
    EXPECT_EQ(top->getSpriteCount(), 0);
    EXPECT_EQ(a->getLayer(), nullptr);
    EXPECT_EQ(sprites->getObjects().getSize(), 0);
}

TEST_F(SpriteTest, BackgroundNeedsADeviceAndUpdatingItInvalidatesTheWhole)
{
    ErrorRecorder errors;
    sprites->setBackground(*page);
    EXPECT_EQ(errors.lastCode(), KError::SpriteNoTargetDevice);
    sprites->updateBackground(*page);
    EXPECT_EQ(errors.errors().size(), 2u);
    EXPECT_EQ(errors.lastCode(), KError::SpriteNoTargetDevice);
    EXPECT_EQ(sprites->getOffscreen(), nullptr);
    // Nothing to draw with yet: frames do nothing and remove nothing.
    KSpritePtr sprite = solidSprite(0, 0, 4, 4, kRed);
    bottom->addSprite(*sprite);
    sprites->addLayer(*bottom);
    sprites->setUpdateMode(KSpriteSystem::Incremental);
    bottom->markForRemoval(*sprite);
    sprite->hide();
    sprites->drawFrame();
    EXPECT_EQ(sprite->getLayer(), bottom.get());
    sprites->removeLayer(*bottom);

    // Attaching sizes the empty rectangles by the device and makes a black
    // page.
    sprites->attachDevice(screen->getDevice());
    EXPECT_EQ(sprites->getBufferRect(), KGraphicRectangle(0, 0, 60, 50));
    EXPECT_EQ(sprites->getDestinationRect(), KGraphicRectangle(0, 0, 60, 50));
    ASSERT_NE(sprites->getBackground(), nullptr);
    EXPECT_EQ(pixelAt(sprites->getBackground()->getDevice(), 5, 5), black);

    sprites->setUpdateMode(KSpriteSystem::Rectangles);
    KPtr<KImage> blueImage = solidImage(6, 5, kBlue);
    sprites->updateBackground(*blueImage);
    EXPECT_EQ(sprites->getExtraRects().getSize(), 1);
    EXPECT_EQ(bufferAt(59, 49), blue);
    frame();
    EXPECT_EQ(screenAt(59, 49), blue);
    EXPECT_EQ(errors.errors().size(), 2u);
}

TEST_F(SpriteTest, TheFrameTimerComposesTheStateOfThePreviousStep)
{
    attach(KSpriteSystem::Rectangles);
    KSpritePtr mover = solidSprite(2, 2, 4, 4, kRed);
    bottom->addSprite(*mover);
    sprites->redrawAll();

    // Moved between ticks: the next tick shows it, the old place restored.
    after(21);
    resetScreen();
    mover->setPosition(20.0f, 2.0f);
    after(20);
    EXPECT_EQ(screenAt(21, 3), red);
    EXPECT_EQ(screenAt(3, 3), green);
    // The step after the frame made the new place the drawn one: the next
    // tick has nothing to do.
    resetScreen();
    after(20);
    EXPECT_EQ(screenAt(21, 3), sentinel);
    EXPECT_EQ(mover->getDrawnRect(), KGraphicRectangle(20, 2, 4, 4));

    // A paused system shows nothing new.
    sprites->pause();
    mover->setPosition(30.0f, 10.0f);
    after(100);
    EXPECT_EQ(screenAt(31, 11), sentinel);
    sprites->resume();
    after(21);
    EXPECT_EQ(screenAt(31, 11), red);
}

// A sprite that draws more than its frame, as the edit frame does: the
// system must leave it its own way of drawing.
class OutlinedSprite : public KSprite {
public:
    void draw(KGraphicDevice& device) override
    {
        KSprite::draw(device);
        device.frameRectangle(getBounds(), kYellow);
    }
};

KPtr<KAlphaImage> ovalFrame(int w, int h, const KColor& fill)
{
    KGraphicRectangle whole(0, 0, int16_t(w), int16_t(h));
    KPtr<KAlphaImage> frame = solidFrame(w, h, fill);
    KPtr<KImage> mask = solidImage(w, h, kWhite);
    KGraphicDevice& pen = mask->getDevice();
    pen.setForeground(kBlack);
    pen.fillOval(whole);
    // A grey ring mixes the picture with what lies below.
    pen.setForeground(kGrey);
    pen.frameOval(whole);
    frame->setMask(*mask);
    return frame;
}

// Two systems over the same page and the same frames: one composes every
// frame whole, the other by its dirty areas. Their screens must agree
// after every frame.
struct MirroredScenes {
    explicit MirroredScenes(KSpriteSystem::UpdateMode mode, KImage& page)
    {
        for (int i = 0; i < 2; ++i) {
            systems[i] = kAdopt(new KSpriteSystem());
            screens[i] = solidImage(60, 50, kSentinel);
            layers[i][0] = kAdopt(new KSpriteLayer());
            layers[i][1] = kAdopt(new KSpriteLayer());
            KSpriteSystem& system = *systems[i];
            system.setUpdateMode(i == 0 ? KSpriteSystem::Full : mode);
            system.setBufferRect(KGraphicRectangle(0, 0, 40, 30));
            system.setDestinationRect(KGraphicRectangle(10, 5, 40, 30));
            system.attachDevice(screens[i]->getDevice());
            system.setBackground(page);
            system.addLayer(*layers[i][0]);
            system.addLayer(*layers[i][1]);
        }
    }
    ~MirroredScenes()
    {
        for (KSpriteSystemPtr& system : systems)
            system->removeAllLayers();
    }
    // The same sprite in both systems, the frames shared.
    void add(int layer, const std::vector<KPtr<KAlphaImage>>& frames, bool outlined, float scale)
    {
        for (int i = 0; i < 2; ++i) {
            KSpritePtr sprite = kAdopt(outlined ? new OutlinedSprite() : new KSprite());
            for (const KPtr<KAlphaImage>& frame : frames)
                sprite->addFrame(*frame);
            sprite->setScale(scale, scale);
            layers[i][layer]->addSprite(*sprite);
            sprites[i].push_back(sprite);
        }
    }
    template<class Change>
    void change(Change&& apply)
    {
        for (int i = 0; i < 2; ++i) {
            for (size_t k = 0; k < sprites[i].size(); ++k)
                apply(*sprites[i][k], k);
        }
    }
    void frame()
    {
        for (KSpriteSystemPtr& system : systems) {
            system->drawFrame();
            system->step(0.0f);
        }
    }
    // The first differing pixel, or an empty text.
    std::string difference()
    {
        for (int y = 0; y < 50; ++y) {
            for (int x = 0; x < 60; ++x) {
                std::string whole = pixelAt(screens[0]->getDevice(), x, y);
                std::string areas = pixelAt(screens[1]->getDevice(), x, y);
                if (whole != areas)
                    return "at " + std::to_string(x) + "," + std::to_string(y) + ": " + areas + " instead of " + whole;
            }
        }
        return "";
    }

    KSpriteSystemPtr systems[2];
    KPtr<KImage> screens[2];
    KSpriteLayerPtr layers[2][2];
    std::vector<KSpritePtr> sprites[2];
};

TEST_F(SpriteTest, IncrementalFramesShowWhatAFullCompositionShows)
{
    KPtr<KAlphaImage> redOval = ovalFrame(9, 7, kRed);
    KPtr<KAlphaImage> blueOval = ovalFrame(9, 7, kBlue);
    KPtr<KAlphaImage> block = solidFrame(6, 5, kYellow);
    for (KSpriteSystem::UpdateMode mode : { KSpriteSystem::Incremental, KSpriteSystem::Rectangles }) {
        MirroredScenes scenes(mode, *page);
        scenes.add(0, { redOval, blueOval }, false, 1.0f);
        scenes.add(0, { block }, false, 1.0f);
        scenes.add(1, { blueOval, redOval }, false, 1.0f);
        scenes.add(1, { redOval }, false, 1.5f); // stretched: drawn the usual way
        scenes.add(1, { block }, true, 1.0f); // draws its own way
        scenes.add(0, { redOval }, false, 1.0f);
        const float starts[][4] = { { -4, 3, 2, 1 },  { 10, 10, -1, 2 }, { 30, 20, -3, -1 },
                                    { 20, -3, 1, 2 }, { 5, 22, 3, -2 },  { 36, 1, -2, 3 } };
        scenes.change([&](KSprite& sprite, size_t k) { sprite.setPosition(starts[k][0], starts[k][1]); });
        for (KSpriteSystemPtr& system : scenes.systems)
            system->redrawAll();
        ASSERT_EQ(scenes.difference(), "") << "mode " << int32_t(mode) << " at the start";
        for (int step = 1; step <= 40; ++step) {
            scenes.change([&](KSprite& sprite, size_t k) {
                // Back and forth across the page and over its edges.
                float phase = float((step / 10) % 2 == 0 ? step % 10 : 10 - step % 10);
                sprite.setPosition(starts[k][0] + starts[k][2] * phase, starts[k][1] + starts[k][3] * phase);
                if (step % 7 == 0 && k == 0)
                    sprite.setFrame(sprite.getFrame() == 0 ? 1 : 0);
            });
            if (step == 25) {
                // A frame repainted in place shows at the next change of
                // frame, not the picture prepared before.
                blueOval->getDevice().fillRectangle(KGraphicRectangle(0, 0, 9, 3), kGreen);
                scenes.change([](KSprite& sprite, size_t) { sprite.setFrame(sprite.getFrame()); });
            }
            scenes.frame();
            ASSERT_EQ(scenes.difference(), "") << "mode " << int32_t(mode) << ", frame " << step;
        }
    }
}

// Areas that overlap are merged where that saves pixels; a sprite that
// jumped leaves two areas, and one clipped by the page edge its visible
// part only.
TEST_F(SpriteTest, DirtyAreasFollowTheMovesAndStayOnThePage)
{
    attach(KSpriteSystem::Rectangles);
    KSpritePtr jumper = solidSprite(2, 2, 4, 4, kRed);
    KSpritePtr slider = solidSprite(20, 10, 6, 6, kBlue);
    bottom->addSprite(*jumper);
    bottom->addSprite(*slider);
    sprites->redrawAll();
    frame();

    jumper->setPosition(30.0f, 2.0f);
    slider->setPosition(21.0f, 10.0f);
    frame();
    const std::vector<KGraphicRectangle>& areas = sprites->getDirtyAreas();
    ASSERT_EQ(areas.size(), 3u);
    EXPECT_EQ(areas[0], KGraphicRectangle(2, 2, 4, 4));
    EXPECT_EQ(areas[1], KGraphicRectangle(30, 2, 4, 4));
    EXPECT_EQ(areas[2], KGraphicRectangle(20, 10, 7, 6));

    // Moved onto each other: one area where the box costs no more.
    jumper->setPosition(22.0f, 11.0f);
    frame();
    ASSERT_EQ(areas.size(), 2u);
    EXPECT_EQ(areas[0], KGraphicRectangle(30, 2, 4, 4));
    EXPECT_EQ(areas[1], KGraphicRectangle(21, 10, 6, 6));
    EXPECT_EQ(screenAt(23, 12), blue); // the later sprite of the layer is above

    // Half over the edge: the area ends with the page, and the part that
    // shows is right.
    slider->setPosition(37.0f, 27.0f);
    frame();
    ASSERT_FALSE(areas.empty());
    for (const KGraphicRectangle& area : areas) {
        EXPECT_LE(area.getRight(), kPageWidth);
        EXPECT_LE(int32_t(area.y) + area.height, kPageHeight);
    }
    EXPECT_EQ(screenAt(38, 28), blue);
    EXPECT_EQ(screenAt(40, 28), sentinel);
    EXPECT_EQ(screenAt(23, 12), red);
    EXPECT_EQ(screenAt(26, 15), green);

    // A frame repainted in place shows at the next frame change, not the
    // picture prepared before.
    jumper->getFrameImage(0)->getDevice().fillRectangle(KGraphicRectangle(0, 0, 4, 4), kYellow);
    jumper->setFrame(0);
    frame();
    EXPECT_EQ(screenAt(23, 12), yellow);
}

} // namespace

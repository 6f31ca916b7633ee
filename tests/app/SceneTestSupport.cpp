#include "tests/app/SceneTestSupport.h"

#include "app/AppClasses.h"
#include "app/actors/ActorSequence.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KPixelBuffer.h"
#include "kernel/KFileReference.h"
#include "tape/Stroke.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KTimerManager.h"

namespace scenetest {

void SceneHost::alert(const KString& title, const KString& text)
{
    alerts.push_back(std::string(title.c_str()) + ": " + text.c_str());
}

bool SceneHost::findMissingFile(KFileReference& file, KDirectory&, KDirectory*)
{
    searched.push_back(file.getObjectName().c_str());
    if (giveUp)
        return true;
    if (!foundAt.isEmpty())
        file.setPath(foundAt);
    return false;
}

KColor rgb(uint32_t value)
{
    return KColor(uint16_t(((value >> 16) & 0xFF) << 8), uint16_t(((value >> 8) & 0xFF) << 8),
                  uint16_t((value & 0xFF) << 8));
}

namespace {

// A bar of 20 by 10 pixels: a stroke of a 10 pixel brush along 10 pixels.
StrokePtr makeBar(uint32_t colour)
{
    StrokePtr stroke(new Stroke());
    stroke->setBrushSize(10);
    stroke->setColour(rgb(colour));
    stroke->addPoint(40, 40);
    stroke->addPoint(50, 40);
    return stroke;
}

void paintFrame(Tape& frame, uint32_t colour)
{
    StrokePtr bar = makeBar(colour);
    frame.addElement(*bar);
}

} // namespace

ActorPtr makeActor(uint32_t walkColour)
{
    ActorPtr actor(new Actor(KGraphicSize(SceneTest::kPageWidth, SceneTest::kPageHeight)));
    ActorSequence* walk = actor->getSequenceAt(0);
    walk->setName("Walk");
    paintFrame(*walk->getFrame(0), walkColour);

    ActorSequencePtr run(new ActorSequence());
    run->setName("Run");
    TapePtr frame(new Tape());
    actor->adoptFrameTape(*frame);
    paintFrame(*frame, kRunGreen);
    run->addFrame(*frame);
    actor->addSequence(*run);
    actor->recomputeBounds();
    return actor;
}

ActorActionPtr makeAction(const char* actor, int32_t action)
{
    ActorActionPtr made(new ActorAction());
    made->setActorName(actor);
    made->setAction(action);
    return made;
}

ActorActionPtr makeEnter(const char* actor, const char* movement, int16_t x, int16_t y)
{
    ActorActionPtr made = makeAction(actor, ActorAction::EnterOnScene);
    made->setMovementName(movement);
    made->setPosition(KGraphicPoint(x, y));
    return made;
}

ActorActionPtr makeMove(const char* actor, int32_t action, int16_t x, int16_t y, float scale, int32_t speed)
{
    ActorActionPtr made = makeAction(actor, action);
    made->setPosition(KGraphicPoint(x, y));
    made->setScale(KAnimationVector(scale, scale));
    made->setSpeed(speed);
    return made;
}

ActorMotionPtr makeMotion(const char* actor, const std::vector<std::pair<int16_t, int16_t>>& points)
{
    ActorMotionPtr made(new ActorMotion());
    made->setActorName(actor);
    for (auto& [x, y] : points)
        made->addPoint(x, y);
    return made;
}

std::vector<uint32_t> pixelsOf(KImage& image)
{
    std::vector<uint32_t> result;
    KPixelBuffer buffer;
    if (!image.getDevice().beginPixelAccess(buffer))
        return result;
    for (int32_t y = 0; y < buffer.height; ++y) {
        for (int32_t x = 0; x < buffer.width; ++x)
            result.push_back(*buffer.at(x, y) & KPixelBuffer::kColourBits);
    }
    return result;
}

uint32_t pixelAt(KImage& image, int32_t x, int32_t y)
{
    KPixelBuffer buffer;
    if (!image.getDevice().beginPixelAccess(buffer) || !buffer.contains(x, y))
        return 0xFFFFFFFF;
    return *buffer.at(x, y) & KPixelBuffer::kColourBits;
}

void SceneTest::SetUp()
{
    registerDocumentClasses();
    KNativeLayer::install(&layer);
    KTimerManager::destroy();
    TapeHost::install(&host);
    tape = makeTape(page);
}

void SceneTest::TearDown()
{
    if (tape) {
        tape->stopPlaying();
        tape->clearSpriteSystem();
    }
    tape.clear();
    page.clear();
    KTimerManager::destroy();
    TapeHost::install(nullptr);
    KNativeLayer::install(nullptr);
}

TapePtr SceneTest::makeTape(SceneTapePagePtr& pageOut, bool withAnn)
{
    TapePtr made(new Tape());
    pageOut = new SceneTapePage(KGraphicSize(kPageWidth, kPageHeight));
    made->setPageSize(KGraphicSize(kPageWidth, kPageHeight));
    made->setSpriteSystem(*pageOut);
    made->getActors().add("Bob", *makeActor());
    if (withAnn)
        made->getActors().add("Ann", *makeActor(kAnnYellow));
    return made;
}

std::vector<uint32_t> SceneTest::composed(SceneTapePage& scene)
{
    KImagePtr image(new KImage());
    scene.composeInto(*image);
    return pixelsOf(*image);
}

std::vector<uint32_t> SceneTest::screen(SceneTapePage& scene)
{
    scene.drawFrame();
    return pixelsOf(*scene.getFrameImage());
}

uint32_t SceneTest::composedAt(int32_t x, int32_t y)
{
    KImagePtr image(new KImage());
    page->composeInto(*image);
    return pixelAt(*image, x, y);
}

std::vector<uint32_t> SceneTest::referenceScene(int32_t position, bool withAnn)
{
    SceneTapePagePtr scene(new SceneTapePage(KGraphicSize(kPageWidth, kPageHeight)));
    TapePtr copy(new Tape(*tape));
    copy->setSpriteSystem(*scene);
    copy->getActors().add("Bob", *makeActor());
    if (withAnn)
        copy->getActors().add("Ann", *makeActor(kAnnYellow));
    copy->getPageCache().setEnabled(false);
    copy->setPositionQuietly(position);
    copy->rebuildPage();
    std::vector<uint32_t> result = composed(*scene);
    copy->clearSpriteSystem();
    return result;
}

void SceneTest::tick()
{
    layer.advance(uint32_t(tape->getPlayInterval()));
    tape->handleTimer();
}

int32_t SceneTest::ticksWhilePlaying(int32_t limit)
{
    int32_t ticks = 0;
    do {
        tick();
        ++ticks;
    } while (tape->getPlayingObject() && ticks < limit);
    return ticks;
}

} // namespace scenetest

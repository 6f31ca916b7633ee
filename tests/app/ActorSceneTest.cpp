#include "tests/app/SceneTestSupport.h"
#include "tests/support/TestSupport.h"

#include "app/actors/ActorLoading.h"
#include "kernel/KDirectory.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "kernel/KStringBag.h"
#include "kmultimedia/KSpriteLayer.h"
#include "tape/Stroke.h"
#include "tape/WipeOut.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

using namespace scenetest;

namespace {

class ActorSceneTest : public SceneTest {
protected:
    bool onScene(const char* name) { return page->isActorOnScene(*tape, name); }

    int64_t countColour(const std::vector<uint32_t>& pixels, uint32_t colour)
    {
        return std::count(pixels.begin(), pixels.end(), colour);
    }

    void add(TapeObject& element) { tape->addElement(element); }

    // Plays from the start; the first tick starts element 0.
    void play()
    {
        tape->goToPosition(0);
        tape->startPlaying(0);
    }
};

// A folder of its own under the system's temporary folder, removed again.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "taleloom-scene-XXXXXX").string();
        path = mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    KDirectoryPtr directory() const
    {
        return KDirectoryPtr(new KDirectory(KPath(KString(path.c_str()), KPath::kHostPlatform)));
    }
    std::string file(const char* name) const { return path + "/" + name; }

    std::string path;
};

std::vector<uint8_t> streamOf(KThing& object)
{
    KFile file;
    file.setMode(KFileModeMemory);
    object.writeToFile(file, 1);
    auto* data = static_cast<const uint8_t*>(file.getMemoryData());
    return std::vector<uint8_t>(data, data + file.getMemorySize());
}

int32_t readStream(KThing& object, const std::vector<uint8_t>& bytes)
{
    void* block = KMemory::allocate(bytes.size() + 1, false);
    KMemory::copy(bytes.data(), block, bytes.size());
    KFile file;
    file.setMode(KFileModeReadBuffered);
    file.openFromRAM(block, int32_t(bytes.size()));
    object.readFromFile(file);
    int32_t error = file.getError();
    file.close();
    return error;
}

// A cut to black that clears the stage.
WipeOutPtr makeWipe()
{
    WipeOutPtr wipe(new WipeOut());
    wipe->setRemovesActors(true);
    return wipe;
}

bool saveActor(Actor& actor, const TemporaryFolder& folder, const char* name)
{
    KDirectoryPtr directory = folder.directory();
    KFileReference file = actorFileIn(*directory, name);
    return actor.save(file);
}

// --- Walking ---------------------------------------------------------------------

// Walking back is a rebuild from the last clean start; the scene it leaves
// must be the very scene of a fresh rebuild, on the screen as well as
// composed afresh, whichever way the walk came.
TEST_F(ActorSceneTest, WalkingForwardAndBackGivesTheSceneOfAFreshRebuild)
{
    tape->clearSpriteSystem();
    tape = makeTape(page, true);
    StrokePtr line(new Stroke());
    line->setBrushSize(6);
    line->setColour(rgb(kPageBlue));
    line->addPoint(10, 100);
    line->addPoint(150, 100);
    add(*line);
    add(*makeEnter("Bob", "Walk", 20, 20));
    add(*makeEnter("Ann", "Walk", 30, 25));
    ActorActionPtr toBack = makeAction("Ann", ActorAction::ChangeOrder);
    toBack->setOrderChange(ActorAction::BringToBack);
    add(*toBack);
    add(*makeMove("Bob", ActorAction::MoveResize, 60, 40, 1.5f, 3));
    add(*makeMotion("Bob", { { 60, 40 }, { 80, 50 }, { 100, 30 } }));
    ActorActionPtr run = makeAction("Bob", ActorAction::ChangeMovement);
    run->setMovementName("Run");
    add(*run);
    add(*makeMove("Ann", ActorAction::JumpToPosition, 5, 60, 1.0f, 10));
    add(*makeAction("Bob", ActorAction::ExitFromScene));
    add(*makeEnter("Bob", "Walk", 70, 70));
    StrokePtr dot(new Stroke());
    dot->setBrushSize(4);
    dot->setColour(rgb(kPageBlue));
    dot->addPoint(80, 10);
    add(*dot);
    int32_t count = tape->getCount();

    tape->goToPosition(0);
    std::vector<std::vector<uint32_t>> forward(size_t(count) + 1);
    for (int32_t p = 1; p <= count; ++p) {
        tape->stepForward();
        ASSERT_EQ(tape->getPosition(), p);
        std::vector<uint32_t> expected = referenceScene(p, true);
        EXPECT_EQ(screen(*page), expected) << "screen after stepping forward to " << p;
        EXPECT_EQ(composed(*page), expected) << "composition after stepping forward to " << p;
        forward[size_t(p)] = expected;
    }
    for (int32_t p = count - 1; p >= 0; --p) {
        tape->stepBack();
        ASSERT_EQ(tape->getPosition(), p);
        std::vector<uint32_t> expected = referenceScene(p, true);
        EXPECT_EQ(screen(*page), expected) << "screen after stepping back to " << p;
        EXPECT_EQ(composed(*page), expected) << "composition after stepping back to " << p;
    }

    // The pictures themselves: the bar of Bob is 20 by 10 at its place.
    std::vector<uint32_t>& entered = forward[2];
    EXPECT_EQ(entered[size_t(25 * kPageWidth + 30)], kWalkRed);
    EXPECT_EQ(forward[3][size_t(27 * kPageWidth + 35)], kAnnYellow) << "the later actor stands in front";
    EXPECT_EQ(forward[4][size_t(27 * kPageWidth + 35)], kWalkRed) << "Ann went behind Bob";
    EXPECT_EQ(forward[5][size_t(47 * kPageWidth + 85)], kWalkRed) << "moved and grown by half";
    EXPECT_EQ(forward[5][size_t(25 * kPageWidth + 22)], kBlack);
    EXPECT_EQ(forward[6][size_t(37 * kPageWidth + 115)], kWalkRed) << "at the end of the path";
    EXPECT_EQ(forward[7][size_t(37 * kPageWidth + 115)], kRunGreen) << "the other movement";
    EXPECT_EQ(forward[8][size_t(65 * kPageWidth + 15)], kAnnYellow);
    EXPECT_EQ(countColour(forward[9], kRunGreen) + countColour(forward[9], kWalkRed), 0) << "Bob left";
    EXPECT_EQ(forward[10][size_t(75 * kPageWidth + 80)], kWalkRed) << "Bob is back";
    EXPECT_EQ(forward[10][size_t(100 * kPageWidth + 50)], kPageBlue) << "the page stays under the actors";
}

TEST_F(ActorSceneTest, RebuildResetsActorsBehindAnExitAndKeepsCurrentMovements)
{
    add(*makeEnter("Bob", "Walk", 20, 20));
    add(*makeAction("Bob", ActorAction::ExitFromScene));
    add(*makeWipe());

    tape->goToPosition(1);
    ASSERT_TRUE(onScene("Bob"));
    EXPECT_EQ(bob().getCurrentMovement(), KString("Walk"));
    // Held, so that a new rendering cannot take the same address.
    KThingPtr rendered(bob().getFrames().getAt(0));
    ASSERT_TRUE(rendered);

    // The same scene again does not render the movement anew.
    tape->rebuildPage();
    EXPECT_EQ(bob().getFrames().getAt(0), rendered.get());
    EXPECT_TRUE(onScene("Bob"));

    tape->goToPosition(2);
    EXPECT_FALSE(onScene("Bob"));
    EXPECT_FALSE(bob().isVisible());
    EXPECT_TRUE(bob().getCurrentMovement().isEmpty());
    EXPECT_EQ(bob().getFrames().getSize(), 0);
    EXPECT_EQ(bob().getFrame(), -1);
    EXPECT_EQ(bob().getLayer(), nullptr);

    tape->goToPosition(3);
    EXPECT_FALSE(onScene("Bob"));
    tape->goToPosition(1);
    EXPECT_TRUE(onScene("Bob"));
    EXPECT_EQ(composedAt(25, 25), kWalkRed);
    EXPECT_EQ(tape->getActorsOnStage()->getSize(), 1);

    // What the elements alone say of each position.
    EXPECT_FALSE(tape->isActorOnStageAt("Bob", 0));
    EXPECT_TRUE(tape->isActorOnStageAt("Bob", 1));
    EXPECT_FALSE(tape->isActorOnStageAt("Bob", 2));
    tape->goToPosition(2);
    add(*makeEnter("Bob", "Walk", 20, 20));
    EXPECT_TRUE(tape->isActorOnStageAt("Bob", 3));
    EXPECT_FALSE(tape->isActorOnStageAt("Bob", 4)) << "a transition that removes actors ends the stay";
    EXPECT_EQ(tape->getActorNamesOnStageAt(3)->getSize(), 1);
    EXPECT_EQ(tape->getActorNamesOffStageAt(4)->getSize(), 1);
}

TEST_F(ActorSceneTest, EnterWithAMissingMovementPlacesTheActorOffTheScene)
{
    ActorActionPtr enter = makeEnter("Bob", "Fly", 33, 44);
    enter->setScale(KAnimationVector(2.0f, 0.5f));
    add(*enter);
    add(*makeEnter("Bob", "", 50, 50));

    tape->goToPosition(0);
    tape->stepForward();
    EXPECT_FALSE(onScene("Bob"));
    EXPECT_EQ(bob().getPosition(), KAnimationPoint(33, 44));
    EXPECT_EQ(bob().getScale(), KAnimationVector(2.0f, 0.5f));
    EXPECT_EQ(countColour(composed(*page), kWalkRed), 0);

    tape->goToPosition(1);
    EXPECT_FALSE(onScene("Bob"));
    tape->goToPosition(2);
    EXPECT_FALSE(onScene("Bob"));
    EXPECT_EQ(countColour(composed(*page), kWalkRed), 0);
}

// --- Playing ---------------------------------------------------------------------

TEST_F(ActorSceneTest, ActionsTakeOneTickAndMoveResizeTakesSpeedTimesSpeedSteps)
{
    add(*makeEnter("Nobody", "Walk", 1, 1));
    add(*makeMove("Bob", ActorAction::MoveResize, 50, 50, 3.0f, 5));
    add(*makeEnter("Bob", "Walk", 0, 0));
    ActorActionPtr slow = makeMove("Bob", ActorAction::MoveResize, 40, 20, 2.0f, 10);
    add(*slow);
    add(*makeMove("Bob", ActorAction::MoveResize, 10, 10, 1.0f, 1));
    ActorActionPtr zero = makeMove("Bob", ActorAction::MoveResize, 12, 12, 1.0f, 0);
    add(*zero);
    play();

    tick();
    EXPECT_EQ(tape->getPlayIndex(), 1) << "an unknown actor takes one step";
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
    tick();
    EXPECT_EQ(tape->getPlayIndex(), 2) << "off the scene a move does nothing";
    EXPECT_EQ(bob().getPosition(), KAnimationPoint(0, 0));
    EXPECT_EQ(bob().getScale(), KAnimationVector(1.0f, 1.0f));
    tick();
    EXPECT_TRUE(onScene("Bob"));

    tick();
    ASSERT_EQ(tape->getPlayingObject(), slow.get());
    for (int32_t i = 0; i < 50; ++i)
        tick();
    EXPECT_FLOAT_EQ(bob().getPosition().x, 20.0f);
    EXPECT_FLOAT_EQ(bob().getPosition().y, 10.0f);
    EXPECT_FLOAT_EQ(bob().getScale().x, 1.5f);
    // 100 ticks in all: the start and 99 steps.
    for (int32_t i = 0; i < 48; ++i)
        tick();
    EXPECT_EQ(tape->getPlayingObject(), slow.get());
    tick();
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
    EXPECT_EQ(bob().getPosition(), KAnimationPoint(40, 20));
    EXPECT_EQ(bob().getScale(), KAnimationVector(2.0f, 2.0f));

    tick();
    EXPECT_NE(tape->getPlayingObject(), nullptr);
    tick();
    EXPECT_EQ(tape->getPlayingObject(), nullptr) << "speed 1 arrives at the first step";
    EXPECT_EQ(bob().getPosition(), KAnimationPoint(10, 10));
    EXPECT_EQ(bob().getScale(), KAnimationVector(1.0f, 1.0f));

    tick();
    EXPECT_EQ(zero->getSpeed(), ActorAction::kSpeedForZero);
    tick();
    EXPECT_NEAR(bob().getPosition().x, 10.0f + 2.0f / 10000.0f, 1e-4);
    tape->stopPlaying();
    EXPECT_EQ(zero->getSpeed(), ActorAction::kSpeedForZero) << "the changed speed stays";
}

// A short path rests at its end, so that it does not pass unseen: a single
// point five ticks, five points one tick, six points not at all.
TEST_F(ActorSceneTest, MotionWalksOneSegmentATickAndRestsAtTheEndOfShortPaths)
{
    struct Case {
        int32_t pairs;
        int32_t steps;
    };
    for (Case c : { Case { 1, 5 }, Case { 2, 2 + 4 }, Case { 5, 5 + 1 }, Case { 6, 6 }, Case { 9, 9 } }) {
        SCOPED_TRACE(c.pairs);
        tape->clearSpriteSystem();
        tape = makeTape(page);
        add(*makeEnter("Bob", "Walk", 0, 0));
        std::vector<std::pair<int16_t, int16_t>> points;
        for (int32_t i = 0; i < c.pairs; ++i)
            points.emplace_back(int16_t(10 + 7 * i), int16_t(30 - 3 * i));
        ActorMotionPtr motion = makeMotion("Bob", points);
        add(*motion);
        play();
        tick();
        tick();
        ASSERT_EQ(tape->getPlayingObject(), motion.get());
        if (c.pairs == 1) {
            EXPECT_EQ(bob().getPosition(), KAnimationPoint(10, 30)) << "a single point is reached at once";
        }

        // No step before the tape's interval has passed.
        tape->handleTimer();
        EXPECT_EQ(motion->getPathIndex(), 0);

        int32_t steps = 0;
        while (tape->getPlayingObject() == motion.get() && steps < 100) {
            tick();
            ++steps;
            int32_t reached = std::min(steps, c.pairs) - 1;
            EXPECT_EQ(bob().getPosition(),
                      KAnimationPoint(points[size_t(reached)].first, points[size_t(reached)].second))
                << "after step " << steps;
        }
        EXPECT_EQ(steps, c.steps);
        EXPECT_FALSE(motion->isMovingActor());
        tape->stopPlaying();
    }
}

TEST_F(ActorSceneTest, MotionOnThePageSendsTheActorToTheLastPoint)
{
    add(*makeEnter("Bob", "Walk", 0, 0));
    ActorMotionPtr motion = makeMotion("Bob", { { 5, 6 }, { 70, 8 }, { 90, 60 } });
    add(*motion);
    add(*makeMotion("Bob", {}));
    tape->goToPosition(3);
    EXPECT_EQ(bob().getPosition(), KAnimationPoint(90, 60));
    EXPECT_EQ(motion->getLastX(), 90);
    EXPECT_EQ(motion->getLastY(), 60);
    EXPECT_FALSE(motion->isMovingActor());
    EXPECT_EQ(composedAt(95, 65), kWalkRed);
    EXPECT_EQ(motion->getFirstPoint(), KGraphicPoint(5, 6));
    EXPECT_EQ(motion->getLastPoint(), KGraphicPoint(90, 60));
    EXPECT_EQ(makeMotion("Bob", {})->getLastPoint(), KGraphicPoint(0, 0));
}

// --- Persistence -----------------------------------------------------------------

TEST_F(ActorSceneTest, ElementsSurviveATapeRoundTripAndRefuseNamesThatLeaveTheFolder)
{
    ActorActionPtr action = makeMove("Bob", ActorAction::MoveResize, -5, 300, 1.0f, 7);
    action->setMovementName("Run");
    action->setOrderChange(ActorAction::BringOneBackward);
    action->setScale(KAnimationVector(0.5f, 2.25f));
    action->setBookmark("here");
    action->deactivate();
    add(*action);
    add(*makeMotion("Bob", { { 1, 2 }, { -3, 400 }, { 5, 6 } }));
    add(*makeEnter("../x", "Walk", 1, 1));
    add(*makeMotion("dir/y", { { 1, 1 } }));

    TapePtr read(new Tape());
    ASSERT_EQ(readStream(*read, streamOf(*tape)), 0);
    ASSERT_EQ(read->getCount(), 4);

    auto* action2 = dynamic_cast<ActorAction*>(read->getAt(0));
    ASSERT_NE(action2, nullptr);
    EXPECT_EQ(action2->getType(), ActorActionType);
    EXPECT_EQ(action2->getActorName(), KString("Bob"));
    EXPECT_EQ(action2->getMovementName(), KString("Run"));
    EXPECT_EQ(action2->getAction(), ActorAction::MoveResize);
    EXPECT_EQ(action2->getSpeed(), 7);
    EXPECT_EQ(action2->getOrderChange(), ActorAction::BringOneBackward);
    EXPECT_EQ(action2->getPosition(), KGraphicPoint(-5, 300));
    EXPECT_EQ(action2->getScale(), KAnimationVector(0.5f, 2.25f));
    EXPECT_EQ(action2->getBookmark(), KString("here"));
    EXPECT_FALSE(action2->isActive());
    EXPECT_EQ(action2->getToolEntry(), ActorActionType + 2);
    EXPECT_EQ(ActorAction::getActionName(action2->getAction()), KString("Move / Resize"));
    EXPECT_EQ(ActorAction::getOrderChangeName(action2->getOrderChange()), KString("Send Backward"));
    EXPECT_EQ(ActorAction::getActionName(7), KString("Not Defined"));

    auto* motion2 = dynamic_cast<ActorMotion*>(read->getAt(1));
    ASSERT_NE(motion2, nullptr);
    EXPECT_EQ(motion2->getType(), ActorMotionType);
    EXPECT_EQ(motion2->getActorName(), KString("Bob"));
    ASSERT_EQ(motion2->getPointCount(), 3);
    EXPECT_EQ(motion2->getPoint(1), KGraphicPoint(-3, 400));
    EXPECT_EQ(motion2->getToolEntry(), ActorMotionType + 5);

    // The rest of the document loads; the names are emptied and reported.
    auto* refused = dynamic_cast<ActorAction*>(read->getAt(2));
    ASSERT_NE(refused, nullptr);
    EXPECT_TRUE(refused->getActorName().isEmpty());
    EXPECT_EQ(refused->getMovementName(), KString("Walk"));
    auto* refusedMotion = dynamic_cast<ActorMotion*>(read->getAt(3));
    ASSERT_NE(refusedMotion, nullptr);
    EXPECT_TRUE(refusedMotion->getActorName().isEmpty());
    EXPECT_EQ(host.refused, (std::vector<std::string> { "../x", "dir/y" }));

    // A copy has the path and the name, and nothing of a play.
    ActorMotionPtr copy(static_cast<ActorMotion*>(motion2->deepCopy()));
    EXPECT_EQ(copy->getPointCount(), 3);
    EXPECT_EQ(copy->getActorName(), KString("Bob"));
    EXPECT_EQ(copy->getRestTicks(), 0);
    EXPECT_FALSE(copy->hasTape());
}

// --- Actor files -----------------------------------------------------------------

TEST_F(ActorSceneTest, LoadingTheTapesActorsSkipsMissingAndDamagedFiles)
{
    TemporaryFolder folder;
    ASSERT_FALSE(folder.path.empty());
    ASSERT_TRUE(saveActor(*makeActor(), folder, "Bob"));
    std::ofstream(folder.file("Bad.ACT")) << "not an actor at all";

    TapePtr story(new Tape());
    story->addElement(*makeEnter("Bob", "Walk", 20, 20));
    story->addElement(*makeMotion("Bob", { { 1, 1 }, { 2, 2 } }));
    story->addElement(*makeEnter("Missing", "Walk", 1, 1));
    story->addElement(*makeMotion("Missing", { { 1, 1 } }));
    story->addElement(*makeEnter("Bad", "Walk", 1, 1));
    story->addElement(*makeEnter("", "Walk", 1, 1));

    KDirectoryPtr directory = folder.directory();
    EXPECT_EQ(loadTapeActors(*story, *directory), 1);
    ASSERT_TRUE(story->hasActor("Bob"));
    EXPECT_FALSE(story->hasActor("Missing"));
    EXPECT_FALSE(story->hasActor("Bad"));
    EXPECT_EQ(host.alerts.size(), 2u) << "one report for each file that failed";

    auto* loaded = dynamic_cast<Actor*>(story->getActor("Bob"));
    ASSERT_NE(loaded, nullptr);
    EXPECT_TRUE(loaded->hasSequence("Run"));

    // A second load finds nothing new to load.
    EXPECT_EQ(loadTapeActors(*story, *directory), 0);

    SceneTapePagePtr scene(new SceneTapePage(KGraphicSize(kPageWidth, kPageHeight)));
    story->setSpriteSystem(*scene);
    story->goToPosition(1);
    EXPECT_TRUE(scene->isActorOnScene(*story, "Bob"));
    story->clearSpriteSystem();
}

TEST_F(ActorSceneTest, MediaOperationsWorkOnTheActorFile)
{
    TemporaryFolder from;
    TemporaryFolder to;
    ASSERT_TRUE(saveActor(bob(), from, "Bob"));
    KDirectoryPtr fromDirectory = from.directory();
    KDirectoryPtr toDirectory = to.directory();

    ActorActionPtr enter = makeEnter("Bob", "Walk", 1, 1);
    add(*enter);
    ActorActionPtr leave = makeAction("Gone", ActorAction::ExitFromScene);
    add(*leave);
    ActorMotionPtr motion = makeMotion("Gone", { { 1, 1 } });
    add(*motion);

    EXPECT_FALSE(enter->findMissingMedia(*fromDirectory, nullptr));
    EXPECT_FALSE(leave->findMissingMedia(*fromDirectory, nullptr)) << "only an entry looks for its file";
    EXPECT_TRUE(host.searched.empty());
    host.giveUp = true;
    EXPECT_TRUE(motion->findMissingMedia(*fromDirectory, nullptr));
    EXPECT_EQ(host.searched, (std::vector<std::string> { "Gone.ACT" }));

    // A file the user found elsewhere is taken in under the actor's name.
    host.giveUp = false;
    ASSERT_TRUE(saveActor(bob(), to, "Elsewhere"));
    host.foundAt = KPath(KString(to.file("Elsewhere.ACT").c_str()), KPath::kHostPlatform);
    EXPECT_FALSE(motion->findMissingMedia(*fromDirectory, nullptr));
    EXPECT_TRUE(std::filesystem::exists(from.file("Gone.ACT")));

    enter->collectMedia(*fromDirectory, *toDirectory);
    EXPECT_TRUE(std::filesystem::exists(to.file("Bob.ACT")));

    KStringBagPtr names(new KStringBag());
    enter->addMediaName(*names);
    enter->addMediaName(*names);
    EXPECT_EQ(names->getSize(), 1);
    EXPECT_TRUE(names->has(KString("Bob.ACT")));
    EXPECT_TRUE(enter->usesMediaNamed("Bob.ACT"));
    EXPECT_FALSE(enter->usesMediaNamed("Gone.ACT"));

    KFileReference oldFile(KPath(KString(from.file("Gone.ACT").c_str()), KPath::kHostPlatform));
    KFileReference newFile(KPath(KString(from.file("Went.ACT").c_str()), KPath::kHostPlatform));
    EXPECT_TRUE(motion->replaceMedia(oldFile, newFile));
    EXPECT_EQ(motion->getActorName(), KString("Went"));
    EXPECT_FALSE(enter->replaceMedia(oldFile, newFile));

    // The tape's actor follows a renamed file, for the elements after it.
    ActorActionPtr later = makeAction("Bob", ActorAction::ExitFromScene);
    add(*later);
    KFileReference bobFile(KPath(KString(from.file("Bob.ACT").c_str()), KPath::kHostPlatform));
    KFileReference bertFile(KPath(KString(from.file("Bert.ACT").c_str()), KPath::kHostPlatform));
    EXPECT_TRUE(enter->replaceMedia(bobFile, bertFile));
    EXPECT_TRUE(tape->hasActor("Bert"));
    EXPECT_TRUE(later->replaceMedia(bobFile, bertFile));
    EXPECT_EQ(later->getActorName(), KString("Bert"));
}

} // namespace

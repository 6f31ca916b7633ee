#include "app/actors/Actor.h"
#include "app/AppClasses.h"
#include "app/actors/ActorSequence.h"
#include "app/actors/ActorSizeLimit.h"
#include "graphics/KAlphaImage.h"
#include "graphics/KColor.h"
#include "graphics/KPixelBuffer.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kernel/KStringBag.h"
#include "kmultimedia/EditSprite.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tests/support/TestSupport.h"
#include "windowing/KDialog.h"
#include "windowing/KTimerManager.h"
#include "windowing/KWindowManager.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kRed = 0xFF0000;
constexpr uint32_t kBlack = 0x000000;
constexpr uint32_t kWhite = 0xFFFFFF;

class RecordingHost : public TapeHost {
public:
    void alert(const KString& title, const KString& text) override
    {
        alerts.push_back(std::string(title.c_str()) + ": " + text.c_str());
    }
    void beginBusyCursor() override { ++busy; }
    void endBusyCursor() override { --busy; }

    std::vector<std::string> alerts;
    int32_t busy = 0;
};

// An element that names one media file, drawn nowhere.
class MediaProbe : public TapeObject {
public:
    explicit MediaProbe(const char* file)
        : file(file)
    {
    }
    bool usesMediaNamed(const KString& name) override
    {
        ++asked;
        return name == file;
    }
    bool replaceMedia(const KFileReference&, const KFileReference&) override { return changes; }
    void addMediaName(KStringBag& names) override { names.add(file); }

    KString file;
    bool changes = false;
    int32_t asked = 0;
};

// Writes the main section only, and a section no reader knows.
class MainSectionOnlyActor : public Actor {
public:
    void writeToFile(KFile& file, int32_t) override
    {
        KClassWriter writer;
        writer.begin(file, Actor::classRecord);
        writer.newSection(7);
        file.writeLong(12345);
        writer.newSection(1);
        getSequences().writeToFile(file, 1);
        KGraphicRectangle box = getActorBounds();
        box.writeToFile(file, 1);
        writer.end();
    }
};

KColor rgb(uint32_t value)
{
    return KColor(uint16_t(((value >> 16) & 0xFF) << 8), uint16_t(((value >> 8) & 0xFF) << 8),
                  uint16_t((value & 0xFF) << 8));
}

StrokePtr makeLine(int16_t x, int16_t y, int16_t length, uint32_t colour)
{
    StrokePtr stroke(new Stroke());
    stroke->setBrushSize(6);
    stroke->setColour(rgb(colour));
    for (int16_t i = 0; i <= length; i += 2)
        stroke->addPoint(int16_t(x + i), y);
    return stroke;
}

uint32_t pixelOf(KImage& image, int32_t x, int32_t y)
{
    KPixelBuffer buffer;
    if (!image.getDevice().beginPixelAccess(buffer) || !buffer.contains(x, y))
        return 0xDEADBEEF;
    return *buffer.at(x, y) & KPixelBuffer::kColourBits;
}

std::vector<std::string> namesOf(const Actor& actor)
{
    std::vector<std::string> names;
    KStringBagPtr bag = actor.getSequenceNames();
    for (int32_t i = 0; i < bag->getSize(); ++i)
        names.push_back(bag->getStringAt(i)->c_str());
    return names;
}

class TempFolder {
public:
    TempFolder()
    {
        char pattern[] = "/tmp/actor-test-XXXXXX";
        path = mkdtemp(pattern);
    }
    ~TempFolder() { std::filesystem::remove_all(path); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string file(const char* name) const { return path + "/" + name; }
    KFileReferencePtr reference(const char* name) const
    {
        return KFileReferencePtr(new KFileReference(KPath(KString(file(name).c_str()), KPath::LinuxPlatform)));
    }

    std::string path;
};

std::vector<char> bytesOf(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    return std::vector<char>(std::istreambuf_iterator<char>(in), {});
}

void writeBytes(const std::string& file, const std::vector<char>& bytes)
{
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), std::streamsize(bytes.size()));
}

class ActorTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        registerDocumentClasses();
        KNativeLayer::install(&layer);
        KTimerManager::destroy();
        TapeHost::install(&host);
    }
    void TearDown() override
    {
        KTimerManager::destroy();
        TapeHost::install(nullptr);
        KNativeLayer::install(nullptr);
    }

    // A movement of `frames` frames, each with a short line a little
    // further right than the one before.
    ActorSequencePtr addMovement(Actor& actor, const char* name, int32_t frames, int32_t type, int32_t speed = 10)
    {
        ActorSequencePtr sequence(new ActorSequence());
        sequence->setName(KString(name));
        sequence->setPlayType(type);
        sequence->setSpeed(speed);
        for (int32_t f = 0; f < frames; ++f) {
            TapePtr frame(new Tape());
            actor.adoptFrameTape(*frame);
            frame->addElement(*makeLine(int16_t(50 + 4 * f), 40, 10, kRed));
            sequence->addFrame(*frame);
        }
        actor.addSequence(*sequence);
        return sequence;
    }

    // Frame indices the actor shows over `ticks` ticks of its own timer.
    std::vector<int32_t> run(Actor& actor, int32_t ticks)
    {
        std::vector<int32_t> shown;
        for (int32_t i = 0; i < ticks; ++i) {
            actor.timerFired(actor.getFrameTimer());
            shown.push_back(actor.getFrame());
        }
        return shown;
    }

    KFakeNativeLayer layer;
    RecordingHost host;
};

TEST_F(ActorTest, NewActorHasOneMovementWithOneFrameTape)
{
    ActorPtr actor(new Actor());
    ASSERT_EQ(actor->getSequenceCount(), 1);
    ActorSequence* first = actor->getSequenceAt(0);
    EXPECT_EQ(std::string(first->getName().c_str()), std::string(tapeTranslate("Movement").c_str()) + "1");
    EXPECT_EQ(first->getSpeed(), 10);
    EXPECT_EQ(first->getPlayType(), 5);
    ASSERT_EQ(first->getFrameCount(), 1);
    Tape* frame = actor->getFrameTape(0, 0);
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->getCount(), 0);
    EXPECT_EQ(frame->getOwnerActor(), actor.get());
    EXPECT_EQ(frame->getFrameKind(), Tape::ActorFrame);
    EXPECT_EQ(frame->getPageSize(), KGraphicSize(640, 480));
    EXPECT_EQ(actor->getFrameTimer().getInterval(), 10);
    EXPECT_TRUE(actor->getFrameTimer().isRepeating());
    EXPECT_FALSE(actor->getFrameTimer().isRunning());
    EXPECT_EQ(actor->getPlayType(), 1);

    ActorPtr small(new Actor(KGraphicSize(320, 200)));
    EXPECT_EQ(small->getFrameTape(0, 0)->getPageSize(), KGraphicSize(320, 200));
    EXPECT_EQ(small->getFrameTape(0, 1), nullptr);
    EXPECT_EQ(small->getFrameTape(1, 0), nullptr);
}

TEST_F(ActorTest, LookupsByNameAndFrameRangesAcrossMovements)
{
    ActorPtr actor(new Actor());
    addMovement(*actor, "Walk", 3, 5);
    addMovement(*actor, "Jump", 2, 5);
    addMovement(*actor, "Empty", 0, 5);
    std::string firstName = actor->getSequenceAt(0)->getName().c_str();
    EXPECT_EQ(namesOf(*actor), (std::vector<std::string> { firstName, "Walk", "Jump", "Empty" }));
    EXPECT_TRUE(actor->hasSequence(KString("Jump")));
    EXPECT_FALSE(actor->hasSequence(KString("jump")));
    EXPECT_EQ(actor->getFrameTape(KString("Walk"), 2), actor->getFrameTape(1, 2));

    int32_t first = -1;
    int32_t last = -1;
    EXPECT_TRUE(actor->getFrameRange(KString("Walk"), first, last));
    EXPECT_EQ(first, 1);
    EXPECT_EQ(last, 3);
    EXPECT_TRUE(actor->getFrameRange(KString("Jump"), first, last));
    EXPECT_EQ(first, 4);
    EXPECT_EQ(last, 5);
    // An empty movement still has a range of one place.
    EXPECT_TRUE(actor->getFrameRange(KString("Empty"), first, last));
    EXPECT_EQ(first, 6);
    EXPECT_EQ(last, 6);
    EXPECT_FALSE(actor->getFrameRange(KString("Fly"), first, last));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(last, 0);

    ErrorRecorder errors;
    actor->getSequence(KString("Fly"));
    EXPECT_EQ(errors.lastCode(), KError::PointerNull);
    EXPECT_EQ(actor->getFrameTape(KString("Fly"), 0), nullptr);
    EXPECT_EQ(errors.errors().size(), 2u);
    EXPECT_EQ(errors.lastCode(), KError::PointerNull);
}

TEST_F(ActorTest, PlayOnceAndOnceReverseEndStaticOnTheTickThatReachesTheEnd)
{
    ActorPtr actor(new Actor());
    addMovement(*actor, "Once", 4, Actor::PlayOnce);
    addMovement(*actor, "Back", 4, Actor::OnceReverse);
    addMovement(*actor, "Single", 1, Actor::OnceReverse);

    actor->setMovement(KString("Once"));
    EXPECT_EQ(actor->getFrame(), 0);
    EXPECT_EQ(run(*actor, 3), (std::vector<int32_t> { 1, 2, 3 }));
    EXPECT_EQ(actor->getPlayType(), Actor::StaticImage);
    EXPECT_EQ(run(*actor, 2), (std::vector<int32_t> { 3, 3 }));

    actor->setMovement(KString("Back"));
    EXPECT_EQ(actor->getFrame(), 3);
    EXPECT_FALSE(actor->isForward());
    EXPECT_EQ(run(*actor, 3), (std::vector<int32_t> { 2, 1, 0 }));
    EXPECT_EQ(actor->getPlayType(), Actor::OnceReverse);
    EXPECT_EQ(run(*actor, 2), (std::vector<int32_t> { 0, 0 }));
    EXPECT_EQ(actor->getPlayType(), Actor::StaticImage);

    // One frame backwards starts at 0 and is static after one tick.
    actor->setMovement(KString("Single"));
    EXPECT_EQ(actor->getFrame(), 0);
    EXPECT_EQ(run(*actor, 1), (std::vector<int32_t> { 0 }));
    EXPECT_EQ(actor->getPlayType(), Actor::StaticImage);
}

TEST_F(ActorTest, ForwardAndReverseTypesTurnAtTheEnds)
{
    ActorPtr actor(new Actor());
    addMovement(*actor, "There", 4, Actor::OnceForwardAndReverse);
    addMovement(*actor, "Bounce", 3, Actor::RepeatedForwardAndReverse);

    // Type 4 does not rest on the last frame.
    actor->setMovement(KString("There"));
    EXPECT_EQ(run(*actor, 6), (std::vector<int32_t> { 1, 2, 3, 2, 1, 0 }));
    EXPECT_EQ(actor->getPlayType(), Actor::StaticImage);
    EXPECT_EQ(run(*actor, 1), (std::vector<int32_t> { 0 }));

    actor->setMovement(KString("Bounce"));
    EXPECT_EQ(run(*actor, 8), (std::vector<int32_t> { 1, 2, 1, 0, 1, 2, 1, 0 }));
    EXPECT_EQ(actor->getPlayType(), Actor::RepeatedForwardAndReverse);
}

TEST_F(ActorTest, RepeatedTypesWrapAndStaticNeverMoves)
{
    ActorPtr actor(new Actor());
    addMovement(*actor, "Loop", 3, Actor::PlayRepeated);
    addMovement(*actor, "Rewind", 3, Actor::RepeatedReverse);
    addMovement(*actor, "Still", 3, Actor::StaticImage);
    addMovement(*actor, "One", 1, Actor::PlayRepeated);
    addMovement(*actor, "Odd", 3, 9);

    actor->setMovement(KString("Loop"));
    EXPECT_EQ(run(*actor, 5), (std::vector<int32_t> { 1, 2, 0, 1, 2 }));
    actor->setMovement(KString("Rewind"));
    EXPECT_EQ(actor->getFrame(), 0);
    EXPECT_EQ(run(*actor, 4), (std::vector<int32_t> { 2, 1, 0, 2 }));
    actor->setMovement(KString("Still"));
    EXPECT_EQ(run(*actor, 3), (std::vector<int32_t> { 0, 0, 0 }));
    actor->setMovement(KString("One"));
    EXPECT_EQ(actor->getFirstFrame(), 0);
    EXPECT_EQ(actor->getLastFrame(), 0);
    EXPECT_EQ(run(*actor, 3), (std::vector<int32_t> { 0, 0, 0 }));
    actor->setMovement(KString("Odd"));
    EXPECT_EQ(run(*actor, 2), (std::vector<int32_t> { 0, 0 }));

    // A notification from any other timer moves nothing.
    actor->setMovement(KString("Loop"));
    KTimerPtr other(new KTimer());
    actor->timerFired(*other);
    EXPECT_EQ(actor->getFrame(), 0);
}

TEST_F(ActorTest, TheFrameTimerDrivesTheMovementAtSpeedSquared)
{
    ActorPtr actor(new Actor());
    addMovement(*actor, "Fast", 3, Actor::PlayRepeated, 3);
    addMovement(*actor, "Zero", 2, Actor::PlayRepeated, 0);
    addMovement(*actor, "Slow", 2, Actor::PlayRepeated, 31);

    actor->setMovement(KString("Fast"));
    EXPECT_EQ(actor->getFrameTimer().getInterval(), 9);
    EXPECT_TRUE(actor->getFrameTimer().isRunning());
    EXPECT_EQ(actor->getFrameTimer().getTarget(), actor.get());
    EXPECT_TRUE(actor->isVisible());
    layer.advance(10);
    KTimerManager::get().idle();
    EXPECT_EQ(actor->getFrame(), 1);
    layer.advance(10);
    KTimerManager::get().idle();
    EXPECT_EQ(actor->getFrame(), 2);

    actor->setMovement(KString("Zero"));
    EXPECT_EQ(actor->getFrameTimer().getInterval(), 0);
    actor->setMovement(KString("Slow"));
    EXPECT_EQ(actor->getFrameTimer().getInterval(), 961);
    // A speed read from a damaged file squares beyond 32 bits.
    actor->playRendered(100000, Actor::PlayRepeated);
    EXPECT_EQ(actor->getFrameTimer().getInterval(), INT32_MAX);

    actor->stop();
    EXPECT_FALSE(actor->getFrameTimer().isRunning());
    EXPECT_EQ(actor->getFrameTimer().getInterval(), -1);
    EXPECT_EQ(actor->getFrameTimer().getTarget(), nullptr);
}

TEST_F(ActorTest, SetMovementRendersOnlyANewMovement)
{
    ActorPtr actor(new Actor());
    addMovement(*actor, "Walk", 3, Actor::PlayRepeated);
    addMovement(*actor, "Jump", 2, Actor::PlayRepeated);

    actor->setMovement(KString("Walk"));
    ASSERT_EQ(actor->getFrames().getSize(), 3);
    EXPECT_EQ(std::string(actor->getCurrentMovement().c_str()), "Walk");
    EXPECT_EQ(host.busy, 0) << "the busy cursor ends with the rendering";
    KAlphaImage* firstImage = actor->getFrameImage(0);
    run(*actor, 2);
    EXPECT_EQ(actor->getFrame(), 2);

    // The same name restarts from the first frame with the same images.
    actor->setMovement(KString("Walk"));
    EXPECT_EQ(actor->getFrame(), 0);
    EXPECT_EQ(actor->getFrameImage(0), firstImage);

    actor->setMovement(KString("Jump"));
    EXPECT_EQ(actor->getFrames().getSize(), 2);
    EXPECT_EQ(actor->getLastFrame(), 1);

    // An unknown name keeps what is rendered and stops the timer on frame 0.
    actor->setPosition(30.0f, 20.0f);
    run(*actor, 1);
    actor->setMovement(KString("Fly"));
    EXPECT_FALSE(actor->getFrameTimer().isRunning());
    EXPECT_EQ(actor->getFrame(), 0);
    EXPECT_EQ(actor->getFrames().getSize(), 2);
    EXPECT_EQ(actor->getPosition().x, 30.0f);
    EXPECT_EQ(std::string(actor->getCurrentMovement().c_str()), "Jump");

    actor->reset();
    EXPECT_FALSE(actor->isVisible());
    EXPECT_EQ(actor->getFrames().getSize(), 0);
    EXPECT_EQ(actor->getCurrentMovement().getLength(), 0);
    EXPECT_EQ(actor->getFrame(), -1);
    // After a reset the same name renders again.
    actor->setMovement(KString("Jump"));
    EXPECT_EQ(actor->getFrames().getSize(), 2);
}

TEST_F(ActorTest, PlayRenderedRunsOverEveryRenderedFrame)
{
    ActorPtr actor(new Actor());
    addMovement(*actor, "Walk", 2, Actor::PlayRepeated);
    addMovement(*actor, "Jump", 2, Actor::PlayRepeated);
    actor->renderAll();
    // The first movement's empty frame, then the four others.
    ASSERT_EQ(actor->getFrames().getSize(), 5);
    EXPECT_EQ(actor->getFirstFrame(), 0);
    EXPECT_EQ(actor->getLastFrame(), 0);
    EXPECT_FALSE(actor->getFrameTimer().isRunning());

    actor->playRendered(2, Actor::OnceReverse);
    EXPECT_EQ(actor->getFrame(), 4);
    EXPECT_EQ(actor->getFrameTimer().getInterval(), 4);
    EXPECT_EQ(run(*actor, 5), (std::vector<int32_t> { 3, 2, 1, 0, 0 }));
    actor->playRendered(1, Actor::PlayRepeated);
    EXPECT_EQ(run(*actor, 5), (std::vector<int32_t> { 1, 2, 3, 4, 0 }));
}

TEST_F(ActorTest, ModalDialogHoldsTheMovement)
{
    KWindowManagerPtr manager(new KWindowManager());
    ActorPtr actor(new Actor());
    addMovement(*actor, "Loop", 3, Actor::PlayRepeated);
    actor->setMovement(KString("Loop"));
    KDialogPtr dialog(new KDialog());
    dialog->open(KWindow::Normal);
    manager->beginModal(*dialog);
    ASSERT_EQ(manager->getModalCount(), 1);
    EXPECT_EQ(run(*actor, 2), (std::vector<int32_t> { 0, 0 }));
    // With no modal count the movement goes on.
    manager->closeAll();
    manager = KWindowManagerPtr(new KWindowManager());
    ASSERT_EQ(KWindowManager::current(), manager.get());
    EXPECT_EQ(run(*actor, 1), (std::vector<int32_t> { 1 }));
}

TEST_F(ActorTest, RenderedFrameShiftsElementsToTheCornerAndMasksThem)
{
    ActorPtr actor(new Actor());
    ActorSequencePtr movement = addMovement(*actor, "Walk", 1, Actor::PlayRepeated);
    Tape* frame = movement->getFrame(0);
    // A second line far away widens the bounds; the space between is empty.
    frame->addElement(*makeLine(200, 150, 10, kRed));
    actor->recomputeBounds();
    KGraphicRectangle box = actor->getActorBounds();
    ASSERT_FALSE(box.isEmpty());
    EXPECT_LE(box.x, 47);
    EXPECT_GE(box.getRight(), 213);

    actor->setMovement(KString("Walk"));
    KAlphaImage* image = actor->getFrameImage(0);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->getSize(), box.getSize());
    ASSERT_TRUE(image->hasMask());
    KImage& mask = *image->getMask();
    EXPECT_EQ(pixelOf(*image, 55 - box.x, 40 - box.y), kRed);
    EXPECT_EQ(pixelOf(mask, 55 - box.x, 40 - box.y), kBlack);
    EXPECT_EQ(pixelOf(*image, 205 - box.x, 150 - box.y), kRed);
    EXPECT_EQ(pixelOf(mask, 130 - box.x, 95 - box.y), kWhite);
    // Drawn over a scene, the frame shows its strokes and leaves the scene
    // alone in the space between them.
    KImagePtr scene(new KImage(box.getSize()));
    KGraphicRectangle whole(0, 0, box.width, box.height);
    scene->getDevice().fillRectangle(whole, KColor(0, 0xFFFF, 0));
    image->drawIn(scene->getDevice(), whole);
    EXPECT_EQ(pixelOf(*scene, 55 - box.x, 40 - box.y), kRed);
    EXPECT_EQ(pixelOf(*scene, 130 - box.x, 95 - box.y), 0x00FF00u);

    // Every frame shares the one rectangle, scaled about the origin.
    actor->setPosition(100.0f, 50.0f);
    actor->setOrigin(10.0f, 4.0f);
    actor->setScale(2.0f, 0.5f);
    EXPECT_EQ(actor->getBounds(),
              KGraphicRectangle(80, 48, int16_t(box.width * 2), int16_t(int32_t(float(box.height) * 0.5f))));

    // renderMovement draws without masks and shows frame 0.
    actor->renderMovement(KString("Walk"));
    ASSERT_EQ(actor->getFrames().getSize(), 1);
    EXPECT_FALSE(actor->getFrameImage(0)->hasMask());
    EXPECT_EQ(pixelOf(*actor->getFrameImage(0), 55 - box.x, 40 - box.y), kRed);
    EXPECT_EQ(actor->getFrame(), 0);

    // An actor with nothing painted has empty bounds and empty frames.
    ActorPtr blank(new Actor());
    blank->renderAll();
    EXPECT_TRUE(blank->getActorBounds().isEmpty());
    ASSERT_EQ(blank->getFrames().getSize(), 1);
    EXPECT_EQ(blank->getFrameImage(0)->getSize(), KGraphicSize(0, 0));
}

TEST_F(ActorTest, CopiesTakeTheirOwnFrameTapes)
{
    ActorPtr actor(new Actor());
    ActorSequencePtr walk = addMovement(*actor, "Walk", 2, Actor::PlayOnce, 4);
    actor->setCookie(17);
    KPtr<ActorSequence> sequenceCopy = kAdopt(static_cast<ActorSequence*>(walk->deepCopy()));
    ASSERT_EQ(sequenceCopy->getFrameCount(), 2);
    EXPECT_NE(sequenceCopy->getFrame(0), walk->getFrame(0));
    EXPECT_EQ(sequenceCopy->getFrame(1)->getCount(), 1);
    EXPECT_EQ(sequenceCopy->getSpeed(), 4);
    EXPECT_EQ(sequenceCopy->getPlayType(), Actor::PlayOnce);

    actor->setMovement(KString("Walk"));
    ActorPtr copy = kAdopt(static_cast<Actor*>(actor->deepCopy()));
    EXPECT_EQ(namesOf(*copy), namesOf(*actor));
    EXPECT_EQ(copy->getCookie(), 17);
    Tape* copiedFrame = copy->getFrameTape(KString("Walk"), 1);
    ASSERT_NE(copiedFrame, nullptr);
    EXPECT_NE(copiedFrame, actor->getFrameTape(KString("Walk"), 1));
    EXPECT_EQ(copiedFrame->getOwnerActor(), copy.get());
    EXPECT_FALSE(copy->getFrameTimer().isRunning());
    EXPECT_EQ(copy->getFrames().getSize(), 0);
}

TEST_F(ActorTest, MediaOperationsWalkEveryFrameOfEveryMovement)
{
    ActorPtr actor(new Actor());
    ActorSequencePtr walk = addMovement(*actor, "Walk", 2, Actor::PlayRepeated);
    ActorSequencePtr jump = addMovement(*actor, "Jump", 2, Actor::PlayRepeated);
    KPtr<MediaProbe> early(new MediaProbe("early.wav"));
    KPtr<MediaProbe> late(new MediaProbe("late.wav"));
    walk->getFrame(1)->addElement(*early);
    jump->getFrame(1)->addElement(*late);

    EXPECT_TRUE(actor->usesMediaNamed(KString("late.wav")));
    EXPECT_TRUE(actor->usesMediaNamed(KString("early.wav")));
    EXPECT_EQ(late->asked, 1) << "the search stops at the first that uses the name";
    EXPECT_FALSE(actor->usesMediaNamed(KString("other.wav")));

    KStringBagPtr names(new KStringBag());
    actor->addMediaName(*names);
    EXPECT_EQ(names->getSize(), 2);

    KFileReference oldFile;
    KFileReference newFile;
    EXPECT_FALSE(actor->replaceMedia(oldFile, newFile));
    late->changes = true;
    EXPECT_TRUE(actor->replaceMedia(oldFile, newFile));
}

TEST_F(ActorTest, ActorFileRoundTrip)
{
    TempFolder folder;
    ActorPtr actor(new Actor(KGraphicSize(800, 600)));
    addMovement(*actor, "Walk", 3, Actor::OnceReverse, 7);
    addMovement(*actor, "Jump", 1, Actor::RepeatedForwardAndReverse, 2);
    KFileReferencePtr file = folder.reference("hero.act");
    ASSERT_TRUE(actor->save(*file));
    EXPECT_TRUE(actor->hasFile());
    EXPECT_EQ(std::string(actor->getFileName().c_str()), "hero.act");
    std::vector<char> bytes = bytesOf(folder.file("hero.act"));
    ASSERT_GE(bytes.size(), 8u);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), "STAC");
    EXPECT_EQ(bytes[7], 2);

    ActorPtr read(new Actor());
    bool checkMedia = false;
    ASSERT_TRUE(read->open(*file, checkMedia));
    EXPECT_TRUE(host.alerts.empty());
    EXPECT_EQ(host.busy, 0);
    EXPECT_EQ(namesOf(*read), namesOf(*actor));
    EXPECT_TRUE(read->hasFile());
    EXPECT_EQ(read->getPageSize(), KGraphicSize(800, 600));
    EXPECT_EQ(read->getActorBounds(), actor->getActorBounds());
    for (int32_t s = 0; s < actor->getSequenceCount(); ++s) {
        ActorSequence* mine = actor->getSequenceAt(s);
        ActorSequence* theirs = read->getSequenceAt(s);
        ASSERT_NE(theirs, nullptr);
        EXPECT_EQ(theirs->getSpeed(), mine->getSpeed());
        EXPECT_EQ(theirs->getPlayType(), mine->getPlayType());
        ASSERT_EQ(theirs->getFrameCount(), mine->getFrameCount());
        for (int32_t f = 0; f < mine->getFrameCount(); ++f) {
            Tape* frame = theirs->getFrame(f);
            EXPECT_EQ(frame->getCount(), mine->getFrame(f)->getCount());
            EXPECT_EQ(frame->getOwnerActor(), read.get());
            EXPECT_EQ(frame->getFrameKind(), Tape::ActorFrame);
            EXPECT_EQ(frame->getPageSize(), KGraphicSize(800, 600));
        }
    }
    // The frames read back draw the same picture.
    read->setMovement(KString("Walk"));
    actor->setMovement(KString("Walk"));
    KGraphicRectangle box = actor->getActorBounds();
    EXPECT_EQ(pixelOf(*read->getFrameImage(2), 59 - box.x, 40 - box.y), kRed);
    EXPECT_EQ(pixelOf(*read->getFrameImage(2), 59 - box.x, 40 - box.y),
              pixelOf(*actor->getFrameImage(2), 59 - box.x, 40 - box.y));
}

TEST_F(ActorTest, FileWithoutPageSectionIsReadForTheDefaultPage)
{
    TempFolder folder;
    KPtr<MainSectionOnlyActor> writer(new MainSectionOnlyActor());
    writer->setPageSize(KGraphicSize(1024, 768));
    addMovement(*writer, "Walk", 2, Actor::PlayRepeated);
    writer->recomputeBounds();
    KFileReferencePtr file = folder.reference("old.act");
    ASSERT_TRUE(writer->save(*file));

    ActorPtr read(new Actor(KGraphicSize(1024, 768)));
    bool checkMedia = false;
    ASSERT_TRUE(read->open(*file, checkMedia));
    EXPECT_EQ(read->getPageSize(), KGraphicSize(640, 480));
    EXPECT_EQ(read->getFrameTape(KString("Walk"), 1)->getPageSize(), KGraphicSize(640, 480));
    EXPECT_EQ(namesOf(*read), namesOf(*writer));
}

TEST_F(ActorTest, DamagedOrForeignFilesLeaveTheActorAsItWas)
{
    TempFolder folder;
    ActorPtr source(new Actor());
    addMovement(*source, "Walk", 4, Actor::PlayRepeated);
    KFileReferencePtr good = folder.reference("good.act");
    ASSERT_TRUE(source->save(*good));
    std::vector<char> bytes = bytesOf(folder.file("good.act"));

    ActorPtr target(new Actor());
    addMovement(*target, "Stay", 1, Actor::StaticImage);
    std::vector<std::string> before = namesOf(*target);
    const std::string message = std::string(tapeTranslate("Error while reading file").c_str()) + ": "
                                + tapeTranslate("This file is not an Actor Document File!").c_str();

    std::vector<std::vector<char>> damaged {
        std::vector<char>(bytes.begin(), bytes.begin() + std::ptrdiff_t(bytes.size() / 2)),
        std::vector<char>(bytes.begin(), bytes.begin() + 12),
        { 'N', 'O', 'T', ' ', 'A', 'N', ' ', 'A', 'C', 'T', 'O', 'R' },
    };
    // A document of the right kind whose only entry is no actor.
    std::vector<char> wrongEntry = bytes;
    std::string entryName = "Actor";
    auto at = std::search(wrongEntry.begin(), wrongEntry.end(), entryName.begin(), entryName.end());
    ASSERT_NE(at, wrongEntry.end());
    *at = 'X';
    damaged.push_back(wrongEntry);

    for (const std::vector<char>& content : damaged) {
        host.alerts.clear();
        writeBytes(folder.file("bad.act"), content);
        bool checkMedia = true;
        KFileReferencePtr bad = folder.reference("bad.act");
        EXPECT_FALSE(target->open(*bad, checkMedia));
        EXPECT_EQ(host.alerts, std::vector<std::string> { message });
        EXPECT_EQ(host.busy, 0);
        EXPECT_EQ(namesOf(*target), before);
        EXPECT_FALSE(target->hasFile());
    }

    host.alerts.clear();
    bool checkMedia = false;
    KFileReferencePtr missing = folder.reference("missing.act");
    EXPECT_FALSE(target->open(*missing, checkMedia));
    EXPECT_TRUE(host.alerts.empty()) << "a file that is not there is no damaged file";
}

TEST(ActorSizeLimit, MaximumFitsTheAspectRatio)
{
    KGraphicSize maximum(kActorMaximumWidth, kActorMaximumHeight);
    EXPECT_EQ(fitActorMaximum(maximum, 0.0), maximum);
    EXPECT_EQ(fitActorMaximum(maximum, 4.0 / 3.0), maximum);
    // Wide: the height gives way.
    EXPECT_EQ(fitActorMaximum(maximum, 2.0), KGraphicSize(320, 160));
    // Tall: the width gives way.
    EXPECT_EQ(fitActorMaximum(maximum, 0.5), KGraphicSize(120, 240));
    EXPECT_EQ(fitActorMaximum(maximum, 1.0), KGraphicSize(240, 240));
    EXPECT_EQ(fitActorMaximum(maximum, 3.0), KGraphicSize(320, 106));
}

TEST(ActorSizeLimit, DraggedRectangleKeepsTheSideOppositeTheHandle)
{
    KGraphicSize maximum(320, 240);
    KGraphicRectangle large(10, 20, 400, 300);
    EXPECT_EQ(limitDraggedRectangle(large, EditSprite::BottomRight, maximum), KGraphicRectangle(10, 20, 320, 240));
    EXPECT_EQ(limitDraggedRectangle(large, EditSprite::TopLeft, maximum), KGraphicRectangle(90, 80, 320, 240));
    EXPECT_EQ(limitDraggedRectangle(large, EditSprite::TopRight, maximum), KGraphicRectangle(10, 80, 320, 240));
    EXPECT_EQ(limitDraggedRectangle(large, EditSprite::BottomLeft, maximum), KGraphicRectangle(90, 20, 320, 240));
    EXPECT_EQ(limitDraggedRectangle(large, EditSprite::Left, maximum), KGraphicRectangle(90, 20, 320, 240));
    EXPECT_EQ(limitDraggedRectangle(large, EditSprite::Top, maximum), KGraphicRectangle(10, 80, 320, 240));
    KGraphicRectangle small(5, 5, 100, 50);
    EXPECT_EQ(limitDraggedRectangle(small, EditSprite::TopLeft, maximum), small);
}

TEST(ActorTexts, RefusalAndPlayTypeNames)
{
    KString refusal = actorResolutionRefusal(1024, 768, 800, 600);
    EXPECT_STREQ(refusal.c_str(), "This actor's resolution (1024x768) exceeds the screen resolution (800x600); "
                                  "this actor cannot be opened for editing.");
    EXPECT_FALSE(actorFitsScreen(1024, 768, 800, 600));
    EXPECT_FALSE(actorFitsScreen(640, 601, 800, 600));
    EXPECT_TRUE(actorFitsScreen(800, 600, 800, 600));

    EXPECT_STREQ(Actor::getPlayTypeName(1).c_str(), "Static Image");
    EXPECT_STREQ(Actor::getPlayTypeName(4).c_str(), "Play Once Forward and Reverse");
    EXPECT_STREQ(Actor::getPlayTypeName(7).c_str(), "Play Repeated Forward and Reverse");
    EXPECT_EQ(Actor::getPlayTypeName(0).getLength(), 0);
    EXPECT_EQ(Actor::getPlayTypeName(8).getLength(), 0);
}

} // namespace

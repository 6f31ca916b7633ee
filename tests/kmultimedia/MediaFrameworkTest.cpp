#include "kernel/KFileTypeHandler.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KMovieSupport.h"
#include "tests/kmultimedia/MediaTestSupport.h"

namespace {

// A medium that is done after a set number of updates.
class FakeMedia : public KAbstractMedia {
public:
    explicit FakeMedia(int32_t updatesToEnd = 3)
        : updatesToEnd(updatesToEnd)
    {
    }
    void updatePlayback() override { ++updates; }
    bool isDonePlaying() override { return updates >= updatesToEnd; }
    void restart() override
    {
        ++restarts;
        updates = 0;
    }
    int32_t updatesToEnd;
    int32_t updates = 0;
    int32_t restarts = 0;
};

// Notes opening and closing in a shared log.
class LoggingSupport : public KMediaSupport {
public:
    LoggingSupport(std::string name, std::vector<std::string>& log)
        : name(std::move(name))
        , log(log)
    {
    }
    bool open() override
    {
        log.push_back("open " + name + " " + std::to_string(getKinds()));
        return KMediaSupport::open();
    }
    void close() override
    {
        log.push_back("close " + name);
        KMediaSupport::close();
    }
    std::string name;
    std::vector<std::string>& log;
};

// Answers the events it gets with a set result and notes them.
class Receiver : public KThing {
public:
    Receiver(KEventReturn answer, std::vector<Receiver*>& log)
        : answer(answer)
        , log(log)
    {
    }
    KEventReturn handleEvent(KEvent& event) override
    {
        log.push_back(this);
        auto& feedback = static_cast<KMediaFeedbackEvent&>(event);
        if (KVariable* word = feedback.getValue(KMediaFeedbackEvent::kWordStart))
            lastWordStart = word->getLong();
        return answer;
    }
    KEventReturn answer;
    std::vector<Receiver*>& log;
    int32_t lastWordStart = -1;
};

} // namespace

TEST_F(MediaTest, StatusMovesOnlyAlongItsTransitions)
{
    KPtr<FakeMedia> media(new FakeMedia());
    media->play();
    EXPECT_EQ(media->getStatus(), KAbstractMedia::NotLoaded);
    media->pause();
    media->stop();
    EXPECT_EQ(media->getStatus(), KAbstractMedia::NotLoaded);

    EXPECT_TRUE(media->load());
    EXPECT_EQ(media->getStatus(), KAbstractMedia::Loaded);
    media->resume();
    media->pause();
    EXPECT_EQ(media->getStatus(), KAbstractMedia::Loaded);
    media->play();
    EXPECT_TRUE(media->isPlaying());
    media->load();
    media->unload();
    EXPECT_TRUE(media->isPlaying());
    media->pause();
    EXPECT_TRUE(media->isPaused());
    EXPECT_FALSE(media->isPlaying());
    media->play();
    EXPECT_TRUE(media->isPaused());
    media->resume();
    EXPECT_TRUE(media->isPlaying());
    media->pause();
    media->stop();
    EXPECT_EQ(media->getStatus(), KAbstractMedia::Loaded);
    media->unload();
    EXPECT_EQ(media->getStatus(), KAbstractMedia::NotLoaded);

    // clear unloads from status 1 only.
    media->load();
    media->clear();
    EXPECT_EQ(media->getStatus(), KAbstractMedia::NotLoaded);
}

TEST_F(MediaTest, BaseValuesAndSettings)
{
    KPtr<FakeMedia> media(new FakeMedia());
    media->setVolume(0.25);
    media->setBalance(-1.0);
    media->setLooping(true);
    media->setStreamingMode(KMediaInMemory);
    media->load();

    // Assigning takes the settings but not the loaded state.
    KPtr<FakeMedia> copy(new FakeMedia());
    *copy = *media;
    EXPECT_EQ(copy->getStatus(), KAbstractMedia::NotLoaded);
    EXPECT_EQ(copy->getVolume(), 0.25);
    EXPECT_EQ(copy->getBalance(), -1.0);
    EXPECT_TRUE(copy->isLooping());
    EXPECT_EQ(copy->getStreamingMode(), KMediaInMemory);
    EXPECT_FALSE(manager->hasMedia(*copy));

    ErrorRecorder errors;
    media->setStreamingMode(KMediaStreamFromFile);
    EXPECT_EQ(errors.lastCode(), 4);
    EXPECT_EQ(media->getStreamingMode(), KMediaInMemory);
}

TEST_F(MediaTest, ManagerListsLoadedMediaAndIdlesOnlyWhileOnePlays)
{
    EXPECT_FALSE(manager->isIdling());
    manager->recheckIdle();
    EXPECT_FALSE(manager->isIdling());

    KPtr<FakeMedia> first(new FakeMedia());
    KPtr<FakeMedia> second(new FakeMedia());
    first->load();
    second->load();
    EXPECT_EQ(manager->mediaCount(), 2);
    EXPECT_FALSE(manager->isIdling());
    first->play();
    EXPECT_TRUE(manager->isIdling());
    first->pause();
    EXPECT_TRUE(manager->isIdling());
    first->stop();
    EXPECT_FALSE(manager->isIdling());

    second->unload();
    EXPECT_EQ(manager->mediaCount(), 1);
    EXPECT_EQ(manager->getMediaAt(0), first.get());

    // A medium that dies while playing leaves the list and the idle list.
    first->play();
    EXPECT_TRUE(manager->isIdling());
    first.clear();
    EXPECT_EQ(manager->mediaCount(), 0);
    EXPECT_FALSE(manager->isIdling());
}

TEST_F(MediaTest, IdlePassEndsOrLoopsFinishedMedia)
{
    KPtr<FakeMedia> once(new FakeMedia(2));
    KPtr<FakeMedia> looping(new FakeMedia(2));
    KPtr<FakeMedia> idleOne(new FakeMedia(2));
    looping->setLooping(true);
    for (auto* media : { once.get(), looping.get(), idleOne.get() })
        media->load();
    once->play();
    looping->play();

    manager->idle();
    EXPECT_EQ(once->updates, 1);
    EXPECT_TRUE(once->isPlaying());
    manager->idle();
    // Found done in this pass: the plain one stops, the looping one restarts.
    EXPECT_EQ(once->getStatus(), KAbstractMedia::Loaded);
    EXPECT_TRUE(looping->isPlaying());
    EXPECT_EQ(looping->restarts, 1);
    EXPECT_EQ(idleOne->updates, 0);
    EXPECT_TRUE(manager->isIdling());

    looping->stop();
    EXPECT_FALSE(manager->isIdling());
}

TEST_F(MediaTest, EventLoopDrivesPlayingMediaToTheirEnd)
{
    Watchdog watchdog(2000);
    KPtr<FakeMedia> media(new FakeMedia(10));
    media->load();
    media->play();
    app->setAppFlags(KApplication::Running);
    int turns = 0;
    while (media->isPlaying() && turns++ < 1000)
        app->doOneLoop();
    EXPECT_EQ(media->getStatus(), KAbstractMedia::Loaded);
    EXPECT_EQ(media->updates, 10);
    EXPECT_FALSE(manager->isIdling());
}

TEST_F(MediaTest, SupportsOpenAndCloseInOrder)
{
    std::vector<std::string> log;
    manager->setSupport(KMediaManager::MovieSupport, new LoggingSupport("movies", log));
    manager->setSupport(KMediaManager::SoundSupport, new LoggingSupport("sound", log));
    manager->setSupport(KMediaManager::SpeechSupport, new LoggingSupport("speech", log));
    EXPECT_EQ(manager->getRequested(), 7);

    manager->setUp(KMediaManager::MovieSupport | KMediaManager::SpeechSupport);
    EXPECT_EQ(log, (std::vector<std::string> { "open movies 3", "open speech 7" }));
    EXPECT_EQ(manager->getOpened(), KMediaManager::MovieSupport | KMediaManager::SpeechSupport | 8);

    {
        ErrorRecorder errors;
        manager->openMediaSupport();
        EXPECT_EQ(errors.lastCode(), 4);
        manager->setActiveMediaSupport(7);
        EXPECT_EQ(errors.errors().size(), 2u);
        EXPECT_EQ(errors.lastCode(), 4);
        EXPECT_EQ(manager->getRequested(), 5);
    }

    KPtr<FakeMedia> playing(new FakeMedia());
    KPtr<FakeMedia> paused(new FakeMedia());
    playing->load();
    paused->load();
    playing->play();
    paused->play();
    paused->pause();
    log.clear();
    manager->closeMediaSupport();
    EXPECT_EQ(log, (std::vector<std::string> { "close movies", "close speech" }));
    EXPECT_EQ(manager->getOpened(), 0);
    EXPECT_EQ(manager->mediaCount(), 0);
    EXPECT_EQ(playing->getStatus(), KAbstractMedia::NotLoaded);
    EXPECT_EQ(paused->getStatus(), KAbstractMedia::NotLoaded);
    EXPECT_FALSE(manager->isIdling());

    // Once closed, everything can be chosen and opened again.
    log.clear();
    manager->setActiveMediaSupport(7);
    manager->openMediaSupport();
    EXPECT_EQ(log, (std::vector<std::string> { "open sound 0", "open movies 3", "open speech 7" }));
}

TEST_F(MediaTest, FeedbackGoesToTargetsUntilOneConsumesIt)
{
    std::vector<Receiver*> log;
    KPtr<Receiver> first(new Receiver(0, log));
    KPtr<Receiver> second(new Receiver(1, log));
    KPtr<Receiver> third(new Receiver(1, log));
    KPtr<FakeMedia> media(new FakeMedia());
    EXPECT_TRUE(media->addTarget(*first));
    EXPECT_TRUE(media->addTarget(*second));
    EXPECT_FALSE(media->addTarget(*second));
    media->addTarget(*third);

    auto* event = new KMediaFeedbackEvent();
    event->setValue(KMediaFeedbackEvent::kWordStart, KVariable(int32_t(12)));
    event->setValue(KMediaFeedbackEvent::kWordLength, KVariable(int32_t(5)));
    EXPECT_EQ(event->getValue("ElapsedTime"), nullptr);
    EXPECT_EQ(media->sendFeedback(event), 1);
    EXPECT_EQ(log, (std::vector<Receiver*> { first.get(), second.get() }));
    EXPECT_EQ(second->lastWordStart, 12);

    // With the consumer gone the event reaches the last one.
    log.clear();
    media->removeTarget(*second);
    media->sendFeedback(new KMediaFeedbackEvent());
    EXPECT_EQ(log, (std::vector<Receiver*> { first.get(), third.get() }));
}

TEST_F(MediaTest, MediaFileTypesAreRegisteredOnce)
{
    ErrorRecorder errors;
    kRegisterMediaFileTypes();
    int32_t count = KFileTypeHandler::getCount();
    kRegisterMediaFileTypes();
    EXPECT_EQ(KFileTypeHandler::getCount(), count);
    EXPECT_TRUE(errors.empty());
    EXPECT_TRUE(KMovieSupport::isMovieExtension("mpeg"));
    EXPECT_FALSE(KMovieSupport::isMovieExtension("WAV"));
}

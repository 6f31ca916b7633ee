#pragma once

#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/KSpeechSupport.h"
#include "kmultimedia/testing/KFakeSound.h"
#include "kmultimedia/testing/KFakeSpeech.h"
#include "tests/tape/MediaElementTestSupport.h"

#include "windowing/KWindow.h"

#include "windowing/KKeyEvent.h"
#include "windowing/KMouseEvent.h"

#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace timedtest {

// The media host, plus what the timed elements ask: the wait marks, the
// cursor, the warnings, the speed of speech and the lit words.
class TimedHost : public mediatest::MediaHost {
public:
    void showWaitMarks(bool shown) override
    {
        waitMarks.push_back(shown);
        marksOn = shown;
    }
    bool isCursorShown() override { return cursor; }
    void showCursor(bool shown) override
    {
        cursor = shown;
        cursorChanges.push_back(shown);
    }
    void releaseCursor(bool shown) override
    {
        cursor = shown;
        cursorReleases.push_back(shown);
    }
    void checkSoundOutput() override { ++soundOutputChecks; }
    void checkSpeechEngine() override { ++speechEngineChecks; }
    void warnSpeechFailed(const KString& voice) override { speechFailures.emplace_back(voice.c_str()); }
    double speechSpeed() override { return speed; }

    std::vector<bool> waitMarks;
    bool marksOn = false;
    bool cursor = true;
    std::vector<bool> cursorChanges;
    std::vector<bool> cursorReleases;
    int32_t soundOutputChecks = 0;
    int32_t speechEngineChecks = 0;
    std::vector<std::string> speechFailures;
    double speed = -1.0;
};

// A tape on its page with a media manager whose sound and speech supports
// run on the fakes: sounds last two seconds of a clock the test moves, the
// speech speaks until the test says it is done.
class TimedElementTest : public tapetest::TapeTest {
protected:
    void SetUp() override
    {
        TapeTest::SetUp();
        TapeHost::install(&media);
        kRegisterMultimediaClasses();
        sounds = std::make_shared<KFakeSound::Script>();
        KFakeSound::install(sounds);
        KSpeechSupport::setEngine(&engine);
        manager = kAdopt(new KMediaManager());
        soundSupport = kAdopt(new KSoundSupport());
        speechSupport = kAdopt(new KSpeechSupport());
        speechSupport->setInterfaceLanguage("en");
        manager->setSupport(KMediaManager::SoundSupport, soundSupport.get());
        manager->setSupport(KMediaManager::SpeechSupport, speechSupport.get());
        manager->setUp(KMediaManager::SoundSupport | KMediaManager::SpeechSupport);
    }
    void TearDown() override
    {
        TapeTest::TearDown();
        manager->unloadAllMedia();
        manager->closeMediaSupport();
        soundSupport.clear();
        speechSupport.clear();
        manager.clear();
        KSpeechSupport::setEngine(nullptr);
        KFakeSound::install(nullptr);
        TapeHost::install(nullptr);
    }

    // A file that exists; its content does not matter to the fake player.
    std::filesystem::path soundFile(const std::string& name)
    {
        std::filesystem::path path = folder / name;
        std::ofstream(path) << "RIFF";
        return path;
    }

    // Ticks until the element lets go of the tape (or `limit` ticks); the
    // count of ticks after the one it started on.
    int32_t ticksHeld(TapeObject& element, int32_t limit = 1000)
    {
        int32_t ticks = 0;
        while (tape->getPlayingObject() == &element && ticks < limit) {
            tick();
            ++ticks;
        }
        return ticks;
    }

    static KPtr<KKeyEvent> key(int32_t code, int32_t modifiers = 0, int32_t type = KKeyEvent::KeyDown)
    {
        return kAdopt(new KKeyEvent(type, nullptr, code, modifiers));
    }
    static KPtr<KMouseEvent> mouse(int32_t type)
    {
        KPtr<KMouseEvent> event = kAdopt(new KMouseEvent(type, nullptr));
        event->setButton(KMouseEvent::Left);
        return event;
    }

    TimedHost media;
    mediatest::ScratchFolder folder { "timed-elements" };
    std::shared_ptr<KFakeSound::Script> sounds;
    KFakeSpeechEngine engine;
    KMediaManagerPtr manager;
    KSoundSupportPtr soundSupport;
    KSpeechSupportPtr speechSupport;
};

} // namespace timedtest

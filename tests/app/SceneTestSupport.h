#pragma once

#include "app/SceneTapePage.h"
#include "app/actors/Actor.h"
#include "app/actors/ActorAction.h"
#include "app/actors/ActorMotion.h"
#include "graphics/KColor.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace scenetest {

// Remembers what the scene asked of the program; asks the user nothing.
class SceneHost : public TapeHost {
public:
    void alert(const KString& title, const KString& text) override;
    void refuseMediaName(const KString& name) override { refused.push_back(name.c_str()); }
    bool findMissingFile(KFileReference& file, KDirectory& directory, KDirectory* second) override;
    void stopAction(Tape& tape) override { tape.stopPlaying(); }

    std::vector<std::string> alerts;
    std::vector<std::string> refused;
    std::vector<std::string> searched;
    // What the missing-file dialog answers: gave up, or the file found.
    bool giveUp = false;
    KPath foundAt;
};

// The colours of the test's pictures, as the page stores them (0xRRGGBB).
constexpr uint32_t kBlack = 0x000000;
constexpr uint32_t kPageBlue = 0x0000FF;
constexpr uint32_t kWalkRed = 0xFF0000;
constexpr uint32_t kRunGreen = 0x00FF00;
constexpr uint32_t kAnnYellow = 0xFFFF00;

KColor rgb(uint32_t value);

// An actor painted for the test's page: the movement "Walk", one frame
// with a red bar of 20 by 10 pixels, and "Run", the same bar in green.
ActorPtr makeActor(uint32_t walkColour = kWalkRed);

ActorActionPtr makeAction(const char* actor, int32_t action);
ActorActionPtr makeEnter(const char* actor, const char* movement, int16_t x, int16_t y);
ActorActionPtr makeMove(const char* actor, int32_t action, int16_t x, int16_t y, float scale, int32_t speed);
ActorMotionPtr makeMotion(const char* actor, const std::vector<std::pair<int16_t, int16_t>>& points);

std::vector<uint32_t> pixelsOf(KImage& image);
uint32_t pixelAt(KImage& image, int32_t x, int32_t y);

// A fake layer and clock, a recording host, and a story tape on a headless
// scene whose actor "Bob" is loaded.
class SceneTest : public ::testing::Test {
public:
    static constexpr int16_t kPageWidth = 160;
    static constexpr int16_t kPageHeight = 120;

protected:
    void SetUp() override;
    void TearDown() override;

    // A tape on a scene of its own, holding a fresh "Bob" (and "Ann" when
    // asked).
    TapePtr makeTape(SceneTapePagePtr& pageOut, bool withAnn = false);
    Actor& bob() const { return *static_cast<Actor*>(tape->getActor("Bob")); }
    // The page with its actors, composed afresh.
    std::vector<uint32_t> composed(SceneTapePage& scene);
    // What the screen shows after the scene's next frame.
    std::vector<uint32_t> screen(SceneTapePage& scene);
    uint32_t composedAt(int32_t x, int32_t y);
    // The composition of a copy of the tape rebuilt at the position on a
    // scene of its own, with actors of its own.
    std::vector<uint32_t> referenceScene(int32_t position, bool withAnn);
    void tick();
    // Ticks until the tape lets go of its playing element; the count.
    int32_t ticksWhilePlaying(int32_t limit = 10000);

    KFakeNativeLayer layer;
    SceneHost host;
    TapePtr tape;
    SceneTapePagePtr page;
};

} // namespace scenetest

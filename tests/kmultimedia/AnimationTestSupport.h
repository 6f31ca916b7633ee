#pragma once

#include "kernel/KBag.h"
#include "kmultimedia/KAnimationController.h"
#include "kmultimedia/KAnimationObject.h"
#include "kmultimedia/KAnimationSystem.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "tests/windowing/WindowingTestSupport.h"

#include <cmath>
#include <string>
#include <utility>
#include <vector>

// A system that notes the order of its frames' draws and steps.
class RecordingSystem : public KAnimationSystem {
public:
    void step(float time) override
    {
        steps.push_back(time);
        order.push_back("step");
        KAnimationSystem::step(time);
    }
    void drawFrame() override { order.push_back("draw"); }
    void forget()
    {
        steps.clear();
        order.clear();
    }

    std::vector<float> steps;
    std::vector<std::string> order;
};

// An object on a line: it overlaps whatever stands less than one unit away
// on x. It notes what it hit, and can act on its collisions.
class Body : public KAnimationObject {
public:
    using Action = void (*)(Body& self, KBag& hits);

    Body(std::string bodyName, float x, uint32_t bit, int32_t mask)
        : name(std::move(bodyName))
    {
        setPosition(x, 0.0f);
        setCollisionBit(bit);
        setCollisionMask(KFlagSet(mask));
        ++live;
    }
    ~Body() override { --live; }

    bool overlaps(KAnimationObject& other) override { return std::fabs(other.getPosition().x - position.x) < 1.0f; }
    void collided(KBag& hits) override
    {
        std::string entry = name + ":";
        for (int32_t i = 0; i < hits.getSize(); ++i)
            entry += (i ? "," : "") + static_cast<Body*>(hits.getAt(i))->name;
        log().push_back(entry);
        if (onCollided)
            onCollided(*this, hits);
    }

    static std::vector<std::string>& log()
    {
        static std::vector<std::string> entries;
        return entries;
    }

    std::string name;
    Action onCollided = nullptr;
    static inline int live = 0;
};

// Notes the times it is given.
class RecordingController : public KAnimationController {
public:
    KThing* deepCopy() const override { return new RecordingController(*this); }
    void update(float time) override { times.push_back(time); }
    std::vector<float> times;
};

// A fake clock, a fresh timer manager and a new system for each test.
class AnimationTest : public FakeLayerTest {
protected:
    void SetUp() override
    {
        FakeLayerTest::SetUp();
        kRegisterMultimediaClasses();
        Body::log().clear();
        system = new RecordingSystem();
    }
    void TearDown() override
    {
        system.clear();
        FakeLayerTest::TearDown();
    }
    // An idle pass of the event loop: due timers fire.
    void idle() { KTimerManager::get().idle(); }
    // Moves the clock on and gives the timers their pass.
    void after(uint32_t milliseconds)
    {
        layer.advance(milliseconds);
        idle();
    }

    KPtr<RecordingSystem> system;
};

#include "AnimationTestSupport.h"

namespace {

void expectSteps(const std::vector<float>& steps, const std::vector<float>& expected)
{
    ASSERT_EQ(steps.size(), expected.size());
    for (size_t i = 0; i < steps.size(); ++i)
        EXPECT_NEAR(steps[i], expected[i], 1e-5) << "step " << i;
}

} // namespace

TEST_F(AnimationTest, ConstructionStartsBothTimersOnTheClock)
{
    KTimer& frame = *system->getFrameTimer();
    EXPECT_EQ(frame.getInterval(), 20);
    EXPECT_EQ(frame.getMode(), KTimer::Bounded);
    EXPECT_EQ(frame.getMaximumLag(), 500);
    EXPECT_TRUE(frame.isRepeating());
    EXPECT_TRUE(frame.isRunning());
    EXPECT_EQ(frame.getTarget(), system.get());

    KTimer& rate = *system->getRateTimer();
    EXPECT_EQ(rate.getInterval(), 1000);
    EXPECT_EQ(rate.getMode(), KTimer().getMode());
    EXPECT_TRUE(rate.isRepeating());
    EXPECT_TRUE(rate.isRunning());
    EXPECT_EQ(rate.getTarget(), system.get());

    EXPECT_EQ(system->getStartTime(), layer.now());
    EXPECT_EQ(system->getLastTick(), layer.now());
    EXPECT_EQ(system->getMaxCatchUp(), 1000);
    EXPECT_EQ(system->getSeconds(), 0.0f);
    EXPECT_FALSE(system->isPaused());
    EXPECT_FALSE(system->isNoCatchUp());
    EXPECT_EQ(system->getObjects().getCapacity(), 1024);
    EXPECT_EQ(system->getObjects().getGrowSize(), 1024);

    // Destruction stops both timers and leaves no target behind.
    KTimerPtr heldFrame(system->getFrameTimer());
    system.clear();
    EXPECT_FALSE(heldFrame->isRunning());
    EXPECT_EQ(heldFrame->getTarget(), nullptr);
    EXPECT_FALSE(KTimerManager::get().hasTimers());
}

TEST_F(AnimationTest, FramesDrawFirstThenStepAndCatchUpAfterALateTick)
{
    // The frame timer fires once more than its interval has passed.
    after(20);
    EXPECT_TRUE(system->steps.empty());
    after(1);
    EXPECT_EQ(system->order, (std::vector<std::string> { "draw", "step" }));
    EXPECT_EQ(system->getCatchUpSteps(), 0);
    expectSteps(system->steps, { 0.021f });
    EXPECT_EQ(system->getLastTick(), layer.now());

    // 100 ms late with a 20 ms frame: four steps owed, three extra ones at
    // the new time and after it, then the frame's own step back at it.
    system->forget();
    after(100);
    EXPECT_EQ(system->getCatchUpSteps(), 4);
    expectSteps(system->steps, { 0.121f, 0.141f, 0.161f, 0.121f });
    EXPECT_EQ(system->order.front(), "draw");

    // A stall of five seconds is bounded by the catch-up limit: 49 steps
    // owed, 48 extra ones.
    system->forget();
    after(5000);
    EXPECT_EQ(system->getCatchUpSteps(), 49);
    EXPECT_EQ(system->steps.size(), 49u);
    EXPECT_NEAR(system->steps.back(), 5.121f, 1e-4);
    EXPECT_NEAR(system->steps[47], 5.121f + 47 * 0.02f, 1e-3);

    // Without catch-up every frame is one step, whatever the delay.
    system->setNoCatchUp(true);
    system->forget();
    after(300);
    EXPECT_EQ(system->getCatchUpSteps(), 0);
    EXPECT_EQ(system->steps.size(), 1u);
    EXPECT_NEAR(system->getSeconds(), 5.421f, 1e-4);
}

TEST_F(AnimationTest, ALaggingFrameTimerMakesUpFramesUpToItsLagLimit)
{
    after(21);
    system->forget();
    layer.advance(200);
    int frames = 0;
    for (; frames < 100 && system->getFrameTimer()->isDue(); ++frames)
        idle();
    // 200 ms behind a 20 ms timer: ten frames, the first with catch-up,
    // the rest with no time left to make up.
    EXPECT_EQ(frames, 10);
    EXPECT_EQ(system->getCatchUpSteps(), -1);

    // Beyond the lag limit of 500 ms the backlog is dropped.
    layer.advance(2000);
    for (frames = 0; frames < 200 && system->getFrameTimer()->isDue(); ++frames)
        idle();
    EXPECT_GE(frames, 20);
    EXPECT_LE(frames, 1 + 500 / 20);
}

TEST_F(AnimationTest, RateTimerMeasuresTheFramesOfEachSecond)
{
    for (int ms = 0; ms < 1001; ++ms)
        after(1);
    // Frames came at 21, 41, ... 981 ms; the rate timer fired at 1001 ms
    // before the frame of that same pass.
    EXPECT_EQ(system->getFramesPerSecond(), 49.0f);
    EXPECT_EQ(system->getFrameCount(), 2);
}

TEST_F(AnimationTest, PauseStopsTheClockAndResumeGoesOnWithoutAJump)
{
    after(21);
    ASSERT_EQ(system->steps.size(), 1u);

    system->pause();
    EXPECT_TRUE(system->isPaused());
    for (KTimer* timer : { system->getFrameTimer(), system->getRateTimer() }) {
        EXPECT_FALSE(timer->isRunning());
        EXPECT_EQ(timer->getTarget(), nullptr);
    }
    system->pause();
    after(5000);
    EXPECT_EQ(system->steps.size(), 1u);

    system->resume();
    EXPECT_FALSE(system->isPaused());
    EXPECT_EQ(system->getLastTick(), layer.now());
    for (KTimer* timer : { system->getFrameTimer(), system->getRateTimer() }) {
        EXPECT_TRUE(timer->isRunning());
        EXPECT_EQ(timer->getTarget(), system.get());
    }
    after(21);
    ASSERT_EQ(system->steps.size(), 2u);
    EXPECT_EQ(system->getCatchUpSteps(), 0);
    EXPECT_NEAR(system->steps.back(), 0.042f, 1e-5);

    // A frame that reaches a paused system only counts.
    int32_t count = system->getFrameCount();
    system->pause();
    system->timerFired(*system->getFrameTimer());
    EXPECT_EQ(system->getFrameCount(), count + 1);
    EXPECT_EQ(system->steps.size(), 2u);
}

TEST_F(AnimationTest, FrameIntervalAndTimerSettingsReachTheFrameTimer)
{
    system->setFrameInterval(40);
    system->setFrameTimerMode(KTimer::Exact);
    system->setFrameTimerLag(100);
    KTimer& frame = *system->getFrameTimer();
    EXPECT_EQ(frame.getInterval(), 40);
    EXPECT_EQ(frame.getMode(), KTimer::Exact);
    EXPECT_EQ(frame.getMaximumLag(), 100);
    // No zero interval: the catch-up divides by it.
    system->setFrameInterval(0);
    EXPECT_EQ(frame.getInterval(), 40);

    after(41);
    layer.advance(200);
    idle();
    // 200 ms at 40 ms a frame: five owed, four extra steps.
    EXPECT_EQ(system->getCatchUpSteps(), 4);
    EXPECT_EQ(system->steps.size(), 1u + 4u);
}

TEST_F(AnimationTest, TheEventLoopDrivesTheFramesThroughItsWaits)
{
    KApplicationPtr app(new KApplication());
    uint32_t start = layer.now();
    for (int i = 0; i < 10; ++i)
        app->doOneLoop();
    // Each turn waited for the next frame and the frame came right after.
    ASSERT_EQ(layer.turns().size(), 10u);
    EXPECT_EQ(layer.turns()[0].wait, 21);
    EXPECT_EQ(layer.turns()[1].wait, 20);
    EXPECT_EQ(system->steps.size(), 10u);
    EXPECT_EQ(layer.now() - start, 201u);
    EXPECT_NEAR(system->getSeconds(), 0.201f, 1e-5);
    app.clear();
}

TEST_F(AnimationTest, ControllersGetTheirOwnTimeAndForgetAnObjectThatGoes)
{
    KPtr<RecordingController> controller(new RecordingController());
    controller->setTimeOffset(2.0f);
    controller->setTimeScale(0.5f);
    KAnimationObjectPtr object(new KAnimationObject());
    object->setController(*controller);
    EXPECT_EQ(controller->getTarget(), object.get());
    system->addObject(*object);

    system->step(4.0f);
    EXPECT_EQ(controller->times, (std::vector<float> { 4.0f }));

    // A copy of the object steers a copy of the controller.
    object->setCollisionKind(7);
    KAnimationObjectPtr copy(static_cast<KAnimationObject*>(object->deepCopy()));
    ASSERT_NE(copy->getController(), nullptr);
    EXPECT_NE(copy->getController(), controller.get());
    EXPECT_EQ(copy->getController()->getTarget(), copy.get());
    EXPECT_EQ(copy->getController()->getTimeScale(), 0.5f);
    EXPECT_EQ(copy->getCollisionKind(), 7);

    // An object that goes leaves no target behind.
    system->removeObject(*object);
    object.clear();
    EXPECT_EQ(controller->getTarget(), nullptr);

    copy->clearController();
    EXPECT_EQ(copy->getController(), nullptr);
}

TEST_F(AnimationTest, CollisionsHandleEachObjectOncePerStep)
{
    KPtr<Body> a(new Body("A", 0.0f, 1, 2 | 4));
    KPtr<Body> b(new Body("B", 0.5f, 2, 1));
    KPtr<Body> c(new Body("C", 0.2f, 4, 0));
    KPtr<Body> d(new Body("D", 10.0f, 2, 1));
    for (Body* body : { a.get(), b.get(), c.get(), d.get() })
        system->addObject(*body);
    for (Body* body : { a.get(), b.get(), d.get() })
        system->addCollisionObject(*body);

    // A hits B and C; B was hit, so it is not tested itself; D meets no one.
    system->step(0.0f);
    EXPECT_EQ(Body::log(), (std::vector<std::string> { "A:B,C" }));
    for (Body* body : { a.get(), b.get(), c.get(), d.get() })
        EXPECT_TRUE(body->isCollisionDone()) << body->name;
    EXPECT_TRUE(system->getHits().isEmpty());

    // The marks are cleared at each test.
    system->step(0.02f);
    EXPECT_EQ(Body::log().size(), 2u);

    // A hidden object is not tested, but can still be hit.
    Body::log().clear();
    a->hide();
    system->step(0.04f);
    EXPECT_EQ(Body::log(), (std::vector<std::string> { "B:A" }));

    // An object whose mask is empty tests nothing.
    Body::log().clear();
    a->show();
    a->setCollisionMask(KFlagSet(0));
    b->setCollisionMask(KFlagSet(0));
    system->addCollisionObject(*c);
    system->step(0.06f);
    EXPECT_TRUE(Body::log().empty());
}

TEST_F(AnimationTest, ACollidedThatRemovesItsObjectDoesNotSkipTheNext)
{
    static KAnimationSystem* current = nullptr;
    current = system.get();
    int liveBefore = Body::live;
    {
        // The system holds the only references of the leaving body.
        auto* leaving = new Body("A", 0.0f, 1, 2);
        leaving->onCollided = [](Body& self, KBag&) { current->removeObject(self); };
        KPtr<Body> x(new Body("X", 0.5f, 2, 0));
        KPtr<Body> b(new Body("B", 20.0f, 1, 4));
        KPtr<Body> y(new Body("Y", 20.5f, 4, 0));
        for (Body* body : { leaving, x.get(), b.get(), y.get() })
            system->addObject(*body);
        system->addCollisionObject(*leaving);
        system->addCollisionObject(*b);

        system->step(0.0f);
        EXPECT_EQ(Body::log(), (std::vector<std::string> { "A:X", "B:Y" }));
        EXPECT_EQ(system->getObjects().getSize(), 3);
        EXPECT_EQ(system->getCollisionObjects().getSize(), 1);
        // Gone with its last reference, once its collided had returned.
        EXPECT_EQ(Body::live, liveBefore + 3);
    }
    system->removeAllObjects();
    EXPECT_EQ(Body::live, liveBefore);
}

TEST_F(AnimationTest, ObjectListsHoldEachObjectOnce)
{
    KPtr<Body> a(new Body("A", 0.0f, 1, 1));
    KPtr<Body> b(new Body("B", 0.0f, 1, 1));
    system->addObject(*a);
    system->addObject(*a);
    EXPECT_EQ(system->getObjects().getSize(), 1);

    a->setCollisionDone(true);
    system->addCollisionObject(*a);
    EXPECT_FALSE(a->isCollisionDone());
    system->addCollisionObject(*a);
    EXPECT_EQ(system->getCollisionObjects().getSize(), 1);

    EXPECT_FALSE(system->removeObject(*b));
    EXPECT_FALSE(system->removeCollisionObject(*b));
    // Removing an object takes it out of the collision list too.
    EXPECT_TRUE(system->removeObject(*a));
    EXPECT_TRUE(system->getObjects().isEmpty());
    EXPECT_TRUE(system->getCollisionObjects().isEmpty());

    system->addObject(*a);
    system->addObject(*b);
    system->addCollisionObject(*b);
    system->removeAllObjects();
    EXPECT_TRUE(system->getObjects().isEmpty());
    EXPECT_TRUE(system->getCollisionObjects().isEmpty());
    EXPECT_EQ(a->getReferenceCount(), 2);
}

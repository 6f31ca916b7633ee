#include "tests/kernel/FileTestSupport.h"
#include "tests/project/ProjectTestSupport.h"
#include "tests/windowing/WindowingTestSupport.h"

#include "project/ProjectClasses.h"
#include "project/StylusProject.h"
#include "windowing/KWindow.h"

using namespace filetest;
using namespace projecttest;

namespace {

class WaitWindow : public KWindow {
    K_DECLARE_CLASS(WaitWindow)
};
K_DEFINE_CLASS(WaitWindow, KWindow)

struct LoadOutcome {
    bool loaded = true;
    uint32_t started = 0;
    uint32_t finished = 0;
};

// Loads the project from inside the event loop, then quits.
class LoadEvent : public KEvent {
public:
    LoadEvent(StylusProject& project, const KFileReference& file, LoadOutcome& outcome)
        : KEvent(1)
        , project(project)
        , file(file)
        , outcome(outcome)
    {
    }
    KEventReturn process() override
    {
        outcome.started = knsGetTime();
        outcome.loaded = project.load(file);
        outcome.finished = knsGetTime();
        KApplication::current()->postQuit();
        return 1;
    }

private:
    StylusProject& project;
    KFileReference file;
    LoadOutcome& outcome;
};

class ProjectWaitTest : public FakeLayerTest {
protected:
    void SetUp() override
    {
        FakeLayerTest::SetUp();
        registerProjectClasses();
        if (!WaitWindow::classRecord || !KClass::hasClass("WaitWindow"))
            WaitWindow::registerClass();
    }
    void TearDown() override
    {
        StylusProject::setRetryDelay(StylusProject::kDefaultRetryDelay);
        FakeLayerTest::TearDown();
    }
};

} // namespace

// The wait between the two tries turns the loop: timers keep firing, and
// the second try comes when the delay has passed on the program's clock.
TEST_F(ProjectWaitTest, TheRetryWaitKeepsTheLoopTurning)
{
    TempFolder folder;
    writeBytes(folder.file("broken.TPD"), { 'S', 'T', 'D', 'F', 0, 0, 0, 3 });
    StylusProject::setRetryDelay(200);
    StylusProjectPtr project(new StylusProject());
    Tape* before = project->getTape();
    CountingTarget ticks;
    KTimerPtr timer(new KTimer());
    timer->setInterval(20);
    timer->setRepeat(true);
    timer->setTarget(&ticks);
    LoadOutcome outcome;
    HostScope scope;

    KPtr<KApplication> application(new KApplication());
    timer->start();
    post(new LoadEvent(*project, KFileReference(folder.pathOf("broken.TPD")), outcome));
    const char* arguments[] = { "taleloom" };
    application->run("WaitWindow", 1, arguments);
    timer->stop();

    EXPECT_FALSE(outcome.loaded);
    EXPECT_GE(kTimeDifference(outcome.finished, outcome.started), 200);
    EXPECT_GE(ticks.fired, 8);
    EXPECT_EQ(project->getTape(), before);
    EXPECT_EQ(scope.host.alerts.size(), 1u);
    EXPECT_FALSE(application->hasAppFlags(KApplication::NeverBlock));
}

#pragma once

// The whole program on the fake native layer, with settings and the sample
// story in a folder of its own, for the benchmarks of its commands.

#include "app/StylusApplication.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"
#include "windowing/KTimerManager.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/KWindowingServices.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include <unistd.h>

namespace benchprogram {

namespace fs = std::filesystem;

using Clock = std::chrono::steady_clock;

inline double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// The program with its settings and story in a folder of its own.
class BenchApplication : public StylusApplication {
public:
    std::function<void(BenchApplication&)> body;
    void doInit() override
    {
        StylusApplication::doInit();
        // The story on the command line opens from the first turns.
        for (int i = 0; i < 3; ++i)
            turn();
        body(*this);
        postQuit();
    }
    void scheduleStartupDialog() override { }
    void turn() { doOneLoop(); }
};

struct Sandbox {
    fs::path root = fs::temp_directory_path() / ("taleloom-bench-" + std::to_string(::getpid()));
    Sandbox()
    {
        fs::create_directories(root / "home");
        setenv("HOME", (root / "home").c_str(), 1);
        setenv("XDG_CONFIG_HOME", (root / "config").c_str(), 1);
        setenv("XDG_DATA_HOME", (root / "data").c_str(), 1);
        fs::copy(fs::path(TALELOOM_SOURCE_DIR) / "data/samples/Sample", root / "Sample", fs::copy_options::recursive);
    }
    ~Sandbox()
    {
        std::error_code ignored;
        fs::remove_all(root, ignored);
    }
    std::string story() const { return (root / "Sample" / "Sample.TPD").string(); }
};

inline void runProgram(KFakeNativeLayer& layer, const std::function<void(BenchApplication&)>& body)
{
    Sandbox sandbox;
    kRegisterWindowingClasses();
    KNativeLayer::install(&layer);
    knsEnterKernel();
    kServices() = KServices();
    kInstallWindowingServices();
    kksResetTranslator();
    KTimerManager::destroy();
    std::string story = sandbox.story();
    const char* argv[] = { "taleloom", story.c_str() };
    KPtr<BenchApplication> application(new BenchApplication());
    application->body = body;
    application->setAppFlags(KApplication::NeverBlock);
    application->run("StylusWindow", 2, argv);
    KTimerManager::destroy();
    kServices() = KServices();
    kksResetTranslator();
    KNativeLayer::install(nullptr);
}

// A story of `count` short strokes of two points each, on an 800 by 600
// page, its position at the start.
inline TapePtr strokeTape(int32_t count)
{
    TapePtr story = kAdopt(new Tape());
    story->setPageSize(KGraphicSize(800, 600));
    for (int32_t i = 0; i < count; ++i) {
        StrokePtr stroke(new Stroke());
        stroke->addPoint(int16_t(20 + i % 700), int16_t(20 + i % 500));
        stroke->addPoint(int16_t(30 + i % 700), int16_t(30 + i % 500));
        story->add(*stroke);
    }
    return story;
}

} // namespace benchprogram

#pragma once

#include "app/StylusApplication.h"
#include "windowing/KNativeRecord.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace apptest {

// A folder of its own for every run of the program: settings, data,
// documents. GLib reads these places once, so the sandbox is set up before
// main and shared by the tests of this program.
const std::string& sandboxRoot();
// A fresh, empty folder inside the sandbox.
std::string freshFolder(const std::string& name);
// The sandbox's settings and projects start empty.
void clearSettings();

// The real application on the fake native layer. `body` runs at the end of
// the start-up, inside the program, and ends the run when it returns.
class TestApplication : public StylusApplication {
public:
    std::function<void(TestApplication&)> body;
    void doInit() override;
    // Turns the loop `turns` times, each waiting at most a little.
    void turn(int32_t turns = 1);
    // The start-up question is noted rather than shown: the fake layer has
    // no user to answer it.
    void scheduleStartupDialog() override { ++startupQuestions; }
    int32_t startupQuestions = 0;
};

class AppTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    // Runs the program with the arguments; the body sees it started.
    void runApp(const std::vector<std::string>& arguments, const std::function<void(TestApplication&)>& body);
    // A press, moves and a release of the left button on the main window,
    // in page coordinates.
    void press(int32_t x, int32_t y, int32_t keys = 0);
    void moveTo(int32_t x, int32_t y, int32_t keys = 0);
    void release(int32_t x, int32_t y, int32_t keys = 0);
    void key(int32_t virtualKey, int32_t modifiers = 0);
    void pointer(int32_t message, int32_t buttons, int32_t x, int32_t y);
    std::vector<std::string> alertTexts() const;
    // The next new-project (or save-as) dialog is answered as a user
    // would: the folder chosen, the name typed, OK pressed; or cancelled.
    void answerProjectDialog(const std::string& folder, const std::string& name);
    void cancelProjectDialog();

    KFakeNativeLayer layer;
    int32_t exitState = -1;
};

} // namespace apptest

#include "AppTestSupport.h"

#include "app/NewProjectDialog.h"
#include "app/StylusWindow.h"
#include "kernel/KLocalizerData.h"
#include "kernel/KPath.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KServices.h"
#include "windowing/KTimerManager.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/KWindowingServices.h"

#include <cstdlib>
#include <filesystem>
#include <random>

namespace fs = std::filesystem;

namespace apptest {

namespace {

std::string makeSandbox()
{
    fs::path root = fs::temp_directory_path() / ("taleloom-app-" + std::to_string(std::random_device()()));
    fs::create_directories(root / "home");
    setenv("HOME", (root / "home").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (root / "config").c_str(), 1);
    setenv("XDG_CONFIG_DIRS", (root / "system").c_str(), 1);
    setenv("XDG_DATA_HOME", (root / "data").c_str(), 1);
    return root.string();
}

struct Sandbox {
    std::string root = makeSandbox();
    ~Sandbox()
    {
        std::error_code ignored;
        fs::remove_all(root, ignored);
    }
};

Sandbox& sandbox()
{
    static Sandbox made;
    return made;
}

// Before main, so that GLib sees the sandbox first.
const bool kSandboxReady = !sandboxRoot().empty();

int32_t packPoint(int32_t x, int32_t y) { return (y << 16) | (x & 0xFFFF); }

} // namespace

const std::string& sandboxRoot() { return sandbox().root; }

std::string freshFolder(const std::string& name)
{
    fs::path folder = fs::path(sandboxRoot()) / "work" / name;
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    fs::create_directories(folder);
    return folder.string();
}

void clearSettings()
{
    std::error_code ignored;
    fs::remove_all(fs::path(sandboxRoot()) / "config", ignored);
    fs::remove_all(fs::path(sandboxRoot()) / "data", ignored);
    fs::remove_all(fs::path(sandboxRoot()) / "home" / "TaleLoom Projects", ignored);
}

void TestApplication::doInit()
{
    StylusApplication::doInit();
    if (body)
        body(*this);
    postQuit();
}

void TestApplication::turn(int32_t turns)
{
    for (int32_t i = 0; i < turns; ++i)
        doOneLoop();
}

void AppTest::SetUp()
{
    (void)kSandboxReady;
    clearSettings();
    kRegisterWindowingClasses();
    KNativeLayer::install(&layer);
    knsEnterKernel();
    kServices() = KServices();
    kInstallWindowingServices();
    kksResetTranslator();
    KTimerManager::destroy();
}

void AppTest::TearDown()
{
    layer.setTurnHook(nullptr);
    KTimerManager::destroy();
    kServices() = KServices();
    kksResetTranslator();
    KNativeLayer::install(nullptr);
}

void AppTest::runApp(const std::vector<std::string>& arguments, const std::function<void(TestApplication&)>& body)
{
    std::vector<const char*> argv { "taleloom" };
    for (const std::string& argument : arguments)
        argv.push_back(argument.c_str());
    KPtr<TestApplication> application(new TestApplication());
    application->body = body;
    application->setAppFlags(KApplication::NeverBlock);
    application->run("StylusWindow", int32_t(argv.size()), argv.data());
    exitState = application->getState();
}

// A mouse message at a point of the page, as the window system sends it.
void AppTest::pointer(int32_t message, int32_t buttons, int32_t x, int32_t y)
{
    KNativeRecord r;
    StylusWindow* window = StylusWindow::current();
    KGraphicRectangle page = window->getPageRectangle();
    r.window = window;
    r.message = message;
    r.param1 = buttons;
    r.param2 = packPoint(page.x + x, page.y + y);
    r.x = window->getClientBounds().x + page.x + x;
    r.y = window->getClientBounds().y + page.y + y;
    r.time = layer.now();
    layer.setCursor(r.x, r.y);
    kksDeliverNativeRecord(r);
}

void AppTest::press(int32_t x, int32_t y, int32_t keys)
{
    pointer(KNativeMessage::LeftDown, KMouseKeys::LeftButton | keys, x, y);
}

void AppTest::moveTo(int32_t x, int32_t y, int32_t keys)
{
    pointer(KNativeMessage::MouseMove, KMouseKeys::LeftButton | keys, x, y);
}

void AppTest::release(int32_t x, int32_t y, int32_t keys) { pointer(KNativeMessage::LeftUp, keys, x, y); }

void AppTest::key(int32_t virtualKey, int32_t modifiers)
{
    KNativeRecord r;
    r.window = StylusWindow::current();
    r.message = KNativeMessage::KeyDown;
    r.param1 = virtualKey;
    r.time = layer.now();
    layer.setModifiers(modifiers);
    kksDeliverNativeRecord(r);
    layer.setModifiers(0);
}

namespace {

NewProjectDialog* openProjectDialog(KFakeNativeLayer& layer, void*& handle)
{
    for (const KFakeNativeLayer::Window* window : layer.windows()) {
        if (!window->open)
            continue;
        if (auto* dialog = dynamic_cast<NewProjectDialog*>(window->owner)) {
            handle = dialog->getNativeWindow();
            return dialog->isOpen() ? dialog : nullptr;
        }
    }
    return nullptr;
}

void* controlOf(KFakeNativeLayer& layer, void* window, KNativeControlKind kind, const std::string& text = {})
{
    for (const KFakeNativeLayer::Control* control : layer.controlsOf(window)) {
        // The fake's control handles are its records.
        if (control->setup.kind == kind && (text.empty() || control->setup.text == text))
            return const_cast<KFakeNativeLayer::Control*>(control);
    }
    return nullptr;
}

} // namespace

void AppTest::answerProjectDialog(const std::string& folder, const std::string& name)
{
    layer.setTurnHook([this, folder, name] {
        void* window = nullptr;
        NewProjectDialog* dialog = openProjectDialog(layer, window);
        if (!dialog)
            return;
        layer.setTurnHook(nullptr);
        dialog->setFolder(KDirectory(KPath(KString(folder.c_str()), KPath::kHostPlatform)));
        layer.typeControlText(controlOf(layer, window, KNativeControlKind::Entry), name);
        layer.clickControl(controlOf(layer, window, KNativeControlKind::Button, "OK"));
    });
}

void AppTest::cancelProjectDialog()
{
    layer.setTurnHook([this] {
        void* window = nullptr;
        NewProjectDialog* dialog = openProjectDialog(layer, window);
        if (!dialog)
            return;
        layer.setTurnHook(nullptr);
        layer.clickControl(controlOf(layer, window, KNativeControlKind::Button, "Cancel"));
    });
}

std::vector<std::string> AppTest::alertTexts() const
{
    std::vector<std::string> texts;
    for (const KNativeAlertRequest& alert : layer.alerts())
        texts.push_back(alert.text);
    return texts;
}

} // namespace apptest

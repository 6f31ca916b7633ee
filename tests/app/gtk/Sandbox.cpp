// The program under test writes its settings, its projects folder and its
// recovery copies: all of it goes into a folder of this run's own, set up
// before main so that GLib reads these places from it.

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace {

struct Sandbox {
    std::filesystem::path root;
    Sandbox()
    {
        root = std::filesystem::temp_directory_path() / ("taleloom-gtk-" + std::to_string(std::random_device()()));
        std::filesystem::create_directories(root / "home");
        setenv("HOME", (root / "home").c_str(), 1);
        setenv("XDG_CONFIG_HOME", (root / "config").c_str(), 1);
        setenv("XDG_DATA_HOME", (root / "data").c_str(), 1);
    }
    ~Sandbox()
    {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }
};

Sandbox gSandbox;

} // namespace

#include "app/PlayerMode.h"
#include "app/StylusApplication.h"
#include "kernel/KTextCodec.h"
#include "windowing/KNativeLayer.h"
#include "windowing/native/KGtkNativeLayer.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

// The player of a published story. The story is the "data.TPD" in the
// folder the player stands in; it plays full screen from the start and the
// program ends after it. "--windowed" shows it in a window and
// "--quit-at-end" ends without waiting for a key.

namespace {

// The folder of the running program, from the kernel's own link, so that a
// copy renamed "Start Here!" and started from anywhere finds its story.
std::string programFolder(const char* argv0)
{
    char buffer[PATH_MAX];
    ssize_t length = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    std::string path = length > 0 ? std::string(buffer, size_t(length)) : std::string(argv0);
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

bool readFile(const std::string& path, std::string& text)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    std::ostringstream all;
    all << in.rdbuf();
    text = all.str();
    return true;
}

bool readOptions(int argc, char** argv, PlayerMode& mode)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--windowed") == 0) {
            mode.windowed = true;
        } else if (std::strcmp(argv[i], "--quit-at-end") == 0) {
            mode.quitAtEnd = true;
        } else {
            std::fprintf(stderr, "usage: %s [--windowed] [--quit-at-end]\n", argv[0]);
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    PlayerMode& mode = PlayerMode::get();
    if (!readOptions(argc, argv, mode))
        return 2;
    std::string folder = programFolder(argv[0]);
    std::string document = folder + "/data.TPD";
    if (::access(document.c_str(), R_OK) != 0) {
        std::fprintf(stderr, "TaleLoom: there is no story to play beside the player (%s)\n", document.c_str());
        return 1;
    }
    std::string settings;
    if (readFile(folder + "/player.ini", settings))
        readPlayerSettings(settings, mode);
    mode.on = true;
    mode.document = KTextCodec::fromUtf8(document);

    KGtkNativeLayer layer;
    KNativeLayer::install(&layer);
    knsEnterKernel();
    if (!layer.hasDisplay()) {
        knsExitKernel();
        std::fprintf(stderr, "TaleLoom needs a graphical display; set DISPLAY or run it on a desktop.\n");
        return 1;
    }
    {
        KPtr<StylusApplication> application(new StylusApplication());
        char* arguments[] = { argv[0], nullptr };
        application->run("StylusWindow", 1, arguments);
    }
    knsExitKernel();
    KNativeLayer::install(nullptr);
    return layer.exitCode();
}

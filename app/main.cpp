#include "app/StylusApplication.h"
#include "windowing/KNativeLayer.h"
#include "windowing/native/KGtkNativeLayer.h"

#include <cstdio>

// The native entry: the kernel first, then the application's life, then the
// kernel's end. The exit code is the one the quit message carried.
int main(int argc, char** argv)
{
    KGtkNativeLayer layer;
    KNativeLayer::install(&layer);
    knsEnterKernel();
    if (!layer.hasDisplay()) {
        knsExitKernel();
        std::fprintf(stderr, "TaleLoom needs a graphical display; set DISPLAY or run it on a desktop.\n");
        return 0;
    }
    {
        KPtr<StylusApplication> application(new StylusApplication());
        application->run("StylusWindow", argc, argv);
    }
    knsExitKernel();
    KNativeLayer::install(nullptr);
    return layer.exitCode();
}

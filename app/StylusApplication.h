#pragma once

#include "kernel/KThingPtr.h"
#include "windowing/KApplication.h"

class ToolPalette;

// TaleLoom's application object. It owns the main window (through the
// framework) and the palettes.
class StylusApplication : public KApplication {
    K_DECLARE_CLASS(StylusApplication)
public:
    StylusApplication();
    ~StylusApplication() override;

    void doInit() override;
    void doExit() override;

    ToolPalette* getToolPalette() const;

    // Registers the program's own classes after the framework's.
    static void registerClasses();

private:
    KPtr<ToolPalette> toolPalette;
};

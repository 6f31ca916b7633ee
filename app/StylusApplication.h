#pragma once

#include "kernel/KThingPtr.h"
#include "project/ProjectForward.h"
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
    // The open story; never null after the start.
    StylusProject* getProject() const;

    // Registers the program's own classes after the framework's.
    static void registerClasses();

private:
    // The document named on the command line, or a new story when there is
    // none or it cannot be read; shown in the main window, and played at
    // once with the play option.
    void openStartingProject();
    StylusProjectPtr loadProject(const KString& name);

    KPtr<ToolPalette> toolPalette;
    StylusProjectPtr project;
};

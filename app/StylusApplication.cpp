#include "app/StylusApplication.h"

#include "app/AppClasses.h"
#include "app/StylusTapeHost.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "kernel/KClass.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "windowing/KWindow.h"

#include <filesystem>

K_DEFINE_CLASS(StylusApplication, KApplication)

StylusApplication::StylusApplication()
{
    registerClasses();
    setName("TaleLoom");
}

StylusApplication::~StylusApplication() = default;

void StylusApplication::registerClasses()
{
    if (KClass::hasClass("StylusApplication"))
        return;
    registerDocumentClasses();
    StylusApplication::registerClass();
    StylusWindow::registerClass();
    ToolPalette::registerClass();
}

void StylusApplication::doInit()
{
    TapeHost::install(&StylusTapeHost::instance());
    if (KWindow* window = getMainWindow())
        window->show(true);
    toolPalette = new ToolPalette();
    toolPalette->open(KWindow::Normal);
    openStartingProject();
}

StylusProjectPtr StylusApplication::loadProject(const KString& name)
{
    // The program names places by absolute paths; a name given relative to
    // the folder it was started in is made whole first.
    std::error_code failure;
    std::filesystem::path whole = std::filesystem::absolute(std::string(name.c_str()), failure);
    if (failure)
        return StylusProjectPtr();
    KFileReference file(KPath(KString(whole.lexically_normal().c_str()), KPath::kHostPlatform));
    StylusProjectPtr opened(new StylusProject());
    if (!opened->load(file))
        return StylusProjectPtr();
    return opened;
}

void StylusApplication::openStartingProject()
{
    const std::vector<KString>& files = getFileArguments();
    if (!files.empty())
        project = loadProject(files.front());
    if (!project)
        project = new StylusProject();
    auto* window = dynamic_cast<StylusWindow*>(getMainWindow());
    Tape* tape = project->getTape();
    if (!window || !tape)
        return;
    window->showTape(*tape, project->getActorsDirectory());
    for (const KString& option : getOptionArguments()) {
        if (option == "S" || option == "s")
            tape->startPlaying(0);
    }
}

void StylusApplication::doExit()
{
    if (auto* window = dynamic_cast<StylusWindow*>(getMainWindow()))
        window->releaseTape();
    TapeHost::install(nullptr);
    if (toolPalette) {
        toolPalette->close();
        toolPalette.clear();
    }
}

ToolPalette* StylusApplication::getToolPalette() const { return toolPalette.get(); }

StylusProject* StylusApplication::getProject() const { return project.get(); }

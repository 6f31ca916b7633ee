#include "tools/taleloom-tool/ToolProject.h"

#include "kernel/KError.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "tape/TapeForward.h"
#include "tools/taleloom-tool/ToolMessages.h"

namespace {

std::string errorText(int32_t code)
{
    return std::string(KErrorHandler::textOf(code)) + " (code " + std::to_string(code) + ")";
}

} // namespace

bool loadToolProject(const std::string& path, StylusProject& project, std::string& reason,
                     std::vector<std::string>& warnings)
{
    KFileReference reference(KPath(KTextCodec::fromUtf8(path), KPath::LinuxPlatform));
    KFile file(reference);
    file.setMode(KFileModeReadBuffered);
    file.open();
    if (!file.isOpen()) {
        reason = path + ": cannot open: " + errorText(file.getError() ? file.getError() : KError::CouldNotOpenFile);
        return false;
    }
    ToolMessages messages;
    bool loaded = project.loadFrom(file);
    file.close();
    if (!loaded) {
        reason = path + ": "
                 + (messages.getLines().empty() ? std::string("cannot read the document") : messages.getLines().back());
        return false;
    }
    for (const std::string& message : messages.getLines())
        warnings.push_back(path + ": " + message);
    project.setFileAndFolders(reference);
    return true;
}

const char* toolElementKind(int32_t type)
{
    static const char* const names[]
        = { "None",        "Wait",  "Stroke", "Text",  "Speech",      "Pause", "Sound", "Page Transition",
            "Relay Macro", "Movie", "Image",  "Actor", "Actor Motion" };
    return type >= 0 && type <= ActorMotionType ? names[type] : "Unknown";
}

#include "tools/taleloom-tool/TaleloomTool.h"

#include "app/AppClasses.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KKernelClasses.h"
#include "tools/taleloom-tool/ConvertCommand.h"
#include "tools/taleloom-tool/DumpCommand.h"
#include "tools/taleloom-tool/ExportEpubCommand.h"
#include "tools/taleloom-tool/ExportVideoCommand.h"
#include "tools/taleloom-tool/InfoCommand.h"
#include "tools/taleloom-tool/PaletteCommand.h"
#include "tools/taleloom-tool/PreviewsCommand.h"
#include "tools/taleloom-tool/PrintBookCommand.h"
#include "tools/taleloom-tool/PublishCommand.h"
#include "tools/taleloom-tool/RenderCommand.h"
#include "tools/taleloom-tool/SoundCommands.h"
#include "tools/taleloom-tool/ToolCommand.h"
#include "tools/taleloom-tool/TraceCommand.h"

#include <iterator>
#include <ostream>

namespace {

// The commands, in the order the usage lists them.
const ToolCommand kCommands[] = {
    dumpCommand(),    infoCommand(),      renderCommand(),  traceCommand(),      voicesCommand(),
    speakCommand(),   playCommand(),      recordCommand(),  paletteCommand(),    previewsCommand(),
    publishCommand(), printBookCommand(), convertCommand(), exportEpubCommand(), exportVideoCommand(),
};

int generalUsage(std::ostream& err)
{
    for (const ToolCommand& command : kCommands)
        err << "usage: taleloom-tool " << command.name << ' ' << command.arguments << '\n';
    return kToolUsageError;
}

} // namespace

int toolUsageError(const ToolCommand& command, std::ostream& err)
{
    err << "usage: taleloom-tool " << command.name << ' ' << command.arguments << '\n';
    return kToolUsageError;
}

int toolInputError(const std::string& message, std::ostream& err)
{
    err << "taleloom-tool: " << message << '\n';
    return kToolBadInput;
}

int runTaleloomTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    if (arguments.empty())
        return generalUsage(err);
    for (const ToolCommand& command : kCommands) {
        if (arguments.front() == command.name)
            return command.run(std::vector<std::string>(std::next(arguments.begin()), arguments.end()), out, err);
    }
    return generalUsage(err);
}

void prepareTaleloomTool()
{
    KErrorHandler::loadKernelErrors();
    kRegisterKernelClasses();
    registerDocumentClasses();
}

#include "tools/taleloom-tool/PreviewsCommand.h"
#include "app/PreviewActorStage.h"
#include "app/actors/ActorLoading.h"
#include "kernel/KJsonWriter.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tape/TapePreview.h"
#include "tools/taleloom-tool/ToolMessages.h"
#include "tools/taleloom-tool/ToolProject.h"
#include <chrono>
#include <cstdio>
#include <ostream>
#include <sys/stat.h>

namespace {

struct StepTimes {
    int64_t steps = 0;
    double longest = 0.0;
    double total = 0.0;
};

bool parseRequest(const std::vector<std::string>& arguments, std::string& project, std::string& folder)
{
    for (size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "-o" && i + 1 < arguments.size() && folder.empty())
            folder = arguments[++i];
        else if (project.empty() && !arguments[i].empty() && arguments[i][0] != '-')
            project = arguments[i];
        else
            return false;
    }
    return !project.empty() && !folder.empty();
}

StepTimes buildAll(TapePreview& preview)
{
    using Clock = std::chrono::steady_clock;
    StepTimes times;
    bool more = true;
    while (more) {
        Clock::time_point start = Clock::now();
        more = preview.step();
        double spent = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        ++times.steps;
        times.total += spent;
        times.longest = std::max(times.longest, spent);
    }
    return times;
}

bool writeThumbnails(TapePreview& preview, int32_t count, const std::string& folder, std::string& reason)
{
    ::mkdir(folder.c_str(), 0755);
    for (int32_t p = 1; p <= count; ++p) {
        char name[32];
        std::snprintf(name, sizeof name, "/%04d.png", int(p));
        KImage* thumbnail = preview.getThumbnail(p);
        std::string path = folder + name;
        if (!thumbnail || !thumbnail->writeToPath(KString(path.c_str()))) {
            reason = path + ": could not write the thumbnail";
            return false;
        }
    }
    return true;
}

void printTimes(std::ostream& out, const TapePreview& preview, int32_t count, const StepTimes& times)
{
    static const char* const kStateNames[] = { "survey", "draw", "actors", "downscale", "store", "finished" };
    KJsonWriter writer;
    writer.beginObject();
    writer.member("positions", count);
    writer.member("elementsDrawn", preview.getElementsDrawn());
    writer.member("steps", times.steps);
    writer.member("totalMs", times.total);
    writer.member("longestStepMs", times.longest);
    writer.key("stateMs");
    writer.beginObject();
    for (int32_t s = 0; s < 5; ++s)
        writer.member(kStateNames[s], preview.getStateMilliseconds(s));
    writer.endObject();
    writer.endObject();
    out << writer.getText() << '\n';
}

int runPreviews(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    std::string path;
    std::string folder;
    if (!parseRequest(arguments, path, folder))
        return toolUsageError(previewsCommand(), err);
    StylusProjectPtr project(new StylusProject());
    std::string reason;
    std::vector<std::string> warnings;
    if (!loadToolProject(path, *project, reason, warnings)) {
        for (const std::string& warning : warnings)
            err << "taleloom-tool: warning: " << warning << '\n';
        return toolInputError(reason, err);
    }
    Tape& tape = *project->getTape();
    if (KDirectory* actors = project->getActorsDirectory()) {
        ToolMessages messages;
        loadTapeActors(tape, *actors);
        for (const std::string& line : messages.getLines())
            warnings.push_back(path + ": " + line);
    }
    for (const std::string& warning : warnings)
        err << "taleloom-tool: warning: " << warning << '\n';
    PreviewActorStage stage;
    TapePreviewPtr preview(new TapePreview());
    preview->setStage(&stage);
    preview->setTape(&tape);
    StepTimes times = buildAll(*preview);
    if (!writeThumbnails(*preview, tape.getCount(), folder, reason))
        return toolInputError(reason, err);
    printTimes(out, *preview, tape.getCount(), times);
    return kToolSucceeded;
}

} // namespace

ToolCommand previewsCommand() { return { "previews", "PROJECT.TPD -o DIR", &runPreviews }; }

#include "app/StoryExport.h"

#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "kernel/KChildProcess.h"
#include "kernel/KFileReference.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "windowing/KAlert.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KProgressDialog.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr const char* kToolName = "taleloom-tool";
constexpr const char* kWarningPrefix = "taleloom-tool: warning: ";
constexpr const char* kErrorPrefix = "taleloom-tool: ";
constexpr int kPollMilliseconds = 40;
// A child that closed its output, or was asked to stop, ends at once; after
// this it is killed.
constexpr int kStopMilliseconds = 10000;

std::string utf8(const KString& text) { return KTextCodec::toUtf8(text); }

std::string programFolder()
{
    std::error_code failed;
    fs::path self = fs::read_symlink("/proc/self/exe", failed);
    return failed ? std::string() : self.parent_path().string();
}

// "progress DONE TOTAL"; false for any other line.
bool parseProgress(const std::string& line, int64_t& done, int64_t& total)
{
    std::istringstream in(line);
    std::string word;
    return (in >> word >> done >> total) && word == "progress";
}

// What the child said on its error output: the warnings, and its last
// complaint.
void readComplaints(const std::string& errors, StoryExport::Outcome& outcome)
{
    std::istringstream lines(errors);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.rfind(kWarningPrefix, 0) == 0)
            outcome.warnings.push_back(line.substr(std::string(kWarningPrefix).size()));
        else if (line.rfind(kErrorPrefix, 0) == 0)
            outcome.failure = line.substr(std::string(kErrorPrefix).size());
        else if (!line.empty())
            outcome.failure = line;
    }
}

bool saveFirst(StylusActions& actions)
{
    if (!actions.isUntitled() && !actions.hasChanges())
        return true;
    actions.doSave();
    return !actions.isUntitled() && !actions.hasChanges();
}

bool askTarget(StylusProject& project, StoryExport::Kind kind, KFileReference& target)
{
    KDialogHandler* dialogs = KDialogHandler::current();
    KFileReference* story = project.getFile();
    if (!dialogs || !story)
        return false;
    fs::path storyPath = utf8(story->getNativeText());
    std::string extension = kind == StoryExport::Kind::Epub ? ".epub" : ".mp4";
    fs::path start = storyPath.parent_path().parent_path() / (storyPath.stem().string() + extension);
    target = KFileReference(KPath(KTextCodec::fromUtf8(start.string()), KPath::kHostPlatform));
    KString title = kind == StoryExport::Kind::Epub ? uiText("Export as EPUB") : uiText("Export as Video");
    return dialogs->doSaveDialog(target, title, 0);
}

void tellOutcome(const StoryExport::Outcome& outcome, const std::string& target)
{
    if (outcome.cancelled)
        return;
    if (!outcome.done) {
        alert(uiText("TaleLoom"), uiText("The story could not be exported: %1", KTextCodec::fromUtf8(outcome.failure)));
        return;
    }
    KString text = uiText("The story was exported as %1.", KTextCodec::fromUtf8(fs::path(target).filename().string()));
    if (!outcome.warnings.empty()) {
        text = text + "\n\n" + uiText("Left out:");
        for (const std::string& warning : outcome.warnings)
            text = text + "\n" + KTextCodec::fromUtf8(warning);
    }
    alert(uiText("TaleLoom"), text);
}

} // namespace

std::string StoryExport::toolPath()
{
    if (const char* chosen = std::getenv("TALELOOM_TOOL"); chosen && *chosen)
        return chosen;
    std::string folder = programFolder();
    for (const char* relative : { "", "/../tools/taleloom-tool" }) {
        std::string candidate = folder + relative + "/" + kToolName;
        if (::access(candidate.c_str(), X_OK) == 0)
            return candidate;
    }
    return folder + "/" + kToolName;
}

std::vector<std::string> StoryExport::commandFor(Kind kind, const std::string& story, const std::string& target)
{
    return { toolPath(), kind == Kind::Epub ? "export-epub" : "export-video", story, "-o", target, "--progress" };
}

StoryExport::Outcome StoryExport::runWithProgress(const std::vector<std::string>& command, const KString& title)
{
    Outcome outcome;
    KChildProcess child;
    std::string reason;
    if (!child.start(command, reason)) {
        outcome.failure = reason;
        return outcome;
    }
    KProgressDialogPtr progress(new KProgressDialog());
    progress->begin(title, uiText("Please Wait"), true);
    std::vector<std::string> lines;
    while (child.readLines(lines, kPollMilliseconds)) {
        for (const std::string& line : lines) {
            int64_t done = 0, total = 0;
            if (parseProgress(line, done, total))
                progress->report(done, total);
        }
        lines.clear();
        progress->keepAlive();
        if (progress->isCancelled()) {
            outcome.cancelled = true;
            child.closeOutput();
            break;
        }
    }
    int status = child.finish(kStopMilliseconds);
    progress->end();
    readComplaints(child.getErrors(), outcome);
    outcome.done = !outcome.cancelled && status == 0;
    if (!outcome.done && !outcome.cancelled && outcome.failure.empty())
        outcome.failure = command.empty() ? std::string() : command[0];
    return outcome;
}

void StoryExport::run(Kind kind)
{
    StylusActions* actions = StylusActions::current();
    if (!actions || !actions->getProject())
        return;
    if (StylusWindow* window = StylusWindow::current())
        window->stopEditing();
    if (!saveFirst(*actions))
        return;
    StylusProject& project = *actions->getProject();
    KFileReference target;
    if (!project.getFile() || !askTarget(project, kind, target))
        return;
    std::string story = utf8(project.getFile()->getNativeText());
    std::string path = utf8(target.getNativeText());
    KString title = kind == Kind::Epub ? uiText("Export as EPUB") : uiText("Export as Video");
    tellOutcome(runWithProgress(commandFor(kind, story, path), title), path);
}

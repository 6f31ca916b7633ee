#include "app/RecoveryCopy.h"

#include "app/StylusApplication.h"
#include "kernel/KFile.h"
#include "kernel/KFileSystem.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KTimer.h"

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

RecoveryCopy* gRecovery = nullptr;
bool gSessionEnded = false;

std::string utf8(const KString& text) { return KTextCodec::toUtf8(text); }

fs::path pathOf(const KDirectory& folder) { return fs::path(utf8(folder.getNativeText())); }

std::string readSource(const fs::path& sidecar)
{
    std::ifstream in(sidecar);
    std::string line;
    std::getline(in, line);
    return line;
}

bool writeSource(const fs::path& sidecar, const std::string& source)
{
    std::ofstream out(sidecar, std::ios::trunc);
    out << source << '\n';
    return bool(out);
}

void removeCopy(const fs::path& copy)
{
    std::error_code ignored;
    fs::remove(copy, ignored);
    fs::path sidecar = copy;
    fs::remove(sidecar.replace_extension(".source"), ignored);
}

} // namespace

// Writes the copy on the program's timer.
class RecoveryCopy::Ticker : public KThing {
public:
    explicit Ticker(RecoveryCopy& owner)
        : owner(&owner)
        , timer(new KTimer())
    {
        timer->setTarget(this);
        timer->setInterval(kInterval);
        timer->setRepeat(true);
        timer->start();
    }
    ~Ticker() override
    {
        timer->stop();
        timer->setTarget(nullptr);
    }
    void timerFired(KTimer&) override
    {
        if (StylusApplication* application = StylusApplication::current()) {
            if (StylusProject* project = application->getProject())
                owner->update(*project);
        }
    }

private:
    RecoveryCopy* owner;
    KPtr<KTimer> timer;
};

RecoveryCopy::RecoveryCopy()
    : folder(defaultFolder())
{
    std::ostringstream key;
    key << "Untitled-" << ::getpid() << "-" << std::time(nullptr);
    untitledKey = key.str();
    gRecovery = this;
}

RecoveryCopy::~RecoveryCopy()
{
    if (gRecovery == this)
        gRecovery = nullptr;
}

KDirectory RecoveryCopy::defaultFolder()
{
    KPath data = KFileSystem::get().getUserApplicationDataDirectory().getPath();
    return KDirectory(data.getChildFolder("TaleLoom").getChildFolder("Recovery"));
}

void RecoveryCopy::start(StylusApplication&)
{
    ticker = kAdopt(new Ticker(*this));
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->watchTermination(&onSessionEnd);
}

// The session is ending: keep the work, then end without questions; the
// copy is offered at the next start.
void RecoveryCopy::onSessionEnd(int)
{
    gSessionEnded = true;
    StylusApplication* application = StylusApplication::current();
    if (gRecovery && application && application->getProject())
        gRecovery->update(*application->getProject());
    if (application)
        application->postQuit();
}

std::string RecoveryCopy::keyFor(const StylusProject& project) const
{
    if (!project.hasFile())
        return untitledKey;
    std::string source = utf8(project.getFile()->getNativeText());
    std::ostringstream key;
    key << utf8(project.getFile()->getPath().getName()) << "-" << std::hex << std::hash<std::string>()(source);
    return key.str();
}

KFileReference RecoveryCopy::copyFor(const StylusProject& project) const
{
    return KFileReference(folder.getPath().getChildFile(KTextCodec::fromUtf8(keyFor(project) + ".TPD")));
}

bool RecoveryCopy::update(StylusProject& project)
{
    KFileReference copy = copyFor(project);
    fs::path copyPath(utf8(copy.getNativeText()));
    Tape* tape = project.getTape();
    if (!tape || !tape->isModified()) {
        removeCopy(copyPath);
        return false;
    }
    std::error_code failure;
    fs::create_directories(pathOf(folder), failure);
    KFile target(copy);
    target.setMode(KFileModeMemory);
    target.clearError();
    if (!target.beginAtomicWrite())
        return false;
    project.saveTo(target);
    if (!target.commitAtomicWrite() || target.getError() != 0)
        return false;
    std::string source = project.hasFile() ? utf8(project.getFile()->getNativeText()) : std::string();
    fs::path sidecar = copyPath;
    writeSource(sidecar.replace_extension(".source"), source);
    currentKey = keyFor(project);
    return true;
}

void RecoveryCopy::projectOpened(const KFileReference&) { currentKey.clear(); }

void RecoveryCopy::finish(bool keep)
{
    ticker.clear();
    if (keep || gSessionEnded)
        return;
    StylusApplication* application = StylusApplication::current();
    if (application && application->getProject())
        removeCopy(fs::path(utf8(copyFor(*application->getProject()).getNativeText())));
}

std::vector<RecoveryCopy::Found> RecoveryCopy::findOffers() const
{
    std::vector<Found> offers;
    std::error_code failure;
    for (const auto& entry : fs::directory_iterator(pathOf(folder), failure)) {
        if (entry.path().extension() != ".TPD" || !entry.is_regular_file())
            continue;
        fs::path sidecar = entry.path();
        sidecar.replace_extension(".source");
        std::string source = readSource(sidecar);
        std::error_code timeFailure;
        if (!source.empty() && fs::exists(source, timeFailure)
            && fs::last_write_time(source, timeFailure) >= fs::last_write_time(entry.path(), timeFailure)) {
            // The document was saved after the copy: nothing to offer.
            removeCopy(entry.path());
            continue;
        }
        Found found;
        found.copy = KFileReference(KPath(KTextCodec::fromUtf8(entry.path().string()), KPath::kHostPlatform));
        found.source = source;
        found.name = KTextCodec::fromUtf8(source.empty() ? std::string() : fs::path(source).stem().string());
        offers.push_back(found);
    }
    return offers;
}

bool RecoveryCopy::reopen(const Found& found, StylusProject& into)
{
    if (!into.load(found.copy))
        return false;
    Tape* tape = into.getTape();
    if (!found.source.empty()) {
        into.setFileAndFolders(KFileReference(KPath(KTextCodec::fromUtf8(found.source), KPath::kHostPlatform)));
    } else {
        into.clearFile();
        into.clearDirectory();
        into.clearMediaDirectory();
        if (tape)
            tape->clearMediaDirectory();
    }
    if (tape)
        tape->setModified();
    return true;
}

void RecoveryCopy::discard(const Found& found) { removeCopy(fs::path(utf8(found.copy.getNativeText()))); }

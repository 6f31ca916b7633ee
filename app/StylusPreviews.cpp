#include "app/StylusPreviews.h"
#include "app/NavigationPalette.h"
#include "app/UiText.h"
#include "kernel/KFileReference.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tape/TapeObject.h"
#include "windowing/KApplication.h"
#include "windowing/KProgressDialog.h"

namespace {

StylusPreviews* gPreviews = nullptr;

// Below this many thumbnails a save does not show a progress window.
constexpr int32_t kQuietCount = 40;

} // namespace

StylusPreviews::StylusPreviews()
    : preview(new TapePreview())
{
    gPreviews = this;
    preview->setStage(&stage);
    preview->setProgressListener(&StylusPreviews::reportProgress);
    preview->setIdleSwitch([this](TapePreview&, bool wanted) { setIdle(wanted); });
}

StylusPreviews::~StylusPreviews()
{
    setIdle(false);
    preview->setIdleSwitch({});
    if (gPreviews == this)
        gPreviews = nullptr;
}

StylusPreviews* StylusPreviews::current() { return gPreviews; }

KString StylusPreviews::thumbnailsPath(const StylusProject& project)
{
    KFileReference* file = project.getFile();
    if (!file)
        return KString();
    std::string path = file->getPath().getNativeText().c_str();
    size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return KString();
    std::string name = file->getPath().getName().c_str();
    return KString((path.substr(0, slash + 1) + "." + name + ".previews").c_str());
}

void StylusPreviews::follow(StylusProject* project)
{
    Tape* tape = project ? project->getTape() : nullptr;
    if (tape == preview->getTape())
        return;
    preview->setTape(tape);
    loadedFromFile = false;
    if (project) {
        KString path = thumbnailsPath(*project);
        if (!path.isEmpty())
            loadedFromFile = preview->loadThumbnails(path);
    }
}

void StylusPreviews::followTape(Tape* tape)
{
    if (tape != preview->getTape())
        preview->setTape(tape);
}

void StylusPreviews::requestUpdate() { preview->requestUpdate(); }

void StylusPreviews::setPaused(bool value)
{
    paused = value;
    if (paused)
        setIdle(false);
    else
        preview->requestUpdate();
}

void StylusPreviews::setIdle(bool wanted)
{
    KApplication* application = KApplication::current();
    wanted = wanted && !paused;
    if (!application || wanted == idling)
        return;
    idling = wanted;
    if (wanted)
        application->addIdler(*preview);
    else
        application->removeIdler(*preview);
}

void StylusPreviews::reportProgress(int32_t remaining, int32_t count)
{
    NavigationPalette* navigation = NavigationPalette::current();
    if (!navigation)
        return;
    navigation->setPreviewProgress(remaining, count);
    if (navigation->isShown())
        navigation->getControl().refresh();
}

void StylusPreviews::writeAllAndSave(StylusProject& project)
{
    if (project.getTape() != preview->getTape())
        return;
    Tape& tape = *project.getTape();
    int32_t invalid = 0;
    for (int32_t i = 0; i < tape.getCount(); ++i) {
        if (TapeObject* element = tape.getAt(i); element && !element->isPreviewValid())
            ++invalid;
    }
    KProgressDialogPtr progress;
    if (invalid >= kQuietCount && KApplication::current()) {
        progress = new KProgressDialog();
        progress->begin(uiText("Creating Preview"), uiText("Please Wait"));
    }
    preview->writeAll([&](int32_t done, int32_t count) {
        if (progress)
            progress->report(done, count);
    });
    if (progress)
        progress->end();
    reportProgress(0, tape.getCount());
    KString path = thumbnailsPath(project);
    if (!path.isEmpty())
        preview->saveThumbnails(path);
}

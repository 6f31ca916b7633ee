#include "app/MovieDialog.h"

#include "app/UiText.h"
#include "graphics/KColor.h"
#include "graphics/KImage.h"
#include "kernel/KClass.h"
#include "kernel/KPath.h"
#include "kmultimedia/KMovie.h"
#include "kmultimedia/KMovieSupport.h"
#include "tape/StylusMovie.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeMediaImport.h"
#include "windowing/KAlert.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KPictureNativeControl.h"
#include "windowing/KSliderNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

namespace {

constexpr int32_t kImportId = 20;
constexpr int32_t kPlayId = 21;
constexpr int32_t kStopId = 22;
constexpr int32_t kCentreId = 23;
constexpr int32_t kOriginalSizeId = 24;
constexpr int32_t kStoppableId = 25;
constexpr int32_t kVolumeId = 26;
constexpr int32_t kPreviewId = 27;

} // namespace

K_DEFINE_CLASS(MovieDialog, ElementDialog)

MovieDialog::MovieDialog()
{
    setTitle(uiText("Movie"));
    setBounds(KGraphicRectangle(140, 140, kWidth, kHeight));
}

MovieDialog::~MovieDialog() { stopTrying(); }

KMovie* MovieDialog::getTrialMovie() const { return trial.get(); }

bool MovieDialog::takesElement(const TapeObject& candidate) const
{
    return dynamic_cast<const StylusMovie*>(&candidate) != nullptr;
}

void MovieDialog::makeControls()
{
    const auto& movie = static_cast<const StylusMovie&>(*getElement());
    file = movie.getMovieFile();
    fileText = kAdopt(new KStaticTextNativeControl(KString(), KWideRectangle(16, 16, 300, 20)));
    addControl(*fileText);
    importButton = kAdopt(new KButtonNativeControl(kImportId, uiText("Import"), KWideRectangle(16, 44, 100, 30)));
    playButton = kAdopt(new KButtonNativeControl(kPlayId, uiText("Play"), KWideRectangle(340, 172, 76, 30)));
    stopButton = kAdopt(new KButtonNativeControl(kStopId, uiText("Stop"), KWideRectangle(424, 172, 76, 30)));
    for (auto* button : { importButton.get(), playButton.get(), stopButton.get() })
        addControl(*button);
    bool fresh = isNewElement();
    centreBox = addCheckBox(kCentreId, uiText("Center Movie"), 86, fresh);
    originalSizeBox = addCheckBox(kOriginalSizeId, uiText("Set Original Size"), 112, fresh);
    stoppableBox = addCheckBox(kStoppableId, uiText("Can Be Stopped"), 138, movie.getCanBeStopped());
    volumeSlider = addVolumeSlider(kVolumeId, 16, 172, movie.getVolume());
    preview = kAdopt(new KPictureNativeControl(kPreviewId, KWideRectangle(340, 44, kPreviewWidth, kPreviewHeight)));
    addControl(*preview);
    showFile();
}

KPath MovieDialog::moviePath() const { return tapeMediaPath(getTapeEdited(), file); }

void MovieDialog::showFile()
{
    if (fileText)
        fileText->setText(file.getPath().isEmpty() ? uiText("No movie file") : file.getObjectName());
    if (playButton)
        playButton->setEnabled(!file.getPath().isEmpty());
    showPoster();
}

// The film's first frame, fitted into the picture.
void MovieDialog::showPoster()
{
    if (!preview)
        return;
    screen = kAdopt(new KImage(KGraphicSize(kPreviewWidth, kPreviewHeight)));
    screen->getDevice().fillRectangle(KGraphicRectangle(0, 0, kPreviewWidth, kPreviewHeight), KColor(KColor::Black));
    StylusMoviePtr probe(new StylusMovie());
    probe->setFile(KFileReference(moviePath()));
    KImagePtr first;
    if (!file.getPath().isEmpty() && probe->getFirstFrame(first)) {
        KGraphicRectangle bounds = first->getBounds();
        KGraphicSize fitted
            = fittedSize(KGraphicSize(bounds.width, bounds.height), KGraphicSize(kPreviewWidth, kPreviewHeight));
        KGraphicRectangle place(0, 0, fitted.width, fitted.height);
        place.centreIn(KGraphicRectangle(0, 0, kPreviewWidth, kPreviewHeight));
        first->drawIn(screen->getDevice(), place);
    }
    preview->setPicture(*screen);
}

KGraphicSize MovieDialog::naturalSize() const
{
    StylusMoviePtr probe(new StylusMovie());
    probe->setFile(KFileReference(moviePath()));
    KImagePtr first;
    if (file.getPath().isEmpty() || !probe->getFirstFrame(first))
        return KGraphicSize();
    KGraphicRectangle bounds = first->getBounds();
    return KGraphicSize(bounds.width, bounds.height);
}

bool MovieDialog::takeFile(const KFileReference& chosen)
{
    if (!KMovieSupport::isMovieExtension(chosen.getPath().getExtension().c_str())) {
        alert(getTitle(), uiText("Unsupported Format!"));
        return false;
    }
    KFileReference imported;
    if (!importIntoTapeMedia(chosen, imported))
        return false;
    stopTrying();
    file = imported;
    showFile();
    return true;
}

void MovieDialog::importFile()
{
    KFileReference chosen;
    if (askImportFile(chosen))
        takeFile(chosen);
}

// The film plays in the picture, at the volume the slider shows.
void MovieDialog::play()
{
    stopTrying();
    if (file.getPath().isEmpty() || !screen)
        return;
    trial = kAdopt(new KMovie());
    trial->setFile(KFileReference(moviePath()));
    trial->setTargetDevice(screen->getDevice());
    trial->setRectangle(KGraphicRectangle(0, 0, kPreviewWidth, kPreviewHeight));
    trial->setVolume(volumeOfSlider(volumeSlider->getIntegerValue(), 1.0));
    KPictureNativeControl* shown = preview.get();
    KImage* frames = screen.get();
    trial->setFrameHandler([shown, frames](const KGraphicRectangle&) { shown->setPicture(*frames); });
    trial->play();
}

void MovieDialog::stopTrying()
{
    if (!trial)
        return;
    KMoviePtr ending = trial;
    trial.clear();
    ending->setFrameHandler(nullptr);
    ending->stop();
    ending->unload();
}

KEventReturn MovieDialog::doControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    if (importButton && source == importButton.get())
        importFile();
    else if (playButton && source == playButton.get())
        play();
    else if (stopButton && source == stopButton.get())
        stopTrying();
    else
        return ElementDialog::doControlAction(event);
    return 1;
}

KString MovieDialog::refusal() const
{
    if (file.getPath().isEmpty())
        return uiText("Please Select A Movie File.");
    return KString();
}

void MovieDialog::applyValues()
{
    auto& movie = static_cast<StylusMovie&>(*getElement());
    if (!(movie.getMovieFile().getPath() == file.getPath()))
        movie.setFile(file);
    movie.setCanBeStopped(stoppableBox->isChecked());
    movie.setVolume(volumeOfSlider(volumeSlider->getIntegerValue(), movie.getVolume()));
    KGraphicRectangle bounds = movie.getBounds();
    Tape* tape = getTapeEdited();
    KGraphicSize page = tape ? tape->getPageSize() : KGraphicSize();
    if (page.isEmpty())
        page = TapeHost::get().newDocumentPageSize();
    if (originalSizeBox->isChecked() || bounds.isEmpty()) {
        KGraphicSize natural = fittedSize(naturalSize(), page);
        if (!natural.isEmpty()) {
            bounds.width = natural.width;
            bounds.height = natural.height;
        } else if (bounds.isEmpty()) {
            // A film that cannot be opened here still gets a place to play.
            bounds.width = int16_t(page.width / 2);
            bounds.height = int16_t(page.height / 2);
        }
    }
    if (centreBox->isChecked())
        bounds.centreIn(KGraphicRectangle(0, 0, page.width, page.height));
    movie.setBounds(bounds);
}

#include "app/SoundDialog.h"

#include "app/ProjectFiles.h"
#include "app/StylusActions.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KDirectory.h"
#include "kernel/KPath.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSoundSupport.h"
#include "tape/StylusSound.h"
#include "tape/Tape.h"
#include "tape/TapeMediaImport.h"
#include "windowing/KAlert.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KSliderNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

namespace {

constexpr int32_t kImportId = 20;
constexpr int32_t kRecordId = 21;
constexpr int32_t kPlayId = 22;
constexpr int32_t kStopId = 23;
constexpr int32_t kWaitId = 24;
constexpr int32_t kVolumeId = 25;

bool isInFolder(const KFileReference& file, const KDirectory* folder)
{
    return folder && file.getPath().getParent() == folder->getPath();
}

} // namespace

bool importIntoMedia(const KFileReference& chosen, KDirectory* media, const KString& title, KFileReference& imported)
{
    if (!media || isInFolder(chosen, media)) {
        imported = chosen;
        return true;
    }
    bool reused = false;
    if (!importMediaFile(chosen, *media, imported, reused)) {
        alert(title, uiText("Error Copying File"));
        return false;
    }
    if (reused)
        alert(title, uiText("File already in project"));
    return true;
}

K_DEFINE_CLASS(SoundDialog, ElementDialog)

SoundDialog::SoundDialog()
{
    setTitle(uiText("Sound"));
    setBounds(KGraphicRectangle(140, 140, kWidth, kHeight));
}

SoundDialog::~SoundDialog() { stopTrying(); }

bool SoundDialog::takesElement(const TapeObject& candidate) const
{
    return dynamic_cast<const StylusSound*>(&candidate) != nullptr;
}

void SoundDialog::makeControls()
{
    const auto& sound = static_cast<const StylusSound&>(*getElement());
    file = sound.getFile();
    fileText = kAdopt(new KStaticTextNativeControl(KString(), KWideRectangle(16, 16, 388, 20)));
    addControl(*fileText);
    importButton = kAdopt(new KButtonNativeControl(kImportId, uiText("Import"), KWideRectangle(16, 44, 80, 22)));
    recordButton = kAdopt(new KButtonNativeControl(kRecordId, uiText("Record"), KWideRectangle(102, 44, 80, 22)));
    playButton = kAdopt(new KButtonNativeControl(kPlayId, uiText("Play"), KWideRectangle(236, 44, 80, 22)));
    stopButton = kAdopt(new KButtonNativeControl(kStopId, uiText("Stop"), KWideRectangle(322, 44, 80, 22)));
    for (auto* button : { importButton.get(), recordButton.get(), playButton.get(), stopButton.get() })
        addControl(*button);
    waitBox = kAdopt(new KCheckBoxNativeControl(kWaitId, uiText("Wait Until Finished"), KWideRectangle(16, 80, 250, 22),
                                                sound.getWaitForEnd()));
    addControl(*waitBox);
    volumeSlider = addVolumeSlider(kVolumeId, 16, 112, sound.getVolume());
    showFile();
}

void SoundDialog::showFile()
{
    if (fileText)
        fileText->setText(file.getPath().isEmpty() ? uiText("No sound file") : file.getObjectName());
    if (playButton)
        playButton->setEnabled(!file.getPath().isEmpty());
}

KPath SoundDialog::soundPath() const { return tapeMediaPath(getTapeEdited(), file); }

bool SoundDialog::takeFile(const KFileReference& chosen)
{
    if (!KSoundSupport::isSoundExtension(chosen.getPath().getExtension().c_str())) {
        alert(getTitle(), uiText("Unsupported Format!"));
        return false;
    }
    KFileReference imported;
    if (!importIntoTapeMedia(chosen, imported))
        return false;
    stopPlaying();
    file = imported;
    showFile();
    return true;
}

void SoundDialog::importFile()
{
    KFileReference chosen;
    if (askImportFile(chosen))
        takeFile(chosen);
}

void SoundDialog::recordSound()
{
    StylusActions* actions = StylusActions::current();
    if (!actions) {
        beep();
        return;
    }
    stopPlaying();
    KFileReference recorded;
    if (actions->doRecordSound(recorded) && !recorded.getPath().isEmpty())
        takeFile(recorded);
}

void SoundDialog::play()
{
    stopPlaying();
    KPath path = soundPath();
    if (path.isEmpty() || !KFileReference(path).doesExist() || KSoundSupport::availableEngines() == 0) {
        beep();
        return;
    }
    trial = kAdopt(new KSound());
    trial->createFromFile(KFileReference(path));
    if (!trial->load()) {
        trial.clear();
        beep();
        return;
    }
    const auto& sound = static_cast<const StylusSound&>(*getElement());
    trial->setVolume(volumeOfSlider(getVolumePosition(), sound.getVolume()));
    trial->play();
}

void SoundDialog::stopPlaying()
{
    if (!trial)
        return;
    trial->stop();
    trial->unload();
    trial.clear();
}

void SoundDialog::stopTrying() { stopPlaying(); }

bool SoundDialog::getWaitForEnd() const { return waitBox && waitBox->isChecked(); }

int32_t SoundDialog::getVolumePosition() const { return volumeSlider ? volumeSlider->getIntegerValue() : 0; }

KString SoundDialog::refusal() const
{
    return file.getPath().isEmpty() ? uiText("Please Select A Sound File.") : KString();
}

void SoundDialog::applyValues()
{
    auto& sound = static_cast<StylusSound&>(*getElement());
    // A new file lets go of the medium made from the old one; the same
    // file keeps it.
    if (!(sound.getFile().getPath() == file.getPath()))
        sound.setFile(file);
    sound.setWaitForEnd(getWaitForEnd());
    sound.setVolume(volumeOfSlider(getVolumePosition(), sound.getVolume()));
}

KEventReturn SoundDialog::doControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    if (importButton && source == importButton.get())
        importFile();
    else if (recordButton && source == recordButton.get())
        recordSound();
    else if (playButton && source == playButton.get())
        play();
    else if (stopButton && source == stopButton.get())
        stopPlaying();
    else
        return ElementDialog::doControlAction(event);
    return 1;
}

KSound* SoundDialog::getTrialSound() const { return trial.get(); }

#include "app/KSoundHiliteEditorDialog.h"

#include "app/KSoundHiliteLoadDialog.h"
#include "app/KSoundHiliteStrip.h"
#include "app/StylusActions.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileType.h"
#include "kernel/KFileTypeHandler.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSoundHiliteAligner.h"
#include "kmultimedia/KSoundHiliteEditing.h"
#include "kmultimedia/KSoundHiliteFile.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/KSpeechSupport.h"
#include "tape/TapeMediaImport.h"
#include "windowing/KAlert.h"
#include "windowing/KBusyCursor.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KEntryNativeControl.h"
#include "windowing/KScrollBarNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"
#include "windowing/KTimer.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr int32_t kTextId = 20;
constexpr int32_t kSelectId = 21;
constexpr int32_t kRecordId = 22;
constexpr int32_t kUpdateId = 23;
constexpr int32_t kPlayId = 24;
constexpr int32_t kMergeId = 25;
constexpr int32_t kSaveId = 26;
constexpr int32_t kLoadId = 27;
constexpr int32_t kLoopingId = 28;
constexpr int32_t kStripId = 29;
constexpr int32_t kScrollerId = 30;

constexpr int32_t kYes = 2;

KFileTypeID shiFileType()
{
    KFileType* type = KFileTypeHandler::getAssociation(KString(KSoundHiliteFile::kExtension));
    return type ? type->getID() : 0;
}

bool isShiName(const KPath& path)
{
    KString extension = path.getExtension();
    extension.toUpper();
    return extension == KString(KSoundHiliteFile::kExtension);
}

KButtonNativeControl* button(int32_t id, const KString& text, int32_t x, int32_t y)
{
    return new KButtonNativeControl(id, text, KWideRectangle(x, y, 100, 24));
}

} // namespace

K_DEFINE_CLASS(KSoundHiliteEditorDialog, KDialog)

KSoundHiliteEditorDialog::KSoundHiliteEditorDialog()
    : media(new KSoundHiliteMedia())
{
    setTitle(uiText("Sound Highlight Editor"));
    setBounds(KGraphicRectangle(80, 80, kWidth, kHeight));
}

KSoundHiliteEditorDialog::~KSoundHiliteEditorDialog()
{
    stopPlaying();
    if (pollTimer)
        pollTimer->setTarget(nullptr);
}

void KSoundHiliteEditorDialog::prepare(const KString& value, const KDirectory& folder,
                                       const KSoundHiliteMedia* existing, int32_t length)
{
    text = value;
    mediaFolder = folder;
    media = existing ? kAdopt(new KSoundHiliteMedia(*existing)) : kAdopt(new KSoundHiliteMedia());
    media->setText(value);
    for (int32_t i = 0; i < media->getMarkerCount(); ++i)
        media->getMarkerAt(i)->setSelected(false);
    duration = length;
    if (duration <= 0 && !media->getSoundFile().getPath().isEmpty())
        duration = media->measureSound();
}

void KSoundHiliteEditorDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    addControl(*new KStaticTextNativeControl(uiText("Text:"), KWideRectangle(16, 18, 44, 20)));
    textField = kAdopt(new KEntryNativeControl(kTextId, text, KWideRectangle(64, 14, 640, 24)));
    addControl(*textField);
    selectButton = kAdopt(button(kSelectId, uiText("Select..."), 16, 48));
    recordButton = kAdopt(button(kRecordId, uiText("Record..."), 124, 48));
    updateButton = kAdopt(button(kUpdateId, uiText("Update"), 232, 48));
    playButton = kAdopt(button(kPlayId, uiText("Play"), 340, 48));
    mergeButton = kAdopt(button(kMergeId, uiText("Merge"), 448, 48));
    saveButton = kAdopt(button(kSaveId, uiText("Save..."), 16, 214));
    loadButton = kAdopt(button(kLoadId, uiText("Load..."), 124, 214));
    for (auto* each : { selectButton.get(), recordButton.get(), updateButton.get(), playButton.get(), mergeButton.get(),
                        saveButton.get(), loadButton.get() })
        addControl(*each);
    loopingBox
        = kAdopt(new KCheckBoxNativeControl(kLoopingId, uiText("Looping"), KWideRectangle(232, 214, 140, 24), looping));
    addControl(*loopingBox);
    strip = kAdopt(new KSoundHiliteStrip(
        kStripId, KWideRectangle(16, 84, KSoundHiliteStrip::kMinimumWidth, KSoundHiliteStrip::kHeight)));
    addControl(*strip);
    scroller = kAdopt(
        new KScrollBarNativeControl(kScrollerId, KWideRectangle(16, 186, KSoundHiliteStrip::kMinimumWidth, 16)));
    addControl(*scroller);
    clock = kAdopt(new KStaticTextNativeControl(formatClock(0), KWideRectangle(616, 124, 90, 20)));
    addControl(*clock);
    if (!pollTimer) {
        pollTimer = kAdopt(new KTimer());
        pollTimer->setInterval(kPollInterval);
        pollTimer->setRepeat(true);
        pollTimer->setMode(KTimer::Relative);
        pollTimer->setTarget(this);
    }
    showMarkers();
}

void KSoundHiliteEditorDialog::close()
{
    stopPlaying();
    text = getText();
    KDialog::close();
}

// --- State ---------------------------------------------------------------------------

KSoundHiliteMedia& KSoundHiliteEditorDialog::getMedia() const { return *media; }

KSoundHiliteStrip* KSoundHiliteEditorDialog::getStrip() const { return strip.get(); }

KString KSoundHiliteEditorDialog::getText() const { return textField ? textField->getText() : text; }

void KSoundHiliteEditorDialog::setText(const KString& value)
{
    text = value;
    if (textField)
        textField->setText(value);
}

bool KSoundHiliteEditorDialog::isPlaying() const { return player && player->isPlaying(); }

void KSoundHiliteEditorDialog::setLooping(bool on)
{
    looping = on;
    if (loopingBox)
        loopingBox->setChecked(on);
}

bool KSoundHiliteEditorDialog::isLooping() const { return loopingBox ? loopingBox->isChecked() : looping; }

KString KSoundHiliteEditorDialog::getClockText() const { return clock ? clock->getText() : formatClock(0); }

KString KSoundHiliteEditorDialog::formatClock(int32_t milliseconds)
{
    int32_t hundredths = std::max(milliseconds, 0) / 10;
    char shown[32];
    std::snprintf(shown, sizeof shown, "%02d:%02d:%02d", hundredths / 6000, hundredths / 100 % 60, hundredths % 100);
    return KString(shown);
}

std::vector<KString> KSoundHiliteEditorDialog::shiFilesIn(const KDirectory& folder)
{
    std::vector<KString> names;
    if (folder.getPath().isEmpty() || !folder.doesExist())
        return names;
    for (const auto& entry : folder.getFiles()) {
        if (isShiName(entry->getPath()))
            names.push_back(entry->getObjectName());
    }
    return names;
}

void KSoundHiliteEditorDialog::showMarkers()
{
    if (!strip)
        return;
    strip->setMedia(media.get());
    strip->setDuration(duration);
    if (scroller) {
        int32_t most = strip->getMaximumOffset();
        scroller->setRange(0, most);
        scroller->setPage(KSoundHiliteStrip::kMinimumWidth);
        scroller->setEnabled(most > 0);
        strip->setOffset(scroller->getIntegerValue());
    }
    strip->draw();
}

void KSoundHiliteEditorDialog::showClock(int32_t milliseconds)
{
    if (clock)
        clock->setText(formatClock(milliseconds));
}

bool KSoundHiliteEditorDialog::confirmClear(const KString& question)
{
    return media->getMarkerCount() == 0 || askYesNo(uiText("Warning!"), question) == kYes;
}

// --- Sound ---------------------------------------------------------------------------

void KSoundHiliteEditorDialog::setSound(const KFileReference& file)
{
    stopPlaying();
    media->setSoundFile(file);
    media->clearMarkers();
    duration = media->measureSound();
    lastPlacing = Placing::None;
    showMarkers();
}

void KSoundHiliteEditorDialog::selectSound()
{
    stopPlaying();
    if (!confirmClear(uiText("Selecting a new sound will clear any edited markers. Are you sure you want to proceed?")))
        return;
    KDialogHandler* dialogs = KDialogHandler::current();
    KFileReference chosen(mediaFolder.getPath().getChildFile(KString("x")));
    if (!dialogs || !dialogs->doOpenDialog(chosen, uiText("Select Sound"), KFileTypeID(0)))
        return;
    if (!KSoundSupport::isSoundExtension(chosen.getPath().getExtension().c_str())) {
        beep();
        return;
    }
    KFileReference imported = chosen;
    KDirectory folder = mediaFolder;
    if (!folder.getPath().isEmpty() && !importMediaFile(chosen, folder, imported)) {
        beep();
        return;
    }
    setSound(imported);
}

void KSoundHiliteEditorDialog::recordSound()
{
    stopPlaying();
    if (!confirmClear(uiText("Recording a new sound will clear any edited markers. Are you sure you want to proceed?")))
        return;
    StylusActions* actions = StylusActions::current();
    KFileReference recorded;
    if (!actions) {
        beep();
        return;
    }
    if (actions->doRecordSound(recorded))
        setSound(recorded);
}

// --- Markers -------------------------------------------------------------------------

void KSoundHiliteEditorDialog::updateMarkers()
{
    stopPlaying();
    if (!confirmClear(uiText("Updating will clear any edited markers. Are you sure you want to proceed?")))
        return;
    media->setText(getText());
    lastPlacing = Placing::None;
    if (duration <= 0 && !media->getSoundFile().getPath().isEmpty())
        duration = media->measureSound();
    if (!media->getText().isEmpty() && media->getSoundFile().doesExist() && KSpeechSupport::hasEngine()) {
        KBusyCursor busy;
        if (KSoundHiliteAligner::update(*media, duration, KString()) == KSoundHiliteAligner::Result::Aligned) {
            lastPlacing = Placing::Voice;
            showMarkers();
            return;
        }
    }
    if (KSoundHiliteEditing::update(*media, duration) == KSoundHiliteEditing::UpdateResult::NoDuration) {
        alert(KSoundHiliteEditing::noDurationCaption(), KSoundHiliteEditing::noDurationText());
        return;
    }
    lastPlacing = Placing::RuleOfThree;
    showMarkers();
}

void KSoundHiliteEditorDialog::mergeMarkers()
{
    int32_t first = -1;
    int32_t last = -1;
    switch (KSoundHiliteEditing::checkMerge(*media, first, last)) {
    case KSoundHiliteEditing::MergeCheck::NotContiguous:
        alert(KSoundHiliteEditing::notContiguousCaption(), KSoundHiliteEditing::notContiguousText());
        return;
    case KSoundHiliteEditing::MergeCheck::NothingToMerge:
        beep();
        return;
    case KSoundHiliteEditing::MergeCheck::Ready:
        break;
    }
    if (askYesNo(uiText("Merging..."),
                 uiText("Are you sure you want to merge the selected markers? This operation is not undoable."))
        != kYes)
        return;
    stopPlaying();
    KSoundHiliteEditing::merge(*media, first, last);
    showMarkers();
}

// --- Playing -------------------------------------------------------------------------

void KSoundHiliteEditorDialog::startPlaying()
{
    media->setText(getText());
    if (media->getMarkerCount() == 0) {
        beep();
        return;
    }
    player = kAdopt(new KSoundHiliteMedia(*media));
    player->getMediaFlags().set(KAbstractMedia::WordFeedback);
    player->addTarget(*this);
    player->play();
    if (!player->isPlaying()) {
        player->removeTarget(*this);
        player.clear();
        beep();
        return;
    }
    if (playButton)
        playButton->setText(uiText("Stop"));
    if (pollTimer)
        pollTimer->start();
}

void KSoundHiliteEditorDialog::stopPlaying()
{
    if (pollTimer)
        pollTimer->stop();
    if (!player)
        return;
    KSoundHiliteMediaPtr stopping = player;
    player.clear();
    stopping->removeTarget(*this);
    stopping->stop();
    stopping->unload();
    if (playButton)
        playButton->setText(uiText("Play"));
    if (strip)
        strip->clearSelection();
}

void KSoundHiliteEditorDialog::togglePlay()
{
    if (player)
        stopPlaying();
    else
        startPlaying();
}

void KSoundHiliteEditorDialog::wordHeard(int32_t wordStart)
{
    for (int32_t i = 0; i < media->getMarkerCount(); ++i) {
        if (media->getMarkerAt(i)->getWordStart() != wordStart)
            continue;
        if (strip) {
            strip->selectOnly(i);
            strip->reveal(i);
            if (scroller)
                scroller->setValue(strip->getOffset());
        }
        return;
    }
}

KEventReturn KSoundHiliteEditorDialog::handleEvent(KEvent& event)
{
    auto* feedback = dynamic_cast<KMediaFeedbackEvent*>(&event);
    if (!feedback)
        return KDialog::handleEvent(event);
    if (!player || feedback->getSource() != player.get())
        return 1;
    KVariable* start = feedback->getValue(KMediaFeedbackEvent::kWordStart);
    if (start && start->getLong() != -1)
        wordHeard(start->getLong());
    if (KVariable* elapsed = feedback->getValue(KMediaFeedbackEvent::kElapsedTime))
        showClock(elapsed->getLong());
    return 1;
}

// The end of the sound shows in the player's state, which the media manager
// keeps; looping starts again with the markers as they are now.
void KSoundHiliteEditorDialog::timerFired(KTimer&)
{
    if (!player || player->isPlaying())
        return;
    if (strip)
        strip->clearSelection();
    if (!isLooping()) {
        stopPlaying();
        return;
    }
    stopPlaying();
    startPlaying();
}

// --- Files ---------------------------------------------------------------------------

bool KSoundHiliteEditorDialog::saveTo(const KFileReference& file)
{
    media->setText(getText());
    if (KSoundHiliteFile::save(file, duration, *media))
        return true;
    alert(uiText("Save SHI File"), uiText("The file could not be saved. Please check that the disk is not full."));
    return false;
}

void KSoundHiliteEditorDialog::saveFile()
{
    stopPlaying();
    KDialogHandler* dialogs = KDialogHandler::current();
    if (!dialogs)
        return;
    KString name = media->getSoundFile().getPath().getName();
    if (name.isEmpty())
        name = uiText("Untitled");
    KFileReference file(mediaFolder.getPath().getChildFile(name + "." + KSoundHiliteFile::kExtension));
    if (!dialogs->doSaveDialog(file, uiText("Save SHI File"), shiFileType()))
        return;
    if (!isShiName(file.getPath())) {
        KPath named = file.getPath();
        named.setExtension(KString(KSoundHiliteFile::kExtension));
        file = KFileReference(named);
    }
    saveTo(file);
}

bool KSoundHiliteEditorDialog::loadFrom(const KFileReference& file)
{
    stopPlaying();
    KSoundHiliteMediaPtr loaded(new KSoundHiliteMedia());
    int32_t length = 0;
    if (!KSoundHiliteFile::load(file, length, *loaded)) {
        alert(uiText("Load SHI File"), uiText("The file could not be read: it is damaged or of another kind."));
        return false;
    }
    media = loaded;
    duration = length;
    setText(media->getText());
    for (int32_t i = 0; i < media->getMarkerCount(); ++i)
        media->getMarkerAt(i)->setSelected(false);
    KFileReference sound = media->getSoundFile();
    KDialogHandler* dialogs = KDialogHandler::current();
    if (!sound.getPath().isEmpty() && !sound.doesExist() && dialogs) {
        KFileReference found(
            mediaFolder.getPath().getChildFile(sound.getPath().getName() + "." + sound.getPath().getExtension()));
        if (dialogs->doOpenDialog(found, uiText("Please Relocate Sound"), KFileTypeID(0)))
            media->setSoundFile(found);
    }
    if (duration <= 0 && media->getSoundFile().doesExist())
        duration = media->measureSound();
    lastPlacing = Placing::None;
    showMarkers();
    return true;
}

void KSoundHiliteEditorDialog::loadFile()
{
    stopPlaying();
    std::vector<KString> names = shiFilesIn(mediaFolder);
    if (names.empty()) {
        alert(uiText("Load SHI File"), uiText("No File Found"));
        return;
    }
    KString chosen;
    if (KSoundHiliteLoadDialog::choose(names, chosen))
        loadFrom(KFileReference(mediaFolder.getPath().getChildFile(chosen)));
}

// --- Events --------------------------------------------------------------------------

KEventReturn KSoundHiliteEditorDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton))
        media->setText(getText());
    return KDialog::doDialogAction(buttonId);
}

KEventReturn KSoundHiliteEditorDialog::doControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    struct Command {
        KControl* control;
        void (KSoundHiliteEditorDialog::*run)();
    };
    const Command commands[] = {
        { selectButton.get(), &KSoundHiliteEditorDialog::selectSound },
        { recordButton.get(), &KSoundHiliteEditorDialog::recordSound },
        { updateButton.get(), &KSoundHiliteEditorDialog::updateMarkers },
        { playButton.get(), &KSoundHiliteEditorDialog::togglePlay },
        { mergeButton.get(), &KSoundHiliteEditorDialog::mergeMarkers },
        { saveButton.get(), &KSoundHiliteEditorDialog::saveFile },
        { loadButton.get(), &KSoundHiliteEditorDialog::loadFile },
    };
    for (const Command& command : commands) {
        if (command.control && source == command.control) {
            (this->*command.run)();
            return 1;
        }
    }
    if (scroller && source == scroller.get()) {
        if (strip)
            strip->setOffset(scroller->getIntegerValue());
        return 1;
    }
    if (loopingBox && source == loopingBox.get()) {
        looping = loopingBox->isChecked();
        return 1;
    }
    if (textField && source == textField.get()) {
        text = textField->getText();
        return 1;
    }
    return KDialog::doControlAction(event);
}

bool KSoundHiliteEditorDialog::edit(const KString& text, const KDirectory& mediaFolder,
                                    const KSoundHiliteMedia* existing, int32_t duration, Result& result)
{
    KPtr<KSoundHiliteEditorDialog> dialog(new KSoundHiliteEditorDialog());
    dialog->prepare(text, mediaFolder, existing, duration);
    if (dialog->runModal() != dialog->getButtonId(OkButton))
        return false;
    result.media = &dialog->getMedia();
    result.duration = dialog->getDuration();
    return true;
}

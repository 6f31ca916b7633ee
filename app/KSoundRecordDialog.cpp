#include "app/KSoundRecordDialog.h"

#include "app/KEditSoundNameDialog.h"
#include "app/KLevelMeterControl.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KFileReference.h"
#include "kernel/KTextCodec.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSoundRecorder.h"
#include "project/StylusProject.h"
#include "windowing/KAlert.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KStaticTextNativeControl.h"
#include "windowing/KTimer.h"

#include <cctype>
#include <filesystem>
#include <system_error>

namespace {

constexpr int32_t kRecordId = 20;
constexpr int32_t kPlayId = 21;
constexpr int32_t kStopId = 22;
constexpr int32_t kMeterId = 23;
constexpr int32_t kRowTop = 16;
constexpr int32_t kRowHeight = 20;

namespace fs = std::filesystem;

std::string folded(const std::string& text)
{
    std::string result = text;
    for (char& c : result)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

// The entries of the folder that name the file, whatever their case:
// projects travel on memory sticks that do not tell case apart.
std::vector<fs::path> sameNamed(const std::string& path)
{
    std::vector<fs::path> found;
    fs::path wanted(path);
    std::string name = folded(wanted.filename().string());
    std::error_code failure;
    for (const auto& entry : fs::directory_iterator(wanted.parent_path(), failure)) {
        if (folded(entry.path().filename().string()) == name)
            found.push_back(entry.path());
    }
    return found;
}

KPath hostPath(const std::string& utf8) { return KPath(KTextCodec::fromUtf8(utf8), KPath::kHostPlatform); }

std::string nativeOf(const KPath& path) { return KTextCodec::toUtf8(path.getNativeText()); }

} // namespace

K_DEFINE_CLASS(KSoundRecordDialog, KDialog)

KSoundRecordDialog::KSoundRecordDialog()
    : defaultName(uiText("Recorded Sound"))
    , recorder(new KSoundRecorder())
    , tickTimer(new KTimer())
{
    setTitle(uiText("Record Sound"));
    setBounds(KGraphicRectangle(140, 140, kWidth, kHeight));
    tickTimer->setInterval(kTickInterval);
    tickTimer->setRepeat(true);
    tickTimer->setMode(KTimer::Relative);
    tickTimer->setTarget(this);
    timeText = KString(KSoundRecordSession::formatTime(0).c_str());
}

KSoundRecordDialog::~KSoundRecordDialog()
{
    tickTimer->stop();
    tickTimer->setTarget(nullptr);
    if (session)
        session->cancel();
    stopPlayer();
}

void KSoundRecordDialog::prepare(const KDirectory& folder)
{
    soundFolder = folder;
    std::string where = nativeOf(folder.getPath());
    while (where.size() > 1 && where.back() == '/')
        where.pop_back();
    session = std::make_unique<KSoundRecordSession>(where, makeHooks());
    filePath = hostPath(session->getTakePath());
}

KSoundRecordSession::Hooks KSoundRecordDialog::makeHooks()
{
    KSoundRecordSession::Hooks hooks;
    hooks.startRecording = [this](const std::string& path) {
        std::error_code failure;
        fs::create_directories(fs::path(path).parent_path(), failure);
        return recorder->startRecording(path);
    };
    hooks.stopRecording = [this] { recorder->stopRecording(); };
    hooks.startPlaying = [this](const std::string& path) { return startPlayer(path); };
    hooks.stopPlaying = [this] { stopPlayer(); };
    hooks.exists = [](const std::string& path) { return !sameNamed(path).empty(); };
    hooks.rename = [](const std::string& from, const std::string& to) {
        std::error_code failure;
        // A sound of the name in another case goes too, or there would be
        // two of it on a stick.
        for (const fs::path& old : sameNamed(to)) {
            if (old != fs::path(from))
                fs::remove(old, failure);
        }
        fs::rename(from, to, failure);
        return !failure;
    };
    hooks.remove = [](const std::string& path) {
        std::error_code failure;
        fs::remove(path, failure);
    };
    return hooks;
}

void KSoundRecordDialog::open(OpenMode mode, int32_t standardButtons)
{
    if (!session)
        prepare(folderFor(nullptr));
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    recordButton
        = kAdopt(new KButtonNativeControl(kRecordId, uiText("Record"), KWideRectangle(16, kRowTop, 85, kRowHeight)));
    playButton
        = kAdopt(new KButtonNativeControl(kPlayId, uiText("Play"), KWideRectangle(109, kRowTop, 80, kRowHeight)));
    stopButton
        = kAdopt(new KButtonNativeControl(kStopId, uiText("Stop"), KWideRectangle(197, kRowTop, 80, kRowHeight)));
    timeField = kAdopt(new KStaticTextNativeControl(timeText, KWideRectangle(285, kRowTop, 60, kRowHeight)));
    for (KControl* each : { (KControl*)recordButton.get(), (KControl*)playButton.get(), (KControl*)stopButton.get(),
                            (KControl*)timeField.get() })
        addControl(*each);
    meter = kAdopt(new KLevelMeterControl(kMeterId, KWideRectangle(16, 60, 318, KLevelMeterControl::kHeight)));
    addControl(*meter);
    updateButtons();
}

void KSoundRecordDialog::close()
{
    tickTimer->stop();
    // A take never kept goes; after OK there is none left.
    if (session)
        session->cancel();
    KDialog::close();
}

KSoundRecordSession::State KSoundRecordDialog::getState() const
{
    return session ? session->getState() : KSoundRecordSession::Ready;
}

bool KSoundRecordDialog::hasTake() const { return session && session->hasTake(); }

KFileReference KSoundRecordDialog::getRecordedFile() const { return KFileReference(savedPath); }

KString KSoundRecordDialog::getTimeText() const { return timeText; }

KLevelMeterControl* KSoundRecordDialog::getMeter() const { return meter.get(); }

KSoundRecorder* KSoundRecordDialog::getRecorder() const { return recorder.get(); }

// --- The take ---------------------------------------------------------------------------

void KSoundRecordDialog::record()
{
    if (!session)
        return;
    if (!session->record()) {
        tellFailure();
        updateButtons();
        return;
    }
    showTime(0);
    tickTimer->start();
    updateButtons();
}

void KSoundRecordDialog::stop()
{
    if (!session)
        return;
    bool wasRecording = session->getState() == KSoundRecordSession::Recording;
    session->stop();
    tickTimer->stop();
    if (wasRecording) {
        showTime(recorder->getSeconds());
        if (meter)
            meter->setLevel(0.0f);
    }
    updateButtons();
}

void KSoundRecordDialog::play()
{
    if (!session || !session->play()) {
        beep();
        return;
    }
    showTime(0);
    tickTimer->start();
    updateButtons();
}

bool KSoundRecordDialog::startPlayer(const std::string& path)
{
    stopPlayer();
    player = kAdopt(new KSound());
    if (!player->createFromFile(KFileReference(hostPath(path))))
        return false;
    player->play();
    return player->isPlaying();
}

void KSoundRecordDialog::stopPlayer()
{
    if (!player)
        return;
    KSoundPtr stopping = player;
    player.clear();
    stopping->stop();
    stopping->unload();
}

void KSoundRecordDialog::tellFailure()
{
    switch (recorder->getFailure()) {
    case KSoundRecorder::NoDevice:
        alert(uiText("Record Sound"), uiText("No microphone was found."));
        break;
    case KSoundRecorder::DiskFull:
    case KSoundRecorder::CannotWrite:
        alert(uiText("Record Sound"), uiText("Disk Full!"));
        break;
    default:
        beep();
        break;
    }
}

// The recorder stops by itself when the device goes or the disk fills; what
// it wrote is the take.
void KSoundRecordDialog::follow()
{
    switch (getState()) {
    case KSoundRecordSession::Recording:
        if (recorder->isRecording()) {
            if (meter)
                meter->setLevel(recorder->getLevel());
            showTime(recorder->getSeconds());
            return;
        }
        stop();
        if (recorder->getFailure() == KSoundRecorder::DiskFull || recorder->getFailure() == KSoundRecorder::CannotWrite)
            tellFailure();
        return;
    case KSoundRecordSession::Playing:
        if (player && player->isPlaying()) {
            showTime(player->getElapsed());
            return;
        }
        session->stop();
        tickTimer->stop();
        updateButtons();
        return;
    default:
        tickTimer->stop();
        return;
    }
}

void KSoundRecordDialog::timerFired(KTimer&) { follow(); }

void KSoundRecordDialog::showTime(double seconds)
{
    timeText = KString(KSoundRecordSession::formatTime(seconds).c_str());
    if (timeField && timeField->getText() != timeText)
        timeField->setText(timeText);
}

void KSoundRecordDialog::updateButtons()
{
    KSoundRecordSession::State state = getState();
    if (recordButton)
        recordButton->setEnabled(state != KSoundRecordSession::Recording);
    if (playButton)
        playButton->setEnabled(state == KSoundRecordSession::TakeReady);
    if (stopButton)
        stopButton->setEnabled(state == KSoundRecordSession::Recording || state == KSoundRecordSession::Playing);
    if (KButtonNativeControl* ok = getStandardButton(OkButton))
        ok->setEnabled(hasTake());
}

// --- OK --------------------------------------------------------------------------------

bool KSoundRecordDialog::keepTake()
{
    if (!session)
        return false;
    stop();
    if (!session->hasTake()) {
        beep();
        return false;
    }
    KString name = defaultName;
    for (;;) {
        if (!KEditSoundNameDialog::ask(name))
            return false;
        std::string text = KTextCodec::toUtf8(name);
        KSoundRecordSession::Acceptance answer = session->accept(text, false);
        if (answer == KSoundRecordSession::AskOverwrite) {
            if (askYesNo(uiText("Warning!"),
                         uiText("This sound already exists. Are you sure you want to overwrite it?"))
                != 2)
                continue;
            answer = session->accept(text, true);
        }
        switch (answer) {
        case KSoundRecordSession::Saved:
            savedPath = hostPath(session->getSavedPath());
            setParameter(KString(kResultParameter), KVariable(savedPath.getNativeText()));
            return true;
        case KSoundRecordSession::BadName:
            alert(uiText("New Sound File"), uiText("The sound name contains illegal characters."));
            continue;
        case KSoundRecordSession::SaveFailed:
            alert(uiText("Record Sound"), uiText("The sound could not be saved."));
            return false;
        default:
            return false;
        }
    }
}

KEventReturn KSoundRecordDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton) && !keepTake()) {
        updateButtons();
        return 1;
    }
    return KDialog::doDialogAction(buttonId);
}

KEventReturn KSoundRecordDialog::doControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    if (recordButton && source == recordButton.get()) {
        record();
        return 1;
    }
    if (playButton && source == playButton.get()) {
        play();
        return 1;
    }
    if (stopButton && source == stopButton.get()) {
        stop();
        return 1;
    }
    return KDialog::doControlAction(event);
}

KDirectory KSoundRecordDialog::folderFor(const StylusProject* project)
{
    if (project && project->hasFile() && project->hasMediaDirectory())
        return *project->getMediaDirectory();
    return KDirectory(hostPath(KSoundRecordSession::recordingsFolder(std::string())));
}

bool KSoundRecordDialog::run(const KDirectory& folder, KFileReference& recorded)
{
    KPtr<KSoundRecordDialog> dialog(new KSoundRecordDialog());
    dialog->prepare(folder);
    if (dialog->runModal() != dialog->getButtonId(OkButton))
        return false;
    recorded = dialog->getRecordedFile();
    return true;
}

#pragma once

#include "kernel/KDirectory.h"
#include "kernel/KPath.h"
#include "kernel/KString.h"
#include "kmultimedia/KMultimediaForward.h"
#include "kmultimedia/KSoundRecordSession.h"
#include "project/ProjectForward.h"
#include "windowing/KDialog.h"

#include <memory>

class KButtonNativeControl;
class KFileReference;
class KLevelMeterControl;
class KStaticTextNativeControl;

// Records a sound from the microphone into the sound folder: "Record"
// starts a take (a second take replaces the first), "Stop" ends it or its
// playing, "Play" plays it back; the time shows as MM:SS and the meter the
// input level. OK, which needs a take, asks the name (KEditSoundNameDialog,
// "Recorded Sound" at first), fits it within 26 characters with ".WAV" and
// asks before it replaces a sound of that name; the file is then in the
// parameter "Recorded Sound". Cancel deletes the take.
//
// Without a microphone "Record" says so and leaves no file behind.
class KSoundRecordDialog : public KDialog {
    K_DECLARE_CLASS(KSoundRecordDialog)
public:
    static constexpr int32_t kWidth = 350;
    static constexpr int32_t kHeight = 250;
    // How often the meter and the clock follow the take.
    static constexpr int32_t kTickInterval = 50;
    static constexpr const char* kResultParameter = "Recorded Sound";

    KSoundRecordDialog();
    ~KSoundRecordDialog() override;

    // Takes go into `soundFolder`, which is made when it is missing.
    void prepare(const KDirectory& soundFolder);
    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    void close() override;
    KEventReturn doDialogAction(int32_t buttonId) override;
    KEventReturn doControlAction(KControlActionEvent& event) override;
    // Follows the take or its playing.
    void timerFired(KTimer& timer) override;

    // --- The buttons -----------------------------------------------------------------
    void record();
    void stop();
    void play();
    // OK's work: the name asked, checked and the take moved there. False
    // when the user gave up or the take could not be kept.
    bool keepTake();

    KSoundRecordSession::State getState() const;
    bool hasTake() const;
    const KDirectory& getSoundFolder() const { return soundFolder; }
    // Where the take is recorded before it is named.
    const KPath& getFilePath() const { return filePath; }
    // The named file, after OK.
    KFileReference getRecordedFile() const;
    KString getTimeText() const;
    KLevelMeterControl* getMeter() const;
    KSoundRecorder* getRecorder() const;

    // The project's "Media" folder; for a project never saved, the
    // recordings folder of the user's data.
    static KDirectory folderFor(const StylusProject* project);
    // Runs the dialog modally; true, with the file, when a take was kept.
    static bool run(const KDirectory& soundFolder, KFileReference& recorded);

private:
    KSoundRecordSession::Hooks makeHooks();
    bool startPlayer(const std::string& path);
    void stopPlayer();
    void updateButtons();
    void showTime(double seconds);
    void tellFailure();
    void follow();

    KDirectory soundFolder;
    KPath filePath;
    KPath savedPath;
    KString defaultName;
    std::unique_ptr<KSoundRecordSession> session;
    KSoundRecorderPtr recorder;
    KSoundPtr player;
    KTimerPtr tickTimer;
    KString timeText;
    KPtr<KButtonNativeControl> recordButton;
    KPtr<KButtonNativeControl> playButton;
    KPtr<KButtonNativeControl> stopButton;
    KPtr<KStaticTextNativeControl> timeField;
    KPtr<KLevelMeterControl> meter;
};

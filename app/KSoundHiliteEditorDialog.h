#pragma once

#include "kernel/KDirectory.h"
#include "kernel/KString.h"
#include "kmultimedia/KMultimediaForward.h"
#include "windowing/KDialog.h"

class KButtonNativeControl;
class KCheckBoxNativeControl;
class KEntryNativeControl;
class KScrollBarNativeControl;
class KSoundHiliteStrip;
class KStaticTextNativeControl;

// Where the user makes the markers of a sound highlight: the text, the
// sound ("Select..." picks a file, "Record..." records one), "Update" that
// places a marker for each word, the strip on which the markers are
// dragged to their words, "Merge" that makes one marker of selected
// neighbours, "Play"/"Stop" with "Looping" and a clock, and the SHI files
// ("Save...", "Load...") in the project's media folder.
//
// "Update" places the markers from the voice itself when a speech engine
// and the sound can be read (see KSoundHiliteAligner), and otherwise by the
// rule of three over the sound's length.
//
// The text dialog opens it through edit(), which hands back the markers
// and the sound's length when the user pressed OK.
class KSoundHiliteEditorDialog : public KDialog {
    K_DECLARE_CLASS(KSoundHiliteEditorDialog)
public:
    static constexpr int32_t kWidth = 720;
    static constexpr int32_t kHeight = 290;
    static constexpr int32_t kPollInterval = 50;

    struct Result {
        KSoundHiliteMediaPtr media;
        int32_t duration = 0;
    };
    // How the last "Update" placed the markers.
    enum class Placing : int32_t { None = 0, Voice = 1, RuleOfThree = 2 };

    KSoundHiliteEditorDialog();
    ~KSoundHiliteEditorDialog() override;

    // A copy of `existing` (when given) is what the dialog edits; its
    // sound's length is `duration`, or measured when 0.
    void prepare(const KString& text, const KDirectory& mediaFolder, const KSoundHiliteMedia* existing,
                 int32_t duration);
    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    void close() override;
    KEventReturn doDialogAction(int32_t buttonId) override;
    KEventReturn doControlAction(KControlActionEvent& event) override;
    // The player's word and clock events.
    KEventReturn handleEvent(KEvent& event) override;
    // Polls whether the player still plays.
    void timerFired(KTimer& timer) override;

    // --- The commands ------------------------------------------------------------
    void selectSound();
    void recordSound();
    void updateMarkers();
    void togglePlay();
    void mergeMarkers();
    void saveFile();
    void loadFile();
    // A new sound: its length is measured and the markers go.
    void setSound(const KFileReference& file);
    bool saveTo(const KFileReference& file);
    // Reads an SHI file; a sound that is no longer where it was is asked
    // for under "Please Relocate Sound". False, after telling, when the
    // file cannot be read.
    bool loadFrom(const KFileReference& file);

    KSoundHiliteMedia& getMedia() const;
    int32_t getDuration() const { return duration; }
    KSoundHiliteStrip* getStrip() const;
    KString getText() const;
    void setText(const KString& text);
    bool isPlaying() const;
    void setLooping(bool on);
    bool isLooping() const;
    KString getClockText() const;
    Placing getLastPlacing() const { return lastPlacing; }
    const KDirectory& getMediaFolder() const { return mediaFolder; }

    // Minutes, seconds and hundredths, two digits each: "01:02:03".
    static KString formatClock(int32_t milliseconds);
    // The SHI files of the folder, by name.
    static std::vector<KString> shiFilesIn(const KDirectory& folder);

    // Runs the editor modally on the text of a text element; false when the
    // user cancelled. `mediaFolder` is the project's "Media" folder, where
    // sounds are copied and SHI files are kept.
    static bool edit(const KString& text, const KDirectory& mediaFolder, const KSoundHiliteMedia* existing,
                     int32_t duration, Result& result);

private:
    void showMarkers();
    void stopPlaying();
    void startPlaying();
    void showClock(int32_t milliseconds);
    bool confirmClear(const KString& question);
    void wordHeard(int32_t wordStart);

    KString text;
    KDirectory mediaFolder;
    KSoundHiliteMediaPtr media;
    KSoundHiliteMediaPtr player;
    int32_t duration = 0;
    Placing lastPlacing = Placing::None;
    bool looping = false;
    KTimerPtr pollTimer;
    KPtr<KEntryNativeControl> textField;
    KPtr<KButtonNativeControl> selectButton;
    KPtr<KButtonNativeControl> recordButton;
    KPtr<KButtonNativeControl> updateButton;
    KPtr<KButtonNativeControl> playButton;
    KPtr<KButtonNativeControl> mergeButton;
    KPtr<KButtonNativeControl> saveButton;
    KPtr<KButtonNativeControl> loadButton;
    KPtr<KCheckBoxNativeControl> loopingBox;
    KPtr<KSoundHiliteStrip> strip;
    KPtr<KScrollBarNativeControl> scroller;
    KPtr<KStaticTextNativeControl> clock;
};

#pragma once

#include <functional>
#include <string>

// The steps of the record dialog without its controls: ready, Record ->
// recording, Stop -> take ready, Play -> playing, Stop or the end -> take
// ready. Record again replaces the take; OK needs a take and a name; Cancel
// deletes the take. The dialog gives the recorder, the player and the files
// through the hooks.
class KSoundRecordSession {
public:
    enum State {
        Ready = 1,
        Recording = 2,
        TakeReady = 3,
        Playing = 4,
    };
    enum Acceptance {
        NoTake,
        BadName,
        AskOverwrite, // the name exists: ask, then accept again confirmed
        Saved,
        SaveFailed,
    };
    struct Hooks {
        std::function<bool(const std::string& path)> startRecording;
        std::function<void()> stopRecording;
        std::function<bool(const std::string& path)> startPlaying;
        std::function<void()> stopPlaying;
        std::function<bool(const std::string& path)> exists;
        std::function<bool(const std::string& from, const std::string& to)> rename;
        std::function<void(const std::string& path)> remove;
    };

    static constexpr size_t kMaximumNameLength = 26;
    static constexpr const char* kDefaultName = "Recorded Sound";

    KSoundRecordSession(std::string folder, Hooks hooks);

    State getState() const { return state; }
    bool hasTake() const { return takeExists; }
    const std::string& getTakePath() const { return takePath; }
    const std::string& getSavedPath() const { return savedPath; }

    bool record();
    void stop();
    bool play();
    // The player reached the end of the take.
    void playEnded();
    // Checks the name (as entered, UTF-8), fits it and moves the take there.
    Acceptance accept(const std::string& name, bool overwriteConfirmed);
    void cancel();

    // The name (UTF-8) without blanks at its ends, kept within 26
    // characters, ".WAV" included.
    static std::string fittedName(const std::string& name);
    // A name that stays in the folder and that every file system holds:
    // none of / \\ : * ? " < > | or control characters, no "..", no dot
    // first, not blank.
    static bool isValidName(const std::string& name);
    // MM:SS.
    static std::string formatTime(double seconds);
    // Where takes go: the project's media folder, or, for a project not yet
    // saved, $XDG_DATA_HOME/TaleLoom/Recordings.
    static std::string recordingsFolder(const std::string& projectMediaFolder);

private:
    std::string folder;
    Hooks hooks;
    State state = Ready;
    std::string takePath;
    std::string savedPath;
    bool takeExists = false;
};

#pragma once

#include "kernel/KPreferences.h"
#include "kernel/KThingPtr.h"
#include "tape/TapeHost.h"
#include "windowing/KWindowingForward.h"

#include <memory>
#include <string>
#include <vector>

// The tape's questions answered by the running program: the window
// system's message boxes and choosers, the busy cursor, the media manager
// and the preferences of the group "MainPreferences". The page itself is
// redrawn and stopped by the base's own answers.
//
// Media names refused while a document loads are gathered and told in one
// message box when the event loop is next idle, rather than one box per
// element.
class StylusTapeHost : public TapeHost {
public:
    static constexpr const char* kPreferenceGroup = "MainPreferences";
    // Taken when the native layer cannot tell the screen's height.
    static constexpr int32_t kFallbackScreenHeight = 768;
    // A notice lists at most this many names and counts the rest.
    static constexpr int32_t kMaximumListedNames = 12;

    StylusTapeHost();
    ~StylusTapeHost() override;

    // The program's one host; the application installs it.
    static StylusTapeHost& instance();

    // --- The main window ---------------------------------------------------
    void redrawPage(Tape& tape) override;
    void hideHighlight(bool restore) override;
    void showHighlight(Tape& tape) override;
    void beginInPlaceEdit(Tape& tape, TapeObject& element) override;
    void leaveInPlaceEdit() override;
    void setWindowColour(const KColor& colour) override;
    void showPauseMarks(bool shown) override;
    void showWaitMarks(bool shown) override;
    void stopAction(Tape& tape) override;
    void selectTool(int32_t entry) override;
    void refreshBookmarks() override;
    void refreshThumbnails() override;
    void previewsInvalidated(Tape& tape) override;

    // "LimitActorSize": placed actors stay within 320 by 240.
    bool limitActorSize();
    // --- Preferences -------------------------------------------------------

    bool autoEditCurrentElement() override;
    bool highlightCurrentElement() override;
    KGraphicSize newDocumentPageSize() override;
    // "CustomSpeechSpeed" and "SpeechSpeed".
    double speechSpeed() override;
    int32_t screenHeight() override;
    // Answers from this set (a copy) from now on, e.g. the application's
    // own once it has read or changed its preferences.
    void setPreferences(const KPreferences& preferences);
    // The next question reads the group from the store again.
    void reloadPreferences();

    // --- The user ----------------------------------------------------------

    void beep() override;
    void drawFrameBackground(KGraphicDevice& device, const KGraphicRectangle& area) override;
    void alert(const KString& title, const KString& text) override;
    bool chooseColour(KColor& colour) override;
    // Not built yet: a beep says so.
    void openElementDialog(Tape& tape, TapeObject& element) override;
    void editBookmark(Tape& tape, TapeObject& element) override;
    bool findMissingFile(KFileReference& file, KDirectory& directory, KDirectory* second) override;
    void collectMediaFile(KFileReference& file, KDirectory& from, KDirectory& to) override;
    void refuseMediaName(const KString& name) override;
    // Shows the notice of the refused names now, if there is one.
    void flushNotices();
    bool hasPendingNotice() const { return !refusedNames.empty(); }

    // The engines are looked for once per run of this host.
    void checkSpeechEngine() override;
    void checkMovieEngine() override;
    void checkSoundOutput() override;
    void warnSpeechFailed(const KString& voice) override;
    bool isMouseButtonDown() override;
    void showingMovie(bool on) override;
    bool isShowingMovie() const { return movieShown; }

    // --- Cursor and media --------------------------------------------------

    // Nested pairs show one busy cursor, from the first begin to the last
    // end; an end without its begin changes nothing.
    void beginBusyCursor() override;
    void endBusyCursor() override;
    int32_t getBusyDepth() const { return busyDepth; }
    bool isCursorShown() override;
    void showCursor(bool shown) override;
    void releaseCursor(bool shown) override;
    void pauseAllMedia() override;
    // The program's own pictures, compiled into it.
    bool loadBitmapResource(int16_t id, KImage& image) override;
    void stopAllMedia() override;

protected:
    // The speech engine is taken as present: the program is linked with
    // espeak-ng, whose voice data comes with it.
    virtual bool hasSpeechEngine();
    // The movie support (or the platform) can start a player.
    virtual bool hasMovieEngine();
    // The sound support (or the platform) can play sound files.
    virtual bool hasSoundOutput();

private:
    class NoticeIdler;

    const KPreferences& preferences();
    bool readFlag(const char* key, bool fallback);
    int32_t readInteger(const char* key, int32_t fallback);
    double readReal(const char* key, double fallback);
    // Shows the notice when the loop is next idle; without an application
    // it waits for flushNotices.
    void scheduleNotice();
    void cancelScheduledNotice();
    KString noticeText() const;

    std::unique_ptr<KPreferences> cachedPreferences;
    std::vector<std::string> refusedNames;
    KThingPtr noticeIdler;
    KPtr<KCursorManager> busyCursorManager;
    int32_t busyDepth = 0;
    bool speechWarningGiven = false;
    bool movieWarningGiven = false;
    bool soundWarningGiven = false;
    bool speechFailureWarningGiven = false;
    bool movieShown = false;
};

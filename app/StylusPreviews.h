#pragma once

#include "app/PreviewActorStage.h"
#include "kernel/KString.h"
#include "tape/TapePreview.h"

class StylusProject;

// The program's one thumbnail builder: it follows the tape the main window
// shows, works in the idle time while nothing plays, tells the navigation
// tool how far it has come, and keeps the thumbnails in a file beside the
// document at each save.
class StylusPreviews {
public:
    StylusPreviews();
    ~StylusPreviews();

    static StylusPreviews* current();

    TapePreview& getPreview() { return *preview; }
    // A project was installed: its tape's thumbnails come from the file
    // beside it when that file was written for this very tape.
    void follow(StylusProject* project);
    // A tape the window shows without a project (an actor's frame).
    void followTape(Tape* tape);
    void requestUpdate();
    // Playing takes the idle time; the work goes on when the play ends.
    void setPaused(bool paused);
    // Before a save: every thumbnail finished under a progress window,
    // then written beside the document.
    void writeAllAndSave(StylusProject& project);

    // Whether the thumbnails of the project followed came from its file.
    bool wereLoadedFromFile() const { return loadedFromFile; }

    KImage* getThumbnail(int32_t p) const { return preview->getThumbnail(p); }

    // ".NAME.previews" beside the document, or empty without a file.
    static KString thumbnailsPath(const StylusProject& project);

private:
    void setIdle(bool wanted);
    static void reportProgress(int32_t remaining, int32_t count);

    TapePreviewPtr preview;
    PreviewActorStage stage;
    bool paused = false;
    bool idling = false;
    bool loadedFromFile = false;
};

#pragma once

#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KString.h"
#include "tape/TapeForward.h"

// What a tape needs of the program around it: the main window and its page
// highlight, the palettes, the preferences, the media, the cursor and the
// user's answers. The program installs its own host; until it does, a quiet
// host stands in, which rebuilds the page when asked to redraw it, plays
// the stop action by stopping the tape, and asks the user nothing.
class TapeHost {
public:
    TapeHost() = default;
    virtual ~TapeHost();
    TapeHost(const TapeHost&) = delete;
    TapeHost& operator=(const TapeHost&) = delete;

    // The installed host, or the quiet one.
    static TapeHost& get();
    // Null brings the quiet host back. The host is not owned.
    static void install(TapeHost* host);

    // --- The main window ---------------------------------------------------

    // Makes the page show the tape at its position: rebuilds it and selects
    // the tool of the current element.
    virtual void redrawPage(Tape& tape);
    // Takes the current element's mark away, restoring the page under it
    // when asked to.
    virtual void hideHighlight(bool restore);
    virtual void showHighlight(Tape& tape);
    // In-place editing of the current element (a text, a movie, an image
    // or an actor).
    virtual void beginInPlaceEdit(Tape& tape, TapeObject& element);
    virtual void leaveInPlaceEdit();
    virtual void setWindowColour(const KColor& colour);
    virtual void showPauseMarks(bool shown);
    // The blinking sign that the story waits for the user.
    virtual void showWaitMarks(bool shown);
    // The program's stop action, at the end of a tape that does not loop.
    virtual void stopAction(Tape& tape);
    // The actor editor's background behind a frame tape, drawn into the
    // rectangle by the window's background mode; nothing by default.
    virtual void drawFrameBackground(KGraphicDevice& device, const KGraphicRectangle& area);

    // --- Palettes and menus ------------------------------------------------

    virtual void selectTool(int32_t entry);
    virtual void refreshBookmarks();
    virtual void updateMenuBar();
    virtual void refreshThumbnails();
    // Elements of `tape` lost their thumbnails: the builder starts again.
    virtual void previewsInvalidated(Tape& tape);

    // --- Preferences -------------------------------------------------------

    // "Auto Edit Current Element" and "Highlight Current Element".
    virtual bool autoEditCurrentElement();
    virtual bool highlightCurrentElement();
    // The page size of a new document.
    virtual KGraphicSize newDocumentPageSize();
    virtual int32_t screenHeight();

    // --- The user ----------------------------------------------------------

    virtual void beep();
    virtual void alert(const KString& title, const KString& text);
    // The colour picker; false when the user cancels.
    virtual bool chooseColour(KColor& colour);
    // The element's dialog (a wait, a text, a speech, a pause, a sound, a
    // page transition, a movie or an image).
    virtual void openElementDialog(Tape& tape, TapeObject& element);
    virtual void editBookmark(Tape& tape, TapeObject& element);
    // Asks where a missing media file went. True when the user gave up;
    // otherwise `file` names the new place when it was found.
    virtual bool findMissingFile(KFileReference& file, KDirectory& directory, KDirectory* second);
    // Copies a referred file into the publishing folder.
    virtual void collectMediaFile(KFileReference& file, KDirectory& from, KDirectory& to);
    // A media name read from a document pointed outside the project's
    // folders and was dropped. The quiet host writes one line to stderr.
    virtual void refuseMediaName(const KString& name);
    // Warns once that the speech or the movie engine is missing, if it is.
    virtual void checkSpeechEngine();
    virtual void checkMovieEngine();
    // Warns once that sounds cannot be heard: no sound output is there.
    virtual void checkSoundOutput();
    // Warns once that a speech could not be started although the engine is
    // there (no audio output, or a voice the engine cannot load).
    virtual void warnSpeechFailed(const KString& voice);
    // Whether the mouse button is held down now; a movie that can be
    // stopped ends at a press. The quiet host knows no mouse: false.
    virtual bool isMouseButtonDown();
    // A movie plays on the page (true) or has ended (false): the main
    // window's sprite layer shows the page more often while one is on.
    virtual void showingMovie(bool on);

    // --- Speech -------------------------------------------------------------

    // The speed speeches are given, 0.0 to 1.0; negative for the media's
    // own. The quiet host has no settings: negative.
    virtual double speechSpeed();
    // A text element lit a word of its text while it is read aloud: the
    // word's first character and length in the text. A length of 0 (and a
    // start of -1) tells that the mark was taken away. Nothing by default;
    // a program that records a play listens here.
    virtual void wordLit(TapeObject& element, int32_t wordStart, int32_t wordLength);

    // --- Cursor, media, actors, resources -----------------------------------

    // The mouse cursor on the screen; the quiet host has none to hide.
    virtual bool isCursorShown();
    // A wait for the user shows the cursor and keeps it shown until it
    // lets it go, shown or hidden as it was before.
    virtual void showCursor(bool shown);
    virtual void releaseCursor(bool shown);

    virtual void beginBusyCursor();
    virtual void endBusyCursor();
    virtual void pauseAllMedia();
    virtual void stopAllMedia();
    // A frame tape changed: its actor is marked modified.
    virtual void markActorModified(KThing& actor);
    // Fills an image from a bitmap resource of the program; false when there
    // is none.
    virtual bool loadBitmapResource(int16_t id, KImage& image);
    // The book printer's options, which leave page backgrounds white. A
    // host answers what the printer set, unless it knows better.
    virtual bool printingWithoutColourBackgrounds();
    virtual bool printingWithoutImageBackgrounds();
    static void setBookBackgrounds(bool withoutColour, bool withoutImage);
};

// Shows the busy cursor for a scope.
class TapeBusyCursor {
public:
    TapeBusyCursor() { TapeHost::get().beginBusyCursor(); }
    ~TapeBusyCursor() { TapeHost::get().endBusyCursor(); }
    TapeBusyCursor(const TapeBusyCursor&) = delete;
    TapeBusyCursor& operator=(const TapeBusyCursor&) = delete;
};

// An English key in the user's language.
KString tapeTranslate(const char* key);

#pragma once

#include "graphics/KColor.h"
#include "graphics/KTextBlock.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "kmultimedia/KMultimediaForward.h"
#include "tape/TapeGraphicObject.h"

// A block of styled text on the page, in its bounds. While the story plays
// the text can be read aloud, by a synthetic voice or by a recorded sound
// with the time of each word, and each word is lit in the mark colour as it
// is heard.
//
// The text is laid out at the width of its bounds wherever it is drawn:
// on the page, in a thumbnail, while it plays; a smaller or larger target
// scales it and never wraps it anew, so every view shows the same lines.
//
// Word events come from the element's own medium only, as ranges of the
// plain text of the block (lines joined by one CR), which are the block's
// own character positions. They are gathered between two ticks of the tape
// and drawn on the next tick, so that words that come faster than the tick
// are lit together and none is lost.
//
// Section 1: the graphic element's record, the text block's, the voice's,
// `waitForEnd`, `transparent`, `speaks`, the mark and back colours and
// `marksWords`. Section 2: the volume. Section 3: `usesRecording`.
// Section 4: the length of the recorded sound in milliseconds (32-bit) and
// the recording's record (its markers, its sound's name in the project's
// "Media" folder and its text). Readers skip sections they do not know.
class StylusText : public TapeGraphicObject {
    K_DECLARE_CLASS(StylusText)
public:
    static constexpr bool kDefaultTransparent = false;
    static constexpr bool kDefaultWaitForEnd = true;
    static constexpr bool kDefaultSpeaks = true;
    static constexpr bool kDefaultMarksWords = true;
    static constexpr bool kDefaultUsesRecording = false;
    static constexpr double kDefaultVolume = 1.0;
    // The media's own speed, taken when the settings ask for none.
    static constexpr double kDefaultSpeed = 0.5;
    // A voice tells its last word as its sound ends: the word stays lit at
    // least this long before the text lets the tape go, so that it is seen.
    static constexpr int32_t kLastWordMs = 300;

    // "New Text" in the default style, black on white, read aloud with its
    // words lit in yellow, the tape waiting for the end.
    StylusText();
    // The copy makes its own media when it first plays.
    StylusText(const StylusText& other);
    ~StylusText() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;
    // Word events of the element's own medium; consumed.
    KEventReturn handleEvent(KEvent& event) override;

    void startPlaying() override;
    void playStep() override;
    void stopPlaying() override;
    // Draws over the page in its bounds and refreshes them.
    void drawOnPage() override;
    void drawOn(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target) override;
    // As drawOn, with the characters from `markStart`, `length` of them,
    // marked in the mark colour as when they are read aloud.
    void drawMarked(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target,
                    int32_t start, int32_t length);
    // The whole text marked.
    void drawHighlighted(KGraphicDevice& device, const KGraphicRectangle& source,
                         const KGraphicRectangle& target) override;
    void drawSilhouette(KGraphicDevice& device, const KGraphicRectangle& from, const KGraphicRectangle& to) override;
    void redrawOver() override;
    // About the centre of the bounds; the font sizes follow.
    void scale(double x, double y) override;
    void scale(double factor) override;
    void scaleBetween(const KGraphicRectangle& oldBounds, const KGraphicRectangle& newBounds) override;
    void moveBy(int16_t x, int16_t y) override;
    // The recording's sound file, found by name in the project's "Media".
    bool findMissingMedia(KDirectory& directory, KDirectory* second) override;
    void collectMedia(KDirectory& from, KDirectory& to) override;
    bool replaceMedia(const KFileReference& oldFile, const KFileReference& newFile) override;
    void addMediaName(KStringBag& names) override;
    bool usesMediaNamed(const KString& name) override;
    // A text read aloud, by a voice or a recording, is a stop.
    bool speaks() const override;

    virtual void setTextBlock(const KTextBlock& block);
    // An empty text of one line in the style the text began with.
    virtual void clearTextBlock();

    const KTextBlock& getTextBlock() const { return *textBlock; }
    // The lines joined by one CR each: what is read aloud.
    KString getPlainText() const;

    // The place on the page; the same as setBounds.
    void setRect(const KGraphicRectangle& value) { setBounds(value); }
    // Where a new text goes: centred on a page of the size, 60 % of its
    // width wide and as high as the text laid out at that width.
    void placeCentred(const KGraphicSize& pageSize);

    const KString& getVoice() const { return voice; }
    void setVoice(const KString& value);
    bool isTransparent() const { return transparent; }
    void setTransparent(bool value);
    bool getWaitForEnd() const { return waitForEnd; }
    void setWaitForEnd(bool value);
    // The "Use Speech" flag itself; speaks() tells whether the text is read
    // aloud in any way.
    bool getSpeaks() const { return speaksFlag; }
    void setSpeaks(bool value);
    double getVolume() const { return volume; }
    // Cut to 0.0 .. 1.0; not a number is silence.
    void setVolume(double value);
    const KColor& getMarkColour() const { return markColour; }
    void setMarkColour(const KColor& value);
    const KColor& getBackColour() const { return backColour; }
    void setBackColour(const KColor& value);
    bool getMarksWords() const { return marksWords; }
    void setMarksWords(bool value);
    // A recording wins over the voice when both are on.
    bool getUsesRecording() const { return usesRecording; }
    void setUsesRecording(bool value);

    // The recorded reading: its markers, its sound and its text. The
    // element keeps a copy of what it is given.
    const KSoundHiliteMedia& getRecording() const;
    void setRecording(const KSoundHiliteMedia& value);
    // The length of the recorded sound in milliseconds, as it was measured.
    int32_t getRecordingDuration() const { return recordingDuration; }
    void setRecordingDuration(int32_t milliseconds);
    // Where the recording's sound is read from now (see tapeMediaPath).
    KPath getRecordingSoundPath() const;

    // The main window edits the text in place: meanwhile the element does
    // not draw itself on the page, where the editor stands instead.
    void setEdited(bool value);
    bool isEdited() const { return edited; }

    // --- While playing ------------------------------------------------------

    // The medium that reads the text now, or null.
    KExtendedSpeech* getSpeech() const;
    KSoundHiliteMedia* getRecordingPlayer() const;
    bool isWordPending() const { return wordPending; }
    int32_t getMarkStart() const { return markStart; }
    int32_t getMarkLength() const { return markLength; }
    int32_t getFirstMark() const { return firstMark; }
    // The page under the text kept while a transparent text is read.
    bool keepsSavedPage() const;
    // The laid-out text while playing, or null.
    KTextBlockObject* getTextObject() const;

    // The text laid out at the bounds' width, as every view draws it.
    KTextBlockObjectPtr makeTextObject() const;

private:
    enum class Reader { None, Voice, Recording };

    void resetFields();
    // Which medium reads the text, if any can.
    Reader chooseReader() const;
    bool startVoice();
    bool startRecording();
    void detachMedia();
    void drawBackground(KGraphicDevice& device, const KGraphicRectangle& area);
    void drawPlayingText(TapePage& page, bool marked);
    void drawPendingMark(TapePage& page);
    bool mediumStillReads();
    void finish(Tape& tape);
    void applySpeed();

    KTextBlockPtr textBlock;
    KString voice;
    bool transparent = kDefaultTransparent;
    bool waitForEnd = kDefaultWaitForEnd;
    bool speaksFlag = kDefaultSpeaks;
    double volume = kDefaultVolume;
    KColor markColour;
    KColor backColour;
    bool marksWords = kDefaultMarksWords;
    bool usesRecording = kDefaultUsesRecording;
    KSoundHiliteMediaPtr recording;
    int32_t recordingDuration = 0;
    bool edited = false;

    // While playing.
    KExtendedSpeechPtr speech;
    KSoundHiliteMediaPtr player;
    KImagePtr savedPage;
    KTextBlockObjectPtr textObject;
    bool wordPending = false;
    bool clearPending = false;
    // A mark stands on the page, since the time it was drawn.
    bool markShown = false;
    uint32_t markDrawnAt = 0;
    int32_t markStart = -1;
    int32_t markLength = 0;
    int32_t firstMark = -1;
};

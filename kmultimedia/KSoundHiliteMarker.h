#pragma once

#include "kernel/KString.h"
#include "kernel/KThing.h"
#include "kmultimedia/KMultimediaForward.h"

// When a word of a text begins in a recorded sound: its time in
// milliseconds from the start of the sound, the word's first character in
// the text, its length and the word itself. `selected` is the editor's
// state and is stored with the rest.
//
// Section 1: elapsedTime, wordStart, wordLength (32-bit), the KString record
// of the word, selected (one byte).
class KSoundHiliteMarker : public KThing {
    K_DECLARE_CLASS(KSoundHiliteMarker)
public:
    KSoundHiliteMarker();
    KSoundHiliteMarker(int32_t elapsedTime, int32_t wordStart, const KString& text);
    KSoundHiliteMarker(const KSoundHiliteMarker& other);
    ~KSoundHiliteMarker() override;
    KSoundHiliteMarker& operator=(const KSoundHiliteMarker& other);

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    int32_t getElapsedTime() const { return elapsedTime; }
    void setElapsedTime(int32_t milliseconds) { elapsedTime = milliseconds; }
    int32_t getWordStart() const { return wordStart; }
    void setWordStart(int32_t index) { wordStart = index; }
    int32_t getWordLength() const { return wordLength; }
    void setWordLength(int32_t count) { wordLength = count; }
    const KString& getText() const { return text; }
    // The word's length follows its text.
    void setText(const KString& word);
    bool isSelected() const { return selected; }
    void setSelected(bool on) { selected = on; }

private:
    int32_t elapsedTime = 0;
    int32_t wordStart = 0;
    int32_t wordLength = 0;
    KString text;
    bool selected = false;
};

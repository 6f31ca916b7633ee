#pragma once

#include "kernel/KString.h"
#include "kmultimedia/KMultimediaForward.h"

// One entry of the speech exceptions dictionary: the string itself is the
// word as it is written, the key of the dictionary; `spoken` is what the
// speech engine gets in its place.
//
// Section 1: the KString record of the written form, then that of `spoken`.
// Only the written form takes part in comparisons, so entries order as
// their keys do.
class KSpeechException : public KString {
    K_DECLARE_CLASS(KSpeechException)
public:
    KSpeechException();
    KSpeechException(const KString& written, const KString& spoken);
    KSpeechException(const KSpeechException& other);
    ~KSpeechException() override;
    KSpeechException& operator=(const KSpeechException& other);

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    const KString& getWritten() const { return *this; }
    const KString& getSpoken() const { return spoken; }
    void setSpoken(const KString& text) { spoken = text; }

private:
    KString spoken;
};

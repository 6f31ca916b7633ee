#include "kmultimedia/KSoundHiliteMarker.h"

#include "kernel/KClass.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStreamReading.h"

K_DEFINE_CLASS(KSoundHiliteMarker, KThing)

KSoundHiliteMarker::KSoundHiliteMarker() = default;

KSoundHiliteMarker::KSoundHiliteMarker(int32_t time, int32_t start, const KString& word)
    : elapsedTime(time)
    , wordStart(start)
{
    setText(word);
}

KSoundHiliteMarker::KSoundHiliteMarker(const KSoundHiliteMarker& other)
    : KThing(other)
    , elapsedTime(other.elapsedTime)
    , wordStart(other.wordStart)
    , wordLength(other.wordLength)
    , text(other.text)
    , selected(other.selected)
{
}

KSoundHiliteMarker::~KSoundHiliteMarker() = default;

KSoundHiliteMarker& KSoundHiliteMarker::operator=(const KSoundHiliteMarker& other)
{
    if (this == &other)
        return *this;
    elapsedTime = other.elapsedTime;
    wordStart = other.wordStart;
    wordLength = other.wordLength;
    text = other.text;
    selected = other.selected;
    return *this;
}

KThing* KSoundHiliteMarker::deepCopy() const { return new KSoundHiliteMarker(*this); }

void KSoundHiliteMarker::setText(const KString& word)
{
    text = word;
    wordLength = word.getLength();
}

void KSoundHiliteMarker::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeLong(elapsedTime);
    file.writeLong(wordStart);
    file.writeLong(wordLength);
    text.writeToFile(file, version);
    file.writeBool(selected);
    writer.end();
}

void KSoundHiliteMarker::readFromFile(KFile& file)
{
    *this = KSoundHiliteMarker();
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) {
        elapsedTime = file.readLong();
        wordStart = file.readLong();
        wordLength = file.readLong();
        text.readFromFile(file);
        selected = file.readBool();
    });
}

void KSoundHiliteMarker::describe(KJsonWriter& out) const
{
    out.member("elapsedTime", elapsedTime);
    out.member("wordStart", wordStart);
    out.member("wordLength", wordLength);
    out.member("text", text);
    out.member("selected", selected);
}

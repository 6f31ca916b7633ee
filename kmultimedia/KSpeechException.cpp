#include "kmultimedia/KSpeechException.h"

#include "kernel/KClass.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStreamReading.h"

K_DEFINE_CLASS(KSpeechException, KString)

KSpeechException::KSpeechException() = default;

KSpeechException::KSpeechException(const KString& written, const KString& spokenText)
    : KString(written)
    , spoken(spokenText)
{
}

KSpeechException::KSpeechException(const KSpeechException& other) = default;

KSpeechException::~KSpeechException() = default;

KSpeechException& KSpeechException::operator=(const KSpeechException& other)
{
    if (this == &other)
        return *this;
    KString::operator=(other);
    spoken = other.spoken;
    return *this;
}

KThing* KSpeechException::deepCopy() const { return new KSpeechException(*this); }

void KSpeechException::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    KString::writeToFile(file, version);
    spoken.writeToFile(file, version);
    writer.end();
}

void KSpeechException::readFromFile(KFile& file)
{
    clear();
    spoken.clear();
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) {
        KString::readFromFile(file);
        spoken.readFromFile(file);
    });
}

void KSpeechException::describe(KJsonWriter& out) const
{
    out.member("written", getWritten());
    out.member("spoken", spoken);
}

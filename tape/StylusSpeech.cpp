#include "tape/StylusSpeech.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kmultimedia/KExtendedSpeech.h"
#include "kmultimedia/KSpeech.h"
#include "kmultimedia/KSpeechSupport.h"
#include "tape/StylusSound.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeMediaPlay.h"

#include <algorithm>
#include <cmath>

namespace {

// The one place the element's medium is made, so that a speech with a
// dictionary of its own can take the plain one's place.
KSpeechPtr makeSpeech() { return KSpeechPtr(new KExtendedSpeech()); }

// "SpeechSpeed" values that leave the voice at its own speed.
constexpr double kStoredOwnSpeed = 50.0;
constexpr double kStoredUnset = 65535.0;
constexpr double kStoredScale = 100.0;

KString defaultVoice()
{
    KSpeechSupport* support = KSpeechSupport::current();
    return support ? support->getDefaultVoice() : KString();
}

} // namespace

K_DEFINE_CLASS(StylusSpeech, TapeObject)

StylusSpeech::StylusSpeech()
    : speech(makeSpeech())
    // TRANSLATORS: the text a new speech element says until it is changed.
    , text(tapeTranslate("Hello, I'm talking to you!"))
    , voice(defaultVoice())
{
    setType(SpeechType);
    applySpeed();
    passOnToSpeech();
}

StylusSpeech::StylusSpeech(const StylusSpeech& other)
    : TapeObject(other)
    , speech(makeSpeech())
    , text(other.text)
    , voice(other.voice)
    , waitForEnd(other.waitForEnd)
    , volume(other.volume)
{
    setType(SpeechType);
    applySpeed();
    passOnToSpeech();
}

// A speech still speaking must not go on for an element that is gone.
StylusSpeech::~StylusSpeech()
{
    speech->stop();
    speech->unload();
}

KThing* StylusSpeech::deepCopy() const { return new StylusSpeech(*this); }

KSpeech& StylusSpeech::getSpeech() const { return *speech; }

void StylusSpeech::setText(const KString& value)
{
    text = value;
    speech->setText(text);
    noteChanged();
}

void StylusSpeech::setVoice(const KString& value)
{
    voice = value;
    speech->setVoice(voice);
    noteChanged();
}

void StylusSpeech::setVolume(double value) { volume = tapeClampVolume(value); }

void StylusSpeech::passOnToSpeech()
{
    speech->setText(text);
    speech->setVoice(voice);
    speech->setVolume(volume);
}

double StylusSpeech::speedFromSettings(bool custom, double stored)
{
    if (!custom || !std::isfinite(stored) || stored < 0.0 || stored == kStoredUnset || stored == kStoredOwnSpeed)
        return -1.0;
    return std::clamp(stored / kStoredScale, 0.0, 1.0);
}

void StylusSpeech::applySpeed()
{
    double speed = TapeHost::get().speechSpeed();
    speech->setSpeed(speed < 0.0 || std::isnan(speed) ? kDefaultSpeed : speed);
}

// --- Playing ------------------------------------------------------------------

void StylusSpeech::startPlaying()
{
    Tape* tape = getTape();
    if (!tape)
        return;
    applySpeed();
    TapeHost& host = TapeHost::get();
    if (!KSpeechSupport::hasEngine()) {
        host.checkSpeechEngine();
        tape->clearPlayingObject();
        return;
    }
    speech->stop();
    speech->setVolume(volume);
    speech->setVoice(voice);
    speech->setText(text);
    speech->play();
    if (!speech->isPlaying()) {
        // An empty text has nothing to say; anything else could not start.
        if (text.getLength() != 0)
            host.warnSpeechFailed(voice);
        tape->clearPlayingObject();
        return;
    }
    if (!waitForEnd)
        tape->clearPlayingObject();
}

void StylusSpeech::playStep()
{
    Tape* tape = getTape();
    if (!tape || !waitForEnd)
        return;
    if (!KSpeechSupport::hasEngine()) {
        tape->clearPlayingObject();
        return;
    }
    tapeDriveUnmanaged(*speech);
    if (!tapeMediaStillPlays(*speech))
        tape->clearPlayingObject();
}

// --- Persistence ------------------------------------------------------------------

void StylusSpeech::writeToFile(KFile& out, int32_t version)
{
    KClassWriter writer;
    writer.begin(out, classRecord);
    writer.newSection(1);
    TapeObject::writeToFile(out, version);
    text.writeToFile(out, version);
    voice.writeToFile(out, version);
    out.writeBool(waitForEnd);
    out.writeDouble(volume);
    writer.end();
}

void StylusSpeech::readFromFile(KFile& in)
{
    speech->stop();
    auto readMain = [&](int32_t) {
        TapeObject::readFromFile(in);
        setType(SpeechType);
        text.readFromFile(in);
        voice.readFromFile(in);
        waitForEnd = in.readBool();
        volume = tapeClampVolume(in.readDouble());
    };
    KClassReader::readSections(in, classRecord, { { 1, readMain } });
    passOnToSpeech();
    noteChanged();
}

void StylusSpeech::describe(KJsonWriter& out) const
{
    TapeObject::describe(out);
    out.member("text", text);
    out.member("voice", voice);
    out.member("waitForEnd", waitForEnd);
    out.member("volume", volume);
}

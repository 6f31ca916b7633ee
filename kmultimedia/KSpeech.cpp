#include "kmultimedia/KSpeech.h"

#include "kernel/KClass.h"
#include "kernel/KTextCodec.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSpeechNative.h"
#include "kmultimedia/KSpeechSupport.h"

#include <algorithm>

K_DEFINE_CLASS(KSpeech, KAbstractMedia)

KSpeech::KSpeech()
{
    if (KSpeechSupport* support = KSpeechSupport::current())
        voiceName = support->getDefaultVoice();
}

KSpeech::~KSpeech()
{
    KAbstractMedia::stop();
    disposeNative();
    KAbstractMedia::unload();
}

void KSpeech::setText(const KString& value) { text = value; }

void KSpeech::setVoice(const KString& name)
{
    if (name == voiceName)
        return;
    voiceName = name;
    stop();
    unload();
}

void KSpeech::speak(const KString& voice, const KString& value)
{
    stop();
    setText(value);
    if (text.getLength() == 0)
        return;
    setVoice(voice);
    play();
}

void KSpeech::stopSpeaking() { stop(); }

bool KSpeech::load()
{
    if (isLoaded())
        return true;
    KSpeechSupport* support = KSpeechSupport::current();
    if (!support || !support->isOpen() || support->getVoices().empty())
        return false;
    KSpeechNative* player = KSpeechSupport::engine().createSpeech();
    if (!player)
        return false;
    if (!player->open(renderPath.empty() ? nullptr : renderPath.c_str())) {
        delete player;
        return false;
    }
    setNativeData(player);
    KAbstractMedia::load();
    player->setVolume(getVolume());
    return true;
}

void KSpeech::disposeNative()
{
    delete native();
    setNativeData(nullptr);
}

void KSpeech::unload()
{
    if (getStatus() != Loaded)
        return;
    disposeNative();
    KAbstractMedia::unload();
}

void KSpeech::play()
{
    if (getStatus() == NotLoaded && !load())
        return;
    if (getStatus() != Loaded || text.getLength() == 0 || !native())
        return;
    KSpeechSupport* support = KSpeechSupport::current();
    KSpeechSupport::Choice choice = support ? support->resolve(voiceName) : KSpeechSupport::Choice();
    if (choice.identifier.empty())
        return;
    KString spoken = text;
    if (spoken.getLength() > kMaximumLength)
        spoken = text.left(kMaximumLength);
    KSpeechRequest request;
    request.text = KTextCodec::toUtf8(spoken);
    request.voice = choice.identifier;
    request.female = choice.female;
    request.wordsPerMinute = kSpeechWordsPerMinute(getStoredSpeed());
    cleaner.reset(spoken);
    pending.clear();
    if (!native()->speak(request))
        return;
    KAbstractMedia::play();
}

void KSpeech::restart()
{
    stop();
    play();
}

void KSpeech::stop()
{
    if (getStatus() != Playing && getStatus() != Paused)
        return;
    native()->cancel();
    pending.clear();
    KAbstractMedia::stop();
    wordStart = -1;
    wordLength = -1;
}

void KSpeech::pause()
{
    if (getStatus() != Playing)
        return;
    native()->pause();
    KAbstractMedia::pause();
}

void KSpeech::resume()
{
    if (getStatus() != Paused)
        return;
    native()->resume();
    KAbstractMedia::resume();
}

bool KSpeech::isDonePlaying() { return !native() || (native()->isDone() && pending.empty()); }

void KSpeech::collectWords()
{
    std::vector<KSpeechRawWord> raw;
    native()->takeWords(raw);
    for (const KSpeechRawWord& report : raw) {
        KSpeechWord word;
        if (cleaner.take(report.position, report.audioMs, word))
            pending.push_back(word);
    }
}

// A word is told when playback has reached it: the highlight then falls on
// the word being heard. At the end of the audio the rest is told at once.
void KSpeech::updatePlayback()
{
    if (!native())
        return;
    native()->update();
    collectWords();
    int32_t heard = native()->positionMs();
    bool ended = native()->isDone();
    while (!pending.empty() && (ended || pending.front().audioMs <= heard)) {
        KSpeechWord word = pending.front();
        pending.pop_front();
        deliverWord(word);
    }
}

void KSpeech::deliverWord(const KSpeechWord& word)
{
    wordStart = word.start;
    wordLength = word.length;
    if (!getMediaFlags().test(WordFeedback))
        return;
    auto* event = new KMediaFeedbackEvent();
    event->setValue(KMediaFeedbackEvent::kMediaType, KVariable(KString("Speech")));
    event->setValue(KMediaFeedbackEvent::kWordStart, KVariable(word.start));
    event->setValue(KMediaFeedbackEvent::kWordLength, KVariable(word.length));
    event->setValue(KMediaFeedbackEvent::kElapsedTime, KVariable(word.audioMs));
    sendFeedback(event);
}

void KSpeech::clear()
{
    stop();
    KAbstractMedia::clear();
    disposeNative();
    text = KString();
    voiceName = KString();
    wordStart = -1;
    wordLength = -1;
}

void KSpeech::setVolume(double value)
{
    value = std::clamp(value, 0.0, 1.0);
    KAbstractMedia::setVolume(value);
    if (native())
        native()->setVolume(value);
}

void KSpeech::setSpeed(double value) { KAbstractMedia::setSpeed(std::clamp(value, 0.0, 1.0)); }

double KSpeech::getSpeed() { return getStoredSpeed(); }

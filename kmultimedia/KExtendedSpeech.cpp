#include "kmultimedia/KExtendedSpeech.h"

#include "kernel/KClass.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSpeechExceptionHandler.h"

K_DEFINE_CLASS(KExtendedSpeech, KSpeech)

namespace {

constexpr int32_t kMapGrowth = 512;

} // namespace

KExtendedSpeech::KExtendedSpeech()
    : engine(new KSpeech())
{
    engine->getMediaFlags().set(WordFeedback);
    positionMap.setIsDirect(true);
    positionMap.setGrowSize(kMapGrowth);
}

// The engine may outlive this object in a holder's hands: it must not keep
// reporting here.
KExtendedSpeech::~KExtendedSpeech()
{
    engine->removeTarget(*this);
    engine->stop();
    KAbstractMedia::stop();
    KAbstractMedia::unload();
}

void KExtendedSpeech::setText(const KString& text)
{
    KSpeech::setText(text);
    givenText = text;
    KSpeechRewrite rewrite = KSpeechRewriter(KSpeechExceptionHandler::current()).rewrite(givenText);
    spokenText = rewrite.spoken;
    map = std::move(rewrite.positionMap);
    positionMap.clear();
    for (int32_t position : map)
        positionMap.addDirectData(position);
    engine->setText(spokenText);
}

void KExtendedSpeech::setVoice(const KString& name)
{
    engine->setVoice(name);
    KSpeech::setVoice(name);
}

// The base levels that would open an engine of their own for this object
// are passed over: only the state of KAbstractMedia is kept here.
bool KExtendedSpeech::load()
{
    if (isLoaded())
        return true;
    if (!engine->load())
        return false;
    KAbstractMedia::load();
    return true;
}

void KExtendedSpeech::unload()
{
    if (getStatus() != Loaded)
        return;
    engine->unload();
    KAbstractMedia::unload();
}

void KExtendedSpeech::play()
{
    if (getStatus() == NotLoaded && !load())
        return;
    if (getStatus() != Loaded || spokenText.isEmpty())
        return;
    engine->clearTargets();
    engine->addTarget(*this);
    engine->play();
    if (engine->isPlaying())
        KAbstractMedia::play();
}

void KExtendedSpeech::restart()
{
    stop();
    play();
}

void KExtendedSpeech::stop()
{
    engine->stop();
    if (getStatus() != Playing && getStatus() != Paused)
        return;
    KAbstractMedia::stop();
    setWord(-1, -1);
}

void KExtendedSpeech::pause()
{
    engine->pause();
    KAbstractMedia::pause();
}

void KExtendedSpeech::resume()
{
    engine->resume();
    KAbstractMedia::resume();
}

// An engine that stopped, by the media manager or otherwise, is done.
bool KExtendedSpeech::isDonePlaying()
{
    return (!engine->isPlaying() && !engine->isPaused()) || engine->isDonePlaying();
}

void KExtendedSpeech::updatePlayback() { engine->updatePlayback(); }

void KExtendedSpeech::clear()
{
    stop();
    engine->clear();
    KSpeech::clear();
    givenText.clear();
    spokenText.clear();
    map.clear();
    positionMap.clear();
}

void KExtendedSpeech::setVolume(double value)
{
    engine->setVolume(value);
    KSpeech::setVolume(value);
}

void KExtendedSpeech::setSpeed(double value)
{
    engine->setSpeed(value);
    KSpeech::setSpeed(value);
}

double KExtendedSpeech::getSpeed() { return engine->getSpeed(); }

KEventReturn KExtendedSpeech::handleEvent(KEvent& event)
{
    auto* report = dynamic_cast<KMediaFeedbackEvent*>(&event);
    if (!report || report->getSource() != engine.get())
        return KSpeech::handleEvent(event);
    passWordOn(*report);
    return 1;
}

void KExtendedSpeech::passWordOn(KMediaFeedbackEvent& report)
{
    KVariable* reportedStart = report.getValue(KMediaFeedbackEvent::kWordStart);
    KVariable* reportedLength = report.getValue(KMediaFeedbackEvent::kWordLength);
    int32_t start = 0;
    int32_t length = 0;
    if (!reportedStart || !reportedLength
        || !KSpeechRewriter::mapWord(map, reportedStart->getLong(), reportedLength->getLong(), start, length))
        return;
    setWord(start, length);
    auto* event = new KMediaFeedbackEvent();
    event->setValue(KMediaFeedbackEvent::kMediaType, KVariable(KString("Speech")));
    event->setValue(KMediaFeedbackEvent::kWordStart, KVariable(start));
    event->setValue(KMediaFeedbackEvent::kWordLength, KVariable(length));
    if (KVariable* heard = report.getValue(KMediaFeedbackEvent::kElapsedTime))
        event->setValue(KMediaFeedbackEvent::kElapsedTime, *heard);
    sendFeedback(event);
}

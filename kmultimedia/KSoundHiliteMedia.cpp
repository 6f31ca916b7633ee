#include "kmultimedia/KSoundHiliteMedia.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "windowing/KTimer.h"

#include <algorithm>
#include <cmath>
#include <vector>

K_DEFINE_CLASS(KSoundHiliteMedia, KAbstractMedia)

namespace {

// The bag of markers and its reference to each.
std::vector<KSoundHiliteMarkerPtr> markersOf(const KBag& bag)
{
    std::vector<KSoundHiliteMarkerPtr> found;
    if (bag.getIsDirect())
        return found;
    for (int32_t i = 0; i < bag.getUsedSize(); ++i) {
        if (auto* marker = dynamic_cast<KSoundHiliteMarker*>(bag.getAt(i)))
            found.emplace_back(marker);
    }
    return found;
}

void refill(KBag& bag, const std::vector<KSoundHiliteMarkerPtr>& list)
{
    bag.clear();
    for (const KSoundHiliteMarkerPtr& marker : list)
        bag.add(*marker);
}

} // namespace

KSoundHiliteMedia::KSoundHiliteMedia() { makeTimers(); }

KSoundHiliteMedia::KSoundHiliteMedia(const KSoundHiliteMedia& other)
    : KAbstractMedia()
    , soundFile(other.soundFile)
    , text(other.text)
{
    makeTimers();
    for (const KSoundHiliteMarkerPtr& marker : markersOf(other.markers))
        markers.add(*new KSoundHiliteMarker(*marker));
}

KSoundHiliteMedia::~KSoundHiliteMedia()
{
    stopTimers();
    if (sound) {
        sound->stop();
        sound->unload();
    }
    KAbstractMedia::stop();
    KAbstractMedia::unload();
}

KThing* KSoundHiliteMedia::deepCopy() const { return new KSoundHiliteMedia(*this); }

void KSoundHiliteMedia::makeTimers()
{
    stopwatch = kAdopt(new KTimer());
    stopwatch->setInterval(kStopwatchInterval);
    feedbackTimer = kAdopt(new KTimer());
    feedbackTimer->setInterval(kFeedbackInterval);
    feedbackTimer->setRepeat(true);
    feedbackTimer->setTarget(this);
}

void KSoundHiliteMedia::stopTimers()
{
    feedbackTimer->stop();
    stopwatch->stop();
}

// --- Markers --------------------------------------------------------------------------

KSoundHiliteMarker* KSoundHiliteMedia::getMarkerAt(int32_t index) const
{
    if (index < 0 || index >= markers.getUsedSize() || markers.getIsDirect())
        return nullptr;
    return dynamic_cast<KSoundHiliteMarker*>(markers.getAt(index));
}

void KSoundHiliteMedia::addMarker(KSoundHiliteMarker& marker)
{
    int32_t at = markers.getUsedSize();
    while (at > 0 && getMarkerAt(at - 1)->getElapsedTime() > marker.getElapsedTime())
        --at;
    markers.insertAt(marker, at);
}

void KSoundHiliteMedia::removeMarkerAt(int32_t index)
{
    if (index >= 0 && index < markers.getUsedSize())
        markers.removeAt(index);
}

void KSoundHiliteMedia::clearMarkers() { markers.clear(); }

void KSoundHiliteMedia::sortMarkers()
{
    std::vector<KSoundHiliteMarkerPtr> list = markersOf(markers);
    std::stable_sort(list.begin(), list.end(), [](const KSoundHiliteMarkerPtr& a, const KSoundHiliteMarkerPtr& b) {
        return a->getElapsedTime() < b->getElapsedTime();
    });
    refill(markers, list);
}

// A marker before the sound starts at 0; one whose word lies outside the
// text, or has no length, would light nothing and is dropped; a word that
// runs past the text ends with it.
void KSoundHiliteMedia::repairMarkers()
{
    int32_t length = text.getLength();
    std::vector<KSoundHiliteMarkerPtr> kept;
    for (const KSoundHiliteMarkerPtr& marker : markersOf(markers)) {
        if (marker->getWordStart() < 0 || marker->getWordStart() >= length || marker->getWordLength() <= 0)
            continue;
        marker->setElapsedTime(std::max(0, marker->getElapsedTime()));
        marker->setWordLength(std::min(marker->getWordLength(), length - marker->getWordStart()));
        kept.push_back(marker);
    }
    // A fresh bag: the stream's growth and capacity figures are not to be
    // trusted with the next insertion.
    markers = KBag();
    refill(markers, kept);
    sortMarkers();
}

// --- Stream ---------------------------------------------------------------------------

void KSoundHiliteMedia::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    markers.writeToFile(file, version);
    soundFile.writeToFile(file, version);
    text.writeToFile(file, version);
    writer.end();
}

// Objects of unknown classes among the markers are dropped rather than
// kept as empty slots.
void KSoundHiliteMedia::readFromFile(KFile& file)
{
    markers = KBag();
    soundFile = KFileReference();
    text.clear();
    KClassReader::readSections(file, classRecord,
                               { { 1, [&](int32_t) {
                                      {
                                          KUnknownClassPolicyGuard guard(KClassStreamState::DropObject);
                                          markers.readFromFile(file);
                                      }
                                      soundFile.readFromFile(file);
                                      text.readFromFile(file);
                                  } } });
    repairMarkers();
}

void KSoundHiliteMedia::describe(KJsonWriter& out) const
{
    out.objectMember("markers", &markers);
    out.objectMember("soundFile", &soundFile);
    out.member("text", text);
}

// --- Playing --------------------------------------------------------------------------

void KSoundHiliteMedia::setText(const KString& value) { text = value; }

void KSoundHiliteMedia::setSoundFile(const KFileReference& file)
{
    if (isLoaded()) {
        stop();
        unload();
    }
    soundFile = file;
}

bool KSoundHiliteMedia::load()
{
    if (isLoaded())
        return true;
    KSoundPtr made(new KSound());
    made->createFromFile(soundFile);
    made->load();
    if (made->getStatus() != Loaded)
        return false;
    sound = made;
    KAbstractMedia::load();
    sound->setVolume(getVolume());
    return true;
}

void KSoundHiliteMedia::unload()
{
    if (getStatus() != Loaded)
        return;
    if (sound) {
        sound->unload();
        sound.clear();
    }
    KAbstractMedia::unload();
}

void KSoundHiliteMedia::play()
{
    if (getStatus() == NotLoaded)
        load();
    if (getStatus() != Loaded || text.isEmpty())
        return;
    lastWordStart = -1;
    currentWordStart = -1;
    currentWordLength = -1;
    sound->play();
    stopwatch->start();
    feedbackTimer->start();
    KAbstractMedia::play();
}

void KSoundHiliteMedia::stop()
{
    if (getStatus() != Playing && getStatus() != Paused)
        return;
    // Read before the sound goes back to its start.
    int32_t elapsed = getElapsedTime();
    KAbstractMedia::stop();
    sound->stop();
    stopTimers();
    currentWordStart = -1;
    currentWordLength = -1;
    sendWord(elapsed);
}

void KSoundHiliteMedia::restart()
{
    stop();
    play();
}

// The media manager stops a sound that reached its end before this media's
// turn in the same pass, and rewinds it; a sound that no longer plays is
// therefore done too.
bool KSoundHiliteMedia::isDonePlaying()
{
    if (!sound)
        return false;
    return sound->getStatus() != Playing || sound->isDonePlaying();
}

int32_t KSoundHiliteMedia::getElapsedTime() const
{
    double seconds = 0.0;
    if (sound && sound->isPlaying() && sound->getPosition(seconds))
        return int32_t(std::llround(std::clamp(seconds * 1000.0, 0.0, 2147483647.0)));
    return stopwatch->getElapsed();
}

// The last marker the position has passed is lit; markers of the same time
// give way to the later one.
void KSoundHiliteMedia::updatePlayback()
{
    if (!sound || !sound->isPlaying())
        return;
    int32_t elapsed = getElapsedTime();
    KSoundHiliteMarker* passed = nullptr;
    for (int32_t i = 0; i < getMarkerCount(); ++i) {
        KSoundHiliteMarker* marker = getMarkerAt(i);
        if (marker && elapsed > marker->getElapsedTime())
            passed = marker;
    }
    if (!passed || passed->getWordStart() == lastWordStart)
        return;
    lastWordStart = passed->getWordStart();
    currentWordStart = passed->getWordStart();
    currentWordLength = passed->getWordLength();
    sendWord(elapsed);
}

void KSoundHiliteMedia::sendWord(int32_t elapsed)
{
    auto* event = new KMediaFeedbackEvent();
    event->setValue(KMediaFeedbackEvent::kMediaType, KVariable(KString(kMediaTypeName)));
    event->setValue(KMediaFeedbackEvent::kWordStart, KVariable(currentWordStart));
    event->setValue(KMediaFeedbackEvent::kWordLength, KVariable(currentWordLength));
    event->setValue(KMediaFeedbackEvent::kElapsedTime, KVariable(elapsed));
    sendFeedback(event);
}

void KSoundHiliteMedia::timerFired(KTimer& timer)
{
    if (&timer != feedbackTimer.get() || !getMediaFlags().test(WordFeedback))
        return;
    auto* event = new KMediaFeedbackEvent();
    event->setValue(KMediaFeedbackEvent::kMediaType, KVariable(KString(kMediaTypeName)));
    event->setValue(KMediaFeedbackEvent::kElapsedTime, KVariable(getElapsedTime()));
    sendFeedback(event);
}

void KSoundHiliteMedia::setVolume(double value)
{
    value = std::clamp(value, 0.0, 1.0);
    KAbstractMedia::setVolume(value);
    if (sound)
        sound->setVolume(value);
}

double KSoundHiliteMedia::getDuration() { return sound ? sound->getDuration() : 0.0; }

int32_t KSoundHiliteMedia::measureSound()
{
    double seconds = 0.0;
    if (sound) {
        seconds = sound->getDuration();
    } else {
        KSoundPtr probe(new KSound());
        probe->createFromFile(soundFile);
        if (probe->load())
            seconds = probe->getDuration();
        probe->unload();
    }
    return int32_t(std::llround(std::clamp(seconds * 1000.0, 0.0, 2147483647.0)));
}

KSound* KSoundHiliteMedia::getSound() const { return sound.get(); }

#include "tape/StylusText.h"

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicDeviceState.h"
#include "graphics/KGraphicStateGuard.h"
#include "graphics/KImage.h"
#include "graphics/KTextBlockObject.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KPath.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KExtendedSpeech.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/KSpeechSupport.h"
#include "tape/StylusSound.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeMediaImport.h"
#include "tape/TapeMediaName.h"
#include "tape/TapeMediaPlay.h"
#include "tape/TapePage.h"
#include "windowing/KNativeLayer.h"

#include <algorithm>
#include <cmath>

K_DEFINE_CLASS(StylusText, TapeGraphicObject)

namespace {

// What the word events of the two media say they are.
constexpr const char* kSpeechMediaType = "Speech";

KString defaultVoice()
{
    KSpeechSupport* support = KSpeechSupport::current();
    return support ? support->getDefaultVoice() : KString();
}

KTextBlockPtr newText()
{
    // TRANSLATORS: the text a new text element shows until it is changed.
    return KTextBlockPtr(new KTextBlock(tapeTranslate("New Text")));
}

// A factor that changes nothing unless it is a real, positive number.
double usableFactor(double factor) { return std::isfinite(factor) && factor > 0.0 ? factor : 1.0; }

int16_t clampShort(double value)
{
    if (std::isnan(value))
        return 0;
    return int16_t(std::clamp(std::lround(value), -32768L, 32767L));
}

// Where a rectangle of the page lands when the page's `from` is drawn into
// `to`, scaled when their sizes differ.
KGraphicRectangle mappedInto(const KGraphicRectangle& r, const KGraphicRectangle& from, const KGraphicRectangle& to)
{
    if (from.isEmpty() || (from.width == to.width && from.height == to.height)) {
        KGraphicRectangle moved = r;
        moved.offset(int16_t(to.x - from.x), int16_t(to.y - from.y));
        return moved;
    }
    double sx = double(to.width) / from.width;
    double sy = double(to.height) / from.height;
    int16_t left = clampShort(to.x + (r.x - from.x) * sx);
    int16_t top = clampShort(to.y + (r.y - from.y) * sy);
    int16_t right = clampShort(to.x + (r.x + r.width - from.x) * sx);
    int16_t bottom = clampShort(to.y + (r.y + r.height - from.y) * sy);
    return KGraphicRectangle(left, top, int16_t(right - left), int16_t(bottom - top));
}

} // namespace

StylusText::StylusText()
    : textBlock(newText())
    , voice(defaultVoice())
    , markColour(KColor::Yellow)
    , backColour(KColor::White)
    , recording(new KSoundHiliteMedia())
{
    setType(TextType);
}

StylusText::StylusText(const StylusText& other)
    : TapeGraphicObject(other)
    , textBlock(new KTextBlock(*other.textBlock))
    , voice(other.voice)
    , transparent(other.transparent)
    , waitForEnd(other.waitForEnd)
    , speaksFlag(other.speaksFlag)
    , volume(other.volume)
    , markColour(other.markColour)
    , backColour(other.backColour)
    , marksWords(other.marksWords)
    , usesRecording(other.usesRecording)
    , recording(new KSoundHiliteMedia(*other.recording))
    , recordingDuration(other.recordingDuration)
{
    setType(TextType);
}

// A medium still reading must not report to an element that is gone.
StylusText::~StylusText() { detachMedia(); }

KThing* StylusText::deepCopy() const { return new StylusText(*this); }

// --- Fields ---------------------------------------------------------------------

void StylusText::setTextBlock(const KTextBlock& block)
{
    if (&block != textBlock.get())
        textBlock = KTextBlockPtr(new KTextBlock(block));
    noteChanged();
}

void StylusText::clearTextBlock()
{
    KTextStyle style = textBlock->getStyleAt(0);
    textBlock = KTextBlockPtr(new KTextBlock(KString(), style, textBlock->getAlignment()));
    noteChanged();
}

KString StylusText::getPlainText() const { return textBlock->getPlainText(); }

const KSoundHiliteMedia& StylusText::getRecording() const { return *recording; }

KExtendedSpeech* StylusText::getSpeech() const { return speech.get(); }

KSoundHiliteMedia* StylusText::getRecordingPlayer() const { return player.get(); }

bool StylusText::keepsSavedPage() const { return savedPage.get() != nullptr; }

KTextBlockObject* StylusText::getTextObject() const { return textObject.get(); }

void StylusText::setVoice(const KString& value)
{
    voice = value;
    noteChanged();
}

void StylusText::setTransparent(bool value)
{
    transparent = value;
    noteChanged();
}

void StylusText::setWaitForEnd(bool value)
{
    waitForEnd = value;
    noteChanged();
}

void StylusText::setSpeaks(bool value)
{
    speaksFlag = value;
    noteChanged();
}

void StylusText::setVolume(double value) { volume = tapeClampVolume(value); }

void StylusText::setMarkColour(const KColor& value)
{
    markColour = value;
    noteChanged();
}

void StylusText::setBackColour(const KColor& value)
{
    backColour = value;
    noteChanged();
}

void StylusText::setMarksWords(bool value)
{
    marksWords = value;
    noteChanged();
}

void StylusText::setUsesRecording(bool value)
{
    usesRecording = value;
    noteChanged();
}

void StylusText::setRecording(const KSoundHiliteMedia& value)
{
    if (&value != recording.get())
        recording = KSoundHiliteMediaPtr(new KSoundHiliteMedia(value));
    noteChanged();
}

void StylusText::setRecordingDuration(int32_t milliseconds) { recordingDuration = std::max(0, milliseconds); }

KPath StylusText::getRecordingSoundPath() const { return tapeMediaPath(getTape(), recording->getSoundFile()); }

void StylusText::setEdited(bool value)
{
    if (edited == value)
        return;
    edited = value;
    noteChanged();
}

bool StylusText::speaks() const { return speaksFlag || usesRecording; }

void StylusText::placeCentred(const KGraphicSize& pageSize)
{
    constexpr int32_t kWidthPercent = 60;
    int32_t pageWidth = std::max<int32_t>(1, pageSize.width);
    int32_t pageHeight = std::max<int32_t>(1, pageSize.height);
    auto width = int16_t(std::max(1, pageWidth * kWidthPercent / 100));
    KTextBlockObjectPtr laid(new KTextBlockObject(*textBlock));
    laid->setWidth(width);
    auto height = int16_t(std::clamp(laid->getHeight(), 1, pageHeight));
    setBounds(KGraphicRectangle(int16_t((pageWidth - width) / 2), int16_t((pageHeight - height) / 2), width, height));
}

// --- Drawing ----------------------------------------------------------------------

KTextBlockObjectPtr StylusText::makeTextObject() const
{
    KTextBlockObjectPtr made(new KTextBlockObject(*textBlock));
    made->setWidth(getBounds().width);
    made->setSingleLineMode(KTextBlockObject::SingleLineMarks);
    made->setSelectionColour(markColour);
    made->layout();
    return made;
}

void StylusText::drawBackground(KGraphicDevice& device, const KGraphicRectangle& area)
{
    if (transparent)
        return;
    KGraphicStateGuard guard(device);
    device.setPenMode(KGraphicDeviceState::CopyForeground);
    device.fillRectangle(area, backColour);
}

void StylusText::drawOn(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target)
{
    if (edited)
        return;
    drawMarked(device, source, target, -1, 0);
}

void StylusText::drawMarked(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target,
                            int32_t start, int32_t length)
{
    KGraphicRectangle destination = mappedInto(getBounds(), source, target);
    drawBackground(device, destination);
    KTextBlockObjectPtr laid = makeTextObject();
    if (start >= 0 && length > 0)
        laid->setSelection(start, length);
    laid->drawIn(device, destination);
}

void StylusText::drawOnPage()
{
    TapePage* page = getPage();
    if (!page || edited)
        return;
    KGraphicRectangle bounds = getBounds();
    drawOn(page->getPageDevice(), bounds, bounds);
    page->refresh(bounds);
}

void StylusText::drawHighlighted(KGraphicDevice& device, const KGraphicRectangle& source,
                                 const KGraphicRectangle& target)
{
    KGraphicRectangle destination = mappedInto(getBounds(), source, target);
    drawBackground(device, destination);
    KTextBlockObjectPtr marked = makeTextObject();
    marked->setSelection(0, textBlock->getLength());
    marked->drawIn(device, destination);
}

// A transparent text moves as its letters do, in black; a text on its
// background moves as the rectangle of that background.
void StylusText::drawSilhouette(KGraphicDevice& device, const KGraphicRectangle& from, const KGraphicRectangle& to)
{
    KGraphicRectangle destination = mappedInto(getBounds(), from, to);
    if (transparent) {
        KTextBlockObjectPtr shape = makeTextObject();
        shape->setTextColour(KColor(KColor::Black));
        shape->drawIn(device, destination);
    } else {
        drawBackground(device, destination);
    }
    if (TapePage* page = getPage())
        page->refresh(destination);
}

void StylusText::redrawOver() { drawOnPage(); }

// --- Moving and scaling ------------------------------------------------------------

void StylusText::moveBy(int16_t x, int16_t y)
{
    if (x == 0 && y == 0)
        return;
    KGraphicRectangle moved = getBounds();
    moved.offset(x, y);
    setBounds(moved);
}

// The letters grow by the smaller of the two factors, so that the text
// still fits the rectangle it is scaled into.
void StylusText::scale(double x, double y)
{
    x = usableFactor(x);
    y = usableFactor(y);
    if (x == 1.0 && y == 1.0)
        return;
    KGraphicRectangle bounds = getBounds();
    double cx = bounds.x + bounds.width / 2.0;
    double cy = bounds.y + bounds.height / 2.0;
    int16_t width = std::max<int16_t>(1, clampShort(bounds.width * x));
    int16_t height = std::max<int16_t>(1, clampShort(bounds.height * y));
    KGraphicRectangle scaled(clampShort(cx - width / 2.0), clampShort(cy - height / 2.0), width, height);
    textBlock->scaleFontSizes(std::min(x, y));
    setBounds(scaled);
}

void StylusText::scale(double factor) { scale(factor, factor); }

void StylusText::scaleBetween(const KGraphicRectangle& oldBounds, const KGraphicRectangle& newBounds)
{
    if (oldBounds.width <= 0 || oldBounds.height <= 0)
        return;
    scale(double(newBounds.width) / double(oldBounds.width), double(newBounds.height) / double(oldBounds.height));
}

// --- Playing -------------------------------------------------------------------------

StylusText::Reader StylusText::chooseReader() const
{
    if (usesRecording)
        return Reader::Recording;
    if (speaksFlag)
        return Reader::Voice;
    return Reader::None;
}

void StylusText::applySpeed()
{
    double speed = TapeHost::get().speechSpeed();
    speech->setSpeed(speed < 0.0 || std::isnan(speed) ? kDefaultSpeed : speed);
}

bool StylusText::startVoice()
{
    TapeHost& host = TapeHost::get();
    if (!KSpeechSupport::hasEngine()) {
        host.checkSpeechEngine();
        return false;
    }
    KString text = getPlainText();
    speech = KExtendedSpeechPtr(new KExtendedSpeech());
    speech->getMediaFlags().set(KAbstractMedia::WordFeedback);
    applySpeed();
    speech->setVolume(volume);
    speech->setVoice(voice);
    speech->setText(text);
    speech->addTarget(*this);
    speech->play();
    if (speech->isPlaying())
        return true;
    // An empty text has nothing to say; anything else could not start.
    if (text.getLength() != 0)
        host.warnSpeechFailed(voice);
    detachMedia();
    return false;
}

// A sound that is gone was asked for when the project opened; here it
// passes, as one that cannot be decoded does.
bool StylusText::startRecording()
{
    KPath path = getRecordingSoundPath();
    if (path.isEmpty() || !KFileReference(path).doesExist())
        return false;
    if (KSoundSupport::availableEngines() == 0) {
        TapeHost::get().checkSoundOutput();
        return false;
    }
    player = KSoundHiliteMediaPtr(new KSoundHiliteMedia(*recording));
    player->setSoundFile(KFileReference(path));
    if (player->getText().isEmpty())
        player->setText(getPlainText());
    player->setVolume(volume);
    player->addTarget(*this);
    player->play();
    if (player->getStatus() == KAbstractMedia::Playing)
        return true;
    detachMedia();
    return false;
}

// The element lets go of its media first, so that a medium that goes on
// (the tape's stop silences it later) or that reports its stop does not
// call back.
void StylusText::detachMedia()
{
    if (speech) {
        KExtendedSpeechPtr ending = speech;
        speech.clear();
        ending->removeTarget(*this);
        ending->stop();
        ending->unload();
    }
    if (player) {
        KSoundHiliteMediaPtr ending = player;
        player.clear();
        ending->removeTarget(*this);
        ending->stop();
        ending->unload();
    }
}

void StylusText::drawPlayingText(TapePage& page, bool marked)
{
    if (!textObject)
        return;
    KGraphicDevice& device = page.getPageDevice();
    KGraphicRectangle bounds = getBounds();
    if (savedPage) {
        savedPage->getDevice().copyTo(device, savedPage->getBounds(), bounds);
    } else {
        drawBackground(device, bounds);
    }
    if (marked && markStart >= 0 && markLength > 0)
        textObject->setSelection(markStart, markLength);
    else
        textObject->clearSelection();
    textObject->drawIn(device, bounds);
    page.refresh(bounds);
}

void StylusText::startPlaying()
{
    Tape* tape = getTape();
    if (!tape)
        return;
    // Left reading by a loop or a pause: it starts over.
    detachMedia();
    wordPending = false;
    clearPending = false;
    markStart = -1;
    markLength = 0;
    firstMark = -1;
    markShown = false;
    savedPage.clear();
    TapePage* page = getPage();
    KGraphicRectangle bounds = getBounds();
    Reader reader = chooseReader();
    bool readsAloud = reader == Reader::Recording || (reader == Reader::Voice && KSpeechSupport::hasEngine());
    if (page && transparent && readsAloud && waitForEnd && !bounds.isEmpty()) {
        savedPage = KImagePtr(new KImage(bounds.getSize()));
        if (savedPage->hasImage())
            page->getPageDevice().copyTo(savedPage->getDevice(), bounds, savedPage->getBounds());
        else
            savedPage.clear();
    }
    textObject = makeTextObject();
    if (page) {
        drawPlayingText(*page, false);
        page->refreshSpriteLayer();
    }
    bool started = false;
    if (reader == Reader::Recording)
        started = startRecording();
    else if (reader == Reader::Voice)
        started = startVoice();
    if (!started || !waitForEnd)
        finish(*tape);
}

// A word drawn or cleared is told to the host, which may be recording the
// play.
void StylusText::drawPendingMark(TapePage& page)
{
    if (clearPending) {
        clearPending = false;
        wordPending = false;
        markStart = -1;
        markLength = 0;
        drawPlayingText(page, false);
        if (markShown)
            TapeHost::get().wordLit(*this, -1, 0);
        markShown = false;
        return;
    }
    wordPending = false;
    drawPlayingText(page, true);
    markShown = true;
    markDrawnAt = knsGetTime();
    TapeHost::get().wordLit(*this, markStart, markLength);
}

bool StylusText::mediumStillReads()
{
    if (speech)
        return speech->isPlaying() && !speech->isDonePlaying();
    if (player)
        return player->getStatus() == KAbstractMedia::Playing && !player->isDonePlaying();
    return false;
}

void StylusText::playStep()
{
    Tape* tape = getTape();
    if (!tape)
        return;
    if (!speech && !player) {
        finish(*tape);
        return;
    }
    if (speech)
        tapeDriveUnmanaged(*speech);
    else
        tapeDriveUnmanaged(*player);
    TapePage* page = getPage();
    if (page && marksWords && (wordPending || clearPending))
        drawPendingMark(*page);
    if (mediumStillReads())
        return;
    if (markShown && kTimeDifference(knsGetTime(), markDrawnAt) < kLastWordMs)
        return;
    finish(*tape);
}

void StylusText::finish(Tape& tape)
{
    if (waitForEnd || (!speech && !player))
        stopPlaying();
    if (tape.getPlayingObject() == this)
        tape.clearPlayingObject();
}

// The text is left as it stands without a mark. A text that lets the tape
// go at once keeps reading under what follows and is silenced by the
// tape's stop.
void StylusText::stopPlaying()
{
    TapePage* page = getPage();
    if (page && marksWords && textObject && (markShown || wordPending)) {
        markStart = -1;
        markLength = 0;
        drawPlayingText(*page, false);
        if (markShown)
            TapeHost::get().wordLit(*this, -1, 0);
    }
    markShown = false;
    wordPending = false;
    clearPending = false;
    detachMedia();
    textObject.clear();
    savedPage.clear();
}

// Word events of the element's own medium widen the mark until it is
// drawn; -1 clears it.
KEventReturn StylusText::handleEvent(KEvent& event)
{
    auto* report = dynamic_cast<KMediaFeedbackEvent*>(&event);
    if (!report)
        return TapeGraphicObject::handleEvent(event);
    KThing* source = report->getSource();
    if (!source || (source != speech.get() && source != player.get()))
        return 0;
    KVariable* type = report->getValue(KMediaFeedbackEvent::kMediaType);
    KVariable* start = report->getValue(KMediaFeedbackEvent::kWordStart);
    KVariable* length = report->getValue(KMediaFeedbackEvent::kWordLength);
    if (!type || !start || !length)
        return 1;
    KString kind = type->getString();
    if (kind != KString(kSpeechMediaType) && kind != KString(KSoundHiliteMedia::kMediaTypeName))
        return 1;
    int32_t p = start->getLong();
    int32_t l = length->getLong();
    if (p < 0 || l <= 0) {
        wordPending = false;
        clearPending = true;
        return 1;
    }
    int32_t textLength = textBlock->getLength();
    if (p >= textLength)
        return 1;
    l = std::min(l, textLength - p);
    if (!wordPending) {
        markStart = p;
        firstMark = p;
        markLength = l;
        wordPending = true;
        clearPending = false;
    } else {
        int32_t end = std::max(markStart + markLength, p + l);
        markStart = std::min(markStart, p);
        markLength = end - markStart;
    }
    return 1;
}

// --- Media -----------------------------------------------------------------------------

bool StylusText::findMissingMedia(KDirectory& directory, KDirectory* second)
{
    KFileReference file = recording->getSoundFile();
    bool changed = false;
    bool gaveUp = tapeFindMissingMedia(file, getTape(), directory, second, changed);
    if (changed) {
        recording->setSoundFile(file);
        noteChanged();
    }
    return gaveUp;
}

void StylusText::collectMedia(KDirectory& from, KDirectory& to)
{
    KFileReference file = recording->getSoundFile();
    if (tapeCollectMedia(file, getTape(), from, to)) {
        recording->setSoundFile(file);
        noteChanged();
    }
}

bool StylusText::replaceMedia(const KFileReference& oldFile, const KFileReference& newFile)
{
    if (!tapeMediaRefersTo(getTape(), recording->getSoundFile(), oldFile))
        return false;
    recording->setSoundFile(newFile);
    noteChanged();
    return true;
}

void StylusText::addMediaName(KStringBag& names) { tapeAddMediaName(recording->getSoundFile(), names); }

bool StylusText::usesMediaNamed(const KString& name)
{
    const KFileReference& file = recording->getSoundFile();
    return !file.getPath().isEmpty() && file.getObjectName() == name;
}

// --- Persistence ---------------------------------------------------------------------------

void StylusText::writeToFile(KFile& out, int32_t version)
{
    KClassWriter writer;
    writer.begin(out, classRecord);
    writer.newSection(1);
    TapeGraphicObject::writeToFile(out, version);
    textBlock->writeToFile(out, version);
    voice.writeToFile(out, version);
    out.writeBool(waitForEnd);
    out.writeBool(transparent);
    out.writeBool(speaksFlag);
    markColour.writeToFile(out, version);
    backColour.writeToFile(out, version);
    out.writeBool(marksWords);
    writer.newSection(2);
    out.writeDouble(volume);
    writer.newSection(3);
    out.writeBool(usesRecording);
    writer.newSection(4);
    out.writeLong(recordingDuration);
    recording->writeToFile(out, version);
    writer.end();
}

void StylusText::resetFields()
{
    textBlock = newText();
    voice = KString();
    transparent = kDefaultTransparent;
    waitForEnd = kDefaultWaitForEnd;
    speaksFlag = kDefaultSpeaks;
    volume = kDefaultVolume;
    markColour = KColor(KColor::Yellow);
    backColour = KColor(KColor::White);
    marksWords = kDefaultMarksWords;
    usesRecording = kDefaultUsesRecording;
    recording = KSoundHiliteMediaPtr(new KSoundHiliteMedia());
    recordingDuration = 0;
}

// Sections the file lacks keep their defaults: a document from before the
// recordings has no section 4, one from before the volume no section 2.
void StylusText::readFromFile(KFile& in)
{
    detachMedia();
    resetFields();
    auto readMain = [&](int32_t) {
        TapeGraphicObject::readFromFile(in);
        setType(TextType);
        KTextBlockPtr block(new KTextBlock());
        if (!block->readRecord(in))
            return;
        textBlock = block;
        voice.readFromFile(in);
        waitForEnd = in.readBool();
        transparent = in.readBool();
        speaksFlag = in.readBool();
        markColour.readFromFile(in);
        backColour.readFromFile(in);
        marksWords = in.readBool();
    };
    auto readVolume = [&](int32_t) { volume = tapeClampVolume(in.readDouble()); };
    auto readRecordingFlag = [&](int32_t) { usesRecording = in.readBool(); };
    auto readRecording = [&](int32_t) {
        recordingDuration = std::max(0, in.readLong());
        KSoundHiliteMediaPtr read(new KSoundHiliteMedia());
        read->readFromFile(in);
        if (in.getError() != 0)
            return;
        KFileReference file = read->getSoundFile();
        if (!file.getPath().isEmpty()) {
            KString name = file.getObjectName();
            if (!tapeAcceptMediaName(name))
                read->setSoundFile(KFileReference());
        }
        recording = read;
    };
    KClassReader::readSections(in, classRecord,
                               { { 1, readMain }, { 2, readVolume }, { 3, readRecordingFlag }, { 4, readRecording } });
    noteChanged();
}

void StylusText::describe(KJsonWriter& out) const
{
    TapeGraphicObject::describe(out);
    out.member("text", getPlainText());
    out.objectMember("textBlock", textBlock.get());
    out.member("voice", voice);
    out.member("transparent", transparent);
    out.member("waitForEnd", waitForEnd);
    out.member("speaks", speaksFlag);
    out.member("volume", volume);
    tapeDescribeColour(out, "markColour", markColour);
    tapeDescribeColour(out, "backColour", backColour);
    out.member("marksWords", marksWords);
    out.member("usesRecording", usesRecording);
    out.member("recordingDuration", recordingDuration);
    out.objectMember("recording", recording.get());
}

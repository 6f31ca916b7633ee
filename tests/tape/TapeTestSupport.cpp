#include "tests/tape/TapeTestSupport.h"

#include "graphics/KGraphicDevice.h"
#include "kernel/KMemory.h"
#include "tape/TapeClasses.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KTimerManager.h"

namespace tapetest {

void RecordingHost::redrawPage(Tape& tape)
{
    ++redraws;
    TapeHost::redrawPage(tape);
}

void RecordingHost::stopAction(Tape& tape)
{
    ++stopActions;
    tape.stopPlaying();
}

void RecordingHost::alert(const KString& title, const KString& text)
{
    alerts.push_back(std::string(title.c_str()) + ": " + text.c_str());
}

bool RecordingHost::chooseColour(KColor& colour)
{
    if (colourChosen)
        colour = chosenColour;
    return colourChosen;
}

ProbeElement::ProbeElement(int32_t type, int32_t holdSteps)
    : holdSteps(holdSteps)
{
    setType(type);
}

void ProbeElement::startPlaying()
{
    ++starts;
    stepsLeft = holdSteps;
    if (stepsLeft == 0 && getTape())
        getTape()->clearPlayingObject();
}

void ProbeElement::playStep()
{
    ++steps;
    if (--stepsLeft <= 0 && getTape())
        getTape()->clearPlayingObject();
}

void ProbeElement::stopPlaying() { ++stops; }

void TapeTest::SetUp()
{
    registerTapeClasses();
    KNativeLayer::install(&layer);
    KTimerManager::destroy();
    TapeHost::install(&host);
    tape = makeTape(&page);
}

void TapeTest::TearDown()
{
    if (tape)
        tape->stopPlaying();
    tape.clear();
    page.clear();
    KTimerManager::destroy();
    TapeHost::install(nullptr);
    KNativeLayer::install(nullptr);
}

TapePtr TapeTest::makeTape(ImageTapePagePtr* pageOut)
{
    TapePtr made(new Tape());
    ImageTapePagePtr own(new ImageTapePage(KGraphicSize(kPageWidth, kPageHeight)));
    made->setSpriteSystem(*own);
    if (pageOut)
        *pageOut = own;
    return made;
}

void TapeTest::tick()
{
    layer.advance(uint32_t(tape->getPlayInterval()));
    tape->handleTimer();
}

int32_t TapeTest::playToEnd(int32_t limit)
{
    int32_t ticks = 0;
    while (tape->getPlayState() != Tape::Stopped && ticks < limit) {
        tick();
        ++ticks;
    }
    return ticks;
}

StrokePtr makeStroke(const std::vector<std::pair<int16_t, int16_t>>& points, int16_t size, const KColor& colour)
{
    StrokePtr stroke(new Stroke());
    stroke->setBrushSize(size);
    stroke->setColour(colour);
    for (auto& [x, y] : points)
        stroke->addPoint(x, y);
    return stroke;
}

StrokePtr makeLine(int16_t x, int16_t y, int16_t dx, int16_t dy, int32_t count, int16_t size, const KColor& colour)
{
    std::vector<std::pair<int16_t, int16_t>> points;
    for (int32_t i = 0; i < count; ++i)
        points.emplace_back(int16_t(x + i * dx), int16_t(y + i * dy));
    return makeStroke(points, size, colour);
}

WipeOutPtr makeWipe(const KColor& colour, int32_t effect, bool removesActors)
{
    WipeOutPtr wipe(new WipeOut());
    wipe->setColour(colour);
    wipe->setEffect(effect);
    wipe->setRemovesActors(removesActors);
    return wipe;
}

KColor rgb(uint32_t value)
{
    return KColor(uint16_t(((value >> 16) & 0xFF) << 8), uint16_t(((value >> 8) & 0xFF) << 8),
                  uint16_t((value & 0xFF) << 8));
}

std::vector<uint32_t> pixels(TapePage& page)
{
    std::vector<uint32_t> result;
    KPixelBuffer buffer;
    if (!page.getPageDevice().beginPixelAccess(buffer))
        return result;
    for (int32_t y = 0; y < buffer.height; ++y) {
        for (int32_t x = 0; x < buffer.width; ++x)
            result.push_back(*buffer.at(x, y) & KPixelBuffer::kColourBits);
    }
    return result;
}

uint32_t pixel(TapePage& page, int32_t x, int32_t y)
{
    KPixelBuffer buffer;
    if (!page.getPageDevice().beginPixelAccess(buffer) || !buffer.contains(x, y))
        return 0xFFFFFFFF;
    return *buffer.at(x, y) & KPixelBuffer::kColourBits;
}

int64_t countColour(TapePage& page, uint32_t value)
{
    int64_t count = 0;
    for (uint32_t p : pixels(page))
        count += p == value;
    return count;
}

std::vector<uint32_t> referencePage(const Tape& tape, int32_t position)
{
    TapePtr copy(new Tape(tape));
    KGraphicSize size = tape.getSpriteSystem()->getPageSize();
    ImageTapePagePtr own(new ImageTapePage(size));
    copy->setSpriteSystem(*own);
    copy->getPageCache().setEnabled(false);
    copy->setPositionQuietly(position);
    copy->rebuildPage();
    return pixels(*own);
}

std::vector<uint8_t> streamOf(KThing& object)
{
    KFile file;
    file.setMode(KFileModeMemory);
    object.writeToFile(file, 1);
    auto* data = static_cast<const uint8_t*>(file.getMemoryData());
    return std::vector<uint8_t>(data, data + file.getMemorySize());
}

int32_t readStream(KThing& object, const std::vector<uint8_t>& bytes)
{
    void* block = KMemory::allocate(bytes.size() + 1, false);
    if (!bytes.empty())
        KMemory::copy(bytes.data(), block, bytes.size());
    KFile file;
    file.setMode(KFileModeReadBuffered);
    file.openFromRAM(block, int32_t(bytes.size()));
    object.readFromFile(file);
    int32_t error = file.getError();
    file.close();
    return error;
}

} // namespace tapetest

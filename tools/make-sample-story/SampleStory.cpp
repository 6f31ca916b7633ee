#include "tools/make-sample-story/SampleStory.h"

#include "app/actors/Actor.h"
#include "app/actors/ActorAction.h"
#include "app/actors/ActorMotion.h"
#include "app/actors/ActorSequence.h"
#include "graphics/KColor.h"
#include "graphics/KFont.h"
#include "graphics/KGraphicPoint.h"
#include "graphics/KTextBlock.h"
#include "graphics/KTextStyle.h"
#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KAnimationVector.h"
#include "kmultimedia/KWavWriter.h"
#include "project/StylusProject.h"
#include "tape/Stroke.h"
#include "tape/StylusPause.h"
#include "tape/StylusSound.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "tape/WaitObject.h"
#include "tape/WipeOut.h"

#include <cmath>
#include <initializer_list>
#include <utility>
#include <vector>

namespace SampleStory {

namespace {

using Points = std::initializer_list<std::pair<int16_t, int16_t>>;

KColor rgb(int red, int green, int blue)
{
    return KColor(uint16_t(red * 257), uint16_t(green * 257), uint16_t(blue * 257));
}

StrokePtr stroke(Points points, int16_t size, const KColor& colour)
{
    StrokePtr made(new Stroke());
    made->setBrushSize(size);
    made->setColour(colour);
    for (auto [x, y] : points)
        made->addPoint(x, y);
    return made;
}

WipeOutPtr wipe(const KColor& colour, int32_t effect)
{
    WipeOutPtr made(new WipeOut());
    made->setColour(colour);
    made->setEffect(effect);
    made->setRemovesActors(true);
    return made;
}

KPath pathOf(const std::string& text) { return KPath(KString(text.c_str()), KPath::kHostPlatform); }

// --- The walker ------------------------------------------------------------------

// A stick figure standing in a 60 by 100 box at the page's top left; the
// two frames differ in the legs and arms.
void paintWalkerFrame(Tape& frame, bool stride)
{
    KColor skin = rgb(250, 210, 160);
    KColor shirt = rgb(230, 60, 60);
    KColor trousers = rgb(40, 70, 200);
    frame.addElement(*stroke({ { 30, 14 } }, 22, skin));
    frame.addElement(*stroke({ { 30, 28 }, { 30, 60 } }, 8, shirt));
    if (stride) {
        frame.addElement(*stroke({ { 30, 36 }, { 12, 52 } }, 5, shirt));
        frame.addElement(*stroke({ { 30, 36 }, { 48, 52 } }, 5, shirt));
        frame.addElement(*stroke({ { 30, 60 }, { 14, 96 } }, 6, trousers));
        frame.addElement(*stroke({ { 30, 60 }, { 46, 96 } }, 6, trousers));
    } else {
        frame.addElement(*stroke({ { 30, 36 }, { 22, 58 } }, 5, shirt));
        frame.addElement(*stroke({ { 30, 36 }, { 38, 58 } }, 5, shirt));
        frame.addElement(*stroke({ { 30, 60 }, { 26, 96 } }, 6, trousers));
        frame.addElement(*stroke({ { 30, 60 }, { 34, 96 } }, 6, trousers));
    }
}

// --- The story -----------------------------------------------------------------

void addFirstPage(Tape& tape)
{
    tape.addElement(*wipe(rgb(20, 30, 80), WipeOut::Fade));
    tape.addElement(*stroke({ { 540, 80 } }, 60, rgb(250, 240, 180)));
    tape.addElement(
        *stroke({ { 0, 430 }, { 160, 420 }, { 320, 432 }, { 480, 418 }, { 639, 428 } }, 40, rgb(40, 150, 60)));
    for (int16_t x : { 60, 200, 380, 600 })
        tape.addElement(*stroke({ { x, 40 } }, 4, rgb(255, 255, 255)));
}

void addWalk(Tape& tape)
{
    ActorActionPtr enter(new ActorAction());
    enter->setActorName(kActorName);
    enter->setMovementName(kMovementName);
    enter->setAction(1);
    enter->setPosition(KGraphicPoint(20, 310));
    enter->setScale(KAnimationVector(1.0f, 1.0f));
    tape.addElement(*enter);

    ActorMotionPtr walk(new ActorMotion());
    walk->setActorName(kActorName);
    for (int16_t x = 20; x <= 540; x += 20)
        walk->addPoint(x, 310);
    tape.addElement(*walk);
}

void addSecondPage(Tape& tape)
{
    tape.addElement(*wipe(rgb(120, 190, 240), WipeOut::WipeLeft));
    tape.addElement(*stroke({ { 0, 440 }, { 639, 440 } }, 60, rgb(60, 170, 70)));
    KColor wall = rgb(200, 120, 60);
    for (int16_t y = 260; y <= 400; y += 20)
        tape.addElement(*stroke({ { 220, y }, { 420, y } }, 20, wall));
    tape.addElement(*stroke({ { 200, 250 }, { 320, 160 }, { 440, 250 } }, 16, rgb(170, 30, 30)));
    tape.addElement(*stroke({ { 300, 360 }, { 300, 405 } }, 24, rgb(90, 50, 20)));
}

// The closing page: a text read aloud with its words lit, a chime, a
// breath, and the story waits for a click.
void addLastPage(Tape& tape)
{
    tape.addElement(*wipe(rgb(250, 236, 200), WipeOut::Fade));
    StylusTextPtr text(new StylusText());
    KTextStyle style(KFont(KString(KTextStyle::kDefaultFontName), 36.0), rgb(40, 40, 110));
    text->setTextBlock(KTextBlock(KString(kClosingText), style, KTextBlock::AlignCentre));
    text->setVoice(KString());
    text->setTransparent(true);
    text->setMarkColour(rgb(255, 230, 90));
    text->setBounds(KGraphicRectangle(60, 150, 520, 140));
    tape.addElement(*text);

    StylusSoundPtr chime(new StylusSound());
    chime->setFile(KFileReference(pathOf(std::string("/") + kProjectName + "/Media/" + kChimeName)));
    tape.addElement(*chime);
    StylusPausePtr breath(new StylusPause());
    breath->setDuration(1000);
    tape.addElement(*breath);
    WaitObjectPtr click(new WaitObject());
    click->setWaitForUser(true);
    tape.addElement(*click);
}

// A soft bell: three partials of a note dying away, 16-bit mono.
bool writeChime(const std::string& path)
{
    constexpr double kSeconds = 1.2;
    constexpr double kPi = 3.14159265358979323846;
    KWavFormat format;
    auto count = size_t(kSeconds * format.sampleRate);
    std::vector<int16_t> samples(count);
    for (size_t i = 0; i < count; ++i) {
        double t = double(i) / format.sampleRate;
        double bell = 0.6 * std::sin(2 * kPi * 660.0 * t) + 0.3 * std::sin(2 * kPi * 990.0 * t)
                      + 0.1 * std::sin(2 * kPi * 1320.0 * t);
        double attack = std::min(1.0, t / 0.01);
        samples[i] = int16_t(std::lround(9000.0 * attack * std::exp(-3.5 * t) * bell));
    }
    KWavWriter writer;
    if (writer.open(path, format) != KWavWriter::Written)
        return false;
    writer.write(samples.data(), samples.size() * sizeof(int16_t));
    return writer.close() == KWavWriter::Written;
}

} // namespace

ActorPtr makeWalker()
{
    ActorPtr walker(new Actor(KGraphicSize(kPageWidth, kPageHeight)));
    ActorSequence& movement = *walker->getSequenceAt(0);
    movement.setName(kMovementName);
    movement.setSpeed(12);
    movement.setPlayType(Actor::PlayRepeated);
    Tape* first = walker->getFrameTape(0, 0);
    paintWalkerFrame(*first, false);
    TapePtr second(new Tape());
    walker->adoptFrameTape(*second);
    paintWalkerFrame(*second, true);
    movement.addFrame(*second);
    walker->recomputeBounds();
    return walker;
}

TapePtr makeTape()
{
    TapePtr tape(new Tape());
    tape->setPageSize(KGraphicSize(kPageWidth, kPageHeight));
    addFirstPage(*tape);
    addWalk(*tape);
    addSecondPage(*tape);
    addLastPage(*tape);
    return tape;
}

bool write(const std::string& folder, std::string& reason)
{
    std::string projectFolder = folder + "/" + kProjectName;
    KDirectory project(pathOf(projectFolder));
    if (!project.doesExist() && !project.create()) {
        reason = "cannot make the folder " + projectFolder;
        return false;
    }
    for (const char* sub : { "Media", "Actors" }) {
        KDirectory inner(pathOf(projectFolder + "/" + sub));
        if (!inner.doesExist() && !inner.create()) {
            reason = "cannot make the folder " + projectFolder + "/" + sub;
            return false;
        }
    }
    if (!writeChime(projectFolder + "/Media/" + kChimeName)) {
        reason = "cannot write the chime";
        return false;
    }
    ActorPtr walker = makeWalker();
    KFileReference actorFile(pathOf(projectFolder + "/Actors/" + kActorName + ".ACT"));
    if (!walker->save(actorFile)) {
        reason = "cannot write the actor file";
        return false;
    }
    StylusProjectPtr story(new StylusProject());
    story->setTape(*makeTape());
    KFileReference document(pathOf(projectFolder + "/" + kProjectName + ".TPD"));
    if (!story->save(document)) {
        reason = "cannot write the document";
        return false;
    }
    return true;
}

} // namespace SampleStory

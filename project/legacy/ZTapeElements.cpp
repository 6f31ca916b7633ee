// The old element classes: how each reads its fields and what element of
// today it becomes. Where the old format leaves a field's meaning open, the
// comment at its reader says the reading chosen.

#include "graphics/KTextBlock.h"
#include "graphics/KTextStyle.h"
#include "project/legacy/ZArray.h"
#include "project/legacy/ZBag.h"
#include "project/legacy/ZConversion.h"
#include "project/legacy/ZFile.h"
#include "project/legacy/ZImage.h"
#include "project/legacy/ZRecords.h"
#include "project/legacy/ZStroke.h"
#include "project/legacy/ZStylusPause.h"
#include "project/legacy/ZStylusSound.h"
#include "project/legacy/ZStylusSpeech.h"
#include "project/legacy/ZStylusText.h"
#include "project/legacy/ZWaitMouseClick.h"
#include "project/legacy/ZWipeOut.h"
#include "tape/Stroke.h"
#include "tape/StylusImage.h"
#include "tape/StylusMovie.h"
#include "tape/StylusPause.h"
#include "tape/StylusSound.h"
#include "tape/StylusSpeech.h"
#include "tape/StylusText.h"
#include "tape/WaitObject.h"
#include "tape/WipeOut.h"

#include <algorithm>

// --- ZStroke -----------------------------------------------------------------------

// The points are a bag: either direct 32-bit values, x in the high half and
// y in the low, or ZPoint objects.
bool ZStroke::readFromFile(ZFile& file)
{
    int32_t version = 0;
    if (!readHeads(file, ZClass::Stroke, version))
        return false;
    colour = ZRecords::readColor(file);
    brushSize = file.readShort();
    shape = file.readShort();
    std::vector<std::pair<int32_t, std::pair<int16_t, int16_t>>> slots;
    ZArray::Visitor visitor;
    visitor.direct = [&](int32_t slot, uint32_t value) {
        slots.push_back({ slot, { int16_t(value >> 16), int16_t(value & 0xFFFF) } });
    };
    visitor.object = [&](int32_t slot, ZClass::Kind kind) {
        if (kind != ZClass::Point) {
            file.fail("Wrong Class.", "ZClass::readClassInfo");
            return false;
        }
        int16_t x = 0, y = 0;
        ZRecords::readPoint(file, x, y);
        slots.push_back({ slot, { x, y } });
        return !file.failed();
    };
    int32_t used = 0;
    if (!ZBag::read(file, visitor, used))
        return false;
    for (const auto& [slot, point] : slots) {
        if (slot < used)
            points.push_back(point);
    }
    return true;
}

TapeObjectPtr ZStroke::convert(ZConversion&)
{
    StrokePtr stroke(new Stroke());
    stroke->setColour(colour);
    stroke->setBrushSize(std::max<int16_t>(brushSize, 1));
    for (const auto& [x, y] : points)
        stroke->addPoint(x, y);
    finish(*stroke);
    return stroke;
}

// --- ZStylusText -----------------------------------------------------------------

// The styled text: a long (the text's length, which the string carries
// anyway), the text as a ZString, the alignment as a short (0 left, 1
// centre, 2 right), and the style.
bool ZStylusText::readStyledText(ZFile& file)
{
    int32_t version = 0;
    if (!ZClass::readClassInfo(file, ZClass::StyledText, version))
        return false;
    file.readLong();
    text = ZRecords::readString(file);
    alignment = file.readShort();
    return !file.failed() && readStyleInfo(file);
}

// The style: a count of runs, each a long start, a ZFont (name, size and
// face) and a ZColor. The first run's font and colour become the text's;
// today's converted texts start with one style.
bool ZStylusText::readStyleInfo(ZFile& file)
{
    int32_t version = 0;
    if (!ZClass::readClassInfo(file, ZClass::StyleInfo, version))
        return false;
    int32_t runs = file.readLong();
    if (!file.couldHold(runs, 4)) {
        file.fail("Index Out Of Range", "ZArray::operator[]");
        return false;
    }
    for (int32_t run = 0; run < runs && !file.failed(); ++run) {
        file.readLong();
        int32_t fontVersion = 0;
        if (!ZClass::readClassInfo(file, ZClass::Font, fontVersion))
            return false;
        KString name = file.readString();
        int16_t size = file.readShort();
        int16_t face = file.readShort();
        KColor colour = ZRecords::readColor(file);
        if (run == 0) {
            fontName = name;
            fontSize = size;
            fontFace = face;
            textColour = colour;
        }
    }
    return !file.failed();
}

// The three flags are read as transparent, read aloud, wait until read.
bool ZStylusText::readFromFile(ZFile& file)
{
    int32_t version = 0;
    if (!readHeads(file, ZClass::StylusText, version))
        return false;
    bounds = ZRecords::readRectangle(file);
    if (file.failed() || !readStyledText(file))
        return false;
    voice = ZRecords::normaliseVoiceName(file.readString());
    transparent = file.readBool();
    speaks = file.readBool();
    waitForEnd = file.readBool();
    if (version >= 2) {
        hasMark = true;
        markColour = ZRecords::readColor(file);
        marksWords = file.readBool();
    }
    return !file.failed();
}

TapeObjectPtr ZStylusText::convert(ZConversion&)
{
    // One line a CR: the CR LF pairs the strings carry become CR again.
    KString lines = text;
    lines.replace(KString("\r\n"), KString("\r"));
    lines.replaceChar('\n', '\r');
    KFontPtr font(new KFont(fontName.isEmpty() ? KString("Sans") : fontName, fontSize > 0 ? fontSize : 12,
                            fontFace & (KFont::Bold | KFont::Italic)));
    int16_t align = alignment >= KTextBlock::AlignLeft && alignment <= KTextBlock::AlignRight
                        ? alignment
                        : int16_t(KTextBlock::AlignLeft);
    KTextBlockPtr block(new KTextBlock(lines, KTextStyle(*font, textColour), align));
    StylusTextPtr element(new StylusText());
    element->setTextBlock(*block);
    element->setBounds(bounds);
    element->setVoice(voice);
    element->setTransparent(transparent);
    element->setSpeaks(speaks);
    element->setWaitForEnd(waitForEnd);
    if (hasMark) {
        element->setMarkColour(markColour);
        element->setMarksWords(marksWords);
    }
    finish(*element);
    return element;
}

// --- Sound, speech, pause --------------------------------------------------------------

bool ZStylusSound::readFromFile(ZFile& file)
{
    int32_t version = 0;
    if (!readHeads(file, ZClass::StylusSound, version))
        return false;
    fileName = ZRecords::readString(file);
    return !file.failed();
}

TapeObjectPtr ZStylusSound::convert(ZConversion& conversion)
{
    StylusSoundPtr sound(new StylusSound());
    sound->setFile(conversion.mediaFile(fileName));
    finish(*sound);
    return sound;
}

bool ZStylusSpeech::readFromFile(ZFile& file)
{
    int32_t version = 0;
    if (!readHeads(file, ZClass::StylusSpeech, version))
        return false;
    text = file.readString();
    voice = ZRecords::normaliseVoiceName(file.readString());
    waitForEnd = file.readBool();
    return !file.failed();
}

TapeObjectPtr ZStylusSpeech::convert(ZConversion&)
{
    StylusSpeechPtr speech(new StylusSpeech());
    speech->setText(text);
    speech->setVoice(voice);
    speech->setWaitForEnd(waitForEnd);
    finish(*speech);
    return speech;
}

// The duration is read as milliseconds.
bool ZStylusPause::readFromFile(ZFile& file)
{
    int32_t version = 0;
    if (!readHeads(file, ZClass::StylusPause, version))
        return false;
    duration = file.readLong();
    return !file.failed();
}

TapeObjectPtr ZStylusPause::convert(ZConversion&)
{
    StylusPausePtr pause(new StylusPause());
    pause->setDuration(std::max(duration, 0));
    finish(*pause);
    return pause;
}

// --- Pictures and movies -------------------------------------------------------------

bool ZImage::readFromFile(ZFile& file)
{
    int32_t version = 0;
    if (!readHeads(file, movie ? ZClass::Movie : ZClass::Image, version))
        return false;
    bounds = ZRecords::readRectangle(file);
    fileName = ZRecords::readString(file);
    flag = file.readBool();
    return !file.failed();
}

TapeObjectPtr ZImage::convert(ZConversion& conversion)
{
    if (movie) {
        StylusMoviePtr element(new StylusMovie());
        element->setFile(conversion.mediaFile(fileName));
        element->setBounds(bounds);
        element->setCanBeStopped(flag);
        finish(*element);
        return element;
    }
    StylusImagePtr element(new StylusImage());
    element->setImageFile(conversion.mediaFile(fileName, true));
    element->setBounds(bounds);
    element->setTransparentWhite(flag);
    finish(*element);
    return element;
}

// --- Waits and page transitions ---------------------------------------------------------

bool ZWaitMouseClick::readFromFile(ZFile& file)
{
    int32_t version = 0;
    if (!readHeads(file, ZClass::WaitMouseClick, version))
        return false;
    if (version >= 2) {
        waitForUser = file.readBool();
        waitForSounds = file.readBool();
        waitForSpeech = file.readBool();
        stopSounds = file.readBool();
    }
    if (version >= 3)
        visualWarning = file.readBool();
    return !file.failed();
}

TapeObjectPtr ZWaitMouseClick::convert(ZConversion&)
{
    WaitObjectPtr wait(new WaitObject());
    wait->setWaitForUser(waitForUser);
    wait->setWaitForSounds(waitForSounds);
    wait->setWaitForSpeech(waitForSpeech);
    wait->setStopSounds(stopSounds);
    wait->setStopSpeech(stopSounds);
    wait->setVisualWarning(visualWarning);
    finish(*wait);
    return wait;
}

// The kind is today's effect number; an unknown one is a plain cut. The
// speed has no place today and is dropped.
bool ZWipeOut::readFromFile(ZFile& file)
{
    int32_t version = 0;
    if (!readHeads(file, ZClass::WipeOut, version))
        return false;
    colour = ZRecords::readColor(file);
    fileName = ZRecords::readString(file);
    effect = file.readLong();
    speed = file.readLong();
    return !file.failed();
}

TapeObjectPtr ZWipeOut::convert(ZConversion& conversion)
{
    WipeOutPtr wipe(new WipeOut());
    wipe->setColour(colour);
    wipe->setEffect(effect >= 0 && effect < WipeOut::kEffectCount ? effect : int32_t(WipeOut::Cut));
    if (!fileName.isEmpty()) {
        wipe->setBackground(WipeOut::ImageBackground);
        wipe->setImageFile(conversion.mediaFile(fileName, true));
    }
    finish(*wipe);
    return wipe;
}

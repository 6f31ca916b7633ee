#include "tape/TapeClasses.h"

#include "graphics/KGraphicsClasses.h"
#include "kernel/KClass.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "tape/ImageTapePage.h"
#include "tape/Stroke.h"
#include "tape/StylusImage.h"
#include "tape/StylusMovie.h"
#include "tape/StylusPause.h"
#include "tape/StylusSound.h"
#include "tape/StylusSpeech.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "tape/TapeGraphicObject.h"
#include "tape/TapeObject.h"
#include "tape/TapePage.h"
#include "tape/TapePreview.h"
#include "tape/WaitObject.h"
#include "tape/WipeOut.h"
#include "windowing/KWindowingClasses.h"

void registerTapeClasses()
{
    kRegisterGraphicsClasses();
    kRegisterWindowingClasses();
    kRegisterMultimediaClasses();
    if (Tape::classRecord && KClass::hasClass("Tape"))
        return;
    TapeObject::registerClass();
    TapeGraphicObject::registerClass();
    Stroke::registerClass();
    WipeOut::registerClass();
    StylusMovie::registerClass();
    StylusImage::registerClass();
    StylusText::registerClass();
    StylusSound::registerClass();
    StylusSpeech::registerClass();
    StylusPause::registerClass();
    WaitObject::registerClass();
    Tape::registerClass();
    TapePage::registerClass();
    ImageTapePage::registerClass();
    TapePreview::registerClass();
}

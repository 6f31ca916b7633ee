#include "graphics/KGraphicsClasses.h"

#include "graphics/KAlphaImage.h"
#include "graphics/KColor.h"
#include "graphics/KFont.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicDeviceState.h"
#include "graphics/KGraphicObject.h"
#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicRegion.h"
#include "graphics/KGraphicSize.h"
#include "graphics/KImage.h"
#include "graphics/KPattern.h"
#include "graphics/KTextBlock.h"
#include "graphics/KTextBlockObject.h"
#include "graphics/KTextLine.h"
#include "graphics/KTextLineObject.h"
#include "graphics/KTextStyle.h"
#include "graphics/KTextStyleRun.h"
#include "graphics/KWidePoint.h"
#include "graphics/KWideRectangle.h"
#include "graphics/KWideSize.h"
#include "kernel/KClass.h"
#include "kernel/KKernelClasses.h"

void kRegisterGraphicsClasses()
{
    kRegisterKernelClasses();
    if (KGraphicPoint::classRecord && KClass::hasClass("KGraphicPoint"))
        return;
    KGraphicPoint::registerClass();
    KGraphicSize::registerClass();
    KGraphicRectangle::registerClass();
    KWidePoint::registerClass();
    KWideSize::registerClass();
    KWideRectangle::registerClass();
    KColor::registerClass();
    KGraphicRegion::registerClass();
    KFont::registerClass();
    KGraphicDeviceState::registerClass();
    KGraphicDevice::registerClass();
    KGraphicObject::registerClass();
    KImage::registerClass();
    KAlphaImage::registerClass();
    KPattern::registerClass();
    KTextStyle::registerClass();
    KTextStyleRun::registerClass();
    KTextLine::registerClass();
    KTextBlock::registerClass();
    KTextBlockObject::registerClass();
    KTextLineObject::registerClass();
}

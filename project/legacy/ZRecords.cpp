#include "project/legacy/ZRecords.h"

#include "project/legacy/ZClass.h"
#include "project/legacy/ZFile.h"

namespace ZRecords {

KString readString(ZFile& file)
{
    int32_t version = 0;
    if (!ZClass::readClassInfo(file, ZClass::String, version))
        return KString();
    return file.readString();
}

KColor readColor(ZFile& file)
{
    int32_t version = 0;
    if (!ZClass::readClassInfo(file, ZClass::Color, version))
        return KColor();
    uint16_t red = uint16_t(file.readShort());
    uint16_t green = uint16_t(file.readShort());
    uint16_t blue = uint16_t(file.readShort());
    return KColor(red, green, blue);
}

void readPoint(ZFile& file, int16_t& x, int16_t& y)
{
    int32_t version = 0;
    x = y = 0;
    if (!ZClass::readClassInfo(file, ZClass::Point, version))
        return;
    x = file.readShort();
    y = file.readShort();
}

KGraphicRectangle readRectangle(ZFile& file)
{
    int32_t version = 0;
    if (!ZClass::readClassInfo(file, ZClass::Rectangle, version))
        return KGraphicRectangle();
    int16_t left = file.readShort();
    int16_t top = file.readShort();
    int16_t width = file.readShort();
    int16_t height = file.readShort();
    if (width < 0 || height < 0) {
        file.fail("Negative size.", "ZRectangle::readFromFile");
        return KGraphicRectangle();
    }
    return KGraphicRectangle(left, top, width, height);
}

KString normaliseVoiceName(const KString& name)
{
    if (name == KString("My Voice Male"))
        return KString("MyVoice Male");
    if (name == KString("My Voice Female"))
        return KString("MyVoice Female");
    return name;
}

} // namespace ZRecords

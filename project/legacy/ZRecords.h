#pragma once

#include "graphics/KColor.h"
#include "graphics/KGraphicRectangle.h"
#include "kernel/KString.h"

#include <cstdint>

class ZFile;

// The old value classes, each a class head and its fields, read into
// today's values. On a failure the file holds it and the value is empty.
namespace ZRecords {

// ZString: the head, a string.
KString readString(ZFile& file);
// ZColor: the head, three 16-bit channels.
KColor readColor(ZFile& file);
// ZPoint: the head, x and y.
void readPoint(ZFile& file, int16_t& x, int16_t& y);
// ZRectangle: the head, left, top, width and height.
KGraphicRectangle readRectangle(ZFile& file);

// A voice by its name today: "My Voice Male" and "My Voice Female" lost
// their blank.
KString normaliseVoiceName(const KString& name);

} // namespace ZRecords

#pragma once

#include "kernel/KThingPtr.h"

#include <vector>

// The value records inside the disk objects' streams: strings, the bag of
// folder names, dates and times. Each writes exactly the class stream of
// KString, KBag (of KString), KDate or KTime, so that a file does not change
// when those classes come to write themselves and these bodies shrink to a
// call of their readFromFile and writeToFile.
namespace KDiskObjectStreams {

void writeString(KFile& file, const KString& text);
bool readString(KFile& file, KString& text);

// A KBag stream of KString objects.
void writeStringBag(KFile& file, const std::vector<KStringPtr>& strings);
bool readStringBag(KFile& file, std::vector<KStringPtr>& strings);

void writeDate(KFile& file, const KDate& date);
bool readDate(KFile& file, KDate& date);
void writeTime(KFile& file, const KTime& time);
bool readTime(KFile& file, KTime& time);

} // namespace KDiskObjectStreams

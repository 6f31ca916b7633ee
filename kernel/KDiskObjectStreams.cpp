#include "kernel/KDiskObjectStreams.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KDate.h"
#include "kernel/KFile.h"
#include "kernel/KString.h"
#include "kernel/KTime.h"

namespace {

int32_t idOf(const char* className) { return KClass::computeClassID(className); }

// Three shorts in one section, the form of KDate and KTime.
void writeTriple(KFile& file, const char* className, int16_t a, int16_t b, int16_t c)
{
    KClassWriter writer;
    writer.begin(file, idOf(className), 1);
    writer.newSection(1);
    file.writeShort(a);
    file.writeShort(b);
    file.writeShort(c);
    writer.end();
}

bool readTriple(KFile& file, const char* className, int16_t& a, int16_t& b, int16_t& c)
{
    KClassReader reader;
    int32_t version = 0;
    int32_t sections = 0;
    reader.begin(file, idOf(className), &version, &sections);
    bool found = false;
    int32_t id = 0;
    while (reader.nextSection(&id)) {
        if (id != 1) {
            reader.skipSection();
            continue;
        }
        a = file.readShort();
        b = file.readShort();
        c = file.readShort();
        found = true;
    }
    reader.end();
    return found && file.getError() == 0;
}

// The KArray part of the bag: size, the direct flag, then for each slot a
// class id and, unless 0, the element's stream.
void writeStringArray(KFile& file, const std::vector<KStringPtr>& strings)
{
    KClassWriter writer;
    writer.begin(file, idOf("KArray"), 1);
    writer.newSection(1);
    file.writeLong(int32_t(strings.size()));
    file.writeBool(false);
    for (const KStringPtr& text : strings) {
        file.writeLong(idOf("KString"));
        KDiskObjectStreams::writeString(file, *text);
    }
    writer.end();
}

void readArraySlots(KFile& file, std::vector<KStringPtr>& strings)
{
    int32_t size = file.readLong();
    bool direct = file.readBool();
    // Every slot takes at least its 4-byte class id.
    if (!file.checkAvailable(int64_t(size) * 4))
        return;
    if (direct) {
        file.skip(size * 4);
        return;
    }
    for (int32_t i = 0; i < size && !file.getError(); ++i) {
        int32_t id = file.readLong();
        if (id == 0)
            continue;
        if (id != idOf("KString")) {
            KClassReader::skipClass(file);
            continue;
        }
        auto text = kAdopt(new KString());
        if (KDiskObjectStreams::readString(file, *text) && !text->isEmpty())
            strings.push_back(text);
    }
}

void readStringArray(KFile& file, std::vector<KStringPtr>& strings)
{
    KClassReader reader;
    int32_t version = 0;
    int32_t sections = 0;
    reader.begin(file, idOf("KArray"), &version, &sections);
    int32_t id = 0;
    while (reader.nextSection(&id)) {
        if (id == 1)
            readArraySlots(file, strings);
        else
            reader.skipSection();
    }
    reader.end();
}

} // namespace

namespace KDiskObjectStreams {

void writeString(KFile& file, const KString& text)
{
    KClassWriter writer;
    writer.begin(file, idOf("KString"), 1);
    writer.newSection(1);
    file.writeShort(int16_t(text.getCharSet()));
    file.writeCountedText(text.getText(), text.getLength());
    writer.end();
}

bool readString(KFile& file, KString& text)
{
    text.clear();
    KClassReader reader;
    int32_t version = 0;
    int32_t sections = 0;
    reader.begin(file, idOf("KString"), &version, &sections);
    bool found = false;
    int32_t id = 0;
    while (reader.nextSection(&id)) {
        if (id != 1) {
            reader.skipSection();
            continue;
        }
        int16_t charSet = file.readShort();
        found = file.readCountedText(text);
        text.setCharSet(charSet);
    }
    reader.end();
    return found && file.getError() == 0;
}

void writeStringBag(KFile& file, const std::vector<KStringPtr>& strings)
{
    KClassWriter writer;
    writer.begin(file, idOf("KBag"), 1);
    writer.newSection(1);
    writeStringArray(file, strings);
    file.writeLong(int32_t(strings.size())); // usedSize
    file.writeLong(1);                       // growSize
    file.writeLong(0);                       // minSize
    writer.end();
}

bool readStringBag(KFile& file, std::vector<KStringPtr>& strings)
{
    strings.clear();
    KClassReader reader;
    int32_t version = 0;
    int32_t sections = 0;
    reader.begin(file, idOf("KBag"), &version, &sections);
    int32_t id = 0;
    while (reader.nextSection(&id)) {
        if (id != 1) {
            reader.skipSection();
            continue;
        }
        readStringArray(file, strings);
        file.readLong();
        file.readLong();
        file.readLong();
    }
    reader.end();
    return file.getError() == 0;
}

void writeDate(KFile& file, const KDate& date)
{
    writeTriple(file, "KDate", date.getYear(), date.getMonth(), date.getDay());
}

bool readDate(KFile& file, KDate& date)
{
    int16_t year = 0;
    int16_t month = 0;
    int16_t day = 0;
    bool ok = readTriple(file, "KDate", year, month, day);
    date.setDate(year, month, day);
    return ok;
}

void writeTime(KFile& file, const KTime& time)
{
    writeTriple(file, "KTime", time.getHour(), time.getMinute(), time.getSecond());
}

bool readTime(KFile& file, KTime& time)
{
    int16_t hour = 0;
    int16_t minute = 0;
    int16_t second = 0;
    bool ok = readTriple(file, "KTime", hour, minute, second);
    time.setTime(hour, minute, second);
    return ok;
}

} // namespace KDiskObjectStreams

#include "graphics/KTextStyleRun.h"

#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"

K_DEFINE_CLASS(KTextStyleRun, KTextStyle)

KTextStyleRun::KTextStyleRun(const KTextStyle& style, int32_t length)
    : KTextStyle(style)
{
    setLength(length);
}

KTextStyleRun::KTextStyleRun(const KTextStyleRun& other)
    : KTextStyle(other)
    , length(other.length)
{
}

KTextStyleRun& KTextStyleRun::operator=(const KTextStyleRun& other)
{
    setStyle(other);
    length = other.length;
    return *this;
}

KThing* KTextStyleRun::deepCopy() const { return new KTextStyleRun(*this); }

void KTextStyleRun::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        KTextStyle::writeToFile(file, 1);
        file.writeLong(length);
    });
}

bool KTextStyleRun::readRecord(KFile& file)
{
    KTextStyle style;
    int32_t newLength = 0;
    bool read = KGraphicsStreams::readMainSection(file, classRecord, [&] {
        if (!style.readRecord(file))
            return false;
        newLength = file.readLong();
        return file.getError() == 0;
    });
    if (!read)
        return false;
    setStyle(style);
    setLength(newLength);
    return true;
}

void KTextStyleRun::readFromFile(KFile& file) { readRecord(file); }

void KTextStyleRun::describe(KJsonWriter& out) const
{
    KTextStyle::describe(out);
    out.member("length", length);
}

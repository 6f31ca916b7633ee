#include "kernel/KFlagSet.h"

#include "kernel/KClass.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStreamReading.h"

K_DEFINE_CLASS(KFlagSet, KThing)

KThing* KFlagSet::deepCopy() const { return new KFlagSet(flags); }

// Persistence.

void KFlagSet::writeToFile(KFile& file, int32_t)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeLong(flags);
    writer.end();
}

void KFlagSet::readFromFile(KFile& file)
{
    flags = 0;
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) { flags = file.readLong(); });
}

void KFlagSet::describe(KJsonWriter& out) const { out.member("flags", flags); }

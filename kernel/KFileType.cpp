#include "kernel/KFileType.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KDiskObjectStreams.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"

K_DEFINE_CLASS(KFileType, KThing)

KFileType::KFileType() = default;

KFileType::KFileType(const KString& ext, const KString& text, const KString& type, const KString& creator,
                     KFileTypeID typeID)
    : extension(ext)
    , description(text)
    , macType(type)
    , macCreator(creator)
    , id(typeID ? typeID : idOf(ext))
{
}

KFileType::KFileType(const KFileType& other)
    : KThing(other)
    , extension(other.extension)
    , description(other.description)
    , macType(other.macType)
    , macCreator(other.macCreator)
    , id(other.id)
{
}

KFileType::~KFileType() = default;

KFileType& KFileType::operator=(const KFileType& other)
{
    extension = other.extension;
    description = other.description;
    macType = other.macType;
    macCreator = other.macCreator;
    id = other.id;
    return *this;
}

KThing* KFileType::deepCopy() const { return new KFileType(*this); }

KFileTypeID KFileType::idOf(const KString& ext)
{
    KFileTypeID value = KClass::computeClassID(ext.getUpper().c_str());
    // -1 means "unknown" and 0 "none"; no extension may take them.
    if (value == -1 || value == 0)
        value = 2;
    return value;
}

void KFileType::writeToFile(KFile& file, int32_t)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    KDiskObjectStreams::writeString(file, extension);
    KDiskObjectStreams::writeString(file, description);
    KDiskObjectStreams::writeString(file, macType);
    KDiskObjectStreams::writeString(file, macCreator);
    file.writeLong(id);
    writer.end();
}

void KFileType::readFromFile(KFile& file)
{
    auto readMain = [&](int32_t) {
        KDiskObjectStreams::readString(file, extension);
        KDiskObjectStreams::readString(file, description);
        KDiskObjectStreams::readString(file, macType);
        KDiskObjectStreams::readString(file, macCreator);
        id = file.readLong();
    };
    KClassReader::readSections(file, classRecord, { { 1, readMain } });
}

void KFileType::describe(KJsonWriter& out) const
{
    out.member("extension", extension);
    out.member("description", description);
    out.member("macType", macType);
    out.member("macCreator", macCreator);
    out.member("id", id);
}

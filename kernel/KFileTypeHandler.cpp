#include "kernel/KFileTypeHandler.h"

#include "kernel/KErrorHandler.h"
#include "kernel/KThingPtr.h"

#include <vector>

namespace {

std::vector<KPtr<KFileType>>& table()
{
    static std::vector<KPtr<KFileType>> types;
    return types;
}

// A free id for `extension`: its own, or the next unused one after it.
KFileTypeID freeID(const KString& extension)
{
    KFileTypeID id = KFileType::idOf(extension);
    while (KFileTypeHandler::hasAssociation(id) || id == -1 || id == 0)
        id = KFileTypeID(uint32_t(id) + 1);
    return id;
}

} // namespace

namespace KFileTypeHandler {

KFileTypeID makeAssociation(const KString& extension, const KString& description, const KString& macType,
                            const KString& macCreator)
{
    if (hasAssociation(extension)) {
        KErrorHandler::raiseError(KError::FileTypeAlreadyExists);
        return 0;
    }
    auto type = kAdopt(new KFileType(extension, description, macType, macCreator, freeID(extension)));
    table().push_back(type);
    return type->getID();
}

bool hasAssociation(const KString& extension, KFileType** out)
{
    KString wanted = extension.getUpper();
    for (const auto& type : table()) {
        if (type->getExtension().getUpper() == wanted) {
            if (out)
                *out = type.get();
            return true;
        }
    }
    return false;
}

bool hasAssociation(KFileTypeID id, KFileType** out)
{
    for (const auto& type : table()) {
        if (type->getID() == id) {
            if (out)
                *out = type.get();
            return true;
        }
    }
    return false;
}

bool hasMacType(const KString& macType, KFileType** out)
{
    for (const auto& type : table()) {
        if (type->getMacType() == macType) {
            if (out)
                *out = type.get();
            return true;
        }
    }
    return false;
}

KFileType* getAssociation(KFileTypeID id)
{
    KFileType* found = nullptr;
    if (!hasAssociation(id, &found))
        KErrorHandler::raiseError(KError::FileTypeNotFound);
    return found;
}

KFileType* getAssociation(const KString& extension)
{
    KFileType* found = nullptr;
    if (!hasAssociation(extension, &found))
        KErrorHandler::raiseError(KError::FileTypeNotFound);
    return found;
}

KFileType* getAssociationFromMacType(const KString& macType)
{
    KFileType* found = nullptr;
    if (!hasMacType(macType, &found))
        KErrorHandler::raiseError(KError::FileTypeNotFound);
    return found;
}

int32_t getCount() { return int32_t(table().size()); }

KFileType* getAt(int32_t index)
{
    if (index < 0 || index >= getCount())
        return nullptr;
    return table()[size_t(index)].get();
}

void clear() { table().clear(); }

} // namespace KFileTypeHandler

void kRegisterFrameworkFileTypes()
{
    struct Entry {
        const char* name;
        const char* type;
        const char* creator;
        const char* extension;
    };
    static const Entry entries[] = {
        { "Text File", "TEXT", "ttxt", "TXT" },          { "Application", "APPL", "????", "EXE" },
        { "DXF File", "????", "????", "DXF" },           { "Windows Bitmap", "BMP ", "TVOD", "BMP" },
        { "JPEG Image", "JPEG", "TVOD", "JPG" },         { "JPEG Image", "JPEG", "TVOD", "JPEG" },
        { "Macintosh Picture", "PICT", "ttxt", "PCT" },  { "Macintosh Picture", "PICT", "ttxt", "PIC" },
        { "Macintosh Picture", "PICT", "ttxt", "PICT" }, { "TGA Image", "TPIC", "prvw", "TGA" },
        { "Linux Pixmap", "XPM ", "ttxt", "XPM" },       { "Portable Network Graphics", "PNG ", "TVOD", "PNG" },
        { "GIF Image", "GIF ", "TVOD", "GIF" },          { "TIFF Image", "TIFF", "TVOD", "TIF" },
        { "TIFF Image", "TIFF", "TVOD", "TIFF" },
    };
    for (const Entry& entry : entries) {
        if (!KFileTypeHandler::hasAssociation(KString(entry.extension)))
            KFileTypeHandler::makeAssociation(entry.extension, entry.name, entry.type, entry.creator);
    }
}

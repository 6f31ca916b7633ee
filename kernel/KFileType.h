#pragma once

#include "kernel/KString.h"

// The id of a file type: a pure function of the upper-cased extension, so
// that it can be stored in files.
using KFileTypeID = int32_t;

// One known kind of file: its extension, a description for the user, and the
// Macintosh type and creator codes that go with it.
class KFileType : public KThing {
    K_DECLARE_CLASS(KFileType)
public:
    KFileType();
    // The id defaults to idOf(extension).
    KFileType(const KString& extension, const KString& description, const KString& macType, const KString& macCreator,
              KFileTypeID id = 0);
    KFileType(const KFileType& other);
    ~KFileType() override;
    KFileType& operator=(const KFileType& other);

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    const KString& getExtension() const { return extension; }
    const KString& getDescription() const { return description; }
    const KString& getMacType() const { return macType; }
    const KString& getMacCreator() const { return macCreator; }
    KFileTypeID getID() const { return id; }

    // The id an extension gets: the class-id product of its upper-cased
    // characters, never -1 or 0.
    static KFileTypeID idOf(const KString& extension);

private:
    KString extension;
    KString description;
    KString macType;
    KString macCreator;
    KFileTypeID id = 0;
};

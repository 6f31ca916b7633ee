#pragma once

#include "kernel/KFileType.h"

// The table of known file types, linking extensions to descriptions and
// Macintosh type and creator codes. Extensions compare upper-cased.
namespace KFileTypeHandler {

// Adds an entry and returns its id. A known extension raises code 63 ("File
// Type Already Exists", a notice) and returns 0. Two extensions whose ids
// would collide (anagrams do) get distinct ids in registration order.
KFileTypeID makeAssociation(const KString& extension, const KString& description, const KString& macType,
                            const KString& macCreator);

bool hasAssociation(const KString& extension, KFileType** out = nullptr);
bool hasAssociation(KFileTypeID id, KFileType** out = nullptr);
bool hasMacType(const KString& macType, KFileType** out = nullptr);

// Code 62 when there is no such entry; null then.
KFileType* getAssociation(KFileTypeID id);
KFileType* getAssociation(const KString& extension);
// The first entry with that type code; code 62 when none.
KFileType* getAssociationFromMacType(const KString& macType);

int32_t getCount();
// In registration order; null out of range.
KFileType* getAt(int32_t index);
// Empties the table.
void clear();

} // namespace KFileTypeHandler

// Registers the framework's own file types (text, application, DXF and the
// image formats), in their fixed order; types already known are left alone.
void kRegisterFrameworkFileTypes();

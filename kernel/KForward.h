#pragma once

#include <cstdint>

// Forward declarations of the kernel's classes and its shared small types.

class KThing;
class KThingPtr;
template<class T>
class KPtr;
class KClass;
class KMemory;
class KErrorHandler;
class KNativePtr;
class KComparable;
class KString;
class KArray;
class KBag;
class KIndexedBag;
class KNamedBag;
class KStringBag;
class KSet;
class KFlagSet;
class KTree;
class KTreeNode;
class KNumber;
class KDate;
class KTime;
class KVariable;
class KPreferences;
class KFile;
class KMemoryBlock;
class KClassWriter;
class KClassReader;
class KPath;
class KDiskObjectReference;
class KFileReference;
class KDirectory;
class KVolume;
class KFileSystem;
class KFileType;
class KDocument;
class KUnknownObject;
class KJsonWriter;
class KTimer;
class KEvent;

// The result of every event handler: 0 not handled, 1 handled, 2 agreed
// (to a close or quit request), 4 handled and capture the mouse.
using KEventReturn = int32_t;

// Creates a fresh heap object of one class; stored in its class record.
using KCreateProc = KThing* (*)();

using KThingPtrPtr = KPtr<KThingPtr>;
using KClassPtr = KPtr<KClass>;
using KNativePtrPtr = KPtr<KNativePtr>;
using KComparablePtr = KPtr<KComparable>;
using KStringPtr = KPtr<KString>;
using KArrayPtr = KPtr<KArray>;
using KBagPtr = KPtr<KBag>;
using KIndexedBagPtr = KPtr<KIndexedBag>;
using KNamedBagPtr = KPtr<KNamedBag>;
using KStringBagPtr = KPtr<KStringBag>;
using KSetPtr = KPtr<KSet>;
using KFlagSetPtr = KPtr<KFlagSet>;
using KTreePtr = KPtr<KTree>;
using KTreeNodePtr = KPtr<KTreeNode>;
using KNumberPtr = KPtr<KNumber>;
using KDatePtr = KPtr<KDate>;
using KTimePtr = KPtr<KTime>;
using KVariablePtr = KPtr<KVariable>;
using KPreferencesPtr = KPtr<KPreferences>;
using KFilePtr = KPtr<KFile>;
using KMemoryBlockPtr = KPtr<KMemoryBlock>;
using KClassWriterPtr = KPtr<KClassWriter>;
using KClassReaderPtr = KPtr<KClassReader>;
using KPathPtr = KPtr<KPath>;
using KDiskObjectReferencePtr = KPtr<KDiskObjectReference>;
using KFileReferencePtr = KPtr<KFileReference>;
using KDirectoryPtr = KPtr<KDirectory>;
using KVolumePtr = KPtr<KVolume>;
using KFileSystemPtr = KPtr<KFileSystem>;
using KFileTypePtr = KPtr<KFileType>;
using KDocumentPtr = KPtr<KDocument>;
using KUnknownObjectPtr = KPtr<KUnknownObject>;

#include "kernel/KKernelClasses.h"

#include "kernel/KArray.h"
#include "kernel/KBag.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KComparable.h"
#include "kernel/KDate.h"
#include "kernel/KDirectory.h"
#include "kernel/KDiskObjectReference.h"
#include "kernel/KDocument.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileSystem.h"
#include "kernel/KFileType.h"
#include "kernel/KFlagSet.h"
#include "kernel/KIndexedBag.h"
#include "kernel/KLocalizer.h"
#include "kernel/KLocalizerString.h"
#include "kernel/KMemoryBlock.h"
#include "kernel/KNamedBag.h"
#include "kernel/KNativePtr.h"
#include "kernel/KNumber.h"
#include "kernel/KPath.h"
#include "kernel/KPreferences.h"
#include "kernel/KSet.h"
#include "kernel/KString.h"
#include "kernel/KStringBag.h"
#include "kernel/KTime.h"
#include "kernel/KTree.h"
#include "kernel/KTreeNode.h"
#include "kernel/KVariable.h"
#include "kernel/KVolume.h"

namespace {

// Names in the registry without a class of their own.
void registerRoot(const char* name) { KClass::registerClass(name, KThing::classRecord, &KThing::create, 1); }

} // namespace

void kRegisterKernelClasses()
{
    if (KThing::classRecord && KClass::first())
        return;
    KThing::classRecord = KClass::registerClass("KThing", nullptr, &KThing::create, 1);
    KClass::registerClass();
    KNativePtr::registerClass();
    KClassWriter::registerClass();
    KClassReader::registerClass();
    KMemoryBlock::registerClass();
    registerRoot("KMemory");
    KComparable::registerClass();
    KString::registerClass();
    KNumber::registerClass();
    KDate::registerClass();
    KTime::registerClass();
    KVariable::registerClass();
    KPreferences::registerClass();
    KArray::registerClass();
    KBag::registerClass();
    KIndexedBag::registerClass();
    KNamedBag::registerClass();
    KStringBag::registerClass();
    KSet::registerClass();
    KFlagSet::registerClass();
    KTree::registerClass();
    KTreeNode::registerClass();
    registerRoot("KFileTypeHandler");
    KPath::registerClass();
    KDiskObjectReference::registerClass();
    KFileReference::registerClass();
    KDirectory::registerClass();
    KVolume::registerClass();
    KFile::registerClass();
    KFileSystem::registerClass();
    KFileType::registerClass();
    KDocument::registerClass();
    KLocalizerString::registerClass();
    KLocalizer::registerClass();
}

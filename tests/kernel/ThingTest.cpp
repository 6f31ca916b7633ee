#include "kernel/KArray.h"
#include "kernel/KClass.h"
#include "kernel/KNativePtr.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

// Counts its own destructions so tests can see exactly when it dies.
class Probe : public KThing {
public:
    explicit Probe(int* deaths = nullptr)
        : deaths(deaths)
    {
    }
    ~Probe() override
    {
        if (deaths)
            ++*deaths;
    }
    int* deaths;
};

// Allocates another object while the outer one is between `new` and its
// constructor.
class Outer : public KThing {
public:
    explicit Outer(KThing* inner)
        : inner(inner)
    {
    }
    KThingPtr inner;
};

} // namespace

TEST(KThing, HeapObjectsKnowTheyAreOnTheHeapAndStackObjectsDoNot)
{
    KThing onStack;
    EXPECT_FALSE(onStack.isOnHeap());
    EXPECT_EQ(onStack.getReferenceCount(), 1);

    auto* onHeap = new KThing();
    EXPECT_TRUE(onHeap->isOnHeap());
    EXPECT_EQ(onHeap->getReferenceCount(), 1);
    delete onHeap; // a fresh object nobody holds may be deleted

    // Constructor arguments that allocate do not confuse the outer object.
    auto* outer = new Outer(new Probe());
    EXPECT_TRUE(outer->isOnHeap());
    EXPECT_TRUE(outer->inner.get()->isOnHeap());
    KThingPtr holder(outer);

    // A member is never on the heap, even inside a heap object.
    struct WithMember : KThing {
        KString member;
    };
    auto* withMember = new WithMember();
    EXPECT_TRUE(withMember->isOnHeap());
    EXPECT_FALSE(withMember->member.isOnHeap());
    delete withMember;

    // A copy is a new object: a stack copy of a heap object is not on the heap.
    KString heapString("x");
    auto* fromHeap = new KString("y");
    KString stackCopy(*fromHeap);
    EXPECT_FALSE(stackCopy.isOnHeap());
    delete fromHeap;
}

TEST(KThing, LastReleaseDestroysAndCountsBalance)
{
    int deaths = 0;
    int32_t live = KThing::liveCount();
    int32_t heap = KThing::heapCount();
    {
        KThingPtr first(new Probe(&deaths));
        EXPECT_EQ(first.getObject().getReferenceCount(), 2);
        KThingPtr second(first);
        EXPECT_EQ(first.getObject().getReferenceCount(), 3);
        second.clear();
        EXPECT_EQ(deaths, 0);
        first.clear();
        EXPECT_EQ(deaths, 1);
        EXPECT_FALSE(first.isValid());
        EXPECT_EQ(first.get(), nullptr);
    }
    EXPECT_EQ(KThing::liveCount(), live);
    EXPECT_EQ(KThing::heapCount(), heap);

    // Reassigning a reference releases the old object; self-assignment keeps it.
    KPtr<Probe> p(new Probe(&deaths));
    KPtr<Probe>& alias = p; // the same reference under another name, as a container would hand it back
    p = alias;
    EXPECT_EQ(deaths, 1);
    p = new Probe(&deaths);
    EXPECT_EQ(deaths, 2);
    p.newObject();
    EXPECT_EQ(deaths, 3);
    EXPECT_TRUE(p.isValid());
}

TEST(KThing, TypedReferencesConvertAlongTheClassLine)
{
    KPtr<KString> text(new KString("hello"));
    KPtr<KComparable> comparable(text);
    KThingPtr plain(comparable); // NOLINT(performance-unnecessary-copy-initialization): the copy is tested
    EXPECT_EQ(plain.get(), text.get());
    EXPECT_EQ(text.getObject().getReferenceCount(), 4);
    EXPECT_TRUE(text == plain);
    EXPECT_EQ(*text, "hello");
    KThingPtr empty1, empty2;
    EXPECT_TRUE(empty1 == empty2);
    EXPECT_FALSE(empty1 == plain);
}

TEST(KThingDeathTest, ReferencingAStackObjectIsFatal)
{
    EXPECT_FATAL(
        {
            KThing onStack;
            KThingPtr p(onStack);
        },
        "Object Not On Heap!");
}

TEST(KThingDeathTest, EmptyReferenceIsFatal)
{
    EXPECT_FATAL(
        {
            KThingPtr p;
            p.getObject();
        },
        "Pointer NULL!");
}

TEST(KThingDeathTest, DeletingAHeldObjectIsFatal)
{
    EXPECT_FATAL(
        {
            auto* t = new KThing();
            KThingPtr p(t);
            delete t;
        },
        "Delete Referenced Object!");
}

TEST(KClass, IdsAreTheWrappingProductOfSignedCharacters)
{
    EXPECT_EQ(KClass::computeClassID("KArray"), 574161292);
    EXPECT_EQ(KClass::computeClassID("KBag"), 49455450);
    // High-bit characters count as negative.
    EXPECT_EQ(KClass::computeClassID("\xE9"), -23);
    EXPECT_EQ(KClass::computeClassID("KString"), KString::classRecord->getClassID());
}

TEST(KClass, RegistryLooksUpAndAnswersSubclassQuestions)
{
    KClass* string = KClass::findClass("KString");
    KClass* comparable = KClass::findClass("KComparable");
    KClass* thing = KClass::findClass("KThing");
    ASSERT_NE(string, nullptr);
    EXPECT_EQ(string, KString::classRecord);
    EXPECT_EQ(KClass::findClass(string->getClassID()), string);
    EXPECT_EQ(KClass::findClass(&KString::create), string);

    EXPECT_FALSE(string->isSubClass(string));
    EXPECT_TRUE(string->isEqualOrSubClass(string));
    EXPECT_TRUE(string->isSubClass(thing));
    EXPECT_TRUE(thing->isSuperClass(string));
    EXPECT_FALSE(thing->isSubClass(string));
    EXPECT_FALSE(comparable->isEqualOrSubClass(string));
    EXPECT_TRUE(comparable->isEqualOrSuperClass(string));

    KString s;
    EXPECT_TRUE(s.isEqualOrSubClass("KComparable"));
    EXPECT_FALSE(KThing().isEqualOrSubClass("KString"));

    KThingPtr made(string->createObject());
    EXPECT_TRUE(made.getObject().isEqualOrSubClass(string));

    ErrorRecorder errors;
    EXPECT_EQ(KClass::findClass("NoSuchClass"), nullptr);
    EXPECT_EQ(errors.lastCode(), KError::ClassNotRegistered);
    EXPECT_THAT(errors.lastLocation(), testing::HasSubstr("NoSuchClass"));
    EXPECT_FALSE(KClass::hasClass("NoSuchClass"));
    EXPECT_EQ(KClass::findClass("KComparable")->createObject(), nullptr);
    EXPECT_EQ(errors.lastCode(), KError::CreateProcNull);
}

TEST(KClassDeathTest, AnagramNamesCollide)
{
    EXPECT_FATAL(
        {
            KClass::registerClass("KTestAnagramAB", KThing::classRecord, nullptr, 1);
            KClass::registerClass("KTestAnagramBA", KThing::classRecord, nullptr, 1);
        },
        "Class name collision; change class name!");
}

TEST(KErrorHandler, ModesDecideWhatARaiseDoes)
{
    {
        ErrorRecorder errors;
        KErrorHandler::clearLastError();
        KErrorHandler::raiseError(0);
        EXPECT_TRUE(errors.empty());
        EXPECT_EQ(KErrorHandler::getLastError(), 0);
        KErrorHandler::raiseError(KError::ArrayInUse);
        EXPECT_EQ(errors.lastCode(), KError::ArrayInUse);
        EXPECT_EQ(KErrorHandler::getLastError(), KError::ArrayInUse);
    }
    KErrorHandler::setErrorMode(KErrorHandler::Silent);
    KErrorHandler::raiseError(KError::NoObject);
    EXPECT_EQ(KErrorHandler::getLastError(), KError::NoObject);
    KErrorHandler::setErrorMode(KErrorHandler::Internal);

    // A notice shows its message and returns.
    testing::internal::CaptureStderr();
    KErrorHandler::raiseError(KError::ErrorCopyingFile);
    std::string shown = testing::internal::GetCapturedStderr();
    EXPECT_NE(shown.find("Error Copying File"), std::string::npos);

    EXPECT_STREQ(KErrorHandler::textOf(KError::UnsupportedFormat), "Unsupported Format!");
    EXPECT_EQ(KErrorHandler::severityOf(KError::UnsupportedFormat), KErrorHandler::Warning);
    EXPECT_EQ(KErrorHandler::severityOf(KError::NoError), KErrorHandler::None);
    EXPECT_EQ(KErrorHandler::severityOf(KError::PageAlreadyOpen), KErrorHandler::Fatal);
    EXPECT_STREQ(KErrorHandler::textOf(KError::NoCompareProc), "No 'compare' procedure");
    EXPECT_STREQ(KErrorHandler::textOf(KError::NoWindow2), KErrorHandler::textOf(KError::NoWindow));

    EXPECT_EQ(KErrorHandler::mapNativeError(267), KError::FileNotFound);
    EXPECT_EQ(KErrorHandler::mapNativeError(112), KError::DiskFull);
    EXPECT_EQ(KErrorHandler::mapNativeError(38), KError::EndOfFile);
    EXPECT_EQ(KErrorHandler::mapNativeError(5), KError::UnknownFileError);
    EXPECT_EQ(KErrorHandler::mapErrno(ENOTDIR), KError::FileNotFound);
    EXPECT_EQ(KErrorHandler::mapErrno(EDQUOT), KError::DiskFull);
}

TEST(KErrorHandlerDeathTest, FatalEndIsAFailureExitStatus)
{
    // Scripts and session managers must see the failure: EX_SOFTWARE, never 0.
    EXPECT_EXIT(KErrorHandler::raiseError(KError::NoObject), testing::ExitedWithCode(70), "No Object!");
    EXPECT_EXIT(KErrorHandler::fatal("broken"), testing::ExitedWithCode(70), "broken");
}

namespace {
int gRescueCalls = 0;
int32_t rescueThatFailsAgain(const char*, const char*)
{
    ++gRescueCalls;
    std::fprintf(stderr, "rescue %d\n", gRescueCalls);
    KErrorHandler::raiseError(KError::OutOfMemory);
    return 0;
}
} // namespace

TEST(KErrorHandlerDeathTest, FatalErrorDuringRescueDoesNotRescueAgain)
{
    EXPECT_FATAL(
        {
            KErrorHandler::setFatalProc(&rescueThatFailsAgain);
            KErrorHandler::raiseError(KError::NoObject);
        },
        "rescue 1\n.*Out Of Memory!");
}

TEST(KNativePtr, DisposesItsHandleOnce)
{
    static int disposed = 0;
    disposed = 0;
    int handle = 7;
    {
        KNativePtr holder(&handle, [](void*) { ++disposed; });
        KNativePtr copy(holder); // NOLINT(performance-unnecessary-copy-initialization): the copy is tested
        EXPECT_EQ(copy.getNativePtr(), &handle);
    }
    EXPECT_EQ(disposed, 1);
    ErrorRecorder errors;
    KNativePtr empty;
    EXPECT_EQ(empty.getNativePtr(), nullptr);
    EXPECT_EQ(errors.lastCode(), KError::PointerNull);
}

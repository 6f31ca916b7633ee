#include "kernel/KBag.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KClassWriter.h"
#include "kernel/KDocument.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KNumber.h"
#include "kernel/KString.h"
#include "kernel/KVariable.h"
#include "tests/kernel/FileTestSupport.h"
#include "tests/kernel/PersistenceTestSupport.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

using namespace filetest;
using namespace persistencetest;

namespace {

// Writes some bytes and then fails as a full disk would.
class FailingWriter : public KThing {
    K_DECLARE_CLASS(FailingWriter)
public:
    void writeToFile(KFile& file, int32_t) override
    {
        KClassWriter writer;
        writer.begin(file, classRecord);
        writer.newSection(1);
        file.writeLong(1234);
        file.setError(KError::DiskFull);
        writer.end();
    }
};

K_DEFINE_CLASS(FailingWriter, KThing)

const int32_t kMagic = KDocument::makeMagic("TEST");

class Document : public testing::Test {
protected:
    void SetUp() override
    {
        if (!FailingWriter::classRecord)
            FailingWriter::registerClass();
    }
    void TearDown() override { KClassStreamState::reset(); }

    KDocument& documentAt(const std::string& name)
    {
        KFileReference reference(folder.pathOf(name));
        document.setFile(reference);
        document.setMagic(kMagic);
        return document;
    }

    // A document of `entries` (class streams of named objects) written by hand.
    std::vector<uint8_t> handMade(const std::vector<std::pair<const char*, std::vector<uint8_t>>>& entries)
    {
        KBag keys;
        for (const auto& entry : entries)
            keys.add(*new KString(entry.first));
        std::vector<uint8_t> keyStream = streamOf(keys);
        Bytes slots;
        for (const auto& entry : entries)
            slots.append(entry.second);
        int32_t arrayBody = 8 + 5 + int32_t(slots.get().size());
        int32_t bagBody = 8 + 16 + arrayBody + 12;
        int32_t count = int32_t(entries.size());
        Bytes objects;
        objects.frame("KBag", bagBody).section(1, bagBody).frame("KArray", arrayBody).section(1, arrayBody);
        objects.l(count).b(0).append(slots).l(count).l(1).l(0);
        int32_t body = 8 + int32_t(keyStream.size() + objects.get().size());
        return Bytes().l(kMagic).l(7).frame("KNamedBag", body).section(1, body).append(keyStream).append(objects).get();
    }

    TempFolder folder;
    KDocument document;
};

} // namespace

TEST_F(Document, SavesTheHeadAndTheBagAndLoadsThemBack)
{
    KDocument& saved = documentAt("story.doc");
    saved.setVersion(3);
    saved.add("title", *new KString("The Fox"));
    saved.add("pages", *new KNumber(12.0));
    ASSERT_TRUE(saved.save());
    EXPECT_EQ(saved.getFileError(), 0);

    std::vector<uint8_t> bytes = bytesOf(folder.file("story.doc"));
    std::vector<uint8_t> head = Bytes().text("TEST").l(3).l(idOf("KNamedBag")).get();
    ASSERT_GE(bytes.size(), head.size());
    EXPECT_TRUE(std::equal(head.begin(), head.end(), bytes.begin()));
    KNamedBag& bag = saved;
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + 8, bytes.end()), streamOf(bag));
    EXPECT_EQ(filetest::namesIn(folder.path()).size(), 1u) << "no temporary file is left";

    // Both ways of reading give the same document; the version is replaced.
    for (bool buffered : { false, true }) {
        KDocument loaded;
        KFileReference reference(folder.pathOf("story.doc"));
        loaded.setFile(reference);
        loaded.setMagic(kMagic);
        loaded.setVersion(99);
        loaded.setUseMemoryBuffer(buffered);
        ASSERT_TRUE(loaded.load()) << buffered;
        EXPECT_EQ(loaded.getVersion(), 3);
        EXPECT_FALSE(loaded.isDataIgnored());
        ASSERT_EQ(loaded.getSize(), 2);
        EXPECT_EQ(*static_cast<KString*>(loaded.findNamedObject("title")), "The Fox");

        KDocument copy(loaded);
        EXPECT_EQ(copy.getMagic(), kMagic);
        EXPECT_EQ(copy.getVersion(), 3);
        EXPECT_TRUE(copy.hasFile());
        EXPECT_EQ(copy.findNamedObject("pages"), loaded.findNamedObject("pages"));
        KDocumentPtr deep = kAdopt(static_cast<KDocument*>(loaded.deepCopy()));
        EXPECT_NE(deep->findNamedObject("pages"), loaded.findNamedObject("pages"));
        EXPECT_EQ(deep->getVersion(), 3);
    }
}

TEST_F(Document, ForeignAndDamagedFilesLoadAsFalse)
{
    KDocument& saved = documentAt("story.doc");
    saved.add("title", *new KString("The Fox"));
    ASSERT_TRUE(saved.save());
    std::vector<uint8_t> whole = bytesOf(folder.file("story.doc"));

    // Another magic fails at the head and leaves the content unread.
    KDocument other;
    KFileReference reference(folder.pathOf("story.doc"));
    other.setFile(reference);
    other.setMagic(KDocument::makeMagic("ELSE"));
    other.add("kept", *new KString("mine"));
    EXPECT_FALSE(other.load());
    EXPECT_EQ(other.getFileError(), 0);
    EXPECT_EQ(other.getSize(), 1);

    // A truncated file gives code 40.
    writeBytes(folder.file("cut.doc"), std::vector<uint8_t>(whole.begin(), whole.end() - 3));
    KDocument& cut = documentAt("cut.doc");
    EXPECT_FALSE(cut.load());
    EXPECT_EQ(cut.getFileError(), KError::EndOfFile);

    // A body that is not the bag's stream is damage, not an empty document.
    writeBytes(folder.file("odd.doc"), Bytes().text("TEST").l(1).frame("KString", 0, 0));
    EXPECT_FALSE(documentAt("odd.doc").load());
    EXPECT_EQ(document.getFileError(), KError::CouldNotReadFile);

    // A missing file.
    EXPECT_FALSE(documentAt("absent.doc").load());
    EXPECT_EQ(document.getFileError(), KError::FileNotFound);

    // An object of a class without a file form ends the load, not the program.
    std::vector<uint8_t> tree = Bytes().l(idOf("KTree")).frame("KTree", 0, 0);
    writeBytes(folder.file("tree.doc"), handMade({ { "tree", tree } }));
    EXPECT_FALSE(documentAt("tree.doc").load());
    EXPECT_EQ(document.getFileError(), KError::CouldNotReadFile);
    EXPECT_EQ(KErrorHandler::getErrorMode(), KErrorHandler::Internal);
}

TEST_F(Document, SectionsAndClassesItDoesNotKnowAreSkippedAndCounted)
{
    // A number with a future section 2, a number with a 0-section body, an
    // unknown class: the entries around them stay aligned.
    std::vector<uint8_t> future
        = Bytes().l(idOf("KNumber")).frame("KNumber", 16 + 12, 2).section(1, 16).d(1.5).section(2, 12).l(-1).get();
    std::vector<uint8_t> bare = Bytes().l(idOf("KNumber")).frame("KNumber", 0, 0);
    std::vector<uint8_t> unknown = Bytes().l(idOf("KMysteryThing")).frame("KMysteryThing", 12).section(1, 12).l(5);
    std::vector<uint8_t> last = Bytes().l(idOf("KString")).frame("KString", 16).section(1, 16).s(1).l(1).text("z").b(0);
    writeBytes(folder.file("mixed.doc"),
               handMade({ { "future", future }, { "bare", bare }, { "unknown", unknown }, { "last", last } }));

    KDocument& loaded = documentAt("mixed.doc");
    ASSERT_TRUE(loaded.load());
    EXPECT_TRUE(loaded.isDataIgnored());
    EXPECT_EQ(loaded.getVersion(), 7);
    ASSERT_EQ(loaded.getSize(), 3) << "the unknown entry is gone with its key";
    EXPECT_EQ(static_cast<KNumber*>(loaded.findNamedObject("future"))->getValue(), 1.5);
    EXPECT_EQ(static_cast<KNumber*>(loaded.findNamedObject("bare"))->getValue(), 0.0);
    EXPECT_EQ(*static_cast<KString*>(loaded.findNamedObject("last")), "z");
    EXPECT_EQ(KClassStreamState::skippedClassData(), 1);
    EXPECT_EQ(KClassStreamState::nulledObjects(), 1);

    // A null slot for an unknown class alone does not count as ignored data.
    writeBytes(folder.file("unknown.doc"), handMade({ { "unknown", unknown }, { "last", last } }));
    ASSERT_TRUE(documentAt("unknown.doc").load());
    EXPECT_FALSE(document.isDataIgnored());
    EXPECT_EQ(document.getSize(), 1);

    // A class id mismatch under policy 1: no sections, 8 bytes in.
    KString text;
    int32_t position = 0;
    KNumber number(2.0);
    EXPECT_EQ(readInto(text, streamOf(number), &position), 0);
    EXPECT_EQ(position, 8);
    EXPECT_EQ(KClassStreamState::droppedObjects(), 1);
}

TEST_F(Document, AFailedSaveLeavesTheOldFile)
{
    KDocument& saved = documentAt("story.doc");
    saved.add("title", *new KString("first version"));
    ASSERT_TRUE(saved.save());
    std::vector<uint8_t> before = bytesOf(folder.file("story.doc"));

    saved.add("broken", *new FailingWriter());
    EXPECT_FALSE(saved.save());
    EXPECT_EQ(saved.getFileError(), KError::DiskFull);
    EXPECT_EQ(bytesOf(folder.file("story.doc")), before);
    EXPECT_EQ(filetest::namesIn(folder.path()), std::vector<std::string> { "story.doc" });

    // A folder that is not there: nothing can be written at all.
    KFileReference nowhere(folder.pathOf("missing/story.doc"));
    saved.setFile(nowhere);
    EXPECT_FALSE(saved.save());
    EXPECT_NE(saved.getFileError(), 0);
}

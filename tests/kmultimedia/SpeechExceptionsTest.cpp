// The speech exceptions: their stream, the dictionary file with its damaged,
// foreign and missing forms, and the look-up the rewriting relies on.

#include "kernel/KError.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "kmultimedia/KSpeechException.h"
#include "kmultimedia/KSpeechExceptionHandler.h"
#include "tests/kernel/FileTestSupport.h"
#include "tests/kernel/PersistenceTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

using namespace filetest;
using namespace persistencetest;

namespace {

// Keeps the messages that would have been shown.
class ShownMessages {
public:
    ShownMessages()
    {
        shown().clear();
        KErrorHandler::setMessageProc(&keep);
    }
    ~ShownMessages() { KErrorHandler::setMessageProc(nullptr); }
    ShownMessages(const ShownMessages&) = delete;
    ShownMessages& operator=(const ShownMessages&) = delete;

    static std::vector<std::string>& shown()
    {
        static std::vector<std::string> messages;
        return messages;
    }

private:
    static void keep(const char* text, const char* caption, int32_t)
    {
        shown().push_back(std::string(caption) + ": " + text);
    }
};

std::vector<uint8_t> stringRecord(const char* text)
{
    auto length = int32_t(std::strlen(text));
    if (length == 0)
        return Bytes().frame("KString", 14).section(1, 14).s(1).l(0);
    return Bytes().frame("KString", 15 + length).section(1, 15 + length).s(1).l(length).text(text).b(0);
}

std::vector<uint8_t> exceptionRecord(const char* written, const char* spoken)
{
    std::vector<uint8_t> strings = Bytes().append(stringRecord(written)).append(stringRecord(spoken));
    auto length = int32_t(8 + strings.size());
    return Bytes().frame("KSpeechException", length).section(1, length).append(strings);
}

// The count is the records' unless given.
std::vector<uint8_t> exceptionsFile(const std::vector<std::vector<uint8_t>>& records,
                                    std::optional<int32_t> count = std::nullopt)
{
    Bytes bytes;
    bytes.l(KSpeechExceptionHandler::kMagic).l(7).l(count.value_or(int32_t(records.size())));
    for (const auto& record : records)
        bytes.append(record);
    return bytes;
}

class SpeechExceptionsTest : public testing::Test {
protected:
    void SetUp() override
    {
        KErrorHandler::loadKernelErrors();
        kRegisterMultimediaClasses();
    }

    KFileReference dictionary() const { return KFileReference(folder.pathOf("TaleLoom/KSpeechExceptions.DAT")); }
    std::string dictionaryPath() const { return folder.file("TaleLoom/KSpeechExceptions.DAT"); }
    void writeDictionary(const std::vector<uint8_t>& bytes)
    {
        std::filesystem::create_directories(folder.file("TaleLoom"));
        writeBytes(dictionaryPath(), bytes);
    }
    std::vector<std::string> writtenForms(const KSpeechExceptionHandler& handler)
    {
        std::vector<std::string> forms;
        for (KSpeechException* entry : handler.getEntries())
            forms.push_back(std::string(entry->c_str()) + "=" + entry->getSpoken().c_str());
        return forms;
    }

    TempFolder folder;
    ShownMessages messages;
};

} // namespace

TEST_F(SpeechExceptionsTest, AnExceptionStreamsItsWrittenFormThenItsSpokenForm)
{
    KSpeechException exception(KString("Dr"), KString("Doctor"));
    std::vector<uint8_t> bytes = streamOf(exception);
    EXPECT_EQ(bytes, exceptionRecord("Dr", "Doctor"));
    // The written form's record follows the frame and section heads; the
    // spoken form's comes right after it.
    ASSERT_EQ(bytes.size(), 16u + 8u + 33u + 37u);
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + 24, bytes.begin() + 28), Bytes().l(idOf("KString")).get());
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + 57, bytes.end()), stringRecord("Doctor"));

    KSpeechExceptionPtr back(new KSpeechException());
    EXPECT_EQ(readInto(*back, bytes), 0);
    EXPECT_EQ(*back, KString("Dr"));
    EXPECT_EQ(back->getSpoken(), KString("Doctor"));
    KSpeechExceptionPtr copy(static_cast<KSpeechException*>(back->deepCopy()));
    EXPECT_EQ(copy->getSpoken(), KString("Doctor"));
}

TEST_F(SpeechExceptionsTest, TheDictionaryIsSavedInItsFileFormAndReadBack)
{
    {
        KSpeechExceptionHandler handler(dictionary());
        EXPECT_EQ(handler.getReadResult(), KSpeechExceptionHandler::ReadResult::Missing);
        EXPECT_EQ(KSpeechExceptionHandler::current(), &handler);
        EXPECT_TRUE(handler.add(KString("Zoe"), KString("Zo ee")));
        EXPECT_TRUE(handler.add(KString("Dr"), KString("Doctor")));
        // Forms that no word could ever match are refused.
        EXPECT_FALSE(handler.add(KString(""), KString("nothing")));
        EXPECT_FALSE(handler.add(KString("New York"), KString("Noo York")));
        EXPECT_FALSE(handler.add(KString("tab\there"), KString("x")));
        ASSERT_TRUE(handler.save());
    }
    EXPECT_EQ(KSpeechExceptionHandler::current(), nullptr);
    // Records in the order of their keys, behind magic, version and count.
    EXPECT_EQ(bytesOf(dictionaryPath()), Bytes()
                                             .text("KSPX")
                                             .l(KSpeechExceptionHandler::kFileVersion)
                                             .l(2)
                                             .append(exceptionRecord("Dr", "Doctor"))
                                             .append(exceptionRecord("Zoe", "Zo ee"))
                                             .get());
    // Nothing is left of the temporary file it was written through.
    EXPECT_EQ(namesIn(folder.file("TaleLoom")), std::vector<std::string> { "KSpeechExceptions.DAT" });

    KSpeechExceptionHandler again(dictionary());
    EXPECT_EQ(again.getReadResult(), KSpeechExceptionHandler::ReadResult::Read);
    EXPECT_EQ(writtenForms(again), (std::vector<std::string> { "Dr=Doctor", "Zoe=Zo ee" }));
}

TEST_F(SpeechExceptionsTest, LookUpTriesTheExactWordAndThenIgnoresCase)
{
    KSpeechExceptionHandler handler(dictionary());
    handler.add(KString("NASA"), KString("National Aeronautics"));
    handler.add(KString("nasa"), KString("nasa lower"));
    handler.add(KString("Caf\xE9"), KString("Kaffee"));
    ASSERT_NE(handler.find(KString("nasa")), nullptr);
    EXPECT_EQ(handler.find(KString("nasa"))->getSpoken(), KString("nasa lower"));
    EXPECT_EQ(handler.find(KString("NASA"))->getSpoken(), KString("National Aeronautics"));
    // Without an exact entry the first in key order of the same letters.
    EXPECT_EQ(handler.find(KString("Nasa"))->getSpoken(), KString("National Aeronautics"));
    // Case follows the Windows set beyond ASCII.
    ASSERT_NE(handler.find(KString("CAF\xC9")), nullptr);
    EXPECT_EQ(handler.find(KString("")), nullptr);
    EXPECT_EQ(handler.find(KString("NAS")), nullptr);

    // Adding again replaces; removing takes the exact form only.
    handler.add(KString("NASA"), KString("Nasa"));
    EXPECT_EQ(handler.getCount(), 3);
    EXPECT_EQ(handler.find(KString("NASA"))->getSpoken(), KString("Nasa"));
    EXPECT_FALSE(handler.remove(KString("Nasa")));
    EXPECT_TRUE(handler.remove(KString("nasa")));
    EXPECT_EQ(handler.find(KString("nasa"))->getSpoken(), KString("Nasa")) << "the other case still answers";
    EXPECT_TRUE(handler.remove(KString("NASA")));
    EXPECT_EQ(handler.find(KString("nasa")), nullptr);
    EXPECT_EQ(writtenForms(handler), (std::vector<std::string> { "Caf\xE9=Kaffee" }));

    // Many entries stay a searchable, balanced tree.
    for (int i = 0; i < 300; ++i)
        handler.add(KString(("w" + std::to_string(i)).c_str()), KString(("spoken " + std::to_string(i)).c_str()));
    EXPECT_EQ(handler.getCount(), 301);
    EXPECT_EQ(handler.find(KString("W123"))->getSpoken(), KString("spoken 123"));
    handler.removeAll();
    EXPECT_EQ(handler.getCount(), 0);
    EXPECT_EQ(handler.find(KString("w1")), nullptr);
}

TEST_F(SpeechExceptionsTest, MissingAndForeignFilesAreEmptyDictionariesWithoutAWord)
{
    KSpeechExceptionHandler missing(dictionary());
    EXPECT_EQ(missing.getCount(), 0);

    writeDictionary(Bytes().text("RIFF").l(1).l(1).append(exceptionRecord("a", "b")));
    KSpeechExceptionHandler foreign(dictionary());
    EXPECT_EQ(foreign.getReadResult(), KSpeechExceptionHandler::ReadResult::NotExceptions);
    EXPECT_EQ(foreign.getCount(), 0);

    writeDictionary(Bytes().text("KS"));
    EXPECT_EQ(foreign.reload(), KSpeechExceptionHandler::ReadResult::NotExceptions);
    EXPECT_TRUE(ShownMessages::shown().empty());

    // A later record of the same written form wins.
    writeDictionary(
        exceptionsFile({ exceptionRecord("b", "first"), exceptionRecord("a", "x"), exceptionRecord("b", "second") }));
    EXPECT_EQ(foreign.reload(), KSpeechExceptionHandler::ReadResult::Read);
    EXPECT_EQ(writtenForms(foreign), (std::vector<std::string> { "a=x", "b=second" }));
}

TEST_F(SpeechExceptionsTest, ADamagedFileKeepsWhatCameBeforeWarnsOnceAndIsCopiedAsideBeforeTheNextWrite)
{
    std::vector<uint8_t> broken = exceptionRecord("c", "see");
    broken.resize(broken.size() - 5);
    std::vector<uint8_t> bytes = exceptionsFile({ exceptionRecord("a", "ay"), exceptionRecord("b", "bee"), broken });
    writeDictionary(bytes);

    KSpeechExceptionHandler handler(dictionary());
    EXPECT_EQ(handler.getReadResult(), KSpeechExceptionHandler::ReadResult::Damaged);
    EXPECT_EQ(writtenForms(handler), (std::vector<std::string> { "a=ay", "b=bee" }));
    ASSERT_EQ(ShownMessages::shown().size(), 1u);
    EXPECT_EQ(ShownMessages::shown()[0].rfind("Speech Exceptions: ", 0), 0u);
    handler.reload();
    EXPECT_EQ(ShownMessages::shown().size(), 1u) << "the same damage is told once";

    handler.add(KString("d"), KString("dee"));
    ASSERT_TRUE(handler.save());
    EXPECT_EQ(bytesOf(dictionaryPath() + ".bak"), bytes);
    EXPECT_EQ(handler.reload(), KSpeechExceptionHandler::ReadResult::Read);
    EXPECT_EQ(handler.getCount(), 3);

    // A sound file is not copied aside again over the first copy.
    handler.add(KString("e"), KString("ee"));
    ASSERT_TRUE(handler.save());
    EXPECT_EQ(bytesOf(dictionaryPath() + ".bak"), bytes);
}

TEST_F(SpeechExceptionsTest, CountsAndRecordsThatDoNotFitTheFileAreDamage)
{
    // A count far beyond the bytes reads the records there are.
    writeDictionary(exceptionsFile({ exceptionRecord("a", "ay") }, 0x7FFFFFFF));
    KSpeechExceptionHandler handler(dictionary());
    EXPECT_EQ(handler.getReadResult(), KSpeechExceptionHandler::ReadResult::Damaged);
    EXPECT_EQ(handler.getCount(), 1);

    writeDictionary(exceptionsFile({}, -3));
    EXPECT_EQ(handler.reload(), KSpeechExceptionHandler::ReadResult::Damaged);
    EXPECT_EQ(handler.getCount(), 0);

    // A record of another class is not read as an exception.
    writeDictionary(exceptionsFile({ exceptionRecord("a", "ay"), stringRecord("zzz") }));
    EXPECT_EQ(handler.reload(), KSpeechExceptionHandler::ReadResult::Damaged);
    EXPECT_EQ(writtenForms(handler), std::vector<std::string> { "a=ay" });

    // A section length past the end of the file.
    std::vector<uint8_t> overlong = exceptionRecord("b", "bee");
    patchLong(overlong, int32_t(overlong.size()) - 16, 0x10000);
    writeDictionary(exceptionsFile({ overlong }));
    EXPECT_EQ(handler.reload(), KSpeechExceptionHandler::ReadResult::Damaged);
    EXPECT_EQ(handler.getCount(), 0);

    // Bytes after the records counted are left alone.
    writeDictionary(Bytes().append(exceptionsFile({ exceptionRecord("a", "ay") })).l(99));
    EXPECT_EQ(handler.reload(), KSpeechExceptionHandler::ReadResult::Read);
    EXPECT_EQ(handler.getCount(), 1);
}

TEST_F(SpeechExceptionsTest, TheDefaultFileLivesInTheUsersDataFolder)
{
    std::string path = KTextCodec::toUtf8(KSpeechExceptionHandler::defaultFile().getNativeText());
    EXPECT_NE(path.find("/TaleLoom/KSpeechExceptions.DAT"), std::string::npos) << path;
}

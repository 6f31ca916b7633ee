#include "kernel/KError.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "tests/kernel/FileTestSupport.h"
#include "tests/support/TestSupport.h"

#include <csignal>
#include <gtest/gtest.h>

using namespace filetest;
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

// Writes every scalar kind once, in a fixed order.
void writeScalars(KFile& file)
{
    file.writeByte(0xAB);
    file.writeBool(true);
    file.writeBool(false);
    file.writeShort(-2);
    file.writeLong(0x01020304);
    file.writeFloat(1.0f);
    file.writeDouble(-2.0);
}

const std::vector<uint8_t> kScalarBytes = {
    0xAB, 0x01, 0x00, 0xFF, 0xFE, 0x01, 0x02, 0x03, 0x04, 0x3F, 0x80,
    0x00, 0x00, 0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
};

// A block of varied bytes, larger than the write buffer when asked.
std::vector<char> pattern(size_t size)
{
    std::vector<char> data(size);
    for (size_t i = 0; i < size; ++i)
        data[i] = char((i * 7 + i / 251) & 0xFF);
    return data;
}

// Raises the soft file-size limit for the scope so that a write beyond it
// fails with EFBIG instead of killing the process.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &saved);
        previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = saved;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &saved);
        std::signal(SIGXFSZ, previousHandler);
    }

private:
    rlimit saved {};
    void (*previousHandler)(int) = nullptr;
};

} // namespace

TEST(KFile, ScalarsAreBigEndianOnDiskAndReadBack)
{
    TempFolder folder;
    KFile file(folder.pathOf("scalars.bin"));
    openForWriting(file, KFileModeDirect);
    writeScalars(file);
    file.close();
    ASSERT_EQ(file.getError(), 0);
    EXPECT_EQ(bytesOf(folder.file("scalars.bin")), kScalarBytes);

    for (KFileMode mode : { KFileModeDirect, KFileModeReadBuffered }) {
        KFile in(folder.pathOf("scalars.bin"));
        in.setMode(mode);
        in.open();
        EXPECT_EQ(in.getSize(), int32_t(kScalarBytes.size()));
        EXPECT_EQ(in.readByte(), 0xAB);
        EXPECT_TRUE(in.readBool());
        EXPECT_FALSE(in.readBool());
        EXPECT_EQ(in.readShort(), -2);
        EXPECT_EQ(in.readLong(), 0x01020304);
        EXPECT_EQ(in.readFloat(), 1.0f);
        EXPECT_EQ(in.readDouble(), -2.0);
        EXPECT_EQ(in.bytesLeft(), 0);
        EXPECT_EQ(in.getError(), 0) << "mode " << mode;
    }

    // Only a byte 1 reads as true.
    writeBytes(folder.file("bools.bin"), { 2, 1, 0xFF });
    KFile bools(folder.pathOf("bools.bin"));
    bools.open();
    EXPECT_FALSE(bools.readBool());
    EXPECT_TRUE(bools.readBool());
    EXPECT_FALSE(bools.readBool());
}

TEST(KFile, ATruncatedReadStoresEndOfFileAndGivesZero)
{
    TempFolder folder;
    writeBytes(folder.file("short.bin"), { 0x12, 0x34, 0x56 });

    KFile direct(folder.pathOf("short.bin"));
    direct.open();
    EXPECT_EQ(direct.readLong(), 0);
    EXPECT_EQ(direct.getError(), KError::EndOfFile);

    // Buffered reads are all or nothing: the position stays put.
    KFile buffered(folder.pathOf("short.bin"));
    buffered.setMode(KFileModeReadBuffered);
    buffered.open();
    EXPECT_EQ(buffered.readShort(), 0x1234);
    EXPECT_EQ(buffered.readLong(), 0);
    EXPECT_EQ(buffered.getError(), KError::EndOfFile);
    EXPECT_EQ(buffered.getPosition(), 2);
    buffered.clearError();
    EXPECT_EQ(buffered.readByte(), 0x56);

    char block[8];
    buffered.setPosition(0);
    EXPECT_FALSE(buffered.readBytes(block, 8));
    EXPECT_EQ(buffered.getPosition(), 0);

    // A seek past the end of a buffered file is refused the same way.
    buffered.clearError();
    buffered.setPosition(10);
    EXPECT_EQ(buffered.getError(), KError::EndOfFile);
    EXPECT_EQ(buffered.getPosition(), 0);
}

TEST(KFile, NativeFailuresAreStoredAsKernelCodes)
{
    TempFolder folder;
    ErrorRecorder recorder;

    KFile missing(folder.pathOf("nothing-here.bin"));
    missing.open();
    EXPECT_FALSE(missing.isOpen());
    EXPECT_EQ(missing.getError(), KError::FileNotFound);

    KFile inMissingFolder(folder.pathOf("no-folder/x.bin"));
    inMissingFolder.create();
    EXPECT_EQ(inMissingFolder.getError(), KError::FileNotFound);

    writeBytes(folder.file("plain"), { 1 });
    KFile underAFile(folder.pathOf("plain/x.bin"));
    underAFile.open();
    EXPECT_EQ(underAFile.getError(), KError::FileNotFound); // ENOTDIR

    // A path longer than the system takes is refused before it gets there.
    std::string longName(5000, 'a');
    KFile tooLong(folder.pathOf(longName + ".bin"));
    tooLong.create();
    EXPECT_EQ(tooLong.getError(), KError::UnknownFileError);
    tooLong.open();
    EXPECT_FALSE(tooLong.isOpen());

    // A closed file's size is found by opening it; a missing one stores 33.
    writeBytes(folder.file("five"), { 1, 2, 3, 4, 5 });
    KFile five(folder.pathOf("five"));
    EXPECT_EQ(five.getSize(), 5);
    EXPECT_FALSE(five.isOpen());
    EXPECT_EQ(missing.getSize(), 0);
    EXPECT_EQ(missing.getError(), KError::FileNotFound);

    EXPECT_TRUE(recorder.empty());
}

TEST(KFile, AllModesWriteTheSameBytes)
{
    TempFolder folder;
    // Patching back, as a class writer does, works in direct and memory mode.
    auto writePatched = [](KFile& file) {
        file.writeLong(0);
        writeScalars(file);
        int32_t end = file.getPosition();
        file.setPosition(0);
        file.writeLong(end);
        file.setPosition(end);
        file.writeLong(-1);
    };
    KFile direct(folder.pathOf("direct.bin"));
    openForWriting(direct, KFileModeDirect);
    writePatched(direct);
    direct.close();
    KFile memory(folder.pathOf("memory.bin"));
    openForWriting(memory, KFileModeMemory);
    writePatched(memory);
    EXPECT_EQ(memory.getSize(), direct.getSize());
    memory.close();
    ASSERT_EQ(direct.getError(), 0);
    ASSERT_EQ(memory.getError(), 0);
    EXPECT_EQ(bytesOf(folder.file("memory.bin")), bytesOf(folder.file("direct.bin")));

    // Large writes cross the 524,288-byte buffer in every way: exactly to
    // its end, over several whole buffers, and in many small pieces.
    std::vector<char> data = pattern(size_t(KFile::kBufferUnit) * 3 + 1000);
    auto writeLarge = [&](KFile& file) {
        file.write(data.data(), 10);
        file.write(data.data() + 10, KFile::kBufferUnit - 10);
        file.write(data.data() + KFile::kBufferUnit, 2 * KFile::kBufferUnit + 1);
        for (size_t at = 3 * size_t(KFile::kBufferUnit) + 1; at < data.size(); at += 7)
            file.write(data.data() + at, int32_t(std::min<size_t>(7, data.size() - at)));
    };
    for (KFileMode mode : { KFileModeDirect, KFileModeWriteBuffered, KFileModeMemory }) {
        std::string name = "large-" + std::to_string(mode) + ".bin";
        KFile file(folder.pathOf(name));
        openForWriting(file, mode);
        writeLarge(file);
        file.close();
        EXPECT_EQ(file.getError(), 0);
        std::vector<uint8_t> written = bytesOf(folder.file(name));
        ASSERT_EQ(written.size(), data.size()) << "mode " << mode;
        EXPECT_TRUE(std::equal(written.begin(), written.end(), reinterpret_cast<const uint8_t*>(data.data())))
            << "mode " << mode;
    }

    // A RAM image reads like the file it was written to.
    auto* image = static_cast<char*>(KMemory::allocate(kScalarBytes.size(), false));
    KMemory::copy(kScalarBytes.data(), image, kScalarBytes.size());
    KFile ram;
    ram.setMode(KFileModeReadBuffered);
    ram.openFromRAM(image, int32_t(kScalarBytes.size()));
    EXPECT_EQ(ram.readByte(), 0xAB);
    ram.skip(2);
    EXPECT_EQ(ram.readShort(), -2);
    EXPECT_EQ(ram.bytesLeft(), 16);
    ram.close();
}

TEST(KFile, TextLinesEndInCRLFAndReadAnyLineEnd)
{
    TempFolder folder;
    KFile out(folder.pathOf("text.txt"));
    openForWriting(out, KFileModeDirect);
    out.writeLine("first");
    out.writeText("a");
    out.writeTab();
    out.writeSpaces(3);
    out.writeText("b");
    out.writeCRLF();
    out.close();
    std::string expected = "first\r\na\t   b\r\n";
    EXPECT_EQ(bytesOf(folder.file("text.txt")), std::vector<uint8_t>(expected.begin(), expected.end()));

    std::string mixed = "one\ntwo\rthree\r\n\rlast";
    writeBytes(folder.file("mixed.txt"), std::vector<uint8_t>(mixed.begin(), mixed.end()));
    for (KFileMode mode : { KFileModeDirect, KFileModeReadBuffered }) {
        KFile in(folder.pathOf("mixed.txt"));
        in.setMode(mode);
        in.open();
        in.skip(4);
        EXPECT_EQ(in.countLines(), 5);
        EXPECT_EQ(in.getPosition(), 4);
        EXPECT_EQ(in.getError(), 0);
        KString line;
        EXPECT_TRUE(in.readLine(line));
        EXPECT_EQ(line, "two");
        EXPECT_TRUE(in.readLine(line));
        EXPECT_EQ(line, "three");
        EXPECT_TRUE(in.readLine(line));
        EXPECT_TRUE(line.isEmpty());
        // The last line has no end: it comes with the end-of-file error.
        EXPECT_FALSE(in.readLine(line));
        EXPECT_EQ(line, "last");
        EXPECT_EQ(in.getError(), KError::EndOfFile);
    }

    // A CR as the very last byte ends its line without an error.
    writeBytes(folder.file("cr.txt"), { 'x', '\r' });
    KFile cr(folder.pathOf("cr.txt"));
    cr.open();
    KString line;
    EXPECT_TRUE(cr.readLine(line));
    EXPECT_EQ(line, "x");
    EXPECT_EQ(cr.countLines(), 1);
}

TEST(KFile, CountedTextChecksItsLengthBeforeAllocating)
{
    TempFolder folder;
    KFile out(folder.pathOf("texts.bin"));
    openForWriting(out, KFileModeDirect);
    out.writeCountedText("hello", 5);
    out.writeCountedText(nullptr, 0);
    out.close();
    std::vector<uint8_t> expected = { 0, 0, 0, 5, 'h', 'e', 'l', 'l', 'o', 0, 0, 0, 0, 0 };
    EXPECT_EQ(bytesOf(folder.file("texts.bin")), expected);

    KFile in(folder.pathOf("texts.bin"));
    in.open();
    KString text;
    EXPECT_TRUE(in.readCountedText(text));
    EXPECT_EQ(text, "hello");
    EXPECT_TRUE(in.readCountedText(text));
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(in.getError(), 0);
    in.close();

    // Lengths the file cannot hold, from one byte too many up to the
    // largest long, and a negative one: refused at once, nothing allocated.
    for (int32_t length : { 5, 0x7FFFFFFF, -1 }) {
        std::vector<uint8_t> bytes = {
            uint8_t(length >> 24), uint8_t(length >> 16), uint8_t(length >> 8), uint8_t(length), 'a', 'b', 'c', 'd', 'e'
        };
        writeBytes(folder.file("bad.bin"), bytes);
        for (KFileMode mode : { KFileModeDirect, KFileModeReadBuffered }) {
            KFile bad(folder.pathOf("bad.bin"));
            bad.setMode(mode);
            bad.open();
            int32_t got = -1;
            EXPECT_EQ(bad.readCountedText(&got), nullptr);
            EXPECT_EQ(got, 0);
            EXPECT_EQ(bad.getError(), length < 0 ? KError::CouldNotReadFile : KError::EndOfFile) << length;
            EXPECT_EQ(bad.getPosition(), 4);
        }
    }
}

TEST(KFile, AtomicWriteReplacesTheFileOnlyWhenAllWasWritten)
{
    TempFolder folder;
    writeBytes(folder.file("doc.bin"), { 'o', 'l', 'd' });
    chmod(folder.file("doc.bin").c_str(), 0640);

    // Success: the new bytes in place, the permissions kept, no leftovers.
    for (KFileMode mode : { KFileModeDirect, KFileModeMemory }) {
        KFile file(folder.pathOf("doc.bin"));
        file.setMode(mode);
        ASSERT_TRUE(file.beginAtomicWrite());
        file.writeLong(0x6E657721);
        EXPECT_EQ(bytesOf(folder.file("doc.bin")).size(), 3u) << "untouched while writing";
        EXPECT_TRUE(file.commitAtomicWrite());
        EXPECT_EQ(bytesOf(folder.file("doc.bin")), (std::vector<uint8_t> { 'n', 'e', 'w', '!' }));
        EXPECT_EQ(namesIn(folder.path()), std::vector<std::string> { "doc.bin" });
        writeBytes(folder.file("doc.bin"), { 'o', 'l', 'd' });
    }
    struct stat info { };
    stat(folder.file("doc.bin").c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777, 0640u);

    // A write that fails half way (the disk "full" at 1000 bytes) leaves the
    // old file and no temporary file.
    std::vector<char> data = pattern(4000);
    {
        FileSizeLimit limit(1000);
        KFile file(folder.pathOf("doc.bin"));
        ASSERT_TRUE(file.beginAtomicWrite());
        file.write(data.data(), int32_t(data.size()));
        EXPECT_NE(file.getError(), 0);
        file.close();
        EXPECT_FALSE(file.isOpen());
    }
    EXPECT_EQ(bytesOf(folder.file("doc.bin")), (std::vector<uint8_t> { 'o', 'l', 'd' }));
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string> { "doc.bin" });

    // Any stored error abandons the write, as does destroying the file.
    {
        KFile file(folder.pathOf("doc.bin"));
        ASSERT_TRUE(file.beginAtomicWrite());
        file.writeLong(1);
        file.setError(KError::DiskFull);
        EXPECT_FALSE(file.commitAtomicWrite());
        EXPECT_EQ(file.getError(), KError::DiskFull);
        ASSERT_TRUE(file.beginAtomicWrite());
        file.writeLong(2);
    }
    EXPECT_EQ(bytesOf(folder.file("doc.bin")), (std::vector<uint8_t> { 'o', 'l', 'd' }));
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string> { "doc.bin" });

    // A target folder that does not exist: false, with the error stored.
    KFile nowhere(folder.pathOf("missing/doc.bin"));
    EXPECT_FALSE(nowhere.beginAtomicWrite());
    EXPECT_EQ(nowhere.getError(), KError::FileNotFound);
    EXPECT_FALSE(nowhere.isOpen());

    // A new file is made with the usual permissions.
    KFile fresh(folder.pathOf("fresh.bin"));
    ASSERT_TRUE(fresh.beginAtomicWrite());
    fresh.writeByte(7);
    fresh.close();
    EXPECT_EQ(fresh.getError(), 0);
    EXPECT_EQ(bytesOf(folder.file("fresh.bin")), std::vector<uint8_t> { 7 });
}

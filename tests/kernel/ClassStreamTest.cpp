#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KClassWriter.h"
#include "kernel/KError.h"
#include "kernel/KFile.h"
#include "kernel/KThingPtr.h"
#include "tests/kernel/FileTestSupport.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

using namespace filetest;

namespace {

// A persistent class of the tests: a value in section 1, an optional child
// object after it, and, when `writeFuture` is set, a section 2 that readers
// of this version do not know.
class StreamProbe : public KThing {
    K_DECLARE_CLASS(StreamProbe)
public:
    static bool writeFuture;

    int32_t value = 0;
    KThingPtr child;

    void writeToFile(KFile& file, int32_t) override
    {
        KClassWriter writer;
        writer.begin(file, classRecord);
        writer.newSection(1);
        file.writeLong(value);
        KClassWriter::writeObject(file, child.get());
        if (writeFuture) {
            writer.newSection(2);
            file.writeDouble(3.5);
        }
        writer.end();
    }

    void readFromFile(KFile& file) override
    {
        KClassReader reader;
        int32_t version = 0;
        int32_t sections = 0;
        reader.begin(file, classRecord, &version, &sections);
        int32_t id = 0;
        if (reader.nextSection(&id) && id == 1) {
            value = file.readLong();
            KClassReader::readObject(file, child);
        }
        reader.end();
    }
};

bool StreamProbe::writeFuture = false;
K_DEFINE_CLASS(StreamProbe, KThing)

// A class of the running program: it has no stream form, and counts how
// often it was made.
class LiveProbe : public KThing {
    K_DECLARE_CLASS(LiveProbe)
public:
    static int32_t made;
    LiveProbe() { ++made; }
};

int32_t LiveProbe::made = 0;
K_DEFINE_CLASS(LiveProbe, KThing)

class FutureSection {
public:
    FutureSection() { StreamProbe::writeFuture = true; }
    ~FutureSection() { StreamProbe::writeFuture = false; }
};

class ClassStream : public testing::Test {
protected:
    void SetUp() override
    {
        if (!StreamProbe::classRecord)
            StreamProbe::registerClass();
        if (!LiveProbe::classRecord)
            LiveProbe::registerClass();
        KClassStreamState::reset();
    }
    void TearDown() override { KClassStreamState::reset(); }

    // Writes with `body` into a fresh file and opens it for reading.
    template<typename Body>
    void writeThenOpen(Body body, KFileMode readMode = KFileModeReadBuffered)
    {
        {
            KFile out(folder.pathOf("stream.bin"));
            openForWriting(out, KFileModeDirect);
            body(out);
            out.close();
            ASSERT_EQ(out.getError(), 0);
        }
        openForReading(readMode);
    }

    void openForReading(KFileMode readMode = KFileModeReadBuffered)
    {
        in.close();
        in = KFile(folder.pathOf("stream.bin"));
        in.setMode(readMode);
        in.open();
    }

    std::vector<uint8_t> written() const { return bytesOf(folder.file("stream.bin")); }

    static KThing* makeProbe(int32_t value, KThing* child = nullptr)
    {
        auto* probe = new StreamProbe();
        probe->value = value;
        probe->child = child;
        return probe;
    }

    TempFolder folder;
    KFile in;
};

std::vector<uint8_t> bigEndian(std::initializer_list<int32_t> longs)
{
    std::vector<uint8_t> bytes;
    for (int32_t value : longs) {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(uint8_t(uint32_t(value) >> shift));
    }
    return bytes;
}

constexpr int32_t kUnknownID = 0x0BADC1A5;

} // namespace

TEST_F(ClassStream, FramesAreLaidOutToTheByte)
{
    int32_t id = StreamProbe::classRecord->getClassID();
    writeThenOpen([&](KFile& file) {
        KClassWriter empty;
        empty.begin(file, StreamProbe::classRecord);
        empty.end();
        KClassWriter two;
        two.begin(file, StreamProbe::classRecord);
        two.newSection(1);
        two.newSection(2);
        file.writeLong(99);
        two.end();
    });
    // No sections: body size 0. An empty section is 8 bytes long.
    std::vector<uint8_t> expected = bigEndian({ id, 1, 0, 0, id, 1, 20, 2, 1, 8, 2, 12, 99 });
    EXPECT_EQ(written(), expected);

    // The same frames in memory mode come out identical.
    KFile memory(folder.pathOf("memory.bin"));
    openForWriting(memory, KFileModeMemory);
    KClassWriter empty;
    empty.begin(memory, StreamProbe::classRecord);
    empty.end();
    KClassWriter two;
    two.begin(memory, StreamProbe::classRecord);
    two.newSection(1);
    two.newSection(2);
    memory.writeLong(99);
    two.end();
    memory.close();
    EXPECT_EQ(bytesOf(folder.file("memory.bin")), expected);

    int32_t version = 0;
    int32_t sections = -1;
    KClassReader reader;
    EXPECT_TRUE(reader.begin(in, StreamProbe::classRecord, &version, &sections));
    EXPECT_EQ(version, 1);
    EXPECT_EQ(sections, 0);
    int32_t section = 0;
    EXPECT_FALSE(reader.nextSection(&section));
    EXPECT_EQ(section, -1);
    reader.end();
    reader.begin(in, StreamProbe::classRecord, &version, &sections);
    EXPECT_EQ(sections, 2);
    ASSERT_TRUE(reader.nextSection(&section));
    EXPECT_EQ(reader.getSectionSize(), 0);
    ASSERT_TRUE(reader.nextSection(&section));
    EXPECT_EQ(section, 2);
    EXPECT_EQ(reader.getSectionSize(), 4);
    EXPECT_EQ(in.readLong(), 99);
    reader.end();
    EXPECT_EQ(KClassStreamState::skippedClassData(), 0);
}

TEST_F(ClassStream, ObjectsRoundTripWithTheirChildren)
{
    KThingPtr tree(makeProbe(1, makeProbe(2, makeProbe(3))));
    writeThenOpen([&](KFile& file) {
        KClassWriter::writeObject(file, tree.get());
        KClassWriter::writeObject(file, nullptr);
        file.writeLong(-7);
    });
    for (KFileMode mode : { KFileModeDirect, KFileModeReadBuffered }) {
        openForReading(mode);
        KThingPtr read;
        EXPECT_EQ(KClassReader::readObject(in, read), KClassReader::ObjectRead);
        auto* top = static_cast<StreamProbe*>(read.get());
        ASSERT_NE(top, nullptr);
        EXPECT_EQ(top->value, 1);
        auto* middle = static_cast<StreamProbe*>(top->child.get());
        ASSERT_NE(middle, nullptr);
        EXPECT_EQ(middle->value, 2);
        ASSERT_NE(middle->child.get(), nullptr);
        EXPECT_EQ(static_cast<StreamProbe*>(middle->child.get())->value, 3);
        EXPECT_EQ(KClassReader::readObject(in, read), KClassReader::NullObject);
        EXPECT_EQ(read.get(), nullptr);
        EXPECT_EQ(in.readLong(), -7);
        EXPECT_EQ(in.getError(), 0);
    }
}

TEST_F(ClassStream, AFutureSectionIsSkippedAndTheRestStaysAligned)
{
    {
        FutureSection future;
        KThingPtr probe(makeProbe(41));
        writeThenOpen([&](KFile& file) {
            KClassWriter::writeObject(file, probe.get());
            file.writeLong(0x600D);
        });
    }
    KThingPtr read;
    EXPECT_EQ(KClassReader::readObject(in, read), KClassReader::ObjectRead);
    EXPECT_EQ(static_cast<StreamProbe*>(read.get())->value, 41);
    EXPECT_EQ(in.readLong(), 0x600D);
    EXPECT_EQ(KClassStreamState::skippedClassData(), 1);
    EXPECT_EQ(in.getError(), 0);

    // A reader that states its sections counts the unknown one as well.
    openForReading();
    in.skip(4);
    auto readMain = [&](int32_t) {
        in.readLong();
        in.readLong();
    };
    KClassReader::readSections(in, StreamProbe::classRecord, { { 1, readMain } });
    EXPECT_EQ(in.readLong(), 0x600D);
    EXPECT_EQ(KClassStreamState::skippedClassData(), 2);
}

TEST_F(ClassStream, ReadSectionsReadsWhatTheClassKnowsAndSkipsTheRest)
{
    writeThenOpen([](KFile& file) {
        KClassWriter writer;
        writer.begin(file, StreamProbe::classRecord);
        writer.newSection(3); // known; a later version added the second long
        file.writeLong(30);
        file.writeLong(31);
        writer.newSection(9); // unknown
        file.writeLong(90);
        writer.newSection(2); // known, but too short for its reader
        file.writeLong(20);
        writer.newSection(3); // a repeat is not read over the first
        file.writeLong(-3);
        writer.newSection(1);
        file.writeLong(10);
        writer.end();
        file.writeLong(0x600D);
    });
    std::vector<int32_t> seen;
    auto readOne = [&](int32_t payload) {
        seen.push_back(payload);
        seen.push_back(in.readLong());
    };
    auto readTwo = [&](int32_t) { seen.push_back(in.readLong() + in.readLong()); };
    KClassReader::readSections(in, StreamProbe::classRecord, { { 1, readOne }, { 2, readTwo, 8 }, { 3, readOne } });
    EXPECT_EQ(seen, (std::vector<int32_t> { 8, 30, 4, 10 }));
    EXPECT_EQ(in.readLong(), 0x600D);
    EXPECT_EQ(in.getError(), 0);
    EXPECT_EQ(KClassStreamState::skippedClassData(), 1);
}

TEST_F(ClassStream, ReadSectionsRefusesAPayloadThatRunsPastItsSection)
{
    writeThenOpen([](KFile& file) {
        KClassWriter writer;
        writer.begin(file, StreamProbe::classRecord);
        writer.newSection(1);
        file.writeLong(1);
        writer.newSection(2);
        file.writeLong(2);
        writer.end();
    });
    bool secondRead = false;
    auto readTooMuch = [&](int32_t) {
        in.readLong();
        in.readLong();
    };
    KClassReader::readSections(in, StreamProbe::classRecord,
                               { { 1, readTooMuch }, { 2, [&](int32_t) { secondRead = true; } } });
    EXPECT_EQ(in.getError(), KError::CouldNotReadFile);
    EXPECT_FALSE(secondRead);
}

TEST_F(ClassStream, AClassIDMismatchFollowsThePolicy)
{
    writeThenOpen([](KFile& file) {
        KClassWriter writer;
        writer.begin(file, KString::classRecord);
        writer.newSection(1);
        file.writeLong(5);
        writer.end();
    });
    int32_t version = 0;
    int32_t sections = -1;
    {
        KClassReader reader;
        EXPECT_FALSE(reader.begin(in, StreamProbe::classRecord, &version, &sections));
        EXPECT_EQ(sections, 0);
        EXPECT_EQ(in.getPosition(), 8);
        EXPECT_EQ(KClassStreamState::droppedObjects(), 1);
        reader.end();
        EXPECT_EQ(in.getPosition(), 8);
    }

    ErrorRecorder recorder;
    KClassStreamState::setUnknownClassPolicy(KClassStreamState::FatalError);
    in.setPosition(0);
    KClassReader reader;
    reader.begin(in, StreamProbe::classRecord, &version, &sections);
    EXPECT_EQ(recorder.lastCode(), KError::ClassIDMismatch);
    // Reading goes on.
    EXPECT_EQ(sections, 1);
    int32_t id = 0;
    ASSERT_TRUE(reader.nextSection(&id));
    EXPECT_EQ(in.readLong(), 5);
    reader.end();
    EXPECT_EQ(KClassStreamState::droppedObjects(), 1);
}

TEST_F(ClassStream, UnknownClassesAreSkippedByTheirFrame)
{
    writeThenOpen([](KFile& file) {
        file.writeLong(kUnknownID);
        KClassWriter writer;
        writer.begin(file, kUnknownID, 3);
        writer.newSection(1);
        file.writeCountedText("payload", 7);
        writer.newSection(7);
        file.writeDouble(1.25);
        writer.end();
        file.writeLong(0x600D);
    });
    KThingPtr read;
    KClassStreamState::setUnknownClassPolicy(KClassStreamState::KeepNullSlot);
    EXPECT_EQ(KClassReader::readObject(in, read), KClassReader::NulledObject);
    EXPECT_EQ(in.readLong(), 0x600D);
    EXPECT_EQ(KClassStreamState::nulledObjects(), 1);

    in.setPosition(0);
    KClassStreamState::setUnknownClassPolicy(KClassStreamState::DropObject);
    EXPECT_EQ(KClassReader::readObject(in, read), KClassReader::DroppedObject);
    EXPECT_EQ(in.readLong(), 0x600D);
    EXPECT_EQ(KClassStreamState::droppedObjects(), 1);

    ErrorRecorder recorder;
    in.setPosition(0);
    KClassStreamState::setUnknownClassPolicy(KClassStreamState::FatalError);
    EXPECT_EQ(KClassReader::readObject(in, read), KClassReader::ReadFailed);
    EXPECT_EQ(recorder.lastCode(), KError::ClassNotRegistered);
    EXPECT_EQ(read.get(), nullptr);

    // The guard restores the policy it found.
    {
        KUnknownClassPolicyGuard lowered(KClassStreamState::KeepNullSlot);
        EXPECT_EQ(KClassStreamState::unknownClassPolicy(), KClassStreamState::KeepNullSlot);
    }
    EXPECT_EQ(KClassStreamState::unknownClassPolicy(), KClassStreamState::FatalError);
    KClassStreamState::reset();
    EXPECT_EQ(KClassStreamState::unknownClassPolicy(), KClassStreamState::DropObject);
    EXPECT_EQ(KClassStreamState::droppedObjects(), 0);
}

TEST_F(ClassStream, DamagedFramesFailWithoutOverReading)
{
    int32_t id = StreamProbe::classRecord->getClassID();
    struct Case {
        const char* what;
        std::vector<uint8_t> bytes;
        int32_t error;
    };
    const Case cases[] = {
        { "body larger than the file", bigEndian({ id, 1, 0x7FFFFFF0, 1, 1, 12, 0 }), KError::EndOfFile },
        { "negative body", bigEndian({ id, 1, -4, 0 }), KError::CouldNotReadFile },
        { "more sections than fit", bigEndian({ id, 1, 8, 2, 1, 8 }), KError::CouldNotReadFile },
        { "negative section count", bigEndian({ id, 1, 8, -1, 1, 8 }), KError::CouldNotReadFile },
        { "section shorter than its head", bigEndian({ id, 1, 8, 1, 1, 4 }), KError::CouldNotReadFile },
        { "section beyond the body", bigEndian({ id, 1, 8, 1, 1, 16, 0, 0 }), KError::CouldNotReadFile },
    };
    for (const Case& c : cases) {
        writeBytes(folder.file("stream.bin"), c.bytes);
        for (KFileMode mode : { KFileModeDirect, KFileModeReadBuffered }) {
            openForReading(mode);
            KThingPtr probe(new StreamProbe());
            probe.getObject().readFromFile(in);
            EXPECT_EQ(in.getError(), c.error) << c.what;
            EXPECT_LE(in.getPosition(), int32_t(c.bytes.size())) << c.what;
            EXPECT_EQ(static_cast<StreamProbe*>(probe.get())->value, 0) << c.what;
        }
    }

    // Every truncation of a valid stream ends in an error, never in a crash.
    KThingPtr tree(makeProbe(1, makeProbe(2)));
    writeThenOpen([&](KFile& file) { KClassWriter::writeObject(file, tree.get()); });
    std::vector<uint8_t> whole = written();
    for (size_t cut = 0; cut < whole.size(); ++cut) {
        writeBytes(folder.file("stream.bin"), std::vector<uint8_t>(whole.begin(), whole.begin() + long(cut)));
        openForReading();
        KThingPtr read;
        KClassReader::readObject(in, read);
        EXPECT_NE(in.getError(), 0) << "cut at " << cut;
    }

    // A skipped class whose body runs past the end is refused.
    writeBytes(folder.file("stream.bin"), bigEndian({ kUnknownID, kUnknownID, 1, 1000, 1 }));
    openForReading();
    KThingPtr read;
    EXPECT_EQ(KClassReader::readObject(in, read), KClassReader::ReadFailed);
    EXPECT_EQ(in.getError(), KError::EndOfFile);
}

TEST_F(ClassStream, NestingAndClassesAreCheckedOnReading)
{
    // Objects nested deeper than the limit are taken for damage.
    KThing* chain = nullptr;
    for (int32_t i = 0; i < KClassStreamState::kMaxObjectDepth + 5; ++i)
        chain = makeProbe(i, chain);
    KThingPtr deep(chain);
    writeThenOpen([&](KFile& file) { KClassWriter::writeObject(file, deep.get()); });
    KThingPtr read;
    KClassReader::readObject(in, read);
    EXPECT_EQ(in.getError(), KError::CouldNotReadFile);
    EXPECT_EQ(KClassStreamState::objectDepth(), 0);

    // An object of another class where a given class is expected.
    KThingPtr probe(makeProbe(9));
    writeThenOpen([&](KFile& file) { KClassWriter::writeObject(file, probe.get()); });
    EXPECT_EQ(KClassReader::readObject(in, read, KString::classRecord), KClassReader::ReadFailed);
    EXPECT_EQ(in.getError(), KError::CouldNotReadFile);
    EXPECT_EQ(read.get(), nullptr);
    openForReading();
    EXPECT_EQ(KClassReader::readObject(in, read, KThing::classRecord), KClassReader::ObjectRead);

    // A name-only root class cannot read itself: it counts as unknown.
    writeThenOpen([](KFile& file) {
        file.writeLong(KClass::findClass("KMemory")->getClassID());
        KClassWriter writer;
        writer.begin(file, KClass::findClass("KMemory"));
        writer.end();
    });
    EXPECT_EQ(KClassReader::readObject(in, read), KClassReader::DroppedObject);
    EXPECT_EQ(in.getError(), 0);
}

TEST_F(ClassStream, ClassesWithoutAStreamFormAreRefusedNotFatal)
{
    auto frameOf = [](KClass* cls) {
        return [cls](KFile& file) {
            file.writeLong(cls->getClassID());
            KClassWriter writer;
            writer.begin(file, cls);
            writer.newSection(1);
            file.writeLong(7);
            writer.end();
        };
    };
    KThingPtr read;

    // A class that never learnt to read itself makes the file damaged.
    LiveProbe::made = 0;
    writeThenOpen(frameOf(LiveProbe::classRecord));
    KClassReader::readObject(in, read);
    EXPECT_EQ(in.getError(), KError::CouldNotReadFile);
    EXPECT_EQ(LiveProbe::made, 1);

    // A transient class is refused before its constructor runs.
    LiveProbe::classRecord->setTransient();
    LiveProbe::made = 0;
    openForReading();
    EXPECT_EQ(KClassReader::readObject(in, read), KClassReader::ReadFailed);
    EXPECT_EQ(LiveProbe::made, 0);
    EXPECT_EQ(read.get(), nullptr);
}

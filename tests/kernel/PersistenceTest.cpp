#include "kernel/KArray.h"
#include "kernel/KBag.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KDate.h"
#include "kernel/KFlagSet.h"
#include "kernel/KIndexedBag.h"
#include "kernel/KNamedBag.h"
#include "kernel/KNumber.h"
#include "kernel/KSet.h"
#include "kernel/KString.h"
#include "kernel/KStringBag.h"
#include "kernel/KTime.h"
#include "kernel/KVariable.h"
#include "tests/kernel/PersistenceTestSupport.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

using namespace persistencetest;

namespace {

constexpr const char* kUnknownName = "KMysteryThing";

class Persistence : public testing::Test {
protected:
    void SetUp() override { KClassStreamState::reset(); }
    void TearDown() override { KClassStreamState::reset(); }
};

KString* stringAt(const KArray& array, int32_t pos) { return dynamic_cast<KString*>(array.getAt(pos)); }

// A bag of "a", a number that a reader will take for an unknown class, "c".
std::vector<uint8_t> bagWithUnknownMiddle()
{
    KBag bag;
    bag.add(*new KString("a"));
    bag.add(*new KNumber(1.0));
    bag.add(*new KString("c"));
    std::vector<uint8_t> bytes = streamOf(bag);
    // Only the element's tag changes; its frame is skipped by its size.
    EXPECT_TRUE(patchLong(bytes, idOf("KNumber"), idOf(kUnknownName)));
    return bytes;
}

} // namespace

TEST_F(Persistence, StreamsAreLaidOutToTheByte)
{
    KBag empty;
    EXPECT_EQ(streamOf(empty), Bytes()
                                   .frame("KBag", 49)
                                   .section(1, 49)
                                   .frame("KArray", 13)
                                   .section(1, 13)
                                   .l(0)
                                   .b(0)
                                   .l(0) // usedSize
                                   .l(1) // growSize
                                   .l(0) // minSize
                                   .get());

    KString ab("ab");
    EXPECT_EQ(streamOf(ab), Bytes().frame("KString", 17).section(1, 17).s(1).l(2).text("ab").b(0).get());
    KString nothing;
    EXPECT_EQ(streamOf(nothing), Bytes().frame("KString", 14).section(1, 14).s(1).l(0).get())
        << "an empty string has neither text nor terminator";

    // Spare capacity appears as empty slots, the class id stands twice.
    KBag spare;
    spare.setGrowSize(3);
    spare.add(*new KNumber(2.5));
    EXPECT_EQ(streamOf(spare), Bytes()
                                   .frame("KBag", 93)
                                   .section(1, 93)
                                   .frame("KArray", 57)
                                   .section(1, 57)
                                   .l(3)
                                   .b(0)
                                   .l(idOf("KNumber"))
                                   .frame("KNumber", 16)
                                   .section(1, 16)
                                   .d(2.5)
                                   .l(0)
                                   .l(0)
                                   .l(1)
                                   .l(3)
                                   .l(0)
                                   .get());

    KArray direct;
    direct.setIsDirect(true);
    direct.setSize(2);
    direct.putDirectDataAt(7, 0);
    direct.putDirectDataAt(-1, 1);
    EXPECT_EQ(streamOf(direct), Bytes().frame("KArray", 21).section(1, 21).l(2).b(1).l(7).l(-1).get());

    KVariable number(int32_t(5));
    EXPECT_EQ(streamOf(number), Bytes().frame("KVariable", 14).section(1, 14).s(3).l(5).get());
    KVariable noObject(static_cast<KThing*>(nullptr));
    EXPECT_EQ(streamOf(noObject), Bytes().frame("KVariable", 14).section(1, 14).s(7).l(0).get())
        << "an object variable without object writes the null of the reference convention";

    KFlagSet flags(0x2001);
    EXPECT_EQ(streamOf(flags), Bytes().frame("KFlagSet", 12).section(1, 12).l(0x2001).get());
    KDate date(2024, 3, 5);
    EXPECT_EQ(streamOf(date), Bytes().frame("KDate", 14).section(1, 14).s(2024).s(3).s(5).get());
}

TEST_F(Persistence, ValuesRoundTrip)
{
    KString text("Der B\xe4r");
    KString textCopy("old");
    EXPECT_EQ(readInto(textCopy, streamOf(text)), 0);
    EXPECT_EQ(textCopy, text);
    KString empty;
    EXPECT_EQ(readInto(textCopy, streamOf(empty)), 0);
    EXPECT_TRUE(textCopy.isEmpty());

    // A string from a Macintosh file comes back in the Windows set.
    KString mac;
    EXPECT_EQ(readInto(mac, Bytes().frame("KString", 16).section(1, 16).s(0).l(1).b(0x8A).b(0)), 0);
    EXPECT_EQ(mac.getCharSet(), KString::WindowsSet);
    EXPECT_EQ(static_cast<unsigned char>(mac[0]), 0xE4);

    KNumber number(-12.75);
    KNumber numberCopy;
    EXPECT_EQ(readInto(numberCopy, streamOf(number)), 0);
    EXPECT_EQ(numberCopy.getValue(), -12.75);

    KDate date(1999, 12, 31);
    KDate dateCopy;
    EXPECT_EQ(readInto(dateCopy, streamOf(date)), 0);
    EXPECT_TRUE(dateCopy == date);
    KTime time(23, 59, 1);
    KTime timeCopy;
    EXPECT_EQ(readInto(timeCopy, streamOf(time)), 0);
    EXPECT_TRUE(timeCopy == time);

    KFlagSet flags(-8);
    KFlagSet flagsCopy;
    EXPECT_EQ(readInto(flagsCopy, streamOf(flags)), 0);
    EXPECT_EQ(flagsCopy.getValue(), -8);

    // Only the capacity is stored, and reading does not reallocate.
    KSet set(100);
    set.add(5);
    KSet setCopy;
    EXPECT_EQ(readInto(setCopy, streamOf(set)), 0);
    EXPECT_EQ(setCopy.getCapacity(), 100);
    EXPECT_FALSE(setCopy.has(5));
}

TEST_F(Persistence, EveryVariableTagRoundTrips)
{
    auto roundTrip = [](KVariable& variable) {
        auto copy = kAdopt(new KVariable());
        EXPECT_EQ(readInto(*copy, streamOf(variable)), 0);
        EXPECT_EQ(copy->getType(), variable.getType());
        return copy;
    };
    KVariable c(static_cast<signed char>(-5));
    EXPECT_EQ(roundTrip(c)->getChar(), -5);
    KVariable flag(true);
    EXPECT_TRUE(roundTrip(flag)->getBool());
    KVariable shortValue(int16_t(-300));
    EXPECT_EQ(roundTrip(shortValue)->getShort(), -300);
    KVariable longValue(int32_t(-70000));
    EXPECT_EQ(roundTrip(longValue)->getLong(), -70000);
    KVariable floatValue(1.25f);
    EXPECT_EQ(roundTrip(floatValue)->getFloat(), 1.25f);
    KVariable doubleValue(-2.5e300);
    EXPECT_EQ(roundTrip(doubleValue)->getDouble(), -2.5e300);
    KVariable text("words");
    EXPECT_EQ(roundTrip(text)->getString(), "words");
    KVariable object(*new KDate(2001, 2, 3));
    KVariablePtr objectCopy = roundTrip(object);
    auto* date = dynamic_cast<KDate*>(objectCopy->getObject());
    ASSERT_NE(date, nullptr);
    EXPECT_EQ(date->getYear(), 2001);
    KVariable byte(static_cast<unsigned char>(250));
    EXPECT_EQ(roundTrip(byte)->getUnsignedChar(), 250);
    KVariable word(uint16_t(65000));
    EXPECT_EQ(roundTrip(word)->getUnsignedShort(), 65000);
    KVariable big(uint32_t(4000000000u));
    EXPECT_EQ(roundTrip(big)->getUnsignedLong(), 4000000000u);

    // Tags 6 and 7 without an object stay readable.
    KVariable noString("x");
    noString.clearObject();
    EXPECT_TRUE(roundTrip(noString)->getString().isEmpty());
    KVariable noObject(static_cast<KThing*>(nullptr));
    EXPECT_EQ(roundTrip(noObject)->getObject(), nullptr);

    // An unknown tag is damage.
    KVariable damaged;
    EXPECT_EQ(readInto(damaged, Bytes().frame("KVariable", 10).section(1, 10).s(11)), KError::CouldNotReadFile);
}

TEST_F(Persistence, CollectionsRoundTrip)
{
    KArray array;
    array.setSize(3);
    array.putAt(*new KString("first"), 0);
    array.putAt(*new KNumber(3.0), 2);
    KArray arrayCopy;
    EXPECT_EQ(readInto(arrayCopy, streamOf(array)), 0);
    ASSERT_EQ(arrayCopy.getSize(), 3);
    EXPECT_EQ(*stringAt(arrayCopy, 0), "first");
    EXPECT_FALSE(arrayCopy.isSetAt(1));
    EXPECT_EQ(static_cast<KNumber*>(arrayCopy.getAt(2))->getValue(), 3.0);

    KBag bag;
    bag.setGrowSize(10);
    bag.setMinSize(4);
    for (const char* word : { "v", "w", "x", "y", "z" })
        bag.add(*new KString(word));
    KBag bagCopy;
    bagCopy.add(*new KString("replaced"));
    EXPECT_EQ(readInto(bagCopy, streamOf(bag)), 0);
    EXPECT_EQ(bagCopy.getSize(), 5);
    EXPECT_EQ(bagCopy.getCapacity(), 14);
    EXPECT_EQ(bagCopy.getGrowSize(), 10);
    EXPECT_EQ(bagCopy.getMinSize(), 4);
    EXPECT_EQ(*stringAt(bagCopy, 4), "z");

    KBag direct;
    direct.setIsDirect(true);
    for (int32_t i = 0; i < 5000; ++i)
        direct.addDirectData(i * 7919 - 1000000);
    KBag directCopy;
    EXPECT_EQ(readInto(directCopy, streamOf(direct)), 0);
    ASSERT_TRUE(directCopy.getIsDirect());
    ASSERT_EQ(directCopy.getSize(), 5000);
    EXPECT_EQ(directCopy.getDirectDataAt(4999), 4999 * 7919 - 1000000);

    KStringBag strings;
    strings.add("one");
    strings.add("two");
    KStringBag stringsCopy;
    EXPECT_EQ(readInto(stringsCopy, streamOf(strings)), 0);
    EXPECT_TRUE(stringsCopy.has(KString("two")));
    EXPECT_EQ(streamOf(strings).size(), streamOf(static_cast<KBag&>(strings)).size()) << "no stream of its own";

    KIndexedBag indexed;
    indexed.add(42, *new KString("answer"));
    indexed.add(-1, *new KNumber(0.5));
    KIndexedBag indexedCopy;
    EXPECT_EQ(readInto(indexedCopy, streamOf(indexed)), 0);
    ASSERT_EQ(indexedCopy.getSize(), 2);
    EXPECT_EQ(*static_cast<KString*>(indexedCopy.getObject(42)), "answer");
    EXPECT_TRUE(indexedCopy.hasKey(-1));

    KNamedBag named;
    named.add("title", *new KString("Fox"));
    auto* inner = new KNamedBag();
    inner->add("page", *new KNumber(2.0));
    named.add("inner", *inner);
    KNamedBag namedCopy;
    EXPECT_EQ(readInto(namedCopy, streamOf(named)), 0);
    ASSERT_EQ(namedCopy.getSize(), 2);
    EXPECT_EQ(*static_cast<KString*>(namedCopy.findNamedObject("title")), "Fox");
    auto* innerCopy = dynamic_cast<KNamedBag*>(namedCopy.findNamedObject("inner"));
    ASSERT_NE(innerCopy, nullptr);
    EXPECT_EQ(static_cast<KNumber*>(innerCopy->findNamedObject("page"))->getValue(), 2.0);

    // A direct flag byte of 2 reads as false: an object array.
    KArray flagTwo;
    EXPECT_EQ(readInto(flagTwo, Bytes().frame("KArray", 17).section(1, 17).l(1).b(2).l(0)), 0);
    EXPECT_FALSE(flagTwo.getIsDirect());
    EXPECT_EQ(flagTwo.getSize(), 1);
}

TEST_F(Persistence, UnknownClassesFollowThePolicy)
{
    std::vector<uint8_t> bytes = bagWithUnknownMiddle();

    KClassStreamState::setUnknownClassPolicy(KClassStreamState::KeepNullSlot);
    KBag nulled;
    EXPECT_EQ(readInto(nulled, bytes), 0);
    ASSERT_EQ(nulled.getSize(), 3);
    EXPECT_FALSE(nulled.isSetAt(1));
    EXPECT_EQ(*stringAt(nulled, 2), "c");
    EXPECT_EQ(nulled.getNulledOnRead(), 1);
    EXPECT_EQ(KClassStreamState::nulledObjects(), 1);

    // Policy 1: the array comes back shorter and the used count follows.
    KClassStreamState::reset();
    KBag dropped;
    int32_t position = 0;
    EXPECT_EQ(readInto(dropped, bytes, &position), 0);
    EXPECT_EQ(position, int32_t(bytes.size()));
    ASSERT_EQ(dropped.getSize(), 2);
    EXPECT_EQ(dropped.getCapacity(), 2);
    EXPECT_EQ(*stringAt(dropped, 1), "c");
    EXPECT_EQ(dropped.getDroppedOnRead(), 1);
    EXPECT_EQ(KClassStreamState::droppedObjects(), 1);

    // Policy 2 raises, and reading stops with the file marked.
    KClassStreamState::setUnknownClassPolicy(KClassStreamState::FatalError);
    {
        ErrorRecorder recorder;
        KBag fatal;
        EXPECT_NE(readInto(fatal, bytes), 0);
        EXPECT_EQ(recorder.lastCode(), KError::ClassNotRegistered);
    }

    // A variable's object of an unknown class is never a fatal look-up.
    KClassStreamState::reset();
    KVariable holder(*new KNumber(9.0));
    std::vector<uint8_t> variableBytes = streamOf(holder);
    ASSERT_TRUE(patchLong(variableBytes, idOf("KNumber"), idOf(kUnknownName)));
    KVariable variable;
    EXPECT_EQ(readInto(variable, variableBytes, &position), 0);
    EXPECT_EQ(variable.getType(), KVariable::ObjectType);
    EXPECT_EQ(variable.getObject(), nullptr);
    EXPECT_EQ(position, int32_t(variableBytes.size()));
    EXPECT_EQ(KClassStreamState::droppedObjects(), 1);
}

TEST_F(Persistence, MapsRemoveUnknownEntriesWithTheirKeys)
{
    auto mapBytes = [](KThing& map) {
        std::vector<uint8_t> bytes = streamOf(map);
        EXPECT_TRUE(patchLong(bytes, idOf("KNumber"), idOf(kUnknownName)));
        return bytes;
    };
    KNamedBag named;
    named.add("a", *new KString("A"));
    named.add("b", *new KNumber(2.0));
    named.add("c", *new KString("C"));
    KNamedBag namedCopy;
    EXPECT_EQ(readInto(namedCopy, mapBytes(named)), 0);
    ASSERT_EQ(namedCopy.getSize(), 2);
    EXPECT_EQ(*namedCopy.getKeyAt(1), "c");
    EXPECT_EQ(*static_cast<KString*>(namedCopy.getObjectAt(1)), "C") << "the following entries keep their pairing";
    EXPECT_EQ(KClassStreamState::nulledObjects(), 1) << "the policy was lowered to 0 while reading";
    EXPECT_EQ(KClassStreamState::droppedObjects(), 0);
    EXPECT_EQ(KClassStreamState::unknownClassPolicy(), KClassStreamState::DropObject) << "and restored";

    KIndexedBag indexed;
    indexed.add(1, *new KString("one"));
    indexed.add(2, *new KNumber(2.0));
    indexed.add(3, *new KString("three"));
    KIndexedBag indexedCopy;
    EXPECT_EQ(readInto(indexedCopy, mapBytes(indexed)), 0);
    ASSERT_EQ(indexedCopy.getSize(), 2);
    EXPECT_EQ(indexedCopy.getKeyAt(1), 3);
    EXPECT_FALSE(indexedCopy.hasKey(2));
    EXPECT_EQ(KClassStreamState::unknownClassPolicy(), KClassStreamState::KeepNullSlot)
        << "an indexed bag leaves the policy lowered";
}

TEST_F(Persistence, DamagedStreamsFailWithoutAllocatingOrOverReading)
{
    // Counts beyond the bytes there are refused before any allocation.
    KArray huge;
    EXPECT_NE(readInto(huge, Bytes().frame("KArray", 13).section(1, 13).l(0x40000000).b(0)), 0);
    EXPECT_EQ(huge.getCapacity(), 0);
    KArray negative;
    EXPECT_NE(readInto(negative, Bytes().frame("KArray", 13).section(1, 13).l(-1).b(1)), 0);

    // A bag using more slots than it has.
    KBag overused;
    EXPECT_EQ(
        readInto(overused,
                 Bytes().frame("KBag", 49).section(1, 49).frame("KArray", 13).section(1, 13).l(0).b(0).l(5).l(1).l(0)),
        KError::CouldNotReadFile);
    EXPECT_EQ(overused.getSize(), 0);

    // Keys of an indexed bag must be raw values.
    KIndexedBag wrongKeys;
    std::vector<uint8_t> halves
        = Bytes().frame("KBag", 49).section(1, 49).frame("KArray", 13).section(1, 13).l(0).b(0).l(0).l(1).l(0).get();
    Bytes indexedBytes;
    indexedBytes.frame("KIndexedBag", 8 + 2 * 65).section(1, 8 + 2 * 65).append(halves).append(halves);
    EXPECT_EQ(readInto(wrongKeys, indexedBytes), KError::CouldNotReadFile);
    EXPECT_TRUE(wrongKeys.getKeys().getIsDirect());
    wrongKeys.add(1, *new KString("still usable"));
    EXPECT_TRUE(wrongKeys.hasKey(1));

    // A payload read beyond its section's end.
    KNumber overRead;
    EXPECT_EQ(readInto(overRead, Bytes().frame("KNumber", 16, 2).section(1, 8).section(2, 8)),
              KError::CouldNotReadFile);
    KSet negativeSet;
    EXPECT_EQ(readInto(negativeSet, Bytes().frame("KSet", 12).section(1, 12).l(-5)), KError::CouldNotReadFile);
    EXPECT_EQ(negativeSet.getCapacity(), KSet::kDefaultCapacity);

    // Every cut of a rich stream fails, every flip stays within the bytes.
    KNamedBag rich;
    rich.add("text", *new KString("words"));
    auto* bag = new KBag();
    bag->add(*new KVariable(*new KDate(2020, 1, 1)));
    bag->add(*new KIndexedBag());
    rich.add("bag", *bag);
    std::vector<uint8_t> whole = streamOf(rich);
    for (size_t cut = 0; cut < whole.size(); ++cut) {
        KNamedBag damaged;
        EXPECT_NE(readInto(damaged, std::vector<uint8_t>(whole.begin(), whole.begin() + long(cut))), 0) << cut;
    }
    uint32_t seed = 2024;
    auto next = [&seed] { return seed = seed * 1664525u + 1013904223u; };
    for (int round = 0; round < 3000; ++round) {
        std::vector<uint8_t> bytes = whole;
        for (int flips = 1 + int(next() % 4); flips > 0; --flips)
            bytes[(next() >> 8) % bytes.size()] = uint8_t(next() >> 16);
        KNamedBag damaged;
        int32_t position = 0;
        readInto(damaged, bytes, &position);
        EXPECT_LE(position, int32_t(bytes.size()));
    }
}

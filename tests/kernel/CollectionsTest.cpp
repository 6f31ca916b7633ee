#include "kernel/KArray.h"
#include "kernel/KBag.h"
#include "kernel/KComparable.h"
#include "kernel/KFlagSet.h"
#include "kernel/KIndexedBag.h"
#include "kernel/KNamedBag.h"
#include "kernel/KSet.h"
#include "kernel/KString.h"
#include "kernel/KStringBag.h"
#include "kernel/KThingPtr.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

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
    KThing* deepCopy() const override { return new Probe(deaths); }
    int* deaths;
};

// An ordered value; `tag` tells equal values apart after sorting.
class Number : public KComparable {
public:
    explicit Number(int32_t value, int32_t tag = 0)
        : value(value)
        , tag(tag)
    {
    }
    KThing* deepCopy() const override { return new Number(value, tag); }
    bool operator==(const KComparable& o) const override { return value == of(o); }
    bool operator!=(const KComparable& o) const override { return value != of(o); }
    bool operator>(const KComparable& o) const override { return value > of(o); }
    bool operator<(const KComparable& o) const override { return value < of(o); }
    bool operator>=(const KComparable& o) const override { return value >= of(o); }
    bool operator<=(const KComparable& o) const override { return value <= of(o); }
    static int32_t of(const KComparable& o) { return static_cast<const Number&>(o).value; }

    int32_t value;
    int32_t tag;
};

int32_t valueAt(const KArray& array, int32_t pos) { return static_cast<Number&>(array[pos]).value; }

std::vector<int32_t> valuesOf(const KArray& array)
{
    std::vector<int32_t> values;
    for (int32_t i = 0; i < array.getSize(); ++i)
        values.push_back(array.getIsDirect() ? array.getDirectDataAt(i) : valueAt(array, i));
    return values;
}

KBag* bagOfNumbers(const std::vector<int32_t>& values)
{
    auto* bag = new KBag();
    for (size_t i = 0; i < values.size(); ++i)
        bag->add(*new Number(values[i], int32_t(i)));
    return bag;
}

} // namespace

// Arrays.

TEST(KArray, SlotsHoldCountedReferences)
{
    int deaths = 0;
    {
        KArray array;
        array.setSize(3);
        auto* first = new Probe(&deaths);
        auto* second = new Probe(&deaths);
        array.putAt(*first, 0);
        EXPECT_EQ(first->getReferenceCount(), 2);
        array.putAt(*first, 0); // the object already there: no change
        EXPECT_EQ(first->getReferenceCount(), 2);
        KThingPtr held(second);
        array.putAt(held, 1);
        EXPECT_EQ(second->getReferenceCount(), 3);

        // Replacing and resetting release the old object.
        array.putAt(*second, 0);
        EXPECT_EQ(deaths, 1);
        array.resetAt(0);
        EXPECT_FALSE(array.isSetAt(0));
        EXPECT_EQ(array.getAt(0), nullptr);
        EXPECT_EQ(array.getAt(7), nullptr);
        EXPECT_FALSE(array.isSetAt(-1));

        EXPECT_TRUE(array.has(*second));
        int32_t pos = -1;
        EXPECT_TRUE(array.has(nullptr, &pos)); // the first empty slot
        EXPECT_EQ(pos, 0);
        EXPECT_EQ(array.findIndexOf(held), 1);
        EXPECT_EQ(array.findIndexOf(*first), -1);
        held.clear();
        EXPECT_EQ(deaths, 1);
    }
    EXPECT_EQ(deaths, 2); // the array's destruction released the last one
}

TEST(KArray, SetSizeKeepsSurvivorsAndResetsTheRest)
{
    int deaths = 0;
    KArray array;
    array.setSize(4);
    for (int32_t i = 0; i < 4; ++i)
        array.putAt(*new Probe(&deaths), i);
    KThing* survivor = array.getAt(1);

    array.setSize(2);
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(array.getAt(1), survivor);
    EXPECT_EQ(survivor->getReferenceCount(), 2);

    // Slots that come back are empty, not what they held before.
    array.setSize(4);
    EXPECT_FALSE(array.isSetAt(2));
    EXPECT_FALSE(array.isSetAt(3));

    array.setSize(0);
    EXPECT_EQ(deaths, 4);
    EXPECT_TRUE(array.isEmpty());
}

TEST(KArray, DirectSlotsHoldRawValues)
{
    KArray array;
    array.setIsDirect(true);
    array.setSize(3);
    array.putDirectDataAt(-5, 0);
    array.putDirectDataAt(70000, 2);
    EXPECT_EQ(array.getDirectDataAt(0), -5);
    EXPECT_EQ(array.getDirectDataAt(1), 0);
    array.swap(0, 2);
    EXPECT_EQ(array.getDirectData()[0], 70000);
    array.move(0, 1, 2);
    EXPECT_EQ(valuesOf(array), (std::vector<int32_t> { 70000, 70000, 0 }));
    array.resetAt(0);
    EXPECT_EQ(array.getDirectDataAt(0), 0);
}

TEST(KArray, AssignmentSharesElementsAndDeepCopyDuplicatesThem)
{
    KArray source;
    source.setSize(2);
    source.setSortOrder(KArray::Descending);
    auto* number = new Number(7);
    source.putAt(*number, 0);
    source.putAt(*new Number(8), 1);

    KArray shared;
    shared = source;
    EXPECT_EQ(shared.getAt(0), number);
    EXPECT_EQ(number->getReferenceCount(), 3);
    EXPECT_EQ(shared.getSortOrder(), KArray::Descending);

    KPtr<KArray> deep = kAdopt(static_cast<KArray*>(source.deepCopy()));
    EXPECT_NE(deep->getAt(0), number);
    EXPECT_EQ(valuesOf(*deep), (std::vector<int32_t> { 7, 8 }));
    EXPECT_EQ(deep->getAt(0)->getReferenceCount(), 2);
    EXPECT_EQ(deep->getSortOrder(), KArray::Descending);
}

// Bags.

TEST(KBag, RemovalShiftsReleasesAndShrinksDownToMinSize)
{
    int deaths = 0;
    KBag bag;
    bag.setGrowSize(2);
    bag.setMinSize(2);
    std::vector<KThing*> probes;
    for (int i = 0; i < 6; ++i) {
        probes.push_back(new Probe(&deaths));
        bag.add(*probes.back());
    }
    EXPECT_EQ(bag.getCapacity(), 6);

    bag.removeAt(1);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(bag.getSize(), 5);
    EXPECT_EQ(bag.getAt(1), probes[2]);
    EXPECT_FALSE(bag.isSetAt(5));
    EXPECT_EQ(bag.getCapacity(), 6); // 5 used is not at most 6 - 2

    bag.removeObject(*probes[5]);
    EXPECT_EQ(bag.getCapacity(), 4);
    bag.removeAt(0);
    bag.removeAt(0);
    EXPECT_EQ(bag.getCapacity(), 2);
    bag.removeAt(0);
    EXPECT_EQ(bag.getCapacity(), 2); // never below minSize
    EXPECT_EQ(deaths, 5);

    bag.add(*new Probe(&deaths));
    bag.clear();
    EXPECT_EQ(deaths, 7);
    EXPECT_EQ(bag.getCapacity(), 2);

    // setSize below the used count lowers it.
    bag.add(*new Probe(&deaths));
    bag.add(*new Probe(&deaths));
    bag.setSize(1);
    EXPECT_EQ(bag.getSize(), 1);
    EXPECT_EQ(deaths, 8);
}

TEST(KBag, InsertAtAcceptsPositionsUpToTheUsedCount)
{
    KBagPtr bag = kAdopt(bagOfNumbers({ 1, 2, 3 }));
    bag->insertAt(*new Number(4), 3);
    bag->insertAt(*new Number(0), 0);
    bag->insertAt(*new Number(9), 2);
    EXPECT_EQ(valuesOf(*bag), (std::vector<int32_t> { 0, 1, 9, 2, 3, 4 }));

    ErrorRecorder recorder;
    auto* extra = new Number(5);
    bag->insertAt(*extra, 7);
    EXPECT_EQ(recorder.lastCode(), KError::IndexOutOfRange);
    EXPECT_EQ(bag->getSize(), 6);
    delete extra;

    KBag direct;
    direct.setIsDirect(true);
    direct.addDirectData(10);
    direct.addDirectData(30);
    direct.insertDirectDataAt(20, 1);
    EXPECT_EQ(valuesOf(direct), (std::vector<int32_t> { 10, 20, 30 }));
    direct.insertDirectDataAt(40, 4);
    EXPECT_EQ(recorder.lastCode(), KError::IndexOutOfRange);
    KThingPtr number(new Number(1));
    direct.add(number); // refused: the bag is direct
    EXPECT_EQ(recorder.lastCode(), KError::ArrayIsDirect);
    EXPECT_EQ(direct.getSize(), 3);
}

// Many at once leave the bag as the same objects one by one would: the
// order, the capacity (which documents write) and the references.
TEST(KBag, InsertingAndRemovingManyAtOnceMatchesOneByOne)
{
    std::mt19937 random(5);
    for (int round = 0; round < 40; ++round) {
        int32_t grow = int32_t(1 + random() % 7);
        int32_t least = int32_t(random() % 3);
        KBag many;
        KBag single;
        for (KBag* bag : { &many, &single }) {
            bag->setGrowSize(grow);
            bag->setMinSize(least);
        }
        std::vector<KThingPtr> kept;
        for (int step = 0; step < 12; ++step) {
            if (random() % 3 != 0 || many.getSize() == 0) {
                int32_t count = int32_t(random() % 9);
                int32_t at = int32_t(random() % uint32_t(many.getSize() + 1));
                std::vector<KThing*> objects;
                for (int32_t i = 0; i < count; ++i) {
                    kept.emplace_back(new Number(int32_t(random() % 100)));
                    objects.push_back(kept.back().get());
                }
                ASSERT_TRUE(many.insertAllAt(objects.data(), count, at));
                for (int32_t i = 0; i < count; ++i)
                    single.insertAt(*objects[size_t(i)], at + i);
            } else {
                int32_t first = int32_t(random() % uint32_t(many.getSize()));
                int32_t count = int32_t(random() % uint32_t(many.getSize() - first + 1));
                many.removeSlots(first, count);
                for (int32_t i = 0; i < count; ++i)
                    single.removeAt(first);
            }
            ASSERT_EQ(valuesOf(many), valuesOf(single));
            ASSERT_EQ(many.getCapacity(), single.getCapacity()) << "round " << round << " step " << step;
        }
        many.clear();
        single.clear();
        for (const KThingPtr& object : kept)
            EXPECT_EQ(object.get()->getReferenceCount(), 2) << "only this test's own reference is left";
    }
}

TEST(KBag, CopiesCarryTheBagSettings)
{
    KBagPtr source = kAdopt(new KBag());
    source->setGrowSize(4);
    source->setMinSize(1);
    source->add(*new Number(1));
    source->add(*new Number(2));

    KBag assigned;
    assigned = *source;
    EXPECT_EQ(assigned.getSize(), 2);
    EXPECT_EQ(assigned.getGrowSize(), 4);
    EXPECT_EQ(assigned.getMinSize(), 1);
    EXPECT_EQ(assigned.getAt(1), source->getAt(1));

    KBagPtr deep = kAdopt(static_cast<KBag*>(source->deepCopy()));
    EXPECT_EQ(deep->getSize(), 2);
    EXPECT_EQ(deep->getGrowSize(), 4);
    EXPECT_NE(deep->getAt(1), source->getAt(1));
    EXPECT_EQ(valuesOf(*deep), (std::vector<int32_t> { 1, 2 }));

    // Appending a bag to itself doubles it once; mixed kinds do nothing.
    deep->append(*deep);
    EXPECT_EQ(valuesOf(*deep), (std::vector<int32_t> { 1, 2, 1, 2 }));
    KBag direct;
    direct.setIsDirect(true);
    deep->append(direct);
    EXPECT_EQ(deep->getSize(), 4);

    // A KThingPtr hands over its object, not itself.
    KThingPtr ptr(new Number(3));
    deep->add(ptr);
    EXPECT_EQ(deep->getAt(4), ptr.get());
}

// Sorting.

namespace {

int32_t compareDirect(KArray& array, int32_t i, int32_t j)
{
    int32_t a = array.getDirectDataAt(i);
    int32_t b = array.getDirectDataAt(j);
    // Only the low 16 bits of a compare result count: the high word here
    // would flip every answer if it were read.
    int32_t sign = a > b ? 1 : (a < b ? -1 : 0);
    return int32_t(0x70000000u) | (sign & 0xFFFF);
}

} // namespace

TEST(KArraySort, ObjectsSortByTheirOrderInEitherDirection)
{
    std::mt19937 random(7);
    for (int32_t count : { 2, 5, 24, 25, 26, 300 }) {
        std::vector<int32_t> values;
        for (int32_t i = 0; i < count; ++i)
            values.push_back(int32_t(random() % 20)); // many duplicates
        KBagPtr bag = kAdopt(bagOfNumbers(values));
        std::vector<int32_t> expected = values;
        std::sort(expected.begin(), expected.end());

        bag->sort();
        EXPECT_EQ(valuesOf(*bag), expected) << count;
        bag->setSortOrder(KArray::Descending);
        bag->sort();
        std::reverse(expected.begin(), expected.end());
        EXPECT_EQ(valuesOf(*bag), expected) << count;

        // Every element survives exactly once.
        std::vector<int32_t> tags;
        for (int32_t i = 0; i < bag->getSize(); ++i)
            tags.push_back(static_cast<Number&>((*bag)[i]).tag);
        std::sort(tags.begin(), tags.end());
        for (int32_t i = 0; i < count; ++i)
            EXPECT_EQ(tags[size_t(i)], i);
    }

    // Ordered and constant input of some size sort as well.
    std::vector<int32_t> ordered(2000);
    for (int32_t i = 0; i < 2000; ++i)
        ordered[size_t(i)] = 2000 - i;
    KBagPtr reversed = kAdopt(bagOfNumbers(ordered));
    reversed->sort();
    std::vector<int32_t> result = valuesOf(*reversed);
    EXPECT_TRUE(std::is_sorted(result.begin(), result.end()));
    KBagPtr constant = kAdopt(bagOfNumbers(std::vector<int32_t>(2000, 4)));
    constant->sort();
    EXPECT_EQ(constant->getSize(), 2000);
}

TEST(KArraySort, CompareProcOrdersDirectValues)
{
    KBag bag;
    bag.setIsDirect(true);
    std::vector<int32_t> values { 5, -3, 70000, 0, -70000, 5, 12 };
    for (int32_t i = 0; i < 40; ++i)
        values.push_back((i * 7919) % 101 - 50);
    for (int32_t v : values)
        bag.addDirectData(v);
    bag.setCompareProc(&compareDirect);
    bag.sort();
    std::sort(values.begin(), values.end());
    EXPECT_EQ(valuesOf(bag), values);
    bag.setSortOrder(KArray::Descending);
    bag.sort();
    std::reverse(values.begin(), values.end());
    EXPECT_EQ(valuesOf(bag), values);
}

TEST(KArraySort, StringsSortByteWise)
{
    KStringBag bag;
    for (const char* s : { "pear", "Apple", "apple", "", "pea" })
        bag.add(s);
    bag.sort();
    std::vector<std::string> sorted;
    for (int32_t i = 0; i < bag.getSize(); ++i)
        sorted.push_back(bag.getStringAt(i)->c_str());
    EXPECT_EQ(sorted, (std::vector<std::string> { "", "Apple", "apple", "pea", "pear" }));
}

// Maps.

TEST(KNamedBag, LooksUpKeysWithOrWithoutCase)
{
    KNamedBag bag;
    auto* red = new Probe();
    auto* heapKey = new KString("Red");
    bag.add(*heapKey, *red);
    EXPECT_EQ(heapKey->getReferenceCount(), 2); // a heap key is shared
    KString stackKey("Green");
    bag.add(stackKey, *new Probe());
    EXPECT_NE(bag.getKeyAt(1), &stackKey); // any other is copied
    EXPECT_TRUE(bag.getKeyAt(1)->isOnHeap());

    EXPECT_FALSE(bag.hasKey("RED"));
    bag.setCaseSensitive(false);
    int32_t pos = -1;
    EXPECT_TRUE(bag.hasKey("RED", &pos));
    EXPECT_EQ(pos, 0);
    EXPECT_EQ(&bag.getNamedObject("green"), bag.getObjectAt(1));
    EXPECT_EQ(bag.findNamedObject("blue"), nullptr);

    // An existing key leaves the bag as it is unless replacing.
    auto* other = new Probe();
    KThingPtr keep(other);
    bag.add("red", *other);
    EXPECT_EQ(bag.getSize(), 2);
    EXPECT_EQ(bag.countKeys("RED"), 1);
    bag.add("red", *other, true);
    EXPECT_EQ(bag.getSize(), 2);
    EXPECT_EQ(bag.findNamedObject("Red"), other);
    EXPECT_EQ(bag.getKeyAt(1)->compare("red"), 0);

    // Keys only repeat through the key bag itself; count and start index
    // see them all.
    bag.getKeys().add(*new KString("GREEN"));
    bag.getObjects().add(*new Probe());
    EXPECT_EQ(bag.countKeys("Green"), 2);
    EXPECT_TRUE(bag.hasKey("green", 1, &pos));
    EXPECT_EQ(pos, 2);

    // Removal and swapping keep keys and objects paired.
    bag.swap(0, 1);
    EXPECT_EQ(bag.findNamedObject("red"), other);
    bag.removeKey("GREEN");
    EXPECT_EQ(bag.getSize(), 2);
    bag.removeObject(*other);
    EXPECT_EQ(bag.getSize(), 1);
    EXPECT_EQ(bag.getKeyAt(0)->compare("GREEN"), 0);
}

TEST(KNamedBag, DeepCopyDuplicatesKeysAndObjects)
{
    KNamedBag bag;
    bag.setCaseSensitive(false);
    bag.add("one", *new Number(1));
    KPtr<KNamedBag> copy = kAdopt(static_cast<KNamedBag*>(bag.deepCopy()));
    EXPECT_FALSE(copy->isCaseSensitive());
    EXPECT_NE(copy->getKeyAt(0), bag.getKeyAt(0));
    EXPECT_NE(copy->getObjectAt(0), bag.getObjectAt(0));
    EXPECT_EQ(Number::of(static_cast<Number&>(copy->getNamedObject("ONE"))), 1);
}

TEST(KIndexedBag, MapsKeysToObjects)
{
    int deaths = 0;
    KIndexedBag bag;
    auto* first = new Probe(&deaths);
    bag.add(10, *first);
    bag.add(20, *new Probe(&deaths));
    KThingPtr refused(new Probe());
    bag.add(10, refused); // the key is present: ignored
    EXPECT_EQ(refused.getObject().getReferenceCount(), 2);
    EXPECT_EQ(bag.getSize(), 2);
    EXPECT_EQ(bag.getObject(10), first);
    EXPECT_EQ(bag.getObject(30), nullptr);
    int32_t pos = -1;
    EXPECT_TRUE(bag.hasKey(20, &pos));
    EXPECT_EQ(pos, 1);

    bag.removeObject(*first);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(bag.getKeyAt(0), 20);
    EXPECT_FALSE(bag.hasKey(10));

    KIndexedBag copy(bag);
    EXPECT_TRUE(copy.getKeys().getIsDirect());
    EXPECT_EQ(copy.getObject(20), bag.getObject(20));
    bag.removeKey(20);
    EXPECT_EQ(deaths, 1); // the copy still holds it
    copy.clear();
    EXPECT_EQ(deaths, 2);
}

TEST(KStringBag, StoresCopiesAndComparesOnlyPlainStrings)
{
    // A subclass of KString is not a string to the bag's look-ups.
    struct Label : KString {
        using KString::KString;
    };
    KStringBag bag;
    KString text("Hello");
    bag.add(text);
    EXPECT_NE(bag.getAt(0), &text);
    bag.insertAt("world", 0);
    bag.KBag::add(*new Label("label"));

    int32_t pos = -1;
    EXPECT_TRUE(bag.has(KString("Hello"), &pos));
    EXPECT_EQ(pos, 1);
    EXPECT_FALSE(bag.has(KString("HELLO")));
    EXPECT_FALSE(bag.has(KString("label")));
    bag.setCaseSensitive(false);
    EXPECT_TRUE(bag.has(KString("HELLO")));

    bag.remove("WORLD");
    EXPECT_EQ(bag.getSize(), 2);
    EXPECT_EQ(*bag.getStringAt(0), "Hello");
}

// Sets and flags.

TEST(KSet, HoldsBitsBelowItsCapacityOnly)
{
    KSet set;
    EXPECT_EQ(set.getCapacity(), 32);
    set.add(0);
    set.add(31);
    set.add(32); // ignored
    set.add(-1);
    EXPECT_TRUE(set.has(0));
    EXPECT_TRUE(set.has(31));
    EXPECT_FALSE(set.has(32));
    set.remove(0);
    EXPECT_FALSE(set.has(0));

    set.setCapacity(100);
    EXPECT_FALSE(set.has(31)); // old contents dropped
    set.add(99);
    KSet copy(set);
    EXPECT_TRUE(copy.has(99));
    set.clear();
    EXPECT_FALSE(set.has(99));
    EXPECT_TRUE(copy.has(99));

    // A capacity recorded beyond the storage never reaches past it.
    KSet small(8);
    small.setCapacityField(100000);
    small.add(99999);
    EXPECT_FALSE(small.has(99999));
}

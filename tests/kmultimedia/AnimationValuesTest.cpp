#include "graphics/KGraphicPoint.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "kmultimedia/KAnimationObject.h"
#include "kmultimedia/KAnimationPoint.h"
#include "kmultimedia/KAnimationVector.h"
#include "kmultimedia/KBresenham.h"
#include "kmultimedia/KMultimediaClasses.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

class AnimationValues : public ::testing::Test {
protected:
    void SetUp() override { kRegisterMultimediaClasses(); }
};

std::vector<uint8_t> streamOf(KThing& object)
{
    KFile file;
    file.setMode(KFileModeMemory);
    object.writeToFile(file, 1);
    auto* data = static_cast<const uint8_t*>(file.getMemoryData());
    return std::vector<uint8_t>(data, data + file.getMemorySize());
}

// A read-buffered file over a copy of the bytes.
void openOver(KFile& file, const std::vector<uint8_t>& bytes)
{
    file.setMode(KFileModeReadBuffered);
    void* block = KMemory::allocate(std::max<size_t>(bytes.size(), 1), false);
    if (!bytes.empty())
        std::memcpy(block, bytes.data(), bytes.size());
    file.openFromRAM(block, int32_t(bytes.size()));
}

std::vector<uint8_t> bigEndian(std::initializer_list<uint32_t> longs)
{
    std::vector<uint8_t> bytes;
    for (uint32_t value : longs) {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(uint8_t(value >> shift));
    }
    return bytes;
}

struct Walk {
    std::vector<std::pair<int32_t, int32_t>> points;
    int finishedAt = -1;
};

Walk walk(KBresenham& line, int limit = 10000)
{
    Walk result;
    for (int i = 0; i < limit; ++i) {
        int32_t x = 0, y = 0;
        bool finished = line.next(x, y);
        result.points.emplace_back(x, y);
        if (finished) {
            result.finishedAt = i;
            break;
        }
    }
    return result;
}

} // namespace

TEST_F(AnimationValues, VectorSumAndProductTakeTheReceiversXAlone)
{
    KAnimationVector a(2.0f, 5.0f);
    KAnimationVector b(3.0f, 7.0f);
    EXPECT_EQ(a + b, KAnimationVector(5.0f, 9.0f));
    EXPECT_EQ(a * b, KAnimationVector(6.0f, 14.0f));
    a += b;
    EXPECT_EQ(a, KAnimationVector(5.0f, 12.0f));
    EXPECT_NE(a, KAnimationVector(5.0f, 12.5f));

    KAnimationPoint p(KGraphicPoint(-3, 32767));
    EXPECT_EQ(p, KAnimationPoint(-3.0f, 32767.0f));
    p += KAnimationVector(0.5f, 1.0f);
    EXPECT_EQ(p, KAnimationPoint(-2.5f, 32768.0f));
    p = KGraphicPoint(4, -4);
    EXPECT_EQ(p, KAnimationPoint(4.0f, -4.0f));
}

TEST_F(AnimationValues, PointsAndVectorsStreamAsTwoBigEndianFloats)
{
    KAnimationPoint point(1.5f, -2.0f);
    std::vector<uint8_t> expected
        = bigEndian({ uint32_t(KAnimationPoint::classRecord->getClassID()), 1, 16, 1, 1, 16, 0x3FC00000, 0xC0000000 });
    EXPECT_EQ(streamOf(point), expected);

    KAnimationPoint readPoint;
    KFile in;
    openOver(in, expected);
    EXPECT_TRUE(readPoint.readRecord(in));
    EXPECT_EQ(readPoint, point);

    KAnimationVector vector(0.25f, 1e30f);
    KAnimationVector readVector;
    KFile vectorIn;
    openOver(vectorIn, streamOf(vector));
    readVector.readFromFile(vectorIn);
    EXPECT_EQ(readVector, vector);
    EXPECT_EQ(vectorIn.getError(), 0);

    // A vector's stream is not a point's: the point stays as it was.
    KAnimationPoint untouched(7.0f, 8.0f);
    KFile wrongIn;
    openOver(wrongIn, streamOf(vector));
    EXPECT_FALSE(untouched.readRecord(wrongIn));
    EXPECT_EQ(untouched, KAnimationPoint(7.0f, 8.0f));

    // Cut short: an error in the file, the point unchanged.
    std::vector<uint8_t> cut(expected.begin(), expected.end() - 3);
    KFile cutIn;
    openOver(cutIn, cut);
    EXPECT_FALSE(untouched.readRecord(cutIn));
    EXPECT_NE(cutIn.getError(), 0);
    EXPECT_EQ(untouched, KAnimationPoint(7.0f, 8.0f));
}

TEST_F(AnimationValues, ObjectsStartVisibleAndCollideByMask)
{
    KAnimationObject object;
    EXPECT_TRUE(object.isVisible());
    EXPECT_EQ(object.getScale(), KAnimationVector(1.0f, 1.0f));
    EXPECT_EQ(object.getOrigin(), KAnimationVector(0.0f, 0.0f));
    object.setVisible(0);
    EXPECT_FALSE(object.isVisible());
    object.setVisible(1);
    EXPECT_TRUE(object.isVisible());

    // The mask selects by the other's bit; a bit of 0 is never selected.
    KAnimationObject other;
    object.setCollisionMask(KFlagSet(6));
    other.setCollisionBit(4);
    EXPECT_TRUE(object.selects(other));
    other.setCollisionBit(1);
    EXPECT_FALSE(object.selects(other));
    other.setCollisionBit(0);
    EXPECT_FALSE(object.selects(other));
}

TEST_F(AnimationValues, BresenhamDeliversStartAndEndInEveryOctant)
{
    KBresenham line;
    line.set(0, 0, 5, 2);
    Walk shallow = walk(line);
    std::vector<std::pair<int32_t, int32_t>> expected = { { 0, 0 }, { 1, 0 }, { 2, 1 }, { 3, 1 }, { 4, 2 }, { 5, 2 } };
    EXPECT_EQ(shallow.points, expected);
    EXPECT_EQ(shallow.finishedAt, 5);
    // Once finished, every call repeats the end point.
    int32_t x = 0, y = 0;
    EXPECT_TRUE(line.next(x, y));
    EXPECT_EQ(std::make_pair(x, y), std::make_pair(5, 2));
    EXPECT_EQ(line.getX(), 5);
    EXPECT_EQ(line.getY(), 2);

    for (int32_t endX = -7; endX <= 7; ++endX) {
        for (int32_t endY = -7; endY <= 7; ++endY) {
            line.set(3, -2, 3 + endX, -2 + endY);
            Walk w = walk(line);
            SCOPED_TRACE(testing::Message() << "to " << endX << "," << endY);
            ASSERT_GE(w.finishedAt, 0);
            EXPECT_EQ(w.points.front(), std::make_pair(3, -2));
            EXPECT_EQ(w.points.back(), std::make_pair(3 + endX, -2 + endY));
            EXPECT_EQ(int32_t(w.points.size()), std::max(std::abs(endX), std::abs(endY)) + 1);
            for (size_t i = 1; i < w.points.size(); ++i) {
                int32_t dx = std::abs(w.points[i].first - w.points[i - 1].first);
                int32_t dy = std::abs(w.points[i].second - w.points[i - 1].second);
                EXPECT_LE(std::max(dx, dy), 1);
                EXPECT_EQ(std::max(dx, dy), 1);
            }
        }
    }

    // From a point to itself: delivered and finished at once.
    line.set(4, 4, 4, 4);
    Walk still = walk(line);
    EXPECT_EQ(still.finishedAt, 0);
    EXPECT_EQ(still.points, (std::vector<std::pair<int32_t, int32_t>> { { 4, 4 } }));
}

TEST_F(AnimationValues, BresenhamFromAnimationPointsTruncatesTowardZero)
{
    KBresenham line;
    line.set(KAnimationPoint(-1.7f, 2.9f), KAnimationPoint(1.9f, -0.5f));
    EXPECT_EQ(line.getX(), -1);
    EXPECT_EQ(line.getY(), 2);
    KAnimationPoint at;
    bool finished = false;
    int calls = 0;
    while (!finished && calls < 100) {
        finished = line.next(at);
        ++calls;
    }
    EXPECT_EQ(at, KAnimationPoint(1.0f, 0.0f));
    EXPECT_EQ(calls, 3);

    // Coordinates beyond the limit are held at it instead of overflowing.
    line.set(KAnimationPoint(-1e30f, 0.0f), KAnimationPoint(1e30f, std::nanf("")));
    EXPECT_EQ(line.getX(), -KBresenham::kMaxCoordinate);
    EXPECT_EQ(line.getY(), 0);
}

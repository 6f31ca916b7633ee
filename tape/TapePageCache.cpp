#include "tape/TapePageCache.h"

#include "graphics/KGraphicDevice.h"
#include "graphics/KWideRectangle.h"
#include "tape/Tape.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint64_t kFingerprintSeed = 0xCBF29CE484222325ull;
constexpr int32_t kMinSnapshots = 2;

} // namespace

void TapePageCache::setPolicy(const Policy& value)
{
    policy = value;
    clear();
}

void TapePageCache::setEnabled(bool value)
{
    enabled = value;
    if (!enabled)
        clear();
}

void TapePageCache::clear()
{
    snapshots.clear();
    spare = std::vector<uint32_t>();
    width = 0;
    height = 0;
    spacing = baseSpacing();
}

void TapePageCache::invalidateFrom(int32_t index)
{
    snapshots.erase(snapshots.upper_bound(index), snapshots.end());
    if (snapshots.empty())
        spacing = baseSpacing();
}

int64_t TapePageCache::baseSpacing() const
{
    return timed() ? int64_t(policy.minMicroseconds) : int64_t(std::max(1, policy.minElements));
}

std::vector<int32_t> TapePageCache::snapshotIndices() const
{
    std::vector<int32_t> indices;
    for (const auto& entry : snapshots)
        indices.push_back(entry.first);
    return indices;
}

int64_t TapePageCache::bytesUsed() const
{
    int64_t total = 0;
    for (const auto& entry : snapshots)
        total += int64_t(entry.second.pixels.size()) * int64_t(sizeof(uint32_t));
    return total;
}

uint64_t TapePageCache::mix(uint64_t fingerprint, const TapeObject* element)
{
    uint64_t value = 0x5BD1E995ull;
    if (element) {
        value = element->getSerial() * 0x9E3779B97F4A7C15ull;
        value ^= uint64_t(element->getRevision()) << 1;
        value ^= element->isActive() ? 1u : 0u;
    }
    fingerprint = (fingerprint ^ value) * 0x100000001B3ull;
    return fingerprint ^ (fingerprint >> 29);
}

int32_t TapePageCache::maxSnapshots() const
{
    int64_t bytes = int64_t(width) * int64_t(height) * int64_t(sizeof(uint32_t));
    if (bytes <= 0)
        return kMinSnapshots;
    return int32_t(std::max<int64_t>(kMinSnapshots, policy.memoryBudget / bytes));
}

// A page of another size makes every snapshot useless.
bool TapePageCache::pageMatches(KGraphicDevice& target)
{
    KPixelBuffer pixels;
    if (!target.beginPixelAccess(pixels))
        return false;
    if (pixels.width != width || pixels.height != height) {
        clear();
        width = pixels.width;
        height = pixels.height;
    }
    return true;
}

int32_t TapePageCache::begin(const Tape& tape, KGraphicDevice& target, int32_t first, int32_t limit, bool useSnapshots)
{
    device = nullptr;
    lastDrawn = 0;
    runFirst = first;
    runFingerprint = kFingerprintSeed;
    runCost = 0;
    lastTakenCost = 0;
    sinceElements = 0;
    elementStart = Clock::now();
    if (!enabled || !useSnapshots || !pageMatches(target))
        return first;
    device = &target;

    // One pass over the elements checks every snapshot in range against
    // the fingerprint of what stands before it; the last good one wins.
    int32_t index = first;
    uint64_t fingerprint = kFingerprintSeed;
    auto best = snapshots.end();
    uint64_t bestFingerprint = 0;
    auto it = snapshots.upper_bound(first);
    while (it != snapshots.end() && it->first <= limit) {
        for (; index < it->first; ++index)
            fingerprint = mix(fingerprint, tape.getAt(index));
        if (it->second.first == first && it->second.fingerprint == fingerprint) {
            best = it;
            bestFingerprint = fingerprint;
            ++it;
        } else {
            it = snapshots.erase(it);
        }
    }
    if (best == snapshots.end() || !copyIn(best->second)) {
        ++misses;
        elementStart = Clock::now();
        return first;
    }
    ++hits;
    runFingerprint = bestFingerprint;
    runCost = best->second.cost;
    lastTakenCost = runCost;
    elementStart = Clock::now();
    return best->first;
}

void TapePageCache::advance(const Tape& tape, int32_t index)
{
    ++lastDrawn;
    if (!device)
        return;
    runFingerprint = mix(runFingerprint, tape.getAt(index));
    ++sinceElements;
    if (timed()) {
        Clock::time_point now = Clock::now();
        runCost += std::chrono::duration_cast<std::chrono::microseconds>(now - elementStart).count();
        elementStart = now;
    } else {
        runCost += 1;
    }
    if (sinceElements >= std::max(1, policy.minElements) && runCost - lastTakenCost >= spacing
        && !snapshots.count(index + 1))
        take(index + 1);
}

void TapePageCache::end() { device = nullptr; }

void TapePageCache::take(int32_t index)
{
    if (snapshotCount() >= maxSnapshots())
        evictOne();
    KPixelBuffer pixels;
    if (!device->beginPixelAccess(pixels) || pixels.width != width || pixels.height != height)
        return;
    Snapshot& snapshot = snapshots[index];
    // The pixels of the snapshot evicted last are reused: fresh memory for a
    // whole page costs more than the copy into it.
    snapshot.pixels.swap(spare);
    spare.clear();
    snapshot.first = runFirst;
    snapshot.fingerprint = runFingerprint;
    snapshot.cost = runCost;
    snapshot.pixels.resize(size_t(width) * size_t(height));
    for (int32_t y = 0; y < height; ++y)
        std::memcpy(&snapshot.pixels[size_t(y) * size_t(width)], pixels.row(y), size_t(width) * sizeof(uint32_t));
    sinceElements = 0;
    lastTakenCost = runCost;
    // The copy is no drawing cost of the next element.
    elementStart = Clock::now();
}

// The cost between a snapshot and the one before it on the same page (or
// the page's start).
int64_t TapePageCache::costOf(const Snapshot& snapshot, const Snapshot* before) const
{
    if (!before || before->first != snapshot.first)
        return snapshot.cost;
    return std::max<int64_t>(0, snapshot.cost - before->cost);
}

// What the gap becomes without this snapshot. The last of a page has no
// known gap behind it; its own is counted twice.
int64_t TapePageCache::mergedGap(Entry entry)
{
    const Snapshot* before = entry == snapshots.begin() ? nullptr : &std::prev(entry)->second;
    int64_t own = costOf(entry->second, before);
    auto next = std::next(entry);
    if (next == snapshots.end() || next->second.first != entry->second.first)
        return 2 * own;
    return own + costOf(next->second, &entry->second);
}

// The snapshot whose gaps together are the smallest goes, and snapshots are
// taken at least that far apart from now on, so that the gaps even out
// over the tape instead of bunching where the last rebuild went.
void TapePageCache::evictOne()
{
    Entry victim = snapshots.end();
    int64_t smallest = 0;
    for (auto it = snapshots.begin(); it != snapshots.end(); ++it) {
        int64_t merged = mergedGap(it);
        if (victim == snapshots.end() || merged < smallest) {
            victim = it;
            smallest = merged;
        }
    }
    if (victim == snapshots.end())
        return;
    spare.swap(victim->second.pixels);
    snapshots.erase(victim);
    spacing = std::max(spacing, smallest);
}

bool TapePageCache::copyIn(const Snapshot& snapshot)
{
    KPixelBuffer pixels;
    if (!device->beginPixelAccess(pixels) || pixels.width != width || pixels.height != height)
        return false;
    for (int32_t y = 0; y < height; ++y)
        std::memcpy(pixels.row(y), &snapshot.pixels[size_t(y) * size_t(width)], size_t(width) * sizeof(uint32_t));
    device->endPixelAccess(KWideRectangle(0, 0, width, height));
    return true;
}

#pragma once

#include "tape/TapeForward.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <vector>

// Snapshots of the page taken while a tape rebuilds it, so that walking
// back needs to draw only the elements behind the nearest snapshot instead
// of everything since the last page transition.
//
// A snapshot at index s holds the page after the elements from its page's
// transition (`first`) up to s - 1 were drawn. It carries a fingerprint of
// those elements (identity, revision and active flag of each), and is used
// only while the elements still give the same fingerprint, so any edit at
// or before it (an insertion, a removal, a change of an element, switching
// one on or off) makes it unusable whether or not the tape said so; the
// tape also drops the stale ones at once, to give the memory back.
//
// What a step back costs is the drawing between the nearest snapshot and
// the position, so snapshots are spaced by drawing cost, not by count: each
// one knows the cost of drawing its page up to it. The memory is bounded;
// when it is full, a new snapshot replaces the one whose two neighbouring
// gaps together are the smallest, which keeps the gaps even, and snapshots
// are taken further apart from then on.
class TapePageCache {
public:
    struct Policy {
        // Bytes of pixels the snapshots may take together.
        int64_t memoryBudget = int64_t(96) << 20;
        // A snapshot is taken once both have passed since the last one. With
        // no time at all the cost of an element is 1, which makes the
        // spacing a count of elements.
        int32_t minElements = 4;
        int32_t minMicroseconds = 4000;
    };

    TapePageCache() { spacing = baseSpacing(); }
    TapePageCache(const TapePageCache&) = delete;
    TapePageCache& operator=(const TapePageCache&) = delete;

    void setPolicy(const Policy& value);
    const Policy& getPolicy() const { return policy; }
    // A disabled cache keeps and restores nothing.
    void setEnabled(bool value);
    bool isEnabled() const { return enabled; }

    void clear();
    // Drops the snapshots that depend on the element at `index` or later.
    void invalidateFrom(int32_t index);

    // --- One rebuild ---------------------------------------------------------

    // Starts a rebuild of the page of `tape` from the transition at `first`
    // up to `limit` on `device`. When a usable snapshot lies between them,
    // its pixels are put on the device and its index is returned: drawing
    // goes on from there. Otherwise `first` is returned and the device is
    // untouched. Without `useSnapshots` the rebuild is only counted.
    int32_t begin(const Tape& tape, KGraphicDevice& device, int32_t first, int32_t limit, bool useSnapshots = true);
    // The element at `index` has been drawn (or skipped); may take a
    // snapshot of the page after it.
    void advance(const Tape& tape, int32_t index);
    void end();

    // --- What it holds -------------------------------------------------------

    int32_t snapshotCount() const { return int32_t(snapshots.size()); }
    bool hasSnapshotAt(int32_t index) const { return snapshots.count(index) != 0; }
    std::vector<int32_t> snapshotIndices() const;
    int64_t bytesUsed() const;
    // Rebuilds that started from a snapshot, and those that could not.
    int32_t getHits() const { return hits; }
    int32_t getMisses() const { return misses; }
    // Elements the last rebuild drew or skipped.
    int32_t getLastDrawn() const { return lastDrawn; }
    // The drawing cost between two snapshots taken now.
    int64_t getSpacing() const { return spacing; }

private:
    struct Snapshot {
        int32_t first = 0;
        uint64_t fingerprint = 0;
        // The cost of drawing the page from `first` up to here.
        int64_t cost = 0;
        std::vector<uint32_t> pixels;
    };
    using Clock = std::chrono::steady_clock;
    using Entry = std::map<int32_t, Snapshot>::iterator;

    static uint64_t mix(uint64_t fingerprint, const TapeObject* element);
    bool timed() const { return policy.minMicroseconds > 0; }
    int64_t baseSpacing() const;
    bool pageMatches(KGraphicDevice& device);
    int64_t costOf(const Snapshot& snapshot, const Snapshot* before) const;
    int64_t mergedGap(Entry entry);
    void take(int32_t index);
    void evictOne();
    bool copyIn(const Snapshot& snapshot);
    int32_t maxSnapshots() const;

    Policy policy;
    bool enabled = true;
    std::map<int32_t, Snapshot> snapshots;
    std::vector<uint32_t> spare;
    int32_t width = 0;
    int32_t height = 0;
    int64_t spacing = 0;
    int32_t hits = 0;
    int32_t misses = 0;
    int32_t lastDrawn = 0;

    // The rebuild under way.
    KGraphicDevice* device = nullptr;
    int32_t runFirst = 0;
    uint64_t runFingerprint = 0;
    int64_t runCost = 0;
    int64_t lastTakenCost = 0;
    int32_t sinceElements = 0;
    Clock::time_point elementStart;
};

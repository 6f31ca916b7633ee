#pragma once

#include "kernel/KThing.h"

// One 32-bit word of flags. Many classes hold one as a member.
class KFlagSet : public KThing {
    K_DECLARE_CLASS(KFlagSet)
public:
    KFlagSet() = default;
    explicit KFlagSet(int32_t value)
        : flags(value)
    {
    }
    KFlagSet(const KFlagSet& other) = default;
    KFlagSet& operator=(const KFlagSet& other) = default;

    KThing* deepCopy() const override;
    // Section 1: long flags.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    bool operator==(const KFlagSet& other) const { return flags == other.flags; }
    bool operator!=(const KFlagSet& other) const { return flags != other.flags; }
    KFlagSet operator|(const KFlagSet& other) const { return KFlagSet(flags | other.flags); }
    KFlagSet operator&(const KFlagSet& other) const { return KFlagSet(flags & other.flags); }
    KFlagSet operator^(const KFlagSet& other) const { return KFlagSet(flags ^ other.flags); }

    void set(int32_t mask) { flags |= mask; }
    void clear(int32_t mask) { flags &= ~mask; }
    void reset() { flags = 0; }
    // True when any bit of `mask` is set.
    bool test(int32_t mask) const { return (flags & mask) != 0; }
    void setValue(int32_t value) { flags = value; }
    int32_t getValue() const { return flags; }

private:
    int32_t flags = 0;
};

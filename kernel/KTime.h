#pragma once

#include "kernel/KComparable.h"
#include "kernel/KString.h"

// A time of day. Ordered by hour, then minute, then second.
class KTime : public KComparable {
    K_DECLARE_CLASS(KTime)
public:
    KTime() = default;
    KTime(int16_t hour, int16_t minute, int16_t second);
    KTime(const KTime& other);
    KTime& operator=(const KTime& other);

    KThing* deepCopy() const override;
    // Section 1: short hour, minute, second.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void setTime(int16_t hour, int16_t minute, int16_t second);
    // Any of the pointers may be null.
    void getTime(int16_t* hour, int16_t* minute, int16_t* second) const;
    int16_t getHour() const { return hour; }
    int16_t getMinute() const { return minute; }
    int16_t getSecond() const { return second; }
    // From the local clock.
    void setNow();
    // "09:05:00".
    KString getText() const;

    bool operator==(const KComparable& other) const override;
    // Two values of the same kind compare directly, without the reversed
    // candidate C++20 would also find through the base.
    bool operator==(const KTime& other) const { return operator==(static_cast<const KComparable&>(other)); }
    bool operator!=(const KComparable& other) const override;
    bool operator>(const KComparable& other) const override;
    bool operator<(const KComparable& other) const override;
    bool operator>=(const KComparable& other) const override;
    bool operator<=(const KComparable& other) const override;
    // Negative, zero or positive as this time is before, equal to or after.
    int32_t compare(const KTime& other) const;

private:
    int16_t hour = 0;
    int16_t minute = 0;
    int16_t second = 0;
};

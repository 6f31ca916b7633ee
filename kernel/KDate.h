#pragma once

#include "kernel/KComparable.h"
#include "kernel/KString.h"

// A calendar date. Ordered by year, then month, then day.
class KDate : public KComparable {
    K_DECLARE_CLASS(KDate)
public:
    KDate() = default;
    KDate(int16_t year, int16_t month, int16_t day);
    KDate(const KDate& other);
    KDate& operator=(const KDate& other);

    KThing* deepCopy() const override;
    // Section 1: short year, month, day.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void setDate(int16_t year, int16_t month, int16_t day);
    // Any of the pointers may be null.
    void getDate(int16_t* year, int16_t* month, int16_t* day) const;
    int16_t getYear() const { return year; }
    int16_t getMonth() const { return month; }
    int16_t getDay() const { return day; }
    // From the local clock.
    void setToday();
    // Today's day of the week by the local clock, 0 Sunday to 6 Saturday.
    static int16_t getDayOfWeek();
    // "2024/03/05": each part zero-padded to at least two digits.
    KString getText() const;

    bool operator==(const KComparable& other) const override;
    // Two values of the same kind compare directly, without the reversed
    // candidate C++20 would also find through the base.
    bool operator==(const KDate& other) const { return operator==(static_cast<const KComparable&>(other)); }
    bool operator!=(const KComparable& other) const override;
    bool operator>(const KComparable& other) const override;
    bool operator<(const KComparable& other) const override;
    bool operator>=(const KComparable& other) const override;
    bool operator<=(const KComparable& other) const override;
    // Negative, zero or positive as this date is before, equal to or after.
    int32_t compare(const KDate& other) const;

private:
    int16_t year = 0;
    int16_t month = 0;
    int16_t day = 0;
};

#include "kernel/KDate.h"

#include "kernel/KClass.h"
#include "kernel/KClassWriter.h"
#include "kernel/KDateTimeSupport.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStreamReading.h"

#include <cstdio>

K_DEFINE_CLASS(KDate, KComparable)

KDate::KDate(int16_t yearValue, int16_t monthValue, int16_t dayValue)
    : year(yearValue)
    , month(monthValue)
    , day(dayValue)
{
}

KDate::KDate(const KDate& other)
    : KComparable(other)
    , year(other.year)
    , month(other.month)
    , day(other.day)
{
}

KDate& KDate::operator=(const KDate& other)
{
    year = other.year;
    month = other.month;
    day = other.day;
    return *this;
}

KThing* KDate::deepCopy() const { return new KDate(*this); }

void KDate::setDate(int16_t yearValue, int16_t monthValue, int16_t dayValue)
{
    year = yearValue;
    month = monthValue;
    day = dayValue;
}

void KDate::getDate(int16_t* yearOut, int16_t* monthOut, int16_t* dayOut) const
{
    if (yearOut)
        *yearOut = year;
    if (monthOut)
        *monthOut = month;
    if (dayOut)
        *dayOut = day;
}

KString KDate::getText() const
{
    char buffer[24];
    std::snprintf(buffer, sizeof buffer, "%02d/%02d/%02d", int(year), int(month), int(day));
    return KString(buffer);
}

int32_t KDate::compare(const KDate& other) const
{
    return KDateTimeSupport::compareFields(year, month, day, other.year, other.month, other.day);
}

bool KDate::operator==(const KComparable& other) const
{
    auto* same = dynamic_cast<const KDate*>(&other);
    return same ? compare(*same) == 0 : KComparable::operator==(other);
}

bool KDate::operator!=(const KComparable& other) const
{
    auto* same = dynamic_cast<const KDate*>(&other);
    return same ? compare(*same) != 0 : KComparable::operator!=(other);
}

bool KDate::operator>(const KComparable& other) const
{
    auto* same = dynamic_cast<const KDate*>(&other);
    return same ? compare(*same) > 0 : KComparable::operator>(other);
}

bool KDate::operator<(const KComparable& other) const
{
    auto* same = dynamic_cast<const KDate*>(&other);
    return same ? compare(*same) < 0 : KComparable::operator<(other);
}

bool KDate::operator>=(const KComparable& other) const
{
    auto* same = dynamic_cast<const KDate*>(&other);
    return same ? compare(*same) >= 0 : KComparable::operator>=(other);
}

bool KDate::operator<=(const KComparable& other) const
{
    auto* same = dynamic_cast<const KDate*>(&other);
    return same ? compare(*same) <= 0 : KComparable::operator<=(other);
}

void KDate::setToday()
{
    std::tm now = KDateTimeSupport::localNow();
    setDate(int16_t(now.tm_year + 1900), int16_t(now.tm_mon + 1), int16_t(now.tm_mday));
}

int16_t KDate::getDayOfWeek() { return int16_t(KDateTimeSupport::localNow().tm_wday); }

// Persistence.

void KDate::writeToFile(KFile& file, int32_t)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeShort(year);
    file.writeShort(month);
    file.writeShort(day);
    writer.end();
}

void KDate::readFromFile(KFile& file)
{
    setDate(0, 0, 0);
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) {
        year = file.readShort();
        month = file.readShort();
        day = file.readShort();
    });
}

void KDate::describe(KJsonWriter& out) const
{
    out.member("year", year);
    out.member("month", month);
    out.member("day", day);
}

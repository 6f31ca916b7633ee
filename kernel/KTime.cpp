#include "kernel/KTime.h"

#include "kernel/KClass.h"
#include "kernel/KClassWriter.h"
#include "kernel/KDateTimeSupport.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStreamReading.h"

#include <cstdio>

K_DEFINE_CLASS(KTime, KComparable)

KTime::KTime(int16_t hourValue, int16_t minuteValue, int16_t secondValue)
    : hour(hourValue)
    , minute(minuteValue)
    , second(secondValue)
{
}

KTime::KTime(const KTime& other)
    : KComparable(other)
    , hour(other.hour)
    , minute(other.minute)
    , second(other.second)
{
}

KTime& KTime::operator=(const KTime& other)
{
    hour = other.hour;
    minute = other.minute;
    second = other.second;
    return *this;
}

KThing* KTime::deepCopy() const { return new KTime(*this); }

void KTime::setTime(int16_t hourValue, int16_t minuteValue, int16_t secondValue)
{
    hour = hourValue;
    minute = minuteValue;
    second = secondValue;
}

void KTime::getTime(int16_t* hourOut, int16_t* minuteOut, int16_t* secondOut) const
{
    if (hourOut)
        *hourOut = hour;
    if (minuteOut)
        *minuteOut = minute;
    if (secondOut)
        *secondOut = second;
}

KString KTime::getText() const
{
    char buffer[24];
    std::snprintf(buffer, sizeof buffer, "%02d:%02d:%02d", int(hour), int(minute), int(second));
    return KString(buffer);
}

int32_t KTime::compare(const KTime& other) const
{
    return KDateTimeSupport::compareFields(hour, minute, second, other.hour, other.minute, other.second);
}

bool KTime::operator==(const KComparable& other) const
{
    auto* same = dynamic_cast<const KTime*>(&other);
    return same ? compare(*same) == 0 : KComparable::operator==(other);
}

bool KTime::operator!=(const KComparable& other) const
{
    auto* same = dynamic_cast<const KTime*>(&other);
    return same ? compare(*same) != 0 : KComparable::operator!=(other);
}

bool KTime::operator>(const KComparable& other) const
{
    auto* same = dynamic_cast<const KTime*>(&other);
    return same ? compare(*same) > 0 : KComparable::operator>(other);
}

bool KTime::operator<(const KComparable& other) const
{
    auto* same = dynamic_cast<const KTime*>(&other);
    return same ? compare(*same) < 0 : KComparable::operator<(other);
}

bool KTime::operator>=(const KComparable& other) const
{
    auto* same = dynamic_cast<const KTime*>(&other);
    return same ? compare(*same) >= 0 : KComparable::operator>=(other);
}

bool KTime::operator<=(const KComparable& other) const
{
    auto* same = dynamic_cast<const KTime*>(&other);
    return same ? compare(*same) <= 0 : KComparable::operator<=(other);
}

void KTime::setNow()
{
    std::tm now = KDateTimeSupport::localNow();
    setTime(int16_t(now.tm_hour), int16_t(now.tm_min), int16_t(now.tm_sec));
}

// Persistence.

void KTime::writeToFile(KFile& file, int32_t)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeShort(hour);
    file.writeShort(minute);
    file.writeShort(second);
    writer.end();
}

void KTime::readFromFile(KFile& file)
{
    setTime(0, 0, 0);
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) {
        hour = file.readShort();
        minute = file.readShort();
        second = file.readShort();
    });
}

void KTime::describe(KJsonWriter& out) const
{
    out.member("hour", hour);
    out.member("minute", minute);
    out.member("second", second);
}

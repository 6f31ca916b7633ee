#include "kernel/KNumber.h"

#include "kernel/KClass.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStreamReading.h"
#include "kernel/KThingPtr.h"

#include <cmath>

K_DEFINE_CLASS(KNumber, KComparable)

KNumber::KNumber(const KNumber& other)
    : KComparable(other)
    , value(other.value)
{
}

KNumber::KNumber(double initial)
    : value(initial)
{
}

KNumber::KNumber(int32_t initial)
    : value(initial)
{
}

KNumber& KNumber::operator=(const KNumber& other)
{
    value = other.value;
    return *this;
}

KNumber& KNumber::operator=(double newValue)
{
    value = newValue;
    return *this;
}

KNumber& KNumber::operator=(int32_t newValue)
{
    value = newValue;
    return *this;
}

KThing* KNumber::deepCopy() const { return new KNumber(*this); }

int32_t KNumber::getLong() const
{
    if (!(value > -2147483649.0 && value < 2147483648.0))
        return value > 0 ? INT32_MAX : INT32_MIN;
    return int32_t(value);
}

KNumberPtr KNumber::make(double value) { return KNumberPtr(new KNumber(value)); }

bool KNumber::operator==(const KNumber& other) const { return value == other.value; }
bool KNumber::operator!=(const KNumber& other) const { return value != other.value; }
bool KNumber::operator>(const KNumber& other) const { return value > other.value; }
bool KNumber::operator<(const KNumber& other) const { return value < other.value; }
bool KNumber::operator>=(const KNumber& other) const { return value >= other.value; }
bool KNumber::operator<=(const KNumber& other) const { return value <= other.value; }

KNumberPtr KNumber::operator+(const KNumber& other) const { return make(value + other.value); }
KNumberPtr KNumber::operator-(const KNumber& other) const { return make(value - other.value); }
KNumberPtr KNumber::operator*(const KNumber& other) const { return make(value * other.value); }
KNumberPtr KNumber::operator/(const KNumber& other) const { return make(value / other.value); }
KNumberPtr KNumber::operator%(const KNumber& other) const { return make(std::fmod(value, other.value)); }
KNumberPtr KNumber::operator+(double other) const { return make(value + other); }
KNumberPtr KNumber::operator-(double other) const { return make(value - other); }
KNumberPtr KNumber::operator*(double other) const { return make(value * other); }
KNumberPtr KNumber::operator/(double other) const { return make(value / other); }
KNumberPtr KNumber::operator%(double other) const { return make(std::fmod(value, other)); }
KNumberPtr KNumber::operator+(int32_t other) const { return make(value + other); }
KNumberPtr KNumber::operator-(int32_t other) const { return make(value - other); }
KNumberPtr KNumber::operator*(int32_t other) const { return make(value * other); }
KNumberPtr KNumber::operator/(int32_t other) const { return make(value / other); }
KNumberPtr KNumber::operator%(int32_t other) const { return make(std::fmod(value, double(other))); }
KNumberPtr KNumber::operator-() const { return make(-value); }

KNumber& KNumber::operator++()
{
    value += 1.0;
    return *this;
}

KNumber& KNumber::operator--()
{
    value -= 1.0;
    return *this;
}

KNumberPtr KNumber::operator++(int)
{
    KNumberPtr before = make(value);
    value += 1.0;
    return before;
}

KNumberPtr KNumber::operator--(int)
{
    KNumberPtr before = make(value);
    value -= 1.0;
    return before;
}

KNumberPtr KNumber::absolute() const { return make(std::fabs(value)); }
KNumberPtr KNumber::floor() const { return make(std::floor(value)); }
KNumberPtr KNumber::ceil() const { return make(std::ceil(value)); }
KNumberPtr KNumber::nearest() const { return make(std::floor(value + 0.5)); }
KNumberPtr KNumber::power(double exponent) const { return make(std::pow(value, exponent)); }
KNumberPtr KNumber::squareRoot() const { return make(std::sqrt(value)); }
KNumberPtr KNumber::root(double degree) const { return make(std::pow(value, 1.0 / degree)); }
KNumberPtr KNumber::exponential() const { return make(std::exp(value)); }
KNumberPtr KNumber::logarithm() const { return make(std::log(value)); }
KNumberPtr KNumber::logarithm10() const { return make(std::log10(value)); }
KNumberPtr KNumber::sine() const { return make(std::sin(value)); }
KNumberPtr KNumber::cosine() const { return make(std::cos(value)); }
KNumberPtr KNumber::tangent() const { return make(std::tan(value)); }
KNumberPtr KNumber::arcSine() const { return make(std::asin(value)); }
KNumberPtr KNumber::arcCosine() const { return make(std::acos(value)); }
KNumberPtr KNumber::arcTangent() const { return make(std::atan(value)); }
KNumberPtr KNumber::arcTangent2(double x) const { return make(std::atan2(value, x)); }
KNumberPtr KNumber::hypotenuse(double other) const { return make(std::hypot(value, other)); }
KNumberPtr KNumber::minimum(double other) const { return make(std::fmin(value, other)); }
KNumberPtr KNumber::maximum(double other) const { return make(std::fmax(value, other)); }

// Persistence.

void KNumber::writeToFile(KFile& file, int32_t)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeDouble(value);
    writer.end();
}

void KNumber::readFromFile(KFile& file)
{
    value = 0.0;
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) { value = file.readDouble(); });
}

void KNumber::describe(KJsonWriter& out) const { out.member("value", value); }

#pragma once

#include "kernel/KComparable.h"
#include "kernel/KThingPtr.h"

// A double with a small mathematics library. Arithmetic gives new heap
// numbers held by a KNumberPtr, so results can be kept or chained.
//
// Its own comparisons take a KNumber; the KComparable slots keep their
// defaults, so sorting numbers needs a compare procedure.
class KNumber : public KComparable {
    K_DECLARE_CLASS(KNumber)
public:
    KNumber() = default;
    KNumber(const KNumber& other);
    KNumber(double value);
    KNumber(int32_t value);

    KNumber& operator=(const KNumber& other);
    KNumber& operator=(double value);
    KNumber& operator=(int32_t value);

    KThing* deepCopy() const override;
    // Section 1: double value.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    double getValue() const { return value; }
    void setValue(double newValue) { value = newValue; }
    // Truncated toward zero.
    int32_t getLong() const;

    using KComparable::operator==;
    using KComparable::operator!=;
    using KComparable::operator>;
    using KComparable::operator<;
    using KComparable::operator>=;
    using KComparable::operator<=;
    virtual bool operator==(const KNumber& other) const;
    virtual bool operator!=(const KNumber& other) const;
    virtual bool operator>(const KNumber& other) const;
    virtual bool operator<(const KNumber& other) const;
    virtual bool operator>=(const KNumber& other) const;
    virtual bool operator<=(const KNumber& other) const;

    KNumberPtr operator+(const KNumber& other) const;
    KNumberPtr operator-(const KNumber& other) const;
    KNumberPtr operator*(const KNumber& other) const;
    KNumberPtr operator/(const KNumber& other) const;
    // The remainder of the division, with the sign of this number (fmod).
    KNumberPtr operator%(const KNumber& other) const;
    KNumberPtr operator+(double other) const;
    KNumberPtr operator-(double other) const;
    KNumberPtr operator*(double other) const;
    KNumberPtr operator/(double other) const;
    KNumberPtr operator%(double other) const;
    KNumberPtr operator+(int32_t other) const;
    KNumberPtr operator-(int32_t other) const;
    KNumberPtr operator*(int32_t other) const;
    KNumberPtr operator/(int32_t other) const;
    KNumberPtr operator%(int32_t other) const;
    KNumberPtr operator-() const;

    KNumber& operator++();
    KNumber& operator--();
    // The number before the step.
    KNumberPtr operator++(int);
    KNumberPtr operator--(int);

    KNumberPtr absolute() const;
    KNumberPtr floor() const;
    KNumberPtr ceil() const;
    // floor(x + 0.5): halves go up, also for negative numbers.
    KNumberPtr nearest() const;
    KNumberPtr power(double exponent) const;
    KNumberPtr squareRoot() const;
    KNumberPtr root(double degree) const;
    KNumberPtr exponential() const;
    KNumberPtr logarithm() const;
    KNumberPtr logarithm10() const;
    KNumberPtr sine() const;
    KNumberPtr cosine() const;
    KNumberPtr tangent() const;
    KNumberPtr arcSine() const;
    KNumberPtr arcCosine() const;
    KNumberPtr arcTangent() const;
    // The angle of the point (other, this), as atan2(this, other).
    KNumberPtr arcTangent2(double x) const;
    KNumberPtr hypotenuse(double other) const;
    KNumberPtr minimum(double other) const;
    KNumberPtr maximum(double other) const;

    static KNumberPtr make(double value);

private:
    double value = 0.0;
};

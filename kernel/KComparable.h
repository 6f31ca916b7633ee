#pragma once

#include "kernel/KThing.h"

// The ordering interface that sorting and ordered containers require. The
// defaults raise code 11 and answer true.
class KComparable : public KThing {
    K_DECLARE_CLASS(KComparable)
public:
    KComparable() = default;
    KComparable(const KComparable& other) = default;
    KComparable& operator=(const KComparable&) = default;

    virtual bool operator==(const KComparable& other) const;
    virtual bool operator!=(const KComparable& other) const;
    virtual bool operator>(const KComparable& other) const;
    virtual bool operator<(const KComparable& other) const;
    virtual bool operator>=(const KComparable& other) const;
    virtual bool operator<=(const KComparable& other) const;
};

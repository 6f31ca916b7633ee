#include "kernel/KDate.h"
#include "kernel/KNumber.h"
#include "kernel/KTextCodec.h"
#include "kernel/KTime.h"
#include "kernel/KVariable.h"
#include "tests/kernel/StringPrinter.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

#include <numbers>
#include <string>

TEST(KNumber, ArithmeticGivesNewHeapNumbers)
{
    int32_t liveBefore = KThing::liveCount();
    {
        KNumber a(7.5);
        KNumber b(2);
        KNumberPtr sum = a + b;
        EXPECT_TRUE(sum->isOnHeap());
        EXPECT_DOUBLE_EQ(sum->getValue(), 9.5);
        EXPECT_DOUBLE_EQ((*(a - b) * 2)->getValue(), 11.0);
        EXPECT_DOUBLE_EQ((a / 2.5)->getValue(), 3.0);
        EXPECT_DOUBLE_EQ((a % b)->getValue(), 1.5);
        EXPECT_DOUBLE_EQ((KNumber(-7.5) % 2)->getValue(), -1.5);
        EXPECT_DOUBLE_EQ((-a)->getValue(), -7.5);
        EXPECT_DOUBLE_EQ(KNumber(-3.2).absolute()->getValue(), 3.2);
        EXPECT_DOUBLE_EQ(KNumber(-2.5).nearest()->getValue(), -2.0);
        EXPECT_DOUBLE_EQ(KNumber(2.5).nearest()->getValue(), 3.0);
        EXPECT_DOUBLE_EQ(KNumber(-2.5).floor()->getValue(), -3.0);
        EXPECT_DOUBLE_EQ(KNumber(-2.5).ceil()->getValue(), -2.0);
        EXPECT_DOUBLE_EQ(KNumber(2).power(10)->getValue(), 1024.0);
        EXPECT_DOUBLE_EQ(KNumber(27).root(3)->getValue(), 3.0);
        EXPECT_DOUBLE_EQ(KNumber(1).arcTangent2(-1)->getValue(), 3 * std::numbers::pi / 4);
        EXPECT_DOUBLE_EQ(KNumber(3).hypotenuse(4)->getValue(), 5.0);

        KNumber counter(5);
        KNumberPtr before = counter++;
        EXPECT_DOUBLE_EQ(before->getValue(), 5.0);
        EXPECT_DOUBLE_EQ((++counter).getValue(), 7.0);
        EXPECT_DOUBLE_EQ((counter--)->getValue(), 7.0);
        EXPECT_DOUBLE_EQ((--counter).getValue(), 5.0);

        EXPECT_EQ(KNumber(-2.9).getLong(), -2);
        EXPECT_EQ(KNumber(1e12).getLong(), INT32_MAX);
        KNumber copy;
        copy = a;
        EXPECT_TRUE(copy == a);
        auto* deep = static_cast<KNumber*>(a.deepCopy());
        KNumberPtr held(deep);
        EXPECT_DOUBLE_EQ(held->getValue(), 7.5);
    }
    EXPECT_EQ(KThing::liveCount(), liveBefore); // every result was released
}

TEST(KDateAndKTime, TextIsZeroPaddedAndOrderIsFieldByField)
{
    KDate date(2024, 3, 5);
    EXPECT_EQ(date.getText(), "2024/03/05");
    EXPECT_EQ(KDate(5, 1, 2).getText(), "05/01/02");
    int16_t y = 0;
    int16_t m = 0;
    int16_t d = 0;
    date.getDate(&y, &m, nullptr);
    date.getDate(nullptr, nullptr, &d);
    EXPECT_EQ(y, 2024);
    EXPECT_EQ(m, 3);
    EXPECT_EQ(d, 5);

    const KComparable& early = date;
    KDate laterDay(2024, 3, 6);
    KDate earlierYear(2023, 12, 31);
    EXPECT_TRUE(early < laterDay);
    EXPECT_TRUE(early > earlierYear);
    EXPECT_TRUE(early == KDate(2024, 3, 5));
    EXPECT_TRUE(early >= KDate(2024, 3, 5));
    EXPECT_FALSE(early != KDate(2024, 3, 5));

    KTime time(9, 5, 0);
    EXPECT_EQ(time.getText(), "09:05:00");
    const KComparable& morning = time;
    EXPECT_TRUE(morning < KTime(9, 5, 1));
    EXPECT_TRUE(morning > KTime(8, 59, 59));
    EXPECT_TRUE(morning <= KTime(9, 5, 0));

    KDate today;
    today.setToday();
    EXPECT_GE(today.getYear(), 2024);
    EXPECT_GE(today.getMonth(), 1);
    EXPECT_LE(today.getDay(), 31);
    EXPECT_GE(KDate::getDayOfWeek(), 0);
    EXPECT_LE(KDate::getDayOfWeek(), 6);
    KTime now;
    now.setNow();
    EXPECT_LE(now.getHour(), 23);

    ErrorRecorder recorder;
    EXPECT_TRUE(early == static_cast<const KComparable&>(time));
    EXPECT_EQ(recorder.lastCode(), KError::MethodShouldNotBeCalled);
}

TEST(KVariable, HoldsHeapStringsAndObjectsAndCopiesStackStrings)
{
    auto* heap = new KString("shared");
    KStringPtr keep(heap);
    KVariable v;
    v.setString(*heap);
    EXPECT_EQ(v.getStringObject(), heap);
    heap->setCharAt(0, 'S');
    EXPECT_EQ(v.getString(), "Shared");

    KString onStack("local");
    v.setString(onStack);
    EXPECT_NE(v.getStringObject(), &onStack);
    EXPECT_TRUE(v.getStringObject()->isOnHeap());
    onStack.setCharAt(0, 'L');
    EXPECT_EQ(v.getString(), "local");
    v.setString(*v.getStringObject()); // its own string again
    EXPECT_EQ(v.getString(), "local");

    // Assignment shares the object; deepCopy copies a string.
    KVariable other;
    other = v;
    EXPECT_EQ(other.getStringObject(), v.getStringObject());
    KVariablePtr deep(static_cast<KVariable*>(v.deepCopy()));
    EXPECT_NE(deep->getStringObject(), v.getStringObject());
    EXPECT_EQ(deep->getString(), "local");

    KNumberPtr numberHolder(new KNumber(3.0));
    KNumber* number = numberHolder.get();
    KVariable object(*number);
    EXPECT_EQ(object.getType(), KVariable::ObjectType);
    EXPECT_EQ(object.getObject(), number);
    EXPECT_EQ(number->getReferenceCount(), 3);
    EXPECT_EQ(object.getStringObject(), nullptr);
    object.clearObject();
    EXPECT_EQ(object.getObject(), nullptr);
    KVariable again(*number);
    again.setLong(4); // a scalar lets the object go
    EXPECT_EQ(number->getReferenceCount(), 2);

    ErrorRecorder recorder;
    KNumber stackNumber(1.0);
    KVariable refused;
    refused.setObject(stackNumber);
    EXPECT_EQ(recorder.lastCode(), KError::ObjectNotOnHeap);
    EXPECT_EQ(refused.getType(), KVariable::LongType);
    EXPECT_EQ(refused.getObject(), nullptr);
}

TEST(KTextCodec, ConvertsTheWindowsSetBothWaysWithoutFailingAsAWhole)
{
    std::string all;
    for (int c = 1; c < 256; ++c)
        all += char(c);
    KString windows;
    windows.setText(all.data(), int32_t(all.size()));
    std::string utf8 = KTextCodec::toUtf8(windows);
    EXPECT_NE(utf8.find("\xE2\x82\xAC"), std::string::npos); // 0x80 is the euro sign
    EXPECT_NE(utf8.find("\xC3\xA9"), std::string::npos); // 0xE9 is "é"
    EXPECT_EQ(KTextCodec::fromUtf8(utf8), windows); // undefined bytes included

    EXPECT_EQ(KTextCodec::toUtf8(KString("plain")), "plain");
    EXPECT_EQ(KTextCodec::toUtf8(KString()), "");
    EXPECT_TRUE(KTextCodec::fromUtf8("").isEmpty());

    // Characters the set cannot hold, and broken UTF-8, become "?".
    EXPECT_EQ(KTextCodec::fromUtf8("a\xE4\xB8\xAD"
                                   "b\xE2\x82\xAC"),
              "a?b\x80");
    EXPECT_EQ(KTextCodec::fromUtf8("x\xFFy\xC3"), "x?y?");
    EXPECT_EQ(KTextCodec::fromUtf8(std::string_view("n\0\xC3\xA9\0", 5)).getLength(), 4); // zero bytes stay
    EXPECT_EQ(KTextCodec::toUtf8(std::string_view("\0\xE9", 2)), std::string("\0\xC3\xA9", 3));

    // A Macintosh string is read in its own set.
    KString mac("caf\x8E");
    mac.setCharSet(KString::MacintoshSet);
    EXPECT_EQ(KTextCodec::toUtf8(mac), "caf\xC3\xA9");
}

#include "kernel/KNumber.h"
#include "kernel/KString.h"
#include "kernel/KStringBuilder.h"
#include "tests/kernel/StringPrinter.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

#include <iconv.h>

#include <string>

namespace {

std::string bytesOf(const KString& s) { return std::string(s.c_str(), size_t(s.getLength())); }

KString fromDouble(double value, int16_t decimals)
{
    KString s;
    s.setFromDouble(value, decimals);
    return s;
}

KString fromMilliseconds(int32_t ms, const char* format)
{
    KString s;
    s.setFromMilliseconds(ms, format);
    return s;
}

// The byte `c` of code page `from` in code page `to`, or 0x7F when the
// character has no partner there: the plain correspondence, from iconv.
unsigned char iconvPartner(unsigned char c, const char* from, const char* to)
{
    iconv_t cd = iconv_open(to, from);
    char in[1] = { char(c) };
    char out[8] = {};
    char* inPtr = in;
    char* outPtr = out;
    size_t inLeft = 1;
    size_t outLeft = sizeof out;
    size_t result = iconv(cd, &inPtr, &inLeft, &outPtr, &outLeft);
    iconv_close(cd);
    return result == size_t(-1) || outLeft != sizeof out - 1 ? 0x7F : static_cast<unsigned char>(out[0]);
}

} // namespace

TEST(KString, EmptyTextIsNullAndEqualsNullOrEmptyCText)
{
    KString empty;
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_EQ(empty.getText(), nullptr);
    EXPECT_STREQ(empty.c_str(), "");
    EXPECT_TRUE(empty == static_cast<const char*>(nullptr));
    EXPECT_TRUE(empty == "");
    EXPECT_FALSE(empty != static_cast<const char*>(nullptr));
    EXPECT_EQ(KString(static_cast<const char*>(nullptr)).getText(), nullptr);
    EXPECT_EQ(KString("").getText(), nullptr);

    KString s("abc");
    s.setText("xyz", 0);
    EXPECT_EQ(s.getText(), nullptr);
    s = "abc";
    s.removeChar('a');
    s.removeChar('b');
    s.removeChar('c');
    EXPECT_EQ(s.getText(), nullptr);

    s = "abc";
    s.setCharSet(KString::MacintoshSet);
    s.clear();
    EXPECT_EQ(s.getCharSet(), KString::WindowsSet);
    EXPECT_EQ(s.getText(), nullptr);

    // Out-of-range indices read 0 and writes vanish.
    KString t("ab");
    EXPECT_EQ(t[-1], 0);
    EXPECT_EQ(t.charAt(2), 0);
    t.setCharAt(2, 'x');
    t.setCharAt(-1, 'x');
    EXPECT_EQ(t, "ab");
}

TEST(KString, ComparesSignedBytesAndLongerWinsOnEqualPrefix)
{
    EXPECT_LT(KString("\xE9").compare("a"), 0); // high-bit sorts before ASCII
    EXPECT_GT(KString("abc").compare("ab"), 0);
    EXPECT_EQ(KString("abc").compare("abc"), 0);

    const KComparable& a = KString("a");
    const KComparable& b = KString("b");
    EXPECT_TRUE(a < b);
    EXPECT_TRUE(a <= b);
    EXPECT_TRUE(b > a);
    EXPECT_TRUE(a != b);
    EXPECT_FALSE(a == b);

    // A string is not ordered against another kind of value.
    ErrorRecorder recorder;
    KNumber n(1.0);
    EXPECT_TRUE(a == static_cast<const KComparable&>(n));
    EXPECT_EQ(recorder.lastCode(), KError::MethodShouldNotBeCalled);
}

TEST(KString, AssignmentCopiesCharSetAndSelfAppendIsSafe)
{
    KString mac("x");
    mac.setCharSet(KString::MacintoshSet);
    KString copy;
    copy = mac;
    EXPECT_EQ(copy.getCharSet(), KString::MacintoshSet);
    KString constructed(mac);
    EXPECT_EQ(constructed.getCharSet(), KString::MacintoshSet);
    KString& alias = copy;
    copy = alias;
    EXPECT_EQ(copy, "x");

    KString s("ab");
    s += s;
    EXPECT_EQ(s, "abab");
    s.insertAt(2, s);
    EXPECT_EQ(s, "abababab");
    s = "ab";
    s.prepend(s);
    EXPECT_EQ(s, "abab");
    s = s.getText() + 1; // assigning from inside its own buffer
    EXPECT_EQ(s, "bab");

    KString t("x");
    t = t + "y" + 'z';
    t.prepend('<');
    t.prepend("<");
    t += '>';
    t.appendCRLF();
    t.appendCR();
    t.appendLF();
    EXPECT_EQ(bytesOf(t), "<<xyz>\r\n\r\n");
}

TEST(KString, CaseMapsAsciiAndTheAccentedWindowsLetters)
{
    KString s("abc \xE0\xE9\xF1\xFD\xE7\xF8 \xFF\xDF\xF0\xFE\x9A");
    EXPECT_EQ(bytesOf(s.getUpper()), "ABC \xC0\xC9\xD1\xDD\xC7\xD8 \xFF\xDF\xF0\xFE\x9A");
    EXPECT_EQ(bytesOf(KString("XY \xC0\xC9\xD0\xD7\xDE").getLower()), "xy \xE0\xE9\xD0\xD7\xDE");
    // The multiplication and division signs are not letters.
    EXPECT_EQ(bytesOf(KString("\xF7").getUpper()), "\xF7");

    KString word("\xE9t\xE9");
    EXPECT_EQ(bytesOf(word.getCapitalized()), "\xC9t\xE9");
    word.capitalize();
    word.toLower();
    EXPECT_EQ(bytesOf(word), "\xE9t\xE9");
    KString empty;
    empty.capitalize();
    EXPECT_TRUE(empty.isEmpty());
}

TEST(KString, ToLongWalksSignsAnywhereAndStopsAtOtherCharacters)
{
    EXPECT_EQ(KString("abc").toLong(), 0);
    EXPECT_EQ(KString("").toLong(), 0);
    EXPECT_EQ(KString("12-3").toLong(), -123);
    EXPECT_EQ(KString("-5+").toLong(), 5);
    EXPECT_EQ(KString("42abc7").toLong(), 42);
    EXPECT_EQ(KString("-2147483648").toLong(), INT32_MIN);
    EXPECT_EQ(KString("4294967297").toLong(), 1); // wraps in 32 bits

    EXPECT_DOUBLE_EQ(KString("1.5").toDouble(), 1.5);
    EXPECT_DOUBLE_EQ(KString("-2.25").toDouble(), -2.25);
    EXPECT_DOUBLE_EQ(KString("+3").toDouble(), 3.0);
    EXPECT_DOUBLE_EQ(KString("1,5").toDouble(), 1.5); // any separator
    EXPECT_DOUBLE_EQ(KString("12x").toDouble(), 12.0);
    EXPECT_DOUBLE_EQ(KString("1-5").toDouble(), 1.5);
    EXPECT_DOUBLE_EQ(KString("abc").toDouble(), 0.0);
    EXPECT_DOUBLE_EQ(KString("").toDouble(), 0.0);
    EXPECT_DOUBLE_EQ(KString("5-").toDouble(), 5.0);
    EXPECT_DOUBLE_EQ(KString("0.05").toDouble(), 0.05);
}

TEST(KString, SetFromDoubleRoundsHalfUpAcrossThePoint)
{
    EXPECT_EQ(fromDouble(0.995, 2), "1.00");
    EXPECT_EQ(fromDouble(1.5, 0), "2");
    EXPECT_EQ(fromDouble(1.4, 0), "1");
    EXPECT_EQ(fromDouble(-3.14159, 3), "-3.142");
    EXPECT_EQ(fromDouble(9.96, 1), "10.0");
    EXPECT_EQ(fromDouble(0.05, 1), "0.1");
    EXPECT_EQ(fromDouble(2.004, 2), "2.00");
    EXPECT_EQ(fromDouble(123.0, 2), "123.00");
    EXPECT_EQ(fromDouble(0.0, 3), "0.000");
    EXPECT_EQ(fromDouble(2.5, 12), "2.50000000"); // at most 8 places
    EXPECT_EQ(fromDouble(7.25, -3), "7");

    KString s;
    s.setFromLong(0);
    EXPECT_EQ(s, "0");
    s.setFromLong(INT32_MIN);
    EXPECT_EQ(s, "-2147483648");
    s.setFromHex(0);
    EXPECT_EQ(s, "0x0");
    s.setFromHex(0xBEEF);
    EXPECT_EQ(s, "0xBEEF");
    s.setFromHex(0xFFFFFFFFu);
    EXPECT_EQ(s, "0xFFFFFFFF");
}

TEST(KString, SetFromMillisecondsTakesTheFieldsTheFormatNames)
{
    const int32_t ms = ((25 * 60 + 2) * 60 + 3) * 1000 + 456; // 25:02:03.456
    EXPECT_EQ(fromMilliseconds(ms, "hh:mm:ss:cc"), "01:02:03:45");
    EXPECT_EQ(fromMilliseconds(ms, "ms"), "02:03");
    EXPECT_EQ(fromMilliseconds(ms, "s c m"), "02:03:45"); // fixed order
    EXPECT_EQ(fromMilliseconds(ms, "ss"), "03");
    EXPECT_EQ(fromMilliseconds(ms, "xyz"), "");
    EXPECT_EQ(fromMilliseconds(0, "msc"), "00:00:00");
    EXPECT_EQ(fromMilliseconds(-5000, "s"), "00");
}

TEST(KString, FindsForwardBackwardAndAfterAnIndex)
{
    KString s("abcabc");
    EXPECT_EQ(s.find("bc"), 1);
    EXPECT_EQ(s.find("bc", 2), 4);
    EXPECT_EQ(s.find("bc", 5), -1);
    EXPECT_EQ(s.find("bc", -7), 1);
    EXPECT_EQ(s.find("bc", 6, true), 4);
    EXPECT_EQ(s.find("bc", 3, true), 1);
    EXPECT_EQ(s.find("bc", 0, true), -1);
    EXPECT_EQ(s.find(KString("abc"), 100, true), 3);
    EXPECT_EQ(s.find(""), -1);
    EXPECT_EQ(s.find("abcabcd"), -1);
    EXPECT_EQ(KString().find("a"), -1);

    EXPECT_EQ(s.findChar('a'), 0);
    EXPECT_EQ(s.findChar('a', 0), 3);
    EXPECT_EQ(s.findChar('a', 3), -1);
    EXPECT_EQ(s.findChar('z'), -1);
    EXPECT_TRUE(s.contains("ca"));
    EXPECT_FALSE(s.contains(KString("cb")));
    EXPECT_TRUE(s.containsAnyOf("xyzc"));
    EXPECT_FALSE(s.containsAnyOf("xyz"));
    EXPECT_EQ(s.countChar('b'), 2);
}

TEST(KString, PartsAreClippedToTheText)
{
    KString s("abc");
    EXPECT_TRUE(s.mid(10, 2).isEmpty());
    EXPECT_EQ(s.mid(10, 2).getText(), nullptr);
    EXPECT_EQ(s.mid(-3, 2), "ab");
    EXPECT_EQ(s.mid(1, 100), "bc");
    EXPECT_TRUE(s.mid(1, -1).isEmpty());
    EXPECT_TRUE(s.left(-1).isEmpty());
    EXPECT_EQ(s.left(2), "ab");
    EXPECT_EQ(s.right(2), "bc");
    EXPECT_EQ(s.right(5), "abc");
    s.mid(1, 1, s);
    EXPECT_EQ(s, "b");

    KString t("abcdef");
    t.truncate(10);
    EXPECT_EQ(t, "abcdef");
    t.truncate(4);
    EXPECT_EQ(t, "abcd");
    t.removeRange(1, 2);
    EXPECT_EQ(t, "ad");
    t.removeRange(-2, 1); // a negative start counts as 0, as in mid
    EXPECT_EQ(t, "d");
    t.removeRange(1, 100);
    EXPECT_EQ(t, "d");
    t.truncate(-1);
    EXPECT_TRUE(t.isEmpty());
}

TEST(KString, EditsInPlace)
{
    KString s("  xx  ");
    s.trimLeft();
    s.trimRight(' ');
    EXPECT_EQ(s, "xx");
    s.padLeft('0', 2);
    EXPECT_EQ(s, "xx"); // already as wide
    s.padLeft('0', 1);
    EXPECT_EQ(s, "xx");
    s.padLeft('0', 4);
    s.padRight('.', 6);
    EXPECT_EQ(s, "00xx..");
    s.insertAt(-5, "<");
    s.insertAt(100, ">");
    s.insertCharAt(1, '|');
    EXPECT_EQ(s, "<|00xx..>");
    s.replaceChar('x', 'y');
    s.removeChar('.');
    EXPECT_EQ(s, "<|00yy>");

    KString r("aaaa");
    r.replace("aa", "b"); // continues behind each replacement
    EXPECT_EQ(r, "bb");
    r = "a.b.c";
    r.replace(".", "..");
    EXPECT_EQ(r, "a..b..c");
    r.replace("..", "");
    EXPECT_EQ(r, "abc");
    r.replace("", "x");
    EXPECT_EQ(r, "abc");
    r.replace(r, "whole");
    EXPECT_EQ(r, "whole");
    r.replace("whole", "");
    EXPECT_EQ(r.getText(), nullptr);

    char buffer[8];
    KString("hey").copyTo(buffer);
    EXPECT_STREQ(buffer, "hey");
    KString().copyTo(buffer);
    EXPECT_STREQ(buffer, "");
}

TEST(KString, WithArgumentsPlacesNumberedArgumentsWhereverTheTextPutsThem)
{
    KString pattern("Copier %2 vers %1 : %1");
    EXPECT_STREQ(pattern.withArguments({ "A", "B" }).c_str(), "Copier B vers A : A");
    // Inserted text is not scanned again; numbers without an argument, a
    // lone "%" and "%0" stay as written.
    EXPECT_STREQ(KString("%1 and %2").withArguments({ "%2", "x" }).c_str(), "%2 and x");
    EXPECT_STREQ(KString("%1 %3 100% %0 %").withArguments({ "a" }).c_str(), "a %3 100% %0 %");
    EXPECT_STREQ(KString("%1").withArguments({ KString() }).c_str(), "");
    EXPECT_TRUE(KString().withArguments({ "a" }).isEmpty());
    KString mac("%1");
    mac.setCharSet(KString::MacintoshSet);
    EXPECT_EQ(mac.withArguments({ "x" }).getCharSet(), KString::MacintoshSet);
}

TEST(KString, MacintoshTextComesInTheHostSet)
{
    // "é" is 0x8E on the Macintosh and 0xE9 in Windows; ASCII stays.
    KString mac("caf\x8E \xD2quote\xD3", KString::Macintosh);
    EXPECT_EQ(mac.getCharSet(), KString::WindowsSet);
    EXPECT_EQ(bytesOf(mac), "caf\xE9 \x94quote\x93");
    KString windows("caf\xE9", KString::Windows);
    EXPECT_EQ(bytesOf(windows), "caf\xE9");
    // Any other platform is read as the Macintosh set.
    EXPECT_EQ(bytesOf(KString("\x8E", 7)), "\xE9");

    KString back(windows);
    back.convertToCharSet(KString::MacintoshSet);
    EXPECT_EQ(back.getCharSet(), KString::MacintoshSet);
    EXPECT_EQ(bytesOf(back), "caf\x8E");
    back.convertToHostCharSet();
    EXPECT_EQ(bytesOf(back), "caf\xE9");
}

TEST(KString, ConversionTablesFollowTheCodePagesExceptTheChosenSubstitutes)
{
    const std::pair<int, int> macExceptions[]
        = { { 0xA1, 0xA4 }, { 0xBC, 0xB0 }, { 0xCA, 0x7F }, { 0xD0, 0xAD }, { 0xD2, 0x94 },
            { 0xD3, 0x93 }, { 0xD4, 0x7F }, { 0xD5, 0x7F }, { 0xD7, 0xB7 }, { 0xDA, 0x2F },
            { 0xDC, 0x3C }, { 0xDD, 0x3E }, { 0xE3, 0x7F }, { 0xFA, 0xB7 }, { 0xFB, 0xB0 } };
    const std::pair<int, int> windowsExceptions[]
        = { { 0x8A, 0x53 }, { 0x8B, 0x3C }, { 0x91, 0x7F }, { 0x92, 0xAB }, { 0x93, 0xD3 }, { 0x94, 0xD2 },
            { 0x9A, 0x53 }, { 0x9B, 0x3E }, { 0xA0, 0x20 }, { 0xA4, 0xA1 }, { 0xA6, 0x7C }, { 0xAD, 0xD0 },
            { 0xB0, 0xBC }, { 0xB2, 0x32 }, { 0xB3, 0x33 }, { 0xB9, 0x31 }, { 0xBA, 0x30 }, { 0xD0, 0x44 },
            { 0xD7, 0x78 }, { 0xDD, 0x59 }, { 0xF7, 0x7F }, { 0xFD, 0x79 } };
    auto check = [](int from, int to, const char* fromName, const char* toName, const auto& exceptions) {
        for (int c = 0; c < 256; ++c) {
            int expected = c < 0x80 ? c : iconvPartner(static_cast<unsigned char>(c), fromName, toName);
            for (const auto& [source, result] : exceptions) {
                if (source == c)
                    expected = result;
            }
            EXPECT_EQ(KString::convertChar(static_cast<unsigned char>(c), from, to), expected)
                << fromName << " byte " << c;
        }
    };
    check(KString::MacintoshSet, KString::WindowsSet, "MACINTOSH", "WINDOWS-1252", macExceptions);
    check(KString::WindowsSet, KString::MacintoshSet, "WINDOWS-1252", "MACINTOSH", windowsExceptions);
    EXPECT_EQ(KString::convertChar(0xE9, KString::WindowsSet, KString::WindowsSet), 0xE9);
}

TEST(KStringBuilder, BuildsOneExactString)
{
    KStringBuilder builder;
    KString mac("\x8E");
    mac.setCharSet(KString::MacintoshSet);
    builder.append("n=").appendLong(-42).append(' ').append(mac).append(KString()).append(nullptr);
    builder += "!";
    KString built = builder.toString();
    EXPECT_EQ(bytesOf(built), "n=-42 \xE9!");
    EXPECT_EQ(built.getCharSet(), KString::WindowsSet);
    builder.clear();
    EXPECT_TRUE(builder.toString().isEmpty());
}

#include "windowing/KCommandLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Parsed {
    std::vector<std::string> files;
    std::vector<std::string> options;
};

Parsed parse(const char* line)
{
    std::vector<KString> files;
    std::vector<KString> options;
    KCommandLine::parse(KString(line), files, options);
    Parsed parsed;
    for (auto& f : files)
        parsed.files.emplace_back(f.c_str());
    for (auto& o : options)
        parsed.options.emplace_back(o.c_str());
    return parsed;
}

using Strings = std::vector<std::string>;

TEST(CommandLineTest, OneKnownLetterAfterASwitchIsAnOptionAnythingElseAFile)
{
    Parsed p = parse("-S /home/x/story.tpd");
    EXPECT_EQ(p.options, Strings({ "S" }));
    EXPECT_EQ(p.files, Strings({ "/home/x/story.tpd" }));

    p = parse("/q -p -B /F -w");
    EXPECT_EQ(p.options, Strings({ "q", "p", "B", "F", "w" }));
    EXPECT_TRUE(p.files.empty());

    // Unknown letters, longer switches and bare switch characters are files.
    p = parse("-X /SQ -- / -s7 /tmp");
    EXPECT_TRUE(p.options.empty());
    EXPECT_EQ(p.files, Strings({ "-X", "/SQ", "--", "/", "-s7", "/tmp" }));
}

TEST(CommandLineTest, QuotedTokensKeepTheirBlanks)
{
    Parsed p = parse("   \"/home/x/My Story.tpd\"   -Q  other.tpd ");
    EXPECT_EQ(p.files, Strings({ "/home/x/My Story.tpd", "other.tpd" }));
    EXPECT_EQ(p.options, Strings({ "Q" }));

    // An unclosed quote runs to the end; an empty one adds nothing.
    p = parse("\"\" \"open ended -S");
    EXPECT_EQ(p.files, Strings({ "open ended -S" }));
    EXPECT_TRUE(p.options.empty());

    EXPECT_TRUE(parse("").files.empty());
    EXPECT_TRUE(parse("   ").files.empty());
}

TEST(CommandLineTest, JoinedArgumentsParseBackToTheSameTokens)
{
    const char* arguments[] = { "-F", "/media/My Stories/one.tpd", "plain.tpd", "" };
    KString line = KCommandLine::join(4, arguments);
    EXPECT_STREQ(line.c_str(), "-F \"/media/My Stories/one.tpd\" plain.tpd \"\"");
    Parsed p = parse(line.c_str());
    EXPECT_EQ(p.options, Strings({ "F" }));
    EXPECT_EQ(p.files, Strings({ "/media/My Stories/one.tpd", "plain.tpd" }));
}

} // namespace

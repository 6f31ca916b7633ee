#include "windowing/KCommandLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

struct Parsed {
    Strings files;
    Strings options;
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

struct LineCase {
    const char* line;
    Strings files;
    Strings options;
};

class CommandLineParse : public testing::TestWithParam<LineCase> { };

TEST_P(CommandLineParse, SplitsIntoFilesAndOptions)
{
    Parsed p = parse(GetParam().line);
    EXPECT_EQ(p.files, GetParam().files);
    EXPECT_EQ(p.options, GetParam().options);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, CommandLineParse,
    testing::Values(
        LineCase { "-S /home/x/story.tpd", { "/home/x/story.tpd" }, { "S" } },
        LineCase { "/q -p -B /F -w", {}, { "q", "p", "B", "F", "w" } },
        // Unknown letters, longer switches and bare switch characters are files.
        LineCase { "-X /SQ -- / -s7 /tmp", { "-X", "/SQ", "--", "/", "-s7", "/tmp" }, {} },
        LineCase { "   \"/home/x/My Story.tpd\"   -Q  other.tpd ", { "/home/x/My Story.tpd", "other.tpd" }, { "Q" } },
        // An unclosed quote runs to the end; an empty one adds nothing.
        LineCase { "\"\" \"open ended -S", { "open ended -S" }, {} }, LineCase { "   ", {}, {} }));

TEST(CommandLineTest, JoinedArgumentsParseBackToTheSameTokens)
{
    const char* arguments[] = { "-F", "/media/My Stories/one.tpd", "plain.tpd", "" };
    Parsed p = parse(KCommandLine::join(4, arguments).c_str());
    EXPECT_EQ(p.options, Strings({ "F" }));
    EXPECT_EQ(p.files, Strings({ "/media/My Stories/one.tpd", "plain.tpd" }));
}

} // namespace

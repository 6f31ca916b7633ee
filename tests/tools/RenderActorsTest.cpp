#include "tests/kernel/FileTestSupport.h"
#include "tests/project/ProjectTestSupport.h"

#include "app/AppClasses.h"
#include "graphics/KImage.h"
#include "kernel/KTextCodec.h"
#include "tools/make-sample-story/SampleStory.h"
#include "tools/taleloom-tool/RenderCommand.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace filetest;
using namespace projecttest;

namespace {

// Where two pages of the same size differ: left, top, right, bottom
// (inclusive); left above right when they are the same.
struct Difference {
    int32_t left = INT32_MAX;
    int32_t top = INT32_MAX;
    int32_t right = -1;
    int32_t bottom = -1;
    int64_t pixels = 0;
    bool any() const { return right >= left; }
    int64_t boxArea() const { return any() ? int64_t(right - left + 1) * (bottom - top + 1) : 0; }
};

Difference differenceOf(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b, int32_t width)
{
    Difference d;
    if (a.size() != b.size())
        return Difference { 0, 0, width, 0 };
    for (size_t i = 0; i < a.size(); ++i) {
        if (a[i] == b[i])
            continue;
        ++d.pixels;
        int32_t x = int32_t(i % size_t(width));
        int32_t y = int32_t(i / size_t(width));
        d.left = std::min(d.left, x);
        d.right = std::max(d.right, x);
        d.top = std::min(d.top, y);
        d.bottom = std::max(d.bottom, y);
    }
    return d;
}

class RenderActors : public ::testing::Test {
protected:
    void SetUp() override
    {
        registerDocumentClasses();
        std::string reason;
        ASSERT_TRUE(SampleStory::write(folder.path(), reason)) << reason;
        tape = SampleStory::makeTape();
        for (int32_t i = 0; i < tape->getCount(); ++i) {
            int32_t type = tape->getAt(i)->getType();
            if (type == ActorActionType && entrance < 0)
                entrance = i;
            if (type == PageTransitionType && i > 0 && secondPage < 0)
                secondPage = i;
        }
        ASSERT_GT(entrance, 0);
        ASSERT_GT(secondPage, entrance);
    }

    std::vector<uint32_t> render(int32_t position)
    {
        std::string picture = folder.file("page.png");
        std::string reason;
        warnings.clear();
        std::string document
            = folder.file(std::string(SampleStory::kProjectName) + "/" + SampleStory::kProjectName + ".TPD");
        EXPECT_TRUE(renderProjectPage(document, position, picture, reason, warnings)) << reason;
        KImagePtr image(new KImage());
        EXPECT_TRUE(image->createFromPath(KTextCodec::fromUtf8(picture)));
        return pixelsOf(image->getDevice());
    }

    TempFolder folder;
    TapePtr tape;
    std::vector<std::string> warnings;
    int32_t entrance = -1;
    int32_t secondPage = -1;
};

} // namespace

TEST_F(RenderActors, ActorsFromTheProjectStandOnThePage)
{
    const int32_t width = SampleStory::kPageWidth;
    // Before the entrance and on the next page the scene is empty.
    EXPECT_EQ(render(entrance), pageAt(*tape, entrance));
    EXPECT_EQ(render(tape->getCount()), pageAt(*tape, tape->getCount()));
    EXPECT_TRUE(warnings.empty());

    // Entered at the left, walked to the right.
    Difference entered = differenceOf(render(entrance + 1), pageAt(*tape, entrance + 1), width);
    ASSERT_TRUE(entered.any());
    EXPECT_LT(entered.left, 120);
    EXPECT_LT(entered.right, 200);
    // The figure is see-through around its strokes: the page shows there.
    EXPECT_LT(entered.pixels, entered.boxArea() * 3 / 4);
    Difference walked = differenceOf(render(secondPage), pageAt(*tape, secondPage), width);
    ASSERT_TRUE(walked.any());
    EXPECT_GT(walked.left, 300);

    // Without its file the actor stays off the page.
    std::filesystem::remove_all(folder.file(std::string(SampleStory::kProjectName) + "/Actors"));
    EXPECT_EQ(render(entrance + 1), pageAt(*tape, entrance + 1));
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_NE(warnings[0].find("Walker"), std::string::npos) << warnings[0];
}

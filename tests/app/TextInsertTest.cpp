// The insert command for a text: a new text with its defaults in the middle
// of the page, drawn there at once.

#include "AppTestSupport.h"

#include "app/StylusActions.h"
#include "project/StylusProject.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"

#include <gtest/gtest.h>

using namespace apptest;

TEST_F(AppTest, InsertingATextPutsNewTextInTheMiddleOfThePage)
{
    runApp({}, [&](TestApplication& app) {
        StylusActions& actions = *StylusActions::current();
        Tape& tape = *app.getProject()->getTape();
        actions.insertElement(TextType);
        ASSERT_EQ(tape.getCount(), 1);
        EXPECT_EQ(tape.getPosition(), 1);
        auto* text = dynamic_cast<StylusText*>(tape.getCurrentElement());
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(text->getPlainText(), "New Text");
        KGraphicSize page = tape.getPageSize();
        KGraphicRectangle bounds = text->getBounds();
        EXPECT_EQ(bounds.width, page.width * 60 / 100);
        EXPECT_GT(bounds.height, 10);
        EXPECT_LT(bounds.height, page.height / 2);
        EXPECT_LE(std::abs(bounds.x * 2 + bounds.width - page.width), 1);
        EXPECT_LE(std::abs(bounds.y * 2 + bounds.height - page.height), 1);
        EXPECT_TRUE(tape.isModified());
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

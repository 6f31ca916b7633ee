// The movie dialog on the fake native layer with a real film: imported
// into "Media", refused when it is none, placed in its own size in the
// middle of the page, tried in the dialog's picture and stopped with it.

#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/MovieDialog.h"
#include "app/StylusActions.h"
#include "kernel/KDirectory.h"
#include "kernel/KPath.h"
#include "kmultimedia/KMovie.h"
#include "project/StylusProject.h"
#include "tape/StylusMovie.h"
#include "tape/Tape.h"
#include "tests/graphics/StreamTestSupport.h"
#include "tests/kmultimedia/MovieTestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace apptest;

namespace {

using Kind = KNativeControlKind;

class MovieDialogTest : public AppTest {
protected:
    static void SetUpTestSuite() { film() = makeTestMovie(64, 48, 10, filmError()); }
    static std::string& film()
    {
        static std::string path;
        return path;
    }
    static std::string& filmError()
    {
        static std::string error;
        return error;
    }
    void click(KWindow& dialog, const std::string& button) { layer.clickControl(buttonNamed(layer, dialog, button)); }
    std::string lastAlert() const { return layer.alerts().empty() ? "" : layer.alerts().back().text; }
};

TEST_F(MovieDialogTest, AFilmIsImportedPlacedInItsOwnSizeAndTriedInTheDialog)
{
    ASSERT_FALSE(film().empty()) << filmError();
    std::string media = freshFolder("Media");
    std::string outside = freshFolder("films");
    std::ofstream(outside + "/notes.txt") << "no film";
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        tape.setMediaDirectory(KDirectory(KPath(KString(media.c_str()), KPath::kHostPlatform)));
        KGraphicSize page = tape.getPageSize();
        DialogScript script(layer);
        script.then<MovieDialog>([&](MovieDialog& dialog) {
            size_t shown = layer.alerts().size();
            click(dialog, "OK");
            EXPECT_EQ(layer.alerts().size(), shown + 1);
            EXPECT_EQ(lastAlert(), "Please Select A Movie File.");
            layer.answerChooser({ true, outside + "/notes.txt" });
            click(dialog, "Import");
            EXPECT_EQ(lastAlert(), "Unsupported Format!");
            layer.answerChooser({ true, film() });
            click(dialog, "Import");
            EXPECT_TRUE(std::filesystem::exists(media + "/ball.mp4"));
            const auto* picture = layer.controlOf(nativeControl(layer, dialog, Kind::Picture));
            EXPECT_EQ(picture->picture.width, MovieDialog::kPreviewWidth) << "the first frame is shown";
            click(dialog, "Play");
            ASSERT_NE(dialog.getTrialMovie(), nullptr);
            layer.changeControlValue(nativeControl(layer, dialog, Kind::CheckBox, 0, "Can Be Stopped"), 1);
            click(dialog, "OK");
            EXPECT_EQ(dialog.getTrialMovie(), nullptr) << "what was tried stops with the dialog";
        });
        StylusActions::current()->insertElement(MovieType);
        EXPECT_TRUE(script.finished());
        ASSERT_EQ(tape.getCount(), 1);
        auto& movie = dynamic_cast<StylusMovie&>(*tape.getAt(0));
        EXPECT_TRUE(movie.usesMediaNamed("ball.mp4"));
        EXPECT_TRUE(movie.getCanBeStopped());
        EXPECT_EQ(movie.getBounds(),
                  KGraphicRectangle(int16_t((page.width - 64) / 2), int16_t((page.height - 48) / 2), 64, 48));

        // Cancel leaves an edited film as it was.
        std::vector<uint8_t> before = streams::of(movie);
        script.then<MovieDialog>([&](MovieDialog& dialog) {
            layer.changeControlValue(nativeControl(layer, dialog, Kind::CheckBox, 0, "Can Be Stopped"), 0);
            click(dialog, "Cancel");
        });
        EXPECT_FALSE(ElementDialog::edit(tape, movie));
        EXPECT_EQ(streams::of(movie), before);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

} // namespace

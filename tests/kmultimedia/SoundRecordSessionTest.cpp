// The record dialog's steps over scripted recorder, player and files.

#include "kmultimedia/KSoundRecordSession.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

namespace {

class SoundRecordSessionTest : public testing::Test {
protected:
    KSoundRecordSession::Hooks hooks()
    {
        KSoundRecordSession::Hooks h;
        h.startRecording = [this](const std::string& path) {
            log.push_back("record " + path);
            return microphone;
        };
        h.stopRecording = [this] {
            log.push_back("stop recording");
            files.insert("/media/.Recording.WAV");
        };
        h.startPlaying = [this](const std::string&) {
            log.push_back("play");
            return true;
        };
        h.stopPlaying = [this] { log.push_back("stop playing"); };
        h.exists = [this](const std::string& path) { return files.count(path) > 0; };
        h.rename = [this](const std::string& from, const std::string& to) {
            files.erase(from);
            files.insert(to);
            return true;
        };
        h.remove = [this](const std::string& path) {
            log.push_back("remove");
            files.erase(path);
        };
        return h;
    }

    bool microphone = true;
    std::vector<std::string> log;
    std::set<std::string> files;
};

} // namespace

TEST_F(SoundRecordSessionTest, RecordStopPlayAndSave)
{
    KSoundRecordSession session("/media", hooks());
    EXPECT_EQ(session.getState(), KSoundRecordSession::Ready);
    EXPECT_FALSE(session.play());
    EXPECT_EQ(session.accept("x", false), KSoundRecordSession::NoTake);
    ASSERT_TRUE(session.record());
    EXPECT_EQ(session.getState(), KSoundRecordSession::Recording);
    session.stop();
    EXPECT_EQ(session.getState(), KSoundRecordSession::TakeReady);
    ASSERT_TRUE(session.play());
    EXPECT_EQ(session.getState(), KSoundRecordSession::Playing);
    session.playEnded();
    EXPECT_EQ(session.getState(), KSoundRecordSession::TakeReady);
    session.play();
    session.stop();
    EXPECT_EQ(session.getState(), KSoundRecordSession::TakeReady);

    // Record again replaces the take.
    ASSERT_TRUE(session.record());
    EXPECT_EQ(log[log.size() - 2], "remove");
    session.stop();

    // The default name, and a name that exists needs a yes.
    files.insert("/media/Recorded Sound.WAV");
    EXPECT_EQ(session.accept("", false), KSoundRecordSession::AskOverwrite);
    EXPECT_EQ(session.accept("../up", true), KSoundRecordSession::BadName);
    EXPECT_EQ(session.accept("", true), KSoundRecordSession::Saved);
    EXPECT_EQ(session.getSavedPath(), "/media/Recorded Sound.WAV");
    EXPECT_EQ(files.count("/media/.Recording.WAV"), 0u);
}

TEST_F(SoundRecordSessionTest, CancelDeletesTheTakeAndNoMicrophoneStaysReady)
{
    KSoundRecordSession session("/media", hooks());
    session.record();
    session.cancel();
    EXPECT_EQ(session.getState(), KSoundRecordSession::Ready);
    EXPECT_TRUE(files.empty());
    microphone = false;
    EXPECT_FALSE(session.record());
    EXPECT_EQ(session.getState(), KSoundRecordSession::Ready);
}

TEST_F(SoundRecordSessionTest, NamesTimesAndFolders)
{
    EXPECT_EQ(KSoundRecordSession::fittedName("Hello"), "Hello.WAV");
    EXPECT_EQ(KSoundRecordSession::fittedName("Hello.wav"), "Hello.WAV");
    EXPECT_EQ(KSoundRecordSession::fittedName(std::string(40, 'a')), std::string(22, 'a') + ".WAV");
    for (const char* bad : { "", "a/b", "a\\b", "c:x", "..", ".hidden" })
        EXPECT_FALSE(KSoundRecordSession::isValidName(bad)) << bad;
    EXPECT_EQ(KSoundRecordSession::formatTime(0), "00:00");
    EXPECT_EQ(KSoundRecordSession::formatTime(75.9), "01:15");
    EXPECT_EQ(KSoundRecordSession::recordingsFolder("/p/Media"), "/p/Media");
    const char* saved = std::getenv("XDG_DATA_HOME");
    std::string before = saved ? saved : "";
    setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(KSoundRecordSession::recordingsFolder(""), "/data/TaleLoom/Recordings");
    if (saved)
        setenv("XDG_DATA_HOME", before.c_str(), 1);
    else
        unsetenv("XDG_DATA_HOME");
}

TEST_F(SoundRecordSessionTest, NamesKeepToWhatEveryFileSystemHolds)
{
    for (const char* bad : { "a*b", "a?b", "a<b", "a>b", "a|b", "say \"hi\"", "tab\there", "   " })
        EXPECT_FALSE(KSoundRecordSession::isValidName(bad)) << bad;
    for (const char* good : { "Recorded Sound", "Élodie's song", "take 2.wav" })
        EXPECT_TRUE(KSoundRecordSession::isValidName(good)) << good;
    // Blanks at the ends go; a cut never splits a character.
    EXPECT_EQ(KSoundRecordSession::fittedName("  Hello  "), "Hello.WAV");
    std::string accented;
    for (int i = 0; i < 30; ++i)
        accented += "\xC3\xA9";
    std::string fitted = KSoundRecordSession::fittedName(accented);
    EXPECT_EQ(fitted.size(), 22u * 2 + 4);
    EXPECT_EQ(fitted.substr(fitted.size() - 4), ".WAV");
}

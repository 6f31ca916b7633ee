// The WAV writer and reader, the level meter, no-device detection and the
// recorder, over a fake capture and over GStreamer's test sources.

#include "kmultimedia/KLevelMeterState.h"
#include "kmultimedia/KSoundCaptureNative.h"
#include "kmultimedia/KSoundRecorder.h"
#include "kmultimedia/KWavFormat.h"
#include "kmultimedia/KWavWriter.h"
#include "tests/kmultimedia/MediaTestSupport.h"
#include "tests/kmultimedia/SoundTestSupport.h"

#include <glib.h>

#include <fstream>
#include <iterator>

using namespace soundtest;

namespace {

std::vector<uint8_t> fileBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// A capture that hands out scripted chunks, one per drain.
class ScriptedCapture : public KSoundCaptureNative {
public:
    struct Script {
        bool startFails = false;
        std::vector<std::vector<uint8_t>> chunks;
        size_t failAfter = SIZE_MAX; // drains before the device goes
        size_t drains = 0;
        bool stopped = false;
    };
    explicit ScriptedCapture(std::shared_ptr<Script> script)
        : script(std::move(script))
    {
    }
    bool start(const KWavFormat&) override
    {
        seen.firstBufferInTime = !script->startFails;
        return !script->startFails;
    }
    void drain(std::vector<uint8_t>& out) override
    {
        if (script->drains < script->chunks.size())
            out.insert(out.end(), script->chunks[script->drains].begin(), script->chunks[script->drains].end());
        ++script->drains;
    }
    bool hasFailed() const override { return script->drains >= script->failAfter; }
    void stop() override { script->stopped = true; }
    const KCaptureFacts& facts() const override { return seen; }

private:
    std::shared_ptr<Script> script;
    KCaptureFacts seen;
};

std::vector<uint8_t> samples(size_t count, int16_t value)
{
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < count; ++i) {
        bytes.push_back(uint8_t(uint16_t(value) & 0xFF));
        bytes.push_back(uint8_t(uint16_t(value) >> 8));
    }
    return bytes;
}

class RecordingTest : public MediaTest {
protected:
    void TearDown() override
    {
        KSoundRecorder::setCaptureFactory(nullptr);
        MediaTest::TearDown();
    }
    std::shared_ptr<ScriptedCapture::Script> scripted()
    {
        auto script = std::make_shared<ScriptedCapture::Script>();
        KSoundRecorder::setCaptureFactory([script] { return new ScriptedCapture(script); });
        return script;
    }
    TempFolder folder;
};

} // namespace

TEST(WavFormatTest, TheCanonicalHeaderBytes)
{
    KWavFormat format = KWavFormat::forRecording();
    auto head = format.header(44100);
    const uint8_t expected[44] = { 'R', 'I', 'F', 'F', 0x68, 0xAC, 0,   0,   'W', 'A',  'V',  'E',  'f', 'm',  't',
                                   ' ', 16,  0,   0,   0,    1,    0,   1,   0,   0x22, 0x56, 0,    0,   0x44, 0xAC,
                                   0,   0,   2,   0,   16,   0,    'd', 'a', 't', 'a',  0x44, 0xAC, 0,   0 };
    EXPECT_TRUE(std::equal(head.begin(), head.end(), std::begin(expected)));
    // At the start both sizes are 0.
    auto fresh = format.header(0);
    EXPECT_EQ(fresh[4] | fresh[5] | fresh[6] | fresh[7], 0);
    EXPECT_EQ(fresh[40] | fresh[41] | fresh[42] | fresh[43], 0);

    KWavFormat fallback = KWavFormat::forRecording(false);
    EXPECT_EQ(fallback.sampleRate, 11025);
    EXPECT_EQ(fallback.bitsPerSample, 8);
    EXPECT_EQ(fallback.bytesPerSecond(), 11025);
}

TEST(WavFormatTest, ReaderWalksChunksAndToleratesUnfinishedFiles)
{
    KWavFormat format = KWavFormat::forRecording();
    auto head = format.header(4);
    std::vector<uint8_t> file(head.begin(), head.end());
    file.insert(file.end(), { 1, 2, 3, 4 });
    KWavInfo info;
    ASSERT_TRUE(kReadWavHeader(file.data(), file.size(), info));
    EXPECT_EQ(info.dataOffset, 44u);
    EXPECT_EQ(info.dataBytes, 4u);
    EXPECT_EQ(info.format.sampleRate, 22050);

    // An extra chunk of odd length before the data, padded.
    std::vector<uint8_t> listed(file.begin(), file.begin() + 36);
    listed.insert(listed.end(), { 'L', 'I', 'S', 'T', 3, 0, 0, 0, 'a', 'b', 'c', 0 });
    listed.insert(listed.end(), file.begin() + 36, file.end());
    ASSERT_TRUE(kReadWavHeader(listed.data(), listed.size(), info));
    EXPECT_EQ(info.dataOffset, 56u);

    // Sizes of 0 (a take that never finished) mean everything to the end.
    auto fresh = format.header(0);
    std::vector<uint8_t> unfinished(fresh.begin(), fresh.end());
    unfinished.resize(44 + 100);
    ASSERT_TRUE(kReadWavHeader(unfinished.data(), unfinished.size(), info));
    EXPECT_EQ(info.dataBytes, 100u);

    for (size_t cut : { 0, 11, 20, 40 })
        EXPECT_FALSE(kReadWavHeader(file.data(), cut, info)) << cut;
    std::vector<uint8_t> compressed = file;
    compressed[20] = 2;
    EXPECT_FALSE(kReadWavHeader(compressed.data(), compressed.size(), info));
    // A damaged rate, far beyond any sound card, is refused rather than
    // overflowing the byte rate (found by fuzzing).
    std::vector<uint8_t> damaged = file;
    damaged[24] = 0x22, damaged[25] = 0xAC, damaged[26] = 0x00, damaged[27] = 0x56;
    EXPECT_FALSE(kReadWavHeader(damaged.data(), damaged.size(), info));
}

TEST(WavFormatTest, WriterPatchesTheHeaderEverySecondAndAtTheClose)
{
    TempFolder folder;
    std::string path = folder.pathOf("take.wav");
    KWavWriter writer;
    KWavFormat format = KWavFormat::forRecording();
    ASSERT_EQ(writer.open(path, format), KWavWriter::Written);
    std::vector<uint8_t> half(size_t(format.bytesPerSecond() / 2), 7);
    ASSERT_EQ(writer.write(half.data(), half.size()), KWavWriter::Written);
    KWavInfo info;
    std::vector<uint8_t> bytes = fileBytes(path);
    ASSERT_TRUE(kReadWavHeader(bytes.data(), bytes.size(), info));
    EXPECT_EQ(bytes[40] | bytes[41] << 8 | bytes[42] << 16, 0);
    // After a second of sound the header tells it, before any close.
    ASSERT_EQ(writer.write(half.data(), half.size()), KWavWriter::Written);
    bytes = fileBytes(path);
    EXPECT_EQ(uint32_t(bytes[40] | bytes[41] << 8 | bytes[42] << 16), uint32_t(format.bytesPerSecond()));
    EXPECT_EQ(uint32_t(bytes[4] | bytes[5] << 8 | bytes[6] << 16), uint32_t(format.bytesPerSecond() + 36));
    // A half sample at the close is left out of the sizes.
    uint8_t odd = 9;
    writer.write(&odd, 1);
    ASSERT_EQ(writer.close(), KWavWriter::Written);
    bytes = fileBytes(path);
    ASSERT_TRUE(kReadWavHeader(bytes.data(), bytes.size(), info));
    EXPECT_EQ(info.dataBytes, uint32_t(format.bytesPerSecond()));
    EXPECT_DOUBLE_EQ(writer.getSeconds(), 1.0);
}

TEST(WavFormatTest, AFullDiskIsReported)
{
    KWavWriter writer;
    if (writer.open("/dev/full", KWavFormat::forRecording()) == KWavWriter::Written) {
        std::vector<uint8_t> data(100000, 1);
        EXPECT_EQ(writer.write(data.data(), data.size()), KWavWriter::DiskFull);
        EXPECT_EQ(writer.close(), KWavWriter::DiskFull);
    } else {
        SUCCEED() << "the full device refuses to open";
    }
}

TEST(LevelMeterTest, LevelsPeaksAndClipping)
{
    EXPECT_FLOAT_EQ(KLevelMeterState::levelFromPeak(1.0), 100.0f);
    EXPECT_FLOAT_EQ(KLevelMeterState::levelFromPeak(0.001), 0.0f);
    EXPECT_NEAR(KLevelMeterState::levelFromPeak(0.1), 66.67f, 0.01f);
    EXPECT_FLOAT_EQ(KLevelMeterState::levelFromPeak(0.0), 0.0f);
    EXPECT_TRUE(KLevelMeterState::isClipping(0.95));
    EXPECT_FALSE(KLevelMeterState::isClipping(0.85));

    KLevelMeterState meter;
    meter.setLevel(150.0f, 1000);
    EXPECT_FLOAT_EQ(meter.getLevel(), 100.0f);
    meter.setLevel(30.0f, 1500);
    EXPECT_FLOAT_EQ(meter.getPeak(), 100.0f);
    meter.setLevel(30.0f, 1800);
    EXPECT_FLOAT_EQ(meter.getPeak(), 100.0f);
    // Past 800 ms the peak falls to 0 at once.
    meter.setLevel(30.0f, 1801);
    EXPECT_FLOAT_EQ(meter.getPeak(), 0.0f);
    meter.setLevel(-4.0f, 1900);
    EXPECT_FLOAT_EQ(meter.getLevel(), 0.0f);
}

TEST(CaptureFactsTest, WhatCountsAsNoMicrophone)
{
    KCaptureFacts real;
    real.firstBufferInTime = true;
    EXPECT_FALSE(kCaptureHasNoDevice(real));
    KCaptureFacts monitors = real;
    monitors.onlyMonitors = true;
    EXPECT_TRUE(kCaptureHasNoDevice(monitors));
    KCaptureFacts standIn = real;
    standIn.standInSource = true;
    EXPECT_TRUE(kCaptureHasNoDevice(standIn));
    KCaptureFacts silent;
    EXPECT_TRUE(kCaptureHasNoDevice(silent));
    KCaptureFacts broken = real;
    broken.busError = true;
    EXPECT_TRUE(kCaptureHasNoDevice(broken));
    // The test tone the settings ask for is a device.
    KCaptureFacts simulated = standIn;
    simulated.simulated = true;
    EXPECT_FALSE(kCaptureHasNoDevice(simulated));
}

TEST_F(RecordingTest, RecorderWritesWhatEachDrainBringsAndMeasuresIt)
{
    auto script = scripted();
    script->chunks = { samples(100, 3277), samples(200, -32767), samples(50, 0) };
    KSoundRecorderPtr recorder(new KSoundRecorder());
    std::string path = folder.pathOf("take.wav");
    ASSERT_TRUE(recorder->startRecording(path));
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_NEAR(recorder->getLevel(), 66.67f, 0.1f);
    EXPECT_FALSE(recorder->isClipping());
    // Starting again while recording does nothing.
    EXPECT_TRUE(recorder->startRecording(folder.pathOf("other.wav")));
    recorder->drain();
    EXPECT_TRUE(recorder->isClipping());
    recorder->stopRecording();
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_TRUE(script->stopped);
    EXPECT_EQ(recorder->getBytes(), 700u);
    std::vector<uint8_t> bytes = fileBytes(path);
    KWavInfo info;
    ASSERT_TRUE(kReadWavHeader(bytes.data(), bytes.size(), info));
    EXPECT_EQ(info.dataBytes, 700u);
    EXPECT_EQ(recorder->getFailure(), KSoundRecorder::NoFailure);
    EXPECT_FALSE(g_file_test(folder.pathOf("other.wav").c_str(), G_FILE_TEST_EXISTS));
}

TEST_F(RecordingTest, NoDeviceLeavesNoFileAndALostDeviceKeepsTheTake)
{
    auto script = scripted();
    script->startFails = true;
    KSoundRecorderPtr recorder(new KSoundRecorder());
    std::string path = folder.pathOf("none.wav");
    EXPECT_FALSE(recorder->startRecording(path));
    EXPECT_EQ(recorder->getFailure(), KSoundRecorder::NoDevice);
    EXPECT_STREQ(recorder->getFailureText(), "No microphone was found.");
    EXPECT_FALSE(g_file_test(path.c_str(), G_FILE_TEST_EXISTS));

    script->startFails = false;
    script->chunks = { samples(10, 5), samples(10, 5) };
    script->failAfter = 2;
    ASSERT_TRUE(recorder->startRecording(path));
    recorder->drain();
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_EQ(recorder->getFailure(), KSoundRecorder::DeviceLost);
    std::vector<uint8_t> bytes = fileBytes(path);
    KWavInfo info;
    ASSERT_TRUE(kReadWavHeader(bytes.data(), bytes.size(), info));
    EXPECT_EQ(info.dataBytes, 40u);
}

TEST_F(RecordingTest, ATestToneIsRecordedInRealTime)
{
    KSoundRecorderPtr recorder(new KSoundRecorder());
    std::string path = folder.pathOf("tone.wav");
    ASSERT_TRUE(recorder->startRecording(path)) << recorder->getFailure();
    gint64 end = g_get_monotonic_time() + 600 * 1000;
    while (g_get_monotonic_time() < end) {
        g_usleep(33000);
        recorder->drain();
    }
    // A stall of the loop loses nothing: capture waits to be drained.
    g_usleep(500000);
    recorder->stopRecording();
    EXPECT_EQ(recorder->getFailure(), KSoundRecorder::NoFailure);
    EXPECT_GE(recorder->getSeconds(), 0.99 * 1.1);
    EXPECT_GT(recorder->getLevel() + 1.0f, 0.0f);
    WavSamples wav;
    ASSERT_TRUE(readWav(path, wav));
    EXPECT_EQ(wav.rate, 22050);
    EXPECT_EQ(wav.channels, 1);
    EXPECT_GT(peakOf(wav, 0), 10000);
}

TEST_F(RecordingTest, StandInAndBrokenSourcesMeanNoMicrophone)
{
    for (const char* source : { "audiotestsrc is-live=true", "fakesrc", "appsrc" }) {
        KSoundRecorder::setCaptureFactory([source] { return knsCreateSoundCapture(source); });
        KSoundRecorderPtr recorder(new KSoundRecorder());
        std::string path = folder.pathOf("none.wav");
        gint64 start = g_get_monotonic_time();
        EXPECT_FALSE(recorder->startRecording(path)) << source;
        EXPECT_EQ(recorder->getFailure(), KSoundRecorder::NoDevice) << source;
        EXPECT_FALSE(g_file_test(path.c_str(), G_FILE_TEST_EXISTS)) << source;
        EXPECT_LT(g_get_monotonic_time() - start, 3 * G_USEC_PER_SEC) << source;
    }
}

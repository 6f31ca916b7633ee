#pragma once

#include <gst/gst.h>

#include <glib.h>
#include <glib/gstdio.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace soundtest {

// Runs a GStreamer pipeline given as text to its end. Empty on success,
// else the reason.
inline std::string runPipeline(const std::string& description)
{
    if (!gst_is_initialized())
        gst_init(nullptr, nullptr);
    GError* parseError = nullptr;
    GstElement* pipeline = gst_parse_launch(description.c_str(), &parseError);
    std::string error;
    if (!pipeline || parseError) {
        error = parseError ? parseError->message : "pipeline";
        if (parseError)
            g_error_free(parseError);
        if (pipeline)
            gst_object_unref(pipeline);
        return error;
    }
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus* bus = gst_element_get_bus(pipeline);
    GstMessage* message
        = gst_bus_timed_pop_filtered(bus, 30 * GST_SECOND, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    if (!message)
        error = "the pipeline did not finish in time";
    else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
        error = "the pipeline failed: " + description;
    if (message)
        gst_message_unref(message);
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    return error;
}

// One second of a 440 Hz sine at 44100 Hz, mono, at the given level, as
// the source part of a pipeline.
inline std::string sineSource(double seconds = 1.0, double level = 0.8)
{
    int buffers = int(seconds * 10.0 + 0.5);
    return "audiotestsrc wave=sine freq=440 volume=" + std::to_string(level) + " num-buffers=" + std::to_string(buffers)
           + " samplesperbuffer=4410 ! audio/x-raw,rate=44100,channels=1 ! audioconvert";
}

// The encoder and muxer of each format the tests make, by extension.
inline std::string encoderFor(const std::string& extension)
{
    if (extension == "wav")
        return "wavenc";
    if (extension == "aiff")
        return "aiffmux";
    if (extension == "au")
        return "audio/x-raw,format=S16BE ! avmux_au";
    if (extension == "mp3")
        return "lamemp3enc target=bitrate bitrate=128 cbr=true ! xingmux ! id3v2mux";
    if (extension == "m4a")
        return "avenc_aac ! mp4mux";
    // libav's WMA encoder fails on mono input.
    if (extension == "wma")
        return "audio/x-raw,channels=2 ! avenc_wmav2 bitrate=128000 ! asfmux";
    return {};
}

// A fresh temporary folder, removed with what it holds by the destructor.
class TempFolder {
public:
    TempFolder()
    {
        gchar* made = g_dir_make_tmp("taleloom-sound-XXXXXX", nullptr);
        path = made ? made : "";
        g_free(made);
    }
    ~TempFolder()
    {
        if (GDir* dir = g_dir_open(path.c_str(), 0, nullptr)) {
            while (const char* name = g_dir_read_name(dir))
                g_remove((path + "/" + name).c_str());
            g_dir_close(dir);
        }
        g_rmdir(path.c_str());
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string pathOf(const std::string& name) const { return path + "/" + name; }

    std::string path;
};

// Makes a sound of the format in the folder; empty path with `error` set
// when it could not be made.
inline std::string makeSound(const TempFolder& folder, const std::string& extension, std::string& error,
                             double seconds = 1.0, double level = 0.8)
{
    std::string path = folder.pathOf("sound." + extension);
    error = runPipeline(sineSource(seconds, level) + " ! " + encoderFor(extension) + " ! filesink location=\"" + path
                        + "\"");
    return error.empty() ? path : std::string();
}

// A type 0 MIDI file: one note of `seconds` at 120 beats a minute.
inline std::string makeMidi(const TempFolder& folder, double seconds)
{
    const uint32_t division = 480;
    uint32_t ticks = uint32_t(seconds * 2.0 * division);
    std::vector<uint8_t> track = { 0x00, 0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20, // tempo 500000
                                   0x00, 0xC0, 0x00, // piano
                                   0x00, 0x90, 0x45, 0x60 }; // note on A4
    // The delta time of the note off, as a variable-length number.
    std::vector<uint8_t> delta;
    delta.push_back(uint8_t(ticks & 0x7F));
    for (uint32_t rest = ticks >> 7; rest; rest >>= 7)
        delta.insert(delta.begin(), uint8_t(0x80 | (rest & 0x7F)));
    track.insert(track.end(), delta.begin(), delta.end());
    for (uint8_t byte : { 0x80, 0x45, 0x40, 0x00, 0xFF, 0x2F, 0x00 })
        track.push_back(byte);
    std::vector<uint8_t> file
        = { 'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0, 0, 1, uint8_t(division >> 8), uint8_t(division & 0xFF),
            'M', 'T', 'r', 'k' };
    uint32_t length = uint32_t(track.size());
    for (int shift = 24; shift >= 0; shift -= 8)
        file.push_back(uint8_t(length >> shift));
    file.insert(file.end(), track.begin(), track.end());
    std::string path = folder.pathOf("tune.mid");
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(file.data()), std::streamsize(file.size()));
    return path;
}

// The 16-bit samples of a WAV file, channels interleaved; finds the "data"
// chunk by walking the chunks.
struct WavSamples {
    int channels = 0;
    int rate = 0;
    std::vector<int16_t> samples;
};

inline uint32_t le32(const uint8_t* p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

inline bool readWav(const std::string& path, WavSamples& out)
{
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (bytes.size() < 12 || std::memcmp(bytes.data(), "RIFF", 4) != 0 || std::memcmp(bytes.data() + 8, "WAVE", 4) != 0)
        return false;
    size_t at = 12;
    while (at + 8 <= bytes.size()) {
        uint32_t size = le32(&bytes[at + 4]);
        const uint8_t* body = &bytes[at + 8];
        size_t available = std::min<size_t>(size, bytes.size() - at - 8);
        if (std::memcmp(&bytes[at], "fmt ", 4) == 0 && available >= 16) {
            out.channels = body[2] | body[3] << 8;
            out.rate = int(le32(body + 4));
        } else if (std::memcmp(&bytes[at], "data", 4) == 0) {
            out.samples.resize(available / 2);
            std::memcpy(out.samples.data(), body, out.samples.size() * 2);
            return out.channels > 0;
        }
        at += 8 + size + (size & 1);
    }
    return false;
}

// The largest magnitude of one channel.
inline int peakOf(const WavSamples& wav, int channel)
{
    int peak = 0;
    for (size_t i = size_t(channel); i < wav.samples.size(); i += size_t(wav.channels))
        peak = std::max(peak, std::abs(int(wav.samples[i])));
    return peak;
}

} // namespace soundtest

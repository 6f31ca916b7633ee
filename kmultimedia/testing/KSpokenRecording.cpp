#include "kmultimedia/testing/KSpokenRecording.h"

#include "kmultimedia/KSoundHiliteAligner.h"
#include "kmultimedia/KSoundHiliteEditing.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KWavFormat.h"
#include "kmultimedia/KWavWriter.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace {

KWavFormat recordingFormat()
{
    KWavFormat format;
    format.channels = 1;
    format.bitsPerSample = 16;
    format.sampleRate = 22050;
    return format;
}

} // namespace

bool KSpokenRecording::appendReading(const std::string& sentence, const KString& voice, double pace,
                                     std::vector<uint8_t>& pcm)
{
    std::string part = "/tmp/taleloom-spoken-" + std::to_string(getpid()) + ".wav";
    std::vector<KSoundHiliteAligner::SpokenWord> words;
    bool read = KSoundHiliteAligner::synthesise(KString(sentence.c_str()), voice, pace, part, words);
    std::ifstream in(part, std::ios::binary);
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::remove(part.c_str());
    KWavInfo info;
    if (!read || !kReadWavHeader(bytes.data(), bytes.size(), info)) {
        failure = "the engine did not read \"" + sentence + "\"";
        return false;
    }
    const KWavFormat expected = recordingFormat();
    if (info.format.channels != expected.channels || info.format.sampleRate != expected.sampleRate
        || info.format.bitsPerSample != expected.bitsPerSample) {
        failure = "the engine reads in another format than " + std::to_string(expected.sampleRate) + " Hz mono";
        return false;
    }
    std::vector<KSoundHiliteMarkerPtr> markers = KSoundHiliteEditing::layOut(KString(sentence.c_str()), 1);
    std::vector<int32_t> times = KSoundHiliteAligner::spokenTimes(markers, words);
    if (times.size() != markers.size()) {
        failure = "the engine reported no words of \"" + sentence + "\"";
        return false;
    }
    int32_t offset = int32_t(pcm.size()) / bytesPerMs;
    for (int32_t time : times)
        wordTimes.push_back(offset + time);
    pcm.insert(pcm.end(), bytes.begin() + info.dataOffset, bytes.begin() + info.dataOffset + info.dataBytes);
    return true;
}

bool KSpokenRecording::make(const std::vector<std::string>& sentences, const KString& voice, const std::string& path)
{
    const KWavFormat format = recordingFormat();
    bytesPerMs = format.bytesPerSecond() / 1000;
    wordTimes.clear();
    failure.clear();
    std::string joined;
    std::vector<uint8_t> pcm(size_t(leadIn * bytesPerMs), 0);
    for (size_t i = 0; i < sentences.size(); ++i) {
        if (i > 0) {
            joined += ' ';
            pcm.insert(pcm.end(), size_t(pauses[(i - 1) % pauses.size()] * bytesPerMs), 0);
        }
        joined += sentences[i];
        if (!appendReading(sentences[i], voice, paces[i % paces.size()], pcm))
            return false;
    }
    pcm.insert(pcm.end(), size_t(leadOut * bytesPerMs), 0);
    text = KString(joined.c_str());
    duration = int32_t(pcm.size()) / bytesPerMs;
    KWavWriter writer;
    if (writer.open(path, format) != KWavWriter::Written || writer.write(pcm.data(), pcm.size()) != KWavWriter::Written
        || writer.close() != KWavWriter::Written) {
        failure = "the recording could not be written to " + path;
        return false;
    }
    return true;
}

double KSpokenRecording::meanError(const KSoundHiliteMedia& media) const
{
    if (media.getMarkerCount() != int32_t(wordTimes.size()) || wordTimes.empty())
        return -1.0;
    double total = 0.0;
    for (int32_t i = 0; i < media.getMarkerCount(); ++i)
        total += std::fabs(double(media.getMarkerAt(i)->getElapsedTime() - wordTimes[size_t(i)]));
    return total / double(wordTimes.size());
}

// Reads arbitrary bytes as the head of a WAV file. Whatever the reader
// accepts must describe data that lies inside the bytes given, in a format
// the recorder and the players can take.
#include "kmultimedia/KWavFormat.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    KWavInfo info;
    if (!kReadWavHeader(data, size, info))
        return 0;
    if (info.dataOffset > size || info.dataBytes > size - info.dataOffset)
        std::abort();
    if (info.format.channels <= 0 || info.format.sampleRate <= 0
        || (info.format.bitsPerSample != 8 && info.format.bitsPerSample != 16))
        std::abort();
    // A header written back from what was read reads the same.
    auto head = info.format.header(info.dataBytes);
    KWavInfo again;
    if (!kReadWavHeader(head.data(), head.size(), again) || again.format.sampleRate != info.format.sampleRate)
        std::abort();
    return 0;
}

#pragma once

#include "kmultimedia/KWavFormat.h"

#include <cstdio>
#include <string>

// Writes a PCM WAV file as it is recorded. The header's sizes start at 0
// and are brought up to date after each second of sound and at the close,
// so that a program that dies while recording still leaves a playable file.
class KWavWriter {
public:
    enum Result {
        Written = 0,
        DiskFull = 1,
        WriteFailed = 2,
    };

    KWavWriter() = default;
    ~KWavWriter();
    KWavWriter(const KWavWriter&) = delete;
    KWavWriter& operator=(const KWavWriter&) = delete;

    // Creates (or empties) the file and writes the header.
    Result open(const std::string& path, const KWavFormat& format);
    // Appends sound; whole blocks only are kept at the close.
    Result write(const void* data, size_t size);
    // Brings the header up to date and closes. The result of the last
    // write that failed, if any.
    Result close();
    bool isOpen() const { return file != nullptr; }

    uint32_t getDataBytes() const { return dataBytes; }
    double getSeconds() const;
    const KWavFormat& getFormat() const { return format; }

private:
    Result patchHeader();
    static Result resultOfErrno();

    std::FILE* file = nullptr;
    KWavFormat format;
    uint32_t dataBytes = 0;
    uint32_t patchedAt = 0;
    Result failure = Written;
};

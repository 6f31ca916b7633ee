#include "kmultimedia/KWavWriter.h"

#include <cerrno>
#include <cstdint>

KWavWriter::~KWavWriter() { close(); }

KWavWriter::Result KWavWriter::resultOfErrno()
{
    return errno == ENOSPC || errno == EDQUOT || errno == EFBIG ? DiskFull : WriteFailed;
}

KWavWriter::Result KWavWriter::open(const std::string& path, const KWavFormat& value)
{
    close();
    format = value;
    dataBytes = 0;
    patchedAt = 0;
    failure = Written;
    file = std::fopen(path.c_str(), "w+b");
    if (!file)
        return resultOfErrno();
    auto head = format.header(0);
    if (std::fwrite(head.data(), 1, head.size(), file) != head.size() || std::fflush(file) != 0) {
        failure = resultOfErrno();
        std::fclose(file);
        file = nullptr;
        return failure;
    }
    return Written;
}

KWavWriter::Result KWavWriter::write(const void* data, size_t size)
{
    if (!file)
        return WriteFailed;
    if (size == 0)
        return Written;
    // The file stays within what a 32-bit header can state.
    if (uint64_t(dataBytes) + size > uint64_t(UINT32_MAX) - KWavFormat::kHeaderSize) {
        failure = DiskFull;
        return failure;
    }
    size_t written = std::fwrite(data, 1, size, file);
    int flushed = std::fflush(file);
    dataBytes += uint32_t(written);
    if (written != size || flushed != 0) {
        failure = resultOfErrno();
        return failure;
    }
    if (dataBytes - patchedAt >= uint32_t(format.bytesPerSecond()))
        return patchHeader();
    return Written;
}

KWavWriter::Result KWavWriter::patchHeader()
{
    auto head = format.header(dataBytes);
    long end = std::ftell(file);
    bool ok = std::fseek(file, 0, SEEK_SET) == 0 && std::fwrite(head.data(), 1, head.size(), file) == head.size();
    ok = std::fseek(file, end, SEEK_SET) == 0 && ok;
    ok = std::fflush(file) == 0 && ok;
    if (!ok) {
        failure = resultOfErrno();
        return failure;
    }
    patchedAt = dataBytes;
    return Written;
}

KWavWriter::Result KWavWriter::close()
{
    if (!file)
        return failure;
    // A part of a block written before a failure is left out of the sizes.
    dataBytes -= dataBytes % uint32_t(format.blockAlign());
    Result patched = patchHeader();
    if (std::fclose(file) != 0 && patched == Written)
        patched = resultOfErrno();
    file = nullptr;
    return failure != Written ? failure : patched;
}

double KWavWriter::getSeconds() const
{
    return format.bytesPerSecond() > 0 ? double(dataBytes) / double(format.bytesPerSecond()) : 0.0;
}

#pragma once

#include "kernel/KString.h"

#include <cstdint>
#include <string>
#include <vector>

// The stream of an old document, read from memory. The old format has no
// sections and no lengths: fields follow one another, big-endian, and a
// class's whole field set must be known to skip it.
//
// Contract:
// - A read past the end stores error 6 and gives zeros; every read after an
//   error does nothing, and the error stays.
// - A failure (a wrong class head, a bad count) stops the reading with its
//   text and the place it happened; the conversion reports them.
// - Strings are a 16-bit length and the bytes, in the character set of the
//   platform the document was made on; a lone CR becomes CR LF.
class ZFile {
public:
    static constexpr int32_t kShortRead = 6;
    // How deep objects may hold objects.
    static constexpr int32_t kMaximumDepth = 64;

    // `platform` is KString::Macintosh or KString::Windows.
    ZFile(std::vector<uint8_t> bytes, int32_t platform);

    // Reads a whole file; false when it cannot be read.
    static bool readFile(const std::string& path, std::vector<uint8_t>& bytes);

    uint8_t readByte();
    bool readBool() { return readByte() != 0; }
    int16_t readShort();
    int32_t readLong();
    // Eight bytes, byte-reversed.
    double readDouble();
    bool readRaw(void* target, size_t size);
    // The long `ahead` bytes on, without reading it; 0 beyond the end.
    int32_t peekLong(size_t ahead) const;
    KString readString();

    int32_t getError() const { return error; }
    bool failed() const { return error != 0; }
    // Stops the reading for good.
    void fail(const std::string& text, const std::string& location);
    const std::string& getFailureText() const { return failureText; }
    const std::string& getFailureLocation() const { return failureLocation; }

    size_t getPosition() const { return position; }
    size_t remaining() const { return bytes.size() - position; }
    // Whether `count` items of `size` bytes each could still follow.
    bool couldHold(int64_t count, int64_t size) const;
    int32_t getPlatform() const { return platform; }

    // One level deeper into nested objects; false (and a failure) beyond
    // the maximum depth.
    bool enter();
    void leave() { --depth; }

private:
    bool take(size_t size, const uint8_t*& data);

    std::vector<uint8_t> bytes;
    size_t position = 0;
    int32_t platform;
    int32_t error = 0;
    int32_t depth = 0;
    std::string failureText;
    std::string failureLocation;
};

// Keeps a ZFile one level deeper for a scope.
class ZDepthGuard {
public:
    explicit ZDepthGuard(ZFile& file)
        : file(file)
        , entered(file.enter())
    {
    }
    ~ZDepthGuard()
    {
        if (entered)
            file.leave();
    }
    ZDepthGuard(const ZDepthGuard&) = delete;
    ZDepthGuard& operator=(const ZDepthGuard&) = delete;
    bool ok() const { return entered; }

private:
    ZFile& file;
    bool entered;
};

#pragma once

#include "kernel/KThing.h"
#include <cstdint>
#include <map>
#include <string>

// Copies media files into one target folder under short names that every
// file system takes, for a publication. Each source file is copied once:
// its later users get the name it was given. A name that is taken gets
// "-2", "-3" and so on before its extension, cut so that the whole stays
// within `maxNameLength` characters.
class KMediaPublisher : public KThing {
    K_DECLARE_CLASS(KMediaPublisher)
public:
    static constexpr int32_t kDefaultMaxNameLength = 26;
    static constexpr int32_t kLastCounter = 9999;

    KMediaPublisher();
    ~KMediaPublisher() override;

    // The target folder, as a native path.
    void setDirectory(const std::string& folder) { directory = folder; }
    const std::string& getDirectory() const { return directory; }
    bool hasDirectory() const { return !directory.empty(); }
    void clearDirectory() { directory.clear(); }
    void setMaxNameLength(int32_t length) { maxNameLength = length; }
    int32_t getMaxNameLength() const { return maxNameLength; }

    // Copies `source` (a native path) into the folder; `name` is the name
    // it has there. False when no free name was found or the copy failed;
    // `name` then still holds the name it was meant to have.
    bool publish(const std::string& source, std::string& name);
    // The name chosen for `source` without copying it: a missing file keeps
    // a name for its element, so that it can be found later.
    std::string reserveName(const std::string& source);

    // Bytes copied so far.
    int64_t getBytesCopied() const { return bytesCopied; }
    const std::map<std::string, std::string>& getPublished() const { return published; }

    // A name every file system takes: plain letters for accented ones,
    // "_" for the characters Windows refuses, for control characters and
    // for anything else outside ASCII; no trailing dots or blanks.
    static std::string safeName(const std::string& utf8);

private:
    std::string freeName(const std::string& base, const std::string& extension) const;
    bool taken(const std::string& name) const;

    std::string directory;
    std::map<std::string, std::string> published;
    int32_t maxNameLength = kDefaultMaxNameLength;
    int64_t bytesCopied = 0;
};

using KMediaPublisherPtr = KPtr<KMediaPublisher>;

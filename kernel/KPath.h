#pragma once

#include "kernel/KString.h"
#include "kernel/KThingPtr.h"

#include <string>
#include <vector>

// A place on disk, split into volume, folders, name and extension, which can
// be parsed from and written in the spelling of each platform. The framework
// hands paths around only in this form.
//
// Linux spelling has no volume separator; its text is rooted ("/a/b.txt")
// whenever the path has folders or a volume, and parsing a relative Linux
// text resolves it against the current directory, so that references stay
// absolute.
class KPath : public KThing {
    K_DECLARE_CLASS(KPath)
public:
    enum Platform : int32_t {
        GenericPlatform = 0,
        MacintoshPlatform = 1,
        WindowsPlatform = 2,
        LinuxPlatform = 3,
    };
    static constexpr int32_t kHostPlatform = LinuxPlatform;

    enum Kind : int32_t { VolumeKind = 0, DirectoryKind = 1, FileKind = 2, EmptyKind = 3 };

    // Form 1 puts the current directory in front of a relative path.
    enum Form : int32_t { AsStored = 0, Absolute = 1 };

    KPath();
    KPath(const KPath& other);
    // Parses `text` in the spelling of `platform`.
    KPath(const KString& text, int32_t platform);
    ~KPath() override;
    KPath& operator=(const KPath& other);

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void setFromText(const KString& text, int32_t platform);
    void getText(KString& out, int32_t platform, int32_t form) const;
    // The host spelling, absolute: the text the file system is given.
    KString getNativeText() const;

    int32_t getKind() const;
    bool isEmpty() const;
    void clear();

    const KString& getVolume() const { return volume; }
    void setVolume(const KString& text) { volume = text; }
    void clearVolume() { volume.clear(); }

    const KString& getName() const { return name; }
    void setName(const KString& text) { name = text; }
    void clearName() { name.clear(); }

    const KString& getExtension() const { return extension; }
    void setExtension(const KString& text) { extension = text; }
    void clearExtension() { extension.clear(); }

    const KString& getServer() const { return server; }
    void setServer(const KString& text) { server = text; }
    void clearServer() { server.clear(); }

    // Ignores an empty string; holds a heap string as it stands and copies
    // any other.
    void addFolder(const KString& folder);
    // Null when out of range.
    const KString* getFolder(int32_t index) const;
    int32_t getFolderCount() const { return int32_t(folders.size()); }
    void removeLastFolder();
    void clearFolders() { folders.clear(); }

    // An empty string clears both; a trailing "." is dropped and leaves no
    // extension; otherwise the last "." divides name from extension.
    void setNameAndExtension(const KString& text);
    // Replaces everything: the volume, one folder (when not empty), the name
    // and the extension.
    void setAll(const KString& volumeText, const KString& folder, const KString& nameText,
                const KString& extensionText);

    // The volume, the last folder, or the name with its extension, by kind.
    void getObjectName(KString& out) const;

    // The folder that holds this object: a file loses name and extension, a
    // folder its last folder.
    KPath getParent() const;
    // The file or folder of that name inside this path's folder part.
    KPath getChildFile(const KString& nameAndExtension) const;
    KPath getChildFolder(const KString& folder) const;

    bool operator==(const KPath& other) const;
    bool operator!=(const KPath& other) const { return !(*this == other); }

    // The folder strings themselves, for the stream.
    const std::vector<KStringPtr>& getFolders() const { return folders; }

private:
    void copyFrom(const KPath& other);
    void appendFileText(std::string& text, int32_t platform) const;

    KString volume;
    std::vector<KStringPtr> folders;
    KString name;
    KString extension;
    KString server;
};

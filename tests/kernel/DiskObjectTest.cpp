#include "kernel/KClassStreamState.h"
#include "kernel/KDirectory.h"
#include "kernel/KError.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileSystem.h"
#include "kernel/KFileTypeHandler.h"
#include "kernel/KMemory.h"
#include "kernel/KMemoryBlock.h"
#include "kernel/KPath.h"
#include "kernel/KVolume.h"
#include "tests/kernel/FileTestSupport.h"
#include "tests/support/TestSupport.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

using namespace filetest;

namespace {

KString textOf(const KPath& path, int32_t platform, int32_t form = KPath::AsStored)
{
    KString text;
    path.getText(text, platform, form);
    return text;
}

std::string str(const KString& text) { return text.c_str(); }

std::vector<std::string> namesOf(const KDiskObjectList& list)
{
    std::vector<std::string> names;
    for (const auto& object : list)
        names.push_back(str(object->getObjectName()));
    return names;
}

// Writes `object` to a file and reads it back into `copy`.
void roundTrip(const TempFolder& folder, KThing& object, KThing& copy)
{
    KFile out(folder.pathOf("object.bin"));
    openForWriting(out, KFileModeDirect);
    object.writeToFile(out, 1);
    out.close();
    ASSERT_EQ(out.getError(), 0);
    KFile in(folder.pathOf("object.bin"));
    in.setMode(KFileModeReadBuffered);
    in.open();
    copy.readFromFile(in);
    EXPECT_EQ(in.getError(), 0);
    EXPECT_EQ(in.bytesLeft(), 0);
}

} // namespace

TEST(KPath, ParsesNamesAndForeignSpellings)
{
    KPath file("C:\\a\\b.txt", KPath::WindowsPlatform);
    EXPECT_EQ(file.getVolume(), "C");
    ASSERT_EQ(file.getFolderCount(), 1);
    EXPECT_EQ(file.getKind(), KPath::FileKind);
    EXPECT_EQ(str(textOf(file, KPath::WindowsPlatform)), "C:\\a\\b.txt");
    EXPECT_EQ(str(textOf(file, KPath::LinuxPlatform)), "/C/a/b.txt");

    // Names: the last dot divides; a trailing dot leaves no extension.
    KPath dots("/a.b.c", KPath::LinuxPlatform);
    EXPECT_EQ(dots.getName(), "a.b");
    EXPECT_EQ(dots.getExtension(), "c");
    KPath trailing("/x/name.", KPath::LinuxPlatform);
    EXPECT_EQ(trailing.getName(), "name");
    EXPECT_TRUE(trailing.getExtension().isEmpty());
    KPath folderWithDot("/x/name./", KPath::LinuxPlatform);
    EXPECT_EQ(folderWithDot.getKind(), KPath::DirectoryKind);
    EXPECT_EQ(*folderWithDot.getFolder(1), "name.");
    KPath empty("", KPath::WindowsPlatform);
    EXPECT_TRUE(empty.isEmpty());
}

TEST(KPath, LinuxTextIsRootedAndAbsolute)
{
    KPath file("/home/a/b.txt", KPath::LinuxPlatform);
    EXPECT_TRUE(file.getVolume().isEmpty());
    ASSERT_EQ(file.getFolderCount(), 2);
    EXPECT_EQ(*file.getFolder(0), "home");
    EXPECT_EQ(str(textOf(file, KPath::LinuxPlatform)), "/home/a/b.txt");
    EXPECT_EQ(str(file.getNativeText()), "/home/a/b.txt");
    EXPECT_EQ(str(textOf(file, KPath::WindowsPlatform)), "home\\a\\b.txt");

    KPath folder("/home/a/", KPath::LinuxPlatform);
    EXPECT_EQ(folder.getKind(), KPath::DirectoryKind);
    EXPECT_EQ(str(folder.getNativeText()), "/home/a/");
    EXPECT_EQ(str(KPath("/a/./b/../c.txt", KPath::LinuxPlatform).getNativeText()), "/a/c.txt");
    EXPECT_EQ(str(KPath("//a//b", KPath::LinuxPlatform).getNativeText()), "/a/b");

    // Relative text is resolved against the current directory at once.
    TempFolder temp;
    CurrentDirectoryGuard guard;
    std::filesystem::current_path(temp.path());
    std::string here = std::filesystem::current_path().string();
    EXPECT_EQ(str(KPath("sub/x.txt", KPath::LinuxPlatform).getNativeText()), here + "/sub/x.txt");
    EXPECT_EQ(str(KPath("../x", KPath::LinuxPlatform).getNativeText()),
              std::filesystem::path(here).parent_path().string() + "/x");

    // A bare name stays relative until it is made absolute.
    KPath bare;
    bare.setNameAndExtension("x.txt");
    EXPECT_EQ(str(textOf(bare, KPath::LinuxPlatform)), "x.txt");
    EXPECT_EQ(str(textOf(bare, KPath::LinuxPlatform, KPath::Absolute)), here + "/x.txt");
    KPath windowsRelative("a\\b.txt", KPath::WindowsPlatform);
    EXPECT_EQ(str(windowsRelative.getNativeText()), "/a/b.txt");
}

TEST(KPath, PartsNamesAndRelativesAreSeparateCopies)
{
    KPath file("/a/b/c.txt", KPath::LinuxPlatform);
    KString name;
    file.getObjectName(name);
    EXPECT_EQ(name, "c.txt");
    KPath parent = file.getParent();
    EXPECT_EQ(str(parent.getNativeText()), "/a/b/");
    parent.getObjectName(name);
    EXPECT_EQ(name, "b");
    EXPECT_EQ(str(parent.getParent().getNativeText()), "/a/");
    EXPECT_EQ(str(file.getChildFile("d.png").getNativeText()), "/a/b/d.png");
    EXPECT_EQ(str(file.getChildFolder("e").getNativeText()), "/a/b/e/");
    KPath volume;
    volume.setVolume("HD");
    volume.getObjectName(name);
    EXPECT_EQ(name, "HD");
    EXPECT_TRUE(volume.getParent().isEmpty());

    KPath renamed(file);
    EXPECT_TRUE(renamed == file);
    renamed.setExtension("png");
    EXPECT_TRUE(renamed != file);
    renamed.setNameAndExtension("");
    EXPECT_EQ(renamed.getKind(), KPath::DirectoryKind);

    // Copies own their folder strings; a heap string is taken as it stands.
    KPath copy(file);
    EXPECT_NE(copy.getFolder(0), file.getFolder(0));
    EXPECT_EQ(*copy.getFolder(0), *file.getFolder(0));
    auto* shared = new KString("shared");
    KStringPtr holder(shared);
    copy.addFolder(*shared);
    EXPECT_EQ(copy.getFolder(2), shared);
    copy.addFolder(KString());
    EXPECT_EQ(copy.getFolderCount(), 3);
    EXPECT_EQ(copy.getFolder(3), nullptr);
    EXPECT_EQ(copy.getFolder(-1), nullptr);

    KPath all;
    all.setAll("V", "f", "n", "e");
    EXPECT_EQ(str(textOf(all, KPath::WindowsPlatform)), "V:\\f\\n.e");
}

TEST(KPath, StreamsItsPartsAndTheServerInASecondSection)
{
    TempFolder folder;
    for (const char* text : { "\\\\host\\share\\dir\\x.txt", "C:\\a\\b\\c.txt", "" }) {
        KPath path(text, KPath::WindowsPlatform);
        KPath copy("Z:\\old\\stuff.bin", KPath::WindowsPlatform);
        roundTrip(folder, path, copy);
        EXPECT_TRUE(copy == path) << text;
        std::vector<uint8_t> bytes = bytesOf(folder.file("object.bin"));
        ASSERT_GE(bytes.size(), 16u);
        EXPECT_EQ(bytes[15], path.getServer().isEmpty() ? 1 : 2) << text;
    }
}

TEST(KFileReference, KnowsItsTypeAndWorksOnTheFile)
{
    kRegisterFrameworkFileTypes();
    TempFolder folder;
    writeBytes(folder.file("picture.PnG"), { 1, 2, 3 });

    KFileReference picture(folder.pathOf("picture.PnG"));
    EXPECT_EQ(picture.getKind(), KPath::FileKind);
    EXPECT_EQ(picture.getFileTypeID(), KFileTypeHandler::getAssociation(KString("PNG"))->getID());
    EXPECT_TRUE(picture.doesExist());
    EXPECT_TRUE(picture.isValid());
    EXPECT_GT(picture.getModificationDate().getYear(), 2000);
    EXPECT_EQ(KFileReference(folder.pathOf("notes.zzz")).getFileTypeID(), -1);
    EXPECT_FALSE(KFileReference(folder.pathOf("notes.zzz")).doesExist());
    EXPECT_FALSE(KFileReference(folder.folderPath()).doesExist()) << "a folder path names no file";

    // Copy into a folder; a copy onto itself or from a missing file does nothing.
    std::filesystem::create_directory(folder.file("out"));
    KDirectory out(folder.pathOf("out"));
    EXPECT_TRUE(picture.copy(out));
    EXPECT_EQ(bytesOf(folder.file("out/picture.PnG")), (std::vector<uint8_t> { 1, 2, 3 }));
    EXPECT_FALSE(picture.copy(picture.getDirectory()));
    EXPECT_FALSE(KFileReference(folder.pathOf("gone.txt")).copy(out));
    EXPECT_TRUE(picture.copyAndRename(out, "second.bmp"));
    EXPECT_TRUE(std::filesystem::exists(folder.file("out/second.bmp")));
    EXPECT_EQ(str(picture.getDirectory().getPath().getNativeText()), folder.path() + "/");

    // A name with a dot replaces the extension, one without keeps it.
    EXPECT_TRUE(picture.rename("photo"));
    EXPECT_EQ(str(picture.getObjectName()), "photo.PnG");
    EXPECT_TRUE(picture.rename("photo.jpg"));
    EXPECT_TRUE(std::filesystem::exists(folder.file("photo.jpg")));
    EXPECT_EQ(picture.getFileTypeID(), KFileTypeHandler::getAssociation(KString("jpg"))->getID());

    EXPECT_TRUE(picture.remove());
    EXPECT_FALSE(picture.doesExist());
    EXPECT_FALSE(picture.remove());
}

TEST(KFileReference, StreamsItsTypeAndTheNestedReference)
{
    kRegisterFrameworkFileTypes();
    TempFolder folder;
    writeBytes(folder.file("story.txt"), { 'x' });
    KFileReference story(folder.pathOf("story.txt"));
    KFileReference copy;
    roundTrip(folder, story, copy);
    EXPECT_TRUE(copy.getPath() == story.getPath());
    EXPECT_EQ(copy.getFileTypeID(), story.getFileTypeID());
    EXPECT_EQ(copy.getKind(), KPath::FileKind);
    EXPECT_TRUE(copy.getModificationDate() == story.getModificationDate());
    EXPECT_TRUE(copy.getModificationTime() == story.getModificationTime());
    EXPECT_TRUE(copy.getCreationDate() == story.getCreationDate());

    KFileType type("TPD", "TaleLoom Document", "SLXT", "SLOX");
    KFileType typeCopy;
    roundTrip(folder, type, typeCopy);
    EXPECT_EQ(typeCopy.getDescription(), "TaleLoom Document");
    EXPECT_EQ(typeCopy.getMacCreator(), "SLOX");
    EXPECT_EQ(typeCopy.getID(), type.getID());

    // Damaged reference streams fail with the file's error set.
    KFile out(folder.pathOf("object.bin"));
    out.setMode(KFileModeMemory);
    out.create();
    out.open();
    story.writeToFile(out, 1);
    out.close();
    std::vector<uint8_t> whole = bytesOf(folder.file("object.bin"));
    for (size_t cut = 0; cut < whole.size(); cut += 3) {
        writeBytes(folder.file("cut.bin"), std::vector<uint8_t>(whole.begin(), whole.begin() + long(cut)));
        KFile in(folder.pathOf("cut.bin"));
        in.open();
        KFileReference damaged;
        damaged.readFromFile(in);
        EXPECT_NE(in.getError(), 0) << cut;
    }

    // Random damage: whatever is read, nothing is read beyond the end.
    uint32_t seed = 12345;
    auto next = [&seed] { return seed = seed * 1103515245u + 12345u; };
    for (int round = 0; round < 3000; ++round) {
        std::vector<uint8_t> bytes = whole;
        for (int flips = 1 + int(next() % 4); flips > 0; --flips)
            bytes[(next() >> 8) % bytes.size()] = uint8_t(next() >> 16);
        auto* image = static_cast<char*>(KMemory::allocate(bytes.size(), false));
        KMemory::copy(bytes.data(), image, bytes.size());
        KFile in;
        in.setMode(KFileModeReadBuffered);
        in.openFromRAM(image, int32_t(bytes.size()));
        KFileReference damaged;
        damaged.readFromFile(in);
        EXPECT_LE(in.getPosition(), int32_t(bytes.size()));
    }
    KClassStreamState::reset();
}

TEST(KDirectory, CreatesListsCopiesAndRemovesFolders)
{
    TempFolder folder;
    KDirectory base(folder.pathOf("base"));
    EXPECT_EQ(base.getKind(), KPath::DirectoryKind);
    EXPECT_EQ(str(base.getNativeText()), folder.path() + "/base");
    EXPECT_FALSE(base.doesExist());
    EXPECT_TRUE(base.create());
    EXPECT_TRUE(base.doesExist());
    writeBytes(folder.file("base/b.txt"), { 'b' });
    writeBytes(folder.file("base/a.bmp"), { 'a' });
    std::filesystem::create_directory(folder.file("base/sub"));
    writeBytes(folder.file("base/sub/inner.dat"), { 'i' });

    EXPECT_EQ(namesOf(base.getFiles()), (std::vector<std::string> { "a.bmp", "b.txt" }));
    KDiskObjectList folders = base.getFolders();
    ASSERT_EQ(namesOf(folders), std::vector<std::string> { "sub" });
    EXPECT_TRUE(folders[0]->isEqualOrSubClass(KDirectory::classRecord));
    EXPECT_EQ(namesOf(base.getContents()), (std::vector<std::string> { "a.bmp", "b.txt", "sub" }));
    EXPECT_TRUE(base.getFiles()[0]->isEqualOrSubClass(KFileReference::classRecord));

    // Copies carry the contents; a copy into itself is refused.
    KDirectory target(folder.pathOf("target"));
    EXPECT_TRUE(target.create());
    EXPECT_TRUE(base.copy(target));
    EXPECT_EQ(bytesOf(folder.file("target/base/sub/inner.dat")), std::vector<uint8_t> { 'i' });
    EXPECT_FALSE(base.copyAndRename(base, "again"));
    EXPECT_FALSE(std::filesystem::exists(folder.file("base/again")));

    EXPECT_TRUE(base.rename("renamed"));
    EXPECT_EQ(str(base.getObjectName()), "renamed");
    EXPECT_TRUE(std::filesystem::exists(folder.file("renamed/sub/inner.dat")));
    EXPECT_FALSE(base.remove()) << "not empty";
    KDirectory empty(folder.pathOf("target/base/sub"));
    std::filesystem::remove(folder.file("target/base/sub/inner.dat"));
    EXPECT_TRUE(empty.remove());
    EXPECT_FALSE(empty.doesExist());

    KVolume root;
    EXPECT_TRUE(root.doesExist());
    EXPECT_EQ(root.getKind(), KPath::VolumeKind);
    KDiskObjectList top = root.getContents(KVolume::Folders);
    EXPECT_FALSE(top.empty());
    EXPECT_EQ(KFileSystem::get().getVolumes().size(), 1u);
}

TEST(KFileSystem, FoldersFollowTheXdgEnvironment)
{
    // GLib reads these folders once per process, so the check runs in a
    // process of its own with the environment set first.
    auto check = [] {
        // Not TempFolder: asking GLib for the temporary folder would fix it
        // before TMPDIR is set.
        std::string h = (std::filesystem::temp_directory_path() / "taleloom-xdg-XXXXXX").string();
        if (!mkdtemp(h.data()))
            std::exit(2);
        std::filesystem::create_directories(h + "/config");
        std::filesystem::create_directories(h + "/tmp");
        writeBytes(h + "/config/user-dirs.dirs", {});
        std::FILE* dirs = std::fopen((h + "/config/user-dirs.dirs").c_str(), "w");
        std::fputs("XDG_DOCUMENTS_DIR=\"$HOME/Docs\"\nXDG_PICTURES_DIR=\"$HOME/Pics\"\n"
                   "XDG_MUSIC_DIR=\"$HOME/Tunes\"\nXDG_VIDEOS_DIR=\"$HOME/Films\"\n",
                   dirs);
        std::fclose(dirs);
        setenv("HOME", h.c_str(), 1);
        setenv("XDG_CONFIG_HOME", (h + "/config").c_str(), 1);
        setenv("XDG_DATA_HOME", (h + "/data").c_str(), 1);
        setenv("XDG_DATA_DIRS", (h + "/shared:/usr/share").c_str(), 1);
        setenv("TMPDIR", (h + "/tmp").c_str(), 1);
        std::filesystem::current_path(h);

        KFileSystem fs;
        std::string program = std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
        const std::pair<const KDirectory*, std::string> expected[] = {
            { &fs.getCommonApplicationDataDirectory(), h + "/shared/" },
            { &fs.getApplicationDirectory(), program + "/" },
            { &fs.getUserApplicationDataDirectory(), h + "/data/" },
            { &fs.getTemporaryDirectory(), h + "/tmp/" },
            { &fs.getDocumentsDirectory(), h + "/Docs/" },
            { &fs.getPicturesDirectory(), h + "/Pics/" },
            { &fs.getMusicDirectory(), h + "/Tunes/" },
            { &fs.getVideoDirectory(), h + "/Films/" },
            { &fs.getDesktopDirectory(), h + "/Desktop/" },
            { &fs.getCurrentDirectory(), h + "/" },
        };
        int failures = 0;
        for (const auto& [directory, text] : expected) {
            std::string got = directory->getPath().getNativeText().c_str();
            if (got != text) {
                std::fprintf(stderr, "expected %s, got %s\n", text.c_str(), got.c_str());
                ++failures;
            }
        }
        KDirectory tmp(KPath(KString((h + "/tmp/").c_str()), KPath::LinuxPlatform));
        if (!fs.setCurrentDirectory(tmp)
            || std::string(fs.getCurrentDirectory().getPath().getNativeText().c_str()) != h + "/tmp/")
            ++failures;
        std::filesystem::current_path("/");
        std::filesystem::remove_all(h);
        std::exit(failures == 0 ? 0 : 1);
    };
    EXPECT_EXIT(check(), testing::ExitedWithCode(0), "");
}

TEST(KFileTypeHandler, LooksUpByExtensionAndMacType)
{
    kRegisterFrameworkFileTypes();
    kRegisterFrameworkFileTypes(); // a second call changes nothing
    KFileType* text = KFileTypeHandler::getAssociation(KString("txt"));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(KFileTypeHandler::getAssociation(text->getID()), text);
    EXPECT_EQ(KFileTypeHandler::getAssociationFromMacType("JPEG")->getExtension(), "JPG");
    EXPECT_TRUE(KFileTypeHandler::hasMacType("PICT"));
    EXPECT_FALSE(KFileTypeHandler::hasAssociation(KString("WAV")));

    ErrorRecorder recorder;
    EXPECT_EQ(KFileTypeHandler::makeAssociation("tXt", "Other", "????", "????"), 0);
    EXPECT_EQ(recorder.lastCode(), KError::FileTypeAlreadyExists);
    EXPECT_EQ(KFileTypeHandler::getAssociation(KString("NOPE")), nullptr);
    EXPECT_EQ(recorder.lastCode(), KError::FileTypeNotFound);
    EXPECT_EQ(KFileTypeHandler::getAssociationFromMacType("ZZZZ"), nullptr);

    // An anagram multiplies to the same product but still gets its own id.
    if (!KFileTypeHandler::hasAssociation(KString("XTT"))) {
        KFileTypeID anagram = KFileTypeHandler::makeAssociation("XTT", "Anagram", "????", "????");
        EXPECT_NE(anagram, 0);
        EXPECT_NE(anagram, text->getID());
        EXPECT_EQ(KFileTypeHandler::getAssociation(anagram)->getExtension(), "XTT");
    }
}

TEST(KMemoryBlock, HoldsBytesFromFilesAndResources)
{
    TempFolder folder;
    KMemoryBlock block;
    block.setSize(4);
    EXPECT_EQ(block.getSize(), 4);
    block.putData(0, "abcd", 4);
    block.putData(2, "xyz", 3); // does not fit: ignored
    EXPECT_EQ(std::string(static_cast<char*>(block.getAddress()), 4), "abcd");
    EXPECT_EQ(block.getAddress(4), nullptr);
    EXPECT_EQ(block.getAddress(-1), nullptr);

    KMemoryBlock copy(block);
    EXPECT_NE(copy.getAddress(), block.getAddress());
    EXPECT_EQ(std::string(static_cast<char*>(copy.getAddress()), 4), "abcd");

    KFileReference file(folder.pathOf("block.bin"));
    EXPECT_TRUE(block.writeToDiskFile(file));
    KMemoryBlock read;
    EXPECT_TRUE(read.readFromDiskFile(file));
    EXPECT_EQ(read.getSize(), 4);
    EXPECT_FALSE(read.readFromDiskFile(KFileReference(folder.pathOf("missing.bin"))));
    EXPECT_EQ(read.getSize(), 0);

    // Resources of another program lie beside it.
    KFileReference player(folder.pathOf("Start Here"));
    EXPECT_TRUE(block.writeToResource(player, 128));
    KMemoryBlock resource;
    EXPECT_TRUE(resource.readFromResource(player, 128));
    EXPECT_EQ(std::string(static_cast<char*>(resource.getAddress()), 4), "abcd");
    EXPECT_FALSE(resource.readFromResource(player, 129));
    EXPECT_TRUE(KMemoryBlock().writeToResource(player, 130));
    EXPECT_FALSE(std::filesystem::exists(KMemoryBlock::resourcePath(player, 130).getNativeText().c_str()));
}

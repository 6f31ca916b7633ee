#include "app/ColorPaletteFile.h"
#include "app/AppClasses.h"
#include "kernel/KClass.h"
#include "kernel/KDocument.h"
#include "kernel/KFile.h"
#include "kernel/KLocalizer.h"
#include "kernel/KLocalizerData.h"
#include "kernel/KVariable.h"
#include "tools/taleloom-tool/PaletteCommand.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
using Form = ColorPaletteFile::Form;

class ColorPaletteFileTest : public ::testing::Test {
protected:
    void SetUp() override { registerDocumentClasses(); }
};

uint32_t longAt(const Bytes& bytes, size_t at)
{
    return uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 | uint32_t(bytes[at + 2]) << 8 | bytes[at + 3];
}

uint16_t shortAt(const Bytes& bytes, size_t at) { return uint16_t(bytes[at] << 8 | bytes[at + 1]); }

void putLong(Bytes& bytes, uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(uint8_t(value >> shift));
}

void putShort(Bytes& bytes, uint16_t value)
{
    bytes.push_back(uint8_t(value >> 8));
    bytes.push_back(uint8_t(value));
}

// "STCP" and 16 colour records, each a class head and three channels.
Bytes oldForm(uint32_t classId)
{
    Bytes bytes { 'S', 'T', 'C', 'P' };
    for (int32_t i = 0; i < ColorPaletteFile::kColorCount; ++i) {
        putLong(bytes, classId);
        putLong(bytes, 1);
        putShort(bytes, uint16_t(0x1000 * i));
        putShort(bytes, 0x0100);
        putShort(bytes, uint16_t(0xFFFF - i));
    }
    return bytes;
}

// A palette document with the entries given, built as the program would.
Bytes documentOf(const std::vector<std::pair<std::string, KVariable*>>& entries)
{
    KDocumentPtr document(new KDocument());
    document->setMagic(ColorPaletteFile::magic());
    document->setVersion(ColorPaletteFile::kVersion);
    for (const auto& [name, variable] : entries) {
        KPtr<KVariable> held(variable);
        document->add(KString(name.c_str()), *variable);
    }
    KFile file;
    file.setMode(KFileModeMemory);
    document->saveTo(file);
    document->clear();
    const auto* data = static_cast<const uint8_t*>(file.getMemoryData());
    return Bytes(data, data + file.getMemorySize());
}

KVariable* colourVariable(uint16_t red, uint16_t green, uint16_t blue)
{
    KPtr<KColor> colour(new KColor(red, green, blue));
    return new KVariable(*colour);
}

Form decode(const Bytes& bytes, ColorPaletteFile::Colors& colors)
{
    return ColorPaletteFile::decode(bytes.data(), bytes.size(), colors);
}

// --- The default palette's bytes -------------------------------------------------------

// The head, the bag of names, then the bag of variables: each variable
// holds its colour record, 72 bytes apart.
TEST_F(ColorPaletteFileTest, TheDefaultPaletteHasItsBytesAtTheirOffsets)
{
    Bytes bytes = ColorPaletteFile::encode(defaultPaletteColors());
    ASSERT_EQ(bytes.size(), 1993u);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), "STCP");
    EXPECT_EQ(longAt(bytes, 4), 2u) << "version";
    EXPECT_EQ(longAt(bytes, 8), uint32_t(KClass::computeClassID("KNamedBag")));
    EXPECT_EQ(std::string(bytes.begin() + 0x77, bytes.begin() + 0x7E), "Color 1");
    EXPECT_EQ(std::string(bytes.begin() + 0x2F3, bytes.begin() + 0x2FB), "Color 16");
    constexpr size_t kFirstColour = 0x377;
    constexpr size_t kStride = 72;
    EXPECT_EQ(longAt(bytes, 0x73), 7u) << "the length of the first name";
    // The first variable: its tag 7 (an object), then its colour's class id.
    EXPECT_EQ(shortAt(bytes, kFirstColour - 30), 7u);
    EXPECT_EQ(longAt(bytes, kFirstColour - 28), uint32_t(KClass::computeClassID("KColor")));
    struct Expected {
        int button;
        uint16_t red, green, blue;
    };
    // White is saved as the button shows it: 8 bits a channel.
    for (Expected e : { Expected { 1, 0xFF00, 0xFF00, 0xFF00 }, Expected { 2, 0, 0, 0 },
                        Expected { 3, 0xC600, 0xC600, 0xC600 }, Expected { 5, 0xF700, 0xF700, 0x0800 },
                        Expected { 11, 0, 0xCF00, 0xE700 }, Expected { 16, 0x8C00, 0x2800, 0 } }) {
        size_t at = kFirstColour + kStride * size_t(e.button - 1);
        EXPECT_EQ(shortAt(bytes, at), e.red) << e.button;
        EXPECT_EQ(shortAt(bytes, at + 2), e.green) << e.button;
        EXPECT_EQ(shortAt(bytes, at + 4), e.blue) << e.button;
        EXPECT_EQ(longAt(bytes, at + 6), 0u) << "transparency " << e.button;
    }
    // The shipped palette is the default one.
    std::ifstream shipped(std::string(std::getenv("TALELOOM_TEST_SOURCE_DIR"))
                              + "/data/Color Palettes/Atelier Colors.SCP",
                          std::ios::binary);
    Bytes onDisk((std::istreambuf_iterator<char>(shipped)), std::istreambuf_iterator<char>());
    EXPECT_EQ(onDisk, bytes);
}

TEST_F(ColorPaletteFileTest, WhatWasReadIsSavedAgainByteForByte)
{
    ColorPaletteFile::Colors colors;
    colors.set(0, KColor(0xFFFF, 0x12FF, 0x0001));
    Bytes first = ColorPaletteFile::encode(colors);
    ColorPaletteFile::Colors read;
    ASSERT_EQ(decode(first, read), Form::Document);
    EXPECT_EQ(read.colors[0], KColor(0xFF00, 0x1200, 0));
    EXPECT_EQ(ColorPaletteFile::encode(read), first);
}

// The variables' names are the file's, not the interface's: a palette saved
// while the program speaks French loads whole while it speaks German.
TEST_F(ColorPaletteFileTest, APaletteSavedInOneLanguageLoadsInAnother)
{
    kCreateBaseLocalizer();
    KLocalizer* localizer = kBaseLocalizer();
    ASSERT_NE(localizer, nullptr);
    localizer->setLanguage(KLocalizer::kFrench);
    ColorPaletteFile::Colors colors;
    for (int32_t i = 0; i < ColorPaletteFile::kColorCount; ++i)
        colors.set(i, KColor(uint16_t(i << 12), 0x4400, 0x8800));
    Bytes french = ColorPaletteFile::encode(colors);
    localizer->setLanguage("Deutsch");
    ColorPaletteFile::Colors read;
    EXPECT_EQ(decode(french, read), Form::Document);
    EXPECT_EQ(read.count(), ColorPaletteFile::kColorCount);
    localizer->setLanguage("English_TL");
    kDestroyBaseLocalizer();
}

// --- Reading ---------------------------------------------------------------------------

TEST_F(ColorPaletteFileTest, APartialFileNamesOnlyItsButtons)
{
    ColorPaletteFile::Colors read;
    ASSERT_EQ(decode(documentOf({ { "Color 3", colourVariable(0x1200, 0x3400, 0x5600) } }), read), Form::Document);
    EXPECT_EQ(read.count(), 1);
    ASSERT_TRUE(read.has(2));
    EXPECT_EQ(read.colors[2], KColor(0x1200, 0x3400, 0x5600));
    ASSERT_EQ(
        decode(documentOf({ { "Color 16", colourVariable(1, 2, 3) }, { "Color 1", colourVariable(4, 5, 6) } }), read),
        Form::Document);
    EXPECT_EQ(read.count(), 2);
    EXPECT_TRUE(read.has(0) && read.has(15));
}

TEST_F(ColorPaletteFileTest, TheOldFormIsReadOnlyAtExactlyItsSize)
{
    ColorPaletteFile::Colors read;
    Bytes old = oldForm(uint32_t(KClass::computeClassID("KColor")));
    ASSERT_EQ(old.size(), size_t(ColorPaletteFile::kOldFormSize));
    ASSERT_EQ(decode(old, read), Form::Old);
    EXPECT_EQ(read.count(), 16);
    EXPECT_EQ(read.colors[3], KColor(0x3000, 0x0100, 0xFFFC));
    EXPECT_EQ(decode(oldForm(uint32_t(KClass::computeClassID("ZColor"))), read), Form::Old);

    Bytes longer = old;
    longer.push_back(0);
    EXPECT_EQ(decode(longer, read), Form::None);
    EXPECT_EQ(read.count(), 0);
    Bytes shorter(old.begin(), old.end() - 1);
    EXPECT_EQ(decode(shorter, read), Form::None);
    EXPECT_EQ(decode(oldForm(uint32_t(KClass::computeClassID("KPoint"))), read), Form::None)
        << "a record of another class";
}

TEST_F(ColorPaletteFileTest, BadFilesReadNothing)
{
    ColorPaletteFile::Colors read;
    Bytes good = ColorPaletteFile::encode(defaultPaletteColors());

    Bytes badMagic = good;
    badMagic[0] = 'X';
    EXPECT_EQ(decode(badMagic, read), Form::None);
    for (size_t cut = 0; cut < good.size(); ++cut) {
        Bytes truncated(good.begin(), good.begin() + ptrdiff_t(cut));
        ASSERT_EQ(decode(truncated, read), Form::None) << "cut at " << cut;
        ASSERT_EQ(read.count(), 0);
    }

    // The limit counts the file, whatever it holds after the palette.
    Bytes padded = good;
    padded.resize(size_t(ColorPaletteFile::kLargestFile), 0);
    EXPECT_EQ(decode(padded, read), Form::Document);
    padded.push_back(0);
    EXPECT_EQ(decode(padded, read), Form::None);

    EXPECT_EQ(decode(documentOf({ { "Color 1", new KVariable(int32_t(0xFF00)) } }), read), Form::None)
        << "a variable of another tag";
    KPtr<KString> text(new KString("red"));
    EXPECT_EQ(decode(documentOf({ { "Color 1", new KVariable(*text) } }), read), Form::None)
        << "an object not a colour";
    for (const char* name : { "Color 0", "Color 17", "Color 01", "color 1", "Colour 1" }) {
        EXPECT_EQ(
            decode(documentOf({ { "Color 2", colourVariable(1, 2, 3) }, { name, colourVariable(1, 2, 3) } }), read),
            Form::None)
            << name;
        EXPECT_EQ(read.count(), 0) << "all or none: " << name;
    }
    EXPECT_EQ(decode(documentOf({}), read), Form::None) << "a palette without colours";
}

} // namespace

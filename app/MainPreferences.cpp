#include "app/MainPreferences.h"

#include "kernel/KPreferenceStore.h"
#include "kernel/KPreferences.h"
#include "kernel/KVariable.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

namespace {

// The store keeps what was written with the kind it was written; a person
// editing the file may have written another, so numbers are read whatever
// their kind.
bool numberOf(const KVariable& value, double& out)
{
    switch (value.getType()) {
    case KVariable::CharType:
        out = value.getChar();
        return true;
    case KVariable::BoolType:
        out = value.getBool() ? 1 : 0;
        return true;
    case KVariable::ShortType:
        out = value.getShort();
        return true;
    case KVariable::LongType:
    case KVariable::UnsignedLongType:
        out = value.getLong();
        return true;
    case KVariable::FloatType:
        out = value.getFloat();
        return true;
    case KVariable::DoubleType:
        out = value.getDouble();
        return true;
    case KVariable::UnsignedCharType:
        out = static_cast<unsigned char>(value.getChar());
        return true;
    case KVariable::UnsignedShortType:
        out = static_cast<uint16_t>(value.getShort());
        return true;
    default:
        return false;
    }
}

class Reader {
public:
    explicit Reader(const KPreferences& stored)
        : stored(stored)
    {
    }
    bool has(const char* key) const { return stored.getVariable(KString(key)) != nullptr; }
    void flag(const char* key, bool& out) const
    {
        double number = 0;
        if (const KVariable* value = stored.getVariable(KString(key)); value && numberOf(*value, number))
            out = number != 0;
    }
    void integer(const char* key, int32_t& out) const
    {
        double number = 0;
        const KVariable* value = stored.getVariable(KString(key));
        if (value && numberOf(*value, number) && std::isfinite(number) && std::fabs(number) < 2147483647.0)
            out = int32_t(number);
    }
    void real(const char* key, double& out) const
    {
        double number = 0;
        if (const KVariable* value = stored.getVariable(KString(key)); value && numberOf(*value, number))
            out = number;
    }
    void text(const char* key, KString& out) const
    {
        const KVariable* value = stored.getVariable(KString(key));
        if (value && value->getType() == KVariable::StringType)
            out = value->getString();
    }

private:
    const KPreferences& stored;
};

struct LanguageName {
    const char* column;
    const char* english;
};

constexpr LanguageName kLanguages[] = {
    { "Fran\xE7"
      "ais",
      "French" },
    { "Italiano", "Italian" },
    { "Deutsch", "German" },
    { "English_TL", "English_TL" },
    { "English", "English" },
};

bool sameIgnoringCase(const KString& a, const char* b)
{
    std::string left(a.c_str());
    std::string right(b);
    if (left.size() != right.size())
        return false;
    for (size_t i = 0; i < left.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(left[i])) != std::tolower(static_cast<unsigned char>(right[i])))
            return false;
    }
    return true;
}

} // namespace

KString MainPreferences::normaliseLanguage(const KString& name)
{
    for (const LanguageName& language : kLanguages) {
        if (sameIgnoringCase(name, language.column) || sameIgnoringCase(name, language.english))
            return KString(language.column);
    }
    // "Français" typed in UTF-8 by hand in the file.
    if (sameIgnoringCase(name, "Fran\xC3\xA7"
                               "ais"))
        return KString(kLanguages[0].column);
    return KString("English_TL");
}

int16_t MainPreferences::pageSide(int32_t stored, int16_t fallback)
{
    if (stored <= 0 || stored > std::numeric_limits<int16_t>::max())
        return fallback;
    return int16_t(stored);
}

void MainPreferences::readFrom(const KPreferences& stored)
{
    Reader read(stored);
    read.flag("ChildMode", childMode);
    read.text("DefaultColorPalette", defaultColorPalette);
    read.text("LastUsedVoice", lastUsedVoice);
    read.text("ApplicationLanguage", applicationLanguage);
    applicationLanguage = normaliseLanguage(applicationLanguage);
    read.text("DocFolder", docFolder);
    if (read.has("SpeechSpeed")) {
        read.real("SpeechSpeed", speechSpeed);
        if (speechSpeed == 65535.0 || !std::isfinite(speechSpeed) || speechSpeed < 0)
            speechSpeed = kVoiceOwnSpeed;
    }
    read.flag("AllowDuplicatedActors", allowDuplicatedActors);
    read.flag("CustomSpeechSpeed", customSpeechSpeed);
    int32_t mode = int32_t(editingWindowMode);
    read.integer("EditingWindowMode", mode);
    editingWindowMode = mode >= 0 && mode <= 2 ? ScreenMode(mode) : ScreenMode::Window;
    read.flag("LimitActorSize", limitActorSize);
    read.flag("AutoEdit", autoEdit);
    read.flag("HighlightElements", highlightElements);
    int32_t width = 0;
    int32_t height = 0;
    read.integer("NewDocW", width);
    read.integer("NewDocH", height);
    newDocW = pageSide(width, kDefaultPageWidth);
    newDocH = pageSide(height, kDefaultPageHeight);
    read.real("PaletteScale", paletteScale);
    if (paletteScale != 1.5 && paletteScale != 2.0)
        paletteScale = 1.0;
    read.flag("ScanPalette", scanPalette);
    read.integer("ScanInterval", scanInterval);
    if (scanInterval < 500 || scanInterval > 5000)
        scanInterval = kDefaultScanInterval;
}

void MainPreferences::writeTo(KPreferences& stored) const
{
    stored.setBool("ChildMode", childMode);
    stored.setString("DefaultColorPalette", defaultColorPalette);
    stored.setString("LastUsedVoice", lastUsedVoice);
    stored.setString("ApplicationLanguage", applicationLanguage);
    stored.setString("DocFolder", docFolder);
    stored.setDouble("SpeechSpeed", speechSpeed);
    stored.setBool("CustomSpeechSpeed", customSpeechSpeed);
    stored.setLong("EditingWindowMode", int32_t(editingWindowMode));
    stored.setBool("AutoEdit", autoEdit);
    stored.setBool("HighlightElements", highlightElements);
    stored.setLong("NewDocW", newDocW);
    stored.setLong("NewDocH", newDocH);
    stored.setDouble("PaletteScale", paletteScale);
    stored.setBool("ScanPalette", scanPalette);
    stored.setLong("ScanInterval", scanInterval);
}

bool MainPreferencesStore::load(MainPreferences& values)
{
    const char* application = KPreferences::getApplicationName();
    if (KPreferenceStore::userGroupUnreadable(application, MainPreferences::kGroup)) {
        setAside = KPreferenceStore::setAsideUserGroup(application, MainPreferences::kGroup);
        std::fprintf(stderr, "TaleLoom: the settings file could not be read and was kept as %s.conf.bad\n",
                     MainPreferences::kGroup);
    }
    KPreferences stored;
    if (!KPreferences::exists(MainPreferences::kGroup) || !stored.load(MainPreferences::kGroup)) {
        save(values);
        return false;
    }
    values.readFrom(stored);
    return true;
}

bool MainPreferencesStore::save(const MainPreferences& values)
{
    KPreferences stored;
    values.writeTo(stored);
    if (stored.save(MainPreferences::kGroup))
        return true;
    if (!reportedUnwritable) {
        reportedUnwritable = true;
        std::fprintf(stderr, "TaleLoom: the settings could not be saved; the folder may be read-only\n");
    }
    return false;
}

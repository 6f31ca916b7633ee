#include "kmultimedia/KSpeechSupport.h"

#include "kernel/KClass.h"
#include "kernel/KLocalizer.h"
#include "kernel/KLocalizerData.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KSpeechNative.h"

#include <algorithm>
#include <cstring>

K_DEFINE_CLASS(KSpeechSupport, KMediaSupport)

namespace {

KSpeechSupport* gCurrentSupport = nullptr;
KSpeechEngine* gFakeEngine = nullptr;

// The localizer's languages as the engine's language codes.
std::string languageOfInterface()
{
    KLocalizer* localizer = kBaseLocalizer();
    if (!localizer)
        return "en";
    const KString& language = localizer->getLanguage();
    if (language == KLocalizer::kFrench)
        return "fr";
    if (language == KLocalizer::kItalian)
        return "it";
    if (language == KLocalizer::kGerman)
        return "de";
    return "en";
}

// How well the voice suits the language: its priority for the language or
// for one of its regional forms ("en" for "en-gb", a step worse), or -1
// when it does not speak it.
int32_t suitability(const KSpeechVoiceInfo& voice, const std::string& language)
{
    int32_t best = -1;
    for (const auto& [name, priority] : voice.languages) {
        int32_t score = -1;
        if (name == language)
            score = priority * 2;
        else if (name.size() > language.size() && name.compare(0, language.size(), language) == 0
                 && name[language.size()] == '-')
            score = priority * 2 + 1;
        if (score >= 0 && (best < 0 || score < best))
            best = score;
    }
    return best;
}

bool lessByName(const KString& a, const KString& b) { return std::strcmp(a.c_str(), b.c_str()) < 0; }

} // namespace

KSpeechSupport::KSpeechSupport()
    : interfaceLanguage(languageOfInterface())
{
    gCurrentSupport = this;
}

KSpeechSupport::~KSpeechSupport()
{
    if (gCurrentSupport == this)
        gCurrentSupport = nullptr;
}

KSpeechSupport* KSpeechSupport::current() { return gCurrentSupport; }

KSpeechEngine& KSpeechSupport::engine() { return gFakeEngine ? *gFakeEngine : knsSpeechEngine(); }

void KSpeechSupport::setEngine(KSpeechEngine* fake) { gFakeEngine = fake; }

bool KSpeechSupport::hasEngine()
{
    if (gCurrentSupport && gCurrentSupport->isOpen())
        return !gCurrentSupport->voices.empty();
    return !engine().voices().empty();
}

bool KSpeechSupport::open()
{
    entries.clear();
    voices.clear();
    defaultVoice = KString();
    setOpen(true);
    if (!getKinds())
        return false;
    for (const KSpeechVoiceInfo& info : engine().voices()) {
        KString name = KTextCodec::fromUtf8(info.name);
        if (info.name.empty() || KTextCodec::toUtf8(name) != info.name)
            name = KTextCodec::fromUtf8(info.identifier);
        if (find(name))
            continue;
        entries.push_back({ name, info.identifier });
        voices.push_back(name);
    }
    std::sort(voices.begin(), voices.end(), lessByName);
    chooseDefault();
    return !voices.empty();
}

void KSpeechSupport::close()
{
    engine().shutdown();
    setOpen(false);
}

const KSpeechSupport::Entry* KSpeechSupport::find(const KString& name) const
{
    for (const Entry& entry : entries) {
        if (entry.name == name)
            return &entry;
    }
    return nullptr;
}

bool KSpeechSupport::hasVoice(const KString& name) const { return find(name) != nullptr; }

std::vector<KString> KSpeechSupport::getVoicesFor(const std::string& language) const
{
    std::vector<std::pair<int32_t, KString>> scored;
    for (const KSpeechVoiceInfo& info : engine().voices()) {
        int32_t score = suitability(info, language);
        if (score < 0)
            continue;
        for (const Entry& entry : entries) {
            if (entry.identifier == info.identifier)
                scored.emplace_back(score, entry.name);
        }
    }
    std::stable_sort(scored.begin(), scored.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<KString> names;
    for (const auto& entry : scored)
        names.push_back(entry.second);
    return names;
}

void KSpeechSupport::chooseDefault()
{
    std::vector<KString> suited = getVoicesFor(interfaceLanguage);
    if (suited.empty())
        suited = getVoicesFor("en");
    if (!suited.empty())
        defaultVoice = suited.front();
    else if (!voices.empty())
        defaultVoice = voices.front();
}

void KSpeechSupport::setInterfaceLanguage(const std::string& code)
{
    interfaceLanguage = code;
    if (isOpen())
        chooseDefault();
}

KSpeechSupport::Choice KSpeechSupport::resolve(const KString& storedName) const
{
    // The voices older documents name, from the engines they were made with.
    static const char* const defaultAliases[] = { "", "Default", "Mike", "Fred", "MyVoice Male", "MyVoice Female" };
    Choice choice;
    const Entry* entry = nullptr;
    bool alias = false;
    for (const char* name : defaultAliases)
        alias = alias || storedName == name;
    if (alias) {
        choice.female = storedName == "MyVoice Female";
    } else if (storedName == "Enrico") {
        std::vector<KString> italian = getVoicesFor("it");
        if (!italian.empty())
            entry = find(italian.front());
    } else {
        entry = find(storedName);
    }
    if (!entry)
        entry = find(defaultVoice);
    if (entry)
        choice.identifier = entry->identifier;
    return choice;
}

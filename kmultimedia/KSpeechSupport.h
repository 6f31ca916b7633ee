#pragma once

#include "kernel/KString.h"
#include "kmultimedia/KMediaSupport.h"

#include <string>
#include <vector>

class KSpeechEngine;
class KSpeechNative;

// The one application-wide list of voices and the default voice. Voices are
// the engine's names in the Windows set (a name that does not survive the
// conversion is the voice's identifier), sorted. The default voice is the
// first voice of the interface language. Names stored in documents map
// through one alias table.
class KSpeechSupport : public KMediaSupport {
    K_DECLARE_CLASS(KSpeechSupport)
public:
    // What a stored voice name speaks with.
    struct Choice {
        std::string identifier; // the engine's key; empty when no voice
        bool female = false;
    };

    KSpeechSupport();
    ~KSpeechSupport() override;

    static KSpeechSupport* current();
    // True when a speech engine with at least one voice is there: the open
    // current support's answer, or the engine's own.
    static bool hasEngine();
    // The engine speeches use; tests put a fake in its place (null for the
    // platform's).
    static KSpeechEngine& engine();
    static void setEngine(KSpeechEngine* fake);

    bool open() override;
    void close() override;

    const std::vector<KString>& getVoices() const { return voices; }
    const KString& getDefaultVoice() const { return defaultVoice; }
    bool hasVoice(const KString& name) const;
    // The voices that speak the language ("fr"), best first.
    std::vector<KString> getVoicesFor(const std::string& language) const;

    // The interface language as a code ("en", "fr", "it", "de"); by default
    // the localizer's.
    void setInterfaceLanguage(const std::string& code);
    const std::string& getInterfaceLanguage() const { return interfaceLanguage; }

    // A stored name: "", "Default", "Mike", "Fred" and "MyVoice Male" are
    // the default voice, "MyVoice Female" the default voice as a woman,
    // "Enrico" the Italian voice; a listed name is itself; anything else is
    // the default voice.
    Choice resolve(const KString& storedName) const;

private:
    struct Entry {
        KString name;
        std::string identifier;
    };
    void chooseDefault();
    const Entry* find(const KString& name) const;

    std::vector<Entry> entries;
    std::vector<KString> voices;
    KString defaultVoice;
    std::string interfaceLanguage;
};

#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "windowing/KNativeTypes.h"
#include "windowing/KWindowingForward.h"

#include <string>
#include <vector>

// The system clipboard: text and images in the standard formats, and the
// program's private formats, each under its own name. Setting anything
// replaces the whole content. A new instance replaces the previous one.
class KClipboardManager : public KThing {
    K_DECLARE_CLASS(KClipboardManager)
public:
    KClipboardManager();
    ~KClipboardManager() override;

    static KClipboardManager* current();

    bool setText(const KString& text);
    bool hasText() const;
    bool getText(KString& text) const;
    bool setImage(KImage& image);
    // The image for other programs and the program's own data under its
    // format, together: either may be taken.
    bool setImageAndData(KImage& image, const char* format, const std::vector<uint8_t>& data);
    bool hasImage() const;
    // The image takes the clipboard's size and pixels.
    bool getImage(KImage& image) const;
    bool setData(const char* format, const std::vector<uint8_t>& data);
    bool hasData(const char* format) const;
    bool getData(const char* format, std::vector<uint8_t>& data) const;
    // Several formats at once, so that other programs find the text or the
    // image while this one finds its own format.
    bool setContent(const KNativeClipboardContent& content);

    // The private formats the program looks for.
    void registerFormat(const char* format);
    const std::vector<std::string>& getFormats() const { return formats; }

    // True when the clipboard holds text, an image or a registered format.
    bool holdsSomething() const;
    // At start and on every change of the system clipboard.
    bool importClipboard();
    // At the end and when the program is left: the content stays for the
    // other programs.
    void exportClipboard();

private:
    static bool imageContent(KImage& image, KNativeClipboardContent& content);

    std::vector<std::string> formats;
};

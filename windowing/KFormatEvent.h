#pragma once

#include "graphics/KColor.h"
#include "windowing/KEvent.h"

// A change of text format the user chose (in the text format menu): one of
// its named values says what to change. It takes the root route: handlers,
// then the application, which applies it to the text being edited and keeps
// it for new text.
class KFormatEvent : public KEvent {
    K_DECLARE_CLASS(KFormatEvent)
public:
    static constexpr int32_t kFormatType = 8;
    static constexpr const char* kFontSize = "FontSize";
    static constexpr const char* kFontFace = "FontFace";
    static constexpr const char* kFontStyle = "FontStyle";
    static constexpr const char* kFontColor = "FontColor";
    static constexpr const char* kBackgroundColor = "BackgroundColor";
    static constexpr const char* kAlignment = "Alignment";

    // Of type 8, without values.
    KFormatEvent();

    // Whether the event is a format change: its class's name and its type,
    // as any part of the program may have made it.
    static bool isFormatEvent(const KEvent& event);

    // Each value as a KVariable (a colour as a KColor); the getters answer
    // false when the event does not carry the value.
    void setFontSize(double points);
    void setFontFace(const KString& family);
    // KFont's face bits.
    void setFontStyle(int32_t face);
    void setFontColor(const KColor& colour);
    void setBackgroundColor(const KColor& colour);
    // KTextBlock's alignment.
    void setAlignment(int16_t alignment);

    static bool getFontSize(const KEvent& event, double& points);
    static bool getFontFace(const KEvent& event, KString& family);
    static bool getFontStyle(const KEvent& event, int32_t& face);
    static bool getFontColor(const KEvent& event, KColor& colour);
    static bool getBackgroundColor(const KEvent& event, KColor& colour);
    static bool getAlignment(const KEvent& event, int16_t& alignment);
};

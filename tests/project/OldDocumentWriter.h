#pragma once

#include "kernel/KClass.h"
#include "project/legacy/ZClass.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// Writes old documents for the tests, the benchmark and the fuzzer's seeds:
// big-endian, a class head before each class level, derived heads first.
class OldDocumentWriter {
public:
    std::vector<uint8_t> bytes;

    void byte(uint8_t value) { bytes.push_back(value); }
    void shortValue(int16_t value)
    {
        byte(uint8_t(uint16_t(value) >> 8));
        byte(uint8_t(value));
    }
    void longValue(int32_t value)
    {
        for (int shift = 24; shift >= 0; shift -= 8)
            byte(uint8_t(uint32_t(value) >> shift));
    }
    void text(const std::string& value)
    {
        shortValue(int16_t(value.size()));
        bytes.insert(bytes.end(), value.begin(), value.end());
    }
    void head(ZClass::Kind kind, int32_t version = 1)
    {
        longValue(ZClass::idOf(kind));
        longValue(version);
    }
    void string(const std::string& value)
    {
        head(ZClass::String);
        text(value);
    }
    void colour(uint16_t red, uint16_t green, uint16_t blue)
    {
        head(ZClass::Color);
        shortValue(int16_t(red));
        shortValue(int16_t(green));
        shortValue(int16_t(blue));
    }
    void rectangle(int16_t left, int16_t top, int16_t width, int16_t height)
    {
        head(ZClass::Rectangle);
        for (int16_t value : { left, top, width, height })
            shortValue(value);
    }
    // The tag of an element in the tape's bag, then its heads.
    void element(ZClass::Kind kind, int32_t version = 1, bool active = true)
    {
        longValue(ZClass::idOf(kind));
        head(kind, version);
        if (kind != ZClass::TapeObject)
            head(ZClass::TapeObject);
        longValue(0);
        byte(active ? 1 : 0);
    }

    // The tape's heads and its bag of `count` element slots; the elements
    // follow, then `endTape`.
    void beginTape(int32_t count, bool tagged = false)
    {
        if (tagged)
            longValue(ZClass::idOf(ZClass::Tape));
        head(ZClass::Tape);
        head(ZClass::Bag);
        head(ZClass::Array, 2);
        longValue(count);
        byte(0);
        byte(0);
        slots = count;
    }
    void endTape(int32_t firstTiming, int32_t secondTiming, bool looping, bool hidesBars)
    {
        longValue(slots);
        longValue(8);
        longValue(0);
        longValue(firstTiming);
        longValue(secondTiming);
        byte(looping ? 1 : 0);
        byte(hidesBars ? 1 : 0);
    }

    // A stroke with its points stored directly (x high, y low) or as
    // point objects.
    void stroke(uint16_t red, uint16_t green, uint16_t blue, int16_t size,
                const std::vector<std::pair<int16_t, int16_t>>& points, bool direct = true)
    {
        element(ZClass::Stroke);
        colour(red, green, blue);
        shortValue(size);
        shortValue(0);
        head(ZClass::Bag);
        head(ZClass::Array, 2);
        longValue(int32_t(points.size()));
        byte(direct ? 1 : 0);
        byte(0);
        for (const auto& [x, y] : points) {
            if (direct) {
                longValue(int32_t(uint32_t(uint16_t(x)) << 16 | uint16_t(y)));
            } else {
                longValue(ZClass::idOf(ZClass::Point));
                head(ZClass::Point);
                shortValue(x);
                shortValue(y);
            }
        }
        longValue(int32_t(points.size()));
        longValue(8);
        longValue(0);
    }
    void textElement(const std::string& words, const std::string& voice, int32_t version = 2)
    {
        element(ZClass::StylusText, version);
        rectangle(40, 300, 560, 120);
        head(ZClass::StyledText);
        longValue(int32_t(words.size()));
        string(words);
        shortValue(1);
        head(ZClass::StyleInfo);
        longValue(1);
        longValue(0);
        head(ZClass::Font);
        text("Sans");
        shortValue(24);
        shortValue(1);
        colour(0, 0, 0xFFFF);
        text(voice);
        byte(0);
        byte(1);
        byte(1);
        if (version >= 2) {
            colour(0xFFFF, 0xFFFF, 0);
            byte(1);
        }
    }
    void sound(const std::string& file)
    {
        element(ZClass::StylusSound);
        string(file);
    }
    void speech(const std::string& words, const std::string& voice)
    {
        element(ZClass::StylusSpeech);
        text(words);
        text(voice);
        byte(1);
    }
    void pause(int32_t milliseconds)
    {
        element(ZClass::StylusPause);
        longValue(milliseconds);
    }
    void picture(ZClass::Kind kind, const std::string& file, bool flag)
    {
        element(kind);
        rectangle(10, 20, 200, 150);
        string(file);
        byte(flag ? 1 : 0);
    }
    void wait(int32_t version, const std::vector<uint8_t>& flags)
    {
        element(ZClass::WaitMouseClick, version);
        bytes.insert(bytes.end(), flags.begin(), flags.end());
    }
    void wipe(uint16_t red, uint16_t green, uint16_t blue, const std::string& file, int32_t effect)
    {
        element(ZClass::WipeOut);
        colour(red, green, blue);
        string(file);
        longValue(effect);
        longValue(5);
    }

private:
    int32_t slots = 0;
};

#pragma once

#include "kernel/KForward.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Builds indented JSON text, placing commas and line breaks itself, for the
// document inspector. Text given as std::string_view must be UTF-8; a
// KString is converted from its own 8-bit set.
//
// The framework's objects are written by object(): null, or a JSON object
// with "class" and whatever fields the object's describe() adds.
class KJsonWriter {
public:
    // Deeper nesting of framework objects is cut off with a null: a damaged
    // or cyclic structure must not exhaust the stack.
    static constexpr int32_t kMaxObjectDepth = 512;

    // `indent` spaces per level; 0 writes everything on one line.
    explicit KJsonWriter(int32_t indent = 2);

    void beginObject();
    void endObject();
    void beginArray();
    void endArray();
    // The name of the next member of the open object.
    void key(std::string_view name);

    void nullValue();
    void value(bool flag);
    void value(int32_t number);
    void value(int64_t number);
    void value(uint32_t number);
    // Not-a-number and the infinities, which JSON lacks, become strings.
    void value(double number);
    void value(std::string_view utf8);
    void value(const char* utf8) { value(std::string_view(utf8 ? utf8 : "")); }
    void value(const KString& text);
    void object(const KThing* thing);

    template<class T>
    void member(std::string_view name, const T& v)
    {
        key(name);
        value(v);
    }
    void objectMember(std::string_view name, const KThing* thing)
    {
        key(name);
        object(thing);
    }

    const std::string& getText() const { return text; }

private:
    struct Level {
        bool isObject;
        bool empty;
    };

    void beforeValue();
    void open(char bracket, bool isObject);
    void close(char bracket);
    void newLine();
    void appendQuoted(std::string_view utf8);

    std::vector<Level> levels;
    std::string text;
    int32_t indent;
    int32_t objectDepth = 0;
    bool afterKey = false;
};

#include "kernel/KJsonWriter.h"

#include "kernel/KClass.h"
#include "kernel/KString.h"
#include "kernel/KTextCodec.h"
#include "kernel/KUnknownObject.h"

#include <charconv>
#include <cmath>
#include <cstdio>

KJsonWriter::KJsonWriter(int32_t indentWidth)
    : indent(indentWidth < 0 ? 0 : indentWidth)
{
}

void KJsonWriter::newLine()
{
    if (indent == 0)
        return;
    text += '\n';
    text.append(levels.size() * size_t(indent), ' ');
}

void KJsonWriter::beforeValue()
{
    if (afterKey) {
        afterKey = false;
        return;
    }
    if (levels.empty())
        return;
    Level& level = levels.back();
    if (!level.empty)
        text += ',';
    level.empty = false;
    newLine();
}

void KJsonWriter::open(char bracket, bool isObject)
{
    beforeValue();
    text += bracket;
    levels.push_back({ isObject, true });
}

void KJsonWriter::close(char bracket)
{
    if (levels.empty())
        return;
    bool wasEmpty = levels.back().empty;
    levels.pop_back();
    if (!wasEmpty)
        newLine();
    text += bracket;
}

void KJsonWriter::beginObject() { open('{', true); }
void KJsonWriter::endObject() { close('}'); }
void KJsonWriter::beginArray() { open('[', false); }
void KJsonWriter::endArray() { close(']'); }

void KJsonWriter::key(std::string_view name)
{
    beforeValue();
    appendQuoted(name);
    text += indent ? ": " : ":";
    afterKey = true;
}

void KJsonWriter::nullValue()
{
    beforeValue();
    text += "null";
}

void KJsonWriter::value(bool flag)
{
    beforeValue();
    text += flag ? "true" : "false";
}

void KJsonWriter::value(int32_t number) { value(int64_t(number)); }
void KJsonWriter::value(uint32_t number) { value(int64_t(number)); }

void KJsonWriter::value(int64_t number)
{
    beforeValue();
    text += std::to_string(number);
}

void KJsonWriter::value(double number)
{
    if (std::isnan(number)) {
        value(std::string_view("NaN"));
        return;
    }
    if (std::isinf(number)) {
        value(std::string_view(number > 0 ? "Infinity" : "-Infinity"));
        return;
    }
    beforeValue();
    char digits[32];
    auto result = std::to_chars(digits, digits + sizeof digits, number);
    text.append(digits, result.ptr);
}

void KJsonWriter::value(std::string_view utf8)
{
    beforeValue();
    appendQuoted(utf8);
}

void KJsonWriter::value(const KString& string) { value(std::string_view(KTextCodec::toUtf8(string))); }

void KJsonWriter::appendQuoted(std::string_view utf8)
{
    text += '"';
    for (char c : utf8) {
        switch (c) {
        case '"':
            text += "\\\"";
            break;
        case '\\':
            text += "\\\\";
            break;
        case '\n':
            text += "\\n";
            break;
        case '\r':
            text += "\\r";
            break;
        case '\t':
            text += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", unsigned(static_cast<unsigned char>(c)));
                text += escaped;
            } else {
                text += c;
            }
        }
    }
    text += '"';
}

void KJsonWriter::object(const KThing* thing)
{
    if (!thing || objectDepth >= kMaxObjectDepth) {
        nullValue();
        return;
    }
    ++objectDepth;
    beginObject();
    if (auto* unknown = dynamic_cast<const KUnknownObject*>(thing)) {
        key("class");
        nullValue();
        member("classId", unknown->getClassID());
    } else {
        KClass* cls = thing->isClassRegistered() ? thing->getClass() : nullptr;
        key("class");
        if (cls)
            value(cls->getName());
        else
            nullValue();
        thing->describe(*this);
    }
    endObject();
    --objectDepth;
}

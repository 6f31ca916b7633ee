#pragma once

#include "kernel/KString.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>

// The user's language's text of `key`, with "%1" to "%9" replaced by the
// arguments in order. Whole sentences go to translators with numbered
// places, so each language may put the names where its grammar wants them.
KString uiFill(const KString& text, std::initializer_list<KString> arguments);

namespace UiTextDetail {
inline KString toText(const KString& value) { return value; }
inline KString toText(const char* value) { return KString(value); }
template<class Number>
requires std::is_arithmetic_v<Number> KString toText(Number value) { return KString(std::to_string(value).c_str()); }
} // namespace UiTextDetail

KString uiTranslate(const char* key);

template<class... Arguments>
KString uiText(const char* key, const Arguments&... arguments)
{
    return uiFill(uiTranslate(key), { UiTextDetail::toText(arguments)... });
}

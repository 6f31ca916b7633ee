#include "app/UiText.h"

#include "windowing/KServices.h"

KString uiTranslate(const char* key) { return kTranslate(key); }

KString uiFill(const KString& text, std::initializer_list<KString> arguments) { return text.withArguments(arguments); }

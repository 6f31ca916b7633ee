#pragma once

#include "tape/StylusText.h"
#include "tape/Tape.h"

#include <vector>

// While it lives, the tape's texts do not draw themselves on the page, as
// while one is edited in place: the page shows everything else.
class TextsLeftOut {
public:
    explicit TextsLeftOut(Tape& tape)
    {
        for (int32_t i = 0; i < tape.getCount(); ++i) {
            auto* text = dynamic_cast<StylusText*>(tape.getAt(i));
            if (text && !text->isEdited()) {
                text->setEdited(true);
                texts.push_back(text);
            }
        }
    }
    ~TextsLeftOut()
    {
        for (StylusText* text : texts)
            text->setEdited(false);
    }
    TextsLeftOut(const TextsLeftOut&) = delete;
    TextsLeftOut& operator=(const TextsLeftOut&) = delete;

private:
    std::vector<StylusText*> texts;
};

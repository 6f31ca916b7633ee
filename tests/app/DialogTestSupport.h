#pragma once

#include "windowing/KWindow.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <string>

namespace apptest {

// The open dialog of the class, the front one when several are.
template<class Dialog>
Dialog* openDialog(KFakeNativeLayer& layer)
{
    Dialog* found = nullptr;
    for (const KFakeNativeLayer::Window* window : layer.windows()) {
        auto* dialog = dynamic_cast<Dialog*>(window->owner);
        if (window->open && dialog && dialog->isOpen())
            found = dialog;
    }
    return found;
}

// The native control of the window: the nth of the kind, or the one of
// the kind showing the text. The fake's handles are its records.
inline void* nativeControl(KFakeNativeLayer& layer, KWindow& window, KNativeControlKind kind, int32_t nth = 0,
                           const std::string& text = {})
{
    for (const KFakeNativeLayer::Control* control : layer.controlsOf(window.getNativeWindow())) {
        if (control->setup.kind != kind || (!text.empty() && control->text != text))
            continue;
        if (nth-- == 0)
            return const_cast<KFakeNativeLayer::Control*>(control);
    }
    ADD_FAILURE() << "no such control: kind " << int(kind) << " \"" << text << "\"";
    return nullptr;
}

inline void* buttonNamed(KFakeNativeLayer& layer, KWindow& window, const std::string& text)
{
    return nativeControl(layer, window, KNativeControlKind::Button, 0, text);
}

// What a user does in the modal dialogs that come up, step by step: each
// step runs on a turn of the loop once the dialog it waits for is open,
// as a user acts when a window appears. A step that finds its dialog
// missing fails the test and closes everything, which ends the loops.
class DialogScript {
public:
    explicit DialogScript(KFakeNativeLayer& layer)
        : layer(layer)
    {
    }
    ~DialogScript() { layer.setTurnHook(nullptr); }

    // The step acts on the front dialog of the class once it is open. A
    // step may open another modal dialog, whose loop runs the next steps.
    template<class Dialog>
    void then(std::function<void(Dialog&)> step)
    {
        steps.push_back({ [this] { return openDialog<Dialog>(layer) != nullptr; },
                          [this, step] { step(*openDialog<Dialog>(layer)); } });
        layer.setTurnHook([this] { turn(); });
    }
    bool finished() const { return steps.empty(); }

private:
    struct Step {
        std::function<bool()> ready;
        std::function<void()> act;
    };

    void turn()
    {
        if (steps.empty() || !steps.front().ready())
            return;
        Step step = std::move(steps.front());
        steps.pop_front();
        step.act();
    }

    KFakeNativeLayer& layer;
    std::deque<Step> steps;
};

} // namespace apptest

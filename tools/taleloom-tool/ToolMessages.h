#pragma once

#include "kernel/KTextCodec.h"
#include "tape/TapeHost.h"

#include <string>
#include <vector>

// While in scope, the messages that the program would show in a message box
// are kept as lines of UTF-8 text, in order, instead of being shown; the
// host that was installed before comes back at the end.
class ToolMessages : public TapeHost {
public:
    ToolMessages()
        : previous(&TapeHost::get())
    {
        TapeHost::install(this);
    }
    ~ToolMessages() override { TapeHost::install(previous); }
    ToolMessages(const ToolMessages&) = delete;
    ToolMessages& operator=(const ToolMessages&) = delete;

    void alert(const KString&, const KString& text) override { lines.push_back(KTextCodec::toUtf8(text)); }

    const std::vector<std::string>& getLines() const { return lines; }

private:
    TapeHost* previous;
    std::vector<std::string> lines;
};

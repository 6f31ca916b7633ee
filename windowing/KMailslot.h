#pragma once

#include "kernel/KString.h"

#include <string>
#include <vector>

// The local message channel: another program sends this one a text, which
// arrives as a KApplicationEvent of type DataReceived with the parameter
// "Received Data". One slot per process, named after the application.
// Messages are at most 128 bytes: a longer text travels in chunks of 126
// characters, a '+' and a terminating zero, the last chunk without the
// mark.

constexpr int32_t kMailslotMessageSize = 128;
constexpr int32_t kMailslotChunkText = 126;

// Opens the slot of the name, closing the one open before; nothing when
// the name is the present one. False when the slot cannot be made.
bool setMailslotName(const KString& name);
const KString& getMailslotName();
void closeMailslot();
bool hasMailslotMessage();
// Reads the next message. A chunk is kept until the text is complete:
// then the whole text is given and the function answers true.
bool readMailslot(KString& text);
// Sends the text to the slot of the name.
bool sendToMailslot(const KString& name, const KString& text);
// The messages a text travels in, each with its terminating zero.
std::vector<std::string> kMailslotMessages(const KString& text);
// Reads what arrived and posts each complete text; each loop turn.
void kPollMailslot();

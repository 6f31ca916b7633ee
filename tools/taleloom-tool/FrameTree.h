#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The raw frame tree of a document file, for `dump --sections`: the head,
// then each class stream with its class id, version, body size and
// sections, nested, one line each, with byte offsets for a hex editor.
//
// Nothing but the frame format is assumed. Inside a section a nested frame
// is recognised where one can begin (at the payload's start, behind a class
// id tag that repeats its id, or at the id of a registered class) and only
// when its sections add up exactly to its body; other bytes are payload.
//
// Returns false with a one-line `reason` when the file has no head or its
// outermost frame does not hold together; `text` then shows what could be
// read up to the damage.
bool describeFrameTree(const std::vector<uint8_t>& bytes, std::string& text, std::string& reason);

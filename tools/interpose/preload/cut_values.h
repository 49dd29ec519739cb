// Shortens lines of the trace.
#pragma once

#include <cstddef>
#include <string_view>

#include "common/text_buffer.h"

namespace cadrova::tools {

// Appends `lines`, with the longest values cut so that at most `size` bytes are appended, if that
// is possible. A value is a string, a list or a name. "..." follows what is left of it: "prefix"...
// ["a","b"...] and prefix...
void AppendCut(TextBuffer& text, std::string_view lines, std::size_t size);

}  // namespace cadrova::tools

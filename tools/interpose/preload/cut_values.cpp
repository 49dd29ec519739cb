#include "cut_values.h"

#include <algorithm>

#include "common/text.h"

namespace cadrova::tools {
namespace {

bool ContinuesCharacter(char byte) { return (byte & 0xC0) == 0x80; }

// The size of the character or the escape sequence at the start of `text`.
std::size_t FirstCharacterSize(std::string_view text) {
  if (text[0] == '\\') return std::min<std::size_t>(text.starts_with("\\u") ? 6 : 2, text.size());
  std::size_t size = 1;
  if ((text[0] & 0x80) == 0) return size;
  while (size < text.size() && ContinuesCharacter(text[size])) ++size;
  return size;
}

// A position in a line, in front of a value or inside of it.
class Cursor {
 public:
  explicit Cursor(std::string_view line) : line_(line) {}

  // Whether a value ends here, or there is none.
  bool IsOutside() const { return depth_ == 0 && !in_string_ && !in_name_; }
  std::size_t position() const { return position_; }
  bool IsAtEnd() const { return position_ == line_.size(); }

  void Advance() {
    const char byte = line_[position_];
    if (byte == '"') {
      in_string_ = !in_string_;
    } else if (!in_string_ && byte == '[') {
      ++depth_;
    } else if (!in_string_ && byte == ']') {
      --depth_;
    }
    position_ += FirstCharacterSize(line_.substr(position_));
    in_name_ = depth_ == 0 && !in_string_ && IsPlainInName(byte) && !IsAtEnd() &&
               IsPlainInName(line_[position_]);
  }

  void AppendEndTo(TextBuffer& text) const {
    if (in_string_) text += '"';
    text += std::string_view("...");
    for (std::size_t i = 0; i < depth_; ++i) text += ']';
  }

 private:
  std::string_view line_;
  std::size_t position_ = 0, depth_ = 0;
  bool in_string_ = false, in_name_ = false;
};

void AppendWithShortValues(TextBuffer& text, std::string_view lines, std::size_t longest) {
  for (Cursor cursor(lines); !cursor.IsAtEnd();) {
    const std::size_t begin = cursor.position();
    Cursor last = cursor;  // the last position at which the value is short enough
    do {
      cursor.Advance();
      if (cursor.position() - begin <= longest) last = cursor;
    } while (!cursor.IsOutside() && !cursor.IsAtEnd());
    text += lines.substr(begin, last.position() - begin);
    if (last.position() != cursor.position()) last.AppendEndTo(text);
  }
}

}  // namespace

void AppendCut(TextBuffer& text, std::string_view lines, std::size_t size) {
  const std::size_t begin = text.Text().size();
  for (std::size_t longest = size; longest > 32; longest -= longest / 8) {
    text.Resize(begin);
    AppendWithShortValues(text, lines, longest);
    if (text.Text().size() - begin <= size) return;
  }
}

}  // namespace cadrova::tools

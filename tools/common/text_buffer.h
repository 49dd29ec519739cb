// Text for code that runs inside other programs. Its memory comes from the kernel, so it neither
// calls the program's allocator nor ends the program, and a signal handler may use other buffers
// while one grows.
#pragma once

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace cadrova::tools {

class TextBuffer {
 public:
  TextBuffer() = default;
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;
  ~TextBuffer() { Release(); }

  TextBuffer& operator+=(std::string_view more) {
    if (more.empty() || (more.size() > capacity_ - size_ && !Grow(more.size()))) return *this;
    std::copy(more.begin(), more.end(), data_ + size_);
    size_ += more.size();
    return *this;
  }
  TextBuffer& operator+=(char byte) {
    if (size_ < capacity_ || Grow(1)) data_[size_++] = byte;
    return *this;
  }

  TextBuffer& operator+=(const char* more) { return *this += std::string_view(more); }
  TextBuffer& operator+=(const TextBuffer& more) {
    is_complete_ &= more.is_complete_;
    return *this += more.Text();
  }

  void AppendBlanks(std::size_t count) {
    for (; count != 0; --count) *this += ' ';
  }

  // False if memory ran out since the buffer was last cleared: then some text is missing.
  bool IsComplete() const { return is_complete_; }
  std::string_view Text() const { return {data_, size_}; }

  void Resize(std::size_t size) { size_ = size; }
  void Clear() {
    if (capacity_ > kKept) Release();
    size_ = 0;
    is_complete_ = true;
  }

 private:
  static constexpr std::size_t kPage = 4096, kKept = 16 * kPage;

  bool Grow(std::size_t more) {
    const std::size_t capacity =
        std::max(2 * capacity_, (size_ + more + kPage - 1) / kPage * kPage);
    void* const memory =
        mmap(nullptr, capacity, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return is_complete_ = false;
    std::copy_n(data_, size_, static_cast<char*>(memory));
    Release();
    data_ = static_cast<char*>(memory);
    capacity_ = capacity;
    return true;
  }

  void Release() {
    if (data_ != nullptr) munmap(data_, capacity_);
    data_ = nullptr;
    capacity_ = 0;
  }

  char* data_ = nullptr;
  std::size_t size_ = 0, capacity_ = 0;
  bool is_complete_ = true;
};

}  // namespace cadrova::tools

#include "summary.h"

#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <new>
#include <tuple>
#include <utility>

#include "common/text.h"
#include "output.h"
#include "thread.h"
#include "utf8.h"

extern "C" int __cxa_atexit(void (*function)(void*), void* argument, void* library);

namespace cadrova::tools {
namespace {

// Returns memory that is never released, or NULL if it runs out.
void* Allocate(std::size_t size) {
  struct alignas(16) Block {
    std::size_t size;
    std::atomic<std::size_t> used;
  };
  static constinit std::atomic<Block*> newest = nullptr;
  size = (size + 15) / 16 * 16;
  Block* block = newest;
  if (block != nullptr) {
    const std::size_t begin = block->used.fetch_add(size);
    if (begin + size <= block->size) return reinterpret_cast<char*>(block) + begin;
  }
  const std::size_t block_size = std::max<std::size_t>(1U << 16U, sizeof(Block) + size);
  void* const memory =
      mmap(nullptr, block_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  auto* const added = new (memory) Block{block_size, sizeof(Block) + size};
  newest.compare_exchange_strong(block, added);
  return added + 1;
}

// A list that only grows. Each node has its name behind it.
template <class Node>
class List {
 public:
  // The node with `name` that `is_it` accepts, or a new one. NULL if memory ran out.
  Node* FindOrAdd(std::string_view name, auto is_it, auto... values) {
    while (true) {
      Node* const first = first_;
      for (Node* node = first; node != nullptr; node = node->next) {
        if (node->name == name && is_it(*node)) return node;
      }
      void* const memory = Allocate(sizeof(Node) + name.size());
      if (memory == nullptr) return nullptr;
      auto* const own_name = static_cast<char*>(memory) + sizeof(Node);
      name.copy(own_name, name.size());
      auto* const node = new (memory) Node{first, {own_name, name.size()}, values...};
      Node* expected = first;
      if (first_.compare_exchange_strong(expected, node)) return node;
    }
  }
  void Clear() { first_ = nullptr; }
  const Node* first() const { return first_; }
  std::size_t size() const {
    std::size_t size = 0;
    for (const Node* node = first_; node != nullptr; node = node->next) ++size;
    return size;
  }

 private:
  std::atomic<Node*> first_ = nullptr;
};

struct Source {
  Source* next;
  std::string_view name;
  std::atomic<long> lookups = 0;
};

struct Feature {
  Feature* next;
  std::string_view name;  // the key
  const char* kind;
  List<Source> sources = {};
  // The last value, or its beginning. Not changed while another lookup changes it.
  std::atomic<bool> is_changing = false;
  std::size_t value_size = 0;
  char value[256] = {};

  void SetValue(std::string_view text) {
    if (is_changing.exchange(true)) return;
    value_size = text.copy(value, sizeof value);
    is_changing = false;
  }
};

constinit List<Feature> features[1024];  // by the hash of the key
constinit std::atomic<long> unnamed_calls = 0;

constexpr std::size_t kColumns = 6, kRightAligned = 2;

// The cells of the table, row by row.
class Cells {
 public:
  // False if memory ran out.
  bool Reserve(std::size_t count) {
    ends_ = static_cast<std::size_t*>(Allocate(count * sizeof(std::size_t)));
    return ends_ != nullptr;
  }

  TextBuffer& text() { return text_; }
  void EndCell() { ends_[size_++] = text_.Text().size(); }

  // Appends `name`, or its beginning and "..." if it has too many characters for a cell. Bytes that
  // are not UTF-8 may not count as characters.
  void AppendShort(std::string_view name) {
    constexpr std::size_t kWidest = 60, kLongest = 4 * kWidest;
    std::size_t characters = 0, end = 0;
    for (std::size_t i = 0; i < name.size(); ++i) {
      if ((name[i] & 0xC0) == 0x80) continue;  // inside of a character
      if (++characters == kWidest - 2) end = i;
    }
    const bool is_short = characters <= kWidest && name.size() <= kLongest;
    text_ += is_short ? name : name.substr(0, end);
    text_ += is_short ? "" : "...";
  }

  // Appends the rows with aligned columns, each ended by a newline.
  void AppendTableTo(TextBuffer& table) const {
    std::size_t widths[kColumns] = {};
    for (std::size_t i = 0; i < size_; ++i) {
      widths[i % kColumns] = std::max(widths[i % kColumns], host::CharacterCount(Cell(i)));
    }
    for (std::size_t i = 0; i < size_; ++i) {
      const std::size_t column = i % kColumns;
      const std::size_t padding = widths[column] - host::CharacterCount(Cell(i));
      const bool is_last = column == kColumns - 1;
      if (column < kRightAligned) table.AppendBlanks(padding);
      table += Cell(i);
      if (column >= kRightAligned && !is_last) table.AppendBlanks(padding);
      table += is_last ? "\n" : "  ";
    }
  }

 private:
  std::string_view Cell(std::size_t i) const {
    const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
    return text_.Text().substr(begin, ends_[i] - begin);
  }

  TextBuffer text_;
  std::size_t* ends_ = nullptr;
  std::size_t size_ = 0;
};

struct Counted {
  const Feature* feature;
  long lookups, by_default;
};

Counted CountOf(const Feature& feature) {
  Counted counted = {&feature, 0, 0};
  for (const Source* source = feature.sources.first(); source != nullptr; source = source->next) {
    counted.lookups += source->lookups;
    if (source->name.empty()) counted.by_default += source->lookups;
  }
  return counted;
}

// The first source by name after `last`, which may be the default's empty name.
const Source* FindNext(const Feature& feature, std::string_view last) {
  const Source* next = nullptr;
  for (const Source* source = feature.sources.first(); source != nullptr; source = source->next) {
    if (source->name > last && (next == nullptr || source->name < next->name)) next = source;
  }
  return next;
}

void AppendRow(Cells& cells, const Counted& counted) {
  const Feature& feature = *counted.feature;
  AppendJson(cells.text(), counted.lookups);
  cells.EndCell();
  AppendJson(cells.text(), counted.by_default);
  cells.EndCell();
  TextBuffer key;
  AppendDisplayName(key, feature.name);
  cells.AppendShort(key.Text());
  cells.EndCell();
  cells.text() += feature.kind;
  cells.EndCell();
  const char* separator = "";
  for (const Source* source = FindNext(feature, ""); source != nullptr;
       source = FindNext(feature, source->name)) {
    cells.text() += std::exchange(separator, ", ");
    cells.AppendShort(source->name);
    cells.text() += ' ';
    AppendJson(cells.text(), source->lookups.load());
  }
  cells.EndCell();
  cells.AppendShort({feature.value, feature.value_size});
  cells.EndCell();
}

void WriteSummary(void*) {
  Thread* const thread = Thread::Current();
  std::size_t size = 0;
  for (const List<Feature>& list : features) size += list.size();
  auto* const rows = static_cast<Counted*>(Allocate(size * sizeof(Counted)));
  Cells cells;
  if (thread == nullptr || rows == nullptr || !cells.Reserve((size + 1) * kColumns)) {
    return Output::Instance().ReportLostLine();
  }
  Counted* end = rows;
  long lookups = 0;
  for (const List<Feature>& list : features) {
    for (const Feature* feature = list.first(); feature != nullptr && end != rows + size;
         feature = feature->next) {
      *end = CountOf(*feature);
      lookups += end++->lookups;
    }
  }
  const long calls = unnamed_calls;
  if (lookups + calls == 0) return;
  // The most frequent first, then by key and kind.
  std::sort(rows, end, [](const Counted& one, const Counted& other) {
    return std::tuple(-one.lookups, one.feature->name, std::string_view(one.feature->kind)) <
           std::tuple(-other.lookups, other.feature->name, std::string_view(other.feature->kind));
  });
  for (const char* heading : {"lookups", "default", "key", "kind", "from maps", "last value"}) {
    cells.text() += heading;
    cells.EndCell();
  }
  for (const Counted* row = rows; row != end; ++row) AppendRow(cells, *row);
  TextBuffer table;
  thread->AppendIdsTo(table);
  table += "lookups: ";
  AppendJson(table, lookups);
  if (calls != 0) {
    table += "; calls by lookups without a name: ";
    AppendJson(table, calls);
  }
  table += '\n';
  if (lookups != 0) cells.AppendTableTo(table);
  if (!cells.text().IsComplete()) return Output::Instance().ReportLostLine();
  Output::Instance().WriteTable(table);
}

// glibc calls this when the destructors of libraries run, so that the summary comes after them.
// bionic calls no destructor function of a library when a process exits. There, a function that is
// registered by the first initialiser runs last.
#ifdef __BIONIC__
[[gnu::constructor]]
#else
[[gnu::destructor]]
#endif
void WriteSummaryAtExit() {
  if (Mode() != TraceMode::kSummary) return;
  __cxa_atexit(WriteSummary, nullptr, nullptr);
}

// After a fork, the child counts only its own lookups.
[[maybe_unused]] const int clears_in_child = pthread_atfork(nullptr, nullptr, [] {
  for (List<Feature>& list : features) list.Clear();
  unnamed_calls = 0;
});

}  // namespace

bool CountLookup(std::string_view key, const char* kind, std::string_view source,
                 std::string_view value) {
  List<Feature>& list = features[std::hash<std::string_view>()(key) % std::size(features)];
  const auto is_of_kind = [&](const Feature& feature) {
    return feature.kind == std::string_view(kind);
  };
  Feature* const feature = list.FindOrAdd(key, is_of_kind, kind);
  if (feature == nullptr) return false;
  Source* const counted = feature->sources.FindOrAdd(source, [](const Source&) { return true; });
  if (counted == nullptr) return false;
  ++counted->lookups;
  feature->SetValue(value);
  return true;
}

void CountUnnamedCall() { ++unnamed_calls; }

}  // namespace cadrova::tools

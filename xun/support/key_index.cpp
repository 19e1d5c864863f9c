#include "xun/support/key_index.h"

#include <algorithm>
#include <functional>
#include <limits>

#include "xun/support/runtime_error.h"
#include "xun/support/text.h"

namespace xun::detail {
namespace {

// A key as it is compared and hashed: case-folded when the index ignores case. ASCII keys that
// fit fold into a buffer on the stack, so the keys every template holds cost no allocation.
class ComparedKey {
 public:
  ComparedKey(std::string_view key, bool fold_case) {
    if (!fold_case) {
      view_ = key;
    } else if (key.size() <= sizeof small_ && FoldAscii(key)) {
      view_ = std::string_view(small_, key.size());
    } else {
      large_ = text::FoldCase(key);
      view_ = large_;
    }
  }
  ComparedKey(const ComparedKey&) = delete;
  ComparedKey& operator=(const ComparedKey&) = delete;

  std::string_view view() const noexcept { return view_; }

 private:
  bool FoldAscii(std::string_view key) noexcept {
    for (size_t i = 0; i < key.size(); ++i) {
      const char c = key[i];
      if (static_cast<unsigned char>(c) >= 0x80) return false;
      small_[i] = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return true;
  }

  char small_[64];
  std::string large_;
  std::string_view view_;
};

uint32_t HashOf(std::string_view compared) noexcept {
  return static_cast<uint32_t>(std::hash<std::string_view>{}(compared));
}

constexpr size_t kFirstCapacity = 8;
// Garbage below this is not worth a copy of the arena.
constexpr size_t kGarbageWorthCompacting = 4096;

}  // namespace

uint32_t KeyIndex::Find(std::string_view key) const {
  if (count_ == 0) return kNoKey;
  const ComparedKey probe(key, fold_case_);
  return FindCompared(probe.view(), HashOf(probe.view()));
}

uint32_t KeyIndex::FindCompared(std::string_view compared, uint32_t hash) const {
  const size_t mask = slots_.size() - 1;
  for (size_t s = hash & mask;; s = (s + 1) & mask) {
    const Slot& slot = slots_[s];
    if (slot.id == kNoKey) return kNoKey;  // the table is never full, so a gap ends every probe
    if (slot.hash == hash && Matches(slot.id, compared)) return slot.id;
  }
}

bool KeyIndex::Matches(uint32_t id, std::string_view compared) const {
  if (!fold_case_) return Text(id) == compared;
  const ComparedKey held(Text(id), true);
  return held.view() == compared;
}

uint32_t KeyIndex::Add(std::string_view key, size_t position) {
  // A key read out of this index (Text) would move under its own feet as the index grows.
  if (key.size() <= kShortKey) {
    char copy[kShortKey];
    key.copy(copy, key.size());
    return AddOwned(std::string_view(copy, key.size()), position);
  }
  if (key.data() >= arena_.data() && key.data() < arena_.data() + arena_.size())
    return AddOwned(std::string(key), position);
  return AddOwned(key, position);
}

uint32_t KeyIndex::AddOwned(std::string_view key, size_t position) {
  const ComparedKey probe(key, fold_case_);
  const uint32_t hash = HashOf(probe.view());
  if (count_ > 0 && FindCompared(probe.view(), hash) != kNoKey) return kNoKey;
  if (key.size() > std::numeric_limits<uint32_t>::max() ||
      position >= std::numeric_limits<uint32_t>::max())
    Raise(kErrOverflow);

  // Everything that can fail comes first, so a failed add leaves the index as it was.
  if ((count_ + 1) * 2 > slots_.size()) Rehash(std::max(kFirstCapacity, slots_.size() * 2));
  if (garbage_ >= kGarbageWorthCompacting && garbage_ * 2 > arena_.size()) CompactArena();
  if (arena_.size() + key.size() > std::numeric_limits<uint32_t>::max()) Raise(kErrOverflow);
  if (free_ == kNoKey) {
    if (records_.size() >= std::numeric_limits<uint32_t>::max() - 1) Raise(kErrOverflow);
    records_.emplace_back();
    records_.back().offset = free_;
    free_ = static_cast<uint32_t>(records_.size());
  }
  const bool is_short = key.size() <= kShortKey;
  const auto offset = static_cast<uint32_t>(arena_.size());
  if (!is_short) arena_.append(key);

  const uint32_t id = free_;
  Record& record = records_[id - 1];
  free_ = record.offset;
  record = Record{is_short ? 0 : offset,
                  static_cast<uint32_t>(key.size()),
                  hash,
                  static_cast<uint32_t>(position),
                  {}};
  if (is_short) key.copy(record.short_text, key.size());
  const size_t mask = slots_.size() - 1;
  size_t s = hash & mask;
  while (slots_[s].id != kNoKey)
    s = (s + 1) & mask;
  slots_[s] = Slot{hash, id};
  ++count_;
  return id;
}

// Backward-shift deletion: the entries after the gap that could sit in it move up, so probes
// never need markers for removed keys.
void KeyIndex::Remove(uint32_t id) noexcept {
  Record& record = records_[id - 1];
  const size_t mask = slots_.size() - 1;
  size_t gap = record.hash & mask;
  while (slots_[gap].id != id)
    gap = (gap + 1) & mask;
  for (size_t next = (gap + 1) & mask; slots_[next].id != kNoKey; next = (next + 1) & mask) {
    const size_t home = slots_[next].hash & mask;
    // The entry may fill the gap when its home does not lie cyclically in (gap, next].
    const bool home_after_gap =
        gap <= next ? (home > gap && home <= next) : (home > gap || home <= next);
    if (home_after_gap) continue;
    slots_[gap] = slots_[next];
    gap = next;
  }
  slots_[gap] = Slot{};

  if (record.length > kShortKey) garbage_ += record.length;
  record = Record{free_, 0, 0, kFree, {}};
  free_ = id;
  --count_;
}

void KeyIndex::Rehash(size_t capacity) {
  std::vector<Slot> slots(capacity);
  const size_t mask = capacity - 1;
  for (size_t i = 0; i < records_.size(); ++i) {
    const Record& record = records_[i];
    if (record.position == kFree) continue;
    size_t s = record.hash & mask;
    while (slots[s].id != kNoKey)
      s = (s + 1) & mask;
    slots[s] = Slot{record.hash, static_cast<uint32_t>(i + 1)};
  }
  slots_.swap(slots);
}

void KeyIndex::CompactArena() {
  std::string arena;
  arena.reserve(arena_.size() - garbage_);
  for (Record& record : records_) {
    if (record.position == kFree || record.length <= kShortKey) continue;
    const auto offset = static_cast<uint32_t>(arena.size());
    arena.append(arena_, record.offset, record.length);
    record.offset = offset;
  }
  arena_.swap(arena);
  garbage_ = 0;
}

}  // namespace xun::detail

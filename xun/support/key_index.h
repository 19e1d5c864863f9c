// The keys of an ordered keyed collection: every key's text once, in one arena, found through an
// open-addressing table. A key costs no allocation of its own, and a lookup allocates nothing
// for ASCII keys of up to 64 bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "xun/export.h"

namespace xun::detail {

class XUN_API KeyIndex {
 public:
  // Ids name keys; 0 is none. An id stays the key's until the key is removed.
  static constexpr uint32_t kNoKey = 0;

  // `fold_case`: keys that differ only in case (full Unicode case folding) are the same key.
  explicit KeyIndex(bool fold_case) noexcept : fold_case_(fold_case) {}

  size_t Count() const noexcept { return count_; }

  // The id of `key`, or kNoKey.
  uint32_t Find(std::string_view key) const;
  // Adds `key` for the entry at `position`; kNoKey, with nothing added, when the key is taken.
  uint32_t Add(std::string_view key, size_t position);
  void Remove(uint32_t id) noexcept;

  // The key as it was given; valid until the index changes.
  std::string_view Text(uint32_t id) const noexcept {
    const Record& r = records_[id - 1];
    return {r.length <= kShortKey ? r.short_text : arena_.data() + r.offset, r.length};
  }
  // Where the collection holds the entry of the key; the collection moves it.
  size_t PositionOf(uint32_t id) const noexcept { return records_[id - 1].position; }
  void SetPosition(uint32_t id, size_t position) noexcept {
    records_[id - 1].position = static_cast<uint32_t>(position);
  }

 private:
  // Keys up to this long lie in their record, so finding one touches no further cache line.
  static constexpr size_t kShortKey = 16;
  struct Record {
    uint32_t offset = 0;  // of a longer key in arena_; for a free record, the next free id
    uint32_t length = 0;
    uint32_t hash = 0;
    uint32_t position = kFree;
    char short_text[kShortKey];
  };
  struct Slot {
    uint32_t hash = 0;
    uint32_t id = kNoKey;
  };
  static constexpr uint32_t kFree = UINT32_MAX;

  uint32_t AddOwned(std::string_view key, size_t position);
  uint32_t FindCompared(std::string_view compared, uint32_t hash) const;
  bool Matches(uint32_t id, std::string_view compared) const;
  void Rehash(size_t capacity);
  void CompactArena();

  bool fold_case_;
  size_t count_ = 0;
  std::string arena_;   // the keys' text, back to back; removed keys leave garbage
  size_t garbage_ = 0;  // bytes of arena_ that belong to removed keys
  std::vector<Record> records_;
  uint32_t free_ = kNoKey;   // the first free record, chained through their offsets
  std::vector<Slot> slots_;  // linear probing, at most half full; size a power of two
};

}  // namespace xun::detail

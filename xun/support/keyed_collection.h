// The ordered keyed collection under every list of the library.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "xun/support/index.h"
#include "xun/support/key_index.h"
#include "xun/support/runtime_error.h"

namespace xun {

// Key policies: how two keys are judged the same.
struct CaseInsensitiveKeys {
  static constexpr bool kFoldCase = true;
};
struct CaseSensitiveKeys {
  static constexpr bool kFoldCase = false;
};

// Entries in order, addressed by 1-based position or by an optional unique key. Fetch by key and
// by position are O(1); appending and removing at either end are O(1) (amortised); inserting or
// removing inside costs the distance to the nearer end. The entries lie in one array; keys cost
// nothing until the first one is added, and then no allocation each (detail::KeyIndex). An empty
// collection allocates nothing. Failures raise the classic collection errors: 457 for a duplicate
// key, 5 for an unknown key or a bad Before/After, 9 for a position out of range. References to
// entries are invalidated by any change to the collection.
template <class T, class KeyPolicy = CaseInsensitiveKeys>
class OrderedKeyedCollection {
 public:
  OrderedKeyedCollection() = default;
  OrderedKeyedCollection(const OrderedKeyedCollection&) = delete;
  OrderedKeyedCollection& operator=(const OrderedKeyedCollection&) = delete;
  OrderedKeyedCollection(OrderedKeyedCollection&&) noexcept = default;
  OrderedKeyedCollection& operator=(OrderedKeyedCollection&&) noexcept = default;

  int32_t Count() const noexcept { return static_cast<int32_t>(Live()); }
  bool empty() const noexcept { return Live() == 0; }

  // Room for `count` entries in all without moving them again: for callers that know how many
  // they are about to append.
  void Reserve(size_t count) { items_.reserve(head_ + count); }

  // Appends, or inserts before/after the entry at `before`/`after` (at most one of them).
  void Add(T item, std::optional<std::string_view> key = std::nullopt,
           const std::optional<Index>& before = std::nullopt,
           const std::optional<Index>& after = std::nullopt) {
    if (before && after) Raise(kErrInvalidCall);
    size_t at = Live();
    if (before) at = OffsetOfAnchor(*before);
    if (after) at = OffsetOfAnchor(*after) + 1;
    if (Live() >= static_cast<size_t>(std::numeric_limits<int32_t>::max())) Raise(kErrOverflow);

    uint32_t id = detail::KeyIndex::kNoKey;
    if (key) {
      if (!keys_) keys_ = std::make_unique<Keys>(items_.size());
      id = keys_->index.Add(*key, 0);  // placed by InsertAt
      if (id == detail::KeyIndex::kNoKey) Raise(kErrDuplicateKey);
    }
    try {
      InsertAt(at, std::move(item), id);
    } catch (...) {
      if (id != detail::KeyIndex::kNoKey) keys_->index.Remove(id);
      throw;
    }
  }

  // The entry at `index`; raises 9 (position) or 5 (key) when there is none.
  T& Item(const Index& index) { return items_[IndexAt(index)]; }
  const T& Item(const Index& index) const {
    return const_cast<OrderedKeyedCollection*>(this)->Item(index);
  }

  // The entry at `index`, or nullptr. Never raises.
  T* Find(const Index& index) noexcept {
    const size_t i = FindIndex(index);
    return i == kNone ? nullptr : &items_[i];
  }
  const T* Find(const Index& index) const noexcept {
    return const_cast<OrderedKeyedCollection*>(this)->Find(index);
  }
  bool Exists(const Index& index) const noexcept { return Find(index) != nullptr; }
  // Whether `key` is taken, without making an Index of it.
  bool HasKey(std::string_view key) const noexcept { return FindKey(key) != kNone; }

  // The key of the entry at `index` (nullopt when it has none); raises like Item.
  std::optional<std::string> KeyOf(const Index& index) const {
    const uint32_t id = IdAt(const_cast<OrderedKeyedCollection*>(this)->IndexAt(index));
    if (id == detail::KeyIndex::kNoKey) return std::nullopt;
    return std::string(keys_->index.Text(id));
  }
  // The 1-based position of the entry at `index`; raises like Item.
  int32_t PositionOf(const Index& index) const {
    return static_cast<int32_t>(const_cast<OrderedKeyedCollection*>(this)->IndexAt(index) - head_ +
                                1);
  }

  void Remove(const Index& index) {
    const size_t i = IndexAt(index);
    if (const uint32_t id = IdAt(i); id != detail::KeyIndex::kNoKey) {
      keys_->index.Remove(id);
      keys_->ids[i] = detail::KeyIndex::kNoKey;
    }
    EraseAt(i - head_);
  }

  void Clear() noexcept {
    std::vector<T>().swap(items_);
    head_ = 0;
    keys_.reset();
  }

  using iterator = typename std::vector<T>::iterator;
  using const_iterator = typename std::vector<T>::const_iterator;
  iterator begin() noexcept { return items_.begin() + Offset(head_); }
  iterator end() noexcept { return items_.end(); }
  const_iterator begin() const noexcept { return items_.begin() + Offset(head_); }
  const_iterator end() const noexcept { return items_.end(); }

 private:
  // The key side, made at the first key: the index, and the id of each entry's key (kNoKey for
  // none) beside items_, moved with them.
  struct Keys {
    explicit Keys(size_t entries) : index(KeyPolicy::kFoldCase), ids(entries) {}
    detail::KeyIndex index;
    std::vector<uint32_t> ids;
  };

  static constexpr size_t kNone = static_cast<size_t>(-1);
  static std::ptrdiff_t Offset(size_t i) { return static_cast<std::ptrdiff_t>(i); }

  size_t Live() const noexcept { return items_.size() - head_; }
  uint32_t IdAt(size_t i) const noexcept {
    return keys_ ? keys_->ids[i] : detail::KeyIndex::kNoKey;
  }

  size_t FindKey(std::string_view key) const noexcept {
    if (!keys_ || keys_->index.Count() == 0) return kNone;
    try {
      const uint32_t id = keys_->index.Find(key);
      return id == detail::KeyIndex::kNoKey ? kNone : keys_->index.PositionOf(id);
    } catch (...) {  // folding a key that is not ASCII can fail to allocate
      return kNone;
    }
  }

  // The index in items_ of the entry at `index`, or kNone.
  size_t FindIndex(const Index& index) const noexcept {
    if (index.IsKey()) return FindKey(index.Key());
    const int64_t position = index.Position();
    if (position < 1 || position > static_cast<int64_t>(Live())) return kNone;
    return head_ + static_cast<size_t>(position - 1);
  }

  size_t IndexAt(const Index& index) {
    const size_t i = FindIndex(index);
    if (i == kNone) Raise(index.IsPosition() ? kErrSubscript : kErrInvalidCall);
    return i;
  }

  // Offset (0-based, among the live entries) of a Before/After anchor; one that does not exist
  // is error 5.
  size_t OffsetOfAnchor(const Index& anchor) {
    const size_t i = FindIndex(anchor);
    if (i == kNone) Raise(kErrInvalidCall);
    return i - head_;
  }

  // The key side follows every entry that moves.
  void Place(size_t i, uint32_t id) noexcept {
    if (!keys_) return;
    keys_->ids[i] = id;
    if (id != detail::KeyIndex::kNoKey) keys_->index.SetPosition(id, i);
  }
  void MoveEntry(size_t from, size_t to) noexcept {
    items_[to] = std::move(items_[from]);
    Place(to, IdAt(from));
  }
  void Renumber(size_t from) noexcept {
    if (!keys_) return;
    for (size_t i = from; i < items_.size(); ++i)
      Place(i, keys_->ids[i]);
  }

  // Shifts the shorter side: entries before the insertion point move into the free room at the
  // front when there is some and they are fewer.
  void InsertAt(size_t at, T&& item, uint32_t id) {
    if (head_ > 0 && at < Live() / 2) {
      --head_;
      for (size_t i = head_; i < head_ + at; ++i)
        MoveEntry(i + 1, i);
      items_[head_ + at] = std::move(item);
      Place(head_ + at, id);
      return;
    }
    // Both arrays get their room first, so the insertion itself cannot fail halfway.
    if (items_.size() == items_.capacity()) items_.reserve(std::max<size_t>(4, items_.size() * 2));
    if (keys_) keys_->ids.reserve(items_.capacity());
    const size_t i = head_ + at;
    items_.insert(items_.begin() + Offset(i), std::move(item));
    if (keys_) keys_->ids.insert(keys_->ids.begin() + Offset(i), id);
    Renumber(i);
  }

  void EraseAt(size_t at) {
    if (at < Live() / 2 || at == 0) {
      for (size_t i = head_ + at; i > head_; --i)
        MoveEntry(i - 1, i);
      items_[head_] = T{};
      Place(head_, detail::KeyIndex::kNoKey);
      ++head_;
      if (items_.size() == head_) return Clear();
      // Give the room at the front back once it outweighs the entries.
      if (head_ > 16 && head_ > Live()) {
        items_.erase(items_.begin(), items_.begin() + Offset(head_));
        if (keys_) keys_->ids.erase(keys_->ids.begin(), keys_->ids.begin() + Offset(head_));
        head_ = 0;
        Renumber(0);
      }
      return;
    }
    const size_t i = head_ + at;
    items_.erase(items_.begin() + Offset(i));
    if (keys_) keys_->ids.erase(keys_->ids.begin() + Offset(i));
    Renumber(i);
  }

  std::vector<T> items_;  // entries live in [head_, size)
  size_t head_ = 0;
  std::unique_ptr<Keys> keys_;
};

}  // namespace xun

// The ordered keyed collection under every list of the library.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "xun/support/index.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"

namespace xun {

// Key policies: how two keys are judged the same.
struct CaseInsensitiveKeys {
  static std::string Normalize(std::string_view key) { return text::FoldCase(key); }
};
struct CaseSensitiveKeys {
  static std::string Normalize(std::string_view key) { return std::string(key); }
};

// Entries in order, addressed by 1-based position or by an optional unique key. Fetch by key and
// by position are O(1); appending and removing at either end are O(1) (amortised); inserting or
// removing inside costs the distance to the nearer end. An empty collection allocates nothing.
// Failures raise the classic collection errors: 457 for a duplicate key, 5 for an unknown key or
// a bad Before/After, 9 for a position out of range. References to entries are invalidated by
// any change to the collection.
template <class T, class KeyPolicy = CaseInsensitiveKeys>
class OrderedKeyedCollection {
  struct KeyEntry {
    std::string original;  // the key as given
    size_t index = 0;      // the node's index in nodes_
  };
  struct Node {
    T item{};
    KeyEntry* key = nullptr;  // points into keys_, whose entries never move
  };

 public:
  OrderedKeyedCollection() = default;
  OrderedKeyedCollection(const OrderedKeyedCollection&) = delete;
  OrderedKeyedCollection& operator=(const OrderedKeyedCollection&) = delete;
  OrderedKeyedCollection(OrderedKeyedCollection&&) noexcept = default;
  OrderedKeyedCollection& operator=(OrderedKeyedCollection&&) noexcept = default;

  int32_t Count() const noexcept { return static_cast<int32_t>(nodes_.size() - head_); }
  bool empty() const noexcept { return nodes_.size() == head_; }

  // Appends, or inserts before/after the entry at `before`/`after` (at most one of them).
  void Add(T item, std::optional<std::string> key = std::nullopt,
           const std::optional<Index>& before = std::nullopt,
           const std::optional<Index>& after = std::nullopt) {
    if (before && after) Raise(kErrInvalidCall);
    size_t at = Live();
    if (before) at = OffsetOfAnchor(*before);
    if (after) at = OffsetOfAnchor(*after) + 1;
    if (Live() >= static_cast<size_t>(std::numeric_limits<int32_t>::max())) Raise(kErrOverflow);

    KeyEntry* entry = nullptr;
    if (key) {
      auto [it, inserted] = keys_.try_emplace(KeyPolicy::Normalize(*key));
      if (!inserted) Raise(kErrDuplicateKey);
      it->second.original = std::move(*key);
      entry = &it->second;
    }
    try {
      InsertAt(at, Node{std::move(item), entry});
    } catch (...) {
      if (entry) keys_.erase(KeyPolicy::Normalize(entry->original));
      throw;
    }
  }

  // The entry at `index`; raises 9 (position) or 5 (key) when there is none.
  T& Item(const Index& index) { return nodes_[IndexAt(index)].item; }
  const T& Item(const Index& index) const {
    return const_cast<OrderedKeyedCollection*>(this)->Item(index);
  }

  // The entry at `index`, or nullptr. Never raises.
  T* Find(const Index& index) noexcept {
    const size_t i = FindIndex(index);
    return i == kNone ? nullptr : &nodes_[i].item;
  }
  const T* Find(const Index& index) const noexcept {
    return const_cast<OrderedKeyedCollection*>(this)->Find(index);
  }
  bool Exists(const Index& index) const noexcept { return Find(index) != nullptr; }

  // The key of the entry at `index` (nullopt when it has none); raises like Item.
  std::optional<std::string> KeyOf(const Index& index) const {
    const Node& node = nodes_[const_cast<OrderedKeyedCollection*>(this)->IndexAt(index)];
    if (!node.key) return std::nullopt;
    return node.key->original;
  }
  // The 1-based position of the entry at `index`; raises like Item.
  int32_t PositionOf(const Index& index) const {
    return static_cast<int32_t>(const_cast<OrderedKeyedCollection*>(this)->IndexAt(index) - head_ +
                                1);
  }

  void Remove(const Index& index) {
    const size_t i = IndexAt(index);
    if (KeyEntry* entry = nodes_[i].key) keys_.erase(KeyPolicy::Normalize(entry->original));
    EraseAt(i - head_);
  }

  void Clear() noexcept {
    keys_.clear();
    nodes_.clear();
    head_ = 0;
  }

  template <class Base, class Value>
  class BasicIterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = Value*;
    using reference = Value&;
    BasicIterator() = default;
    explicit BasicIterator(Base it) : it_(it) {}
    reference operator*() const { return it_->item; }
    pointer operator->() const { return &it_->item; }
    BasicIterator& operator++() {
      ++it_;
      return *this;
    }
    BasicIterator operator++(int) {
      BasicIterator old = *this;
      ++it_;
      return old;
    }
    friend bool operator==(const BasicIterator& a, const BasicIterator& b) {
      return a.it_ == b.it_;
    }

   private:
    Base it_{};
  };
  using iterator = BasicIterator<typename std::vector<Node>::iterator, T>;
  using const_iterator = BasicIterator<typename std::vector<Node>::const_iterator, const T>;

  iterator begin() noexcept { return iterator(nodes_.begin() + Offset(head_)); }
  iterator end() noexcept { return iterator(nodes_.end()); }
  const_iterator begin() const noexcept { return const_iterator(nodes_.begin() + Offset(head_)); }
  const_iterator end() const noexcept { return const_iterator(nodes_.end()); }

 private:
  static constexpr size_t kNone = static_cast<size_t>(-1);
  static std::ptrdiff_t Offset(size_t i) { return static_cast<std::ptrdiff_t>(i); }

  size_t Live() const noexcept { return nodes_.size() - head_; }

  // The index in nodes_ of the entry at `index`, or kNone.
  size_t FindIndex(const Index& index) const noexcept {
    if (index.IsPosition()) {
      const int64_t position = index.Position();
      if (position < 1 || position > static_cast<int64_t>(Live())) return kNone;
      return head_ + static_cast<size_t>(position - 1);
    }
    if (keys_.empty()) return kNone;
    try {
      auto it = keys_.find(KeyPolicy::Normalize(index.Key()));
      return it == keys_.end() ? kNone : it->second.index;
    } catch (...) {
      return kNone;
    }
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

  void Reindex(size_t from, size_t to) noexcept {
    for (size_t i = from; i < to; ++i)
      if (nodes_[i].key) nodes_[i].key->index = i;
  }

  // Shifts the shorter side: entries before the insertion point move into the free room at the
  // front when there is some and they are fewer.
  void InsertAt(size_t at, Node node) {
    const size_t live = Live();
    if (head_ > 0 && at < live / 2) {
      --head_;
      for (size_t i = head_; i < head_ + at; ++i)
        nodes_[i] = std::move(nodes_[i + 1]);
      nodes_[head_ + at] = std::move(node);
      Reindex(head_, head_ + at + 1);
      return;
    }
    nodes_.insert(nodes_.begin() + Offset(head_ + at), std::move(node));
    Reindex(head_ + at, nodes_.size());
  }

  void EraseAt(size_t at) {
    const size_t live = Live();
    if (at < live / 2 || at == 0) {
      for (size_t i = head_ + at; i > head_; --i)
        nodes_[i] = std::move(nodes_[i - 1]);
      nodes_[head_] = Node{};
      ++head_;
      Reindex(head_, head_ + at);
      // Give the room at the front back once it outweighs the entries.
      if (head_ > 16 && head_ > Live()) {
        nodes_.erase(nodes_.begin(), nodes_.begin() + Offset(head_));
        head_ = 0;
        Reindex(0, nodes_.size());
      }
      if (nodes_.size() == head_) Clear();
      return;
    }
    nodes_.erase(nodes_.begin() + Offset(head_ + at));
    Reindex(head_ + at, nodes_.size());
  }

  std::vector<Node> nodes_;  // entries live in [head_, size)
  size_t head_ = 0;
  std::unordered_map<std::string, KeyEntry> keys_;
};

}  // namespace xun

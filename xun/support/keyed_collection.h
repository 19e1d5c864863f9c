// The ordered keyed collection under every list of the library.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

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
// by position are O(1); appending and removing at either end are O(1); inserting or removing
// inside costs the distance to the nearer end. Failures raise the classic collection errors:
// 457 for a duplicate key, 5 for an unknown key or a bad Before/After, 9 for a position out of
// range.
template <class T, class KeyPolicy = CaseInsensitiveKeys>
class OrderedKeyedCollection {
  struct Node {
    T item;
    std::optional<std::string> key;  // as given
    std::string normalized;          // valid when key is set
    int64_t slot = 0;                // position = slot - base_
  };

 public:
  OrderedKeyedCollection() = default;
  OrderedKeyedCollection(const OrderedKeyedCollection&) = delete;
  OrderedKeyedCollection& operator=(const OrderedKeyedCollection&) = delete;
  OrderedKeyedCollection(OrderedKeyedCollection&&) noexcept = default;
  OrderedKeyedCollection& operator=(OrderedKeyedCollection&&) noexcept = default;

  int32_t Count() const noexcept { return static_cast<int32_t>(nodes_.size()); }
  bool empty() const noexcept { return nodes_.empty(); }

  // Appends, or inserts before/after the entry at `before`/`after` (at most one of them).
  void Add(T item, std::optional<std::string> key = std::nullopt,
           const std::optional<Index>& before = std::nullopt,
           const std::optional<Index>& after = std::nullopt) {
    if (before && after) Raise(kErrInvalidCall);
    size_t at = nodes_.size();
    if (before) at = OffsetOfAnchor(*before);
    if (after) at = OffsetOfAnchor(*after) + 1;
    if (nodes_.size() >= static_cast<size_t>(std::numeric_limits<int32_t>::max()))
      Raise(kErrOverflow);

    auto node = std::make_unique<Node>(Node{std::move(item), std::move(key), {}, 0});
    if (node->key) {
      node->normalized = KeyPolicy::Normalize(*node->key);
      if (by_key_.count(node->normalized)) Raise(kErrDuplicateKey);
    }
    Node* raw = node.get();
    InsertAt(at, std::move(node));
    if (raw->key) by_key_.emplace(raw->normalized, raw);
  }

  // The entry at `index`; raises 9 (position) or 5 (key) when there is none.
  T& Item(const Index& index) { return NodeAt(index).item; }
  const T& Item(const Index& index) const {
    return const_cast<OrderedKeyedCollection*>(this)->NodeAt(index).item;
  }

  // The entry at `index`, or nullptr. Never raises.
  T* Find(const Index& index) noexcept {
    Node* node = FindNode(index);
    return node ? &node->item : nullptr;
  }
  const T* Find(const Index& index) const noexcept {
    return const_cast<OrderedKeyedCollection*>(this)->Find(index);
  }
  bool Exists(const Index& index) const noexcept { return Find(index) != nullptr; }

  // The key of the entry at `index` (nullopt when it has none); raises like Item.
  const std::optional<std::string>& KeyOf(const Index& index) const {
    return const_cast<OrderedKeyedCollection*>(this)->NodeAt(index).key;
  }
  // The 1-based position of the entry at `index`; raises like Item.
  int32_t PositionOf(const Index& index) const {
    return PositionOfNode(const_cast<OrderedKeyedCollection*>(this)->NodeAt(index));
  }

  void Remove(const Index& index) {
    Node& node = NodeAt(index);
    const size_t at = static_cast<size_t>(PositionOfNode(node) - 1);
    if (node.key) by_key_.erase(node.normalized);
    EraseAt(at);
  }

  void Clear() noexcept {
    by_key_.clear();
    nodes_.clear();
    base_ = 0;
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
    reference operator*() const { return (*it_)->item; }
    pointer operator->() const { return &(*it_)->item; }
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
  using iterator = BasicIterator<typename std::deque<std::unique_ptr<Node>>::iterator, T>;
  using const_iterator =
      BasicIterator<typename std::deque<std::unique_ptr<Node>>::const_iterator, const T>;

  iterator begin() noexcept { return iterator(nodes_.begin()); }
  iterator end() noexcept { return iterator(nodes_.end()); }
  const_iterator begin() const noexcept { return const_iterator(nodes_.begin()); }
  const_iterator end() const noexcept { return const_iterator(nodes_.end()); }

 private:
  int32_t PositionOfNode(const Node& node) const noexcept {
    return static_cast<int32_t>(node.slot - base_ + 1);
  }

  Node* FindNode(const Index& index) noexcept {
    if (index.IsPosition()) {
      const int64_t position = index.Position();
      if (position < 1 || position > static_cast<int64_t>(nodes_.size())) return nullptr;
      return nodes_[static_cast<size_t>(position - 1)].get();
    }
    try {
      auto it = by_key_.find(KeyPolicy::Normalize(index.Key()));
      return it == by_key_.end() ? nullptr : it->second;
    } catch (...) {
      return nullptr;
    }
  }

  Node& NodeAt(const Index& index) {
    Node* node = FindNode(index);
    if (!node) Raise(index.IsPosition() ? kErrSubscript : kErrInvalidCall);
    return *node;
  }

  // Offset of a Before/After anchor; an anchor that does not exist is error 5.
  size_t OffsetOfAnchor(const Index& anchor) {
    Node* node = FindNode(anchor);
    if (!node) Raise(kErrInvalidCall);
    return static_cast<size_t>(PositionOfNode(*node) - 1);
  }

  // Slots are renumbered on the shorter side of the change, so work at either end is O(1).
  void InsertAt(size_t at, std::unique_ptr<Node> node) {
    if (at >= nodes_.size() / 2) {
      for (size_t i = at; i < nodes_.size(); ++i)
        ++nodes_[i]->slot;
      node->slot = base_ + static_cast<int64_t>(at);
      nodes_.insert(nodes_.begin() + static_cast<std::ptrdiff_t>(at), std::move(node));
    } else {
      for (size_t i = 0; i < at; ++i)
        --nodes_[i]->slot;
      --base_;
      node->slot = base_ + static_cast<int64_t>(at);
      nodes_.insert(nodes_.begin() + static_cast<std::ptrdiff_t>(at), std::move(node));
    }
  }

  void EraseAt(size_t at) {
    if (at >= nodes_.size() / 2) {
      for (size_t i = at + 1; i < nodes_.size(); ++i)
        --nodes_[i]->slot;
    } else {
      for (size_t i = 0; i < at; ++i)
        ++nodes_[i]->slot;
      ++base_;
    }
    nodes_.erase(nodes_.begin() + static_cast<std::ptrdiff_t>(at));
  }

  std::deque<std::unique_ptr<Node>> nodes_;
  std::unordered_map<std::string, Node*> by_key_;
  int64_t base_ = 0;
};

}  // namespace xun

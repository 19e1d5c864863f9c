// A keyed text-to-value collection with the classic dictionary semantics: unique case-sensitive
// keys, insertion order kept. Attributes of templates, pages and regions are held in one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "xun/export.h"
#include "xun/support/keyed_collection.h"
#include "xun/support/object.h"
#include "xun/support/variant.h"

namespace xun {

class XUN_API Dictionary : public Object {
 public:
  static std::shared_ptr<Dictionary> Create();

  int32_t Count() const noexcept { return entries_.Count(); }
  // Adds a new key; a key already present is error 457.
  void Add(const std::string& key, Variant item);
  bool Exists(const std::string& key) const noexcept { return entries_.Exists(key); }
  // The item under `key`, or Empty when there is none (nothing is added).
  Variant Item(const std::string& key) const;
  // Replaces the item under `key`, or adds the key at the end.
  void Item(const std::string& key, Variant item);
  // Removes `key`; an absent key is error 32811 (element not found).
  void Remove(const std::string& key);
  void RemoveAll() noexcept { entries_.Clear(); }
  // Keys and items in insertion order.
  std::vector<std::string> Keys() const;
  std::vector<Variant> Items() const;

 private:
  template <class>
  friend struct detail::ObjectAllocator;
  Dictionary() = default;

  struct Entry {
    std::string key;
    Variant item;
  };
  OrderedKeyedCollection<Entry, CaseSensitiveKeys> entries_;
};

using DictionaryPtr = std::shared_ptr<Dictionary>;

}  // namespace xun

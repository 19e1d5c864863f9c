#include "xun/support/dictionary.h"

namespace xun {

std::shared_ptr<Dictionary> Dictionary::Create() {
  return MakeObject<Dictionary>();
}

void Dictionary::Add(const std::string& key, Variant item) {
  entries_.Add(Entry{key, std::move(item)}, key);
}

Variant Dictionary::Item(const std::string& key) const {
  const Entry* entry = entries_.Find(key);
  return entry ? entry->item : Variant();
}

void Dictionary::Item(const std::string& key, Variant item) {
  if (Entry* entry = entries_.Find(key)) {
    entry->item = std::move(item);
    return;
  }
  Add(key, std::move(item));
}

void Dictionary::Remove(const std::string& key) {
  if (!entries_.Exists(key)) Raise(kErrElementNotFound);
  entries_.Remove(key);
}

std::vector<std::string> Dictionary::Keys() const {
  std::vector<std::string> keys;
  keys.reserve(static_cast<size_t>(entries_.Count()));
  for (const Entry& entry : entries_)
    keys.push_back(entry.key);
  return keys;
}

std::vector<Variant> Dictionary::Items() const {
  std::vector<Variant> items;
  items.reserve(static_cast<size_t>(entries_.Count()));
  for (const Entry& entry : entries_)
    items.push_back(entry.item);
  return items;
}

}  // namespace xun

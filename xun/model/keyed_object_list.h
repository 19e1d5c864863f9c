// The key rules shared by pages, regions and questions, in one place: an object's key changes
// only while it is in no list, and a list gives an empty or already taken key a fresh one.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "xun/support/index.h"
#include "xun/support/keyed_collection.h"
#include "xun/support/object_key.h"
#include "xun/support/runtime_error.h"

namespace xun::detail {

// A member of a keyed object list: its key and the weak back reference to the list holding it.
template <class List>
class ListMember {
 public:
  const std::string& MemberKey() const noexcept { return key_; }
  // The key let: ignored while in a list, since the list holds the object under its old key.
  void SetMemberKey(std::string key) {
    if (!owner_.lock()) key_ = std::move(key);
  }
  std::shared_ptr<List> Owner() const noexcept { return owner_.lock(); }
  void SetOwner(const std::shared_ptr<List>& owner) noexcept { owner_ = owner; }

 private:
  template <class, class>
  friend class KeyedObjectList;
  std::string key_;
  std::weak_ptr<List> owner_;
};

// The ordered keyed collection of one kind of keyed object (T derives from ListMember<List>).
template <class T, class List>
class KeyedObjectList {
 public:
  using Collection = OrderedKeyedCollection<std::shared_ptr<T>>;

  int32_t Count() const noexcept { return entries_.Count(); }

  // Adds `object` under its key, after giving it a fresh key when its key is empty or taken, and
  // points it back at `owner`. A refused add (bad anchor) leaves the object out of the list.
  void Add(const std::shared_ptr<T>& object, const std::shared_ptr<List>& owner,
           const std::optional<Index>& before, const std::optional<Index>& after) {
    if (!object) Raise(kErrObjectNotSet);
    auto& member = static_cast<ListMember<List>&>(*object);
    if (member.key_.empty() || entries_.HasKey(member.key_)) {
      member.owner_.reset();
      member.key_ = NewObjectKey();
    }
    entries_.Add(object, member.key_, before, after);
    member.owner_ = owner;
  }

  // Takes the entry out of the list and clears its back reference.
  std::shared_ptr<T> Take(const Index& index) {
    std::shared_ptr<T> object = entries_.Item(index);
    entries_.Remove(index);
    static_cast<ListMember<List>&>(*object).owner_.reset();
    return object;
  }

  // The entry, or nullptr without raising.
  std::shared_ptr<T> Find(const Index& index) const noexcept {
    const std::shared_ptr<T>* found = entries_.Find(index);
    return found ? *found : nullptr;
  }
  bool Exists(const Index& index) const noexcept { return Find(index) != nullptr; }
  // Raises 9 or 5 like the collection when there is no entry.
  const std::shared_ptr<T>& Item(const Index& index) const { return entries_.Item(index); }
  int32_t PositionOf(const Index& index) const { return entries_.PositionOf(index); }

  auto begin() const noexcept { return entries_.begin(); }
  auto end() const noexcept { return entries_.end(); }

 private:
  Collection entries_;
};

}  // namespace xun::detail

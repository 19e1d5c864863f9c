// The questions of one region.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "xun/export.h"
#include "xun/model/keyed_object_list.h"
#include "xun/model/question.h"

namespace xun {

namespace detail {
struct QuestionsInternals;
}

class XUN_API clsXUNQuestions : public Object {
 public:
  static std::shared_ptr<clsXUNQuestions> Create();

  // The region that owns this list (back reference).
  std::shared_ptr<clsXUNField> Field() const { return field_.lock(); }
  void Field(const std::shared_ptr<clsXUNField>& value) { field_ = value; }
  auto begin() const { return items_.begin(); }  // NewEnum
  auto end() const { return items_.end(); }
  int32_t Count() const noexcept { return items_.Count(); }
  std::shared_ptr<clsXUNQuestion> Item(const Index& index) const;
  bool Exists(const Index& index) const noexcept { return items_.Exists(index); }
  // Rebuilds the questions from the region's geometry and kind: as many questions as the region
  // has items of its own, each with as many choices and codes as it has bubbles.
  bool Update();
  // Frees every question and empties the list.
  void Free();

 private:
  // The library's own (the reader, copies, merging): a host gets its questions from Update.
  friend struct detail::QuestionsInternals;
  bool Add(const std::shared_ptr<clsXUNQuestion>& oQuestion,
           std::optional<Index> Before = std::nullopt, std::optional<Index> After = std::nullopt);
  bool Remove(const Index& index);
  bool RemoveAll();

  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNQuestions() = default;
  std::weak_ptr<clsXUNField> field_;
  detail::KeyedObjectList<clsXUNQuestion, clsXUNQuestions> items_;
};

namespace detail {
// Adding and removing questions, for the library only.
struct QuestionsInternals {
  static bool Add(clsXUNQuestions& list, const std::shared_ptr<clsXUNQuestion>& question,
                  std::optional<Index> before = std::nullopt,
                  std::optional<Index> after = std::nullopt) {
    return list.Add(question, before, after);
  }
  static bool Remove(clsXUNQuestions& list, const Index& index) { return list.Remove(index); }
  static bool RemoveAll(clsXUNQuestions& list) { return list.RemoveAll(); }
};
}  // namespace detail

}  // namespace xun

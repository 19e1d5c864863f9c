// The JSON document's properties of each object are the library's own property lists
// (xun/model/properties.h), walked by the dump (which reads each value) and by the build (which
// sets it), so neither can miss a property the other has. What is computed rather than stored
// is listed here, dumped for people and ignored by the build.
#pragma once

#include <cstddef>
#include <string>
#include <variant>

#include "xun/xun.h"

namespace xuntool::props {

// A visitor offers Value(name, value, setter) for each value type of the property lists
// (std::string, bool, int16_t, int32_t, float, double) and ReadOnly(name, value).
template <class V, class O, std::size_t N>
void Visit(V& v, const xun::properties::Property<O> (&table)[N], O& object) {
  for (const xun::properties::Property<O>& property : table)
    std::visit(
        [&](const auto& accessor) {
          v.Value(std::string(property.name), accessor.get(object),
                  [&](auto value) { accessor.set(object, std::move(value)); });
        },
        property.access);
}

template <class V>
void TemplateReadOnly(V& v, const xun::clsXUNTemplate& t) {
  v.ReadOnly("Version", t.Version());
  v.ReadOnly("CompatibleVersion", t.CompatibleVersion());
  v.ReadOnly("Valid", t.Valid());
  v.ReadOnly("Editable", t.Editable());
  v.ReadOnly("NumPages", t.NumPages());
  v.ReadOnly("NumFields", t.NumFields());
  v.ReadOnly("NumQuestions", t.NumQuestions());
  v.ReadOnly("NumItems", t.NumItems());
  v.ReadOnly("NumGradedItems", t.NumGradedItems());
  v.ReadOnly("NumSubjectiveItems", t.NumSubjectiveItems());
  v.ReadOnly("NumDBVerify", t.NumDBVerify());
}

template <class V>
void PageReadOnly(V& v, const xun::clsXUNPage& p) {
  v.ReadOnly("NumFields", p.NumFields());
  v.ReadOnly("NumQuestions", p.NumQuestions());
  v.ReadOnly("NumItems", p.NumItems());
  v.ReadOnly("NumGradedItems", p.NumGradedItems());
  v.ReadOnly("NumSubjectiveItems", p.NumSubjectiveItems());
  v.ReadOnly("NumTimingMarks", p.NumTimingMarks());
  v.ReadOnly("LargeField", p.LargeField());
}

template <class V>
void FieldReadOnly(V& v, const xun::clsXUNField& f) {
  v.ReadOnly("NumItems", f.NumItems());
  v.ReadOnly("NumMarks", f.NumMarks());
  v.ReadOnly("DBVerify", f.DBVerify());
}

template <class V>
void QuestionReadOnly(V& v, xun::clsXUNQuestion& q) {
  v.ReadOnly("Schema", q.Schema(true));
  v.ReadOnly("NAChoiceAll", q.NAChoiceAll());
}

}  // namespace xuntool::props

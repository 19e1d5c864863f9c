// The keyed lists of the tree as Python sequences: len, iteration, indexing from 0 (negative from
// the end), and [] by key, which the library matches without regard to case.
#include <pybind11/stl.h>

#include <optional>
#include <string>
#include <variant>

#include "bindings.h"
#include "errors.h"
#include "xun/xun.h"

namespace py = pybind11;

namespace xunpy {
namespace {

template <class L>
auto ItemAt(const L& list, int64_t position) {
  const int64_t count = list.Count();
  if (position < 0) position += count;
  if (position < 0 || position >= count) throw py::index_error("list index out of range");
  return list.Item(xun::Index(static_cast<int32_t>(position + 1)));
}

template <class L>
auto ItemByKey(const L& list, const std::string& key) {
  if (!list.Exists(xun::Index(key))) throw py::key_error(key);
  return list.Item(xun::Index(key));
}

// A position from 0 or a key, as the library's Index (positions from 1); None is "not given".
std::optional<xun::Index> IndexOf(const std::optional<std::variant<int32_t, std::string>>& where) {
  if (!where) return std::nullopt;
  if (const auto* position = std::get_if<int32_t>(&*where)) return xun::Index(*position + 1);
  return xun::Index(std::get<std::string>(*where));
}

// Lists a host adds its own objects to: pages, regions.
template <class L, class T>
void BindAdd(py::module_& m, const char* name, const char* cls) {
  auto c = py::reinterpret_borrow<py::class_<L, std::shared_ptr<L>>>(m.attr(name));
  c.def(
      "add",
      [](L& list, std::shared_ptr<T> item,
         const std::optional<std::variant<int32_t, std::string>>& before,
         const std::optional<std::variant<int32_t, std::string>>& after) {
        return list.Add(item, IndexOf(before), IndexOf(after));
      },
      py::arg("item"), py::arg("before") = py::none(), py::arg("after") = py::none(),
      py::call_guard<CallGuard>(),
      (std::string("Adds under its key (a fresh key when empty or taken), at the end or before "
                   "or after a position from 0 or a key. Wraps ") +
       cls + "::Add")
          .c_str());
}

template <class L, bool kRemovable = true>
void BindList(py::module_& m, const char* name, const char* cls, const char* what) {
  py::class_<L, std::shared_ptr<L>> c(
      m, name, (std::string("The ") + what + " as a sequence. Wraps " + cls).c_str());
  c.def("__len__", &L::Count, (std::string("Wraps ") + cls + "::Count").c_str());
  c.def("__getitem__", &ItemAt<L>, py::arg("index"), py::call_guard<CallGuard>(),
        (std::string("By position from 0. Wraps ") + cls + "::Item").c_str());
  c.def("__getitem__", &ItemByKey<L>, py::arg("key"), py::call_guard<CallGuard>(),
        (std::string("By key (case-insensitive). Wraps ") + cls + "::Item").c_str());
  c.def(
      "__contains__",
      [](const L& list, const std::string& key) { return list.Exists(xun::Index(key)); },
      py::arg("key"),
      (std::string("Whether a key is in the list. Wraps ") + cls + "::Exists").c_str());
  // A region's questions follow from its shape; the library does not let a host remove one.
  if constexpr (kRemovable) {
    c.def(
        "__delitem__",
        [](L& list, int64_t position) {
          ItemAt(list, position);  // the range check
          const int64_t count = list.Count();
          list.Remove(
              xun::Index(static_cast<int32_t>((position < 0 ? position + count : position) + 1)));
        },
        py::arg("index"), py::call_guard<CallGuard>(),
        (std::string("Removes by position from 0. Wraps ") + cls + "::Remove").c_str());
    c.def(
        "remove",
        [](L& list, const std::string& key) {
          // The library says nothing when the key is not there.
          if (!list.Exists(xun::Index(key))) throw py::key_error(key);
          list.Remove(xun::Index(key));
        },
        py::arg("key"), py::call_guard<CallGuard>(),
        (std::string("Removes by key; KeyError when it is not there. Wraps ") + cls + "::Remove")
            .c_str());
  }
  // A snapshot: the list may change while a loop runs over it.
  c.def("__iter__", [](const L& list) {
    py::list items;
    for (const auto& item : list)
      items.append(py::cast(item));
    return py::iter(items);
  });
  c.def("__repr__", [name](const L& list) {
    return "<xuntemplate." + std::string(name) + " of " + std::to_string(list.Count()) + ">";
  });
}

}  // namespace

void BindLists(py::module_& m) {
  BindList<xun::clsXUNPages>(m, "Pages", "clsXUNPages", "pages of a template");
  BindList<xun::clsXUNFields>(m, "Regions", "clsXUNFields", "regions of a page");
  BindList<xun::clsXUNQuestions, false>(m, "Questions", "clsXUNQuestions", "questions of a region");
  BindList<xun::clsXUNTimingMarks>(m, "TimingMarks", "clsXUNTimingMarks", "timing marks of a page");
  BindAdd<xun::clsXUNPages, xun::clsXUNPage>(m, "Pages", "clsXUNPages");
  BindAdd<xun::clsXUNFields, xun::clsXUNField>(m, "Regions", "clsXUNFields");
  auto marks = py::reinterpret_borrow<
      py::class_<xun::clsXUNTimingMarks, std::shared_ptr<xun::clsXUNTimingMarks>>>(
      m.attr("TimingMarks"));
  marks.def(
      "add",
      [](xun::clsXUNTimingMarks& list, const std::shared_ptr<xun::clsXUNTimingMark>& mark,
         std::optional<std::string> key) { return list.Add(mark, std::move(key)); },
      py::arg("mark"), py::arg("key") = py::none(), py::call_guard<CallGuard>(),
      "Adds a mark at the end, under key or a fresh one. Wraps clsXUNTimingMarks::Add");
}

}  // namespace xunpy

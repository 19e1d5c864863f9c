// The objects of the template tree: every stored property of the library's property lists as a
// snake_case attribute, plus the tree's links and the template's file operations.
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <filesystem>
#include <variant>

#include "bindings.h"
#include "errors.h"
#include "snake_case.h"
#include "xun/xun.h"

namespace py = pybind11;

namespace xunpy {
namespace {

using Guard = py::call_guard<CallGuard>;

std::string Wraps(const char* cls, std::string_view member) {
  return "Wraps " + std::string(cls) + "::" + std::string(member);
}

// Every property of `table` as a read-write attribute of `c`.
template <class O, std::size_t N>
void BindProperties(py::class_<O, std::shared_ptr<O>>& c, const char* cls,
                    const xun::properties::Property<O> (&table)[N]) {
  for (const auto& property : table) {
    std::visit(
        [&](auto accessor) {
          using T = decltype(accessor.get(std::declval<const O&>()));
          c.def_property(
              SnakeCase(property.name).c_str(),
              py::cpp_function([accessor](const O& o) { return accessor.get(o); }),
              py::cpp_function([accessor](O& o, T value) { accessor.set(o, std::move(value)); },
                               Guard()),
              Wraps(cls, property.name).c_str());
        },
        property.access);
  }
}

// A read-only attribute wrapping a getter.
template <class O, class F>
void ReadOnly(py::class_<O, std::shared_ptr<O>>& c, const char* cls, const char* member, F get) {
  c.def_property_readonly(SnakeCase(member).c_str(), get, Wraps(cls, member).c_str());
}

std::vector<std::string> Strings(const std::shared_ptr<xun::clsXUNStringItems>& items) {
  std::vector<std::string> out;
  if (items)
    for (const std::string& s : *items)
      out.push_back(s);
  return out;
}

std::shared_ptr<xun::clsXUNStringItems> StringItems(const std::vector<std::string>& values) {
  auto items = xun::clsXUNStringItems::Create();
  for (const std::string& s : values)
    items->Add(s);
  return items;
}

std::shared_ptr<xun::clsXUNTemplate> ReadTemplate(const std::filesystem::path& path,
                                                  bool for_edit) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec))
    RaiseError(53, "xuntemplate.Template.read", path.string() + ": no such file", "");
  auto t = xun::clsXUNTemplate::Create();
  try {
    if (t->Read(path.string(), for_edit)) return t;
  } catch (ReportedError& e) {
    // A failed read leaves the tree as far as it got, possibly owning page images.
    t->Free();
    e.line = xun::basTemplate::LastReadDiagnostic().line;
    DropMessages();
    throw;
  }
  t->Free();
  const auto diagnostic = xun::basTemplate::LastReadDiagnostic();
  DropMessages();
  RaiseError(std::nullopt, "clsXUNTemplate.Read", diagnostic.text, diagnostic.title,
             diagnostic.line);
}

bool SaveTemplate(xun::clsXUNTemplate& t, const std::filesystem::path& path, bool verbose,
                  bool register_) {
  bool invalid = false;
  if (!t.Save(path.string(), verbose, &invalid, register_)) {
    const auto message = LastMessage();
    DropMessages();
    RaiseError(std::nullopt, "clsXUNTemplate.Save",
               message ? message->second : path.string() + ": the template was not saved",
               message ? message->first : "");
  }
  return !invalid;
}

}  // namespace

void BindModel(py::module_& m) {
  using xun::clsXUNField;
  using xun::clsXUNFieldDB;
  using xun::clsXUNPage;
  using xun::clsXUNQuestion;
  using xun::clsXUNTemplate;
  using xun::clsXUNTimingMark;

  py::class_<clsXUNTemplate, std::shared_ptr<clsXUNTemplate>> t(
      m, "Template",
      "A form template: its pages, their regions and questions. Wraps clsXUNTemplate");
  py::class_<clsXUNPage, std::shared_ptr<clsXUNPage>> page(
      m, "Page", "A page of a template. Wraps clsXUNPage");
  py::class_<clsXUNField, std::shared_ptr<clsXUNField>> region(
      m, "Region",
      "A region (field) of a page: a bubble grid, a text box, a barcode... Wraps clsXUNField");
  py::class_<clsXUNFieldDB, std::shared_ptr<clsXUNFieldDB>> db(
      m, "RegionDB", "A region's database lookup. Wraps clsXUNFieldDB");
  py::class_<clsXUNQuestion, std::shared_ptr<clsXUNQuestion>> question(
      m, "Question", "A question of a region. Wraps clsXUNQuestion");
  py::class_<clsXUNTimingMark, std::shared_ptr<clsXUNTimingMark>> mark(
      m, "TimingMark", "A timing mark of a page, in image pixels. Wraps clsXUNTimingMark");

  t.def(py::init(&clsXUNTemplate::Create),
        "An empty Letter-size template. Wraps clsXUNTemplate::Create");
  t.def_static("read", &ReadTemplate, py::arg("path"), py::arg("for_edit") = false, Guard(),
               "Reads a template file (.omr, plain or zipped); for_edit opens it as an editor "
               "would, also when it is not valid for reading. Raises Error with the reader's "
               "diagnostic (title, text, line) when it cannot be read. Wraps clsXUNTemplate::Read");
  t.def("save", &SaveTemplate, py::arg("path"), py::arg("verbose") = false,
        py::arg("register") = true, Guard(),
        "Saves to a template file; returns whether what was written is valid for reading. "
        "Raises Error when it is refused. Wraps clsXUNTemplate::Save");
  t.def(
      "copy", [](const clsXUNTemplate& self) { return self.Copy(); }, Guard(),
      "A deep copy. Wraps clsXUNTemplate::Copy");
  t.def("clear", &clsXUNTemplate::Clear, Guard(), "Wraps clsXUNTemplate::Clear");
  t.def("free", &clsXUNTemplate::Free, Guard(),
        "Empties the tree and deletes the temporary copies of its page images. Wraps "
        "clsXUNTemplate::Free");
  t.def("__enter__", [](std::shared_ptr<clsXUNTemplate> self) { return self; });
  t.def(
      "__exit__", [](clsXUNTemplate& self, const py::args&) { self.Free(); }, Guard(),
      "Frees the tree (see free).");
  t.def_property_readonly("pages", py::overload_cast<>(&clsXUNTemplate::Pages, py::const_),
                          "Wraps clsXUNTemplate::Pages");
  BindProperties(t, "clsXUNTemplate", xun::properties::kTemplate);
  ReadOnly(t, "clsXUNTemplate", "Version", &clsXUNTemplate::Version);
  ReadOnly(t, "clsXUNTemplate", "CompatibleVersion", &clsXUNTemplate::CompatibleVersion);
  ReadOnly(t, "clsXUNTemplate", "Valid", &clsXUNTemplate::Valid);
  ReadOnly(t, "clsXUNTemplate", "Editable", &clsXUNTemplate::Editable);
  ReadOnly(t, "clsXUNTemplate", "NumPages", &clsXUNTemplate::NumPages);
  ReadOnly(t, "clsXUNTemplate", "NumFields", &clsXUNTemplate::NumFields);
  ReadOnly(t, "clsXUNTemplate", "NumQuestions", &clsXUNTemplate::NumQuestions);
  ReadOnly(t, "clsXUNTemplate", "NumItems", &clsXUNTemplate::NumItems);
  ReadOnly(t, "clsXUNTemplate", "NumGradedItems", &clsXUNTemplate::NumGradedItems);
  t.def("__repr__", [](const clsXUNTemplate& self) {
    return "<xuntemplate.Template " + py::repr(py::str(self.Name())).cast<std::string>() + ", " +
           std::to_string(self.NumPages()) + " pages>";
  });

  page.def(py::init(&clsXUNPage::Create),
           "A new page, to add to a template's pages. Wraps clsXUNPage::Create");
  page.def_property_readonly("regions", py::overload_cast<>(&clsXUNPage::Fields, py::const_),
                             "Wraps clsXUNPage::Fields");
  page.def_property_readonly("timing_marks",
                             py::overload_cast<>(&clsXUNPage::TimingMarks, py::const_),
                             "Wraps clsXUNPage::TimingMarks");
  page.def_property_readonly("template", &clsXUNPage::Template, "Wraps clsXUNPage::Template");
  BindProperties(page, "clsXUNPage", xun::properties::kPage);
  ReadOnly(page, "clsXUNPage", "NumFields", &clsXUNPage::NumFields);
  ReadOnly(page, "clsXUNPage", "NumQuestions", &clsXUNPage::NumQuestions);
  ReadOnly(page, "clsXUNPage", "NumItems", &clsXUNPage::NumItems);
  ReadOnly(page, "clsXUNPage", "NumTimingMarks", &clsXUNPage::NumTimingMarks);

  region.def(py::init(&clsXUNField::Create),
             "A new region, to add to a page's regions. Wraps clsXUNField::Create");
  region.def_property_readonly("questions",
                               py::overload_cast<>(&clsXUNField::Questions, py::const_),
                               "Wraps clsXUNField::Questions");
  region.def_property_readonly("page", &clsXUNField::Page, "Wraps clsXUNField::Page");
  region.def_property_readonly("db", py::overload_cast<>(&clsXUNField::DB, py::const_),
                               "Wraps clsXUNField::DB");
  BindProperties(region, "clsXUNField", xun::properties::kField);
  ReadOnly(region, "clsXUNField", "NumItems", &clsXUNField::NumItems);
  ReadOnly(region, "clsXUNField", "NumMarks", &clsXUNField::NumMarks);

  BindProperties(db, "clsXUNFieldDB", xun::properties::kFieldDB);

  question.def_property_readonly("region", &clsXUNQuestion::Field, "Wraps clsXUNQuestion::Field");
  question.def_property(
      "choices", [](const clsXUNQuestion& q) { return Strings(q.Choices()); },
      py::cpp_function(
          [](clsXUNQuestion& q, const std::vector<std::string>& values) {
            q.Choices(StringItems(values));
          },
          Guard()),
      "The choices' texts, as a list (a copy). Wraps clsXUNQuestion::Choices");
  question.def_property(
      "codes", [](const clsXUNQuestion& q) { return Strings(q.Codes()); },
      py::cpp_function([](clsXUNQuestion& q,
                          const std::vector<std::string>& values) { q.Codes(StringItems(values)); },
                       Guard()),
      "The choices' codes, as a list (a copy). Wraps clsXUNQuestion::Codes");
  BindProperties(question, "clsXUNQuestion", xun::properties::kQuestion);

  mark.def(py::init(&clsXUNTimingMark::Create), "Wraps clsXUNTimingMark::Create");
  mark.def_property("left", py::overload_cast<>(&clsXUNTimingMark::Left, py::const_),
                    py::overload_cast<int16_t>(&clsXUNTimingMark::Left),
                    "Wraps clsXUNTimingMark::Left");
  mark.def_property("top", py::overload_cast<>(&clsXUNTimingMark::Top, py::const_),
                    py::overload_cast<int16_t>(&clsXUNTimingMark::Top),
                    "Wraps clsXUNTimingMark::Top");
  mark.def_property("width", py::overload_cast<>(&clsXUNTimingMark::Width, py::const_),
                    py::overload_cast<int16_t>(&clsXUNTimingMark::Width),
                    "Wraps clsXUNTimingMark::Width");
  mark.def_property("height", py::overload_cast<>(&clsXUNTimingMark::Height, py::const_),
                    py::overload_cast<int16_t>(&clsXUNTimingMark::Height),
                    "Wraps clsXUNTimingMark::Height");
}

}  // namespace xunpy

// Template.dump() and Template.build(): the template as the same JSON document `xuntemplate dump`
// writes and `xuntemplate build` reads, here as Python dicts and lists.
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <filesystem>

#include "bindings.h"
#include "errors.h"
#include "json_convert.h"
#include "json_document.h"
#include "xun/xun.h"

namespace py = pybind11;

namespace xunpy {
namespace {

py::object Dump(xun::clsXUNTemplate& t, const std::filesystem::path& images_folder,
                const std::filesystem::path& document_folder) {
  xuntool::DumpOptions options;
  options.images_folder = images_folder.string();
  options.document_folder = document_folder.string();
  return ToPython(xuntool::DumpTemplate(t, options));
}

std::shared_ptr<xun::clsXUNTemplate> Build(const py::handle& document,
                                           const std::filesystem::path& folder) {
  const xuntool::Json json = FromPython(document, "");
  return xuntool::BuildTemplate(json, folder.string(), "document");
}

}  // namespace

void BindDocuments(py::module_& m) {
  py::register_exception_translator([](std::exception_ptr p) {
    try {
      if (p) std::rethrow_exception(p);
    } catch (const xuntool::JsonError& e) {
      PyErr_SetString(PyExc_ValueError, e.what());
    }
  });
  auto t =
      py::reinterpret_borrow<py::class_<xun::clsXUNTemplate, std::shared_ptr<xun::clsXUNTemplate>>>(
          m.attr("Template"));
  t.def("dump", &Dump, py::arg("images_folder") = "", py::arg("document_folder") = "",
        py::call_guard<CallGuard>(),
        "The template as a dict: the document `xuntemplate dump` writes. With images_folder, "
        "page images are copied there and named relative to document_folder; otherwise a "
        "page's ImageFile is empty and HasImage tells whether it has one.");
  t.def_static("build", &Build, py::arg("document"), py::arg("folder") = ".",
               py::call_guard<CallGuard>(),
               "A template from a dict made by dump (or by hand: absent keys keep their "
               "defaults, unknown keys are refused). Image paths are taken relative to folder. "
               "Raises ValueError naming the JSON pointer of the first bad value.");
}

}  // namespace xunpy

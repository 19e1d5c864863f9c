// The parts of the extension module, each bound by its own file.
#pragma once

#include <pybind11/pybind11.h>

namespace xunpy {

void BindErrors(pybind11::module_& m);
void BindModel(pybind11::module_& m);
void BindLists(pybind11::module_& m);
void BindDocuments(pybind11::module_& m);
void BindReading(pybind11::module_& m);

}  // namespace xunpy

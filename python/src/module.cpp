// The extension module _xuntemplate; the package xuntemplate re-exports it.
#include "bindings.h"

PYBIND11_MODULE(_xuntemplate, m) {
  m.doc() =
      "Scannable form templates for optical mark recognition: the template model, its JSON "
      "document, and reading filled forms.";
  xunpy::BindErrors(m);
  xunpy::BindModel(m);
  xunpy::BindLists(m);
  xunpy::BindDocuments(m);
  xunpy::BindReading(m);
}

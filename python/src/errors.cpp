#include "errors.h"

#include <utility>
#include <vector>

namespace py = pybind11;

namespace xunpy {
namespace {

// The Python types, created once when the module loads and kept for its lifetime.
PyObject* error_type = nullptr;
PyObject* message_type = nullptr;

struct ShownMessage {
  std::string title;
  std::string text;
};
thread_local std::vector<ShownMessage> shown;
thread_local bool installed = false;

class RaisingHandler : public xun::IErrorHandler {
 public:
  bool Silent() override { return silent_; }
  void Silent(bool value) override { silent_ = value; }
  xun::Variant RaiseError(xun::Variant& vNumber, int32_t&, std::string& sDescription,
                          std::string& sLocation, std::string& sTitle, std::string&, std::string&,
                          std::string&, int32_t&, std::string&, std::string&, std::string&,
                          int32_t&) override {
    // A validation report has no number of its own (Missing).
    std::optional<int32_t> number;
    if (vNumber.IsNumber()) {
      try {
        number = vNumber.ToLong();
      } catch (...) {
      }
    }
    // The same text was shown as a message as well; the error says it once.
    if (!shown.empty() && shown.back().text == sDescription) shown.pop_back();
    throw ReportedError(number, sLocation, sDescription, sTitle);
  }

 private:
  bool silent_ = false;
};

std::string ErrorMessage(const std::string& title, const std::string& text) {
  return title.empty() ? text : title + ": " + text;
}

}  // namespace

ReportedError::ReportedError(std::optional<int32_t> reported_number, std::string where,
                             std::string description, std::string message_title)
    : xun::HostError(reported_number.value_or(0), description),
      number(reported_number),
      location(std::move(where)),
      text(std::move(description)),
      title(std::move(message_title)) {}

void InstallOnThisThread() {
  if (installed) return;
  xun::basError::SetHandler(std::make_shared<RaisingHandler>());
  xun::basError::SetMessageBox([](const xun::MessageBoxRequest& request) {
    shown.push_back({request.title, request.text});
  });
  installed = true;
}

CallGuard::CallGuard() {
  InstallOnThisThread();
  shown.clear();
}

CallGuard::~CallGuard() {
  std::vector<ShownMessage> messages;
  messages.swap(shown);
  for (const ShownMessage& message : messages) {
    // A warning turned into an error by the warnings filter cannot leave a destructor; the
    // call's own outcome stands.
    if (PyErr_WarnEx(message_type, ErrorMessage(message.title, message.text).c_str(), 1) != 0)
      PyErr_Clear();
  }
}

void DropMessages() {
  shown.clear();
}

std::optional<std::pair<std::string, std::string>> LastMessage() {
  if (shown.empty()) return std::nullopt;
  return std::make_pair(shown.back().title, shown.back().text);
}

namespace {

// Sets xuntemplate.Error as the current Python error.
void SetError(std::optional<int32_t> number, const std::string& location, const std::string& text,
              const std::string& title, int32_t line) {
  py::object error = py::reinterpret_borrow<py::object>(error_type)(ErrorMessage(title, text));
  error.attr("number") = number ? py::object(py::int_(*number)) : py::object(py::none());
  error.attr("location") = location;
  error.attr("text") = text;
  error.attr("title") = title.empty() ? py::object(py::none()) : py::object(py::str(title));
  error.attr("line") = line > 0 ? py::object(py::int_(line)) : py::object(py::none());
  PyErr_SetObject(error_type, error.ptr());
}

}  // namespace

void RaiseError(std::optional<int32_t> number, const std::string& location, const std::string& text,
                const std::string& title, int32_t line) {
  SetError(number, location, text, title, line);
  throw py::error_already_set();
}

void BindErrors(py::module_& m) {
  error_type = PyErr_NewExceptionWithDoc(
      "xuntemplate.Error",
      "A failure the library reported. Attributes: number (the run-time error number, None for "
      "a validation message), location (where the library reported it), text (its "
      "description), title (the message title, or None) and line (the line of the template "
      "file, or None).",
      PyExc_Exception, nullptr);
  message_type = PyErr_NewExceptionWithDoc(
      "xuntemplate.Message",
      "A message the library showed to the user (\"title: text\"), given as a warning.",
      PyExc_UserWarning, nullptr);
  if (!error_type || !message_type) throw py::error_already_set();
  m.add_object("Error", py::handle(error_type));
  m.add_object("Message", py::handle(message_type));
  py::register_exception_translator([](std::exception_ptr p) {
    try {
      if (p) std::rethrow_exception(p);
    } catch (const ReportedError& e) {
      SetError(e.number, e.location, e.text, e.title, e.line);
    }
  });
}

}  // namespace xunpy

#include "xun/templatefile/batch_file.h"

#include "xun/templatefile/section_reader.h"

#include "xun/support/error_reporter.h"
#include "xun/support/message_box.h"
#include "xun/support/text.h"

namespace xun::basTemplate::detail {

BatchMembers ParseBatchText(std::string_view text) {
  enum class Section { None, Form, Headers } section = Section::None;
  BatchMembers members;
  bool form_seen = false;
  for (LineCursor cursor(text); !cursor.AtEnd(); cursor.Next()) {
    const std::string_view line = text::TrimLeft(cursor.Current());
    if (!line.empty() && line.front() == '[') {
      const std::string header = text::ToUpper(text::Trim(line));
      section = header == "[TEMPLATE]"  ? Section::Form
                : header == "[HEADERS]" ? Section::Headers
                                        : Section::None;
      continue;
    }
    // Unlike a template file, an empty line does not end a section: a batch file is a list of
    // names, and a name after a blank line is still one of them.
    const size_t equals = line.find('=');
    if (section == Section::None || equals == std::string_view::npos) continue;
    const std::string path(text::Trim(line.substr(equals + 1)));
    if (path.empty()) continue;  // names no file
    if (section == Section::Headers) {
      members.headers.push_back(path);
    } else if (!form_seen) {
      // A batch has one form template; later lines of [Template] are not read.
      members.form = path;
      form_seen = true;
    }
  }
  return members;
}

std::string BatchFileText(const std::string& form, const std::vector<std::string>& headers) {
  std::string out = "[Template]\r\nName=" + form + "\r\n[Headers]\r\n";
  for (const std::string& header : headers)
    out += "Name=" + header + "\r\n";
  return out;
}

void ShowBatchMessage(const std::string& title, const std::string& text, const char* location) {
  basError::ShowMessage(title, text, MessageBoxIcon::Exclamation, MessageBoxButtons::OK);
  basError::ReportError(0, Variant::Missing(), basError::kKindValidation, text, location, title);
}

}  // namespace xun::basTemplate::detail

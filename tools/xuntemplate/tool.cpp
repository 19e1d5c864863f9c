#include "tool.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

namespace xuntool {

namespace fs = std::filesystem;

namespace {

// Records every report instead of letting the library write Error.log beside itself, which may
// not even be writable where the library is installed.
class RecordingHandler : public xun::IErrorHandler {
 public:
  RecordingHandler(std::vector<std::string>& failures, std::vector<std::string>& refusals)
      : failures_(failures), refusals_(refusals) {}
  bool Silent() override { return silent_; }
  void Silent(bool value) override { silent_ = value; }
  xun::Variant RaiseError(xun::Variant&, int32_t& lKind, std::string& sDescription,
                          std::string& sLocation, std::string&, std::string&, std::string&,
                          std::string&, int32_t&, std::string&, std::string&, std::string&,
                          int32_t&) override {
    if (lKind == xun::basError::kKindRuntime) {
      // The full location starts with the product's name, which says nothing here.
      const std::string prefix = xun::basError::FullLocation("", 0);
      const std::string where = sLocation.rfind(prefix, 0) == 0 && !prefix.empty()
                                    ? sLocation.substr(prefix.size())
                                    : sLocation;
      failures_.push_back(where + ": " + sDescription);
    } else {
      refusals_.push_back(sDescription);
    }
    return xun::Variant(static_cast<int16_t>(0));
  }

 private:
  std::vector<std::string>& failures_;
  std::vector<std::string>& refusals_;
  bool silent_ = false;
};

std::string FirstBytes(const std::string& path, std::size_t count) {
  std::ifstream in(path, std::ios::binary);
  std::string bytes(count, '\0');
  in.read(bytes.data(), static_cast<std::streamsize>(count));
  bytes.resize(static_cast<std::size_t>(in.gcount()));
  return bytes;
}

void RemoveQuietly(const fs::path& path) {
  std::error_code ec;
  fs::remove(path, ec);
}

}  // namespace

struct LibrarySession::State {
  std::vector<Message> messages;
  std::vector<std::string> failures;
  std::vector<std::string> refusals;
  xun::MessageBoxService previous_service;
  std::shared_ptr<xun::IErrorHandler> previous_handler;
};

LibrarySession::LibrarySession() : state_(std::make_shared<State>()) {
  std::weak_ptr<State> weak = state_;
  state_->previous_service =
      xun::basError::SetMessageBox([weak](const xun::MessageBoxRequest& request) {
        if (auto state = weak.lock()) state->messages.push_back({request.title, request.text});
      });
  state_->previous_handler = xun::basError::Handler();
  xun::basError::SetHandler(std::make_shared<RecordingHandler>(state_->failures, state_->refusals));
}

LibrarySession::~LibrarySession() {
  xun::basError::SetMessageBox(std::move(state_->previous_service));
  xun::basError::SetHandler(std::move(state_->previous_handler));
}

const std::vector<LibrarySession::Message>& LibrarySession::messages() const {
  return state_->messages;
}
const std::vector<std::string>& LibrarySession::failures() const {
  return state_->failures;
}
const std::vector<std::string>& LibrarySession::refusals() const {
  return state_->refusals;
}
void LibrarySession::Clear() {
  state_->messages.clear();
  state_->failures.clear();
  state_->refusals.clear();
}

std::string LibrarySession::LastWord(const std::string& fallback) const {
  if (!state_->messages.empty())
    return state_->messages.back().title + ": " + OneLine(state_->messages.back().text);
  if (!state_->refusals.empty()) return OneLine(state_->refusals.back());
  if (!state_->failures.empty()) return state_->failures.back();
  return fallback;
}

std::string OneLine(const std::string& text) {
  std::string out;
  bool in_break = false;
  for (char c : text) {
    if (c == '\r' || c == '\n') {
      in_break = true;
      continue;
    }
    if (in_break && !out.empty()) out += ' ';
    in_break = false;
    out += c;
  }
  return out;
}

std::string Diagnostic(const std::string& file, int32_t line, const std::string& severity,
                       const std::string& title, const std::string& text) {
  std::string out = file;
  if (line > 0) out += ":" + std::to_string(line);
  out += ": " + severity + ": ";
  if (!title.empty()) out += title + ": ";
  return out + OneLine(text);
}

FileKind KindOfFile(const std::string& path) {
  const std::string head = FirstBytes(path, 4);
  if (head.size() >= 2 && head[0] == 'P' && head[1] == 'K') return FileKind::Archive;
  if (head.size() >= 2 && static_cast<unsigned char>(head[0]) == 0xFF &&
      static_cast<unsigned char>(head[1]) == 0xFE)
    return FileKind::Utf16;
  return FileKind::Ansi;
}

const char* FileKindName(FileKind kind) {
  switch (kind) {
    case FileKind::Ansi:
      return "ANSI (Windows-1252)";
    case FileKind::Utf16:
      return "UTF-16LE";
    case FileKind::Archive:
      return "zip archive";
  }
  return "";
}

void RequireInputFile(const std::string& path) {
  std::error_code ec;
  const fs::file_status status = fs::status(path, ec);
  if (!fs::exists(status)) throw ToolError("xuntemplate: error: " + path + ": no such file");
  if (!fs::is_regular_file(status))
    throw ToolError("xuntemplate: error: " + path + ": not a regular file");
  std::ifstream in(path, std::ios::binary);
  if (!in) throw ToolError("xuntemplate: error: " + path + ": cannot be opened for reading");
}

void RequirePage(const xun::clsXUNTemplate& t, const std::string& file, int32_t page) {
  const int32_t pages = t.NumPages();
  if (page < 1 || page > pages)
    throw ToolError("xuntemplate: error: " + file + ": page " + std::to_string(page) +
                    " does not exist (the template has " + Plural(pages, "page", "pages") + ")");
}

std::shared_ptr<xun::clsXUNTemplate> OpenTemplate(const std::string& path, bool bForEdit) {
  RequireInputFile(path);
  auto t = xun::clsXUNTemplate::Create();
  if (t->Read(path, bForEdit)) return t;
  // A failed read leaves the tree as far as it got, possibly owning page images.
  t->Free();
  const xun::basTemplate::ReadDiagnostic diag = xun::basTemplate::LastReadDiagnostic();
  throw ToolError(Diagnostic(path, diag.line, "error", diag.title, diag.text));
}

std::optional<Encoding> ParseEncoding(const std::string& name) {
  if (name == "ansi") return Encoding::Ansi;
  if (name == "utf16") return Encoding::Utf16;
  return std::nullopt;
}

std::optional<Encoding> KeptEncoding(const std::string& path) {
  switch (KindOfFile(path)) {
    case FileKind::Utf16:
      return Encoding::Utf16;
    case FileKind::Ansi:
      return Encoding::Ansi;
    case FileKind::Archive:
      break;
  }
  return std::nullopt;
}

bool SaveTemplateAs(xun::clsXUNTemplate& t, const std::string& target,
                    std::optional<Encoding> encoding, RegistrationNotes* registration) {
  const fs::path target_path(target);
  fs::path folder = target_path.parent_path();
  if (folder.empty()) folder = ".";
  std::error_code ec;
  if (!fs::is_directory(folder, ec))
    throw ToolError("xuntemplate: error: " + target + ": folder " + folder.string() +
                    " does not exist");
  if (fs::is_directory(target_path, ec))
    throw ToolError("xuntemplate: error: " + target + ": is a folder");

  const std::string temp = xun::basPublic::GetUniqueFileName("xun", ".omr", folder.string());
  if (temp.empty()) throw ToolError("xuntemplate: error: " + target + ": cannot be written");
  // The writer keeps the encoding of the file it replaces, so a byte-order mark asks for UTF-16.
  if (encoding == Encoding::Utf16) {
    std::ofstream mark(temp, std::ios::binary);
    mark << "\xFF\xFE";
    if (!mark) throw ToolError("xuntemplate: error: " + target + ": cannot be written");
  }
  LibrarySession session;
  bool invalid = false;
  const bool saved = t.Save(temp, true, &invalid, registration != nullptr);
  if (registration) {
    registration->messages = session.messages();
    registration->failures = session.failures();
  }
  RemoveQuietly(temp + ".old");
  if (!saved) {
    RemoveQuietly(temp);
    throw ToolError("xuntemplate: error: " + target + ": " +
                    session.LastWord("the template could not be saved"));
  }
  fs::rename(temp, target_path, ec);
  if (ec) {
    RemoveQuietly(temp);
    throw ToolError("xuntemplate: error: " + target + ": " + ec.message());
  }
  if (encoding == Encoding::Ansi && KindOfFile(target) == FileKind::Utf16)
    std::cerr << "xuntemplate: note: " << target
              << ": written as UTF-16LE, since it holds text Windows-1252 cannot\n";
  return !invalid;
}

void WriteOutputFile(const std::string& target, const std::string& text) {
  const fs::path target_path(target);
  fs::path folder = target_path.parent_path();
  if (folder.empty()) folder = ".";
  const std::string temp = xun::basPublic::GetUniqueFileName("xun", ".tmp", folder.string());
  bool written = false;
  if (!temp.empty()) {
    std::ofstream out(temp, std::ios::binary);
    out << text;
    out.close();
    std::error_code ec;
    written = out && (fs::rename(temp, target_path, ec), !ec);
  }
  if (!written) {
    if (!temp.empty()) RemoveQuietly(temp);
    throw ToolError("xuntemplate: error: " + target + ": cannot be written");
  }
}

PageExtent ExtentOf(const xun::clsXUNTemplate& t) {
  PageExtent e;
  xun::printing::PageSizeOf(t, e.width, e.height);
  return e;
}

std::string Wrap(const std::string& text, std::size_t width) {
  std::string out, line;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find(' ', start);
    if (end == std::string::npos) end = text.size();
    const std::string word = text.substr(start, end - start);
    if (!line.empty() && line.size() + 1 + word.size() > width) {
      out += line + "\n";
      line.clear();
    }
    line += (line.empty() ? "" : " ") + word;
    start = end + 1;
  }
  return out + line;
}

std::string Plural(int64_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string RecogTypeName(int32_t value) {
  switch (value) {
    case xun::xunRecogTypeOMR:
      return "OMR";
    case xun::xunRecogTypeImage:
      return "image";
    case xun::xunRecogTypeBarcode:
      return "barcode";
    case xun::xunRecogTypeOCR:
      return "OCR";
  }
  return "kind " + std::to_string(value);
}

std::string IDTypeName(int32_t value) {
  switch (value) {
    case xun::xunIDTypeForm:
      return "form ID";
    case xun::xunIDTypePage:
      return "page ID";
    case xun::xunIDTypeRespondent:
      return "respondent tracker";
    case xun::xunIDTypeReadHeadCheck:
      return "read-head check";
  }
  return "role " + std::to_string(value);
}

std::string ReadTypeName(int32_t value) {
  switch (value) {
    case xun::xunTemplateReadTypeNone:
      return "none";
    case xun::xunTemplateReadTypeOffice:
      return "office";
    case xun::xunTemplateReadTypeClassic:
      return "classic";
    case xun::xunTemplateReadTypeHybrid:
      return "hybrid";
  }
  return std::to_string(value);
}

}  // namespace xuntool

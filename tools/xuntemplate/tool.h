// What every command of the tool shares: one-line failures, capturing what the library shows and
// reports, opening and saving templates, and the page's extent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "template_guard.h"
#include "xun/xun.h"

namespace xuntool {

// A failure the user has to act on; main prints it as one line and exits with kExitError.
class ToolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline constexpr int kExitOk = 0;
inline constexpr int kExitWarnings = 1;
inline constexpr int kExitError = 2;

// The library shows messages and reports failures through per-thread services. While a session
// is alive both are captured here instead of going to standard error and Error.log.
class LibrarySession {
 public:
  struct Message {
    std::string title;
    std::string text;
  };
  LibrarySession();
  ~LibrarySession();
  LibrarySession(const LibrarySession&) = delete;
  LibrarySession& operator=(const LibrarySession&) = delete;

  const std::vector<Message>& messages() const;
  // Run-time failures the library trapped ("location: description"), e.g. an overflowing count.
  const std::vector<std::string>& failures() const;
  // Validation reports that were not shown as a message (their description).
  const std::vector<std::string>& refusals() const;
  // What the library said last, as one line: a message, else a refusal, else a failure;
  // `fallback` when it said nothing.
  std::string LastWord(const std::string& fallback) const;
  void Clear();

 private:
  struct State;
  std::shared_ptr<State> state_;
};

// Line breaks of a library message become single blanks, so every message fits one line.
std::string OneLine(const std::string& text);

// "FILE:LINE: error: TITLE: TEXT", or "FILE: error: ..." when no section line is known.
std::string Diagnostic(const std::string& file, int32_t line, const std::string& severity,
                       const std::string& title, const std::string& text);

// How a template file is stored on disk.
enum class FileKind { Ansi, Utf16, Archive };
FileKind KindOfFile(const std::string& path);
const char* FileKindName(FileKind kind);

// Fails with a clear message unless `path` names a readable regular file.
void RequireInputFile(const std::string& path);

// Fails with a clear message unless page `page` (from 1) of the template read from `file` exists.
void RequirePage(const xun::clsXUNTemplate& t, const std::string& file, int32_t page);

// Reads a template. bForEdit true opens it as an editor would (also templates not valid for
// reading); false as the form-reading program does. Fails with the library's own diagnostic.
std::shared_ptr<xun::clsXUNTemplate> OpenTemplate(const std::string& path, bool bForEdit);

enum class Encoding { Ansi, Utf16 };
std::optional<Encoding> ParseEncoding(const std::string& name);

// The encoding a template written from `path` keeps: a plain file's own, none for an archive
// (its text follows the writer's own rule).
std::optional<Encoding> KeptEncoding(const std::string& path);

// What the library said while it registered regions on the way to the file.
struct RegistrationNotes {
  std::vector<LibrarySession::Message> messages;
  std::vector<std::string> failures;
};

// Saves `t` to `target` through a temporary file beside it, so the target is replaced only by a
// complete file and no backup is left behind. With `encoding` the text is written in it (text
// Windows-1252 cannot hold still makes the file UTF-16, which is reported on standard error).
// With `registration` the library registers every region against its page image as it saves
// (Save's bRegister) and what it said about that is left there. Returns whether what was written
// is valid for reading.
bool SaveTemplateAs(xun::clsXUNTemplate& t, const std::string& target,
                    std::optional<Encoding> encoding, RegistrationNotes* registration = nullptr);

// Writes `text` to `target` through a temporary file beside it, so a failure never leaves the
// target half-written; throws a one-line ToolError when it cannot be written.
void WriteOutputFile(const std::string& target, const std::string& text);

// The page as drawn and checked, in pixels at 100 DPI: the template's width and height, swapped
// when the template is landscape but its sizes describe a portrait sheet.
struct PageExtent {
  double width = 0;
  double height = 0;
};
PageExtent ExtentOf(const xun::clsXUNTemplate& t);

// The text broken into lines of at most `width` characters, for help texts.
std::string Wrap(const std::string& text, std::size_t width = 90);

// "1 page", "2 pages".
std::string Plural(int64_t count, const std::string& one, const std::string& many);

// Names of the enumeration values a person reads.
std::string RecogTypeName(int32_t value);
std::string IDTypeName(int32_t value);
std::string ReadTypeName(int32_t value);

}  // namespace xuntool

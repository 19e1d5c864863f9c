// Fixtures shared by every test program: capture what the library reports and shows.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "xun/xun.h"

namespace xun::testing {

// The number of the run-time error that `f` raises, 0 when it raises none.
template <class F>
int32_t RaisedError(F&& f) {
  try {
    f();
  } catch (const RuntimeError& e) {
    return e.Number();
  }
  return 0;
}

// One report as the host's handler received it.
struct Report {
  Variant number;
  int32_t kind = 0;
  std::string description;
  std::string location;  // the full location ("Office Template - ...")
  std::string title;
  bool silent_during_call = false;
};

// A host handler that records every report. Installed for the current thread while alive.
class RecordingHandler : public IErrorHandler {
 public:
  bool Silent() override { return silent; }
  void Silent(bool value) override { silent = value; }
  Variant RaiseError(Variant& vNumber, int32_t& lKind, std::string& sDescription,
                     std::string& sLocation, std::string& sTitle, std::string&, std::string&,
                     std::string&, int32_t&, std::string&, std::string&, std::string&,
                     int32_t&) override;

  bool silent = false;
  std::vector<Report> reports;
};

class ScopedHandler {
 public:
  ScopedHandler();
  ~ScopedHandler();
  RecordingHandler& operator*() { return *handler_; }
  RecordingHandler* operator->() { return handler_.get(); }
  const std::vector<Report>& reports() const { return handler_->reports; }
  // The locations reported so far, without the "Office Template - " prefix.
  std::vector<std::string> Locations() const;
  // Every report so far as "location #number", so one expectation pins both.
  std::vector<std::string> LocationsAndNumbers() const;

 private:
  std::shared_ptr<RecordingHandler> handler_;
  std::shared_ptr<IErrorHandler> previous_;
};

// Captures every message shown on this thread while alive.
class ScopedMessageCapture {
 public:
  ScopedMessageCapture();
  ~ScopedMessageCapture();
  const std::vector<MessageBoxRequest>& messages() const { return *messages_; }

 private:
  std::shared_ptr<std::vector<MessageBoxRequest>> messages_;
  MessageBoxService previous_;
};

// A fresh empty folder under the system temporary folder, removed with the object.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  const std::string& path() const { return path_; }
  std::string File(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

// Points TMPDIR, and with it the library's temporary folder, at `folder` while alive, so a test
// sees every temporary file the library leaves there and nothing of tests running beside it.
class ScopedTmpdir {
 public:
  explicit ScopedTmpdir(const std::string& folder);
  ~ScopedTmpdir();
  ScopedTmpdir(const ScopedTmpdir&) = delete;
  ScopedTmpdir& operator=(const ScopedTmpdir&) = delete;

 private:
  std::optional<std::string> previous_;
};

std::string ReadFileBytes(const std::string& path);
void WriteFileBytes(const std::string& path, const std::string& bytes);

// Adds a question as the reader does. Only for trees a file can hold but a host cannot build,
// since a host gets a region's questions from Update.
inline bool AddQuestion(clsXUNField& field, const std::shared_ptr<clsXUNQuestion>& question) {
  return xun::detail::QuestionsInternals::Add(*field.Questions(), question);
}

}  // namespace xun::testing

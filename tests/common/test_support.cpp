#include "common/test_support.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

namespace xun::testing {

Variant RecordingHandler::RaiseError(Variant& vNumber, int32_t& lKind, std::string& sDescription,
                                     std::string& sLocation, std::string& sTitle, std::string&,
                                     std::string&, std::string&, int32_t&, std::string&,
                                     std::string&, std::string&, int32_t&) {
  reports.push_back(Report{vNumber, lKind, sDescription, sLocation, sTitle, silent});
  return Variant(int16_t{0});
}

ScopedHandler::ScopedHandler()
    : handler_(std::make_shared<RecordingHandler>()), previous_(basError::Handler()) {
  basError::SetHandler(handler_);
}

ScopedHandler::~ScopedHandler() {
  basError::SetHandler(previous_);
}

std::vector<std::string> ScopedHandler::Locations() const {
  static const std::string kPrefix = "Office Template - ";
  std::vector<std::string> out;
  for (const Report& r : handler_->reports)
    out.push_back(r.location.rfind(kPrefix, 0) == 0 ? r.location.substr(kPrefix.size())
                                                    : r.location);
  return out;
}

std::vector<std::string> ScopedHandler::LocationsAndNumbers() const {
  std::vector<std::string> out = Locations();
  for (size_t i = 0; i < out.size(); ++i)
    out[i] += " #" + std::to_string(handler_->reports[i].number.ToLong());
  return out;
}

ScopedMessageCapture::ScopedMessageCapture()
    : messages_(std::make_shared<std::vector<MessageBoxRequest>>()) {
  auto sink = messages_;
  previous_ = basError::SetMessageBox(
      [sink](const MessageBoxRequest& request) { sink->push_back(request); });
}

ScopedMessageCapture::~ScopedMessageCapture() {
  basError::SetMessageBox(previous_);
}

TempFolder::TempFolder() {
  std::random_device rd;
  std::ostringstream name;
  name << "xun-test-" << std::hex << rd() << rd();
  path_ = (std::filesystem::temp_directory_path() / name.str()).string();
  std::filesystem::create_directories(path_);
}

TempFolder::~TempFolder() {
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

ScopedTmpdir::ScopedTmpdir(const std::string& folder) {
  if (const char* old = std::getenv("TMPDIR")) previous_ = old;
  ::setenv("TMPDIR", folder.c_str(), 1);
}

ScopedTmpdir::~ScopedTmpdir() {
  if (previous_)
    ::setenv("TMPDIR", previous_->c_str(), 1);
  else
    ::unsetenv("TMPDIR");
}

std::string ReadFileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFileBytes(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace xun::testing

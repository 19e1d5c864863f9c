#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <random>
#include <regex>
#include <thread>

#include "common/test_support.h"
#include "xun/xun.h"

namespace xun {
namespace {

using testing::ReadFileBytes;
using testing::ScopedHandler;
using testing::ScopedMessageCapture;

std::string UniqueText(const std::string& stem) {
  std::random_device rd;
  return stem + " " + std::to_string(rd()) + std::to_string(rd());
}

// The line of Error.log holding `needle`, decoded; empty when absent.
std::string LogLineWith(const std::string& needle) {
  const std::string bytes = ReadFileBytes(basError::LogFilePath().string());
  EXPECT_EQ(bytes.substr(0, 2), "\xFF\xFE") << "the log is UTF-16LE with a byte-order mark";
  const std::string all = text::Utf16LEBytesToUtf8(bytes.substr(2));
  const size_t at = all.find(needle);
  if (at == std::string::npos) return {};
  const size_t start = all.rfind("\r\n", at);
  const size_t begin = start == std::string::npos ? 0 : start + 2;
  return all.substr(begin, all.find("\r\n", at) + 2 - begin);
}

TEST(ErrorReporter, LogLineWithoutHandler) {
  ScopedMessageCapture messages;
  const std::string description = UniqueText("File not found");
  EXPECT_EQ(basError::ReportError(0, Variant(53), 0, description, "clsXUNTemplate.Read", "", "", "",
                                  "", 1, "", "", "", 0, Variant(false)),
            0);
  const std::string line = LogLineWith(description);
  const std::regex expected("Error# 53: " + description +
                            ", Location: Office Template - clsXUNTemplate\\.Read, Time: "
                            "\\d{1,2}/\\d{1,2}/\\d{4} \\d{1,2}:\\d{2}:\\d{2} [AP]M\r\n");
  EXPECT_TRUE(std::regex_match(line, expected)) << line;
  EXPECT_TRUE(messages.messages().empty()) << "nothing is shown when the log is written";
  EXPECT_EQ(basError::LogFilePath().parent_path(), basError::LibraryFolder());
}

TEST(ErrorReporter, ValidationMessageWithoutNumberIsLogged) {
  const std::string description = UniqueText("The specified template was opened for reading only");
  basError::ReportError(0, Variant::Missing(), basError::kKindValidation, description,
                        "clsXUNTemplate.Save", "Read Only");
  EXPECT_EQ(LogLineWith(description).rfind("Error# : " + description + ", Location:", 0), 0u);
}

TEST(ErrorReporter, LineNumberOnlyWhenKnown) {
  EXPECT_EQ(basError::FullLocation("clsXUNTemplate.Read", 12),
            "Office Template - clsXUNTemplate.Read; Line: 12");
  EXPECT_EQ(basError::FullLocation("clsXUNTemplate.Read", 0),
            "Office Template - clsXUNTemplate.Read");
  EXPECT_EQ(basError::FullLocation("clsXUNTemplate.Read", -3),
            "Office Template - clsXUNTemplate.Read");
}

TEST(ErrorReporter, HandlerGetsTheReportAndItsSilentBack) {
  ScopedHandler handler;
  handler->silent = false;
  basError::ReportError(7, Variant(5), 2, "text", "clsXUNPage.Copy", "Title", "", "", "", 1, "", "",
                        "", 0, Variant(true));
  ASSERT_EQ(handler.reports().size(), 1u);
  const testing::Report& r = handler.reports()[0];
  EXPECT_EQ(r.number, Variant(5));
  EXPECT_EQ(r.kind, 2);
  EXPECT_EQ(r.description, "text");
  EXPECT_EQ(r.location, "Office Template - clsXUNPage.Copy; Line: 7");
  EXPECT_EQ(r.title, "Title");
  EXPECT_TRUE(r.silent_during_call);
  EXPECT_FALSE(handler->silent);

  handler->silent = true;
  basError::ReportError(0, Variant(5), 0, "text", "x.y");  // vSilent missing: untouched
  EXPECT_TRUE(handler.reports()[1].silent_during_call);
  EXPECT_TRUE(handler->silent);
}

// A handler that answers with whatever it is given, or throws.
class ScriptedHandler : public IErrorHandler {
 public:
  bool Silent() override { return silent; }
  void Silent(bool value) override { silent = value; }
  Variant RaiseError(Variant&, int32_t&, std::string&, std::string&, std::string&, std::string&,
                     std::string&, std::string&, int32_t&, std::string&, std::string&, std::string&,
                     int32_t&) override {
    if (throw_host) throw HostError(1001, "host says no");
    return answer;
  }
  bool silent = false;
  bool throw_host = false;
  Variant answer = Variant(int16_t{0});
};

class HandlerWithoutRaiseError : public IErrorHandler {
 public:
  bool Silent() override { return false; }
  void Silent(bool) override {}
};

TEST(ErrorReporter, HandlerAnswerIsTheResult) {
  auto handler = std::make_shared<ScriptedHandler>();
  basError::SetHandler(handler);
  handler->answer = Variant(2.5);
  EXPECT_EQ(basError::ReportError(0, Variant(5), 0, "d", "x.y"), 2);
  basError::SetHandler(nullptr);
}

TEST(ErrorReporter, FallbackMessageWhenTheHandlerFails) {
  ScopedMessageCapture messages;
  basError::SetHandler(std::make_shared<HandlerWithoutRaiseError>());
  EXPECT_EQ(basError::ReportError(0, Variant(9), 0, "Subscript out of range", "clsXUNPages.Item"),
            0);

  auto scripted = std::make_shared<ScriptedHandler>();
  scripted->answer = Variant("not a number");
  scripted->silent = true;
  basError::SetHandler(scripted);
  basError::ReportError(0, Variant(5), 0, "d", "a.b", "", "", "", "", 1, "", "", "", 0,
                        Variant(false));
  EXPECT_TRUE(scripted->silent) << "Silent restored after a failed answer";
  basError::SetHandler(nullptr);

  ASSERT_EQ(messages.messages().size(), 2u);
  const MessageBoxRequest& m = messages.messages()[0];
  EXPECT_EQ(m.title, "Application Error");
  EXPECT_EQ(m.icon, MessageBoxIcon::Exclamation);
  EXPECT_EQ(m.text,
            "Application error: (#438) Object doesn't support this property or method occurred "
            "while trying to display:\r\n\r\nError# 9: Subscript out of range, Location: Office "
            "Template - clsXUNPages.Item");
  EXPECT_EQ(messages.messages()[1].text.rfind("Application error: (#13) Type mismatch", 0), 0u);
}

TEST(ErrorReporter, HostErrorPassesThroughWithSilentRestored) {
  auto handler = std::make_shared<ScriptedHandler>();
  handler->throw_host = true;
  basError::SetHandler(handler);
  EXPECT_THROW(basError::ReportError(0, Variant(5), 0, "d", "x.y", "", "", "", "", 1, "", "", "", 0,
                                     Variant(true)),
               HostError);
  EXPECT_FALSE(handler->silent);
  // Through a trap as well: the host's error reaches the caller unchanged.
  try {
    Trap("clsXUNTemplate.Clear", [] { Raise(kErrSubscript); });
    ADD_FAILURE() << "HostError expected";
  } catch (const HostError& e) {
    EXPECT_EQ(e.Number(), 1001);
  }
  basError::SetHandler(nullptr);
}

TEST(ErrorReporter, HandlerSlotIsPerThread) {
  ScopedHandler handler;
  const std::string description = UniqueText("from another thread");
  std::thread([&] { basError::ReportError(0, Variant(5), 0, description, "x.y"); }).join();
  EXPECT_TRUE(handler.reports().empty());
  EXPECT_FALSE(LogLineWith(description).empty());
}

TEST(Trap, ReportsAndReturnsTheEmptyResult) {
  ScopedHandler handler;
  EXPECT_EQ(Trap("basPublic.Encrypt", std::string("fallback"),
                 []() -> std::string { Raise(kErrInvalidPropertyValue); }),
            "fallback");
  EXPECT_EQ(Trap("a.NoMemory", 0, []() -> int { throw std::bad_alloc(); }), 0);
  EXPECT_FALSE(
      Trap("a.Missing", [] { (void)std::filesystem::file_size("/nonexistent/xun/file"); }));
  EXPECT_TRUE(Trap("a.Fine", [] {}));
  ASSERT_EQ(handler.reports().size(), 3u);
  EXPECT_EQ(handler.reports()[0].number, Variant(380));
  EXPECT_EQ(handler.reports()[0].description, "Invalid property value");
  EXPECT_EQ(handler.reports()[0].kind, 0);
  EXPECT_EQ(handler.reports()[0].title, "");
  EXPECT_EQ(handler.reports()[1].number, Variant(7));
  EXPECT_EQ(handler.reports()[2].number, Variant(53));
  EXPECT_EQ(handler.Locations(),
            (std::vector<std::string>{"basPublic.Encrypt", "a.NoMemory", "a.Missing"}));
}

}  // namespace
}  // namespace xun

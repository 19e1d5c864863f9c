#include "xun/templatefile/file_layer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "common/test_support.h"
#include "xun/templatefile/bas_template.h"
#include "xun/xun.h"

namespace xun {
namespace {

namespace fs = std::filesystem;
using basTemplate::detail::FaultPlan;
using testing::ReadFileBytes;
using testing::ScopedHandler;
using testing::TempFolder;

std::set<std::string> FolderNames(const TempFolder& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder.path()))
    names.insert(entry.path().filename().string());
  return names;
}

std::shared_ptr<clsXUNTemplate> SmallTemplate() {
  auto form = clsXUNTemplate::Create();
  auto page = clsXUNPage::Create();
  form->Pages()->Add(page);
  auto field = clsXUNField::Create();
  field->FieldName("R1");
  page->Fields()->Add(field);
  return form;
}

struct ClearFaults {
  ~ClearFaults() { basTemplate::detail::SetFaultPlanForTesting(std::nullopt); }
};

TEST(FileLayer, EveryFailedStepLeavesTheOldFileAndNoTemporary) {
  const char* names[] = {"write", "flush", "close", "rename"};
  for (FaultPlan::Op op : {FaultPlan::Write, FaultPlan::Flush, FaultPlan::Close, FaultPlan::Rename})
    for (bool persistent : {false, true}) {
      SCOPED_TRACE(std::string(names[op]) + (persistent ? " persistent" : " once"));
      ScopedHandler handler;
      TempFolder folder;
      ClearFaults clear;
      const std::string target = folder.File("form.omr");
      testing::WriteFileBytes(target, "[Form]\r\nName=good\r\n");
      basTemplate::detail::SetFaultPlanForTesting(FaultPlan{op, 1, persistent});
      EXPECT_FALSE(basTemplate::SaveTemplate(target, *SmallTemplate(), false, nullptr, false));
      EXPECT_EQ(ReadFileBytes(target), "[Form]\r\nName=good\r\n");
      EXPECT_EQ(FolderNames(folder), (std::set<std::string>{"form.omr", "form.omr.old"}));
      EXPECT_EQ(handler.Locations(), std::vector<std::string>{"basTemplate.SaveTemplate"});
    }
}

TEST(FileLayer, LaterCallFailsOnlyWhenPlanned) {
  ScopedHandler handler;
  TempFolder folder;
  ClearFaults clear;
  const std::string target = folder.File("data.bin");
  // The plan names the second write; one write per sink means the first sink succeeds.
  basTemplate::detail::SetFaultPlanForTesting(FaultPlan{FaultPlan::Write, 2, false});
  basTemplate::detail::ReplaceFileContent(target, "one");
  EXPECT_EQ(ReadFileBytes(target), "one");
  EXPECT_EQ(testing::RaisedError([&] { basTemplate::detail::ReplaceFileContent(target, "two"); }),
            kErrDeviceIO);
  basTemplate::detail::ReplaceFileContent(target, "three");  // a one-off fault is spent
  EXPECT_EQ(ReadFileBytes(target), "three");
  EXPECT_EQ(FolderNames(folder), std::set<std::string>{"data.bin"});
}

TEST(FileLayer, DroppedSinkRemovesItsTemporaryAndKeepsMode) {
  TempFolder folder;
  const std::string target = folder.File("data.bin");
  testing::WriteFileBytes(target, "kept");
  fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
  {
    basTemplate::detail::FileSink sink(target);
    sink.Write("never committed");
  }
  EXPECT_EQ(ReadFileBytes(target), "kept");
  EXPECT_EQ(FolderNames(folder), std::set<std::string>{"data.bin"});
  basTemplate::detail::ReplaceFileContent(target, "new");
  EXPECT_EQ(fs::status(target).permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write);
}

}  // namespace
}  // namespace xun

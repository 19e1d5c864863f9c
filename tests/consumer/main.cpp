// Links the installed library through its umbrella header alone. Every check crosses the shared
// library boundary, so a symbol left hidden or a header left out of the install fails here.
#include <xun/xun.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

namespace {

int failures = 0;

void Check(bool ok, const char* what) {
  if (!ok) {
    std::cerr << "consumer: failed: " << what << '\n';
    ++failures;
  }
}

// A white 1-bit PCX page of 16 x 8 pixels: the header, then each line's two bytes run-length
// coded.
void WriteBlankPcx(const std::string& path) {
  std::string pcx(128, '\0');
  pcx[0] = 0x0A;  // manufacturer
  pcx[1] = 5;     // version
  pcx[2] = 1;     // run-length coded
  pcx[3] = 1;     // bits per pixel
  pcx[8] = 15;    // right edge
  pcx[10] = 7;    // bottom edge
  pcx[12] = 100;  // dots per inch
  pcx[14] = 100;
  pcx[65] = 1;  // planes
  pcx[66] = 2;  // bytes per line
  for (int line = 0; line < 8; ++line)
    pcx += "\xC2\xFF";
  std::ofstream(path, std::ios::binary) << pcx;
}

}  // namespace

int main() {
  auto dictionary = xun::Dictionary::Create();
  Check(dictionary != nullptr, "Dictionary::Create");
  if (dictionary) {
    dictionary->Add("Answer", xun::Variant(int32_t{42}));
    dictionary->Item("Name", xun::Variant("Sheet 1"));
    Check(dictionary->Count() == 2, "Dictionary count");
    Check(dictionary->Item("Answer").ToLong() == 42, "Dictionary item");
    Check(!dictionary->Exists("answer"), "Dictionary keys are case-sensitive");
  }

  Check(xun::Variant("12").ToDouble() == 12.0, "Variant text to number");

  // Key folding and the raised error live in the library; the exception type must be shared.
  xun::OrderedKeyedCollection<int> list;
  list.Add(1, "first");
  list.Add(2, "Second");
  Check(list.Item("SECOND") == 2, "keyed collection fetch by key");
  Check(list.Item(1) == 1, "keyed collection fetch by position");
  int32_t number = 0;
  try {
    list.Add(3, "FIRST");
  } catch (const xun::RuntimeError& error) {
    number = error.Number();
  }
  Check(number == xun::kErrDuplicateKey, "duplicate key raises error 457");

  const std::string location = xun::basError::FullLocation("x.y", 3);
  Check(location.ends_with("x.y; Line: 3"), "basError::FullLocation");

  // The image module is opened beside the installed library: importing a page image needs it.
  const std::string pcx = xun::basPublic::GetUniqueFileName(
      "xun", ".pcx", std::filesystem::temp_directory_path().string());
  WriteBlankPcx(pcx);
  auto form = xun::clsXUNTemplate::Create();
  auto page = xun::clsXUNPage::Create();
  form->Pages()->Add(page);
  Check(page->ImageImport(pcx), "ImageImport through the installed image module");
  Check(page->ImageWidth() == 16 && page->ImageHeight() == 8 && page->XDPI() == 100,
        "the imported page's size and resolution");
  form->Free();
  std::filesystem::remove(pcx);

  if (failures == 0) std::cout << "consumer: ok\n";
  return failures == 0 ? 0 : 1;
}

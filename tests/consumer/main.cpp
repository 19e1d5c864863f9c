// Links the installed library through its umbrella header alone. Every check crosses the shared
// library boundary, so a symbol left hidden or a header left out of the install fails here.
#include <xun/xun.h>

#include <cstdint>
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

  if (failures == 0) std::cout << "consumer: ok\n";
  return failures == 0 ? 0 : 1;
}

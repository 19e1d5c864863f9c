// A dictionary as one line of text and back, and its shallow copy.
#include <string>
#include <string_view>
#include <vector>

#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/support/value_helpers.h"

namespace xun::basPublic {

std::string DictionaryToString(const DictionaryPtr& oDictionary, const std::string& sDelimiter,
                               const std::string& sSeparator, bool bKeysOnly) {
  return Trap("basPublic.DictionaryToString", std::string{}, [&] {
    if (!oDictionary) Raise(kErrObjectNotSet);
    std::string out;
    for (const std::string& key : oDictionary->Keys()) {
      if (key.empty()) continue;
      if (bKeysOnly) {
        out += key;
        out += sDelimiter;
        continue;
      }
      const Variant item = oDictionary->Item(key);
      // Only values with a text form are written; objects, arrays, errors, Empty and Null are not.
      if (!(item.IsNumber() || item.Kind() == VariantKind::String)) continue;
      out += key;
      out += sSeparator;
      out += item.ToText();
      out += sDelimiter;
    }
    return RemoveTrailingDelimiter(out, sDelimiter, 1);
  });
}

void StringToDictionary(const std::string& sText, DictionaryPtr& oDictionary,
                        const std::string& sDelimiter, const std::string& sSeparator) {
  Trap("basPublic.StringToDictionary", [&] {
    if (!oDictionary || sText.empty()) return;
    DictionaryPtr parsed = Dictionary::Create();
    // With no delimiter or separator there is nothing to split on: the result is empty.
    if (!sDelimiter.empty() && !sSeparator.empty()) {
      for (const std::string_view entry : text::Split(sText, sDelimiter)) {
        const size_t at = entry.find(sSeparator);
        if (at == std::string_view::npos) continue;
        // Add, not Item: a duplicate key must fail and leave the caller's dictionary alone.
        parsed->Add(std::string(entry.substr(0, at)),
                    Variant(entry.substr(at + sSeparator.size())));
      }
    }
    oDictionary = std::move(parsed);
  });
}

DictionaryPtr CopyDictionary(const DictionaryPtr& oSource) {
  return Trap("basPublic.CopyDictionary", DictionaryPtr{}, [&] {
    if (!oSource) Raise(kErrObjectNotSet);
    DictionaryPtr copy = Dictionary::Create();
    // A Variant copy shares an object item and copies any other value.
    for (const std::string& key : oSource->Keys())
      copy->Item(key, oSource->Item(key));
    return copy;
  });
}

}  // namespace xun::basPublic

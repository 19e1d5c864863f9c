// The keys of each section of a template file, each listed once with everything about it: the
// spelling written, an older spelling also read, the object property it fills, how its value is
// cleaned and converted, and which region kinds write it. The reader and the writer both walk
// these tables, so a key cannot be written without being read back.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "xun/model/properties.h"
#include "xun/templatefile/template_reader.h"
#include "xun/templatefile/write_sections.h"

namespace xun::basTemplate::detail {

// The region kinds whose settings a [Field] key carries (the table in docs/template-file.md).
enum RegionKind : uint8_t {
  kKindOMR = 1,
  kKindOCR = 2,
  kKindBarcode = 4,
  kKindImageClip = 8,    // image regions of field types 1 and 2
  kKindImageEntry = 16,  // image regions of field type 3
  kKindImageOther = 32,  // image regions of any other field type
  kKindOther = 64,       // no recognition type the library knows
};
inline constexpr uint8_t kEveryKind = 127;
inline constexpr uint8_t kImageKinds = kKindImageClip | kKindImageEntry | kKindImageOther;
uint8_t RegionKindOf(const clsXUNField& field);

// How a key's value is written and read.
enum class ValueForm : uint8_t {
  kValue,     // by the property's type: cleaned text, flag, whole number or number
  kName,      // text cleaned with the name characters as well
  kTabsKept,  // text cleaned with its tabs kept (a tab-separated list held as one text)
  kFlag,      // a whole number the file holds as a Boolean: written as held, read as -1 or 0
  kInfo,      // written for people and never read back
  kCustom,    // the entry's own functions
};

using Written = std::optional<std::string>;

template <class O>
struct SectionKey {
  std::string_view key;      // as written; matched in upper case
  std::string_view synonym;  // an older spelling the reader takes too (upper case), or empty
  const properties::Property<O>* property = nullptr;
  ValueForm form = ValueForm::kValue;
  // The region kinds that write the key (for regions; every other section uses kEveryKind); 0
  // for a key only read.
  uint8_t kinds = kEveryKind;
  // kCustom and kInfo: the value to write (nullopt: the key is left out); kCustom: the reading
  // of a value (false stops the read; nullptr: never read back).
  Written (*write)(const O&) = nullptr;
  bool (*read)(O&, std::string_view value, ReaderContext& ctx) = nullptr;
};

std::span<const SectionKey<clsXUNTemplate>> FormKeys();
std::span<const SectionKey<clsXUNPage>> PageKeys();
std::span<const SectionKey<clsXUNField>> FieldKeys();
// Written after the region's own keys, only for a region whose DBVerify is true.
std::span<const SectionKey<clsXUNFieldDB>> DatabaseKeys();
std::span<const SectionKey<clsXUNQuestion>> QuestionKeys();

// Files list a section's keys in table order, so a section's reader keeps where the key after the
// one found last stands and tries it before the hash table.
struct KeyHint {
  size_t next = 0;
};

// The entry of the section for a key as written (any case), or nullptr.
const SectionKey<clsXUNTemplate>* FindFormKey(std::string_view key, KeyHint* hint = nullptr);
const SectionKey<clsXUNPage>* FindPageKey(std::string_view key, KeyHint* hint = nullptr);
const SectionKey<clsXUNField>* FindFieldKey(std::string_view key, KeyHint* hint = nullptr);
const SectionKey<clsXUNFieldDB>* FindDatabaseKey(std::string_view key, KeyHint* hint = nullptr);
const SectionKey<clsXUNQuestion>* FindQuestionKey(std::string_view key, KeyHint* hint = nullptr);

// Reads one value into `object` as the entry says; false stops the read.
template <class O>
bool ReadKeyValue(const SectionKey<O>& entry, O& object, std::string_view value,
                  ReaderContext& ctx);
// Writes every key of `keys` that region kind `kind` writes, in table order.
template <class O>
void WriteKeys(TemplateText& out, std::span<const SectionKey<O>> keys, const O& object,
               uint8_t kind = kEveryKind);

// The names of the older region keys kept as named extra values of the region.
inline constexpr const char* kExtraIDAdd = "IDAdd";
inline constexpr const char* kExtraIDType = "IDType";
inline constexpr const char* kExtraIDValue = "IDValue";
inline constexpr const char* kExtraTestVersionID = "TestVersionID";
inline constexpr const char* kExtraImageFillValue = "ImageFillValue";

}  // namespace xun::basTemplate::detail

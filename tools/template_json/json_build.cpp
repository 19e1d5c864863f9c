#include <cmath>
#include <filesystem>
#include <limits>
#include <map>
#include <set>
#include <type_traits>

#include "json_document.h"
#include "json_properties.h"
#include "template_guard.h"

namespace xuntool {
namespace {

namespace fs = std::filesystem;

// Reads one JSON object: every key must be known, every value of the right kind. Failures name
// the JSON pointer of the value, so a script author finds it at once.
class ObjectReader {
 public:
  ObjectReader(const Json& object, std::string path, const std::string& document)
      : object_(object), path_(std::move(path)), document_(document) {
    if (!object_.is_object()) Fail(path_, "expected an object");
  }

  [[noreturn]] void Fail(const std::string& where, const std::string& what) const {
    throw JsonError(document_ + ": " + (where.empty() ? "/" : where) + ": " + what);
  }

  // The value under `name`, or nullptr when absent; marks the key as known.
  const Json* Find(const std::string& name) {
    known_.insert(name);
    const auto found = object_.find(name);
    return found == object_.end() ? nullptr : &*found;
  }
  std::string PathOf(const std::string& name) const { return path_ + "/" + name; }

  // A property of the library's lists: checked against the kind of value it holds.
  template <class T, class F>
  void Value(const std::string& name, const T&, F&& set) {
    const Json* value = Find(name);
    if (!value) return;
    if constexpr (std::is_same_v<T, std::string>) {
      if (!value->is_string()) Fail(PathOf(name), "expected a string");
      set(value->get<std::string>());
    } else if constexpr (std::is_same_v<T, bool>) {
      if (!value->is_boolean()) Fail(PathOf(name), "expected true or false");
      set(value->get<bool>());
    } else if constexpr (std::is_integral_v<T>) {
      const int64_t low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
      set(static_cast<T>(IntegerAt(*value, PathOf(name), low, high)));
    } else if constexpr (std::is_same_v<T, float>) {
      const double d = Number(*value, name);
      if (std::fabs(d) > std::numeric_limits<float>::max())
        Fail(PathOf(name), "number too large for a single-precision value");
      set(static_cast<float>(d));
    } else {
      set(Number(*value, name));
    }
  }
  // A whole number outside the property lists (a timing mark's numbers).
  void Int16(const char* name, int16_t& out) {
    if (const Json* value = Find(name))
      out = static_cast<int16_t>(IntegerAt(*value, PathOf(name), INT16_MIN, INT16_MAX));
  }
  template <class T>
  void ReadOnly(const char* name, const T&) {
    known_.insert(name);
  }

  // Refuses keys nobody asked for: a misspelt key would otherwise be lost without a word.
  void RejectUnknown() const {
    for (const auto& [key, value] : object_.items())
      if (!known_.count(key)) Fail(PathOf(key), "unknown key");
  }

  int64_t IntegerAt(const Json& value, const std::string& where, int64_t low, int64_t high) const {
    const std::string expected =
        "expected a whole number from " + std::to_string(low) + " to " + std::to_string(high);
    if (!value.is_number_integer()) Fail(where, expected);
    if (value.is_number_unsigned() && value.get<uint64_t>() > static_cast<uint64_t>(high))
      Fail(where, expected);
    const int64_t n = value.get<int64_t>();
    if (n < low || n > high) Fail(where, expected);
    return n;
  }

 private:
  double Number(const Json& value, const std::string& name) const {
    if (!value.is_number()) Fail(PathOf(name), "expected a number");
    const double d = value.get<double>();
    if (!std::isfinite(d)) Fail(PathOf(name), "expected a finite number");
    return d;
  }

  const Json& object_;
  std::string path_;
  const std::string& document_;
  std::set<std::string> known_;
};

const Json& ArrayAt(ObjectReader& reader, const char* name, const Json& empty) {
  const Json* value = reader.Find(name);
  if (!value) return empty;
  if (!value->is_array()) reader.Fail(reader.PathOf(name), "expected an array");
  return *value;
}

void ReadAttributes(ObjectReader& reader, const xun::DictionaryPtr& dictionary) {
  const Json* value = reader.Find("Attributes");
  if (!value) return;
  const std::string path = reader.PathOf("Attributes");
  if (!value->is_object()) reader.Fail(path, "expected an object");
  for (const auto& [key, item] : value->items()) {
    if (item.is_string()) {
      dictionary->Item(key, xun::Variant(item.get<std::string>()));
    } else if (item.is_boolean()) {
      dictionary->Item(key, xun::Variant(item.get<bool>()));
    } else if (item.is_number_integer() && item.get<int64_t>() >= INT32_MIN &&
               item.get<int64_t>() <= INT32_MAX && !item.is_number_unsigned()) {
      dictionary->Item(key, xun::Variant(item.get<int32_t>()));
    } else if (item.is_number()) {
      dictionary->Item(key, xun::Variant(item.get<double>()));
    } else {
      reader.Fail(path + "/" + key, "expected a string, number or true/false");
    }
  }
}

void ReadStrings(ObjectReader& reader, const char* name,
                 const std::shared_ptr<xun::clsXUNStringItems>& list) {
  static const Json empty = Json::array();
  const Json& items = ArrayAt(reader, name, empty);
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (!items[i].is_string())
      reader.Fail(reader.PathOf(name) + "/" + std::to_string(i), "expected a string");
    list->Add(items[i].get<std::string>());
  }
}

// The page owns its image file and deletes it when freed, so it gets a copy of its own.
void ReadPageImage(ObjectReader& reader, xun::clsXUNPage& page, const std::string& folder) {
  const Json* value = reader.Find("ImageFile");
  reader.Find("HasImage");
  if (!value) return;
  if (!value->is_string()) reader.Fail(reader.PathOf("ImageFile"), "expected a string");
  const std::string name = value->get<std::string>();
  if (name.empty()) return;
  fs::path source(name);
  if (source.is_relative() && !folder.empty()) source = fs::path(folder) / source;
  std::error_code ec;
  if (!fs::is_regular_file(source, ec))
    reader.Fail(reader.PathOf("ImageFile"), "no such image file: " + source.string());
  const std::string own = xun::basPublic::GetUniqueFileName("", ".pcx", "");
  if (own.empty() || !fs::copy_file(source, own, ec))
    reader.Fail(reader.PathOf("ImageFile"), "cannot copy " + source.string());
  page.ImageFile(own);
}

// A question's key cannot change once it is in its list, and a host gets its questions from
// the region's Update: each keeps the fresh key the list gave it. A region linked to a question
// by the key the document names is pointed at the new key afterwards.
using QuestionKeys = std::map<std::string, std::string>;

void BuildQuestion(xun::clsXUNQuestion& q, const Json& j, const std::string& path,
                   const std::string& document, QuestionKeys& keys) {
  ObjectReader reader(j, path, document);
  if (const Json* key = reader.Find("Key"); key && key->is_string())
    keys[key->get<std::string>()] = q.Key();
  props::Visit(reader, xun::properties::kQuestion, q);
  // The document's lists replace those Update made; absent, Update's stay.
  if (j.contains("Choices")) q.Choices()->RemoveAll();
  if (j.contains("Codes")) q.Codes()->RemoveAll();
  ReadStrings(reader, "Choices", q.Choices());
  ReadStrings(reader, "Codes", q.Codes());
  props::QuestionReadOnly(reader, q);
  reader.RejectUnknown();
}

std::shared_ptr<xun::clsXUNField> BuildField(const Json& j, const std::string& path,
                                             const std::string& document, QuestionKeys& keys) {
  static const Json empty = Json::array();
  auto f = xun::clsXUNField::Create();
  ObjectReader reader(j, path, document);
  props::Visit(reader, xun::properties::kField, *f);
  ReadAttributes(reader, f->Attributes());
  const Json& extra = ArrayAt(reader, "Extra", empty);
  for (std::size_t i = 0; i < extra.size(); ++i)
    f->Extra()->Add(static_cast<int16_t>(reader.IntegerAt(
        extra[i], reader.PathOf("Extra") + "/" + std::to_string(i), INT16_MIN, INT16_MAX)));
  if (const Json* named = reader.Find("NamedExtra")) {
    if (!named->is_object()) reader.Fail(reader.PathOf("NamedExtra"), "expected an object");
    for (const auto& [name, value] : named->items())
      f->Extra()->SetNamed(
          name, static_cast<int16_t>(reader.IntegerAt(
                    value, reader.PathOf("NamedExtra") + "/" + name, INT16_MIN, INT16_MAX)));
  }
  if (const Json* db = reader.Find("DB")) {
    ObjectReader dbr(*db, reader.PathOf("DB"), document);
    props::Visit(dbr, xun::properties::kFieldDB, *f->DB());
    ReadStrings(dbr, "ReturnFields", f->DB()->ReturnFields());
    dbr.RejectUnknown();
  }
  props::FieldReadOnly(reader, *f);
  // The questions the region's settings give, as for every host; the document then sets them.
  const Json& questions = ArrayAt(reader, "Questions", empty);
  if (!f->Questions()->Update())
    reader.Fail(reader.PathOf("Questions"), "the region's questions cannot be made");
  if (static_cast<std::size_t>(f->Questions()->Count()) != questions.size())
    reader.Fail(reader.PathOf("Questions"),
                "the region's settings give " + std::to_string(f->Questions()->Count()) +
                    " questions, the document has " + std::to_string(questions.size()));
  for (std::size_t i = 0; i < questions.size(); ++i)
    BuildQuestion(*f->Questions()->Item(static_cast<int32_t>(i + 1)), questions[i],
                  reader.PathOf("Questions") + "/" + std::to_string(i), document, keys);
  reader.RejectUnknown();
  return f;
}

std::shared_ptr<xun::clsXUNPage> BuildPage(const Json& j, const std::string& path,
                                           const std::string& document, const std::string& folder,
                                           QuestionKeys& keys) {
  static const Json empty = Json::array();
  auto page = xun::clsXUNPage::Create();
  // Until the page is in the template, nobody else would delete its image copy.
  struct FreeOnFailure {
    std::shared_ptr<xun::clsXUNPage> page;
    ~FreeOnFailure() {
      if (page) page->Free();
    }
  } cleanup{page};
  ObjectReader reader(j, path, document);
  props::Visit(reader, xun::properties::kPage, *page);
  ReadPageImage(reader, *page, folder);
  ReadAttributes(reader, page->Attributes());
  const Json& marks = ArrayAt(reader, "TimingMarks", empty);
  for (std::size_t i = 0; i < marks.size(); ++i) {
    ObjectReader mr(marks[i], reader.PathOf("TimingMarks") + "/" + std::to_string(i), document);
    int16_t left = 0, top = 0, width = 0, height = 0;
    mr.Int16("Left", left);
    mr.Int16("Top", top);
    mr.Int16("Width", width);
    mr.Int16("Height", height);
    mr.RejectUnknown();
    page->TimingMarks()->AddMark(left, top, width, height);
  }
  props::PageReadOnly(reader, *page);
  const Json& regions = ArrayAt(reader, "Regions", empty);
  for (std::size_t i = 0; i < regions.size(); ++i)
    page->Fields()->Add(
        BuildField(regions[i], reader.PathOf("Regions") + "/" + std::to_string(i), document, keys));
  reader.RejectUnknown();
  cleanup.page = nullptr;
  return page;
}

}  // namespace

std::shared_ptr<xun::clsXUNTemplate> BuildTemplate(const Json& document,
                                                   const std::string& document_folder,
                                                   const std::string& document_name) {
  static const Json empty = Json::array();
  ObjectReader top(document, "", document_name);
  const Json* format = top.Find("Format");
  if (!format || *format != kJsonFormat)
    top.Fail("/Format", std::string("expected \"") + kJsonFormat + "\" (made by xuntemplate dump)");
  const Json* version = top.Find("FormatVersion");
  if (!version || *version != kJsonFormatVersion)
    top.Fail("/FormatVersion", "expected " + std::to_string(kJsonFormatVersion));
  const Json* tj = top.Find("Template");
  if (!tj) top.Fail("/Template", "missing");
  top.RejectUnknown();

  auto t = xun::clsXUNTemplate::Create();
  TemplateGuard guard_on_failure(t);
  ObjectReader reader(*tj, "/Template", document_name);
  props::Visit(reader, xun::properties::kTemplate, *t);
  ReadAttributes(reader, t->Attributes());
  props::TemplateReadOnly(reader, *t);
  const Json& pages = ArrayAt(reader, "Pages", empty);
  QuestionKeys keys;
  for (std::size_t i = 0; i < pages.size(); ++i)
    t->Pages()->Add(BuildPage(pages[i], "/Template/Pages/" + std::to_string(i), document_name,
                              document_folder, keys));
  for (const auto& page : *t->Pages())
    for (const auto& field : *page->Fields())
      if (const auto found = keys.find(field->ImageLinkQuestionKey()); found != keys.end())
        field->ImageLinkQuestionKey(found->second);
  reader.RejectUnknown();
  guard_on_failure.Release();
  return t;
}

}  // namespace xuntool

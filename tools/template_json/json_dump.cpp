#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <type_traits>

#include "json_document.h"
#include "json_properties.h"

namespace xuntool {
namespace {

namespace fs = std::filesystem;

// A single as its shortest text reads back, so 0.167 is dumped as 0.167 and not as the double
// nearest to the single.
double ShortestSingle(float value) {
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::stod(std::string(buffer, result.ptr));
}

class DumpVisitor {
 public:
  explicit DumpVisitor(Json& out) : out_(out) {}
  template <class T, class F>
  void Value(const std::string& name, const T& value, F&&) {
    if constexpr (std::is_same_v<T, float>)
      out_[name] = ShortestSingle(value);
    else
      out_[name] = value;
  }
  template <class T>
  void ReadOnly(const char* name, const T& value) {
    out_[name] = value;
  }

 private:
  Json& out_;
};

Json Attributes(const xun::DictionaryPtr& dictionary) {
  Json out = Json::object();
  if (!dictionary) return out;
  for (const std::string& key : dictionary->Keys()) {
    const xun::Variant value = dictionary->Item(key);
    if (const auto* s = value.Get<std::string>()) {
      out[key] = *s;
    } else if (const auto* b = value.Get<bool>()) {
      out[key] = *b;
    } else if (const auto* i = value.Get<int16_t>()) {
      out[key] = *i;
    } else if (const auto* l = value.Get<int32_t>()) {
      out[key] = *l;
    } else if (const auto* d = value.Get<double>()) {
      out[key] = *d;
    } else {
      // Other kinds have no JSON counterpart; their text form is what the file would hold.
      try {
        out[key] = value.ToText();
      } catch (...) {
      }
    }
  }
  return out;
}

Json Strings(const std::shared_ptr<xun::clsXUNStringItems>& list) {
  Json out = Json::array();
  if (list)
    for (const std::string& s : *list)
      out.push_back(s);
  return out;
}

Json PageImage(const xun::clsXUNPage& page, int32_t number, const DumpOptions& options, Json& out) {
  std::error_code ec;
  const bool has = !page.ImageFile().empty() && fs::is_regular_file(page.ImageFile(), ec);
  out["HasImage"] = has;
  if (!has || options.images_folder.empty()) return "";
  fs::create_directories(options.images_folder, ec);
  // A key is any text a file held; only a plain one may name a file in the images folder.
  const std::string& key = page.Key();
  const bool plain =
      !key.empty() && key.size() <= 64 && std::all_of(key.begin(), key.end(), [](unsigned char c) {
        return std::isalnum(c) || c == '-' || c == '_';
      });
  const std::string stem = plain ? key : "page" + std::to_string(number);
  const fs::path copy = fs::path(options.images_folder) / (stem + ".pcx");
  fs::copy_file(page.ImageFile(), copy, fs::copy_options::overwrite_existing, ec);
  if (ec) throw JsonError(copy.string() + ": " + ec.message());
  const fs::path base = options.document_folder.empty() ? "." : options.document_folder;
  return fs::relative(fs::absolute(copy), fs::absolute(base)).generic_string();
}

}  // namespace

Json DumpTemplate(xun::clsXUNTemplate& t, const DumpOptions& options) {
  Json tj = Json::object();
  DumpVisitor tv(tj);
  props::Visit(tv, xun::properties::kTemplate, t);
  tj["Attributes"] = Attributes(t.Attributes());
  props::TemplateReadOnly(tv, t);
  Json pages = Json::array();
  int32_t number = 0;
  for (const auto& page : *t.Pages()) {
    Json pj = Json::object();
    DumpVisitor pv(pj);
    props::Visit(pv, xun::properties::kPage, *page);
    pj["ImageFile"] = "";
    pj["ImageFile"] = PageImage(*page, ++number, options, pj);
    pj["Attributes"] = Attributes(page->Attributes());
    Json marks = Json::array();
    if (page->TimingMarks())
      for (const auto& mark : *page->TimingMarks())
        marks.push_back({{"Left", mark->Left()},
                         {"Top", mark->Top()},
                         {"Width", mark->Width()},
                         {"Height", mark->Height()}});
    pj["TimingMarks"] = marks;
    props::PageReadOnly(pv, *page);
    Json regions = Json::array();
    for (const auto& field : *page->Fields()) {
      Json fj = Json::object();
      DumpVisitor fv(fj);
      props::Visit(fv, xun::properties::kField, *field);
      fj["Attributes"] = Attributes(field->Attributes());
      Json extra = Json::array();
      Json named = Json::object();
      if (const auto values = field->Extra()) {
        for (int32_t i = 1; i <= values->Count(); ++i) {
          if (const auto name = values->KeyOf(i))
            named[*name] = values->Item(i);
          else
            extra.push_back(values->Item(i));
        }
      }
      fj["Extra"] = extra;
      fj["NamedExtra"] = named;
      if (field->DB()) {
        Json dj = Json::object();
        DumpVisitor dv(dj);
        props::Visit(dv, xun::properties::kFieldDB, *field->DB());
        dj["ReturnFields"] = Strings(field->DB()->ReturnFields());
        fj["DB"] = dj;
      }
      props::FieldReadOnly(fv, *field);
      Json questions = Json::array();
      for (const auto& question : *field->Questions()) {
        Json qj = Json::object();
        DumpVisitor qv(qj);
        props::Visit(qv, xun::properties::kQuestion, *question);
        qj["Choices"] = Strings(question->Choices());
        qj["Codes"] = Strings(question->Codes());
        props::QuestionReadOnly(qv, *question);
        questions.push_back(std::move(qj));
      }
      fj["Questions"] = std::move(questions);
      regions.push_back(std::move(fj));
    }
    pj["Regions"] = std::move(regions);
    pages.push_back(std::move(pj));
  }
  tj["Pages"] = std::move(pages);
  return Json{{"Format", kJsonFormat}, {"FormatVersion", kJsonFormatVersion}, {"Template", tj}};
}

}  // namespace xuntool

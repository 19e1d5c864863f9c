// The [Question] section: a new question at the end of the current region.
#include <string>
#include <string_view>
#include <unordered_map>

#include "xun/model/template.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/template_reader.h"

namespace xun::basTemplate {
namespace detail {
namespace {

constexpr const char* kQuestionErrorText =
    "An error occurred reading the [Question] section of the template file. One or more question "
    "parameters are missing or invalid.";

// Each tab-separated item, cleaned with the list's own character codes.
void ReadItems(clsXUNStringItems& items, const std::string& value, const std::string& strip) {
  items.RemoveAll();
  for (const std::string_view item : text::Split(text::Trim(value), "\t"))
    items.Add(CleanText(item, true, strip));
}

// The keys a question shares with older region sections; false when the key is none of them.
bool ReadIdentificationKey(clsXUNQuestion& q, const std::string& key, const std::string& value) {
  if (key == "IDADD") {
    q.IDAdd(FlagValue(value));
  } else if (key == "IDTYPE") {
    q.IDType(static_cast<xunIDType>(Int16Value(value)));
  } else if (key == "IDVALUE") {
    q.IDValue(TextValue(value));
  } else if (key == "TESTVERSIONID") {
    q.TestVersionID(FlagValue(value));
  } else {
    return false;
  }
  return true;
}

using QuestionSetter = void (*)(clsXUNQuestion&, const clsXUNTemplate&, const std::string&);

// One hash probe per key line: questions make up nearly all of a large file, and a chain of
// string comparisons here was most of the time of a read.
const std::unordered_map<std::string_view, QuestionSetter>& QuestionSetters() {
  using Q = clsXUNQuestion;
  using T = clsXUNTemplate;
  using S = std::string;
  static const std::unordered_map<std::string_view, QuestionSetter> setters = {
      {"QUESTIONTEXT", [](Q& q, const T&, const S& v) { q.QuestionText(TextValue(v)); }},
      {"QUESTIONNAME", [](Q& q, const T& t,
                          const S& v) { q.QuestionName(TextValue(v, t.IllegalNameCharacters())); }},
      {"KEY", [](Q& q, const T&, const S& v) { q.Key(KeyValue(v)); }},
      {"TAG", [](Q& q, const T&, const S& v) { q.Tag(TextValue(v)); }},
      {"CHOICES", [](Q& q, const T& t,
                     const S& v) { ReadItems(*q.Choices(), v, t.IllegalLabelCharacters()); }},
      {"CODES",
       [](Q& q, const T& t, const S& v) { ReadItems(*q.Codes(), v, t.IllegalValueCharacters()); }},
      {"MULTSALLOWED", [](Q& q, const T&, const S& v) { q.MultsAllowed(Int16Value(v)); }},
      {"BLANKSFLAG",
       [](Q& q, const T&, const S& v) { q.BlanksFlag(static_cast<xunBlanksFlag>(Int16Value(v))); }},
      {"BLANKSRETURN", [](Q& q, const T&, const S& v) { q.BlanksReturn(TextValue(v)); }},
      {"DUPLICATERETURN", [](Q& q, const T&, const S& v) { q.DuplicateReturn(TextValue(v)); }},
      {"ERRORRETURN", [](Q& q, const T&, const S& v) { q.ErrorReturn(TextValue(v)); }},
      {"MULTSRETURN", [](Q& q, const T&, const S& v) { q.MultsReturn(TextValue(v)); }},
      {"DISCRIMINATE", [](Q& q, const T&, const S& v) { q.Discriminate(FlagValue(v)); }},
      {"NACHOICE", [](Q& q, const T&, const S& v) { q.NAChoice(Int16Value(v)); }},
      {"REQUIRED", [](Q& q, const T&, const S& v) { q.Required(FlagValue(v)); }},
      {"TALLY", [](Q& q, const T&, const S& v) { q.Tally(FlagValue(v)); }},
      {"GRADE", [](Q& q, const T&, const S& v) { q.Grade(FlagValue(v)); }},
      {"CORRECT", [](Q& q, const T&, const S& v) { q.Correct(NumberValue(v)); }},
      {"INCORRECT", [](Q& q, const T&, const S& v) { q.Incorrect(NumberValue(v)); }},
      {"EXTRACREDIT", [](Q& q, const T&, const S& v) { q.ExtraCredit(FlagValue(v)); }},
      {"NORESPONSE", [](Q& q, const T&, const S& v) { q.NoResponse(NumberValue(v)); }},
      {"RESPONDENTID", [](Q& q, const T&, const S& v) { q.RespondentID(FlagValue(v)); }},
      {"RUBRIC", [](Q& q, const T&, const S& v) { q.Rubric(FlagValue(v)); }},
      {"SUBJECTIVEFIELD", [](Q& q, const T&, const S& v) { q.SubjectiveField(FlagValue(v)); }},
      {"SUBJECTIVEPOINTS", [](Q& q, const T&, const S& v) { q.SubjectivePoints(NumberValue(v)); }},
  };
  return setters;
}

void ReadQuestionKey(clsXUNQuestion& q, const clsXUNTemplate& t, const std::string& key,
                     const std::string& value) {
  const auto& setters = QuestionSetters();
  if (const auto found = setters.find(key); found != setters.end())
    found->second(q, t, value);
  else
    ReadIdentificationKey(q, key, value);
}

}  // namespace

bool ReadQuestion(ReaderContext& ctx) {
  ctx.section_line = ctx.cursor.LineNumber();
  const auto pages = ctx.tmpl.Pages();
  const std::shared_ptr<clsXUNPage> page =
      pages && pages->Count() > 0 ? pages->Item(pages->Count()) : nullptr;
  const auto fields = page ? page->Fields() : nullptr;
  const std::shared_ptr<clsXUNField> field =
      fields && fields->Count() > 0 ? fields->Item(fields->Count()) : nullptr;
  if (!field) Raise(kErrObjectNotSet);  // a [Question] before any [Field]: not a template file

  const std::shared_ptr<clsXUNQuestion> question = clsXUNQuestion::Create();
  RegionCarriedValues own;  // which identification keys the question has itself
  ReadSectionKeys(ctx.cursor, [&](const std::string& key, const std::string& value) {
    if (key == "IDADD") own.id_add = value;
    if (key == "IDTYPE") own.id_type = value;
    if (key == "IDVALUE") own.id_value = value;
    if (key == "TESTVERSIONID") own.test_version_id = value;
    ReadQuestionKey(*question, ctx.tmpl, key, value);
    return true;
  });
  // Older files keep these on the region; the question's own key wins.
  if (const auto found = ctx.carried.find(field.get()); found != ctx.carried.end()) {
    const RegionCarriedValues& region = found->second;
    if (region.id_add && !own.id_add) ReadIdentificationKey(*question, "IDADD", *region.id_add);
    if (region.id_type && !own.id_type) ReadIdentificationKey(*question, "IDTYPE", *region.id_type);
    if (region.id_value && !own.id_value)
      ReadIdentificationKey(*question, "IDVALUE", *region.id_value);
    if (region.test_version_id && !own.test_version_id)
      ReadIdentificationKey(*question, "TESTVERSIONID", *region.test_version_id);
  }

  // Added after the keys: a question's key cannot change once it is in the list.
  field->Questions()->Add(question);
  if (!CheckQuestionRequired(*question)) {
    FailRead("Question Error",
             std::string(kQuestionErrorText) + "\r\n\r\nRegion Name: " + field->FieldName() +
                 "\r\n\r\nPage: " + std::to_string(pages->Count()) +
                 "\r\nRegion: " + std::to_string(fields->Count()) +
                 "\r\nQuestion: " + std::to_string(field->Questions()->Count()) + ".",
             "basTemplate.ReadQuestion", ctx.section_line);
    return false;
  }
  return true;
}

}  // namespace detail

}  // namespace xun::basTemplate

// The [Question] section: a new question at the end of the current region.
#include <string>

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

void ReadQuestionKey(clsXUNQuestion& q, const clsXUNTemplate& t, const std::string& key,
                     const std::string& value) {
  if (key == "QUESTIONTEXT") {
    q.QuestionText(TextValue(value));
  } else if (key == "QUESTIONNAME") {
    q.QuestionName(TextValue(value, t.IllegalNameCharacters()));
  } else if (key == "KEY") {
    q.Key(TextValue(value));
  } else if (key == "TAG") {
    q.Tag(TextValue(value));
  } else if (key == "CHOICES") {
    ReadItems(*q.Choices(), value, t.IllegalLabelCharacters());
  } else if (key == "CODES") {
    ReadItems(*q.Codes(), value, t.IllegalValueCharacters());
  } else if (key == "MULTSALLOWED") {
    q.MultsAllowed(Int16Value(value));
  } else if (key == "BLANKSFLAG") {
    q.BlanksFlag(static_cast<xunBlanksFlag>(Int16Value(value)));
  } else if (key == "BLANKSRETURN") {
    q.BlanksReturn(TextValue(value));
  } else if (key == "DUPLICATERETURN") {
    q.DuplicateReturn(TextValue(value));
  } else if (key == "ERRORRETURN") {
    q.ErrorReturn(TextValue(value));
  } else if (key == "MULTSRETURN") {
    q.MultsReturn(TextValue(value));
  } else if (key == "DISCRIMINATE") {
    q.Discriminate(FlagValue(value));
  } else if (key == "NACHOICE") {
    q.NAChoice(Int16Value(value));
  } else if (key == "REQUIRED") {
    q.Required(FlagValue(value));
  } else if (key == "TALLY") {
    q.Tally(FlagValue(value));
  } else if (key == "GRADE") {
    q.Grade(FlagValue(value));
  } else if (key == "CORRECT") {
    q.Correct(NumberValue(value));
  } else if (key == "INCORRECT") {
    q.Incorrect(NumberValue(value));
  } else if (key == "EXTRACREDIT") {
    q.ExtraCredit(FlagValue(value));
  } else if (key == "NORESPONSE") {
    q.NoResponse(NumberValue(value));
  } else if (key == "RESPONDENTID") {
    q.RespondentID(FlagValue(value));
  } else if (key == "RUBRIC") {
    q.Rubric(FlagValue(value));
  } else if (key == "SUBJECTIVEFIELD") {
    q.SubjectiveField(FlagValue(value));
  } else if (key == "SUBJECTIVEPOINTS") {
    q.SubjectivePoints(NumberValue(value));
  } else {
    ReadIdentificationKey(q, key, value);
  }
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

// For OMR regions of the kinds 1 to 7 (multiple, grid, add, boolean, binary, list, rank) each
// bubble of a question has a label and an output code: both lists must hold items, and as many
// of one as of the other. The rule is the same for row- (Orient 1) and column-oriented (2)
// regions, since either way one choice and one code belong to each bubble. Other regions and a
// question in no region have nothing to check.
bool CheckQuestionRequired(const clsXUNQuestion& oQuestion) {
  const std::shared_ptr<clsXUNField> field = oQuestion.Field();
  if (!field || field->RecognitionType() != xunRecogTypeOMR) return true;
  if (field->FieldType() < xunFieldTypeOMRMult || field->FieldType() > xunFieldTypeOMRRank)
    return true;
  const auto choices = oQuestion.Choices();
  const auto codes = oQuestion.Codes();
  if (!choices || !codes || choices->Count() == 0 || codes->Count() == 0) return false;
  return choices->Count() == codes->Count();
}

}  // namespace xun::basTemplate

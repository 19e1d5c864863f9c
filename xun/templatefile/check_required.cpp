#include "xun/templatefile/check_required.h"

#include <memory>
#include <string>
#include <string_view>

#include "xun/model/field.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/pages.h"
#include "xun/model/question.h"
#include "xun/model/questions.h"
#include "xun/model/string_items.h"
#include "xun/model/template.h"
#include "xun/support/text.h"
#include "xun/templatefile/clean_text.h"
#include "xun/templatefile/write_sections.h"

namespace xun::basTemplate {
namespace {

// The kinds whose questions are read from bubbles that each have a label and an output code: an
// OMR region of field type 1 to 7 (multiple, grid, add, boolean, binary, list, rank).
bool QuestionsNeedChoices(const clsXUNField& field) {
  return field.RecognitionType() == xunRecogTypeOMR && field.FieldType() >= xunFieldTypeOMRMult &&
         field.FieldType() <= xunFieldTypeOMRRank;
}

// The checks judge a value as the file holds it, so the writer's verdict is the one the reader
// reaches on the saved file: a name the name list cleans away is no name, and a list of a single
// item that cleans to nothing is written as an empty line and read back with no items.
bool Blank(std::string_view value, const char* strip) {
  return text::Trim(detail::CleanText(value, true, strip)).empty();
}

bool HoldsItems(const std::shared_ptr<clsXUNStringItems>& list, const char* strip) {
  if (!list || list->Count() == 0) return false;
  return list->Count() > 1 || !Blank(list->Item(1), strip);
}

bool RegionAndQuestionsPass(const clsXUNField& field) {
  if (!CheckRegionRequired(field)) return false;
  if (const auto questions = field.Questions())
    for (const std::shared_ptr<clsXUNQuestion>& question : *questions)
      if (!CheckQuestionRequired(*question)) return false;
  return true;
}

}  // namespace

bool CheckRegionRequired(const clsXUNField& oField) {
  if (Blank(oField.FieldName(), detail::kIllegalNameCharacters)) return false;
  if (oField.RecognitionType() != xunRecogTypeOMR) return true;
  const bool oriented =
      oField.Orient() == xunOrientationTypeOMRRow || oField.Orient() == xunOrientationTypeOMRCol;
  return oriented && oField.NumCols() > 0 && oField.NumRows() > 0;
}

// Only emptiness refuses. Row-oriented (Orient 1) and column-oriented (Orient 2) regions differ
// in how many bubbles lie along a question (a row of NumCols, a column of NumRows, one for a
// Boolean region), but a count that disagrees with the grid, or choices and codes of different
// lengths, is something the template maker fixes in an editor: refusing it would lock them out
// of their own file. `xuntemplate check` warns about those.
bool CheckQuestionRequired(const clsXUNQuestion& oQuestion) {
  const std::shared_ptr<clsXUNField> field = oQuestion.Field();
  if (!field || !QuestionsNeedChoices(*field)) return true;
  return HoldsItems(oQuestion.Choices(), detail::kIllegalLabelCharacters) &&
         HoldsItems(oQuestion.Codes(), detail::kIllegalValueCharacters);
}

namespace detail {

bool TemplateIsValid(const clsXUNTemplate& oTemplate) {
  if (oTemplate.NumPages() <= 0 || oTemplate.NumFields() <= 0 || oTemplate.NumItems() <= 0)
    return false;
  for (const std::shared_ptr<clsXUNPage>& page : *oTemplate.Pages())
    if (const auto fields = page->Fields())
      for (const std::shared_ptr<clsXUNField>& field : *fields)
        if (!RegionAndQuestionsPass(*field)) return false;
  return true;
}

}  // namespace detail
}  // namespace xun::basTemplate

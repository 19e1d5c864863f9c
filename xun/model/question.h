// One answer a region produces: its name and text, choices and codes, return values, grading
// and identification role.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "xun/export.h"
#include "xun/model/enums.h"
#include "xun/model/fwd.h"
#include "xun/model/keyed_object_list.h"
#include "xun/model/string_items.h"
#include "xun/support/object.h"

namespace xun {

class XUN_API clsXUNQuestion : public Object, public detail::ListMember<clsXUNQuestions> {
 public:
  static std::shared_ptr<clsXUNQuestion> Create();

  // The list that holds this question (back reference).
  std::shared_ptr<clsXUNQuestions> Questions() const { return Owner(); }
  void Questions(const std::shared_ptr<clsXUNQuestions>& value) { SetOwner(value); }
  xunIDType IDType() const { return id_type_; }
  void IDType(xunIDType value) { id_type_ = value; }
  const std::string& IDValue() const { return id_value_; }
  void IDValue(std::string value) { id_value_ = std::move(value); }
  bool IDAdd() const { return id_add_; }
  void IDAdd(bool value) { id_add_ = value; }
  // One line describing the data column the question produces:
  // "<QuestionName>,<Numeric|Text|AlphaNumeric>,<width>". Kept until refreshed.
  std::string Schema(bool bRefresh = false);
  std::shared_ptr<clsXUNStringItems> Choices() const { return choices_; }
  void Choices(std::shared_ptr<clsXUNStringItems> value) { choices_ = std::move(value); }
  std::shared_ptr<clsXUNStringItems> Codes() const { return codes_; }
  void Codes(std::shared_ptr<clsXUNStringItems> value) { codes_ = std::move(value); }
  const std::string& QuestionName() const { return question_name_; }
  void QuestionName(std::string value) { question_name_ = std::move(value); }
  const std::string& QuestionText() const { return question_text_; }
  void QuestionText(std::string value) { question_text_ = std::move(value); }
  // The key let is ignored while the question is in a list.
  const std::string& Key() const { return MemberKey(); }
  void Key(std::string value) { SetMemberKey(std::move(value)); }
  bool Required() const { return required_; }
  void Required(bool value) { required_ = value; }
  bool Discriminate() const { return discriminate_; }
  void Discriminate(bool value) { discriminate_ = value; }
  bool Tally() const { return tally_; }
  void Tally(bool value) { tally_ = value; }
  bool Grade() const { return grade_; }
  void Grade(bool value) { grade_ = value; }
  double Correct() const { return correct_; }
  void Correct(double value) { correct_ = value; }
  double SubjectivePoints() const { return subjective_points_; }
  // A negative or non-finite value is refused (error 380, reported) and the old value stays.
  void SubjectivePoints(double value);
  double Incorrect() const { return incorrect_; }
  void Incorrect(double value) { incorrect_ = value; }
  double NoResponse() const { return no_response_; }
  void NoResponse(double value) { no_response_ = value; }
  const std::string& DuplicateReturn() const { return duplicate_return_; }
  void DuplicateReturn(std::string value) { duplicate_return_ = std::move(value); }
  const std::string& MultsReturn() const { return mults_return_; }
  void MultsReturn(std::string value) { mults_return_ = std::move(value); }
  const std::string& BlanksReturn() const { return blanks_return_; }
  void BlanksReturn(std::string value) { blanks_return_ = std::move(value); }
  xunBlanksFlag BlanksFlag() const { return blanks_flag_; }
  void BlanksFlag(xunBlanksFlag value) { blanks_flag_ = value; }
  const std::string& ErrorReturn() const { return error_return_; }
  void ErrorReturn(std::string value) { error_return_ = std::move(value); }
  // The choices (codes) of this question across the regions of its link group, in group order:
  // a new list. A list set here is returned instead until nullptr is set.
  void AllChoices(std::shared_ptr<clsXUNStringItems> value) { all_choices_ = std::move(value); }
  std::shared_ptr<clsXUNStringItems> AllChoices() const;
  void AllCodes(std::shared_ptr<clsXUNStringItems> value) { all_codes_ = std::move(value); }
  std::shared_ptr<clsXUNStringItems> AllCodes() const;
  bool RespondentID() const { return respondent_id_; }
  void RespondentID(bool value) { respondent_id_ = value; }
  bool Rubric() const { return rubric_; }
  void Rubric(bool value) { rubric_ = value; }
  bool SubjectiveField() const { return subjective_field_; }
  void SubjectiveField(bool value) { subjective_field_ = value; }
  bool ExtraCredit() const { return extra_credit_; }
  void ExtraCredit(bool value) { extra_credit_ = value; }
  int16_t MultsAllowed() const { return mults_allowed_; }
  void MultsAllowed(int16_t value) { mults_allowed_ = value; }
  // The not-applicable choice counted in AllChoices; a value set here is returned instead.
  int16_t NAChoiceAll() const;
  void NAChoiceAll(int16_t value) { na_choice_all_ = value; }
  int16_t NAChoice() const { return na_choice_; }
  void NAChoice(int16_t value) { na_choice_ = value; }
  // The 1-based position in its list; with bInTemplate the template item number of the
  // question (0 for a question that produces no item).
  int32_t ReturnIndex(bool bInTemplate = false) const;
  // Releases the choice and code lists and the back reference.
  void Free();
  // The first and last grid row and column the question's bubbles occupy in its region.
  bool Plot(int16_t& iStartRow, int16_t& iEndRow, int16_t& iStartCol, int16_t& iEndCol) const;
  // The rectangle of one of the question's bubbles (indexes 1-based within the question).
  bool LocateBubble(int16_t iColIndex, int16_t iRowIndex, int16_t& iTop, int16_t& iLeft,
                    int16_t& iBottom, int16_t& iRight) const;
  // The rectangle that encloses all of the question's bubbles.
  bool Locate(int16_t& iTop, int16_t& iLeft, int16_t& iBottom, int16_t& iRight) const;
  const std::string& Tag() const { return tag_; }
  void Tag(std::string value) { tag_ = std::move(value); }
  bool TestVersionID() const { return test_version_id_; }
  void TestVersionID(bool value) { test_version_id_ = value; }

  // A new question with this one's values and its own copies of the lists; in no list, with an
  // empty key unless bKeepKey.
  std::shared_ptr<clsXUNQuestion> Copy(bool bKeepKey = false) const;
  // The region that holds this question, through its list.
  std::shared_ptr<clsXUNField> Field() const;

 private:
  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNQuestion();
  xunIDType id_type_ = xunIDTypeNone;
  std::string id_value_;
  bool id_add_ = false;
  std::optional<std::string> schema_;
  std::shared_ptr<clsXUNStringItems> choices_, codes_, all_choices_, all_codes_;
  std::string question_name_, question_text_;
  bool required_ = false, discriminate_ = true, tally_ = false, grade_ = false;
  double correct_ = 1.0, subjective_points_ = 0, incorrect_ = 0, no_response_ = 0;
  std::string duplicate_return_ = "DUP", mults_return_ = "MULT", blanks_return_ = "BLANK";
  xunBlanksFlag blanks_flag_ = xunBlanksFlagAll;
  std::string error_return_ = "ERROR #";
  bool respondent_id_ = false, rubric_ = false, subjective_field_ = false, extra_credit_ = false;
  int16_t mults_allowed_ = 0;
  std::optional<int16_t> na_choice_all_;
  int16_t na_choice_ = 0;
  std::string tag_;
  bool test_version_id_ = false;
};

}  // namespace xun

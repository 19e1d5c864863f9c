// Writes the example templates of examples/templates with the public interface only:
//   make_examples [output folder]   (default: examples/templates under the current folder)
// Keys are fresh random UUIDs, so every run gives new keys; the checked-in files are one run.
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "xun/xun.h"

namespace {

using xun::clsXUNField;
using xun::clsXUNPage;
using xun::clsXUNQuestion;
using xun::clsXUNTemplate;

std::shared_ptr<clsXUNField> AddRegion(const std::shared_ptr<clsXUNPage>& page,
                                       const std::string& name, xun::xunRecogType recog,
                                       xun::xunFieldType type, int16_t left, int16_t top,
                                       int16_t right, int16_t bottom) {
  auto field = clsXUNField::Create();
  field->FieldName(name);
  field->RecognitionType(recog);
  field->FieldType(type);
  field->DataType(xun::xunDataTypeText);
  field->Left(left);
  field->Top(top);
  field->Right(right);
  field->Bottom(bottom);
  page->Fields()->Add(field);
  return field;
}

// A barcode region whose one question identifies the page (or the form) by its value.
void AddIDBarcode(const std::shared_ptr<clsXUNPage>& page, const std::string& name,
                  xun::xunIDType role, const std::string& value) {
  auto field = AddRegion(page, name, xun::xunRecogTypeBarcode, xun::xunFieldTypeBarcodeCode128, 50,
                         20, 450, 80);
  field->BarcodeLength(static_cast<int16_t>(value.size()));
  auto question = clsXUNQuestion::Create();
  question->QuestionName(name);
  question->IDType(role);
  question->IDValue(value);
  field->Questions()->Add(question);
}

// An OMR grid of bubbles laid out in rows; Update gives one question per row.
std::shared_ptr<clsXUNField> AddBubbles(const std::shared_ptr<clsXUNPage>& page,
                                        const std::string& name, xun::xunFieldType type,
                                        xun::xunOrientationType orient, int16_t rows, int16_t cols,
                                        int16_t top, xun::xunDataType data = xun::xunDataTypeText) {
  auto field =
      AddRegion(page, name, xun::xunRecogTypeOMR, type, 100, top,
                static_cast<int16_t>(100 + 40 * cols), static_cast<int16_t>(top + 30 * rows));
  field->DataType(data);  // numeric regions get the choices 0 to 9
  field->Orient(orient);
  field->NumRows(rows);
  field->NumCols(cols);
  field->StartCol(12);
  field->StartRow(10);
  field->ColGap(40);
  field->RowGap(30);
  field->Threshold(40);
  field->Questions()->Update();
  return field;
}

bool SaveAs(const std::shared_ptr<clsXUNTemplate>& form, const std::filesystem::path& file) {
  // A new file every time: an existing one would keep its encoding and leave a backup behind.
  std::filesystem::remove(file);
  const bool saved = form->Save(file.string(), false);
  std::filesystem::remove(file.string() + ".old");
  if (!saved) std::cerr << "could not save " << file.string() << "\n";
  return saved;
}

// Two pages with non-Latin and separator characters in its attributes, so it saves as UTF-16.
std::shared_ptr<clsXUNTemplate> BuildSurvey() {
  auto form = clsXUNTemplate::Create();
  form->Name("Customer survey");
  form->PageWidth(8.5);
  form->PageHeight(11);
  form->Attributes()->Add("Owner", xun::Variant("Marketing | Research"));
  form->Attributes()->Add("Formula", xun::Variant("score=a+b"));
  form->Attributes()->Add("Title", xun::Variant("Ερωτηματολόγιο / アンケート"));

  const char* const questions[] = {"How did you hear about us?", "How satisfied are you?",
                                   "Would you buy again?", "How was the delivery?"};
  for (int16_t p = 1; p <= 2; ++p) {
    auto page = clsXUNPage::Create();
    form->Pages()->Add(page);
    page->Attributes()->Add("Side", xun::Variant(p == 1 ? "front" : "back"));
    page->TimingMarks()->AddDelimitedString("10,20,30,40\t10,1000,30,1020");
    AddIDBarcode(page, "PageID", xun::xunIDTypePage, "SURVEY-P" + std::to_string(p));
    auto choices = AddBubbles(page, "Answers" + std::to_string(p), xun::xunFieldTypeOMRMult,
                              xun::xunOrientationTypeOMRRow, 4, 5, 150);
    choices->Attributes()->Add("Scale", xun::Variant("A=poor|E=excellent"));
    for (int16_t q = 1; q <= 4; ++q)
      choices->Questions()->Item(q)->QuestionText(questions[q - 1]);
    if (p == 2) {
      auto comments = AddRegion(page, "Comments", xun::xunRecogTypeOCR, xun::xunFieldTypeOCRSimple,
                                100, 400, 700, 600);
      comments->DefaultFill("none");
      auto question = clsXUNQuestion::Create();
      question->QuestionName("Comments");
      question->QuestionText("Anything else? (Straße, 東京, «quotes»)");
      comments->Questions()->Add(question);
    }
  }
  return form;
}

// One graded page: a form ID, a student number grid and five answers keyed A to D.
std::shared_ptr<clsXUNTemplate> BuildExam() {
  auto form = clsXUNTemplate::Create();
  form->Name("Unit test");
  form->PageWidth(8.5);
  form->PageHeight(11);
  form->Attributes()->Add("Course", xun::Variant("Physics 101"));
  auto page = clsXUNPage::Create();
  form->Pages()->Add(page);
  page->TimingMarks()->AddDelimitedString("12,24,28,40");
  AddIDBarcode(page, "FormID", xun::xunIDTypeForm, "EXAM-A");
  // One number across six columns of ten bubbles.
  auto student = AddBubbles(page, "Student", xun::xunFieldTypeOMRGrid,
                            xun::xunOrientationTypeOMRCol, 10, 6, 120, xun::xunDataTypeNumeric);
  student->Questions()->Item(1)->RespondentID(true);
  auto answers = AddBubbles(page, "Answers", xun::xunFieldTypeOMRMult,
                            xun::xunOrientationTypeOMRRow, 5, 4, 460);
  const char key[] = "BADCA";
  for (int16_t q = 1; q <= 5; ++q) {
    auto question = answers->Questions()->Item(q);
    question->Grade(true);
    question->Correct(2);
    question->Incorrect(-0.5);
    question->Tag(std::string("key=") + key[q - 1]);
  }
  return form;
}

}  // namespace

int main(int argc, char** argv) {
  const std::filesystem::path folder = argc > 1 ? argv[1] : "examples/templates";
  std::filesystem::create_directories(folder);
  bool ok = true;
  for (const auto& [name, form] :
       {std::pair{"survey.omr", BuildSurvey()}, std::pair{"exam.omr", BuildExam()}}) {
    ok = SaveAs(form, folder / name) && ok;
    form->Free();
  }
  return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}

// Writes the example templates of examples/templates with the public interface only:
//   make_examples [output folder]   (default: examples/templates under the current folder)
// Keys are fresh random UUIDs, so every run gives new keys; the checked-in files are one run.
#include <cstdlib>
#include <filesystem>
#include <fstream>
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
  field->Questions()->Update();  // a barcode region reads one value: one question
  auto question = field->Questions()->Item(1);
  question->QuestionName(name);
  question->IDType(role);
  question->IDValue(value);
}

// An OMR grid of bubbles; Update gives its questions.
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
  // The first bubble's corner 12 right of and 10 below the region's; 40 by 30 apart.
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
      comments->Questions()->Update();
      auto question = comments->Questions()->Item(1);
      question->QuestionName("Comments");
      question->QuestionText("Anything else? (Straße, 東京, «quotes»)");
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

void MoveRight(const std::shared_ptr<clsXUNField>& field, int16_t by) {
  field->Left(static_cast<int16_t>(field->Left() + by));
  field->Right(static_cast<int16_t>(field->Right() + by));
}

// One answer sheet whose regions are linked: ten questions of ten choices printed as two blocks
// of five, and a surname grid printed as two half-alphabets. Each pair answers as one region.
std::shared_ptr<clsXUNTemplate> BuildLinked() {
  auto form = clsXUNTemplate::Create();
  form->Name("Linked answer sheet");
  form->PageWidth(8.5);
  form->PageHeight(11);
  auto page = clsXUNPage::Create();
  form->Pages()->Add(page);
  auto first_half = AddBubbles(page, "AnswersAtoE", xun::xunFieldTypeOMRMult,
                               xun::xunOrientationTypeOMRRow, 10, 5, 100);
  auto second_half = AddBubbles(page, "AnswersFtoJ", xun::xunFieldTypeOMRMult,
                                xun::xunOrientationTypeOMRRow, 10, 5, 100);
  MoveRight(second_half, 300);
  const char* const labels[] = {"ABCDE", "FGHIJ"};
  int half = 0;
  for (const auto& region : {first_half, second_half}) {
    for (const auto& question : *region->Questions()) {
      question->Choices()->RemoveAll();
      for (const char* c = labels[half]; *c; ++c)
        question->Choices()->Add(std::string(1, *c));
    }
    ++half;
  }
  auto surname_a = AddBubbles(page, "SurnameAtoM", xun::xunFieldTypeOMRGrid,
                              xun::xunOrientationTypeOMRCol, 13, 6, 450);
  auto surname_n = AddBubbles(page, "SurnameNtoZ", xun::xunFieldTypeOMRGrid,
                              xun::xunOrientationTypeOMRCol, 13, 6, 450);
  MoveRight(surname_n, 300);
  for (const auto& question : *surname_n->Questions()) {
    question->Choices()->RemoveAll();
    for (char c = 'N'; c <= 'Z'; ++c)
      question->Choices()->Add(std::string(1, c));
  }
  // Linking numbers the codes on from the first region: F to J, and N to Z.
  if (!page->Link({first_half, second_half}, false) || !page->Link({surname_a, surname_n}, false))
    return nullptr;
  return form;
}

// A page of a batch member: a page ID barcode and one OMR region.
std::shared_ptr<clsXUNPage> AddBatchPage(const std::shared_ptr<clsXUNTemplate>& form,
                                         const std::string& page_id, const std::string& region,
                                         xun::xunFieldType type, int16_t rows, int16_t cols) {
  auto page = clsXUNPage::Create();
  form->Pages()->Add(page);
  AddIDBarcode(page, "PageID", xun::xunIDTypePage, page_id);
  AddBubbles(page, region, type, xun::xunOrientationTypeOMRRow, rows, cols, 150);
  return page;
}

std::shared_ptr<clsXUNTemplate> NewBatchMember(const std::string& name) {
  auto form = clsXUNTemplate::Create();
  form->Name(name);
  form->PageWidth(8.5);
  form->PageHeight(11);
  return form;
}

// The header sheets that precede each quiz in a scanned batch: they carry page IDs but no
// respondent tracker, which belongs to the form.
std::shared_ptr<clsXUNTemplate> BuildBatchCover() {
  auto form = NewBatchMember("Batch cover sheet");
  AddBatchPage(form, "COVER", "Session", xun::xunFieldTypeOMRMult, 1, 4);
  return form;
}

std::shared_ptr<clsXUNTemplate> BuildBatchRoster() {
  auto form = NewBatchMember("Class roster sheet");
  AddBatchPage(form, "ROSTER", "Present", xun::xunFieldTypeOMRMult, 5, 2);
  return form;
}

// The form of the batch: two pages, the first with the student number as respondent tracker.
std::shared_ptr<clsXUNTemplate> BuildBatchQuiz() {
  auto form = NewBatchMember("Weekly quiz");
  auto first = AddBatchPage(form, "QUIZ-1", "Part1", xun::xunFieldTypeOMRMult, 5, 4);
  auto student = AddBubbles(first, "Student", xun::xunFieldTypeOMRGrid,
                            xun::xunOrientationTypeOMRCol, 10, 5, 400, xun::xunDataTypeNumeric);
  student->Questions()->Item(1)->IDType(xun::xunIDTypeRespondent);
  student->Questions()->Item(1)->IDAdd(true);
  AddBatchPage(form, "QUIZ-2", "Part2", xun::xunFieldTypeOMRMult, 5, 4);
  return form;
}

// The batch file names its members relative to its own folder, so the example works wherever it
// is unpacked; SaveBatch would write the full paths of this machine.
bool WriteBatchFile(const std::filesystem::path& file) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << "[Template]\r\nName=batch-quiz.omr\r\n"
         "[Headers]\r\nName=batch-cover.omr\r\nName=batch-roster.omr\r\n";
  out.close();
  if (!out) std::cerr << "could not write " << file.string() << "\n";
  return static_cast<bool>(out);
}

}  // namespace

// The exam with its printed page imported as the page image: saved, it becomes a template
// archive holding the .omr file and the page's .pcx image.
bool WriteScanned(const std::filesystem::path& file) {
  auto form = BuildExam();
  const auto page = form->Pages()->Item(1);
  const std::filesystem::path png = file.parent_path() / "scanned-page.png";
  // Printed at 100 dpi, the unit of region coordinates, so the image is the page pixel for pixel.
  bool ok = xun::PrintPage(*form, 1, png.string(), 100) && page->ImageImport(png.string(), 1);
  std::filesystem::remove(png);
  if (!ok) std::cerr << "could not import the page image\n";
  ok = ok && SaveAs(form, file);
  form->Free();
  return ok;
}

int main(int argc, char** argv) {
  const std::filesystem::path folder = argc > 1 ? argv[1] : "examples/templates";
  std::filesystem::create_directories(folder);
  bool ok = true;
  for (const auto& [name, form] :
       {std::pair{"survey.omr", BuildSurvey()}, std::pair{"exam.omr", BuildExam()},
        std::pair{"linked.omr", BuildLinked()}, std::pair{"batch-cover.omr", BuildBatchCover()},
        std::pair{"batch-roster.omr", BuildBatchRoster()},
        std::pair{"batch-quiz.omr", BuildBatchQuiz()}}) {
    if (!form) {
      std::cerr << "could not build " << name << "\n";
      ok = false;
      continue;
    }
    ok = SaveAs(form, folder / name) && ok;
    form->Free();
  }
  ok = WriteBatchFile(folder / "batch.rbf") && ok;
  ok = WriteScanned(folder / "scanned.omr") && ok;
  return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}

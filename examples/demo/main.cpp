// Builds a small two-page template in memory, fills its lists and prints what it holds.
#include <iostream>
#include <string>

#include "xun/xun.h"

namespace {

std::shared_ptr<xun::clsXUNField> AddRatings(const std::shared_ptr<xun::clsXUNPage>& page,
                                             const std::string& name, int16_t questions) {
  auto field = xun::clsXUNField::Create();
  field->FieldName(name);
  field->RecognitionType(xun::xunRecogTypeOMR);
  field->FieldType(xun::xunFieldTypeOMRMult);
  field->DataType(xun::xunDataTypeText);
  field->Orient(xun::xunOrientationTypeOMRRow);
  field->NumRows(questions);
  field->NumCols(4);
  field->Left(100);
  field->Top(200);
  field->StartCol(10);
  field->StartRow(10);
  field->ColGap(30);
  field->RowGap(25);
  page->Fields()->Add(field);
  field->Questions()->Update();  // one question per row, choices A to D
  return field;
}

void AddPageID(const std::shared_ptr<xun::clsXUNPage>& page, const std::string& value) {
  auto field = xun::clsXUNField::Create();
  field->FieldName("PageID");
  field->RecognitionType(xun::xunRecogTypeBarcode);
  field->FieldType(xun::xunFieldTypeBarcodeCode39);
  page->Fields()->Add(field);
  field->Questions()->Update();  // a barcode region reads one value: one question
  auto question = field->Questions()->Item(1);
  question->QuestionName("PageID");
  question->IDType(xun::xunIDTypePage);
  question->IDValue(value);
}

}  // namespace

int main() {
  auto form = xun::clsXUNTemplate::Create();
  form->Name("Course evaluation");
  form->PageWidth(8.5);
  form->PageHeight(11);
  form->Attributes()->Add("Department", xun::Variant("Physics"));
  form->Attributes()->Add("Year", xun::Variant(2026));

  for (int p = 1; p <= 2; ++p) {
    auto page = xun::clsXUNPage::Create();
    form->Pages()->Add(page);
    AddPageID(page, "P" + std::to_string(p));
    auto ratings = AddRatings(page, "Ratings" + std::to_string(p), static_cast<int16_t>(2 + p));
    ratings->Questions()->Item(1)->QuestionText("How clear were the lectures?");
    page->TimingMarks()->AddDelimitedString("10,20,30,40\t10,900,30,40");
  }

  std::cout << "Template: " << form->Name() << " (" << form->PageWidth() << " x "
            << form->PageHeight() << " in)\n"
            << "Attributes: "
            << xun::basPublic::DictionaryToString(form->Attributes(), "; ", "=", false) << "\n"
            << "Pages " << form->NumPages() << ", regions " << form->NumFields() << ", questions "
            << form->NumQuestions() << ", items " << form->NumItems() << "\n"
            << "Page IDs valid: " << (form->IDFieldsValid(xun::xunIDTypePage) ? "yes" : "no")
            << "\n";
  for (const auto& page : *form->Pages()) {
    std::cout << "Page " << page->ReturnIndex() << " (first item " << page->ReturnIndex(true)
              << "), timing marks " << page->TimingMarks()->AsString(" | ") << "\n";
    for (const auto& field : *page->Fields()) {
      std::cout << "  " << field->FieldName() << ": " << field->NumItems() << " item(s)\n";
      for (const auto& question : *field->Questions())
        std::cout << "    " << question->QuestionName() << "  choices ["
                  << question->Choices()->AsString(",") << "]  codes ["
                  << question->Codes()->AsString(",") << "]\n";
    }
  }
  const auto names = form->GetActualNames();
  std::cout << "Data columns:";
  for (const std::string& name : names)
    std::cout << " " << name;
  std::cout << "\n";
  form->Free();
  return 0;
}

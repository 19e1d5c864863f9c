#include "xun/printing/page_layout.h"

#include <algorithm>
#include <utility>

#include "xun/model/bubble_grid.h"
#include "xun/model/field.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/pages.h"
#include "xun/model/question.h"
#include "xun/model/questions.h"
#include "xun/model/string_items.h"
#include "xun/model/template.h"
#include "xun/model/timing_mark.h"
#include "xun/model/timing_marks.h"
#include "xun/support/runtime_error.h"

namespace xun::printing {
namespace {

using Kind = PrintedShape::Kind;

// The height of a region's name, printed inside the top of its box.
constexpr double kNameHeight = 10;
// Identification regions get a heavier outline, so they stand out on the form.
constexpr double kIdentificationLine = 2.0;

PrintedShape Shape(Kind kind, double left, double top, double right, double bottom, double line = 0,
                   std::string text = {}) {
  PrintedShape shape;
  shape.kind = kind;
  shape.left = std::min(left, right);
  shape.right = std::max(left, right);
  shape.top = std::min(top, bottom);
  shape.bottom = std::max(top, bottom);
  shape.line = line;
  shape.text = std::move(text);
  return shape;
}

// The question of the region that identifies the form, page or respondent, if any.
std::shared_ptr<clsXUNQuestion> IdentifyingQuestion(const clsXUNField& field) {
  if (!field.Questions()) return nullptr;
  for (const auto& question : *field.Questions())
    if (question->IDType() != xunIDTypeNone) return question;
  return nullptr;
}

// Each bubble's outline, and the question's choice inside it: the k-th bubble along a line of
// the question's span holds its k-th choice (along a row for a region read by rows, down a
// column for one read by columns).
void AddBubbles(const clsXUNField& field, std::vector<PrintedShape>& shapes) {
  const BubbleGrid grid = BubbleGrid::Of(field);
  if (grid.Empty()) return;
  for (int32_t r = 1; r <= grid.NumRows(); ++r)
    for (int32_t c = 1; c <= grid.NumCols(); ++c) {
      const BubbleRect b = grid.Bubble(r, c);
      shapes.push_back(Shape(Kind::Bubble, b.Left, b.Top, b.Right, b.Bottom, kBubbleLine));
    }
  if (!field.Questions()) return;
  const bool by_rows = field.Orient() == xunOrientationTypeOMRRow;
  for (const auto& question : *field.Questions()) {
    int16_t first_row = 0, last_row = 0, first_col = 0, last_col = 0;
    if (!question->Plot(first_row, last_row, first_col, last_col) || !question->Choices()) continue;
    const int32_t choices = question->Choices()->Count();
    for (int32_t r = first_row; r <= last_row; ++r)
      for (int32_t c = first_col; c <= last_col; ++c) {
        const int32_t k = by_rows ? c - first_col + 1 : r - first_row + 1;
        if (k > choices) continue;
        const BubbleRect b = grid.Bubble(r, c);
        const double inset = kBubbleLine * 1.5;  // clear of the outline
        const double height = (b.Bottom - b.Top) * kLabelShare;
        const double middle = (b.Top + b.Bottom) / 2.0;
        PrintedShape label =
            Shape(Kind::Label, b.Left + inset, middle - height / 2, b.Right - inset,
                  middle + height / 2, kLabelStroke, question->Choices()->Item(k));
        label.ink = kBubbleLabelInk;
        shapes.push_back(std::move(label));
      }
  }
}

}  // namespace

void PageSizeOf(const clsXUNTemplate& oTemplate, double& dWidth, double& dHeight) {
  dWidth = oTemplate.PageWidth() * 100.0;
  dHeight = oTemplate.PageHeight() * 100.0;
  if (oTemplate.Orientation() == xunOrientationTypeFormLandscape && dWidth < dHeight)
    std::swap(dWidth, dHeight);
}

void PrintedPageSize(const clsXUNTemplate& oTemplate, double& dWidth, double& dHeight) {
  PageSizeOf(oTemplate, dWidth, dHeight);
  if (!(dWidth > 0) || !(dHeight > 0)) {
    dWidth = 850;
    dHeight = 1100;
  }
}

PageLayout LayoutOf(const clsXUNTemplate& oTemplate, int32_t iPage) {
  const auto pages = oTemplate.Pages();
  if (!pages || iPage < 1 || iPage > pages->Count()) Raise(kErrSubscript);
  const auto page = pages->Item(iPage);
  PageLayout layout;
  PrintedPageSize(oTemplate, layout.width, layout.height);
  layout.image_file = page->ImageFile();
  layout.image_xdpi = page->XDPI();
  layout.image_ydpi = page->YDPI();

  if (page->TimingMarks())
    for (const auto& mark : *page->TimingMarks())
      layout.shapes.push_back(Shape(Kind::Solid, mark->Left(), mark->Top(),
                                    mark->Left() + mark->Width(), mark->Top() + mark->Height()));
  if (!page->Fields()) return layout;
  for (const auto& field : *page->Fields()) {
    if (field->RecognitionType() == xunRecogTypeOMR) {
      AddBubbles(*field, layout.shapes);
      continue;
    }
    const auto id = IdentifyingQuestion(*field);
    const double left = std::min(field->Left(), field->Right());
    const double top = std::min(field->Top(), field->Bottom());
    layout.shapes.push_back(Shape(Kind::Box, field->Left(), field->Top(), field->Right(),
                                  field->Bottom(), id ? kIdentificationLine : kRegionLine));
    if (field->RecognitionType() == xunRecogTypeBarcode && id && !id->IDValue().empty()) {
      // The symbol fills the box but for a quiet zone, so it reads as the identification.
      PrintedShape symbol = Shape(Kind::Barcode, field->Left(), field->Top(), field->Right(),
                                  field->Bottom(), 0, id->IDValue());
      const double quiet = std::min(symbol.right - symbol.left, symbol.bottom - symbol.top) / 8;
      symbol.left += quiet;
      symbol.top += quiet;
      symbol.right -= quiet;
      symbol.bottom -= quiet;
      symbol.barcode = field->FieldType();
      layout.shapes.push_back(std::move(symbol));
      continue;
    }
    PrintedShape name =
        Shape(Kind::Label, left + 4, top + 2, std::max(field->Left(), field->Right()) - 4,
              top + 2 + kNameHeight, kLabelStroke, field->FieldName());
    name.centred = false;
    layout.shapes.push_back(std::move(name));
  }
  return layout;
}

}  // namespace xun::printing

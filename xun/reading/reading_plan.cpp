#include "xun/reading/reading_plan.h"

#include <algorithm>
#include <map>

#include "xun/model/bubble_grid.h"
#include "xun/model/field.h"
#include "xun/model/field_extra.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/pages.h"
#include "xun/model/question.h"
#include "xun/model/questions.h"
#include "xun/model/template.h"
#include "xun/printing/page_layout.h"

namespace xun::reading::detail {
namespace {

// The blank fill of every bubble, row by row, from a registered region's Extra values: rows,
// columns, bubble width and height, the columns' left edges, the rows' top edges, then the fills.
std::vector<int16_t> BlankFills(const clsXUNField& field, const BubbleGrid& grid) {
  const size_t rows = static_cast<size_t>(grid.NumRows()),
               cols = static_cast<size_t>(grid.NumCols());
  std::vector<int16_t> fills(rows * cols, 0);
  if (!grid.Registered() || !field.Extra()) return fills;
  const std::vector<int16_t> values = field.Extra()->UnnamedValues();
  const size_t first = 4 + cols + rows;
  if (values.size() < first + rows * cols) return fills;
  for (size_t i = 0; i < rows * cols; ++i)
    fills[i] = values[first + i];
  return fills;
}

// The lines of a question of `field` as grid positions: rows of a region read by rows, columns
// of one read by columns, each in the order of the codes.
std::vector<std::vector<std::pair<int, int>>> LinesOf(const clsXUNField& field,
                                                      const clsXUNQuestion& question) {
  std::vector<std::vector<std::pair<int, int>>> lines;
  int16_t r0 = 0, r1 = 0, c0 = 0, c1 = 0;
  if (!question.Plot(r0, r1, c0, c1)) return lines;
  const bool by_rows = field.Orient() == xunOrientationTypeOMRRow;
  for (int a = by_rows ? r0 : c0; a <= (by_rows ? r1 : c1); ++a) {
    std::vector<std::pair<int, int>> line;
    for (int b = by_rows ? c0 : r0; b <= (by_rows ? c1 : r1); ++b)
      line.push_back(by_rows ? std::pair{a, b} : std::pair{b, a});
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace

ReadingPlan PlanOf(const clsXUNTemplate& form) {
  ReadingPlan plan;
  // The scan is of the printed page.
  printing::PrintedPageSize(form, plan.page_width, plan.page_height);
  if (!form.Pages()) return plan;
  for (const auto& page : *form.Pages()) {
    PagePlan& out = plan.pages.emplace_back();
    out.drop_out = page->DropOutColor() != xunTemplateDropOutColorNone;
    out.marks.noun = "timing marks";
    using Kind = printing::PrintedShape::Kind;
    for (const printing::PrintedShape& shape :
         printing::LayoutOf(form, static_cast<int32_t>(plan.pages.size())).shapes)
      if (shape.kind == Kind::Solid) {
        const cv::Rect2d mark(shape.left, shape.top, shape.right - shape.left,
                              shape.bottom - shape.top);
        out.marks.centres.push_back((mark.tl() + mark.br()) * 0.5);
        out.marks.sizes.push_back(mark.size());
        out.marks.areas.push_back(mark);
      }
    if (!page->Fields()) continue;
    // Where each region's bubbles start among the page's printed bubbles.
    std::map<const clsXUNField*, int> first_of;
    std::map<const clsXUNField*, int> rows_of;
    for (const auto& field : *page->Fields()) {
      if (field->RecognitionType() != xunRecogTypeOMR) continue;
      const BubbleGrid grid = BubbleGrid::Of(*field);
      if (grid.Empty()) continue;
      const int first = static_cast<int>(out.printed.centres.size());
      first_of[field.get()] = first;
      rows_of[field.get()] = grid.NumRows();
      for (int c = 1; c <= grid.NumCols(); ++c)
        for (int r = 1; r <= grid.NumRows(); ++r) {
          const BubbleRect b = grid.Bubble(r, c);
          out.printed.centres.push_back({(b.Left + b.Right) / 2.0, (b.Top + b.Bottom) / 2.0});
          out.printed.sizes.push_back(
              {static_cast<double>(b.Right - b.Left), static_cast<double>(b.Bottom - b.Top)});
          out.ids.push_back({field->FieldName(), r, c});
          out.item_of.push_back(0);
        }
      // Blank fills come row by row; bubbles are kept column by column, as the engine keeps them.
      const std::vector<int16_t> blanks = BlankFills(*field, grid);
      for (int c = 0; c < grid.NumCols(); ++c)
        for (int r = 0; r < grid.NumRows(); ++r)
          out.blank_fills.push_back(blanks[static_cast<size_t>(r) * grid.NumCols() + c]);
      out.regions.push_back({first, grid.NumRows() * grid.NumCols()});
      const BubbleRect all = grid.Enclosing(1, grid.NumRows(), 1, grid.NumCols());
      out.printed.areas.push_back(
          cv::Rect2d(all.Left, all.Top, all.Right - all.Left, all.Bottom - all.Top));
    }

    const printing::PageLayout layout =
        printing::LayoutOf(form, static_cast<int32_t>(plan.pages.size()));
    int region_index = 0;
    for (const auto& field : *page->Fields()) {
      ++region_index;
      if (!field->Questions()) continue;
      const int image_region =
          ReadFromImage(field->RecognitionType()) ? static_cast<int>(out.image_regions.size()) : -1;
      if (image_region >= 0) out.image_regions.push_back(RegionPlanOf(*field, layout));
      // A linked region's items come from the first of its group, each line running on through
      // the same question of every region of the group, in page order.
      std::vector<std::shared_ptr<clsXUNField>> group{field};
      if (field->LinkGroup() != 0) {
        group.clear();
        for (const auto& other : *page->Fields())
          if (other->LinkGroup() == field->LinkGroup()) group.push_back(other);
      }
      for (const auto& question : *field->Questions()) {
        ItemPlan item;
        item.item = question->ReturnIndex(true);
        // Identification is read from the OMR regions; a hidden one adds no item but still
        // identifies.
        const bool identifies = field->RecognitionType() == xunRecogTypeOMR &&
                                field->LinkGroup() == 0 && question->IDType() >= xunIDTypeForm;
        if (item.item <= 0 && !identifies) continue;
        item.item = std::max(item.item, 0);
        if (identifies) {
          item.id_type = question->IDType();
          item.id_value = question->IDValue();
        }
        item.name = question->QuestionName();
        item.region = field->FieldName();
        item.rules = QuestionRules::Of(*question);
        // Field types restart for every kind of region: 7 is Code 128 in a barcode region.
        if (field->RecognitionType() == xunRecogTypeOMR &&
            field->FieldType() == xunFieldTypeOMRRank)
          item.rank_group = region_index;
        if (image_region >= 0) {
          item.image_region = image_region;
          item.part = question->ReturnIndex(false) - 1;
        }
        if (field->RecognitionType() == xunRecogTypeOMR) {
          const int position = question->ReturnIndex(false);
          for (const auto& member : group) {
            const auto at = first_of.find(member.get());
            if (at == first_of.end() || !member->Questions() ||
                position > member->Questions()->Count())
              continue;
            const auto lines = LinesOf(*member, *member->Questions()->Item(position));
            if (item.lines.size() < lines.size()) item.lines.resize(lines.size());
            for (size_t k = 0; k < lines.size(); ++k)
              for (const auto& [r, c] : lines[k])
                item.lines[k].push_back(at->second + (c - 1) * rows_of[member.get()] + (r - 1));
          }
          for (const auto& line : item.lines)
            for (int i : line)
              out.item_of[static_cast<size_t>(i)] = item.item;
        }
        out.items.push_back(std::move(item));
      }
    }
  }
  return plan;
}

}  // namespace xun::reading::detail

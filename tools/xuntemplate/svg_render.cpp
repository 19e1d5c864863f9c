#include "svg_render.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <sstream>

#include "pcx_image.h"
#include "template_walk.h"
#include "tool.h"
#include "xun/support/text.h"

namespace xuntool {
namespace {

// A page with more bubbles than this is drawn without the rest: the picture would be unusable
// and the file huge long before.
constexpr int64_t kMaxBubbles = 20000;
constexpr double kMargin = 30;
constexpr double kLegendHeight = 40;
constexpr const char* kLinkColour = "#d62728";

struct Kind {
  const char* name;
  const char* colour;
};

Kind KindOf(int32_t recognition) {
  switch (recognition) {
    case xun::xunRecogTypeOMR:
      return {"OMR", "#1f77b4"};
    case xun::xunRecogTypeImage:
      return {"image", "#2ca02c"};
    case xun::xunRecogTypeBarcode:
      return {"barcode", "#ff7f0e"};
    case xun::xunRecogTypeOCR:
      return {"OCR", "#9467bd"};
  }
  return {"other", "#7f7f7f"};
}

std::string N(double v) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.6g", v);
  return buffer;
}

struct Box {
  double left, top, right, bottom;
  void Include(double l, double t, double r, double b) {
    left = std::min(left, std::min(l, r));
    top = std::min(top, std::min(t, b));
    right = std::max(right, std::max(l, r));
    bottom = std::max(bottom, std::max(t, b));
  }
};

void DrawImage(std::ostream& svg, const xun::clsXUNPage& page, double width, double height,
               std::vector<std::string>& notes) {
  std::error_code ec;
  if (page.ImageFile().empty() || !std::filesystem::is_regular_file(page.ImageFile(), ec)) return;
  std::string why;
  const auto image = PcxToBmp(page.ImageFile(), &why);
  if (!image) {
    notes.push_back("the page image could not be drawn: " + why);
    return;
  }
  // The image covers what it scanned: its pixels at its resolution, or the page without one.
  const int32_t xdpi = page.XDPI() > 0 ? page.XDPI() : image->xdpi;
  const int32_t ydpi = page.YDPI() > 0 ? page.YDPI() : image->ydpi;
  const double w = xdpi > 0 ? image->width * 100.0 / xdpi : width;
  const double h = ydpi > 0 ? image->height * 100.0 / ydpi : height;
  svg << "<image class=\"page-image\" x=\"0\" y=\"0\" width=\"" << N(w) << "\" height=\"" << N(h)
      << "\" preserveAspectRatio=\"none\" href=\"data:image/bmp;base64," << Base64(image->bmp)
      << "\"/>\n";
}

// Each bubble as the ellipse inside its rectangle, where the library places it (registered or
// from the grid values), so the drawing lies on the bubbles printed on the page image.
void DrawBubbles(std::ostream& svg, const xun::clsXUNField& f, const char* colour, int64_t& budget,
                 std::vector<std::string>& notes) {
  if (f.RecognitionType() != xun::xunRecogTypeOMR || f.NumRows() <= 0 || f.NumCols() <= 0) return;
  const int64_t count = int64_t{f.NumRows()} * f.NumCols();
  if (count > budget) {
    notes.push_back("region '" + f.FieldName() + "': " + std::to_string(count) +
                    " bubbles are too many to draw");
    return;
  }
  const xun::BubbleGrid grid = xun::BubbleGrid::Of(f);
  if (grid.Empty()) {
    notes.push_back("region '" + f.FieldName() + "': no bubble grid drawn, its gaps are not set");
    return;
  }
  budget -= count;
  const double rx = grid.BubbleWidth() / 2.0, ry = grid.BubbleHeight() / 2.0;
  svg << "<g class=\"bubbles\" fill=\"none\" stroke=\"" << colour << "\" stroke-width=\"2\">\n";
  for (int32_t r = 1; r <= grid.NumRows(); ++r) {
    for (int32_t c = 1; c <= grid.NumCols(); ++c) {
      const xun::BubbleRect bubble = grid.Bubble(r, c);
      svg << "<ellipse cx=\"" << N(bubble.Left + rx) << "\" cy=\"" << N(bubble.Top + ry)
          << "\" rx=\"" << N(rx) << "\" ry=\"" << N(ry) << "\"/>\n";
    }
  }
  svg << "</g>\n";
}

void DrawLegend(std::ostream& svg, double top) {
  double x = 0;
  for (int32_t kind : {xun::xunRecogTypeOMR, xun::xunRecogTypeImage, xun::xunRecogTypeBarcode,
                       xun::xunRecogTypeOCR}) {
    const Kind k = KindOf(kind);
    svg << "<rect x=\"" << N(x) << "\" y=\"" << N(top) << "\" width=\"14\" height=\"14\" fill=\""
        << k.colour << "\" fill-opacity=\"0.3\" stroke=\"" << k.colour << "\"/>"
        << "<text x=\"" << N(x + 18) << "\" y=\"" << N(top + 12) << "\">" << k.name << "</text>\n";
    x += 90;
  }
  svg << "<rect x=\"" << N(x) << "\" y=\"" << N(top)
      << "\" width=\"14\" height=\"14\" fill=\"none\" stroke=\"#000\" stroke-width=\"3\" "
         "stroke-dasharray=\"4 2\"/><text x=\""
      << N(x + 18) << "\" y=\"" << N(top + 12) << "\">identification</text>\n";
  x += 130;
  svg << "<line x1=\"" << N(x) << "\" y1=\"" << N(top + 7) << "\" x2=\"" << N(x + 14) << "\" y2=\""
      << N(top + 7) << "\" stroke=\"" << kLinkColour
      << "\" stroke-width=\"2\" stroke-dasharray=\"4 2\"/><text x=\"" << N(x + 18) << "\" y=\""
      << N(top + 12) << "\">link group</text>\n";
}

}  // namespace

std::string RenderPageSvg(const xun::clsXUNTemplate& t, int32_t page_number,
                          std::vector<std::string>& notes) {
  const auto page = t.Pages()->Item(page_number);
  PageExtent extent = ExtentOf(t);
  if (extent.width <= 0 || extent.height <= 0) {
    notes.push_back("the template has no page size; drawn as Letter");
    extent = {850, 1100};
  }
  std::vector<RegionRef> regions;
  for (const RegionRef& ref : AllRegions(t))
    if (ref.page == page_number) regions.push_back(ref);

  Box box{0, 0, extent.width, extent.height};
  for (const RegionRef& ref : regions) {
    const auto& f = *ref.field;
    box.Include(f.Left(), f.Top() - 16, f.Right(), f.Bottom());  // 16: the name above it
  }
  if (page->TimingMarks())
    for (const auto& m : *page->TimingMarks())
      box.Include(m->Left(), m->Top(), m->Left() + m->Width(), m->Top() + m->Height());
  const double legend_top = box.bottom + kMargin / 2;
  box.Include(box.left - kMargin, box.top - kMargin, box.right + kMargin,
              legend_top + kLegendHeight);
  const double width = box.right - box.left, height = box.bottom - box.top;

  std::ostringstream svg;
  svg << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << N(width) << "\" height=\""
      << N(height) << "\" viewBox=\"" << N(box.left) << " " << N(box.top) << " " << N(width) << " "
      << N(height) << "\" font-family=\"sans-serif\" font-size=\"12\">\n"
      << "<title>" << xun::text::XmlText(t.Name()) << " - page " << page_number << "</title>\n"
      << "<rect class=\"background\" x=\"" << N(box.left) << "\" y=\"" << N(box.top)
      << "\" width=\"" << N(width) << "\" height=\"" << N(height) << "\" fill=\"#e6e6e6\"/>\n"
      << "<rect class=\"page\" x=\"0\" y=\"0\" width=\"" << N(extent.width) << "\" height=\""
      << N(extent.height) << "\" fill=\"#ffffff\"/>\n";
  DrawImage(svg, *page, extent.width, extent.height, notes);
  // The outline goes over the image, so the page edge shows on a dark scan too.
  svg << "<rect class=\"page-outline\" x=\"0\" y=\"0\" width=\"" << N(extent.width)
      << "\" height=\"" << N(extent.height) << "\" fill=\"none\" stroke=\"#000000\" "
      << "stroke-width=\"2\"/>\n";

  if (page->TimingMarks()) {
    svg << "<g class=\"timing-marks\" fill=\"#000000\">\n";
    for (const auto& m : *page->TimingMarks())
      svg << "<rect x=\"" << m->Left() << "\" y=\"" << m->Top() << "\" width=\""
          << std::max<int32_t>(m->Width(), 1) << "\" height=\"" << std::max<int32_t>(m->Height(), 1)
          << "\"/>\n";
    svg << "</g>\n";
  }

  int64_t budget = kMaxBubbles;
  for (const RegionRef& ref : regions) {
    const auto& f = *ref.field;
    const Kind kind = KindOf(f.RecognitionType());
    const int32_t role = RegionIDRole(f);
    std::string label = RegionLabel(ref);
    if (role != 0) label += " [" + IDTypeName(role) + "]";
    if (f.LinkGroup() != 0) label += " [link " + std::to_string(f.LinkGroup()) + "]";
    const int32_t left = std::min(f.Left(), f.Right()), top = std::min(f.Top(), f.Bottom());
    const int32_t w = std::abs(f.Right() - f.Left()), h = std::abs(f.Bottom() - f.Top());
    svg << "<g class=\"region " << kind.name << (role ? " identification" : "") << "\">\n"
        << "<rect x=\"" << left << "\" y=\"" << top << "\" width=\"" << w << "\" height=\"" << h
        << "\" fill=\"" << kind.colour << "\" fill-opacity=\"0.15\" stroke=\"" << kind.colour
        << "\" stroke-width=\"" << (role ? 4 : 2) << "\""
        << (role ? " stroke-dasharray=\"10 5\"" : "") << "/>\n";
    DrawBubbles(svg, f, kind.colour, budget, notes);
    svg << "<text x=\"" << left + 2 << "\" y=\"" << top - 4 << "\" fill=\"" << kind.colour << "\">"
        << xun::text::XmlText(label) << "</text>\n</g>\n";
  }

  // Each link group as a dashed line through the centres of its regions, in group order.
  std::map<int32_t, std::vector<std::pair<double, double>>> chains;
  for (const RegionRef& ref : regions)
    if (ref.field->LinkGroup() != 0)
      chains[ref.field->LinkGroup()].push_back({(ref.field->Left() + ref.field->Right()) / 2.0,
                                                (ref.field->Top() + ref.field->Bottom()) / 2.0});
  for (const auto& [group, points] : chains) {
    svg << "<polyline class=\"link-group\" data-group=\"" << group << "\" fill=\"none\" stroke=\""
        << kLinkColour << "\" stroke-width=\"3\" stroke-dasharray=\"8 4\" points=\"";
    for (const auto& [x, y] : points)
      svg << N(x) << "," << N(y) << " ";
    svg << "\"/>\n";
  }
  DrawLegend(svg, legend_top);
  svg << "</svg>\n";
  return svg.str();
}

}  // namespace xuntool

#include "xun/reading/review_picture.h"

#include <openssl/evp.h>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string_view>

#include "engine/engine_error.h"
#include "engine/image_file.h"
#include "imagefile/page_writer.h"
#include "xun/support/text.h"

namespace xun::reading {
namespace {

constexpr double kGap = 30;   // between pages
constexpr double kLine = 18;  // a line of text
constexpr double kLegend = 30;

std::string N(double v) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.1f", v);
  return buffer;
}

std::string Base64(std::string_view bytes) {
  std::string out(4 * ((bytes.size() + 2) / 3) + 1, '\0');
  const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out.data()),
                                     reinterpret_cast<const unsigned char*>(bytes.data()),
                                     static_cast<int>(bytes.size()));
  out.resize(static_cast<size_t>(std::max(length, 0)));
  return out;
}

// The scan reduced to at most `max_width` pixels across, as a PNG; empty with `why` when it
// cannot be read.
struct Reduced {
  std::string png;
  double scale = 1;  // reduced pixels a scan pixel
  int width = 0, height = 0;
};

Reduced Reduce(const std::string& file, int32_t frame, int max_width, std::string& why) {
  Reduced out;
  try {
    cv::Mat grey = xunrec::DecodeGrey(file, frame);
    out.scale = std::min(1.0, static_cast<double>(max_width) / std::max(grey.cols, 1));
    cv::Mat small;
    cv::resize(grey, small, cv::Size(), out.scale, out.scale, cv::INTER_AREA);
    out.width = small.cols;
    out.height = small.rows;
    const cv::Mat packed = small.isContinuous() ? small : small.clone();
    out.png = xun::imagefile::EncodeGreyPng(packed.cols, packed.rows, packed.data, 0);
  } catch (const xunrec::EngineError& e) {
    why = "it cannot be read (code " + std::to_string(e.Code()) + ")";
  } catch (const std::exception& e) {
    why = e.what();
  }
  if (!why.empty()) out.png.clear();
  return out;
}

const char* StateClass(MarkState state) {
  switch (state) {
    case MarkState::Marked:
      return "marked";
    case MarkState::Doubtful:
      return "doubtful";
    case MarkState::Unmarked:
      return "unmarked";
  }
  return "unmarked";
}

// The reasons of one page (or of the form, page 0) that have no bubbles to outline.
std::vector<std::string> LooseReasons(const FormRecord& record, const PageReading* page,
                                      int32_t number) {
  std::vector<std::string> loose;
  for (const ReviewReason& reason : record.review) {
    if (reason.page != number) continue;
    bool drawn = false;
    if (page)
      for (const BubbleReading& b : page->bubbles)
        if ((reason.item > 0 && b.item == reason.item) ||
            (reason.item == 0 && !reason.region.empty() && b.region == reason.region))
          drawn = true;
    if (!drawn) loose.push_back((reason.name.empty() ? "" : reason.name + ": ") + reason.why);
  }
  return loose;
}

void DrawPage(std::ostream& svg, const FormRecord& record, const PageReading& page, int max_width,
              double top, double& height, double& width) {
  std::string why;
  const Reduced scan =
      page.image.empty() ? Reduced{} : Reduce(page.image, page.frame, max_width, why);
  if (page.image.empty()) why = "no image";
  const std::vector<std::string> loose = LooseReasons(record, &page, page.page);
  double y = top;
  svg << "<g class=\"page\" data-page=\"" << page.page << "\">\n";
  svg << "<text x=\"0\" y=\"" << N(y + 14) << "\" font-weight=\"bold\">page " << page.page
      << (page.image.empty() ? std::string() : ": " + xun::text::XmlText(page.image))
      << (page.frame > 0 ? ", its page " + std::to_string(page.frame + 1) : std::string())
      << "</text>\n";
  y += kLine + 4;
  for (const std::string& text : loose) {
    svg << "<text class=\"reason\" x=\"0\" y=\"" << N(y + 14) << "\" fill=\"#d62728\">"
        << xun::text::XmlText(text) << "</text>\n";
    y += kLine;
  }
  const double w = scan.png.empty() ? max_width : scan.width;
  const double h = scan.png.empty() ? max_width * 11.0 / 8.5 : scan.height;
  if (scan.png.empty()) {
    svg << "<rect x=\"0\" y=\"" << N(y) << "\" width=\"" << N(w) << "\" height=\"" << N(h)
        << "\" fill=\"#cccccc\"/>\n<text x=\"20\" y=\"" << N(y + 40)
        << "\">the scan is not shown: " << xun::text::XmlText(why) << "</text>\n";
  } else {
    svg << "<image x=\"0\" y=\"" << N(y) << "\" width=\"" << N(w) << "\" height=\"" << N(h)
        << "\" preserveAspectRatio=\"none\" href=\"data:image/png;base64," << Base64(scan.png)
        << "\"/>\n";
  }
  const double s = scan.scale;
  svg << "<g class=\"bubbles\">\n";
  for (const BubbleReading& b : page.bubbles)
    svg << "<ellipse class=\"" << StateClass(b.state) << "\" cx=\"" << N(b.x * s) << "\" cy=\""
        << N(y + b.y * s) << "\" rx=\"" << N(b.width * s / 2) << "\" ry=\"" << N(b.height * s / 2)
        << "\"/>\n";
  svg << "</g>\n";
  for (const ReviewReason& reason : record.review) {
    if (reason.page != page.page) continue;
    double left = 1e18, right = -1e18, upper = 1e18, lower = -1e18;
    for (const BubbleReading& b : page.bubbles)
      if ((reason.item > 0 && b.item == reason.item) ||
          (reason.item == 0 && !reason.region.empty() && b.region == reason.region)) {
        left = std::min(left, (b.x - b.width / 2) * s);
        right = std::max(right, (b.x + b.width / 2) * s);
        upper = std::min(upper, (b.y - b.height / 2) * s);
        lower = std::max(lower, (b.y + b.height / 2) * s);
      }
    if (left > right) continue;
    svg << "<g class=\"flagged\" data-item=\"" << reason.item << "\">\n<rect x=\"" << N(left - 4)
        << "\" y=\"" << N(y + upper - 4) << "\" width=\"" << N(right - left + 8) << "\" height=\""
        << N(lower - upper + 8) << "\"/>\n<text x=\"" << N(right + 8) << "\" y=\""
        << N(y + upper + 10) << "\">" << xun::text::XmlText(reason.name + ": " + reason.why)
        << "</text>\n</g>\n";
  }
  svg << "</g>\n";
  height = y + h - top;
  width = w;
}

}  // namespace

std::string ReviewSvg(const FormRecord& record, int max_width) {
  max_width = std::max(max_width, 100);
  std::ostringstream body;
  double y = 0, width = max_width;
  for (const std::string& text : LooseReasons(record, nullptr, 0)) {
    body << "<text class=\"reason\" x=\"0\" y=\"" << N(y + 14) << "\" fill=\"#d62728\">"
         << xun::text::XmlText(text) << "</text>\n";
    y += kLine;
  }
  for (const PageReading& page : record.pages) {
    double h = 0, w = 0;
    DrawPage(body, record, page, max_width, y, h, w);
    y += h + kGap;
    width = std::max(width, w);
  }
  // The legend.
  double x = 0;
  for (const char* state : {"marked", "doubtful", "unmarked"}) {
    body << "<ellipse class=\"" << state << "\" cx=\"" << N(x + 10) << "\" cy=\"" << N(y + 10)
         << "\" rx=\"9\" ry=\"7\"/><text x=\"" << N(x + 24) << "\" y=\"" << N(y + 15) << "\">"
         << state << "</text>\n";
    x += 110;
  }
  body << "<rect class=\"legend-flag\" x=\"" << N(x) << "\" y=\"" << N(y + 2)
       << "\" width=\"18\" height=\"14\" fill=\"none\" stroke=\"#d62728\" stroke-width=\"3\"/>"
       << "<text x=\"" << N(x + 24) << "\" y=\"" << N(y + 15) << "\">to review</text>\n";
  y += kLegend;
  // Text may run past the widest page: leave room for it.
  width += 400;

  std::ostringstream svg;
  svg << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << N(width) << "\" height=\"" << N(y)
      << "\" viewBox=\"-10 -10 " << N(width + 20) << " " << N(y + 20)
      << "\" font-family=\"sans-serif\" font-size=\"13\">\n"
      << "<title>" << xun::text::XmlText(record.images.empty() ? "form" : record.images.front())
      << " - to review</title>\n"
      << "<style>\n"
      << ".marked{fill:#1f77b4;fill-opacity:0.45;stroke:#1f77b4;stroke-width:1.5}\n"
      << ".doubtful{fill:#ff7f0e;fill-opacity:0.3;stroke:#ff7f0e;stroke-width:3}\n"
      << ".unmarked{fill:none;stroke:#2ca02c;stroke-width:1;stroke-opacity:0.7}\n"
      << ".flagged rect{fill:none;stroke:#d62728;stroke-width:3;stroke-dasharray:6 3}\n"
      << ".flagged text{fill:#d62728;font-weight:bold;paint-order:stroke;stroke:#ffffff;"
         "stroke-width:3}\n"
      << "</style>\n"
      << "<rect x=\"-10\" y=\"-10\" width=\"" << N(width + 20) << "\" height=\"" << N(y + 20)
      << "\" fill=\"#ffffff\"/>\n"
      << body.str() << "</svg>\n";
  return svg.str();
}

}  // namespace xun::reading

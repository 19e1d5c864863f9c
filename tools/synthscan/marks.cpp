#include "synthscan/marks.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace xun::synthscan {
namespace {

constexpr std::array<std::pair<MarkKind, std::string_view>, 9> kNames{{
    {MarkKind::kBlank, "blank"},
    {MarkKind::kFull, "full"},
    {MarkKind::kLight, "light"},
    {MarkKind::kPartial, "partial"},
    {MarkKind::kTick, "tick"},
    {MarkKind::kCross, "cross"},
    {MarkKind::kDot, "dot"},
    {MarkKind::kErased, "erased"},
    {MarkKind::kHeavyErased, "heavy-erased"},
}};

double Uniform(std::mt19937& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

// The bubble in output pixels (edges, not pixel centres) and the stretch of page around it that
// a mark may reach: a tick runs well beyond its bubble.
struct Box {
  double x0, y0, x1, y1;
  double Width() const { return x1 - x0; }
  double Height() const { return y1 - y0; }
  double Cx() const { return (x0 + x1) / 2; }
  double Cy() const { return (y0 + y1) / 2; }
};

// Sub-pixel drawing: OpenCV takes fixed-point coordinates with this many fraction bits.
constexpr int kShift = 4;
cv::Point Fixed(double x, double y) {
  return {static_cast<int>(std::lround(x * (1 << kShift))),
          static_cast<int>(std::lround(y * (1 << kShift)))};
}

// A layer of ink over the stretch of page `area`: 0 none, 1 black.
class InkLayer {
 public:
  explicit InkLayer(cv::Rect area) : area_(area), ink_(area.size(), 0.0f) {}

  // How much of each pixel a shape covers (anti-aliased), 0 to 1.
  cv::Mat1f Coverage(const std::vector<cv::Point2d>& outline) const {
    cv::Mat1b mask(area_.size(), 0);
    std::vector<cv::Point> points;
    for (const cv::Point2d& p : outline)
      points.push_back(Fixed(p.x - area_.x, p.y - area_.y));
    cv::fillPoly(mask, std::vector<std::vector<cv::Point>>{points}, cv::Scalar(255), cv::LINE_AA,
                 kShift);
    cv::Mat1f coverage;
    mask.convertTo(coverage, CV_32F, 1.0 / 255);
    return coverage;
  }

  cv::Mat1f Stroke(const std::vector<cv::Point2d>& path, double thickness) const {
    cv::Mat1b mask(area_.size(), 0);
    std::vector<cv::Point> points;
    for (const cv::Point2d& p : path)
      points.push_back(Fixed(p.x - area_.x, p.y - area_.y));
    cv::polylines(mask, std::vector<std::vector<cv::Point>>{points}, false, cv::Scalar(255),
                  std::max(1, static_cast<int>(std::lround(thickness))), cv::LINE_AA, kShift);
    cv::Mat1f coverage;
    mask.convertTo(coverage, CV_32F, 1.0 / 255);
    return coverage;
  }

  // Lays `darkness` (per pixel) where `coverage` says, over what is already there.
  void Lay(const cv::Mat1f& coverage, const cv::Mat1f& darkness) {
    cv::Mat1f laid = coverage.mul(darkness);
    ink_ = cv::max(ink_, laid);
  }

  const cv::Mat1f& Ink() const { return ink_; }
  const cv::Rect& Area() const { return area_; }

 private:
  cv::Rect area_;
  cv::Mat1f ink_;
};

// Pencil lead on paper is grainy, in streaks along the strokes: darkness `level` give or take
// `grain`, never below 0 or above 1.
cv::Mat1f Graphite(cv::Size size, double level, double grain, double stroke_length,
                   std::mt19937& random) {
  cv::Mat1f noise(size);
  cv::RNG rng(random());
  rng.fill(noise, cv::RNG::NORMAL, 0.0, 1.0);
  const int length = std::max(3, static_cast<int>(std::lround(stroke_length)) | 1);
  cv::Mat1f kernel(length, length, 0.0f);
  const double angle = Uniform(random, 0.3, 1.2);
  const cv::Point2d middle(length / 2.0, length / 2.0);
  cv::line(kernel, middle - cv::Point2d(std::cos(angle), -std::sin(angle)) * (length / 2.0),
           middle + cv::Point2d(std::cos(angle), -std::sin(angle)) * (length / 2.0),
           cv::Scalar(1.0));
  kernel /= cv::sum(kernel)[0];
  cv::Mat1f streaks;
  cv::filter2D(noise, streaks, CV_32F, kernel, cv::Point(-1, -1), 0, cv::BORDER_REFLECT);
  // Averaging along the stroke thins the noise; give it back its strength.
  cv::Scalar mean, deviation;
  cv::meanStdDev(streaks, mean, deviation);
  const double scale = deviation[0] > 0 ? grain / deviation[0] : 0;
  cv::Mat1f darkness = streaks * scale + level;
  cv::min(cv::max(darkness, 0.0), 1.0, darkness);
  return darkness;
}

// A filled bubble as a hand makes it: a wobbly ellipse a little off the bubble and a little
// bigger or smaller.
std::vector<cv::Point2d> HandFilledOutline(const Box& bubble, std::mt19937& random) {
  const double cx = bubble.Cx() + Uniform(random, -0.04, 0.04) * bubble.Width();
  const double cy = bubble.Cy() + Uniform(random, -0.04, 0.04) * bubble.Height();
  const double scale = Uniform(random, 0.97, 1.06);
  std::array<double, 3> wobble{}, phase{};
  for (size_t k = 0; k < wobble.size(); ++k) {
    wobble[k] = Uniform(random, 0.0, 0.035);
    phase[k] = Uniform(random, 0.0, 2 * std::numbers::pi);
  }
  std::vector<cv::Point2d> outline;
  constexpr int kPoints = 64;
  for (int i = 0; i < kPoints; ++i) {
    const double theta = 2 * std::numbers::pi * i / kPoints;
    double radius = scale;
    for (size_t k = 0; k < wobble.size(); ++k)
      radius += wobble[k] * std::cos(static_cast<double>(k + 2) * theta + phase[k]);
    outline.emplace_back(cx + bubble.Width() / 2 * radius * std::cos(theta),
                         cy + bubble.Height() / 2 * radius * std::sin(theta));
  }
  return outline;
}

// A pencil stroke through `points`, bowed a little and with shaky ends.
std::vector<cv::Point2d> HandStroke(const std::vector<cv::Point2d>& points, double shake,
                                    std::mt19937& random) {
  std::vector<cv::Point2d> path;
  for (size_t i = 0; i + 1 < points.size(); ++i) {
    const cv::Point2d a = points[i], b = points[i + 1];
    const cv::Point2d along = b - a;
    const cv::Point2d across =
        cv::Point2d(-along.y, along.x) * (1.0 / std::max(1e-9, cv::norm(along)));
    const double bow = Uniform(random, -shake, shake);
    constexpr int kSteps = 8;
    for (int s = i == 0 ? 0 : 1; s <= kSteps; ++s) {
      const double t = static_cast<double>(s) / kSteps;
      path.push_back(a + along * t + across * (bow * 4 * t * (1 - t)));
    }
  }
  return path;
}

cv::Point2d Jitter(double x, double y, double by_x, double by_y, std::mt19937& random) {
  return {x + Uniform(random, -by_x, by_x), y + Uniform(random, -by_y, by_y)};
}

// The part of `coverage` on the near side of a line across it, `share` of the whole: a bubble
// filled from one side and left unfinished.
cv::Mat1f KeepShare(const cv::Mat1f& coverage, double share, std::mt19937& random) {
  // Mostly left to right, sometimes bottom to top, never quite straight.
  const double angle =
      (random() % 3 == 0 ? -std::numbers::pi / 2 : 0.0) + Uniform(random, -0.4, 0.4);
  const double ux = std::cos(angle), uy = std::sin(angle);
  std::vector<std::pair<double, float>> along;
  double total = 0;
  for (int y = 0; y < coverage.rows; ++y)
    for (int x = 0; x < coverage.cols; ++x)
      if (coverage(y, x) > 0) {
        along.emplace_back(x * ux + y * uy, coverage(y, x));
        total += coverage(y, x);
      }
  std::sort(along.begin(), along.end());
  double sum = 0, edge = along.empty() ? 0 : along.back().first;
  for (const auto& [position, weight] : along) {
    sum += weight;
    if (sum >= share * total) {
      edge = position;
      break;
    }
  }
  cv::Mat1f kept = coverage.clone();
  for (int y = 0; y < kept.rows; ++y)
    for (int x = 0; x < kept.cols; ++x)
      if (x * ux + y * uy > edge) kept(y, x) = 0;
  return kept;
}

// What is left when a mark is rubbed out: the mark itself, faint, and a smudge dragged along
// the eraser's path.
void Erasure(InkLayer& layer, const Box& bubble, double residue, std::mt19937& random) {
  const cv::Mat1f mark = layer.Coverage(HandFilledOutline(bubble, random));
  layer.Lay(mark, Graphite(mark.size(), residue, residue * 0.3, bubble.Height() / 3, random));
  cv::Mat1f smudge;
  cv::GaussianBlur(mark, smudge, cv::Size(0, 0), std::max(1.0, bubble.Height() / 5));
  const cv::Mat shift =
      (cv::Mat_<double>(2, 3) << 1, 0, Uniform(random, -0.3, 0.3) * bubble.Width(), 0, 1,
       Uniform(random, -0.2, 0.2) * bubble.Height());
  cv::warpAffine(smudge, smudge, shift, smudge.size());
  layer.Lay(smudge, cv::Mat1f(smudge.size(), static_cast<float>(residue * 0.6)));
}

}  // namespace

std::string MarkName(const Mark& mark) {
  for (const auto& [kind, name] : kNames)
    if (kind == mark.kind)
      return mark.kind == MarkKind::kPartial ? std::string(name) + ":" + std::to_string(mark.share)
                                             : std::string(name);
  return "blank";
}

std::optional<Mark> ParseMark(std::string_view text) {
  const size_t colon = text.find(':');
  const std::string_view name = text.substr(0, colon);
  for (const auto& [kind, known] : kNames) {
    if (known != name) continue;
    if (kind != MarkKind::kPartial) {
      if (colon != std::string_view::npos) return std::nullopt;
      return Mark{kind, 0};
    }
    // A partial mark says its share; alone it is half the bubble.
    int share = 50;
    if (colon != std::string_view::npos) {
      const std::string_view digits = text.substr(colon + 1);
      const auto [end, error] =
          std::from_chars(digits.data(), digits.data() + digits.size(), share);
      if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    }
    if (share < 10 || share > 95) return std::nullopt;
    return Mark{kind, share};
  }
  return std::nullopt;
}

void DrawMark(cv::Mat& page, int dpi, const BubbleRect& unit_box, const Mark& mark,
              std::mt19937& random) {
  CV_Assert(page.type() == CV_8UC1);
  if (mark.kind == MarkKind::kBlank) return;
  const double scale = dpi / 100.0;
  const Box bubble{unit_box.Left * scale, unit_box.Top * scale, unit_box.Right * scale,
                   unit_box.Bottom * scale};
  const double reach = 0.7 * std::max(bubble.Width(), bubble.Height()) + 2;
  const cv::Rect area = cv::Rect(cv::Point(static_cast<int>(std::floor(bubble.x0 - reach)),
                                           static_cast<int>(std::floor(bubble.y0 - reach))),
                                 cv::Point(static_cast<int>(std::ceil(bubble.x1 + reach)),
                                           static_cast<int>(std::ceil(bubble.y1 + reach)))) &
                        cv::Rect(0, 0, page.cols, page.rows);
  if (area.empty()) return;
  InkLayer layer(area);
  // A soft pencil line is about 0.02 inch wide.
  const double line = std::max(1.0, Uniform(random, 1.6, 2.4) * scale);
  const double w = bubble.Width(), h = bubble.Height();

  switch (mark.kind) {
    case MarkKind::kFull: {
      const cv::Mat1f fill = layer.Coverage(HandFilledOutline(bubble, random));
      layer.Lay(fill, Graphite(fill.size(), Uniform(random, 0.84, 0.93), 0.04, h / 3, random));
      break;
    }
    case MarkKind::kLight: {
      const cv::Mat1f fill = layer.Coverage(HandFilledOutline(bubble, random));
      layer.Lay(fill, Graphite(fill.size(), Uniform(random, 0.45, 0.55), 0.1, h / 2, random));
      break;
    }
    case MarkKind::kPartial: {
      const cv::Mat1f fill =
          KeepShare(layer.Coverage(HandFilledOutline(bubble, random)), mark.share / 100.0, random);
      layer.Lay(fill, Graphite(fill.size(), Uniform(random, 0.84, 0.93), 0.04, h / 3, random));
      break;
    }
    case MarkKind::kTick: {
      const std::vector<cv::Point2d> points{
          Jitter(bubble.x0 + 0.12 * w, bubble.Cy(), 0.06 * w, 0.1 * h, random),
          Jitter(bubble.Cx() - 0.1 * w, bubble.y1 - 0.08 * h, 0.06 * w, 0.06 * h, random),
          Jitter(bubble.x1 + 0.2 * w, bubble.y0 - 0.35 * h, 0.08 * w, 0.1 * h, random)};
      layer.Lay(layer.Stroke(HandStroke(points, 0.06 * h, random), line),
                Graphite(area.size(), Uniform(random, 0.75, 0.9), 0.05, h / 3, random));
      break;
    }
    case MarkKind::kCross: {
      // A cross is meant as a choice and made firmly.
      const cv::Mat1f darkness =
          Graphite(area.size(), Uniform(random, 0.82, 0.92), 0.05, h / 3, random);
      for (const bool down : {true, false}) {
        const double y_from = down ? bubble.y0 : bubble.y1, y_to = down ? bubble.y1 : bubble.y0;
        const std::vector<cv::Point2d> points{
            Jitter(bubble.x0 - 0.05 * w, y_from, 0.06 * w, 0.08 * h, random),
            Jitter(bubble.x1 + 0.05 * w, y_to, 0.06 * w, 0.08 * h, random)};
        layer.Lay(layer.Stroke(HandStroke(points, 0.08 * h, random), line * 1.25), darkness);
      }
      break;
    }
    case MarkKind::kDot: {
      // About a hundredth of an inch across, anywhere in or just beside the bubble.
      const double radius = std::max(0.7, Uniform(random, 0.5, 1.0) * scale);
      const cv::Point2d at = Jitter(bubble.Cx(), bubble.Cy(), 0.65 * w, 0.65 * h, random);
      std::vector<cv::Point2d> outline;
      for (int i = 0; i < 16; ++i) {
        const double theta = 2 * std::numbers::pi * i / 16;
        outline.emplace_back(at.x + radius * std::cos(theta), at.y + radius * std::sin(theta));
      }
      layer.Lay(layer.Coverage(outline),
                cv::Mat1f(area.size(), static_cast<float>(Uniform(random, 0.75, 0.9))));
      break;
    }
    case MarkKind::kErased:
      Erasure(layer, bubble, Uniform(random, 0.06, 0.1), random);
      break;
    case MarkKind::kHeavyErased:
      Erasure(layer, bubble, Uniform(random, 0.28, 0.36), random);
      break;
    case MarkKind::kBlank:
      break;
  }

  // Pencil over print: each darkens what it covers.
  cv::Mat1f paper;
  page(area).convertTo(paper, CV_32F);
  cv::Mat1f through = 1.0 - layer.Ink();
  paper = paper.mul(through);
  cv::Mat on_page = page(area);
  paper.convertTo(on_page, CV_8U);
}

}  // namespace xun::synthscan

// Each distortion of the scanner does to a test card what it says, and nothing is left to
// chance that a seed does not fix.
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <functional>
#include <vector>

#include "synthscan/distortions.h"

namespace xun::testing {
namespace {

using synthscan::Distort;
using synthscan::Distortions;

constexpr int kDpi = 150;

// Two inches square at 150 dpi: white paper, a black square, a mid-grey square.
cv::Mat Card() {
  cv::Mat card(300, 300, CV_8UC1, cv::Scalar(255));
  card(cv::Rect(60, 60, 60, 60)).setTo(0);
  card(cv::Rect(180, 180, 90, 90)).setTo(128);
  return card;
}

const cv::Rect kBlack(70, 70, 40, 40), kGrey(190, 190, 70, 70), kWhite(180, 20, 100, 100);

double Mean(const cv::Mat& image, const cv::Rect& area) {
  return cv::mean(image(area))[0];
}

TEST(Distortions, MoveThePageAsTheTransformSays) {
  Distortions d;
  d.rotate = -3;
  d.scale = 0.98;
  d.shift_x = 20;
  d.shift_y = 10;
  const cv::Mat scan = Distort(Card(), d, kDpi, 1);
  cv::Mat1b black;
  cv::compare(scan, 64, black, cv::CMP_LT);
  const cv::Moments m = cv::moments(black, true);
  // The black square's middle is at (60, 60) page units.
  const cv::Matx23d t = synthscan::PageToPixels(d, Card().size(), kDpi);
  const double x = t(0, 0) * 60 + t(0, 1) * 60 + t(0, 2), y = t(1, 0) * 60 + t(1, 1) * 60 + t(1, 2);
  EXPECT_NEAR(m.m10 / m.m00 + 0.5, x, 0.5);
  EXPECT_NEAR(m.m01 / m.m00 + 0.5, y, 0.5);
  // Its area shrinks by the square of the scale; turned, it is no longer upright.
  EXPECT_NEAR(m.m00, 3600 * 0.98 * 0.98, 3600 * 0.02);
  std::vector<cv::Point> points;
  cv::findNonZero(black, points);
  const cv::RotatedRect box = cv::minAreaRect(points);
  const double angle = std::fmod(box.angle + 90.0, 90.0);
  EXPECT_NEAR(std::min(angle, 90 - angle), 3.0, 0.5);
  // What came in from beyond the page is paper.
  EXPECT_EQ(scan.at<uint8_t>(0, 0), 255);
  EXPECT_EQ(scan.size(), Card().size());
}

TEST(Distortions, BlurSoftensEdgesAndKeepsTheInk) {
  Distortions d;
  d.blur = 2;
  const cv::Mat scan = Distort(Card(), d, kDpi, 1);
  cv::Mat1b between;
  cv::inRange(scan, 20, 235, between);
  cv::Mat1b before;
  cv::inRange(Card(), 20, 235, before);
  EXPECT_GT(cv::countNonZero(between), cv::countNonZero(before) + 500);
  EXPECT_NEAR(cv::mean(scan)[0], cv::mean(Card())[0], 0.5);
  EXPECT_EQ(Mean(scan, kBlack), 0);
}

TEST(Distortions, NoiseHasTheAskedSpread) {
  Distortions d;
  d.noise = 12;
  const cv::Mat scan = Distort(Card(), d, kDpi, 7);
  cv::Scalar mean, deviation;
  cv::meanStdDev(scan(kGrey), mean, deviation);
  EXPECT_NEAR(mean[0], 128, 1);
  EXPECT_NEAR(deviation[0], 12, 1);
  EXPECT_EQ(cv::norm(scan, Distort(Card(), d, kDpi, 7), cv::NORM_INF), 0);
  EXPECT_GT(cv::norm(scan, Distort(Card(), d, kDpi, 8), cv::NORM_L1), 0);
}

TEST(Distortions, HalvedContrastMeetsInTheMiddle) {
  Distortions d;
  d.contrast = 0.5;
  const cv::Mat scan = Distort(Card(), d, kDpi, 1);
  EXPECT_NEAR(Mean(scan, kWhite), 191.5, 1);
  EXPECT_NEAR(Mean(scan, kBlack), 64, 1);
  EXPECT_NEAR(Mean(scan, kGrey), 128, 1);
}

TEST(Distortions, JpegLosesMoreAtLowerQuality) {
  cv::Mat card = Card();
  cv::putText(card, "OMR 123", cv::Point(20, 250), cv::FONT_HERSHEY_SIMPLEX, 1.0, cv::Scalar(0), 2);
  double last_loss = 0;
  for (const int quality : {95, 60, 15}) {
    Distortions d;
    d.jpeg = quality;
    const cv::Mat scan = Distort(card, d, kDpi, 1);
    const double loss = cv::norm(scan, card, cv::NORM_L1) / static_cast<double>(card.total());
    EXPECT_GT(loss, last_loss) << quality;
    last_loss = loss;
    // Still the page: the squares read as they were.
    EXPECT_LT(Mean(scan, kBlack), 20) << quality;
    EXPECT_NEAR(Mean(scan, kGrey), 128, 4) << quality;
  }
}

TEST(Distortions, DitherIsBlackAndWhiteWithTheGreyAsDensity) {
  Distortions d;
  d.dither = true;
  const cv::Mat scan = Distort(Card(), d, kDpi, 1);
  cv::Mat1b neither;
  cv::inRange(scan, 1, 254, neither);
  EXPECT_EQ(cv::countNonZero(neither), 0);
  EXPECT_NEAR(Mean(scan, kGrey), 128, 6);
  EXPECT_EQ(Mean(scan, kBlack), 0);
  EXPECT_EQ(Mean(scan, kWhite), 255);
}

TEST(Distortions, BeyondAScannerAreRefused) {
  for (const auto& change : std::vector<std::function<void(Distortions&)>>{
           [](Distortions& d) { d.rotate = 3.5; }, [](Distortions& d) { d.scale = 1.03; },
           [](Distortions& d) { d.shift_y = -31; }, [](Distortions& d) { d.contrast = 0; },
           [](Distortions& d) { d.jpeg = 101; }, [](Distortions& d) { d.noise = -1; }}) {
    Distortions d;
    change(d);
    EXPECT_FALSE(synthscan::Refusal(d).empty());
    EXPECT_THROW(Distort(Card(), d, kDpi, 1), std::invalid_argument);
  }
  Distortions most;
  most.rotate = -3;
  most.scale = 1.02;
  most.shift_x = 30;
  EXPECT_EQ(synthscan::Refusal(most), "");
}

}  // namespace
}  // namespace xun::testing

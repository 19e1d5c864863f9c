// What the generator's tests share: the answer sheet they mark (20 questions of 5 choices, 10
// timing marks down the left edge) and measures of ink taken straight from the pixels.
#pragma once

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>
#include <memory>
#include <string>

#include "synthscan/synthetic_scan.h"
#include "xun/xun.h"

namespace xun::testing {

inline std::shared_ptr<clsXUNTemplate> AnswerSheet() {
  auto form = clsXUNTemplate::Create();
  form->Name("Answer sheet");
  form->PageWidth(8.5);
  form->PageHeight(11);
  auto page = clsXUNPage::Create();
  form->Pages()->Add(page);
  std::string marks;
  for (int i = 0; i < 10; ++i)
    marks += (i ? "\t" : "") + std::string("20,") + std::to_string(100 + i * 65) + ",30,12";
  page->TimingMarks()->AddDelimitedString(marks);
  auto field = clsXUNField::Create();
  field->FieldName("Answers");
  field->RecognitionType(xunRecogTypeOMR);
  field->FieldType(xunFieldTypeOMRMult);
  field->DataType(xunDataTypeText);
  field->Orient(xunOrientationTypeOMRRow);
  field->NumRows(20);
  field->NumCols(5);
  // Bubbles of 20 by 15 units, 40 by 30 apart.
  field->Left(150);
  field->Top(100);
  field->Right(360);
  field->Bottom(710);
  field->StartCol(10);
  field->StartRow(10);
  field->ColGap(40);
  field->RowGap(30);
  page->Fields()->Add(field);
  field->Questions()->Update();
  return form;
}

// Of the pixels of a scan inside the ellipse inscribed in bubble `rect` (page units), shrunk
// by `inner` so that the printed outline stays out, wherever the scan put the page: the share
// darker than mid grey, and the mean darkness (0 white, 1 black).
struct Ink {
  double dark_share = 0, darkness = 0;
};

inline Ink InkInBubble(const synthscan::Scan& scan, const BubbleRect& rect, double inner = 0.75) {
  const cv::Point2d centre =
      synthscan::OnScan(scan, (rect.Left + rect.Right) / 2.0, (rect.Top + rect.Bottom) / 2.0);
  const double to_pixels = std::hypot(scan.page_to_pixels(0, 0), scan.page_to_pixels(1, 0));
  const double angle = std::atan2(-scan.page_to_pixels(1, 0), scan.page_to_pixels(0, 0));
  // OpenCV draws about pixel centres; the transform gives pixel edges.
  const cv::RotatedRect ellipse(
      cv::Point2f(static_cast<float>(centre.x - 0.5), static_cast<float>(centre.y - 0.5)),
      cv::Size2f(static_cast<float>((rect.Right - rect.Left) * to_pixels * inner),
                 static_cast<float>((rect.Bottom - rect.Top) * to_pixels * inner)),
      static_cast<float>(-angle * 180 / CV_PI));
  const cv::Rect window = ellipse.boundingRect() & cv::Rect(0, 0, scan.image.cols, scan.image.rows);
  cv::Mat1b mask(window.size(), 0);
  cv::ellipse(mask,
              cv::RotatedRect(ellipse.center - cv::Point2f(static_cast<float>(window.x),
                                                           static_cast<float>(window.y)),
                              ellipse.size, ellipse.angle),
              cv::Scalar(255), cv::FILLED);
  const cv::Mat pixels = scan.image(window);
  const double count = cv::countNonZero(mask);
  cv::Mat1b dark;
  cv::compare(pixels, 128, dark, cv::CMP_LT);
  cv::bitwise_and(dark, mask, dark);
  return {cv::countNonZero(dark) / count, 1.0 - cv::mean(pixels, mask)[0] / 255.0};
}

}  // namespace xun::testing

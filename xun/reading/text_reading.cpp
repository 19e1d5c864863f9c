#include "xun/reading/text_reading.h"

#include <tesseract/baseapi.h>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <memory>
#include <string>

namespace xun::reading::detail {
namespace {

// One Tesseract for each thread (an instance is not safe to share), for the last language asked.
struct ThreadOcr {
  std::unique_ptr<tesseract::TessBaseAPI> api;
  std::string language;
  bool ready = false;
};

tesseract::TessBaseAPI* OcrFor(const std::string& language) {
  thread_local ThreadOcr ocr;
  if (ocr.api && ocr.language == language) return ocr.ready ? ocr.api.get() : nullptr;
  ocr.api = std::make_unique<tesseract::TessBaseAPI>();
  ocr.language = language;
  // Its complaints (a language's data not found) would go to standard error, in the middle of a
  // host's output: the failure is reported in the answers instead. The setting is Tesseract's
  // global one, so it is made before Init reads any file.
  ocr.api->SetVariable("debug_file", "/dev/null");
  ocr.ready = ocr.api->Init(nullptr, language.c_str(), tesseract::OEM_LSTM_ONLY) == 0;
  return ocr.ready ? ocr.api.get() : nullptr;
}

std::string Tidied(const char* text) {
  std::string out;
  bool space = false;
  for (const char* c = text; c && *c; ++c) {
    if (*c == ' ' || *c == '\n' || *c == '\t' || *c == '\r' || *c == '\f') {
      space = !out.empty();
      continue;
    }
    if (space) out += ' ';
    space = false;
    out += *c;
  }
  return out;
}

}  // namespace

TextRead ReadText(const RegionCut& cut, const std::string& whitelist, const std::string& language) {
  TextRead read;
  // Paper with nothing on it is blank, whatever Tesseract would make of its grain.
  cv::Mat ink;
  cv::threshold(cut.image, ink, 128, 255, cv::THRESH_BINARY_INV);
  if (cv::countNonZero(ink) < std::max<int64_t>(4, ink.total() / 2000)) return read;
  tesseract::TessBaseAPI* api = OcrFor(language);
  if (!api) {
    read.error = "the OCR data for the language \"" + language + "\" is not installed";
    return read;
  }
  api->SetVariable("tessedit_char_whitelist", whitelist.c_str());
  api->SetPageSegMode(tesseract::PSM_SINGLE_BLOCK);
  api->SetImage(cut.image.data, cut.image.cols, cut.image.rows, 1,
                static_cast<int>(cut.image.step[0]));
  api->SetSourceResolution(static_cast<int>(cut.Dpi() + 0.5));
  const std::unique_ptr<char[]> text(api->GetUTF8Text());
  read.text = Tidied(text.get());
  read.confidence = read.text.empty() ? 0 : api->MeanTextConf();
  api->Clear();
  return read;
}

RegionValue TextValue(const TextRead& read, const RegionPlan& region) {
  if (!read.error.empty()) return RegionValue::Unread(AnswerStatus::Error, read.error);
  if (read.text.empty()) return RegionValue::Blank();
  RegionValue value = RegionValue::Of(read.text, read.confidence / 100.0);
  if (read.confidence < region.threshold) {
    value.status = AnswerStatus::Doubtful;
    value.why = "read with " + std::to_string(read.confidence) + "% confidence, below the " +
                std::to_string(region.threshold) + "% the region asks";
  }
  return value;
}

}  // namespace xun::reading::detail

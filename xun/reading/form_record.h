// What reading one respondent's form gives: plain values a host (or a Python binding) can keep,
// print or send on without the template.
#pragma once

#include <string>
#include <vector>

#include "xun/reading/answer_rules.h"

namespace xun::reading {

// The answer of one item of the template.
struct ItemAnswer {
  int32_t item = 0;  // the template's item number, from 1
  std::string name;  // the question's name
  int32_t page = 0;  // the template page it is on, from 1
  std::string value;
  AnswerStatus status = AnswerStatus::Clear;
  double confidence = 1.0;
  std::string why;
  // A picture of the item for a person: the image clip written for it, or the clip of an OCR
  // answer to check. Empty when none was written.
  std::string clip;
};

// How one bubble was judged.
struct BubbleReading {
  std::string region;        // the region's name
  int32_t row = 0, col = 0;  // in its grid, from 1
  int16_t fill = 0;          // net fill in percent
  MarkState state = MarkState::Unmarked;
};

// How one page of the form was read.
struct PageReading {
  int32_t page = 0;   // the template page, from 1
  std::string image;  // the file it was read from
  int32_t frame = 0;  // the page within that file, from 0 (a multi-page TIFF holds several)
  bool registered = false;
  std::string registered_by;  // the printed shapes that placed it: bubbles or timing marks
  std::string model;          // the fit that registered it: similarity, affine or perspective
  double fit_error = 0;       // root mean square, in 1/100 inch
  // The printed shapes it was registered by (bubbles, or timing marks) found, and printed.
  int32_t bubbles_found = 0, bubbles_printed = 0;
  std::string error;                   // why it could not be read; empty when it was
  std::vector<BubbleReading> bubbles;  // every printed bubble, when the page was read
};

struct XUN_READING_API FormRecord {
  std::vector<std::string> images;  // the files the form's pages came from, in order
  std::vector<PageReading> pages;
  std::vector<ItemAnswer> answers;  // in the template's item order
  std::string error;                // the whole form could not be read: why

  // Whether a person should look at the form: an answer that is not clear or blank, a page that
  // was not read.
  bool NeedsReview() const;
};

}  // namespace xun::reading

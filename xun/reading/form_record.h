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
  int32_t item = 0;  // the data item it answers; 0 for none (a hidden identification question's)
  // Where the registration put it on the image, in pixels: its centre and its size.
  double x = 0, y = 0, width = 0, height = 0;
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

// An identification question (form ID, page ID, respondent tracker, read-head check) as read:
// hidden ones (that add no data item) are only here, the others are among the answers too.
struct IdentificationReading {
  int32_t role = 0;       // 1 form ID, 2 page ID, 3 respondent tracker, 4 read-head check
  std::string expected;   // the value the template gives it (none for a respondent tracker)
  bool adds_item = true;  // whether it is a data item as well
  std::string region;     // its region's name
  ItemAnswer answer;      // item 0 when it adds no data item
};

// Something a person has to look at: a page (item 0) or an item, and why.
struct ReviewReason {
  int32_t page = 0;    // the template page, from 1; 0 for the whole form
  int32_t item = 0;    // the item, from 1; 0 for a page or a hidden identification question
  std::string name;    // the item's or identification question's name
  std::string region;  // the region it lies in, when it is one question's
  std::string why;
};

// How one graded item scored against the key.
struct ItemScore {
  int32_t item = 0;
  std::string name;
  std::string result;  // "correct", "incorrect" or "no response"
  double points = 0;
  bool extra_credit = false;  // its points add to the total but not to the points possible
  bool provisional = false;   // the answer was not clear: a person should confirm the result
};

struct FormScore {
  bool scored = false;  // a key was applied
  std::string version;  // the test version whose key was used; empty for a key of every version
  double total = 0, possible = 0;
  std::vector<ItemScore> items;  // in item order
  std::string error;             // why the form could not be scored (no key for its version)
};

struct XUN_READING_API FormRecord {
  std::vector<std::string> images;  // the files the form's pages came from, in order
  std::vector<PageReading> pages;
  std::vector<ItemAnswer> answers;  // in the template's item order
  std::string error;                // the whole form could not be read: why
  std::vector<IdentificationReading> identification;
  std::string respondent;            // the respondent tracker's value, when it was read
  std::vector<ReviewReason> review;  // what a person must look at, page by page
  FormScore score;

  // Whether a person should look at the form: anything in `review`.
  bool NeedsReview() const { return !review.empty(); }
};

}  // namespace xun::reading

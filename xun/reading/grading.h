// Scoring read forms against an answer key (docs/reading.md, "Grading").
#pragma once

#include <map>
#include <string>
#include <vector>

#include "xun/model/fwd.h"
#include "xun/reading/export.h"
#include "xun/reading/form_record.h"

namespace xun::reading {

class FormReader;

// The right answers: for each test version (empty: every version), each question's name and
// the values that are right for it (a grid or list question's whole value).
struct XUN_READING_API AnswerKey {
  struct Entry {
    std::vector<std::string> values;
    int32_t line = 0;  // where a key file gave it, for messages; 0 from a key sheet
  };
  std::string source;  // the key file or first key sheet, for messages
  std::map<std::string, std::map<std::string, Entry>> versions;

  // A CSV key file: `question,value[,value...]` a line, or with a first line of column names,
  // `question,answer...` or `version,question,answer...` (a key for each test version). Blank
  // lines and lines starting with '#' are skipped; cells are trimmed; RFC 4180 quotes. Throws
  // std::runtime_error "FILE:LINE: what is wrong".
  static AnswerKey FromCsv(const std::string& file);
  static AnswerKey FromCsvText(const std::string& text, const std::string& source);

  // Filled key sheets, read with `reader` (each sheet one image a page): the clear answers of
  // the graded questions become the key. With several sheets, each is the key of the test version
  // it reads. What is left out (blank, unclear) is added to `problems`, one line each.
  static AnswerKey FromSheets(const clsXUNTemplate& form, const FormReader& reader,
                              const std::vector<std::vector<std::string>>& sheets,
                              std::vector<std::string>& problems);
};

// Scores records of one template with one key. Takes from the template what it needs, once.
class XUN_READING_API Grader {
 public:
  // Throws std::runtime_error when the key names a question the template does not have or one
  // that is not graded. Graded questions without a key are in Notes().
  Grader(const clsXUNTemplate& form, AnswerKey key);

  const std::vector<std::string>& Notes() const { return notes_; }

  // Fills the record's score: each graded item's points (Correct, Incorrect or NoResponse) and
  // the total; an answer not clear scores by its value (MULT and ERROR never right) and is
  // provisional. A form whose test version has no key is not scored, and is for review; one with
  // a page not read is not scored either. Call it once a record.
  void Score(FormRecord& record) const;

  struct Points {
    std::string name;
    double correct = 1, incorrect = 0, no_response = 0;
    bool extra_credit = false;
    std::string blanks_return;
  };

 private:
  AnswerKey key_;
  std::map<int32_t, Points> graded_;  // by item number
  std::string version_question_;      // the test version question's name, if any
  std::vector<std::string> notes_;
};

}  // namespace xun::reading

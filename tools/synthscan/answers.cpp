#include "synthscan/answers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace xun::synthscan {
namespace {

std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::vector<std::string> Cells(const std::string& line) {
  std::vector<std::string> cells;
  std::stringstream in(line);
  std::string cell;
  while (std::getline(in, cell, ','))
    cells.push_back(Trimmed(cell));
  if (!line.empty() && line.back() == ',') cells.emplace_back();
  return cells;
}

bool WholeNumber(const std::string& text, int& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

// The bubbles a respondent chooses among at once, as (row, col) of the grid.
using AnswerLine = std::vector<std::pair<int, int>>;

// A question's block of bubbles split into lines across its choices: rows of a row-oriented
// region, columns of a column-oriented one (a grid question thus gives one line per digit or
// letter position).
void AddLines(const OmrRegion& region, int16_t first_row, int16_t last_row, int16_t first_col,
              int16_t last_col, std::vector<AnswerLine>& lines) {
  const bool by_columns = region.field->Orient() == xunOrientationTypeOMRCol;
  const int outer_first = by_columns ? first_col : first_row;
  const int outer_last = by_columns ? last_col : last_row;
  for (int outer = outer_first; outer <= outer_last; ++outer) {
    AnswerLine line;
    for (int inner = by_columns ? first_row : first_col;
         inner <= (by_columns ? last_row : last_col); ++inner)
      line.emplace_back(by_columns ? inner : outer, by_columns ? outer : inner);
    if (!line.empty()) lines.push_back(std::move(line));
  }
}

std::vector<AnswerLine> AnswerLines(const OmrRegion& region) {
  std::vector<AnswerLine> lines;
  const auto questions = region.field->Questions();
  if (!questions || questions->Count() == 0) {
    AddLines(region, 1, region.grid.NumRows(), 1, region.grid.NumCols(), lines);
    return lines;
  }
  for (const auto& question : *questions) {
    int16_t first_row = 0, last_row = 0, first_col = 0, last_col = 0;
    if (!question || !question->Plot(first_row, last_row, first_col, last_col)) continue;
    last_row = std::min(last_row, region.grid.NumRows());
    last_col = std::min(last_col, region.grid.NumCols());
    AddLines(region, first_row, last_row, first_col, last_col, lines);
  }
  return lines;
}

// The hard kinds, taken in turn so that each turns up.
const std::array<Mark, 7> kHardMarks{{{MarkKind::kPartial, 45},
                                      {MarkKind::kPartial, 85},
                                      {MarkKind::kTick, 0},
                                      {MarkKind::kCross, 0},
                                      {MarkKind::kDot, 0},
                                      {MarkKind::kErased, 0},
                                      {MarkKind::kHeavyErased, 0}}};

}  // namespace

MarkPlan ReadMarksFile(const std::string& file, const clsXUNPage& page) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error(file + ": cannot be read");
  const std::vector<OmrRegion> regions = OmrRegionsOf(page);
  MarkPlan plan;
  std::string text;
  for (int number = 1; std::getline(in, text); ++number) {
    const std::string line = Trimmed(text);
    const auto fail = [&](const std::string& why) {
      throw std::runtime_error(file + ":" + std::to_string(number) + ": " + why);
    };
    if (line.empty() || line[0] == '#') continue;
    const std::vector<std::string> cells = Cells(line);
    if (number == 1 && cells.size() == 4 && cells[0] == "region") continue;
    if (cells.size() != 4) fail("expected region,row,col,kind");
    const auto region = std::find_if(regions.begin(), regions.end(),
                                     [&](const OmrRegion& r) { return r.name == cells[0]; });
    if (region == regions.end()) fail("no OMR region '" + cells[0] + "' on the page");
    int row = 0, col = 0;
    if (!WholeNumber(cells[1], row) || row < 1 || row > region->grid.NumRows())
      fail("row '" + cells[1] + "' is not 1 to " + std::to_string(region->grid.NumRows()));
    if (!WholeNumber(cells[2], col) || col < 1 || col > region->grid.NumCols())
      fail("column '" + cells[2] + "' is not 1 to " + std::to_string(region->grid.NumCols()));
    const std::optional<Mark> mark = ParseMark(cells[3]);
    if (!mark) fail("'" + cells[3] + "' is not a mark");
    plan[{region->name, row, col}] = *mark;
  }
  return plan;
}

MarkPlan RandomMarks(const clsXUNPage& page, uint32_t seed) {
  std::mt19937 random(seed);
  const auto below = [&](size_t n) { return static_cast<size_t>(random() % n); };
  size_t next_hard = below(kHardMarks.size());
  MarkPlan plan;
  for (const OmrRegion& region : OmrRegionsOf(page))
    for (const AnswerLine& line : AnswerLines(region)) {
      const auto at = [&](size_t i) {
        return BubbleAt{region.name, line[i].first, line[i].second};
      };
      const auto clear = [&]() {
        return random() % 5 == 0 ? Mark{MarkKind::kLight, 0} : Mark{MarkKind::kFull, 0};
      };
      const size_t roll = below(100);
      if (roll < 55) {
        plan[at(below(line.size()))] = clear();
      } else if (roll < 65) {
        // Left blank.
      } else if (roll < 75) {
        // Two or three answers where one is asked for.
        std::vector<size_t> order(line.size());
        for (size_t i = 0; i < order.size(); ++i)
          order[i] = i;
        std::shuffle(order.begin(), order.end(), random);
        const size_t count = std::min(order.size(), 2 + below(2));
        for (size_t i = 0; i < count; ++i)
          plan[at(order[i])] = clear();
      } else {
        const Mark hard = kHardMarks[next_hard];
        next_hard = (next_hard + 1) % kHardMarks.size();
        const size_t where = below(line.size());
        plan[at(where)] = hard;
        // A changed answer or a stray dot usually sits beside a real one.
        if (line.size() > 1 && random() % 2 == 0) {
          const size_t other = (where + 1 + below(line.size() - 1)) % line.size();
          plan[at(other)] = clear();
        }
      }
    }
  return plan;
}

}  // namespace xun::synthscan

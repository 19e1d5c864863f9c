// The review picture: the scan itself, every bubble as judged, what to look at outlined with why,
// and a document a browser can open (its tags balanced, its text escaped).
#include <gtest/gtest.h>

#include <string>

#include "common/identified_sheet.h"
#include "common/sheet_scans.h"
#include "xun/reading/form_reader.h"
#include "xun/reading/review_picture.h"

namespace xun::reading {
namespace {

size_t Count(const std::string& text, const std::string& what) {
  size_t n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
    ++n;
  return n;
}

TEST(ReviewPictureTest, ShowsTheScanTheJudgedBubblesAndWhatToLookAt) {
  auto form = testing::IdentifiedSheet(2);
  testing::SheetScans scans(form);
  synthscan::MarkPlan page1;
  testing::MarkDigits(page1, "PageID", "1");
  testing::MarkDigits(page1, "FormID", "17");  // a wrong form
  testing::MarkDigits(page1, "Respondent", "123");
  testing::MarkAnswers(page1, "A[BC]D");  // Q2 marked twice
  const FormReader reader(*form);
  const std::string missing = scans.folder().File("missing.png");
  FormRecord record = reader.Read({scans.Scan(1, page1, "p1.png"), missing});
  form->Free();
  ASSERT_TRUE(record.NeedsReview());
  // Page 2 not read, the form ID and Q2 on page 1.
  ASSERT_EQ(record.review.size(), 3u);
  // Text that is not XML passes escaped.
  record.review[0].why += " <&\">";

  const std::string svg = ReviewSvg(record, 600);
  EXPECT_EQ(svg.rfind("<?xml", 0), 0u);
  EXPECT_EQ(Count(svg, "<image "), 1u);
  EXPECT_EQ(Count(svg, "href=\"data:image/png;base64,iVBORw0KGgo"), 1u);  // a PNG's signature
  EXPECT_NE(svg.find("width=\"600.0\""), std::string::npos);  // reduced to the width asked
  // Every bubble of page 1 as judged.
  size_t marked = 0;
  for (const BubbleReading& b : record.pages[0].bubbles)
    marked += b.state == MarkState::Marked;
  EXPECT_EQ(Count(svg, "<ellipse class=\"marked\""), marked + 1);  // and the legend's
  EXPECT_EQ(Count(svg, "<ellipse class="), record.pages[0].bubbles.size() + 3);
  // The form ID and Q2 outlined with why; page 2's reason above its grey page.
  EXPECT_EQ(Count(svg, "<g class=\"flagged\""), 2u);
  EXPECT_NE(svg.find("FormID: wrong form: read '17', expected '42'"), std::string::npos);
  EXPECT_NE(svg.find("Q2: multiple"), std::string::npos);
  EXPECT_NE(svg.find("the scan is not shown"), std::string::npos);
  EXPECT_EQ(svg.find(" <&\">"), std::string::npos);
  EXPECT_NE(svg.find(" &lt;&amp;&quot;&gt;"), std::string::npos);
  // Balanced: every group and the document closed.
  EXPECT_EQ(Count(svg, "<g "), Count(svg, "</g>"));
  EXPECT_EQ(Count(svg, "<svg "), 1u);
  EXPECT_EQ(svg.substr(svg.size() - 7), "</svg>\n");
}

}  // namespace
}  // namespace xun::reading

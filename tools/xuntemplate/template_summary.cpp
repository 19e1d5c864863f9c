#include "template_summary.h"

#include <filesystem>
#include <map>
#include <sstream>

#include "template_walk.h"
#include "tool.h"

namespace xuntool {
namespace {

std::string Number(double value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

std::string ImageFacts(const xun::clsXUNPage& page) {
  std::error_code ec;
  const bool present = !page.ImageFile().empty() && std::filesystem::exists(page.ImageFile(), ec);
  std::string out = present ? "image" : "no image";
  if (page.ImageWidth() > 0 || page.ImageHeight() > 0 || page.XDPI() > 0 || page.YDPI() > 0)
    out += " " + std::to_string(page.ImageWidth()) + "x" + std::to_string(page.ImageHeight()) +
           " px at " + std::to_string(page.XDPI()) + "x" + std::to_string(page.YDPI()) + " dpi";
  out += ", drop-out colour " + std::to_string(page.DropOutColor()) + " threshold " +
         std::to_string(page.DropOutThreshold());
  if (page.FilledPixels() >= 0) out += ", " + std::to_string(page.FilledPixels()) + " filled px";
  return out;
}

}  // namespace

void PrintSummary(std::ostream& out, const xun::clsXUNTemplate& t) {
  const PageExtent extent = ExtentOf(t);
  out << "  Size:            " << Number(t.PageWidth()) << " x " << Number(t.PageHeight())
      << " in, "
      << (t.Orientation() == xun::xunOrientationTypeFormLandscape ? "landscape" : "portrait")
      << " (" << Number(extent.width) << " x " << Number(extent.height) << " px at 100 dpi)\n";
  out << "  Read type:       " << ReadTypeName(t.ReadType()) << "\n";

  out << "  Pages:           " << t.NumPages() << "\n";
  int32_t p = 0;
  for (const auto& page : *t.Pages()) {
    ++p;
    out << "    page " << p << ": " << Plural(page->NumFields(), "region", "regions") << ", "
        << Plural(page->NumItems(), "item", "items") << ", "
        << Plural(page->NumTimingMarks(), "timing mark", "timing marks") << "; "
        << ImageFacts(*page) << "\n";
  }

  const auto regions = AllRegions(t);
  std::map<std::string, int32_t> kinds;
  for (const RegionRef& ref : regions)
    ++kinds[RecogTypeName(ref.field->RecognitionType())];
  out << "  Regions:         " << t.NumFields();
  if (!kinds.empty()) {
    out << " (";
    bool first = true;
    for (const auto& [name, count] : kinds) {
      out << (first ? "" : ", ") << name << " " << count;
      first = false;
    }
    out << ")";
  }
  out << "\n";
  out << "  Questions:       " << t.NumQuestions() << "\n";
  out << "  Items:           " << t.NumItems() << " (graded " << t.NumGradedItems()
      << ", subjective " << t.NumSubjectiveItems() << ", database lookups " << t.NumDBVerify()
      << ")\n";

  out << "  Identification:\n";
  for (int32_t role = xun::xunIDTypeForm; role <= xun::xunIDTypeReadHeadCheck; ++role) {
    const auto id = static_cast<xun::xunIDType>(role);
    out << "    " << IDTypeName(role) << ": ";
    if (!t.IDFieldsExist(id)) {
      out << "none\n";
      continue;
    }
    std::string where;
    for (const RegionRef& ref : regions) {
      if (ref.field->IDQuestion(id) == 0) continue;
      where +=
          (where.empty() ? "" : ", ") + RegionLabel(ref) + " on page " + std::to_string(ref.page);
    }
    std::string message;
    const bool valid = t.IDFieldsValid(id, false, &message);
    out << where << "; " << (valid ? "valid" : "not valid: " + OneLine(message)) << "\n";
  }

  const auto groups = LinkGroups(t);
  out << "  Link groups:     " << (groups.empty() ? "none" : std::to_string(groups.size())) << "\n";
  for (const auto& [number, members] : groups) {
    out << "    group " << number << ":";
    const char* separator = " ";
    for (const RegionRef& ref : members) {
      out << separator << RegionLabel(ref) << " (page " << ref.page << ")";
      separator = ", ";
    }
    out << "\n";
  }
}

}  // namespace xuntool

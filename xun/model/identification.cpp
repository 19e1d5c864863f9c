// Identification regions (form ID, page ID, respondent tracker, read-head check): whether they
// exist and whether they follow the rules a form-reading program relies on.
#include <map>
#include <string>
#include <vector>

#include "xun/model/field.h"
#include "xun/model/page.h"
#include "xun/model/question.h"
#include "xun/model/template.h"
#include "xun/support/error_reporter.h"
#include "xun/support/message_box.h"
#include "xun/support/trap.h"
#include "xun/templatefile/clean_text.h"

namespace xun {
namespace {

// An identification value as a saved file holds it: a value of blanks and tabs is no value, and
// two values the file cannot tell apart are the same, so the rules give the same answer before a
// save and after the read.
std::string IDValueOf(const clsXUNQuestion& question) {
  return basTemplate::detail::FileText(question.IDValue(), true, "");
}

bool HasRole(const clsXUNQuestion& question, xunIDType role) {
  return role == xunIDTypeAny ? question.IDType() >= xunIDTypeForm : question.IDType() == role;
}

// One region holding a role, with where it stands and its first question of that role.
struct Found {
  int32_t page = 0;  // 1-based
  std::shared_ptr<clsXUNField> field;
  std::shared_ptr<clsXUNQuestion> question;
};

// Every region with a question of the role, once each, in template order: the rules count
// regions, not questions.
std::vector<Found> FindRole(const clsXUNTemplate& oTemplate, xunIDType role) {
  std::vector<Found> found;
  const auto pages = oTemplate.Pages();
  if (!pages) return found;
  int32_t page_number = 0;
  for (const auto& page : *pages) {
    ++page_number;
    if (!page->Fields()) continue;
    for (const auto& field : *page->Fields()) {
      if (!field->Questions()) continue;
      for (const auto& question : *field->Questions())
        if (HasRole(*question, role)) {
          found.push_back(Found{page_number, field, question});
          break;
        }
    }
  }
  return found;
}

// The regions of a role on each page, by page number.
std::map<int32_t, std::vector<const Found*>> ByPage(const std::vector<Found>& found) {
  std::map<int32_t, std::vector<const Found*>> by_page;
  for (const Found& f : found)
    by_page[f.page].push_back(&f);
  return by_page;
}

std::string PageText(int32_t page) {
  return std::to_string(page);
}

// The reason the role's regions are not valid, or empty text when they are. Each rule is checked
// over the whole template before the next, in the documented order.
std::string CheckFormID(const clsXUNTemplate& t) {
  const auto found = FindRole(t, xunIDTypeForm);
  if (found.empty()) return "The template does not contain a form ID region.";
  if (found.size() > 1) return "The template contains more than one form ID region.";
  if (found[0].page != 1) return "The form ID region must be on the first page of the template.";
  if (!found[0].field->Read()) return "The form ID region must be read.";
  if (IDValueOf(*found[0].question).empty())
    return "The form ID region does not have a form ID value.";
  return {};
}

std::string CheckPageID(const clsXUNTemplate& t) {
  const int32_t pages = t.Pages() ? t.Pages()->Count() : 0;
  if (pages == 0) return "The template does not contain any pages.";
  const auto found = FindRole(t, xunIDTypePage);
  auto by_page = ByPage(found);
  for (int32_t page = 1; page <= pages; ++page) {
    const auto& here = by_page[page];
    if (here.empty()) return "Page " + PageText(page) + " does not contain a page ID region.";
    if (here.size() > 1)
      return "Page " + PageText(page) + " contains more than one page ID region.";
  }
  for (int32_t page = 1; page <= pages; ++page)
    if (!by_page[page][0]->field->Read())
      return "The page ID region on page " + PageText(page) + " must be read.";
  for (int32_t page = 1; page <= pages; ++page)
    if (IDValueOf(*by_page[page][0]->question).empty())
      return "The page ID region on page " + PageText(page) + " does not have a page ID value.";
  std::map<std::string, int32_t> page_of_value;
  for (int32_t page = 1; page <= pages; ++page) {
    const auto [it, fresh] = page_of_value.emplace(IDValueOf(*by_page[page][0]->question), page);
    if (!fresh)
      return "Pages " + PageText(it->second) + " and " + PageText(page) +
             " have the same page ID value.";
  }
  return {};
}

std::string CheckRespondent(const clsXUNTemplate& t) {
  const auto found = FindRole(t, xunIDTypeRespondent);
  if (found.empty()) return "The template does not contain a respondent tracker region.";
  for (const auto& [page, here] : ByPage(found))
    if (here.size() > 1)
      return "Page " + PageText(page) + " contains more than one respondent tracker region.";
  for (const Found& f : found)
    if (!f.field->Read())
      return "The respondent tracker region on page " + PageText(f.page) + " must be read.";
  return {};
}

std::string CheckReadHead(const clsXUNTemplate& t) {
  if (FindRole(t, xunIDTypeReadHeadCheck).empty())
    return "The template does not contain a read-head check region.";
  return {};
}

std::string Check(const clsXUNTemplate& t, xunIDType role) {
  switch (role) {
    case xunIDTypeForm:
      return CheckFormID(t);
    case xunIDTypePage:
      return CheckPageID(t);
    case xunIDTypeRespondent:
      return CheckRespondent(t);
    case xunIDTypeReadHeadCheck:
      return CheckReadHead(t);
    case xunIDTypeAny:
      // Every role that is present must be valid; none present is fine.
      for (xunIDType each :
           {xunIDTypeForm, xunIDTypePage, xunIDTypeRespondent, xunIDTypeReadHeadCheck})
        if (t.IDFieldsExist(each))
          if (std::string reason = Check(t, each); !reason.empty()) return reason;
      return {};
    default:
      Raise(kErrInvalidCall);
  }
}

}  // namespace

bool clsXUNTemplate::IDFieldsExist(xunIDType eIDType) const {
  return Trap("clsXUNTemplate.IDFieldsExist", false,
              [&] { return !FindRole(*this, eIDType).empty(); });
}

bool clsXUNTemplate::IDFieldsValid(xunIDType eIDType, bool bVerbose, std::string* sMessage) const {
  return Trap("clsXUNTemplate.IDFieldsValid", false, [&] {
    const std::string reason = Check(*this, eIDType);
    if (sMessage) *sMessage = reason;
    if (reason.empty()) return true;
    if (bVerbose) {
      basError::ShowMessage("Identification Error", reason, MessageBoxIcon::Exclamation);
      basError::ReportError(0, Variant::Missing(), basError::kKindValidation, reason,
                            "clsXUNTemplate.IDFieldsValid", "Identification Error", {}, {}, {}, 1,
                            {}, {}, {}, 0, Variant(false));
    }
    return false;
  });
}

}  // namespace xun

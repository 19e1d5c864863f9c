#include "xun/support/error_reporter.h"

#include <exception>
#include <utility>

#include "xun/support/error_log.h"
#include "xun/support/message_box.h"
#include "xun/support/runtime_error.h"

namespace xun::basError {
namespace {

thread_local std::shared_ptr<IErrorHandler> t_handler;

// The reported number as text. A message of a validation carries no number (it is "missing"),
// which gives empty text rather than a failure of its own.
std::string NumberText(const Variant& number) noexcept {
  try {
    if (number.IsError()) return {};
    return number.ToText();
  } catch (...) {
    return {};
  }
}

std::string ReportText(const Variant& number, const std::string& description,
                       const std::string& full_location) {
  return "Error# " + NumberText(number) + ": " + description + ", Location: " + full_location;
}

// Calls the handler, restoring its "Silent" whatever happens after it was read.
int16_t CallHandler(IErrorHandler& handler, const Variant& vNumber, int32_t lKind,
                    const std::string& sDescription, const std::string& full_location,
                    const std::string& sTitle, const std::string& sText1, const std::string& sText2,
                    const std::string& sText3, int32_t lValue1, const std::string& sText4,
                    const std::string& sText5, const std::string& sText6, int32_t lValue2,
                    const Variant& vSilent) {
  const bool kept_silent = handler.Silent();
  struct RestoreSilent {
    IErrorHandler& handler;
    bool value;
    ~RestoreSilent() {
      try {
        handler.Silent(value);
      } catch (...) {
        // A handler that cannot take "Silent" back has already failed the report.
      }
    }
  } restore{handler, kept_silent};

  if (!vSilent.IsMissing()) handler.Silent(vSilent.ToBoolean());
  // The handler receives copies by reference: it may change them without touching ours.
  Variant number = vNumber;
  int32_t kind = lKind;
  std::string description = sDescription, location = full_location, title = sTitle;
  std::string text1 = sText1, text2 = sText2, text3 = sText3, text4 = sText4, text5 = sText5,
              text6 = sText6;
  int32_t value1 = lValue1, value2 = lValue2;
  const Variant answer = handler.RaiseError(number, kind, description, location, title, text1,
                                            text2, text3, value1, text4, text5, text6, value2);
  return answer.ToInteger();
}

}  // namespace

std::string FullLocation(const std::string& sLocation, int32_t lErl) {
  std::string full = "Office Template - " + sLocation;
  if (lErl > 0) full += "; Line: " + std::to_string(lErl);
  return full;
}

void SetHandler(std::shared_ptr<IErrorHandler> handler) {
  t_handler = std::move(handler);
}

std::shared_ptr<IErrorHandler> Handler() {
  return t_handler;
}

int16_t ReportError(int32_t lErl, const Variant& vNumber, int32_t lKind,
                    const std::string& sDescription, const std::string& sLocation,
                    const std::string& sTitle, const std::string& sText1, const std::string& sText2,
                    const std::string& sText3, int32_t lValue1, const std::string& sText4,
                    const std::string& sText5, const std::string& sText6, int32_t lValue2,
                    const Variant& vSilent) {
  // There is no screen pointer to reset here: the host owns its user interface.
  int16_t result = 0;
  std::string full_location;
  try {
    full_location = FullLocation(sLocation, lErl);
    if (const std::shared_ptr<IErrorHandler> handler = t_handler) {
      result = CallHandler(*handler, vNumber, lKind, sDescription, full_location, sTitle, sText1,
                           sText2, sText3, lValue1, sText4, sText5, sText6, lValue2, vSilent);
    } else if (detail::LogAvailable()) {
      detail::AppendToLog(ReportText(vNumber, sDescription, full_location) +
                          ", Time: " + FormatGeneralDate(Date::Now()));
    } else {
      ShowMessage("Application Error", ReportText(vNumber, sDescription, full_location),
                  MessageBoxIcon::Exclamation, MessageBoxButtons::OK);
    }
  } catch (const HostError&) {
    throw;
  } catch (...) {
    try {
      const RuntimeError error = ToRuntimeError(std::current_exception());
      ShowMessage("Application Error",
                  "Application error: (#" + std::to_string(error.Number()) + ") " +
                      std::string(ErrorDescription(error.Number())) +
                      " occurred while trying to display:\r\n\r\n" +
                      ReportText(vNumber, sDescription, full_location),
                  MessageBoxIcon::Exclamation, MessageBoxButtons::OK);
    } catch (...) {
      // Out of memory while composing the fallback: nothing more can be shown.
    }
  }
  return result;
}

}  // namespace xun::basError

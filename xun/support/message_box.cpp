#include "xun/support/message_box.h"

#include <cstdio>
#include <utility>

namespace xun::basError {
namespace {

void WriteToStandardError(const MessageBoxRequest& request) {
  std::fprintf(stderr, "%s: %s\n", request.title.c_str(), request.text.c_str());
}

thread_local MessageBoxService t_service;

}  // namespace

MessageBoxService SetMessageBox(MessageBoxService service) {
  return std::exchange(t_service, std::move(service));
}

void ShowMessage(const std::string& title, const std::string& text, MessageBoxIcon icon,
                 MessageBoxButtons buttons) noexcept {
  try {
    const MessageBoxRequest request{title, text, icon, buttons};
    if (t_service)
      t_service(request);
    else
      WriteToStandardError(request);
  } catch (...) {
    // Showing a message must never become a failure of its own.
  }
}

}  // namespace xun::basError

// The message-box service: where the library shows a message to the user.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "xun/export.h"

namespace xun {

enum class MessageBoxIcon : int32_t { None, Critical, Question, Exclamation, Information };
enum class MessageBoxButtons : int32_t { OK };

struct MessageBoxRequest {
  std::string title;
  std::string text;
  MessageBoxIcon icon = MessageBoxIcon::None;
  MessageBoxButtons buttons = MessageBoxButtons::OK;
};

// The service is per thread. The default writes "title: text" to standard error.
using MessageBoxService = std::function<void(const MessageBoxRequest&)>;

namespace basError {

// Installs `service` for this thread and returns the one it replaces; an empty function
// restores the default.
XUN_API MessageBoxService SetMessageBox(MessageBoxService service);

// Shows a message through this thread's service. Never throws: a failing service is ignored.
XUN_API void ShowMessage(const std::string& title, const std::string& text,
                         MessageBoxIcon icon = MessageBoxIcon::None,
                         MessageBoxButtons buttons = MessageBoxButtons::OK) noexcept;

}  // namespace basError
}  // namespace xun

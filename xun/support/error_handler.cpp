#include "xun/support/error_handler.h"

#include "xun/support/runtime_error.h"

namespace xun {

IErrorHandler::~IErrorHandler() = default;

bool IErrorHandler::Silent() {
  Raise(kErrNoSuchMember);
}

void IErrorHandler::Silent(bool) {
  Raise(kErrNoSuchMember);
}

Variant IErrorHandler::RaiseError(Variant&, int32_t&, std::string&, std::string&, std::string&,
                                  std::string&, std::string&, std::string&, int32_t&, std::string&,
                                  std::string&, std::string&, int32_t&) {
  Raise(kErrNoSuchMember);
}

}  // namespace xun

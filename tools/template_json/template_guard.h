// Frees a template tree on the way out of a scope unless it is handed on.
#pragma once

#include <memory>

#include "xun/xun.h"

namespace xuntool {

// Frees the tree when it goes out of scope: pages own temporary copies of their images, which
// the template's Free deletes.
class TemplateGuard {
 public:
  explicit TemplateGuard(std::shared_ptr<xun::clsXUNTemplate> t) : t_(std::move(t)) {}
  ~TemplateGuard() {
    if (t_) t_->Free();
  }
  // The tree is handed on whole; nothing is freed.
  void Release() { t_ = nullptr; }
  TemplateGuard(const TemplateGuard&) = delete;
  TemplateGuard& operator=(const TemplateGuard&) = delete;

 private:
  std::shared_ptr<xun::clsXUNTemplate> t_;
};

}  // namespace xuntool

#pragma once

// Fixed keys used to scramble the database password stored in a template
// file. Reader and writer must agree on them, so they live in one place.
namespace xun::basTemplate::detail {
inline constexpr const char* kPasswordKey1 = "Xun!Tmp1";
inline constexpr const char* kPasswordKey2 = "Db#Key_2";
inline constexpr const char* kPasswordKey3 = "Pw$9Salt";
}  // namespace xun::basTemplate::detail

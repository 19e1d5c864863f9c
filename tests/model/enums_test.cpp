#include <gtest/gtest.h>

#include "xun/model/enums.h"

namespace xun {
namespace {

// Values a tidy-minded edit would "correct"; stored templates depend on them.
TEST(Enums, ValuesThatLookWrongOnPurpose) {
  EXPECT_EQ(xunImageClipCompressionGroup3, xunImageClipCompressionGroup32D);
  EXPECT_EQ(xunImageClipCompressionGroup4, 3);
  EXPECT_EQ(xunTemplateReadTypeHybrid, 4);
  EXPECT_EQ(xunFieldTypeOMRMult, xunFieldTypeBarcodeAuto);  // meaning depends on the kind
}

}  // namespace
}  // namespace xun

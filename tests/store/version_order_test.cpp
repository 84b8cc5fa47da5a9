#include "store/version_order.h"

#include <gtest/gtest.h>

namespace {

using vrxstore::compareVersions;

TEST(VersionOrder, PartByPartAsNumbers) {
  EXPECT_GT(compareVersions("10.0.4000", "9.12"), 0);
  EXPECT_LT(compareVersions("9.12", "10.0.4000"), 0);
  EXPECT_LT(compareVersions("1.9", "1.10"), 0) << "not as text";
  EXPECT_EQ(compareVersions("1.2", "1.2.0"), 0) << "a missing part is 0";
  EXPECT_LT(compareVersions("1.2", "1.2.1"), 0);
  EXPECT_EQ(compareVersions("01.002", "1.2"), 0) << "leading zeros";
  EXPECT_GT(compareVersions("100000000000000000000.1", "99999999999999999999.9"), 0)
      << "parts beyond 64 bits";
  EXPECT_LT(compareVersions("2.0a", "2.0b"), 0) << "then what follows the digits";
  EXPECT_LT(compareVersions("", "0.1"), 0);
}

}  // namespace

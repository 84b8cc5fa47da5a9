#include "winapi/formats/marvin32.h"

#include <gtest/gtest.h>

namespace winapi {
namespace {

// The head of a log entry Windows 10 wrote (NewDirtyHive.LOG1 at 512) and the hash it stored
// for it.
TEST(Marvin32, HashesALogEntryAsWindowsDid) {
  const unsigned char head[] = {0x48, 0x76, 0x4c, 0x45, 0x00, 0x5e, 0x00, 0x00, 0x00, 0x00, 0x00,
                                0x00, 0x02, 0x00, 0x00, 0x00, 0x00, 0x50, 0x00, 0x00, 0x01, 0x00,
                                0x00, 0x00, 0x31, 0xe4, 0x07, 0x18, 0x66, 0x6c, 0x86, 0x67};
  const std::string_view bytes(reinterpret_cast<const char*>(head), sizeof head);
  EXPECT_EQ(marvin32(bytes, 0x82EF4D887A4E55C5), 0xcd44f3cfa7657f02u);
}

}  // namespace
}  // namespace winapi

#include "winapi/formats/pe_resources.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "winapi/include/windows.h"
#include "winapi/support/little_endian.h"

namespace {

using winapi::findResource;
using winapi::kVersionResourceType;
using winapi::putLittleEndian;

// Where the hand-made image keeps its parts.
constexpr std::size_t kPeHeader = 0x40;
constexpr std::size_t kOptionalHeader = kPeHeader + 24;
constexpr std::size_t kRaw = 0x200;         // the .rsrc section in the file
constexpr std::uint32_t kRsrcRva = 0x1000;  // and in memory
constexpr std::size_t kTypeEntry = kRaw + 16;
constexpr std::size_t kNameDirectory = 0x18;  // from the start of .rsrc
constexpr std::size_t kLanguageDirectory = 0x30;
constexpr std::size_t kLanguageEntry = kRaw + kLanguageDirectory + 16;
constexpr std::size_t kDataEntry = 0x48;
constexpr std::size_t kData = 0x58;

// A PE image with one section, .rsrc, holding type -> name 1 -> language 0x409 -> `resource`.
std::string image(bool pe32Plus, const std::string& resource) {
  std::size_t optionalSize = pe32Plus ? 240 : 224;
  std::string bytes(kRaw + kData + resource.size(), '\0');
  putLittleEndian(bytes, 0, 0x5A4D, 2);
  putLittleEndian(bytes, 0x3C, kPeHeader, 4);
  putLittleEndian(bytes, kPeHeader, 0x00004550, 4);
  putLittleEndian(bytes, kPeHeader + 4, pe32Plus ? 0x8664 : 0x14C, 2);
  putLittleEndian(bytes, kPeHeader + 6, 1, 2);  // sections
  putLittleEndian(bytes, kPeHeader + 20, static_cast<std::uint32_t>(optionalSize), 2);
  putLittleEndian(bytes, kOptionalHeader, pe32Plus ? 0x20B : 0x10B, 2);
  std::size_t directories = kOptionalHeader + (pe32Plus ? 112 : 96);
  putLittleEndian(bytes, directories - 4, 16, 4);
  putLittleEndian(bytes, directories + 16, kRsrcRva, 4);
  putLittleEndian(bytes, directories + 20, static_cast<std::uint32_t>(kData + resource.size()), 4);
  std::size_t section = kOptionalHeader + optionalSize;
  bytes.replace(section, 5, ".rsrc");
  putLittleEndian(bytes, section + 8, static_cast<std::uint32_t>(kData + resource.size()), 4);
  putLittleEndian(bytes, section + 12, kRsrcRva, 4);
  putLittleEndian(bytes, section + 16, static_cast<std::uint32_t>(kData + resource.size()), 4);
  putLittleEndian(bytes, section + 20, kRaw, 4);
  const std::uint32_t subdirectory = 0x80000000;
  putLittleEndian(bytes, kRaw + 14, 1, 2);
  putLittleEndian(bytes, kTypeEntry, kVersionResourceType, 4);
  putLittleEndian(bytes, kTypeEntry + 4, subdirectory | kNameDirectory, 4);
  putLittleEndian(bytes, kRaw + kNameDirectory + 14, 1, 2);
  putLittleEndian(bytes, kRaw + kNameDirectory + 16, 1, 4);
  putLittleEndian(bytes, kRaw + kNameDirectory + 20, subdirectory | kLanguageDirectory, 4);
  putLittleEndian(bytes, kRaw + kLanguageDirectory + 14, 1, 2);
  putLittleEndian(bytes, kLanguageEntry, 0x409, 4);
  putLittleEndian(bytes, kLanguageEntry + 4, kDataEntry, 4);
  putLittleEndian(bytes, kRaw + kDataEntry, kRsrcRva + kData, 4);
  putLittleEndian(bytes, kRaw + kDataEntry + 4, static_cast<std::uint32_t>(resource.size()), 4);
  bytes.replace(kRaw + kData, resource.size(), resource);
  return bytes;
}

TEST(PeResources, FindsTheResourceIn32And64BitImages) {
  for (bool pe32Plus : {false, true}) {
    std::string bytes = image(pe32Plus, "version bytes");
    winapi::ResourceLookup found = findResource(bytes, 16);
    EXPECT_EQ(found.error, 0u);
    EXPECT_EQ(found.data, "version bytes");
  }
}

TEST(PeResources, TellsWhatIsWrongWithAnImage) {
  const std::size_t resourceDirectory = kOptionalHeader + 112 + 16;
  const struct {
    const char* what;
    std::function<void(std::string&)> spoil;
    DWORD error;
  } cases[] = {
      {"no MZ", [](std::string& b) { b[0] = 'X'; }, ERROR_RESOURCE_DATA_NOT_FOUND},
      {"cut in the headers", [](std::string& b) { b.resize(100); }, ERROR_RESOURCE_DATA_NOT_FOUND},
      {"PE header past the end", [](std::string& b) { putLittleEndian(b, 0x3C, 0xFFFFFFF0, 4); },
       ERROR_RESOURCE_DATA_NOT_FOUND},
      {"unknown optional header",
       [](std::string& b) { putLittleEndian(b, kOptionalHeader, 0x107, 2); },
       ERROR_RESOURCE_DATA_NOT_FOUND},
      {"section table past the end",
       [](std::string& b) { putLittleEndian(b, kPeHeader + 6, 0xFFFF, 2); },
       ERROR_RESOURCE_DATA_NOT_FOUND},
      {"optional header past the end",
       [](std::string& b) { putLittleEndian(b, kPeHeader + 20, 0xFFFF, 2); },
       ERROR_RESOURCE_DATA_NOT_FOUND},
      {"no resource directory",
       [&](std::string& b) { putLittleEndian(b, resourceDirectory + 4, 0, 4); },
       ERROR_RESOURCE_DATA_NOT_FOUND},
      {"resources in no section",
       [&](std::string& b) { putLittleEndian(b, resourceDirectory, 0x9000, 4); },
       ERROR_RESOURCE_DATA_NOT_FOUND},
      {"root entries past the section",
       [](std::string& b) { putLittleEndian(b, kRaw + 14, 0x7FFF, 2); },
       ERROR_RESOURCE_DATA_NOT_FOUND},
      {"no version type", [](std::string& b) { putLittleEndian(b, kTypeEntry, 6, 4); },
       ERROR_RESOURCE_TYPE_NOT_FOUND},
      {"type entry leads to data",
       [](std::string& b) { putLittleEndian(b, kTypeEntry + 4, kNameDirectory, 4); },
       ERROR_RESOURCE_TYPE_NOT_FOUND},
      {"name directory outside",
       [](std::string& b) { putLittleEndian(b, kTypeEntry + 4, 0x80FFFFFF, 4); },
       ERROR_RESOURCE_NAME_NOT_FOUND},
      {"no name", [](std::string& b) { putLittleEndian(b, kRaw + kNameDirectory + 14, 0, 2); },
       ERROR_RESOURCE_NAME_NOT_FOUND},
      {"language leads to a directory",
       [](std::string& b) { putLittleEndian(b, kLanguageEntry + 4, 0x80000000 | kDataEntry, 4); },
       ERROR_RESOURCE_LANG_NOT_FOUND},
      {"data entry cut off", [](std::string& b) { b.resize(kRaw + kDataEntry + 8); },
       ERROR_RESOURCE_DATA_NOT_FOUND},
      {"data longer than the file",
       [](std::string& b) { putLittleEndian(b, kRaw + kDataEntry + 4, 0x10000, 4); },
       ERROR_RESOURCE_DATA_NOT_FOUND},
      {"data outside every section",
       [](std::string& b) { putLittleEndian(b, kRaw + kDataEntry, 0x7000, 4); },
       ERROR_RESOURCE_DATA_NOT_FOUND},
  };
  for (const auto& c : cases) {
    std::string bytes = image(true, "version bytes");
    c.spoil(bytes);
    EXPECT_EQ(findResource(bytes, kVersionResourceType).error, c.error) << c.what;
  }
}

}  // namespace

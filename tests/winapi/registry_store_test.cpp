#include "winapi/support/registry_store.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace winapi {
namespace {

std::vector<std::wstring> namesOf(const RegistryKey& key) {
  std::vector<std::wstring> names;
  for (const auto& subKey : key.subKeys()) names.push_back(subKey->name());
  return names;
}

RegistryValue text(const std::wstring& name, const std::string& data) { return {name, 1, data}; }

TEST(RegistryStore, SubKeysMadeOutOfOrderAreListedSortedAndFoundInAnySpelling) {
  RegistryKey root(L"ROOT");
  for (const wchar_t* name : {L"b", L"C", L"a", L"B", L"é", L"Z", L"A"}) root.makeSubKey(name);
  // The first spelling stays; "é" (U+00C9 upper-cased) sorts after the ASCII letters.
  EXPECT_EQ(namesOf(root), (std::vector<std::wstring>{L"a", L"b", L"C", L"Z", L"é"}));
  ASSERT_NE(root.subKey(L"É"), nullptr);
  EXPECT_EQ(root.subKey(L"É")->name(), L"é");
  EXPECT_EQ(&root.makeSubKey(L"c"), root.subKey(L"C"));

  // A sub-key made after the list was sorted is placed too, and a removed one is gone from both
  // the list and the lookups.
  root.makeSubKey(L"B2");
  root.removeSubKey(L"A");
  EXPECT_EQ(namesOf(root), (std::vector<std::wstring>{L"b", L"B2", L"C", L"Z", L"é"}));
  EXPECT_EQ(root.subKey(L"a"), nullptr);
  root.makeSubKey(L"a").makeSubKey(L"child");
  EXPECT_EQ(namesOf(root).front(), L"a");
  EXPECT_TRUE(root.subKey(L"A")->subKey(L"CHILD"));
  EXPECT_EQ(root.find({L"a", L"child"}), root.subKey(L"a")->subKey(L"child"));
}

// The sub-key index packs its entries; removing some must leave every other one reachable.
TEST(RegistryStore, ManySubKeysStayFoundAsOthersAreRemoved) {
  RegistryKey root(L"ROOT");
  const int count = 2000;
  auto name = [](int i) { return L"{" + std::to_wstring(i * 7919 % 10007) + L"-Key}"; };
  auto spelledOtherwise = [](int i) { return L"{" + std::to_wstring(i * 7919 % 10007) + L"-KEY}"; };
  for (int i = 0; i < count; ++i) root.makeSubKey(name(i));
  for (int i = 0; i < count; i += 3) root.removeSubKey(name(i));
  root.removeSubKey(L"absent");
  for (int i = 0; i < count; ++i) {
    const RegistryKey* found = root.subKey(spelledOtherwise(i));
    if (i % 3 == 0)
      EXPECT_EQ(found, nullptr) << i;
    else
      ASSERT_TRUE(found && found->name() == name(i)) << i;
  }
  EXPECT_EQ(root.subKeys().size(), static_cast<std::size_t>(count - (count + 2) / 3));

  // The longest name is kept as keys come and found again once one goes.
  RegistryKey names(L"NAMES");
  names.makeSubKey(L"ab");
  names.makeSubKey(L"abcd");
  EXPECT_EQ(names.longestAsciiSubKeyName(), std::optional<std::size_t>(4));
  names.removeSubKey(L"ABCD");
  EXPECT_EQ(names.longestAsciiSubKeyName(), std::optional<std::size_t>(2));
  names.makeSubKey(L"\u00E9");
  EXPECT_EQ(names.longestAsciiSubKeyName(), std::nullopt);
}

// Keys with many values find them through an index; it has to stay right as values are
// replaced, added and removed.
TEST(RegistryStore, ManyValuesKeepTheirOrderAndAreFoundAfterEveryChange) {
  RegistryKey key(L"K");
  const int count = 40;
  for (int i = 0; i < count; ++i) key.setValue(text(L"Value" + std::to_wstring(i), "v"));
  for (int i = 0; i < count; ++i) {
    const RegistryValue* value = key.value(L"VALUE" + std::to_wstring(i));
    ASSERT_NE(value, nullptr) << i;
    EXPECT_EQ(value->name.text(), L"Value" + std::to_wstring(i));
  }
  key.setValue(text(L"value7", "replaced"));
  key.setValue(text(L"Extra", "new"));
  ASSERT_EQ(key.values().size(), static_cast<std::size_t>(count + 1));
  EXPECT_EQ(key.values()[7].data, "replaced");
  EXPECT_EQ(key.values()[7].name.text(), L"Value7");
  EXPECT_EQ(key.value(L"extra")->data, "new");

  key.removeValue(L"VALUE3");
  EXPECT_EQ(key.value(L"Value3"), nullptr);
  EXPECT_EQ(key.value(L"Value4"), &key.values()[3]);
  EXPECT_EQ(key.value(L"EXTRA")->data, "new");
  key.setValue(text(L"Value3", "back"));
  EXPECT_EQ(key.values().back().name.text(), L"Value3");
  EXPECT_EQ(key.value(L"value3")->data, "back");
  EXPECT_EQ(key.value(L"Value40"), nullptr);
}

// Value names are kept once for the process, made from files read on several threads at once.
TEST(RegistryStore, ValueNamesAreTheSameButForCaseInAnySpellingAndThread) {
  std::vector<std::thread> threads;
  std::vector<RegistryName> made(4);
  for (std::size_t i = 0; i < made.size(); ++i)
    threads.emplace_back(
        [&made, i] { made[i] = RegistryName(i % 2 ? L"\u00E9cole" : L"\u00C9COLE"); });
  for (std::thread& thread : threads) thread.join();
  for (const RegistryName& name : made) EXPECT_TRUE(name.sameAs(made[0]));
  EXPECT_EQ(made[1].text(), L"\u00E9cole");
  EXPECT_FALSE(RegistryName(L"ecole").sameAs(made[0]));

  RegistryKey key(L"K");
  key.setValue(text(L"Caf\u00E9Name", "v"));
  // Found in a spelling never made; a name no value ever bore is not kept by asking for it.
  EXPECT_EQ(key.value(L"CAF\u00C9NAME"), &key.values()[0]);
  EXPECT_EQ(key.value(L"NeverMadeName"), nullptr);
  EXPECT_FALSE(RegistryName::known(L"NeverMadeName"));
  EXPECT_TRUE(RegistryName().empty());
}

}  // namespace
}  // namespace winapi

// Helpers of the key tests: a table of their own, filled from and read back as
// plain strings.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "base/user_message.h"
#include "keys/key_table.h"

namespace qb::test {

using KeyTexts = std::array<std::string, kKeyFieldCount>;
using Names = std::vector<std::string>;
using KeyRows = std::vector<KeyTexts>;

// Replaces the keys of `table` with `keys`.
inline void FillTable(KeyTable& table, const std::vector<KeyTexts>& keys) {
  ClearAllKeys(table);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    for (int f = 0; f < kKeyFieldCount; ++f) table.fields[f][i] = MakeTextBlock(keys[i][f]);
  }
  table.count = static_cast<std::int32_t>(keys.size());
}

inline std::vector<KeyTexts> TableTexts(const KeyTable& table) {
  std::vector<KeyTexts> out(KeysInUse(table));
  for (std::size_t i = 0; i < out.size(); ++i) {
    for (int f = 0; f < kKeyFieldCount; ++f) out[i][f] = TextOf(table.fields[f][i]);
  }
  return out;
}

// A key table on the heap that frees its blocks when it goes.
class OwnedTable {
 public:
  explicit OwnedTable(const std::vector<KeyTexts>& keys = {})
      : table_(std::make_unique<KeyTable>()) {
    Fill(keys);
  }
  ~OwnedTable() { ClearAllKeys(*table_); }
  OwnedTable(const OwnedTable&) = delete;
  OwnedTable& operator=(const OwnedTable&) = delete;

  KeyTable& operator*() { return *table_; }
  KeyTable* operator->() { return table_.get(); }

  void Fill(const std::vector<KeyTexts>& keys) { FillTable(*table_, keys); }
  std::vector<KeyTexts> Texts() const { return TableTexts(*table_); }

 private:
  std::unique_ptr<KeyTable> table_;
};

// A test of the key code that starts with no message waiting and the database
// unchanged, and leaves no allocation set to fail.
class KeyStateTest : public ::testing::Test {
 protected:
  void SetUp() override {
    TakeUserMessages();
    SetDatabaseChanged(false);
  }
  void TearDown() override { FailNextTextBlockAllocations(0); }
};

// The one message the last operation gave the user, checked for its caption and
// icon; "" when there was none.
inline std::string OneMessage(const char* caption = "", MessageIcon icon = MessageIcon::kNone) {
  const std::vector<UserMessage> messages = TakeUserMessages();
  if (messages.empty()) return "";
  EXPECT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].caption, caption);
  EXPECT_EQ(messages[0].icon, icon);
  return messages[0].text;
}

inline Names NamesOf(const KeyTable& table) {
  Names names;
  for (int i = 0; i < KeysInUse(table); ++i) names.push_back(KeyFieldText(table, i, kName));
  return names;
}

// Keys named by `names`, their other fields derived from the name.
inline std::vector<KeyTexts> NamedKeys(const Names& names) {
  std::vector<KeyTexts> keys;
  for (const std::string& n : names) keys.push_back({n, n + "-search", n + "-select", n + "-text"});
  return keys;
}

}  // namespace qb::test

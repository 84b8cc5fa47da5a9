// A fixed set of byte strings and one question about a text: does any of
// them occur in it? Answered in time linear in the text, whatever the
// number of patterns (an Aho-Corasick automaton).
#pragma once

#include <array>
#include <string>
#include <vector>

namespace installedapps_col {

class PatternSet {
 public:
  explicit PatternSet(const std::vector<std::string>& patterns);
  // True when some pattern occurs in `text`; the empty pattern occurs in
  // every text.
  bool occursIn(const std::string& text) const;

 private:
  struct Node {
    std::array<int, 256> next;
    int fail = 0;
    bool match = false;
    Node() { next.fill(-1); }
  };
  void add(const std::string& pattern);
  void link();

  std::vector<Node> nodes_;
};

}  // namespace installedapps_col

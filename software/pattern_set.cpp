#include "software/pattern_set.h"

#include <queue>

namespace installedapps_col {

PatternSet::PatternSet(const std::vector<std::string>& patterns) : nodes_(1) {
  for (const std::string& pattern : patterns) add(pattern);
  link();
}

void PatternSet::add(const std::string& pattern) {
  int node = 0;
  for (unsigned char c : pattern) {
    if (nodes_[node].next[c] < 0) {
      nodes_[node].next[c] = static_cast<int>(nodes_.size());
      nodes_.emplace_back();
    }
    node = nodes_[node].next[c];
  }
  nodes_[node].match = true;
}

// Turns the trie into an automaton: each missing edge leads where the
// longest suffix that is also a prefix would go, and a node matches when
// any of its suffixes is a pattern.
void PatternSet::link() {
  std::queue<int> pending;
  for (int& child : nodes_[0].next) {
    if (child < 0) {
      child = 0;
    } else {
      nodes_[child].fail = 0;
      pending.push(child);
    }
  }
  while (!pending.empty()) {
    const int node = pending.front();
    pending.pop();
    const int fail = nodes_[node].fail;
    nodes_[node].match = nodes_[node].match || nodes_[fail].match;
    for (int c = 0; c < 256; ++c) {
      int& child = nodes_[node].next[c];
      if (child < 0) {
        child = nodes_[fail].next[c];
      } else {
        nodes_[child].fail = nodes_[fail].next[c];
        pending.push(child);
      }
    }
  }
}

bool PatternSet::occursIn(const std::string& text) const {
  int node = 0;
  if (nodes_[node].match) return true;
  for (unsigned char c : text) {
    node = nodes_[node].next[c];
    if (nodes_[node].match) return true;
  }
  return false;
}

}  // namespace installedapps_col

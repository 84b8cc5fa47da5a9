#include "winapi/support/registry_name.h"

#include <array>
#include <functional>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "winapi/support/registry_store.h"

namespace winapi {

namespace {

std::wstring upperCased(std::wstring_view text) {
  std::wstring upper(text);
  for (wchar_t& c : upper) c = upperCase(c);
  return upper;
}

}  // namespace

// The names made so far, in shards each with its own lock so that files read on several
// processors seldom wait for each other, and a cache per thread in front that needs no lock.
class RegistryName::Pool {
 public:
  const Entry* find(std::wstring_view text) {
    if (const Entry* cached = fromCache(text)) return cached;
    Shard& shard = shardOf(text);
    std::lock_guard<std::mutex> lock(shard.mutex);
    auto found = shard.entries.find(text);
    return found == shard.entries.end() ? nullptr : remember(found->second.get());
  }

  const Entry* make(std::wstring_view text) {
    if (const Entry* cached = fromCache(text)) return cached;
    std::wstring upper = upperCased(text);
    // The upper-cased spelling is its own folded entry, made before taking this shard's lock.
    const Entry* folded = upper == text ? nullptr : insert(upper, nullptr);
    return remember(insert(text, folded));
  }

 private:
  static constexpr std::size_t kShards = 64;
  // A thread keeps at most this many names at hand, so that a registry of unique names does
  // not grow it without end.
  static constexpr std::size_t kCached = 4096;

  struct Shard {
    std::mutex mutex;
    // Views of the entries' own text, which never moves.
    std::unordered_map<std::wstring_view, std::unique_ptr<Entry>> entries;
  };
  using Cache = std::unordered_map<std::wstring_view, const Entry*>;

  static Cache& cache() {
    thread_local Cache names;
    return names;
  }
  static const Entry* fromCache(std::wstring_view text) {
    auto found = cache().find(text);
    return found == cache().end() ? nullptr : found->second;
  }
  static const Entry* remember(const Entry* entry) {
    if (cache().size() >= kCached) cache().clear();
    cache().emplace(entry->text, entry);
    return entry;
  }

  Shard& shardOf(std::wstring_view text) {
    return shards_[std::hash<std::wstring_view>()(text) % kShards];
  }

  // The entry of `text`, made with `folded` (nullptr: itself) when there is none.
  const Entry* insert(std::wstring_view text, const Entry* folded) {
    Shard& shard = shardOf(text);
    std::lock_guard<std::mutex> lock(shard.mutex);
    auto found = shard.entries.find(text);
    if (found != shard.entries.end()) return found->second.get();
    auto entry = std::make_unique<Entry>(Entry{std::wstring(text), folded});
    if (!folded) entry->folded = entry.get();
    const Entry* made = entry.get();
    shard.entries.emplace(made->text, std::move(entry));
    return made;
  }

  std::array<Shard, kShards> shards_;
};

RegistryName::Pool& RegistryName::pool() {
  static Pool names;
  return names;
}

RegistryName::RegistryName() {
  static const Entry* const empty = pool().make(L"");
  entry_ = empty;
}

RegistryName::RegistryName(std::wstring_view text) : entry_(pool().make(text)) {}

std::optional<RegistryName> RegistryName::known(std::wstring_view text) {
  if (const Entry* entry = pool().find(text)) return RegistryName(entry);
  if (const Entry* entry = pool().find(upperCased(text))) return RegistryName(entry);
  return std::nullopt;
}

}  // namespace winapi

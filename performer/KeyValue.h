// A small copy-on-write map.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

namespace quorvel {

template <typename Key, typename Value>
class KeyValueInterface {
 public:
  virtual ~KeyValueInterface() = default;
};

// Whoever took a copy of this object's map keeps it as it was, while this object goes on changing
// its own. Not thread-safe: the owner locks.
template <typename Key, typename Value, typename Map = std::unordered_map<Key, Value>>
class KeyValue : public KeyValueInterface<Key, Value> {
 public:
  KeyValue() : map_(std::make_shared<Map>()) {}

  // A copy of the value under `key`, or of `defaultValue`.
  Value value(const Key& key, const Value& defaultValue) const {
    if (!map_) return defaultValue;
    const auto found = map_->find(key);
    return found == map_->end() ? defaultValue : found->second;
  }

  void setValue(const Key& key, const Value& value) {
    if (map_.use_count() != 1) map_ = map_ ? std::make_shared<Map>(*map_) : std::make_shared<Map>();
    map_->insert_or_assign(key, value);
  }

 private:
  std::shared_ptr<Map> map_;  // null only after a move away, and then as good as empty
};

}  // namespace quorvel

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

// Copies share one map until one of them changes it. Not thread-safe: the owner locks.
template <typename Key, typename Value, typename Map = std::unordered_map<Key, Value>>
class KeyValue : public KeyValueInterface<Key, Value> {
 public:
  KeyValue() : map_(std::make_shared<Map>()) {}

  // A copy of the value stored under `key`, or of `defaultValue` when there is none.
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
  std::shared_ptr<Map> map_;  // null, which counts as empty, only in a moved-from object
};

}  // namespace quorvel

#include "performer/AppSettings.h"

#include <mutex>

#include "performer/Equipment.h"
#include "performer/KeyValue.h"
#include "util/OutputData.h"

namespace quorvel {
namespace {

struct Store {
  unsigned locale = static_cast<unsigned>(Language::kRussian);
  unsigned ioDataType = kText;
  unsigned deviceType = kBarcodeScanner;
  KeyValue<std::wstring, tVariant> values;
  std::mutex mutex;
};

// Never destroyed: when a host exits without closing its devices, their reader threads still use
// it.
Store& store() {
  static Store& only = *new Store;
  return only;
}

unsigned read(unsigned Store::*member) {
  const std::lock_guard lock(store().mutex);
  return store().*member;
}

void write(unsigned Store::*member, unsigned value, unsigned last) {
  if (value > last) return;
  const std::lock_guard lock(store().mutex);
  store().*member = value;
}

}  // namespace

unsigned AppSettings::locale() { return read(&Store::locale); }

void AppSettings::setLocale(unsigned locale) {
  write(&Store::locale, locale, static_cast<unsigned>(Language::kEnglish));
}

Language AppSettings::language() { return languageOfLocale(locale()); }

void AppSettings::setLanguage(Language language) { setLocale(static_cast<unsigned>(language)); }

unsigned AppSettings::ioDataType() { return read(&Store::ioDataType); }

void AppSettings::setIODataType(unsigned type) { write(&Store::ioDataType, type, kBase64); }

unsigned AppSettings::deviceType() { return read(&Store::deviceType); }

void AppSettings::setDeviceType(unsigned type) {
  write(&Store::deviceType, type, kMagneticCardReader);
}

tVariant AppSettings::value(const std::wstring& key, const tVariant& defaultValue) {
  const std::lock_guard lock(store().mutex);
  return store().values.value(key, defaultValue);
}

void AppSettings::setValue(const std::wstring& key, const tVariant& value) {
  const std::lock_guard lock(store().mutex);
  store().values.setValue(key, value);
}

}  // namespace quorvel

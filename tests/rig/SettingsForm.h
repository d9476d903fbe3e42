// The settings form that the driver is expected to give, from the documents in tests/data.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace expected {

// The choice items of serial ports and of keyboards. Names and texts as they stand in the document.
inline std::string item(std::string_view value, std::string_view text) {
  return "<Item Value=\"" + std::string(value) + "\">" + std::string(text) + "</Item>";
}

inline void fill(std::string& document, std::string_view mark, std::string_view items) {
  document.replace(document.find(mark), mark.size(), items);
}

// The whole document, in UTF-8. `language` is "en" or "ru".
inline std::string settingsForm(const std::string& language, std::string_view portItems,
                                std::string_view keyboardItems) {
  std::ifstream file(QUORVEL_TEST_DATA "/settings-form." + language + ".xml");
  std::string document(std::istreambuf_iterator<char>(file), {});
  if (document.empty()) throw std::runtime_error("no expected form in " + language);
  fill(document, "@PORTS@", portItems);
  fill(document, "@KEYBOARDS@", keyboardItems);
  return document;
}

// Whether two documents are equal byte for byte; if not, where they part: they are too long to be
// shown whole.
inline testing::AssertionResult areSame(const std::string& document, const std::string& other) {
  if (document == other) return testing::AssertionSuccess();
  const auto parting =
      std::mismatch(document.begin(), document.end(), other.begin(), other.end()).first;
  const auto at = static_cast<std::size_t>(parting - document.begin());
  const std::size_t start = document.rfind('<', at) == document.npos ? 0 : document.rfind('<', at);
  return testing::AssertionFailure()
         << "at byte " << at << " there is\n  " << document.substr(start, 120)
         << "\nand in the other\n  " << other.substr(start, 120);
}

}  // namespace expected

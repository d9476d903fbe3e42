// The settings form that the driver is expected to give, from the documents in tests/data.
#pragma once

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

}  // namespace expected

#include "tests/rig/ExpectedForm.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "tests/rig/Program.h"

namespace rig {
namespace {

void replaceMark(std::string& document, std::string_view mark, std::string_view items) {
  document.replace(document.find(mark), mark.size(), items);
}

}  // namespace

std::string choiceItem(std::string_view value, std::string_view text) {
  return "<Item Value=\"" + std::string(value) + "\">" + std::string(text) + "</Item>";
}

std::string expectedForm(const std::string& language, std::string_view portItems,
                         std::string_view keyboardItems) {
  std::ifstream file(QUORVEL_TEST_DATA "/settings-form." + language + ".xml");
  std::string document(std::istreambuf_iterator<char>(file), {});
  if (document.empty()) throw std::runtime_error("no expected form in " + language);
  replaceMark(document, "@PORTS@", portItems);
  replaceMark(document, "@KEYBOARDS@", keyboardItems);
  return document;
}

bool isWellFormed(const std::string& document) {
  Program xmllint({"xmllint", "--noout", "-"});
  xmllint.write(document);
  xmllint.endInput();
  return xmllint.end().code == 0;
}

testing::AssertionResult areSame(std::string_view document, std::string_view other) {
  if (document == other) return testing::AssertionSuccess();
  const auto difference =
      std::mismatch(document.begin(), document.end(), other.begin(), other.end()).first;
  const auto at = static_cast<std::size_t>(difference - document.begin());
  const std::size_t tag = document.rfind('<', at);
  const std::size_t start = tag == document.npos ? 0 : tag;
  return testing::AssertionFailure()
         << "they differ at byte " << at << ":\n  " << document.substr(start, 120) << "\nand\n  "
         << other.substr(start, 120);
}

}  // namespace rig

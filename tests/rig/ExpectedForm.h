// What the settings form that the driver offers should be, from the documents in tests/data.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace rig {

// One item of the choice list of serial ports or keyboards. `value` and `text` are copied into the
// document unescaped.
std::string choiceItem(std::string_view value, std::string_view text);

// The whole document, in UTF-8. `language` is "en" or "ru". Throws std::runtime_error when there is
// no such document.
std::string expectedForm(const std::string& language, std::string_view portItems,
                         std::string_view keyboardItems);

// As xmllint judges.
bool isWellFormed(const std::string& document);

// Whether two documents are equal byte for byte. A failure shows where they first differ: they are
// too long to be shown whole.
testing::AssertionResult areSame(std::string_view document, std::string_view other);

}  // namespace rig

// The form reader of the tools, with documents that the driver does not produce.
#include <gtest/gtest.h>

#include <stdexcept>

#include "tools/common/FormDocument.h"

namespace {

TEST(FormDocument, RefusesInvalidXml) {
  EXPECT_THROW(terminal::readForm("<Settings><Page></Settings>"), std::runtime_error);
  EXPECT_THROW(terminal::readForm(""), std::runtime_error);
}

TEST(FormDocument, RefusesOtherDocuments) {
  EXPECT_THROW(terminal::readForm("<Actions/>"), std::runtime_error);
}

TEST(FormDocument, DistinguishesAnEmptyChoiceListFromNone) {
  const auto pages = terminal::readForm(
      "<Settings><Page Caption=\"P\"><Group Caption=\"G\"><Parameter Name=\"Free\"/>"
      "<Parameter Name=\"Empty\"><ChoiceList></ChoiceList></Parameter></Group></Page></Settings>");
  const auto& parameters = pages.at(0).groups.at(0).parameters;
  EXPECT_FALSE(parameters.at(0).choices.has_value());
  EXPECT_TRUE(parameters.at(1).choices.value().empty());
}

TEST(FormDocument, KeepsBlankTexts) {
  const auto pages = terminal::readForm(
      "<Settings><Page><Group><Parameter><ChoiceList><Item Value=\"  \">  </Item></ChoiceList>"
      "</Parameter></Group></Page></Settings>");
  const auto& choices = pages.at(0).groups.at(0).parameters.at(0).choices.value();
  EXPECT_EQ(choices.at(0).value, "  ");
  EXPECT_EQ(choices.at(0).text, "  ");
}

}  // namespace

// Documents that are not the driver's: a host must tell them from a form.
#include <gtest/gtest.h>

#include <stdexcept>

#include "tools/common/FormDocument.h"

namespace {

TEST(FormDocument, RefusesWhatIsNoXml) {
  EXPECT_THROW(terminal::readForm("<Settings><Page></Settings>"), std::runtime_error);
  EXPECT_THROW(terminal::readForm(""), std::runtime_error);
}

TEST(FormDocument, RefusesWhatIsNoForm) {
  EXPECT_THROW(terminal::readForm("<Actions/>"), std::runtime_error);
}

TEST(FormDocument, TellsAnEmptyListOfChoicesFromNone) {
  const auto pages = terminal::readForm(
      "<Settings><Page Caption=\"P\"><Group Caption=\"G\"><Parameter Name=\"Free\"/>"
      "<Parameter Name=\"Empty\"><ChoiceList></ChoiceList></Parameter></Group></Page></Settings>");
  const auto& parameters = pages.at(0).groups.at(0).parameters;
  EXPECT_FALSE(parameters.at(0).choices.has_value());
  EXPECT_TRUE(parameters.at(1).choices.value().empty());
}

TEST(FormDocument, KeepsATextOfBlanks) {
  const auto pages = terminal::readForm(
      "<Settings><Page><Group><Parameter><ChoiceList><Item Value=\"  \">  </Item></ChoiceList>"
      "</Parameter></Group></Page></Settings>");
  const auto& choices = pages.at(0).groups.at(0).parameters.at(0).choices.value();
  EXPECT_EQ(choices.at(0).value, "  ");
  EXPECT_EQ(choices.at(0).text, "  ");
}

}  // namespace

// The parts of the settings form that do not depend on the machine.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parameters/ParametersTableBuilder.h"
#include "tests/rig/VirtualSlots.h"

namespace quorvel {
namespace {

using Builder = ParametersTableBuilder;

std::size_t countOf(const std::wstring& part, const std::wstring& text) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
  return count;
}

std::wstring productOf(void (Builder::*part)(), bool russian = false) {
  Builder builder(russian);
  (builder.*part)();
  return builder.GetProduct();
}

TEST(ParametersTableBuilder, SlotsInOrder) {
  EXPECT_EQ(rig::slotOf(&Builder::BuildHeaderPart), 2u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildPortPart), 3u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildKeyboardDevicePart), 4u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildBitsPart), 5u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildCOMPortSpeedPart), 6u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildGroupDividerPart), 7u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildPrefixPart), 8u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildSuffixPart), 9u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildKeyboardTimeoutPart), 10u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildCOMPortTimeoutAndEncodingPart), 11u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildGSSymbolPart), 12u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildDeviceParametersGroupEndPart), 13u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildLogParametersPart), 14u);
  EXPECT_EQ(rig::slotOf(&Builder::BuildEndPart), 15u);
}

TEST(ParametersTableBuilder, StartsEmpty) { EXPECT_EQ(Builder(true).GetProduct(), L""); }

TEST(ParametersTableBuilder, EmptyHooksAppendNothing) {
  Builder builder(false);
  builder.BuildPortPart();
  builder.BuildKeyboardDevicePart();
  builder.BuildBitsPart();
  builder.BuildCOMPortSpeedPart();
  builder.BuildPrefixPart();
  builder.BuildKeyboardTimeoutPart(false);
  builder.BuildKeyboardTimeoutPart(true);
  builder.BuildLogParametersPart();
  EXPECT_EQ(builder.GetProduct(), L"");
}

// Records the calls of the hooks in the document, which also shows where the part without a hook
// is.
class RecordingBuilder : public Builder {
 public:
  RecordingBuilder() : Builder(false) {}

  void BuildHeaderPart() override { append(L"Header "); }
  void BuildPortPart() override { append(L"Port "); }
  void BuildKeyboardDevicePart() override { append(L"KeyboardDevice "); }
  void BuildBitsPart() override { append(L"Bits "); }
  void BuildCOMPortSpeedPart() override { append(L"Speed "); }
  void BuildGroupDividerPart() override { append(L"Divider "); }
  void BuildPrefixPart() override { append(L"Prefix "); }
  void BuildSuffixPart() override { append(L"Suffix "); }
  void BuildKeyboardTimeoutPart(bool shown) override { append(shown ? L"Time+ " : L"Time- "); }
  void BuildCOMPortTimeoutAndEncodingPart() override { append(L"COM "); }
  void BuildGSSymbolPart() override { append(L"GS "); }
  void BuildDeviceParametersGroupEndPart() override { append(L" GroupEnd "); }
  void BuildLogParametersPart() override { append(L"Log "); }
  void BuildEndPart() override { append(L"End"); }
};

constexpr const wchar_t* kOutputDataType =
    L"<Parameter Name=\"OutputDataType\" Caption=\"Output data type\" TypeValue=\"Number\" "
    L"DefaultValue=\"0\"><ChoiceList><Item Value=\"0\">String</Item><Item "
    L"Value=\"2\">Base64</Item></ChoiceList></Parameter>";

TEST(ParametersTableBuilder, CallsEveryHookInOrder) {
  const std::wstring before =
      L"Header Port KeyboardDevice Bits Speed Divider Prefix Suffix Time- COM GS ";
  RecordingBuilder builder;
  builder.BuildProduct(false);
  EXPECT_EQ(builder.GetProduct(), before + kOutputDataType + L" GroupEnd Log End");
}

TEST(ParametersTableBuilder, HandsItsFlagToTheKeyboardTimeout) {
  RecordingBuilder builder;
  builder.BuildProduct(true);
  EXPECT_EQ(countOf(L"Time+ ", builder.GetProduct()), 1u);
}

TEST(ParametersTableBuilder, BeginsWithTheDeclarationAndEndsWithTheSettings) {
  Builder builder(false);
  builder.BuildProduct(false);
  const std::wstring document = builder.GetProduct();
  EXPECT_TRUE(document.starts_with(L"<?xml version=\"1.0\" encoding=\"UTF-8\" ?><Settings>"));
  EXPECT_TRUE(document.ends_with(L"</Group></Page></Settings>"));
}

TEST(ParametersTableBuilder, ASecondBuildIsAppended) {
  Builder builder(true);
  builder.BuildProduct(false);
  const std::wstring once = builder.GetProduct();
  builder.BuildProduct(false);
  EXPECT_EQ(builder.GetProduct(), once + once);
}

TEST(ParametersTableBuilder, HeaderInBothLanguages) {
  const std::wstring start = L"<?xml version=\"1.0\" encoding=\"UTF-8\" ?><Settings>";
  EXPECT_EQ(productOf(&Builder::BuildHeaderPart),
            start + L"<Page Caption=\"Parameters\"><Group Caption=\"Connection parameters\">");
  EXPECT_EQ(productOf(&Builder::BuildHeaderPart, true),
            start + L"<Page Caption=\"Параметры\"><Group Caption=\"Параметры подключения\">");
}

TEST(ParametersTableBuilder, TimeoutIsASelfClosingElement) {
  EXPECT_EQ(
      countOf(L"<Parameter Name=\"TimeoutCOM\" Caption=\"COM-port Timeout (ms)\" "
              L"TypeValue=\"Number\" DefaultValue=\"5\" MasterParameterOperation=\"NotEqual\" "
              L"MasterParameterName=\"Port\" MasterParameterValue=\"0\" />"
              L"<Parameter Name=\"COMEncoding\"",
              productOf(&Builder::BuildCOMPortTimeoutAndEncodingPart)),
      1u);
}

TEST(ParametersTableBuilder, OutputDataTypeNeverOffersTheHumanReadableForm) {
  RecordingBuilder builder;
  builder.BuildProduct(false);
  EXPECT_EQ(countOf(L"<Item Value=\"1\">", builder.GetProduct()), 0u);
}

TEST(SymbolChoiceList, HasNoneAndAllOfAscii) {
  const std::wstring list = Builder(true).GetSymbolChoiceList();
  EXPECT_EQ(countOf(L"<Item ", list), 129u);
  EXPECT_TRUE(list.starts_with(
      L"<ChoiceList><Item Value=\"-1\">&lt;NONE&gt;</Item><Item Value=\"0\">0 (NUL)</Item>"));
  EXPECT_TRUE(list.ends_with(L"<Item Value=\"127\">127 (DEL)</Item></ChoiceList>"));
}

TEST(SymbolChoiceList, NamesControlCharactersAndEscapesTheRest) {
  const std::wstring list = Builder(false).GetSymbolChoiceList();
  for (const wchar_t* const item :
       {L"<Item Value=\"9\">9 (TAB)</Item>", L"<Item Value=\"13\">13 (CR)</Item>",
        L"<Item Value=\"29\">29 (GS)</Item>", L"<Item Value=\"32\">32 (SPACE)</Item>",
        L"<Item Value=\"33\">33 (&#x21;)</Item>", L"<Item Value=\"34\">34 (&#x22;)</Item>",
        L"<Item Value=\"60\">60 (&#x3c;)</Item>", L"<Item Value=\"65\">65 (&#x41;)</Item>",
        L"<Item Value=\"126\">126 (&#x7e;)</Item>"}) {
    EXPECT_EQ(countOf(item, list), 1u) << item;
  }
}

TEST(SymbolChoiceList, IsTheListOfTheSuffix) {
  const std::wstring suffix = productOf(&Builder::BuildSuffixPart);
  EXPECT_EQ(suffix,
            L"<Parameter Name=\"Suffix\" Caption=\"Suffix\" TypeValue=\"Number\" "
            L"DefaultValue=\"13\">" +
                Builder(false).GetSymbolChoiceList() + L"</Parameter>");
}

TEST(GSSymbolPart, ListsNoneAndEveryKey) {
  const std::wstring part = productOf(&Builder::BuildGSSymbolPart);
  EXPECT_EQ(countOf(L"<Item ", part), 22u);
  EXPECT_EQ(countOf(L"<ChoiceList><Item Value=\"-1\">&lt;NONE&gt;</Item>"
                    L"<Item Value=\"0\">F1</Item>",
                    part),
            1u);
  EXPECT_EQ(countOf(L"<Item Value=\"20\">NUMPAD_ENTER</Item></ChoiceList></Parameter>", part), 1u);
}

}  // namespace
}  // namespace quorvel

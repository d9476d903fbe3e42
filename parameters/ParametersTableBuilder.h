// The settings form: the XML document from which a host makes the form for the user, and whose
// parameter names are those that SetParameter accepts.
#pragma once

#include <string>
#include <string_view>

#include "parameters/FormTexts.h"

namespace quorvel {

// Builds one document, part by part, and is then done with: constructed, built, read. The order of
// the virtual functions is fixed. The parts that depend on the machine are empty here, and those
// that no system fills keep their places for one that will.
class ParametersTableBuilder {
 public:
  explicit ParametersTableBuilder(bool russian) : russian_(russian) {}
  ParametersTableBuilder(const ParametersTableBuilder&) = delete;
  ParametersTableBuilder& operator=(const ParametersTableBuilder&) = delete;
  virtual ~ParametersTableBuilder() = default;

  // Each appends its part to the document.
  virtual void BuildHeaderPart();
  virtual void BuildPortPart() {}
  virtual void BuildKeyboardDevicePart() {}
  virtual void BuildBitsPart() {}
  virtual void BuildCOMPortSpeedPart() {}
  virtual void BuildGroupDividerPart();
  virtual void BuildPrefixPart() {}
  virtual void BuildSuffixPart();
  virtual void BuildKeyboardTimeoutPart(bool /*shown*/) {}
  virtual void BuildCOMPortTimeoutAndEncodingPart();
  virtual void BuildGSSymbolPart();
  virtual void BuildDeviceParametersGroupEndPart();
  virtual void BuildLogParametersPart() {}
  virtual void BuildEndPart();

  // Appends the whole document. The flag is for BuildKeyboardTimeoutPart.
  void BuildProduct(bool keyboardTimeoutShown);

  // What has been built so far.
  std::wstring GetProduct() const { return product_; }

  // The choice list of the suffix: none, and every character of ASCII.
  std::wstring GetSymbolChoiceList() const;

 protected:
  void append(std::wstring_view part) { product_ += part; }
  std::wstring_view text(const FormText& text) const { return text.in(russian_); }

  // When a parameter is shown: attributes of its element.
  static constexpr std::wstring_view kForSerialPorts =
      L" MasterParameterOperation=\"NotEqual\" MasterParameterName=\"Port\""
      L" MasterParameterValue=\"0\"";
  static constexpr std::wstring_view kForKeyboards =
      L" MasterParameterOperation=\"Equal\" MasterParameterName=\"Port\""
      L" MasterParameterValue=\"0\"";

 private:
  void buildOutputDataTypePart();

  const bool russian_;
  std::wstring product_;
};

}  // namespace quorvel

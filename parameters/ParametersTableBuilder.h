// The settings form: an XML document from which the host builds a form for the user. Its parameter
// names are those that SetParameter accepts.
#pragma once

#include <string>
#include <string_view>

#include "parameters/FormTexts.h"

namespace quorvel {

// Builds one document: construct, call BuildProduct, read GetProduct. The order of the virtual
// functions is fixed. Parts with an empty body here depend on the machine or are extension points.
class ParametersTableBuilder {
 public:
  explicit ParametersTableBuilder(bool russian) : language_(languageOf(russian)) {}
  ParametersTableBuilder(const ParametersTableBuilder&) = delete;
  ParametersTableBuilder& operator=(const ParametersTableBuilder&) = delete;
  virtual ~ParametersTableBuilder() = default;

  // Each appends one part of the document.
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

  // Appends the whole document. The flag is passed on to BuildKeyboardTimeoutPart.
  void BuildProduct(bool keyboardTimeoutShown);

  // What has been appended so far.
  std::wstring GetProduct() const { return product_; }

  // The choice list of the suffix: "<NONE>" and every ASCII character.
  std::wstring GetSymbolChoiceList() const;

 protected:
  void append(std::wstring_view part) { product_ += part; }
  const wchar_t* text(const Bilingual& text) const { return text.in(language_); }

  // Attributes that make the form show a parameter for one kind of device only.
  static constexpr std::wstring_view kForSerialPorts =
      L" MasterParameterOperation=\"NotEqual\" MasterParameterName=\"Port\""
      L" MasterParameterValue=\"0\"";
  static constexpr std::wstring_view kForKeyboards =
      L" MasterParameterOperation=\"Equal\" MasterParameterName=\"Port\""
      L" MasterParameterValue=\"0\"";

 private:
  void BuildOutputDataTypePart();

  const Language language_;
  std::wstring product_;
};

}  // namespace quorvel

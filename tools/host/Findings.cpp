#include "tools/host/Findings.h"

#include <algorithm>

#include "tools/common/VisibleText.h"

namespace terminal {
namespace {

std::string filled(std::string text, Particulars particulars) {
  for (const auto& [name, value] : particulars) {
    const std::string mark = "{" + std::string(name) + "}";
    const std::string shown = visible(value);
    for (std::size_t at = 0; (at = text.find(mark, at)) != text.npos; at += shown.size()) {
      text.replace(at, mark.size(), shown);
    }
  }
  return text;
}

}  // namespace

Finding makeFinding(const FindingText& text, Particulars particulars) {
  return {text.id, filled(say(text.text), particulars), filled(say(text.remedy), particulars)};
}

void append(Findings& to, const Findings& more) { to.insert(to.end(), more.begin(), more.end()); }

bool contains(const Findings& findings, const std::string& id) {
  return std::any_of(findings.begin(), findings.end(),
                     [&](const Finding& finding) { return finding.id == id; });
}

std::string asParagraph(const Finding& finding) {
  return finding.id + ": " + finding.text + "\n  -> " + finding.remedy;
}

}  // namespace terminal

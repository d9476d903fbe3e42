// What stands in the way of a scan, and what to do about it, in the user's language.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "tools/common/Language.h"

namespace terminal {

struct Finding {
  std::string id;      // the same in every language and version
  std::string text;    // one sentence
  std::string remedy;  // the command or the setting that helps
};
using Findings = std::vector<Finding>;

// A finding before its particulars are known: {name} stands for one of them.
struct FindingText {
  const char* id;
  Text text;
  Text remedy;
};

using Particulars = std::initializer_list<std::pair<const char*, std::string>>;

// Particulars are made safe to show. Every one that the text names must be given.
Finding makeFinding(const FindingText& text, Particulars particulars = {});

void append(Findings& to, const Findings& more);

bool contains(const Findings& findings, const std::string& id);

// "id: text", and the remedy on a line of its own.
std::string asParagraph(const Finding& finding);

}  // namespace terminal

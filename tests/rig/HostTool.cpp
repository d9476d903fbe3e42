#include "tests/rig/HostTool.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

namespace rig {
namespace {

bool isSilenceHint(const std::string& line) {
  return line.starts_with("nothing has come yet") || line.starts_with("пока ничего не пришло");
}

}  // namespace

Words hostWords(const Words& arguments) {
  Words words = {hostPath()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return words;
}

std::string noticeOf(Program& listen) {
  std::string line = listen.errorLine();
  return isSilenceHint(line) ? listen.errorLine() : line;
}

std::string noticesOf(const Ending& listen) {
  std::istringstream lines(listen.errors);
  std::string notices;
  for (std::string line; std::getline(lines, line);) {
    if (!isSilenceHint(line)) notices += line + '\n';
  }
  return notices;
}

std::vector<std::string> Diagnosis::ids() const {
  std::vector<std::string> found;
  for (const nlohmann::json& finding : object.at("findings")) found.push_back(finding.at("id"));
  return found;
}

std::string Diagnosis::text() const { return object.at("findings").at(0).at("text"); }

std::string Diagnosis::remedy() const { return object.at("findings").at(0).at("remedy"); }

Diagnosis diagnosisOf(const Ending& ending) {
  const nlohmann::json object = nlohmann::json::parse(ending.output);
  EXPECT_EQ(object.at("ok").get<bool>() ? 0 : 1, ending.code);
  return {ending.code, object};
}

}  // namespace rig

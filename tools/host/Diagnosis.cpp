#include "tools/host/Diagnosis.h"

#include "tools/common/Output.h"
#include "tools/common/VisibleText.h"
#include "tools/host/EventData.h"
#include "tools/host/JsonOutput.h"

namespace terminal {
namespace {

constexpr Text kReceived = {"received: ", "получено: "};
constexpr Text kOk = {"ok: the driver delivers this scan whole: ",
                      "ok: драйвер передаёт этот скан целиком: "};
constexpr Text kNothingInTheWay = {"nothing is in the way; no scan has come yet",
                                   "помех нет; скана пока не было"};

Json orNull(const std::optional<std::string>& text) { return text ? Json(*text) : Json(); }

Json jsonOf(const Diagnosis& diagnosis) {
  Json findings = Json::array();
  for (const Finding& finding : diagnosis.findings) {
    findings.push_back({{"id", finding.id}, {"text", finding.text}, {"remedy", finding.remedy}});
  }
  const auto bytes = diagnosis.bytes ? std::optional(toBase64(*diagnosis.bytes)) : std::nullopt;
  return {{"ok", diagnosis.isOk},
          {"findings", findings},
          {"bytes", orNull(bytes)},
          {"scan", orNull(diagnosis.scan)}};
}

void printText(const Diagnosis& diagnosis) {
  if (diagnosis.bytes) writeLine(say(kReceived) + visible(*diagnosis.bytes));
  for (const Finding& finding : diagnosis.findings) writeLine(asParagraph(finding));
  if (diagnosis.isOk && diagnosis.scan) writeLine(say(kOk) + visible(*diagnosis.scan));
  if (!diagnosis.bytes && diagnosis.findings.empty()) writeLine(say(kNothingInTheWay));
}

}  // namespace

void print(const Diagnosis& diagnosis, bool json) {
  if (json) {
    writeJson(jsonOf(diagnosis));
  } else {
    printText(diagnosis);
  }
}

}  // namespace terminal

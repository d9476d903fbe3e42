#include "tools/host/Diagnosis.h"

#include <nlohmann/json.hpp>

#include "tools/common/Output.h"
#include "tools/common/VisibleText.h"
#include "tools/host/EventData.h"

namespace terminal {
namespace {

using Json = nlohmann::ordered_json;

constexpr Text kReceived = {"received: ", "получено: "};
constexpr Text kOk = {"ok: the driver delivers this scan whole: ",
                      "ok: драйвер передаёт этот скан целиком: "};
constexpr Text kNothingInTheWay = {"nothing is in the way; no scan was waited for",
                                   "помех нет; скана не ждали"};

Json orNull(const std::optional<std::string>& text) { return text ? Json(*text) : Json(); }

std::string asJson(const Diagnosis& diagnosis) {
  Json findings = Json::array();
  for (const Finding& finding : diagnosis.findings) {
    findings.push_back({{"id", finding.id}, {"text", finding.text}, {"remedy", finding.remedy}});
  }
  const auto bytes = diagnosis.bytes ? std::optional(toBase64(*diagnosis.bytes)) : std::nullopt;
  const Json object = {{"ok", diagnosis.isOk},
                       {"findings", findings},
                       {"bytes", orNull(bytes)},
                       {"scan", orNull(diagnosis.scan)}};
  return withEscapes(object.dump(-1, ' ', false, Json::error_handler_t::replace));
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
    writeLine(asJson(diagnosis));
  } else {
    printText(diagnosis);
  }
}

}  // namespace terminal

#include "tools/common/VisibleText.h"
#include "tools/host/Doctors.h"
#include "tools/host/EventData.h"
#include "tools/host/KeyboardExamination.h"
#include "tools/host/KeyboardWatch.h"
#include "tools/host/ScanEnd.h"

namespace terminal {
namespace {

constexpr FindingText kNoKeys = {
    "no-keys",
    {"no key came from the keyboard \"{name}\"",
     "с клавиатуры «{name}» не пришло ни одной клавиши"},
    {"check that the scanner beeps, that it is in keyboard (not serial) mode, and that it is this "
     "keyboard: quorvel-host test shows all keyboards at once",
     "проверьте, что сканер пищит, что он в режиме клавиатуры (а не последовательного порта) и та "
     "ли "
     "это клавиатура: quorvel-host test показывает все клавиатуры сразу"}};
constexpr FindingText kNoEnd = {
    "no-end",
    {"the scan {bytes} does not contain its end, the character {suffix}",
     "в скане {bytes} нет его конца, символа {suffix}"},
    {"--set Suffix={end}", "--set Suffix={end}"}};
constexpr FindingText kNoEndAtAll = {
    "no-end",
    {"the scan {bytes} has no end, and the driver waits for the character {suffix}",
     "у скана {bytes} нет конца, а драйвер ждёт символа {suffix}"},
    {"set the scanner to send Enter or Tab after each scan, and --set Suffix=13 or Suffix=9",
     "настройте сканер посылать после скана Enter или Tab и задайте --set Suffix=13 или Suffix=9"}};
constexpr FindingText kLayout = {
    "layout",
    {"the keyboard's layout makes other characters of the keys than a US layout, for which "
     "scanners "
     "are set: {bytes}",
     "раскладка клавиатуры делает из клавиш не те символы, что раскладка США, на которую настроены "
     "сканеры: {bytes}"},
    {"setxkbmap -device {device} us", "setxkbmap -device {device} us"}};
constexpr FindingText kGsAsKey = {
    "gs-as-key",
    {"a key without a character came in the scan, which probably stands for a group separator",
     "в скане пришла клавиша без символа, которой, вероятно, передан разделитель групп (GS)"},
    {"--set GSSymbolKey={key}", "--set GSSymbolKey={key}"}};

// What keeps the keys from becoming the scan that was scanned.
Findings findingsOf(const KeySample& keys, int device, const DriverSettings& settings) {
  const auto end = controlAtEnd(keys.bytes);
  const Particulars particulars = {{"bytes", keys.bytes},
                                   {"suffix", std::to_string(settings.suffix)},
                                   {"end", std::to_string(end.value_or(0))},
                                   {"device", std::to_string(device)},
                                   {"key", std::to_string(keys.separatorKey.value_or(-1))}};
  Findings found;
  if (!keys.hasEnd) found.push_back(makeFinding(end ? kNoEnd : kNoEndAtAll, particulars));
  if (keys.isForeign) found.push_back(makeFinding(kLayout, particulars));
  if (keys.separatorKey) found.push_back(makeFinding(kGsAsKey, particulars));
  return found;
}

void listen(XDisplay& display, const std::string& formName, const DriverSettings& settings,
            std::chrono::seconds patience, const EndSignals& end, Diagnosis& diagnosis) {
  const int device = keyboardNamed(display, formName);
  ScanRequest request;
  const KeySample keys = takeKeys(display, device, settings, patience, end,
                                  [&](std::chrono::seconds left) { request.show(left); });
  const bool anyCame = !keys.bytes.empty() || keys.isForeign || keys.separatorKey;
  if (!anyCame) {
    if (!end.wait(std::chrono::microseconds(0))) {
      diagnosis.findings.push_back(makeFinding(kNoKeys, {{"name", formName}}));
    }
    append(diagnosis.findings, focusWarnings(display));
    return;
  }
  diagnosis.bytes = keys.bytes;
  Findings found = findingsOf(keys, device, settings);
  append(found, keys.focus);
  diagnosis.isOk = found.empty();
  append(diagnosis.findings, found);
  if (keys.hasEnd && found.empty()) {
    diagnosis.scan = eventData(keys.bytes.substr(0, keys.bytes.size() - 1), settings);
  }
}

}  // namespace

Diagnosis examineKeyboard(const std::string& formName, const DriverSettings& settings,
                          std::chrono::seconds patience, const EndSignals& end) {
  Diagnosis diagnosis;
  XDisplay display;
  diagnosis.findings = keyboardObstacles(display, formName);
  const bool listens = diagnosis.findings.empty() && patience.count() > 0;
  append(diagnosis.findings, waylandWarnings(display));
  if (listens) {
    listen(display, formName, settings, patience, end, diagnosis);
  } else {
    append(diagnosis.findings, focusWarnings(display));
  }
  return diagnosis;
}

}  // namespace terminal

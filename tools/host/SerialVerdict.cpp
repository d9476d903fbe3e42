#include "tools/host/SerialVerdict.h"

#include <boost/locale/utf.hpp>
#include <utility>

#include "tools/common/VisibleText.h"
#include "tools/host/LineModel.h"
#include "tools/host/PortFile.h"
#include "tools/host/SerialFindings.h"

namespace terminal {
namespace {

constexpr FindingText kNoBytes = {
    "no-bytes",
    {"nothing came from {file}", "с {file} ничего не пришло"},
    {"check that the scanner beeps, that it is in serial (not keyboard) mode, its cable, and that "
     "it is this port: quorvel-host test shows all ports at once",
     "проверьте, что сканер пищит, что он в режиме последовательного порта (а не клавиатуры), "
     "кабель и тот ли это порт: quorvel-host test показывает все порты сразу"}};
constexpr FindingText kUnplugged = {
    "unplugged",
    {"{file} was unplugged meanwhile", "{file} тем временем отключили"},
    {"plug it in again, and look at the cable and at the hub's power",
     "подключите его снова, проверьте кабель и питание концентратора"}};
constexpr FindingText kNoEnd = {
    "no-end",
    {"the scan {bytes} does not contain its end, the character {suffix}",
     "в скане {bytes} нет его конца, символа {suffix}"},
    {"--set Suffix={end}", "--set Suffix={end}"}};
constexpr FindingText kPieces = {
    "line-raw",
    {"the scan came in {count} pieces on a raw line, and the driver drops an unfinished one",
     "скан пришёл по частям ({count}) по линии без сборки (raw), а незаконченную часть драйвер "
     "отбрасывает"},
    {"{command}", "{command}"}};
constexpr FindingText kOtherEnd = {
    "line-framed-other-end",
    {"the line is framed by the character {frame}, but the scan {bytes} ends in {end}: the line "
     "never hands it over",
     "линия собирает скан до символа {frame}, но скан {bytes} заканчивается на {end}: линия его не "
     "передаёт"},
    {"set the scanner to end each scan with carriage return (13)",
     "настройте сканер заканчивать каждый скан возвратом каретки (13)"}};
constexpr FindingText kOtherSuffix = {
    "line-framed-other-end",
    {"the framed line hands over the scan {bytes}, but with the suffix {suffix} the driver waits "
     "for another end",
     "линия передаёт скан {bytes}, но с суффиксом {suffix} драйвер ждёт другого конца"},
    {"--set Suffix={end}", "--set Suffix={end}"}};
constexpr FindingText kCookedAway = {
    "line-cooked",
    {"the line {file} is cooked, as a terminal's: of the scan {bytes} it makes {seen}",
     "линия {file} в режиме терминала (cooked): из скана {bytes} она делает {seen}"},
    {"{command}", "{command}"}};
constexpr FindingText kCookedEnd = {
    "line-cooked",
    {"the line {file} is cooked, as a terminal's: it ends the scan {bytes} with a line feed, not "
     "with the character {suffix}",
     "линия {file} в режиме терминала (cooked): скан {bytes} в ней заканчивается переводом строки, "
     "а не символом {suffix}"},
    {"{command}; or --set Suffix=10", "{command}; либо --set Suffix=10"}};
constexpr FindingText kCut = {
    "cut",
    {"the scan has {count} bytes, and the line keeps 4095 at most: the end is lost",
     "в скане {count} байтов, а линия хранит не больше 4095: конец теряется"},
    {"use a raw line: stty -F {file} raw", "сделайте линию raw: stty -F {file} raw"}};
constexpr FindingText kNotUtf8 = {
    "not-utf8",
    {"the scan {bytes} is not UTF-8, and bytes of it would be lost in a text",
     "скан {bytes} не в UTF-8, и часть его байтов в тексте пропала бы"},
    {"--set OutputDataType=2 for base64; or set the scanner to UTF-8, and check its speed",
     "--set OutputDataType=2 для base64; либо настройте сканер на UTF-8 и проверьте скорость"}};

constexpr Text kNothing = {"nothing", "ничем"};

bool isUtf8(const std::string& bytes) {
  namespace utf = boost::locale::utf;
  for (const char *at = bytes.data(), *end = at + bytes.size(); at != end;) {
    const utf::code_point code = utf::utf_traits<char>::decode(at, end);
    if (code == utf::illegal || code == utf::incomplete) return false;
  }
  return true;
}

bool isControl(char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; }

// The code of the suffix that fits bytes without the expected one: their last control character,
// or none.
std::string fittingSuffix(const std::string& bytes) {
  const bool ends = !bytes.empty() && isControl(bytes.back());
  return ends ? std::to_string(static_cast<unsigned char>(bytes.back())) : "-1";
}

std::string endOf(const std::string& bytes) {
  if (bytes.empty() || !isControl(bytes.back())) return say(kNothing);
  return bytes.substr(bytes.size() - 1);
}

class Judge {
 public:
  Judge(std::int32_t port, const termios& setting, const DriverSettings& settings,
        const LineSample& sample)
      : port_(port),
        setting_(setting),
        settings_(settings),
        sample_(sample),
        bytes_(sample.bytes()),
        end_(settings.endByte()) {}

  Verdict verdict() && {
    if (sample_.isUnplugged) add(kUnplugged);
    if (bytes_.empty()) {
      if (!sample_.isUnplugged) add(kNoBytes);
      return std::move(verdict_);
    }
    switch (kindOf(setting_)) {
      case LineKind::kRaw:
        judgeRaw();
        break;
      case LineKind::kFramed:
        judgeFramed();
        break;
      case LineKind::kCooked:
        judgeCooked();
        break;
    }
    const auto& message = verdict_.message;
    if (message && !settings_.isBase64() && !isUtf8(*message)) add(kNotUtf8);
    return std::move(verdict_);
  }

 private:
  void add(const FindingText& text, const std::string& seen = {}) {
    verdict_.findings.push_back(makeFinding(
        text, {{"file", portFile(port_)},
               {"bytes", bytes_},
               {"seen", seen},
               {"count", std::to_string(&text == &kPieces ? sample_.bursts.size() : bytes_.size())},
               {"suffix", std::to_string(settings_.suffix)},
               {"end", &text == &kOtherEnd ? endOf(bytes_) : fittingSuffix(bytes_)},
               {"frame", std::to_string(setting_.c_cc[VEOL])},
               {"command", framingCommand(port_)}}));
  }

  // Up to the end byte; nothing without one, everything where no end is asked for.
  std::optional<std::string> messageIn(const std::string& bytes) const {
    if (end_.empty()) return bytes;
    const std::size_t end = bytes.find(end_);
    return end == bytes.npos ? std::nullopt : std::optional(bytes.substr(0, end));
  }

  void judgeRaw() {
    const LineOutput all = throughLine(setting_, bytes_);
    const LineOutput first = throughLine(setting_, sample_.bursts.front());
    const std::string whole = all.available.empty() ? "" : all.available.front();
    const std::optional<std::string> sent = messageIn(whole);
    const std::optional<std::string> got =
        first.available.empty() ? std::nullopt : messageIn(first.available.front());
    if (!sent) {
      add(kNoEnd);
    } else if (got != sent) {
      add(kPieces);
    } else {
      verdict_.message = got;
    }
  }

  static std::optional<std::string> firstLine(const LineOutput& output) {
    if (output.available.empty()) return std::nullopt;
    return output.available.front();
  }

  void judgeFramed() {
    const std::optional<std::string> line = firstLine(throughLine(setting_, bytes_));
    const std::optional<std::string> message = line ? messageIn(*line) : std::nullopt;
    if (!line) {
      add(kOtherEnd);
    } else if (!message) {
      add(kOtherSuffix);
    } else if (line->size() == kLongestLine && bytes_.size() > kLongestLine) {
      add(kCut);
    } else {
      verdict_.message = message;
    }
  }

  void judgeCooked() {
    const LineOutput output = throughLine(setting_, bytes_);
    const std::optional<std::string> line = firstLine(output);
    if (line && line->size() == kLongestLine && bytes_.size() > kLongestLine) {
      add(kCut);
      return;
    }
    const std::optional<std::string> message = line ? messageIn(*line) : std::nullopt;
    const std::string sent = bytes_.substr(0, bytes_.find_first_of("\r\n"));
    const std::string arrived = line ? line->substr(0, line->find('\n')) : output.hidden;
    if (arrived != sent) {
      add(kCookedAway, arrived);
    } else if (!line) {
      add(kNoEnd);
    } else if (!message) {
      add(kCookedEnd);
    } else {
      verdict_.message = message;
    }
  }

  const std::int32_t port_;
  const termios& setting_;
  const DriverSettings& settings_;
  const LineSample& sample_;
  const std::string bytes_;
  const std::string end_;
  Verdict verdict_;
};

}  // namespace

Verdict judge(std::int32_t port, const termios& setting, const DriverSettings& settings,
              const LineSample& sample) {
  return Judge(port, setting, settings, sample).verdict();
}

}  // namespace terminal

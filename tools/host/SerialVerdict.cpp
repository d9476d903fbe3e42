#include "tools/host/SerialVerdict.h"

#include <boost/locale/utf.hpp>
#include <utility>

#include "tools/common/VisibleText.h"
#include "tools/host/LineModel.h"
#include "tools/host/PortFile.h"
#include "tools/host/ScanEnd.h"
#include "tools/host/SerialFindings.h"
#include "tools/host/SerialVerdictTexts.h"

namespace terminal {
namespace {

constexpr Text kNothing = {"nothing", "ничем"};

bool isUtf8(const std::string& bytes) {
  namespace utf = boost::locale::utf;
  for (const char *at = bytes.data(), *end = at + bytes.size(); at != end;) {
    const utf::code_point code = utf::utf_traits<char>::decode(at, end);
    if (code == utf::illegal || code == utf::incomplete) return false;
  }
  return true;
}

// The code of the suffix that fits bytes without the expected one: their last control character,
// or none.
std::string fittingSuffix(const std::string& bytes) {
  const auto control = controlAtEnd(bytes);
  return control ? std::to_string(*control) : "-1";
}

std::string endOf(const std::string& bytes) {
  return controlAtEnd(bytes) ? bytes.substr(bytes.size() - 1) : say(kNothing);
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
    if (bytes_.empty() || isOnlyEnds(bytes_)) {
      if (!sample_.isUnplugged) add(bytes_.empty() ? kNoBytes : kOnlyAnEnd);
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

  // Whether the driver makes no message of the bytes: an end with nothing before it is none.
  bool isOnlyEnds(const std::string& bytes) const {
    return !end_.empty() && bytes.find_first_not_of(end_) == bytes.npos;
  }

  // Up to the end byte; nothing without one, everything where no end is asked for.
  std::optional<std::string> messageIn(const std::string& bytes) const {
    if (end_.empty()) return bytes;
    const std::size_t start = bytes.find_first_not_of(end_);
    const std::size_t end = bytes.find(end_, start);
    return end == bytes.npos ? std::nullopt : std::optional(bytes.substr(start, end - start));
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

  std::optional<std::string> firstLine(const LineOutput& output) const {
    for (const std::string& line : output.available) {
      if (!isOnlyEnds(line)) return line;
    }
    return std::nullopt;
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

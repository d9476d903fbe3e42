#include "tools/host/LineModel.h"

#include <unistd.h>

#include <cctype>
#include <utility>

namespace terminal {
namespace {

// The kernel's classes of characters are those of Latin-1, whatever the locale.
constexpr unsigned char kFirstLetter = 0xC0;  // of those beyond ASCII
constexpr unsigned char kTimes = 0xD7;
constexpr unsigned char kSharpS = 0xDF;  // the last before the small letters
constexpr unsigned char kDivision = 0xF7;

bool isWord(char character) {
  const auto code = static_cast<unsigned char>(character);
  if (code < 0x80) return std::isalnum(code) || character == '_';
  return code >= kFirstLetter && code != kTimes && code != kDivision;
}

char lowerCase(char character) {
  const auto code = static_cast<unsigned char>(character);
  const bool isUpper = (character >= 'A' && character <= 'Z') ||
                       (code >= kFirstLetter && code < kSharpS && code != kTimes);
  return static_cast<char>(isUpper ? code + ('a' - 'A') : code);
}

class Line {
 public:
  explicit Line(const termios& setting) : setting_(setting) {}

  void take(char byte) {
    if (setting_.c_iflag & ISTRIP) byte = static_cast<char>(byte & 0x7F);
    if ((setting_.c_iflag & IUCLC) && local(IEXTEN)) byte = lowerCase(byte);
    if (literal_) {
      literal_ = false;
      store(byte);
    } else if (!isFlowControl(byte) && !isSignal(byte)) {
      takeText(byte);
    }
  }

  LineOutput output() && {
    if (!local(ICANON) && !current_.empty()) {
      output_.available.push_back(std::exchange(current_, {}));
    }
    output_.hidden = std::move(current_);
    return std::move(output_);
  }

 private:
  bool local(tcflag_t flag) const { return (setting_.c_lflag & flag) != 0; }
  bool is(char byte, int character) const {
    const cc_t code = setting_.c_cc[character];
    return code != _POSIX_VDISABLE && code == static_cast<cc_t>(byte);
  }
  bool isFlowControl(char byte) const {
    return (setting_.c_iflag & IXON) && (is(byte, VSTART) || is(byte, VSTOP));
  }

  // A signal discards what has come.
  bool isSignal(char byte) {
    if (!local(ISIG) || !(is(byte, VINTR) || is(byte, VQUIT) || is(byte, VSUSP))) return false;
    if (!local(NOFLSH)) {
      current_.clear();
      output_.available.clear();
    }
    return true;
  }

  void takeText(char byte) {
    if (byte == '\r') {
      if (setting_.c_iflag & IGNCR) return;
      if (setting_.c_iflag & ICRNL) byte = '\n';
    } else if (byte == '\n' && (setting_.c_iflag & INLCR)) {
      byte = '\r';
    }
    if (local(ICANON)) {
      takeCanonically(byte);
    } else {
      store(byte);
    }
  }

  void takeCanonically(char byte) {
    if (is(byte, VERASE)) {
      if (!current_.empty()) current_.pop_back();
    } else if (is(byte, VKILL)) {
      current_.clear();
    } else if (local(IEXTEN) && is(byte, VWERASE)) {
      eraseWord();
    } else if (local(IEXTEN) && is(byte, VLNEXT)) {
      literal_ = true;
    } else if (local(IEXTEN) && local(ECHO) && is(byte, VREPRINT)) {
      // Only shows the line once more.
    } else if (is(byte, VEOF)) {
      end();
    } else if (byte == '\n' || is(byte, VEOL) || (local(IEXTEN) && is(byte, VEOL2))) {
      current_ += byte;
      end();
    } else {
      store(byte);
    }
  }

  void eraseWord() {
    while (!current_.empty() && !isWord(current_.back())) current_.pop_back();
    while (!current_.empty() && isWord(current_.back())) current_.pop_back();
  }

  void store(char byte) {
    // The last place is kept for the end of the line.
    if (local(ICANON) && current_.size() == kLongestLine - 1) current_.pop_back();
    current_ += byte;
  }

  // A line without any byte reads as an end of file, which a reader of scans passes over.
  void end() {
    if (!current_.empty()) output_.available.push_back(std::exchange(current_, {}));
  }

  const termios& setting_;
  LineOutput output_;
  std::string current_;
  bool literal_ = false;
};

}  // namespace

LineOutput throughLine(const termios& setting, std::string_view bytes) {
  Line line(setting);
  for (const char byte : bytes) line.take(byte);
  return std::move(line).output();
}

}  // namespace terminal

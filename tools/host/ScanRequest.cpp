#include <unistd.h>

#include <chrono>
#include <iostream>

#include "tools/common/Language.h"
#include "tools/host/Doctors.h"

namespace terminal {
namespace {

constexpr Text kScanNow = {"scan something now", "просканируйте что-нибудь"};
constexpr Text kSeconds = {" s ", " с "};

}  // namespace

ScanRequest::ScanRequest() : isTerminal_(isatty(STDERR_FILENO) != 0) {}

ScanRequest::~ScanRequest() {
  if (isTerminal_ && shown_.count() >= 0) std::cerr << std::endl;
}

void ScanRequest::show(std::chrono::seconds left) {
  if (left == shown_) return;
  if (isTerminal_) {
    std::cerr << '\r' << say(kScanNow) << ": " << left.count() << say(kSeconds) << std::flush;
  } else if (shown_.count() < 0) {
    std::cerr << say(kScanNow) << std::endl;
  }
  shown_ = left;
}

}  // namespace terminal

#include <chrono>
#include <cstdint>
#include <string>

#include "tools/host/Doctors.h"
#include "tools/host/EventData.h"
#include "tools/host/PortFile.h"
#include "tools/host/SerialFindings.h"
#include "tools/host/SerialVerdict.h"

namespace terminal {
namespace {

// Reads the port until a scan has come, and says what the driver would make of it.
void listen(std::int32_t port, const DriverSettings& settings, std::chrono::seconds patience,
            const EndSignals& end, Diagnosis& diagnosis) {
  LineWatch line(portFile(port), settings.speed);
  ScanRequest request;
  const LineSample sample =
      line.take(patience, end, [&](std::chrono::seconds left) { request.show(left); });
  const std::string bytes = sample.bytes();
  if (!bytes.empty()) diagnosis.bytes = bytes;
  if (sample.isInterrupted && bytes.empty()) return;
  const Verdict verdict = judge(port, line.found(), settings, sample);
  append(diagnosis.findings, verdict.findings);
  if (verdict.message) diagnosis.scan = eventData(*verdict.message, settings);
  diagnosis.isOk = verdict.message && verdict.findings.empty();
}

}  // namespace

Diagnosis examineSerial(std::int32_t port, const DriverSettings& settings,
                        std::chrono::seconds patience, const EndSignals& end) {
  const SerialExamination examined = examinePort(portFile(port));
  Diagnosis diagnosis;
  diagnosis.findings = obstaclesOf(port, examined);
  // Somebody else's scans are not to be taken, nor their line to be changed.
  const bool listens = diagnosis.findings.empty() && patience.count() > 0;
  if (isUnknownSpeed(settings.speed)) append(diagnosis.findings, {speedWarning(settings)});
  if (listens) {
    listen(port, settings, patience, end, diagnosis);
  } else if (examined.setting) {
    append(diagnosis.findings, lineWarnings(port, examined, settings));
  }
  return diagnosis;
}

}  // namespace terminal

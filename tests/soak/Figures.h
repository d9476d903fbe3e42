// Figures that are measured for as long as one likes.
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace soak {

// How long each figure is measured: QUORVEL_SOAK_SECONDS in the environment, otherwise a second.
std::chrono::seconds duration();

// Whether times are to be judged, too: QUORVEL_SOAK_SECONDS is set, and no sanitizer slows
// everything down.
bool isMeasured();

// For a process of rig::inOwnProcess, which would end before the figure is measured.
void allowLongLife();

// Prints a line of the table.
void report(const std::string& figure, const std::string& wanted, const std::string& measured);

// Does the action again and again; afterwards this process has to hold no more threads, descriptors
// and memory than after the first few times. `bytes` is what each time may take: less than any
// leak.
void expectNoGrowth(const std::string& figure, const std::function<void()>& action,
                    std::size_t bytes = 16);

}  // namespace soak

#include "bench/Report.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>

#include "bench/Measure.h"

namespace bench {
namespace {

using Json = nlohmann::ordered_json;

void print(const Json& line) { std::cout << line.dump() << std::endl; }

}  // namespace

void report(const Figure& figure) {
  Json line = {{"figure", figure.what},
               {"reference", figure.reference},
               {"unit", figure.unit},
               {"own", figure.own},
               {"of_reference", figure.ofReference},
               {"ratio", figure.own / figure.ofReference}};
  if (figure.atMost) line["at_most"] = *figure.atMost;
  if (figure.atLeast) line["at_least"] = *figure.atLeast;
  print(line);
}

void reportDistribution(const std::string& plot, const std::string& line,
                        const std::vector<double>& values) {
  Json points = Json::array();
  for (double percent = 1; percent <= 99; ++percent) {
    points.push_back({percentileOf(values, percent), percent});
  }
  print({{"plot", plot}, {"line", line}, {"points", points}});
}

void reportPoint(const std::string& plot, const std::string& line, double x, double y) {
  print({{"plot", plot}, {"line", line}, {"points", Json::array({Json::array({x, y})})}});
}

std::int64_t repetitions(std::int64_t usual) {
  const char* const most = std::getenv("QUORVEL_BENCH_REPETITIONS");
  return most ? std::clamp<std::int64_t>(std::atoll(most), 1, usual) : usual;
}

int run(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return EXIT_FAILURE;
  benchmark::ConsoleReporter table(benchmark::ConsoleReporter::OO_None);
  table.SetOutputStream(&std::cerr);
  table.SetErrorStream(&std::cerr);
  const bool anyRan = benchmark::RunSpecifiedBenchmarks(&table) > 0;
  benchmark::Shutdown();
  return anyRan ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace bench

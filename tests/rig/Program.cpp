#include "tests/rig/Program.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "tests/rig/Patience.h"
#include "tests/rig/ScratchFolder.h"

namespace rig {
namespace {

struct Pipe {
  quorvel::FileDescriptor reading;
  quorvel::FileDescriptor writing;
};

Pipe makePipe() {
  std::array<int, 2> ends;
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  return {quorvel::FileDescriptor(ends[0]), quorvel::FileDescriptor(ends[1])};
}

std::vector<char*> pointersTo(Words& words) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

Words environmentWith(const Variables& variables) {
  Words environment;
  const auto isSet = [&](const std::string& entry) {
    return std::any_of(variables.begin(), variables.end(), [&](const auto& variable) {
      return entry.starts_with(variable.first + "=");
    });
  };
  for (char** entry = environ; *entry; ++entry) {
    if (!isSet(*entry)) environment.push_back(*entry);
  }
  for (const auto& [name, value] : variables) environment.push_back(name + "=" + value);
  return environment;
}

pid_t spawn(Words words, const Variables& variables, const std::array<int, 3>& streams) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (int stream = 0; stream < 3; ++stream) {
    posix_spawn_file_actions_adddup2(&actions, streams[static_cast<std::size_t>(stream)], stream);
  }
  Words environment = environmentWith(variables);
  pid_t process = -1;
  const int error = posix_spawnp(&process, words.front().c_str(), &actions, nullptr,
                                 pointersTo(words).data(), pointersTo(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::system_error(error, std::generic_category(), words.front());
  return process;
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Program::Program(const Words& words, const Variables& variables) {
  Pipe input = makePipe();
  Pipe output = makePipe();
  Pipe errors = makePipe();
  process_ =
      spawn(words, variables, {input.reading.get(), output.writing.get(), errors.writing.get()});
  input_ = std::move(input.writing);
  output_.descriptor = std::move(output.reading);
  errors_.descriptor = std::move(errors.reading);
}

Program::~Program() {
  if (process_ < 0) return;
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

void Program::write(const std::string& input) {
  // The pipe must hold the whole input: the program may block on its output before it reads on.
  fcntl(input_.get(), F_SETPIPE_SZ, static_cast<int>(input.size()));
  if (::write(input_.get(), input.data(), input.size()) != static_cast<ssize_t>(input.size())) {
    throw std::system_error(errno, std::generic_category(), "input of a program");
  }
}

void Program::endInput() { input_.reset(); }

void Program::readMore(Stream& stream) {
  pollfd wait = {stream.descriptor.get(), POLLIN, 0};
  constexpr auto kTimeout = std::chrono::milliseconds(kPatience).count();
  if (poll(&wait, 1, static_cast<int>(kTimeout)) <= 0) {
    throw std::runtime_error("a program says nothing more: " + stream.unread);
  }
  std::array<char, 4096> bytes;
  const ssize_t got = ::read(stream.descriptor.get(), bytes.data(), bytes.size());
  stream.atEnd = got <= 0;
  if (got > 0) stream.unread.append(bytes.data(), static_cast<std::size_t>(got));
}

std::string Program::lineOf(Stream& stream) {
  std::size_t end;
  while ((end = stream.unread.find('\n')) == std::string::npos) {
    if (stream.atEnd) throw std::runtime_error("a program has ended: " + errors_.unread);
    readMore(stream);
  }
  const std::string line = stream.unread.substr(0, end);
  stream.unread.erase(0, end + 1);
  return line;
}

std::string Program::line() { return lineOf(output_); }
std::string Program::errorLine() { return lineOf(errors_); }

void Program::signal(int number) { ::kill(process_, number); }

Ending Program::end() {
  // Read after the output: what programs here write to standard error fits into a pipe.
  for (Stream* stream : {&output_, &errors_}) {
    while (!stream->atEnd) readMore(*stream);
  }
  int status = 0;
  ::waitpid(process_, &status, 0);
  process_ = -1;
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return {code, std::exchange(output_.unread, {}), std::exchange(errors_.unread, {})};
}

Ending run(const Words& words, const Variables& variables) {
  Program program(words, variables);
  program.endInput();
  return program.end();
}

std::string outputOf(const Words& words, const std::string& input) {
  Program program(words);
  program.write(input);
  program.endInput();
  const Ending ending = program.end();
  if (ending.code != 0) throw std::runtime_error(words.front() + ": " + ending.errors);
  return ending.output;
}

std::vector<Ending> endingsOf(const std::string& command, const std::vector<std::string>& inputs) {
  const ScratchFolder folder;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    std::ofstream(folder.path() / (std::to_string(i) + ".in"), std::ios::binary) << inputs[i];
  }
  outputOf({"sh", "-c",
            "cd '" + folder.path().string() + "' && for in in *.in; do out=${in%.in}; (" + command +
                ") < $in > $out.out 2> /dev/null; echo $? > $out.code; done"});
  std::vector<Ending> endings;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    const std::string name = folder.path() / std::to_string(i);
    endings.push_back({std::stoi(contentOf(name + ".code")), contentOf(name + ".out"), ""});
  }
  return endings;
}

}  // namespace rig

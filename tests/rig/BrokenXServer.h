// An X server that breaks off as soon as it has let a client in.
#pragma once

#include <string>
#include <thread>

namespace rig {

// Serves one client: answers its setup as a server with one screen does, and closes.
class BrokenXServer {
 public:
  BrokenXServer();
  ~BrokenXServer();
  BrokenXServer(const BrokenXServer&) = delete;
  BrokenXServer& operator=(const BrokenXServer&) = delete;

  std::string display() const { return ":" + std::to_string(number_); }

 private:
  void serve() const;

  int number_;
  int listener_;
  std::thread thread_;
};

}  // namespace rig

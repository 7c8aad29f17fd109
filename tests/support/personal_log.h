// The status log of the personal flavor, one file for all processes on the machine.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Holds a lock on the log from construction to destruction. Blocks while another test holds it. Any thread.
class PersonalLogTurn {
 public:
  PersonalLogTurn();
  PersonalLogTurn(const PersonalLogTurn&) = delete;
  PersonalLogTurn& operator=(const PersonalLogTurn&) = delete;
  ~PersonalLogTurn();

  // The messages since construction, without timestamps.
  [[nodiscard]] std::vector<std::string> messages() const;

 private:
  int file_ = -1;
  std::size_t start_ = 0;
};

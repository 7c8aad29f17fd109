// The status log of the personal flavor: one file that all its processes on this machine write to.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// From when it is made until it is destroyed no other test that holds one runs. Any thread.
class PersonalLogTurn {
 public:
  PersonalLogTurn();
  PersonalLogTurn(const PersonalLogTurn&) = delete;
  PersonalLogTurn& operator=(const PersonalLogTurn&) = delete;
  ~PersonalLogTurn();

  // What has been written in this turn.
  [[nodiscard]] std::vector<std::string> messages() const;

 private:
  int file_ = -1;
  std::size_t start_ = 0;
};

// A stream that tells what has been flushed, as the reader of a pipe sees it.
#pragma once

#include <ostream>
#include <sstream>
#include <string>

class FlushedStream : public std::ostream {
 public:
  FlushedStream() : std::ostream(nullptr) { rdbuf(&buffer_); }

  [[nodiscard]] std::string written() const { return buffer_.str(); }
  [[nodiscard]] const std::string& flushed() const { return buffer_.flushed; }

 private:
  struct Buffer : std::stringbuf {
    std::string flushed;
    int sync() override {
      flushed = str();
      return 0;
    }
  };

  Buffer buffer_;
};

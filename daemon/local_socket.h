// The protocol between the daemon and its callers: one connection, one command line, one reply line (docs/protocol.md).
// No timeouts: every call may block until the peer sends, reads or closes.
#pragma once

#include <string>
#include <string_view>

#include "core/dismissal/result.h"

// Owns a file descriptor and closes it.
class HLSocket {
 public:
  explicit HLSocket(int descriptor) : descriptor_(descriptor) {}
  ~HLSocket();
  HLSocket(const HLSocket&) = delete;
  HLSocket& operator=(const HLSocket&) = delete;

  [[nodiscard]] int descriptor() const { return descriptor_; }
  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }

 private:
  int descriptor_;
};

// Bind or connect the socket to the first 103 bytes of the path, the capacity of an address.
[[nodiscard]] bool HLBindLocalSocket(int descriptor, const std::string& path);
[[nodiscard]] bool HLConnectLocalSocket(int descriptor, const std::string& path);

// Client.

// Sends a command to the daemon and parses its reply into `result`. Returns false, and leaves `result`, if any step
// fails.
[[nodiscard]] bool HLRunLocalSocketCommand(std::string_view command, HLDismissResult& result);

// Writes the command and a line feed, then shuts down the sending direction. Returns false if not all could be written.
[[nodiscard]] bool HLWriteSocketRequest(int descriptor, std::string_view command);

// Reads until the end of the stream or until `text` has more than 16,384 bytes. Bytes that are no UTF-8 give an empty
// text. Returns false, and leaves `text`, if reading fails.
[[nodiscard]] bool HLReadSocketResponse(int descriptor, std::string& text);

// Daemon.

// Reads up to a line feed, the end of the stream, a failing read, or 1,025 bytes. Returns the trimmed command; bytes
// that are no UTF-8 give an empty text.
[[nodiscard]] std::string HLReadClientLine(int descriptor);

// Writes the text and a line feed by one write; ignores failures and short writes.
void HLWriteClientLine(int descriptor, std::string_view text);

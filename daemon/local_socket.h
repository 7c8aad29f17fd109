// The wire between the daemon and its callers: one connection, one command line, one reply line. docs/protocol.md
// describes it for whoever writes a client. Nothing here has a time-out; every call may block for as long as its peer
// does.
#pragma once

#include <string>
#include <string_view>

#include "core/dismissal/result.h"

// An open file descriptor, closed at destruction.
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

// Binds or connects to the path, of which an address holds the first 103 bytes.
[[nodiscard]] bool HLBindLocalSocket(int descriptor, const std::string& path);
[[nodiscard]] bool HLConnectLocalSocket(int descriptor, const std::string& path);

// The client's side.

// Sends a command to the daemon and reads its reply into the result. True only when all of it went well; the result is
// written only then.
[[nodiscard]] bool HLRunLocalSocketCommand(std::string_view command, HLDismissResult& result);

// Writes the command and a line feed, then ends the sending direction. False when not all of it was sent.
[[nodiscard]] bool HLWriteSocketRequest(int descriptor, std::string_view command);

// Reads until the end of the stream, or until more than 16,384 bytes are held. False, and the text untouched, when
// reading fails. Bytes that are no UTF-8 give the empty text.
[[nodiscard]] bool HLReadSocketResponse(int descriptor, std::string& text);

// The daemon's side.

// The command of a request: up to a line feed, the end of the stream, a failing read, or 1,025 bytes; trimmed. Bytes
// that are no UTF-8 give the empty text.
[[nodiscard]] std::string HLReadClientLine(int descriptor);

// Writes the text and a line feed at once; what the client does not take is lost.
void HLWriteClientLine(int descriptor, std::string_view text);

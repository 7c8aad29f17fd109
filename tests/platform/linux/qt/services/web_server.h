// An HTTP server of a test's own, which misbehaves as it is told.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/threads/thread_safety.h"

// One connection of a client.
class WebConnection {
 public:
  WebConnection(int descriptor, const std::atomic<bool>& ending) : descriptor_(descriptor), ending_(ending) {}

  void send(const std::string& bytes) const;
  // Until the client goes away, or the server ends.
  void waitForTheEnd() const;

 private:
  const int descriptor_;
  const std::atomic<bool>& ending_;
};

// Serves each connection on a thread of its own: reads one request, calls the handler with it, closes.
class WebServer {
 public:
  using Handler = std::function<void(const std::string& request, const WebConnection& connection)>;
  explicit WebServer(Handler handler);
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;
  ~WebServer();

  [[nodiscard]] std::string address(const std::string& path = "/") const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
  }
  [[nodiscard]] int port() const { return port_; }
  [[nodiscard]] std::vector<std::string> requests();

 private:
  void accept();
  void serve(int descriptor);

  const Handler handler_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> ending_ = false;
  HLMutex mutex_;
  std::vector<std::string> requests_ HL_GUARDED_BY(mutex_);
  std::vector<std::thread> threads_;
  std::thread acceptor_;
};

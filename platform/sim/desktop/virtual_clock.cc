#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <map>
#include <utility>
#include <vector>

#include "platform/sim/desktop/clock.h"

namespace {

struct Thread {
  std::condition_variable turn;
  bool running = false;
  HLSimMoment due = HLSimNever;  // while it sleeps
  HLSimSignal* signal = nullptr;
  HLSimWork* work = nullptr;
};

class VirtualClock : public HLSimClock {
 public:
  explicit VirtualClock(HLSimHappenings happenings) : happenings_(std::move(happenings)) {
    main_.running = true;
    threads_[std::this_thread::get_id()] = &main_;
  }

  HLSimLock lock() override { return HLSimLock(mutex_); }
  HLSimMoment now() const override { return now_; }

  void sleepUntil(HLSimLock& lock, HLSimMoment moment) override {
    const Turn turn(*this, lock);
    sleep(lock, turn.thread(), moment);
  }

  void waitFor(HLSimLock& lock, HLSimSignal& signal, HLSimMoment moment) override {
    const Turn turn(*this, lock);
    if (!signal.given) {
      turn.thread().signal = &signal;
      signal.waiting = &turn.thread();
      sleep(lock, turn.thread(), moment);
      signal.waiting = nullptr;
      turn.thread().signal = nullptr;
    }
    signal.given = false;
  }

  void give(HLSimSignal& signal) override {
    if (std::exchange(signal.given, true) || signal.waiting == nullptr) return;
    auto* thread = static_cast<Thread*>(signal.waiting);
    if (std::erase(sleepers_, thread) > 0) ready_.push_back(thread);
  }

  void dueChanged() override {}

  std::thread startThread(HLSimWork& work, std::function<void(HLSimLock&)> body) override {
    auto thread = std::make_shared<Thread>();
    thread->work = &work;
    ready_.push_back(thread.get());
    return std::thread([this, thread, body = std::move(body)] {
      HLSimLock lock(mutex_);
      threads_[std::this_thread::get_id()] = thread.get();
      awaitTurn(lock, *thread);
      body(lock);
      threads_.erase(std::this_thread::get_id());
      passTurn();
    });
  }

  void standBack(HLSimLock& lock) override {
    const Turn turn(*this, lock);
    ready_.push_back(&turn.thread());
    giveUpTurn(lock, turn.thread());
  }

 private:
  // A thread that the clock does not know takes turns for the time of one call.
  class Turn {
   public:
    Turn(VirtualClock& clock, HLSimLock& lock) : clock_(clock), thread_(clock.known()) {
      if (thread_ != nullptr) return;
      thread_ = &visitor_;
      clock.ready_.push_back(&visitor_);
      awaitTurn(lock, visitor_);
    }
    ~Turn() {
      if (thread_ == &visitor_) clock_.passTurn();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    [[nodiscard]] Thread& thread() const { return *thread_; }

   private:
    VirtualClock& clock_;
    Thread* thread_;
    Thread visitor_;
  };

  [[nodiscard]] Thread* known() {
    const auto found = threads_.find(std::this_thread::get_id());
    return found == threads_.end() ? nullptr : found->second;
  }

  void sleep(HLSimLock& lock, Thread& thread, HLSimMoment moment) {
    thread.due = std::max(moment, now_);
    sleepers_.push_back(&thread);
    giveUpTurn(lock, thread);
  }

  static void awaitTurn(HLSimLock& lock, Thread& thread) {
    thread.turn.wait(lock, [&thread] { return thread.running; });
  }

  void giveUpTurn(HLSimLock& lock, Thread& thread) {
    thread.running = false;
    passTurn();
    awaitTurn(lock, thread);
  }

  void passTurn() {
    while (ready_.empty()) jump();
    Thread* next = ready_.front();
    ready_.pop_front();
    next->running = true;
    next->turn.notify_one();
  }

  // To the next moment at which something is due: first what the scene has due, then the sleepers.
  void jump() {
    HLSimMoment moment = happenings_.nextDue();
    for (const Thread* sleeper : sleepers_) moment = std::min(moment, sleeper->due);
    if (moment == HLSimNever) {
      std::fputs("simulator: every thread waits for another one\n", stderr);
      std::abort();
    }
    now_ = std::max(now_, moment);
    happenings_.happenUntil(now_);
    wakeSleepers();
  }

  void wakeSleepers() {
    std::vector<Thread*> woken;
    for (Thread* sleeper : sleepers_) {
      if (sleeper->due <= now_) woken.push_back(sleeper);
    }
    std::erase_if(sleepers_, [this](const Thread* sleeper) { return sleeper->due <= now_; });
    orderByOperation(woken);
    ready_.insert(ready_.end(), woken.begin(), woken.end());
  }

  // The workers of each pool change places among themselves, so that they stand in the order of their operations.
  static void orderByOperation(std::vector<Thread*>& woken) {
    std::map<const void*, std::vector<std::size_t>> places;
    for (std::size_t i = 0; i < woken.size(); ++i) {
      if (woken[i]->work != nullptr) places[woken[i]->work->pool].push_back(i);
    }
    for (const auto& [pool, indexes] : places) {
      std::vector<Thread*> workers;
      for (std::size_t i : indexes) workers.push_back(woken[i]);
      std::sort(workers.begin(), workers.end(),
                [](const Thread* a, const Thread* b) { return a->work->operation < b->work->operation; });
      for (std::size_t i = 0; i < indexes.size(); ++i) woken[indexes[i]] = workers[i];
    }
  }

  HLSimHappenings happenings_;
  std::mutex mutex_;
  HLSimMoment now_ = 0;
  Thread main_;
  std::map<std::thread::id, Thread*> threads_;
  std::deque<Thread*> ready_;      // in the order in which they became able to run
  std::vector<Thread*> sleepers_;  // in the order in which they fell asleep
};

}  // namespace

std::unique_ptr<HLSimClock> HLMakeVirtualClock(HLSimHappenings happenings) {
  return std::make_unique<VirtualClock>(std::move(happenings));
}

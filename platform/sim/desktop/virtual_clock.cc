#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <map>
#include <utility>
#include <vector>

#include "platform/sim/desktop/clock.h"
#include "platform/threads/thread_start.h"

namespace {

struct Thread {
  HLCondition turn;
  bool running = false;
  HLMicroseconds due = HLNever;  // while it sleeps
  HLSimSignal* signal = nullptr;
  HLSimWork* work = nullptr;
};

class VirtualClock : public HLSimClock {
 public:
  explicit VirtualClock(HLSimEvents events) : events_(std::move(events)) {
    main_.running = true;
    threads_[std::this_thread::get_id()] = &main_;
  }

  HLMicroseconds now() const override HL_REQUIRES(this) { return now_; }

  void sleepUntil(HLMicroseconds moment) override HL_REQUIRES(this) {
    const Turn turn(*this);
    sleep(turn.thread(), moment);
  }

  void waitFor(HLSimSignal& signal, HLMicroseconds moment) override HL_REQUIRES(this) {
    const Turn turn(*this);
    if (!signal.given) {
      turn.thread().signal = &signal;
      signal.waiting = &turn.thread();
      sleep(turn.thread(), moment);
      signal.waiting = nullptr;
      turn.thread().signal = nullptr;
    }
    signal.given = false;
  }

  void yield() override HL_REQUIRES(this) {
    const Turn turn(*this);
    ready_.push_back(&turn.thread());
    giveUpTurn(turn.thread());
  }

  void give(HLSimSignal& signal) override HL_REQUIRES(this) {
    if (std::exchange(signal.given, true) || signal.waiting == nullptr) return;
    auto* thread = static_cast<Thread*>(signal.waiting);
    if (std::erase(sleepers_, thread) > 0) ready_.push_back(thread);
  }

  void dueChanged() override HL_REQUIRES(this) {}

  std::thread startThread(HLSimWork& work, std::function<void()> body) override HL_REQUIRES(this) {
    auto thread = std::make_shared<Thread>();
    thread->work = &work;
    std::thread started = HLTryStartThread([this, thread, body = std::move(body)] {
      const HLSimLock own(*this);
      threads_[std::this_thread::get_id()] = thread.get();
      awaitTurn(*thread);
      body();
      threads_.erase(std::this_thread::get_id());
      passTurn();
    });
    if (started.joinable()) ready_.push_back(thread.get());
    return started;
  }

 private:
  // Gives a thread that the clock did not start a turn for one call. The caller holds the clock throughout.
  class Turn {
   public:
    explicit Turn(VirtualClock& clock) HL_REQUIRES(clock) : clock_(clock), thread_(clock.known()) {
      if (thread_ != nullptr) return;
      thread_ = &visitor_;
      clock.ready_.push_back(&visitor_);
      clock.awaitTurn(visitor_);
    }
    ~Turn() {
      clock_.assertHeld();
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

  [[nodiscard]] Thread* known() HL_REQUIRES(this) {
    const auto found = threads_.find(std::this_thread::get_id());
    return found == threads_.end() ? nullptr : found->second;
  }

  void sleep(Thread& thread, HLMicroseconds moment) HL_REQUIRES(this) {
    thread.due = std::max(moment, now_);
    sleepers_.push_back(&thread);
    giveUpTurn(thread);
  }

  void awaitTurn(Thread& thread) HL_REQUIRES(this) {
    while (!thread.running) thread.turn.wait(*this);
  }

  void giveUpTurn(Thread& thread) HL_REQUIRES(this) {
    thread.running = false;
    passTurn();
    awaitTurn(thread);
  }

  void passTurn() HL_REQUIRES(this) {
    while (ready_.empty()) jump();
    Thread* next = ready_.front();
    ready_.pop_front();
    next->running = true;
    next->turn.notifyOne();
  }

  // Advances to the next moment at which something is due; the world's events come before the sleepers.
  void jump() HL_REQUIRES(this) {
    HLMicroseconds moment = events_.nextDue();
    for (const Thread* sleeper : sleepers_) moment = std::min(moment, sleeper->due);
    if (moment == HLNever) {
      std::fputs("simulator: every thread waits for another one\n", stderr);
      std::abort();
    }
    now_ = std::max(now_, moment);
    events_.advanceTo(now_);
    wakeSleepers();
  }

  void catchUp() override HL_REQUIRES(this) {}  // jump() has done so

  void wakeSleepers() HL_REQUIRES(this) {
    std::vector<Thread*> woken;
    for (Thread* sleeper : sleepers_) {
      if (sleeper->due <= now_) woken.push_back(sleeper);
    }
    std::erase_if(sleepers_, [now = now_](const Thread* sleeper) { return sleeper->due <= now; });
    orderByOperation(woken);
    ready_.insert(ready_.end(), woken.begin(), woken.end());
  }

  // Sorts the workers of each pool by operation, within the places that this pool's workers have.
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

  const HLSimEvents events_;
  HLMicroseconds now_ HL_GUARDED_BY(this) = 0;
  Thread main_ HL_GUARDED_BY(this);
  std::map<std::thread::id, Thread*> threads_ HL_GUARDED_BY(this);
  std::deque<Thread*> ready_ HL_GUARDED_BY(this);      // in the order in which they became able to run
  std::vector<Thread*> sleepers_ HL_GUARDED_BY(this);  // in the order in which they fell asleep
};

}  // namespace

std::unique_ptr<HLSimClock> HLMakeVirtualClock(HLSimEvents events) {
  return std::make_unique<VirtualClock>(std::move(events));
}

#include "platform/linux/notifications/notification_table.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

namespace {

// Names come from other processes too, so the size of their application and identifier counts.
std::size_t sizeOf(const HLPostedNotification& posted) {
  return posted.application.size() + posted.summary.size() + posted.body.size();
}

std::size_t sizeOf(const HLOpenNotification& open) {
  return sizeOf(open.posted) + open.name.application.size() + open.name.identifier.size();
}

}  // namespace

void HLStoreNotificationText(std::string_view text, std::string& stored, bool& isCut) {
  std::size_t size = text.size();
  if (size > HLNotificationTextLimit) {
    isCut = true;
    size = HLNotificationTextLimit;
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) --size;
  }
  stored.assign(text.substr(0, size));
}

void HLNotificationTable::notifyCalled(HLCallIdentity call, HLPostedNotification posted) {
  const HLLock lock(mutex_);
  wait({std::move(call), false, nullptr, std::move(posted)});
}

void HLNotificationTable::closeCalled(HLCallIdentity call, std::uint32_t number) {
  const HLLock lock(mutex_);
  wait({std::move(call), true, find({number, "", ""}), {}});
}

void HLNotificationTable::answered(const HLCallIdentity& call, std::uint32_t number, Time now) {
  const HLLock lock(mutex_);
  std::optional<Waiting> waiting = takeWaiting(call);
  if (!waiting) return;
  if (waiting->closes) {
    if (waiting->closing == nullptr) return;
    // The number may be another notification's by now.
    if (find(waiting->closing->name) == waiting->closing && erase(waiting->closing->name)) signalChange();
    confirmed_.push_back({std::move(waiting->closing), now});
    if (confirmed_.size() > kMostConfirmed) confirmed_.pop_front();
  } else if (number != 0) {  // some servers give no numbers
    insert({number, "", ""}, std::move(waiting->posted), now);
  }
}

void HLNotificationTable::refused(const HLCallIdentity& call) {
  const HLLock lock(mutex_);
  (void)takeWaiting(call);
}

void HLNotificationTable::closed(std::uint32_t number) {
  const HLLock lock(mutex_);
  if (erase({number, "", ""})) signalChange();
}

void HLNotificationTable::setServer(const std::string& owner) {
  const HLLock lock(mutex_);
  if (owner == server_ && !owner.empty()) return;
  const bool mayBeStartedByCalls = server_.empty() && !owner.empty();
  server_ = owner;
  while (!waiting_.empty() && !mayBeStartedByCalls) forgetFirstWaiting();
  confirmed_.clear();
  eraseAll(true);
}

void HLNotificationTable::addNamed(const std::string& application, const std::string& identifier,
                                   HLPostedNotification posted, Time now) {
  const HLLock lock(mutex_);
  insert({0, application, identifier}, std::move(posted), now);
}

void HLNotificationTable::removeNamed(const std::string& application, const std::string& identifier) {
  const HLLock lock(mutex_);
  if (erase({0, application, identifier})) signalChange();
}

void HLNotificationTable::setNamedServer(const std::string& owner) {
  const HLLock lock(mutex_);
  if (owner == namedServer_) return;
  namedServer_ = owner;
  eraseAll(false);
}

std::string HLNotificationTable::server() const {
  const HLLock lock(mutex_);
  return server_;
}

std::string HLNotificationTable::namedServer() const {
  const HLLock lock(mutex_);
  return namedServer_;
}

std::vector<HLOpenNotificationRef> HLNotificationTable::open() const {
  const HLLock lock(mutex_);
  return copyOpen();
}

std::vector<HLNotificationTable::Confirmed> HLNotificationTable::confirmedClosed() const {
  const HLLock lock(mutex_);
  return {confirmed_.begin(), confirmed_.end()};
}

std::size_t HLNotificationTable::waitingCount() const {
  const HLLock lock(mutex_);
  return waiting_.size();
}

std::size_t HLNotificationTable::byteCount() const {
  const HLLock lock(mutex_);
  return bytes_;
}

void HLNotificationTable::startSignaling(int eventDescriptor) {
  const HLLock lock(mutex_);
  signaled_.push_back(eventDescriptor);
}

void HLNotificationTable::stopSignaling(int eventDescriptor) {
  const HLLock lock(mutex_);
  std::erase(signaled_, eventDescriptor);
}

std::vector<HLOpenNotificationRef> HLNotificationTable::copyOpen() const {
  std::vector<HLOpenNotificationRef> open;
  open.reserve(open_.size());
  for (const auto& [order, notification] : open_) open.push_back(notification);
  return open;
}

void HLNotificationTable::wait(Waiting waiting) {
  bytes_ += sizeOf(waiting.posted);
  waiting_.push_back(std::move(waiting));
  forgetBeyondLimits();
}

// Servers reply in about the order of the calls, so the call is near the front.
std::optional<HLNotificationTable::Waiting> HLNotificationTable::takeWaiting(const HLCallIdentity& call) {
  const auto found =
      std::find_if(waiting_.begin(), waiting_.end(), [&call](const Waiting& waiting) { return waiting.call == call; });
  if (found == waiting_.end()) return std::nullopt;
  Waiting waiting = std::move(*found);
  waiting_.erase(found);
  bytes_ -= sizeOf(waiting.posted);
  return waiting;
}

void HLNotificationTable::insert(HLNotificationName name, HLPostedNotification posted, Time now) {
  erase(name);
  const Order order = ++last_;
  orders_[name] = order;
  auto open = std::make_shared<const HLOpenNotification>(HLOpenNotification{std::move(name), std::move(posted), now});
  bytes_ += sizeOf(*open);
  open_.emplace(order, std::move(open));
  forgetBeyondLimits();
  signalChange();
}

HLOpenNotificationRef HLNotificationTable::find(const HLNotificationName& name) const {
  const auto order = orders_.find(name);
  return order == orders_.end() ? nullptr : open_.at(order->second);
}

// Returns whether it was in the table.
bool HLNotificationTable::erase(const HLNotificationName& name) {
  const auto order = orders_.find(name);
  if (order == orders_.end()) return false;
  const auto open = open_.find(order->second);
  bytes_ -= sizeOf(*open->second);
  open_.erase(open);
  orders_.erase(order);
  return true;
}

void HLNotificationTable::eraseAll(bool isNumbered) {
  const std::vector<HLOpenNotificationRef> all = copyOpen();
  for (const HLOpenNotificationRef& open : all) {
    if ((open->name.number != 0) == isNumbered) erase(open->name);
  }
  signalChange();
}

void HLNotificationTable::forgetBeyondLimits() {
  while (open_.size() > kMostOpen || (bytes_ > kMostBytes && !open_.empty())) {
    const HLNotificationName oldest = open_.begin()->second->name;
    erase(oldest);
  }
  while (waiting_.size() > kMostOpen || (bytes_ > kMostBytes && !waiting_.empty())) forgetFirstWaiting();
}

void HLNotificationTable::forgetFirstWaiting() {
  bytes_ -= sizeOf(waiting_.front().posted);
  waiting_.pop_front();
}

void HLNotificationTable::signalChange() {
  const std::uint64_t one = 1;
  for (int descriptor : signaled_) (void)!write(descriptor, &one, sizeof one);
}

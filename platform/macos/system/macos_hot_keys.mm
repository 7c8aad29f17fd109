#include "platform/macos/system/macos_hot_keys.h"

#include <Carbon/Carbon.h>

#include <cstddef>
#include <string>
#include <utility>

static_assert(HLHotKeyStatus::success == HLHotKeyStatus{noErr});
static_assert(HLHotKeyStatus::notHandled == HLHotKeyStatus{eventNotHandledErr});
static_assert(HLHotKeyStatus::taken == HLHotKeyStatus{eventHotKeyExistsErr});
static_assert(HLHotKeyStatus::failed == HLHotKeyStatus{eventInternalErr});
static_assert(HLHotKeyCommand == cmdKey);
static_assert(HLHotKeyShift == shiftKey);
static_assert(HLHotKeyOption == optionKey);
static_assert(HLHotKeyControl == controlKey);

namespace {

constexpr int kSignatureLength = 4;

class HotKey : public HLHotKey {
 public:
  explicit HotKey(EventHotKeyRef hotKey) : hotKey_(hotKey) {}
  ~HotKey() override { UnregisterEventHotKey(hotKey_); }

 private:
  const EventHotKeyRef hotKey_;
};

OSType codeOf(const std::string& signature) {
  OSType code = 0;
  for (int i = 0; i < kSignatureLength; ++i) {
    const bool given = static_cast<std::size_t>(i) < signature.size();
    code = (code << 8) | static_cast<unsigned char>(given ? signature[static_cast<std::size_t>(i)] : ' ');
  }
  return code;
}

std::string signatureOf(OSType code) {
  std::string signature;
  for (int shift = 24; shift >= 0; shift -= 8) signature.push_back(static_cast<char>((code >> shift) & 0xFF));
  return signature;
}

std::optional<HLHotKeyIdentity> identityOf(EventRef event) {
  EventHotKeyID identity{};
  const OSStatus status = GetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, nullptr, sizeof identity,
                                            nullptr, &identity);
  if (status != noErr) return std::nullopt;
  return HLHotKeyIdentity{signatureOf(identity.signature), identity.id};
}

OSStatus pressed(EventHandlerCallRef, EventRef event, void* handler) {
  return static_cast<OSStatus>((*static_cast<const HLHotKeys::Handler*>(handler))(identityOf(event)));
}

}  // namespace

HLMacHotKeys::~HLMacHotKeys() {
  if (installed_ != nullptr) RemoveEventHandler(installed_);
}

void HLMacHotKeys::installHandler(Handler handler) {
  handler_ = std::move(handler);
  const EventTypeSpec type{kEventClassKeyboard, kEventHotKeyPressed};
  InstallEventHandler(GetApplicationEventTarget(), NewEventHandlerUPP(pressed), 1, &type, &handler_, &installed_);
}

HLHotKeyRegistration HLMacHotKeys::registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                  const HLHotKeyIdentity& identity) {
  EventHotKeyRef hotKey = nullptr;
  const OSStatus status = RegisterEventHotKey(code, modifiers, {codeOf(identity.signature), identity.id},
                                              GetApplicationEventTarget(), 0, &hotKey);
  if (status != noErr) return {HLHotKeyStatus{status}, nullptr};
  return {HLHotKeyStatus::success, std::make_unique<HotKey>(hotKey)};
}
